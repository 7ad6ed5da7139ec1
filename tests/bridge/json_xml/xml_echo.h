// XmlEcho: a SAX handler that writes the events back as the XML text they stand for, so a test
// compares a whole parse with one string. The root's namespace declarations are left out, an
// array's start event shows its local name as <aArray:aArr> where it differs from the
// qualified name, and a failure appends "!line:col".
#pragma once

#include <string>

#include "vnxml/common/utf.h"
#include "vnxml/sax.h"

namespace vn::test {

class XmlEcho : public TVnObject, public IVnSAXContentHandler, public IVnSAXErrorHandler {
  VN_VNOBJECT_INTERFACES(TVnObject, IVnSAXContentHandler, IVnSAXErrorHandler)
 public:
  using SV = std::u16string_view;
  std::string Text;
  int Documents = 0;

  void SetDocumentLocator(IVnSAXLocator*) override {}
  void Characters(SV t) override { Text += UnicodeToUtf8(t); }
  void EndDocument() override { Text += "|"; }
  void EndElement(SV, SV, SV q) override { Text += "</" + UnicodeToUtf8(q) + ">"; }
  void EndPrefixMapping(SV) override {}
  void IgnorableWhitespace(SV) override {}
  void ProcessingInstruction(SV, SV) override {}
  void SkippedEntity(SV) override {}
  void StartDocument() override { Text += "|"; }
  void StartElement(SV uri, SV local, SV q, IVnSAXAttributes* attrs) override {
    Text += "<" + UnicodeToUtf8(q);
    if (local != q) Text += ":" + UnicodeToUtf8(local);
    if (!uri.empty()) Text += "{" + UnicodeToUtf8(uri) + "}";
    for (auto* a = attrs->FirstAttribute(); a; a = a->Next)
      if (a->QName.rfind(u"xmlns:", 0) != 0) Text += " " + UnicodeToUtf8(a->QName) + "=\"" + UnicodeToUtf8(a->Value) + "\"";
    Text += ">";
  }
  void StartPrefixMapping(SV, SV) override {}
  void Warning(IVnSAXLocator*, SV) override {}
  void Error(IVnSAXLocator*, SV) override {}
  void FatalError(IVnSAXLocator* loc, SV) override {
    Text += "!" + std::to_string(loc->GetLineNr()) + ":" + std::to_string(loc->GetColNr());
  }
};

}  // namespace vn::test
