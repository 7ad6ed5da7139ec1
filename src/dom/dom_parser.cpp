// TVnDOMParser: reader events become nodes; also the node-level entry points that parse text.
#include "vnxml/dom_parser.h"

#include <typeinfo>

#include "dom/tree_builder.h"
#include "xml/xml_read_loop.h"

#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom_document.h"
#include "vnxml/sax_reader.h"
#include "vnxml/xml_escape.h"

namespace vn {

namespace {

// Leaves AStream on the first character above a blank (one or two bytes a unit) and returns
// it, or 0 at the end of the stream.
char16_t SkipToSignificant(TStream& AStream, Word ACodePage) {
  const Int64 unit = ACodePage == cVnCodePageUTF16LE ? 2 : 1;
  unsigned char buf[2] = {0, 0};
  while (AStream.Read(buf, unit) == unit) {
    char16_t c = unit == 2 ? static_cast<char16_t>(buf[0] | (buf[1] << 8)) : buf[0];
    if (c > 32) {
      AStream.Seek(-unit, soCurrent);
      return c;
    }
  }
  return 0;
}

// The loader's own sink for the reading loop: events become nodes at once, with no handler
// calls, attribute records or namespace bookkeeping between the scan and the tree.
class BuildSink {
 public:
  static constexpr bool kNamespaces = false;
  static constexpr bool kEndTagNames = false;

  explicit BuildSink(detail::TreeBuilder& ABuilder) : B(ABuilder) {}

  void StartDocument() {}
  void EndDocument() {}
  void StartTag(std::u16string_view AQName) { B.BeginElement(AQName); }
  void Attribute(std::u16string_view, std::u16string_view AQName, std::u16string_view, std::u16string_view AValue,
                 bool ASingleQuoted) {
    B.AddAttribute(AQName, AValue, ASingleQuoted);
  }
  void StartElement(std::u16string_view, std::u16string_view, std::u16string_view, bool) { B.EnterElement(); }
  void EndElement(std::u16string_view, std::u16string_view, std::u16string_view) { B.EndElement(); }
  void Characters(std::u16string_view AText) {
    if (InCDATA)
      B.AddCDATA(AText);
    else
      B.AddText(AText);
  }
  bool KeepsWhitespace() const { return B.KeepsWhitespace(); }
  void IgnorableWhitespace(std::u16string_view AText) { B.AddWhitespace(AText); }
  void ProcessingInstruction(std::u16string_view ATarget, std::u16string_view AData) {
    B.AddInstruction(ATarget, AData);
  }
  void StartCDATA() { InCDATA = true; }
  void EndCDATA() { InCDATA = false; }
  bool WantsComments() const { return true; }
  void Comment(std::u16string_view AText) { B.AddComment(AText); }
  void StartDTD() {}
  void EndDTD() {}

 private:
  detail::TreeBuilder& B;
  bool InCDATA = false;
};

void RunBuildLoop(TVnSAXXMLReader& AReader, void* ABuilder) {
  BuildSink sink(*static_cast<detail::TreeBuilder*>(ABuilder));
  switch (AReader.GetXMLParser()->GetCharacterSetType()) {
    case csUTF16: detail::XmlReadLoop<detail::read_loop::Utf16Units, BuildSink>(AReader, sink).Run(); break;
    case csUTF8: detail::XmlReadLoop<detail::read_loop::Utf8Units, BuildSink>(AReader, sink).Run(); break;
    default: detail::XmlReadLoop<detail::read_loop::AnsiUnits, BuildSink>(AReader, sink).Run(); break;
  }
}

}  // namespace

TVnDOMParser::TVnDOMParser(TVnDOMNode* ANode) : FTarget(ANode) {
  // The reader's interface references hold no count: this parser is freed by its creator.
  SetAutoDestroy(false);
}

TVnDOMParser::~TVnDOMParser() = default;

void TVnDOMParser::Parse(TStream& AStream, Word ACodePage) {
  SkipToSignificant(AStream, ACodePage);
  // Only the XML reader exists; text that does not start with "<" fails there with its message.
  TVnSAXXMLReader reader;
  reader.SetAutoDestroy(false);
  reader.SetCheckSingleRootElm(FTarget->GetNodeType() == ntDocument);
  reader.SetErrorHandler(IPtr<IVnSAXErrorHandler>(this));
  reader.SetLexicalHandler(IPtr<IVnSAXLexicalHandler>(this));
  reader.SetContentHandler(IPtr<IVnSAXContentHandler>(this));
  FBuilder = std::make_unique<detail::TreeBuilder>(FTarget);
  // This class builds straight from the scan; a subclass hears every event as a handler.
  if (typeid(*this) == typeid(TVnDOMParser)) reader.SetLoopOverride({&RunBuildLoop, FBuilder.get()});
  struct Detach {
    TVnDOMParser& Parser;
    TVnSAXXMLReader& Reader;
    ~Detach() {
      Parser.FLocator = nullptr;
      Parser.FBuilder.reset();
      Reader.SetContentHandler(nullptr);
      Reader.SetLexicalHandler(nullptr);
      Reader.SetErrorHandler(nullptr);
    }
  } detach{*this, reader};
  reader.ParseStream(&AStream, ACodePage, u"");
  FBuilder->Finish();
}

detail::TreeBuilder& TVnDOMParser::Builder() {
  if (!FBuilder) FBuilder = std::make_unique<detail::TreeBuilder>(FTarget);
  return *FBuilder;
}

void TVnDOMParser::Warning(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) {
  bool handled = false;
  if (OnParseWarning) OnParseWarning(ALocator, AErrMsg, handled);
}

void TVnDOMParser::Error(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) {
  bool handled = false;
  if (OnParseError) OnParseError(ALocator, AErrMsg, handled);
}

void TVnDOMParser::FatalError(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) {
  // The load ends here: whoever hears of it finds a whole tree.
  if (FBuilder) FBuilder->Finish();
  bool handled = false;
  if (OnParseFatalError) OnParseFatalError(ALocator, AErrMsg, handled);
  if (handled) return;
  throw EVnDomSyntax(cVnDomSyntaxAt, {ALocator->GetLineNr(), ALocator->GetColNr(), UnicodeString(AErrMsg)});
}

void TVnDOMParser::StartElement(std::u16string_view, std::u16string_view, std::u16string_view AQName,
                                IVnSAXAttributes* AAttributes) {
  detail::TreeBuilder& builder = Builder();
  builder.BeginElement(AQName);
  for (PVnSAXXMAttribute a = AAttributes->FirstAttribute(); a; a = a->Next) builder.AddAttribute(a->QName, a->Value);
  builder.EnterElement();
}

void TVnDOMParser::EndElement(std::u16string_view, std::u16string_view, std::u16string_view) {
  Builder().EndElement();
}

void TVnDOMParser::EndDocument() {
  if (FBuilder) FBuilder->Finish();
}

void TVnDOMParser::Characters(std::u16string_view AText) {
  if (FInCDATA)
    Builder().AddCDATA(AText);
  else
    Builder().AddText(AText);
}

void TVnDOMParser::IgnorableWhitespace(std::u16string_view AWhiteSpace) { Builder().AddWhitespace(AWhiteSpace); }

void TVnDOMParser::ProcessingInstruction(std::u16string_view ATarget, std::u16string_view AData) {
  Builder().AddInstruction(ATarget, AData);
}

void TVnDOMParser::Comment(std::u16string_view AComment) { Builder().AddComment(AComment); }

// ---- node entry points ----

void TVnDOMNode::LoadFromStream(TStream& AStream, Word ACodePage) {
  TVnDOMParser parser(this);
  parser.OnParseWarning = [this](IVnSAXLocator* L, std::u16string_view M, bool& H) { DoDOMParseWarning(L, M, H); };
  parser.OnParseError = [this](IVnSAXLocator* L, std::u16string_view M, bool& H) { DoDOMParseError(L, M, H); };
  parser.OnParseFatalError = [this](IVnSAXLocator* L, std::u16string_view M, bool& H) {
    DoDOMParseFatalError(L, M, H);
  };
  parser.Parse(AStream, ACodePage);
}

void TVnDOMElement::SetInnerXML(std::u16string_view AXML) {
  while (!FElems.empty()) RemoveChild(FElems.back());
  if (AXML.empty()) return;
  TVnStringStream stream(AXML);
  stream.SetPosition(0);
  LoadFromStream(stream, cVnCodePageUTF16LE);
}

}  // namespace vn
