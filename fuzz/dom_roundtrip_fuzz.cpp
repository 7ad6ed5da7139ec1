// Fuzz target of the document: any bytes load (or fail with the library's own exception); what
// loads is saved, loaded and saved again, and the two saves must agree.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "vnxml/common/exception.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* AData, size_t ASize) {
  std::string_view bytes(reinterpret_cast<const char*>(AData), ASize);
  vn::UnicodeString first;
  try {
    vn::TVnDOMDocument doc;
    vn::TVnStringStream in(bytes, vn::cVnCodePageDefault);
    doc.LoadFromStream(in);
    first = doc.GetXML();
    // Formatted output and other code pages must not fail on a loaded tree either.
    (void)doc.GetFormattedXML();
    vn::TVnStringStream out(vn::cVnCodePageUTF8);
    doc.SaveToStream(out, vn::cVnCodePageUTF8, true, true);
  } catch (const vn::Exception&) {
    return 0;
  }
  vn::TVnDOMDocument again;
  again.LoadXML(first);  // our own output must load: an exception here is a finding
  if (again.GetXML() != first) std::abort();
  return 0;
}
