// TVnDOMParser: reader events become nodes; also the node-level entry points that parse text.
#include "vnxml/dom_parser.h"

#include <iterator>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "dom/tree_builder.h"

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

// Does AText hold a double quote? Asked of every attribute value, so eight units a step.
bool HasQuote(std::u16string_view AText) {
  const char16_t* p = AText.data();
  const char16_t* end = p + AText.size();
#if defined(__SSE2__)
  const __m128i quote = _mm_set1_epi16(u'"');
  for (; end - p >= 8; p += 8)
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), quote))) return true;
#endif
  for (; p < end; ++p)
    if (*p == u'"') return true;
  return false;
}

UnicodeString QuotesAsReferences(std::u16string_view AValue) {
  UnicodeString out;
  out.reserve(AValue.size() + 8);
  for (char16_t c : AValue) {
    if (c == u'"')
      out += u"&quot;";
    else
      out.push_back(c);
  }
  return out;
}

// The same failure for every event that arrives with no node to take it.
[[noreturn]] void NoNodeForEvent() {
  throw EVnXMLParseError(cVnXMLErrInvalidTextAtRoot, UnicodeString(_cVnXMLInvalidTextAtRoot));
}

}  // namespace

TVnDOMParser::TVnDOMParser(TVnDOMNode* ANode) : FTarget(ANode), FDOMNode(ANode) {
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
  detail::TreeBuilder builder(FTarget);
  FReader = &reader;
  FBuilder = &builder;
  struct Detach {
    TVnDOMParser& Parser;
    TVnSAXXMLReader& Reader;
    ~Detach() {
      Parser.FReader = nullptr;
      Parser.FLocator = nullptr;
      Parser.FBuilder = nullptr;
      Reader.SetContentHandler(nullptr);
      Reader.SetLexicalHandler(nullptr);
      Reader.SetErrorHandler(nullptr);
    }
  } detach{*this, reader};
  reader.ParseStream(&AStream, ACodePage, u"");
}

TVnDOMNode* TVnDOMParser::Current() {
  if (!FDOMNode) NoNodeForEvent();
  return FDOMNode;
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
  bool handled = false;
  if (OnParseFatalError) OnParseFatalError(ALocator, AErrMsg, handled);
  if (handled) return;
  throw EVnDomSyntax(cVnDomSyntaxAt, {ALocator->GetLineNr(), ALocator->GetColNr(), UnicodeString(AErrMsg)});
}

void TVnDOMParser::StartElement(std::u16string_view, std::u16string_view, std::u16string_view AQName,
                                IVnSAXAttributes* AAttributes) {
  TVnDOMNode* parent = Current();
  uint32_t count = 0;
  for (PVnSAXXMAttribute a = AAttributes->FirstAttribute(); a; a = a->Next) ++count;
  TVnDOMElement* element = FBuilder->NewElement(AQName, count);
  // From here the element is the tree's: joined at once, or freed with the builder's pool.
  std::unique_ptr<TVnDOMElement> pending(element);
  bool schemaInstance = false;
  for (PVnSAXXMAttribute a = AAttributes->FirstAttribute(); a; a = a->Next) {
    // Values are written back in double quotes: one read from single quotes keeps its quote
    // characters as references, so the saved text loads to the same value.
    if (!HasQuote(a->Value))
      FBuilder->AddAttribute(element, a->QName, a->Value);
    else
      FBuilder->AddAttribute(element, a->QName, QuotesAsReferences(a->Value));
    if (!schemaInstance && a->Value.size() == std::size(cVnXSINamespaceURI) - 1 && SameText(a->Value, cVnXSINamespaceURI))
      schemaInstance = true;
  }
  // Joining the parent computes the element's namespace from its declarations and the scope.
  pending.release();
  FBuilder->Append(parent, element);
  if (schemaInstance && parent->GetNodeType() == ntDocument) static_cast<TVnDOMDocument*>(parent)->FUseSchemaInstance = true;
  FDOMNode = element;
}

void TVnDOMParser::EndElement(std::u16string_view, std::u16string_view, std::u16string_view) {
  // The name is not matched (the reader does not either), but an end tag never climbs above
  // the node being filled.
  TVnDOMNode* current = Current();
  if (current == FTarget) {
    FDOMNode = nullptr;
    NoNodeForEvent();
  }
  FDOMNode = current->ParentNode();
}

void TVnDOMParser::Characters(std::u16string_view AText) {
  TVnDOMNode* node = Current();
  if (FInCDATA) {
    if (node->GetNodeType() != ntElement) throw EInvalidCast(u"Invalid class typecast");
    FBuilder->Append(node, FBuilder->NewCDATA(AText));
    return;
  }
  FBuilder->Append(node, FBuilder->NewText(AText));
}

void TVnDOMParser::IgnorableWhitespace(std::u16string_view AWhiteSpace) {
  if (Current()->GetPreserveSpace()) Characters(AWhiteSpace);
}

void TVnDOMParser::ProcessingInstruction(std::u16string_view ATarget, std::u16string_view AData) {
  TVnDOMNode* node = Current();
  FBuilder->Append(node, FBuilder->NewInstruction(ATarget, AData));
}

void TVnDOMParser::Comment(std::u16string_view AComment) {
  TVnDOMNode* node = Current();
  FBuilder->Append(node, FBuilder->NewComment(AComment));
}

// ---- node entry points ----

void TVnDOMNode::LoadFromStream(TStream& AStream, Word ACodePage) {
  TVnDOMParser parser(this);
  if (TVnDOMDocument* doc = Document()) {
    parser.OnParseWarning = doc->OnParseWarning;
    parser.OnParseError = doc->OnParseError;
    parser.OnParseFatalError = doc->OnParseFatalError;
  }
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
