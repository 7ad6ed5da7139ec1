// Fuzz target of the JSON document. The first byte picks the input's code page; the rest is
// the text. Oracles: the document's own load and the tree handler's load give the same tree and
// the same failure; what loads passes the round-trip oracle (saved text loads and saves to the
// same bytes), compact and formatted, in UTF-8 and UTF-16. Any exception but the library's own
// is a finding.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "../tests/json/json_roundtrip_oracle.h"
#include "vnxml/common/exception.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"

namespace {

[[noreturn]] void Finding(const std::string& AWhat) {
  std::fprintf(stderr, "json_document_fuzz: %s\n", AWhat.c_str());
  std::abort();
}

// A subclass takes the handler's road.
class HandlerRoadDocument : public vn::TVnJSONDocument {};

// The failure's class and message, empty when the load went through.
std::string Load(vn::TVnJSONDocument& ADoc, std::string_view ABytes, vn::Word ACodePage) {
  try {
    vn::TVnStringStream in(ABytes, ACodePage);
    ADoc.LoadFromStream(in, ACodePage, false);
  } catch (const vn::Exception& e) {
    return vn::UnicodeToUtf8(e.ClassName()) + ": " + e.what();
  }
  return {};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* AData, size_t ASize) {
  if (ASize == 0) return 0;
  static const vn::Word cCodePages[] = {vn::cVnCodePageUTF8, vn::cVnCodePageUTF16LE, 0, 1252};
  const vn::Word codePage = cCodePages[AData[0] % 4];
  std::string_view bytes(reinterpret_cast<const char*>(AData + 1), ASize - 1);

  vn::TVnJSONDocument fast;
  HandlerRoadDocument slow;
  const std::string failFast = Load(fast, bytes, codePage);
  const std::string failSlow = Load(slow, bytes, codePage);
  if (failFast != failSlow) Finding("the two roads fail differently: " + failFast + " / " + failSlow);
  if (fast.GetAsJSON() != slow.GetAsJSON()) Finding("the two roads build different trees");
  // UTF-8 output copies or transcodes loaded UTF-8 text directly; the other road's text goes
  // through the decoder and encoder
  if (vn::testing_support::SaveJSON(fast, false, vn::cVnCodePageUTF8) !=
      vn::testing_support::SaveJSON(slow, false, vn::cVnCodePageUTF8))
    Finding("the two roads save different UTF-8");
  if (!failFast.empty()) return 0;

  const bool shallow = vn::testing_support::TreeDepth(fast) <= vn::testing_support::cFormattedDepthLimit;
  for (bool formatted : {false, true}) {
    if (formatted && !shallow) continue;
    for (vn::Word out : {vn::cVnCodePageUTF8, vn::cVnCodePageUTF16LE}) {
      std::string verdict = vn::testing_support::CheckJSONRoundTrip(fast, formatted, out);
      if (!verdict.empty()) Finding(verdict);
    }
  }
  return 0;
}
