// Fuzz target of the XML reader: the first byte picks the entry point, the code page and the
// single-root check; the rest is the text. Any exception but the reader's own is a finding.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

#include "vnxml/common/stream.h"
#include "vnxml/common/utf.h"
#include "vnxml/sax.h"

namespace {
using SV = std::u16string_view;
class NullHandler : public vn::TVnObject, public vn::IVnSAXContentHandler, public vn::IVnSAXErrorHandler {
  VN_VNOBJECT_INTERFACES(vn::TVnObject, vn::IVnSAXContentHandler, vn::IVnSAXErrorHandler)
 public:
  void SetDocumentLocator(vn::IVnSAXLocator*) override {}
  void Characters(SV) override {}
  void EndDocument() override {}
  void EndElement(SV, SV, SV) override {}
  void EndPrefixMapping(SV) override {}
  void IgnorableWhitespace(SV) override {}
  void ProcessingInstruction(SV, SV) override {}
  void SkippedEntity(SV) override {}
  void StartDocument() override {}
  void StartElement(SV, SV, SV, vn::IVnSAXAttributes*) override {}
  void StartPrefixMapping(SV, SV) override {}
  void Warning(vn::IVnSAXLocator*, SV) override {}
  void Error(vn::IVnSAXLocator*, SV) override {}
  void FatalError(vn::IVnSAXLocator* l, SV) override { (void)(l->GetLineNr() + l->GetColNr()); }
};
const vn::Word kCodePages[] = {0, 65001, 1200, 1201, 28591, 1252, 12000, 932};
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const uint8_t mode = data[0];
  const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  const vn::Word cp = kCodePages[(mode >> 4) & 7];
  const std::string path = "/tmp/sax_reader_fuzz_" + std::to_string(getpid());
  vn::IPtr<NullHandler> handler(new NullHandler);
  vn::TVnSAXXMLReader reader;
  reader.SetContentHandler(vn::IPtr<vn::IVnSAXContentHandler>(handler.Get()));
  reader.SetErrorHandler(vn::IPtr<vn::IVnSAXErrorHandler>(handler.Get()));
  reader.SetCheckSingleRootElm((mode & 8) == 0);
  try {
    if (mode % 5 == 0) reader.ParseBuffer(text.data(), static_cast<vn::Int64>(text.size()), cp, u"fuzz");
    if (mode % 5 == 1) reader.Parse(vn::Utf8ToUnicode(text), u"");
    if (mode % 5 == 2) reader.Parse(std::string_view(text), cp, u"");
    if (mode % 5 == 3) {
      vn::TMemoryStream stream;
      stream.WriteBuffer(text.data(), static_cast<vn::Int64>(text.size()));
      stream.SetPosition(0);
      reader.ParseStream(&stream, cp, u"");
    }
    if (mode % 5 == 4) {
      std::ofstream(path, std::ios::binary) << text;
      reader.ParseFile(vn::Utf8ToUnicode(path), vn::fmOpenRead, u"");
    }
  } catch (const vn::EVnException&) {
  }
  if (mode % 5 == 4) std::remove(path.c_str());
  return 0;
}
