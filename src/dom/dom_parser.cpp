// TVnDOMParser: reader events become nodes; also the node-level entry points that parse text.
#include "vnxml/dom_parser.h"

#include <algorithm>
#include <typeinfo>

#include "bridge/json_dom_load.h"
#include "dom/load_recorder.h"
#include "dom/load_source.h"
#include "dom/tree_builder.h"
#include "xml/xml_read_loop.h"

#include "vnxml/common/code_page.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom_document.h"
#include "vnxml/sax_reader.h"
#include "vnxml/xml_escape.h"

namespace vn {

namespace {

// The loader's own sink for the reading loop: events go to the builder (or the recorder that
// keeps them for it) at once, with no handler calls, attribute records or namespace
// bookkeeping between the scan and the tree.
template <class Builder>
class BuildSink {
 public:
  static constexpr bool kNamespaces = false;
  static constexpr bool kEndTagNames = false;
  static constexpr bool kUtf8Values = true;

  explicit BuildSink(Builder& ABuilder) : B(ABuilder) {}

  void StartDocument() {}
  void EndDocument() {}
  void StartTag(std::u16string_view AQName) { B.BeginElement(AQName); }
  void Attribute(std::u16string_view, std::u16string_view AQName, std::u16string_view, std::u16string_view AValue,
                 bool ASingleQuoted) {
    B.AddAttribute(AQName, AValue, ASingleQuoted);
  }
  /// AMayHoldQuote: read from single quotes and holding a double quote; AHigh: not plain ASCII;
  /// AAsciiName: nor is the name.
  void AttributeUtf8(std::u16string_view AQName, std::string_view AValue, bool AMayHoldQuote, bool AHigh,
                     bool AAsciiName) {
    if constexpr (std::is_same_v<Builder, detail::LoadRecorder>)
      B.AddAttributeUtf8(AQName, AValue, AMayHoldQuote, AHigh, AAsciiName);
    else
      B.AddAttributeUtf8(AQName, AValue, AMayHoldQuote, AHigh);
  }
  void StartElement(std::u16string_view, std::u16string_view, std::u16string_view, bool) { B.EnterElement(); }
  void EndElement(std::u16string_view, std::u16string_view, std::u16string_view) { B.EndElement(); }
  void Characters(std::u16string_view AText) {
    if (InCDATA)
      B.AddCDATA(AText);
    else
      B.AddText(AText);
  }
  void CharactersUtf8(std::string_view AText, bool AHigh) { B.AddTextUtf8(AText, AHigh); }
  void CDataUtf8(std::string_view AText, bool AHigh) { B.AddCDATAUtf8(AText, AHigh); }
  void IgnorableWhitespaceUtf8(std::string_view AText) { B.AddWhitespaceUtf8(AText); }
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
  Builder& B;
  bool InCDATA = false;
};

// The reader of a load by this library's parser: it builds from the scan, with no handler
// calls, attribute records or namespace bookkeeping between the scan and the tree.
class BuildingReader final : public TVnSAXXMLReader {
 public:
  BuildingReader(detail::TreeBuilder& ABuilder, detail::LoadRecorder* ARecorder)
      : FBuilder(ABuilder), FRecorder(ARecorder) {}

 protected:
  void ReadContent() override {
    if (FRecorder) {
      BuildSink<detail::LoadRecorder> sink(*FRecorder);
      detail::RunXmlReadLoop(*this, sink);
    } else {
      BuildSink<detail::TreeBuilder> sink(FBuilder);
      detail::RunXmlReadLoop(*this, sink);
    }
  }

 private:
  detail::TreeBuilder& FBuilder;
  detail::LoadRecorder* FRecorder;
};

}  // namespace

TVnDOMParser::TVnDOMParser(TVnDOMNode* ANode) : FTarget(ANode) {
  // The reader's interface references hold no count: this parser is freed by its creator.
  SetAutoDestroy(false);
}

TVnDOMParser::~TVnDOMParser() = default;

void TVnDOMParser::Parse(TStream& AStream, Word ACodePage) {
  detail::LoadSource source(AStream);
  Parse(source.Data(), static_cast<Int64>(source.Size()), ACodePage);
}

void TVnDOMParser::Parse(const void* AText, Int64 ASize, Word ACodePage) {
  detail::LoadSource source(AText, static_cast<size_t>(std::max<Int64>(ASize, 0)));
  source.SkipBlanks(ACodePage);
  FBuilder = std::make_unique<detail::TreeBuilder>(FTarget);
  // This class builds straight from the scan; a subclass hears every event as a handler.
  const bool plain = typeid(*this) == typeid(TVnDOMParser);
  std::unique_ptr<TVnSAXReader> owned;
  if (plain && DeferChildren && FTarget->GetNodeType() == ntDocument)
    FRecorder = std::make_unique<detail::LoadRecorder>(*FBuilder);
  if (detail::IsJSONLoadText(source.Data(), source.Size(), ACodePage)) {
    owned = detail::MakeJSONLoadReader(plain ? FBuilder.get() : nullptr, FRecorder.get());
  } else {
    std::unique_ptr<TVnSAXXMLReader> xml;
    if (plain) {
      xml = std::make_unique<BuildingReader>(*FBuilder, FRecorder.get());
    }
    else
      xml = std::make_unique<TVnSAXXMLReader>();
    xml->SetCheckSingleRootElm(FTarget->GetNodeType() == ntDocument);
    owned = std::move(xml);
  }
  TVnSAXReader& reader = *owned;
  reader.SetErrorHandler(IPtr<IVnSAXErrorHandler>(this));
  reader.SetLexicalHandler(IPtr<IVnSAXLexicalHandler>(this));
  reader.SetContentHandler(IPtr<IVnSAXContentHandler>(this));
  struct Detach {
    TVnDOMParser& Parser;
    TVnSAXReader& Reader;
    ~Detach() {
      Parser.FLocator = nullptr;
      Parser.FRecorder.reset();
      Parser.FBuilder.reset();
      Reader.SetContentHandler(nullptr);
      Reader.SetLexicalHandler(nullptr);
      Reader.SetErrorHandler(nullptr);
    }
  } detach{*this, reader};
  reader.ParseBuffer(source.Data(), static_cast<Int64>(source.Size()), ACodePage);
  Finish();
}

void TVnDOMParser::Finish() {
  if (FRecorder)
    FRecorder->Finish();
  else if (FBuilder)
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
  Finish();
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

void TVnDOMParser::EndDocument() { Finish(); }

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

void detail::LoadInto(TVnDOMNode& ATarget, LoadSource& ASource, Word ACodePage) {
  // Each node hears the failures of loads into it through its own events.
  TVnDOMParser parser(&ATarget);
  if (ATarget.GetNodeType() == ntDocument)
    parser.DeferChildren = static_cast<TVnDOMDocument&>(ATarget).GetDeferChildren();
  TVnDOMNode* target = &ATarget;
  parser.OnParseWarning = [target](IVnSAXLocator* L, std::u16string_view M, bool& H) {
    target->DoDOMParseWarning(L, M, H);
  };
  parser.OnParseError = [target](IVnSAXLocator* L, std::u16string_view M, bool& H) {
    target->DoDOMParseError(L, M, H);
  };
  parser.OnParseFatalError = [target](IVnSAXLocator* L, std::u16string_view M, bool& H) {
    target->DoDOMParseFatalError(L, M, H);
  };
  parser.Parse(ASource.Data(), static_cast<Int64>(ASource.Size()), ACodePage);
}

void TVnDOMNode::LoadFromStream(TStream& AStream, Word ACodePage) {
  detail::LoadSource source(AStream);
  detail::LoadInto(*this, source, ACodePage);
}

void TVnDOMElement::SetInnerXML(std::u16string_view AXML) {
  EnsureOpen();
  while (!FElems.empty()) RemoveChild(FElems.back());
  if (AXML.empty()) return;
  // The caller's text is scanned where it stands.
  detail::LoadSource source(AXML.data(), AXML.size() * sizeof(char16_t));
  detail::LoadInto(*this, source, cVnCodePageUTF16LE);
}

}  // namespace vn
