// sax_handlers.h: handlers for tests of readers. SaxRecorder writes one short line per event, for
// comparing whole traces; NullSaxHandler hears everything and keeps nothing.
// Forms: startDocument, pi(target|data), startPrefix(p=uri), endPrefix(p), start({uri}qname a{uri}=v ...),
// end({uri}qname), chars(text), ws(text), comment(text), startCDATA, endCDATA, startDTD, endDTD,
// endDocument, fatal(line:col message).
#pragma once

#include <string>
#include <vector>

#include "vnxml/common/utf.h"
#include "vnxml/sax.h"

namespace vn::test {

class SaxRecorder : public vn::TVnObject,
                    public vn::IVnSAXContentHandler,
                    public vn::IVnSAXLexicalHandler,
                    public vn::IVnSAXErrorHandler {
  VN_VNOBJECT_INTERFACES(vn::TVnObject, vn::IVnSAXContentHandler, vn::IVnSAXLexicalHandler, vn::IVnSAXErrorHandler)
 public:
  std::vector<std::string> Events;
  // Local names seen by StartElement, and those of each attribute, in order.
  std::vector<std::string> LocalNames;
  // Position the locator gave to FatalError.
  int FatalLine = 0, FatalCol = 0;

  static std::string U8(std::u16string_view s) { return vn::UnicodeToUtf8(s); }

  void SetDocumentLocator(vn::IVnSAXLocator*) override { Events.push_back("locator"); }
  void Characters(std::u16string_view t) override { Events.push_back("chars(" + U8(t) + ")"); }
  void EndDocument() override { Events.push_back("endDocument"); }
  void EndElement(std::u16string_view uri, std::u16string_view, std::u16string_view q) override {
    Events.push_back("end(" + Name(uri, q) + ")");
  }
  void EndPrefixMapping(std::u16string_view p) override { Events.push_back("endPrefix(" + U8(p) + ")"); }
  void IgnorableWhitespace(std::u16string_view t) override { Events.push_back("ws(" + U8(t) + ")"); }
  void ProcessingInstruction(std::u16string_view t, std::u16string_view d) override {
    Events.push_back("pi(" + U8(t) + "|" + U8(d) + ")");
  }
  void SkippedEntity(std::u16string_view) override {}
  void StartDocument() override { Events.push_back("startDocument"); }
  void StartElement(std::u16string_view uri, std::u16string_view local, std::u16string_view q,
                    vn::IVnSAXAttributes* attrs) override {
    std::string line = "start(" + Name(uri, q);
    LocalNames.push_back(U8(local));
    for (auto* a = attrs->FirstAttribute(); a; a = a->Next) {
      line += " " + Name(a->URI, a->QName) + "=" + U8(a->Value);
      LocalNames.push_back("@" + U8(a->LocalName));
    }
    Events.push_back(line + ")");
  }
  void StartPrefixMapping(std::u16string_view p, std::u16string_view uri) override {
    Events.push_back("startPrefix(" + U8(p) + "=" + U8(uri) + ")");
  }

  void Comment(std::u16string_view t) override { Events.push_back("comment(" + U8(t) + ")"); }
  void StartCDATA() override { Events.push_back("startCDATA"); }
  void StartDTD() override { Events.push_back("startDTD"); }
  void StartEntity(std::u16string_view) override {}
  void EndCDATA() override { Events.push_back("endCDATA"); }
  void EndDTD() override { Events.push_back("endDTD"); }
  void EndEntity(std::u16string_view) override {}

  void Warning(vn::IVnSAXLocator*, std::u16string_view) override {}
  void Error(vn::IVnSAXLocator*, std::u16string_view) override {}
  void FatalError(vn::IVnSAXLocator* loc, std::u16string_view msg) override {
    FatalLine = loc->GetLineNr();
    FatalCol = loc->GetColNr();
    Events.push_back("fatal(" + std::to_string(FatalLine) + ":" + std::to_string(FatalCol) + " " + U8(msg) + ")");
  }

 private:
  static std::string Name(std::u16string_view uri, std::u16string_view q) {
    return uri.empty() ? U8(q) : "{" + U8(uri) + "}" + U8(q);
  }
};

/// Content, lexical and error handler at once, doing nothing.
class NullSaxHandler : public TVnObject, public IVnSAXContentHandler, public IVnSAXLexicalHandler, public IVnSAXErrorHandler {
  VN_VNOBJECT_INTERFACES(TVnObject, IVnSAXContentHandler, IVnSAXLexicalHandler, IVnSAXErrorHandler)
 public:
  using SV = std::u16string_view;
  void SetDocumentLocator(IVnSAXLocator*) override {}
  void Characters(SV) override {}
  void EndDocument() override {}
  void EndElement(SV, SV, SV) override {}
  void EndPrefixMapping(SV) override {}
  void IgnorableWhitespace(SV) override {}
  void ProcessingInstruction(SV, SV) override {}
  void SkippedEntity(SV) override {}
  void StartDocument() override {}
  void StartElement(SV, SV, SV, IVnSAXAttributes*) override {}
  void StartPrefixMapping(SV, SV) override {}
  void Comment(SV) override {}
  void StartCDATA() override {}
  void StartDTD() override {}
  void StartEntity(SV) override {}
  void EndCDATA() override {}
  void EndDTD() override {}
  void EndEntity(SV) override {}
  void Warning(IVnSAXLocator*, SV) override {}
  void Error(IVnSAXLocator*, SV) override {}
  void FatalError(IVnSAXLocator*, SV) override {}
};

/// A reader wired to a recorder (content, lexical and error handler at once).
struct RecordingReader {
  vn::TVnSAXXMLReader Reader;
  vn::IPtr<SaxRecorder> Rec{new SaxRecorder};
  explicit RecordingReader(bool ALexical = true, bool ACheckSingleRoot = true) {
    Reader.SetContentHandler(vn::IPtr<vn::IVnSAXContentHandler>(Rec.Get()));
    Reader.SetErrorHandler(vn::IPtr<vn::IVnSAXErrorHandler>(Rec.Get()));
    if (ALexical) Reader.SetLexicalHandler(vn::IPtr<vn::IVnSAXLexicalHandler>(Rec.Get()));
    Reader.SetCheckSingleRootElm(ACheckSingleRoot);
  }
  std::vector<std::string>& Events() { return Rec->Events; }
};

}  // namespace vn::test
