// Tour, SAX: read a sample file as events, collect what a handler needs, and see a failure
// reported with its code, line and column.
#include <cstdio>
#include <string>

#include "sections.h"
#include "vnxml/common.h"
#include "vnxml/sax.h"

namespace tour {

namespace {

using SV = std::u16string_view;

// Prints each dish with its price: text and attributes arrive as written in the file, and a
// handler copies what it keeps, since views and attribute sets live for one event.
class MenuHandler : public vn::TVnObject, public vn::IVnSAXContentHandler, public vn::IVnSAXErrorHandler {
  VN_VNOBJECT_INTERFACES(vn::TVnObject, vn::IVnSAXContentHandler, vn::IVnSAXErrorHandler)
 public:
  void SetDocumentLocator(vn::IVnSAXLocator*) override {}
  void StartDocument() override { FElements = 0; }
  void EndDocument() override { std::printf("  %d elements\n", FElements); }
  void StartElement(SV, SV ALocalName, SV, vn::IVnSAXAttributes* AAttributes) override {
    ++FElements;
    FInDish = ALocalName == u"dish";
    if (FInDish) FPrice = AAttributes->GetValue(u"price");
  }
  void EndElement(SV, SV, SV) override { FInDish = false; }
  void Characters(SV AText) override {
    if (FInDish)
      std::printf("  %-16s %s\n", vn::UnicodeToUtf8(AText).c_str(), vn::UnicodeToUtf8(FPrice).c_str());
  }
  void IgnorableWhitespace(SV) override {}
  void ProcessingInstruction(SV ATarget, SV AData) override {
    std::printf("  <?%s %s?>\n", vn::UnicodeToUtf8(ATarget).c_str(), vn::UnicodeToUtf8(AData).c_str());
  }
  void StartPrefixMapping(SV, SV) override {}
  void EndPrefixMapping(SV) override {}
  void SkippedEntity(SV) override {}
  void Warning(vn::IVnSAXLocator*, SV) override {}
  void Error(vn::IVnSAXLocator*, SV) override {}
  void FatalError(vn::IVnSAXLocator* ALocator, SV AMessage) override {
    std::printf("  failed at line %d, column %d: %s\n", ALocator->GetLineNr(), ALocator->GetColNr(),
                vn::UnicodeToUtf8(AMessage).c_str());
  }

 private:
  int FElements = 0;
  bool FInDish = false;
  vn::UnicodeString FPrice;
};

}  // namespace

void Sax() {
  std::printf("== SAX\n");
  vn::IPtr<MenuHandler> handler(new MenuHandler);
  // Readers are plain objects: the creator frees them; handlers are counted interfaces.
  vn::TVnSAXXMLReader reader;
  reader.SetContentHandler(vn::IPtr<vn::IVnSAXContentHandler>(handler.Get()));
  reader.SetErrorHandler(vn::IPtr<vn::IVnSAXErrorHandler>(handler.Get()));
  for (const char* name : {"menu-utf8.xml", "menu-utf16le-bom.xml"}) {
    std::printf(" %s\n", name);
    reader.ParseFile(vn::Utf8ToUnicode(DataDir() + "/" + name), vn::fmOpenRead);
  }
  // The reader is forgiving about structure but not about delimiters.
  vn::TVnSAXXMLReader strict;
  strict.SetContentHandler(vn::IPtr<vn::IVnSAXContentHandler>(handler.Get()));
  strict.SetErrorHandler(vn::IPtr<vn::IVnSAXErrorHandler>(handler.Get()));
  try {
    strict.Parse(u"<menu>\n  <dish price>soup</dish>\n</menu>");
  } catch (const vn::EVnXMLParseError& e) {
    std::printf("  error code %d\n", e.GetCode());
  }
}

}  // namespace tour
