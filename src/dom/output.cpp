// Writing nodes as XML text. Values are stored escaped, so the writer copies what is stored.
#include "vnxml/common/encoding.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom_document.h"

namespace vn {

namespace {
void WriteText(TStream& AStream, Word ACodePage, std::u16string_view AText) {
  if (AText.empty()) return;
  if (ACodePage == 1200) {
    AStream.WriteBuffer(AText.data(), static_cast<Int64>(AText.size() * sizeof(char16_t)));
    return;
  }
  RawByteString bytes = TVnEncoding::ConvertW(AText, ACodePage);
  AStream.WriteBuffer(bytes.data(), static_cast<Int64>(bytes.size()));
}

void WriteIndent(TStream& AStream, Word ACodePage, Integer ALevel) {
  for (Integer i = 0; i <= ALevel; ++i) WriteText(AStream, ACodePage, u"  ");
}

// A formatted element starts a line, except at the very start of the output (also right
// behind a UTF-16 byte-order mark).
void StartLine(TStream& AStream, Word ACodePage, Integer ALevel) {
  Int64 pos = AStream.GetPosition();
  if (pos == 2) {
    unsigned char bom[2] = {0, 0};
    AStream.Seek(0, soBeginning);
    AStream.ReadBuffer(bom, 2);
    if (!(bom[0] == 0xFF && bom[1] == 0xFE)) WriteText(AStream, ACodePage, u"\r\n");
  } else if (pos > 0) {
    WriteText(AStream, ACodePage, u"\r\n");
  }
  WriteIndent(AStream, ACodePage, ALevel);
}

bool ParentIsPlainElement(const TVnDOMNode* ANode) {
  TVnDOMNode* p = ANode->ParentNode();
  return p && p->GetNodeType() == ntElement && !p->GetPreserveSpace();
}
}  // namespace

void TVnDOMNode::_SaveToStream(TStream&, Word, bool, Integer&) {}

void TVnDOMNode::SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted) {
  Integer level = -1;
  _SaveToStream(AStream, ACodePage, AFormatted, level);
}

UnicodeString TVnDOMNode::GetXML() {
  TVnStringStream s(1200);
  SaveToStream(s, 1200, false);
  return s.GetWString();
}

UnicodeString TVnDOMNode::GetFormattedXML() {
  TVnStringStream s(1200);
  SaveToStream(s, 1200, true);
  return s.GetWString();
}

void TVnDOMDocument::_SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) {
  for (TVnDOMNode* c : FChildren) c->_SaveToStream(AStream, ACodePage, AFormatted, ALevel);
}

void TVnDOMElement::_SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) {
  // Explicit stack: each frame is an element whose children are being written.
  struct Frame {
    TVnDOMElement* Element;
    uint32_t Next;
  };
  std::vector<Frame> stack;
  auto open = [&](TVnDOMElement* e) -> bool {
    if (AFormatted && !e->GetPreserveSpace()) StartLine(AStream, ACodePage, ALevel);
    WriteText(AStream, ACodePage, u"<");
    WriteText(AStream, ACodePage, e->QualifiedNameView());
    for (TVnDOMNode* a : e->FAttrs) a->_SaveToStream(AStream, ACodePage, AFormatted, ALevel);
    if (e->FElems.empty() && e->FChars.empty()) {
      WriteText(AStream, ACodePage, u" />");
      return false;
    }
    WriteText(AStream, ACodePage, u">");
    ++ALevel;
    return true;
  };
  auto close = [&](TVnDOMElement* e) {
    --ALevel;
    if (AFormatted && !e->FElems.empty() && !e->GetPreserveSpace()) {
      WriteText(AStream, ACodePage, u"\r\n");
      WriteIndent(AStream, ACodePage, ALevel);
    }
    WriteText(AStream, ACodePage, u"</");
    WriteText(AStream, ACodePage, e->QualifiedNameView());
    WriteText(AStream, ACodePage, u">");
  };
  if (!open(this)) return;
  stack.push_back({this, 0});
  while (!stack.empty()) {
    Frame& f = stack.back();
    if (f.Next >= f.Element->FChildren.size()) {
      TVnDOMElement* e = f.Element;
      stack.pop_back();
      close(e);
      continue;
    }
    TVnDOMNode* c = f.Element->FChildren[f.Next++];
    if (c->GetNodeType() == ntAttribute) continue;
    if (c->GetNodeType() == ntElement && c->ClassType() == TVnDOMElement::StaticClass()) {
      auto* ce = static_cast<TVnDOMElement*>(c);
      if (open(ce)) stack.push_back({ce, 0});
    } else {
      c->_SaveToStream(AStream, ACodePage, AFormatted, ALevel);
    }
  }
}

UnicodeString TVnDOMElement::GetInnerXML() {
  TVnStringStream s(1200);
  for (TVnDOMNode* e : FElems) e->SaveToStream(s, 1200, false);
  return s.GetWString();
}

UnicodeString TVnDOMElement::GetFormattedInnerXML() {
  TVnStringStream s(1200);
  for (TVnDOMNode* e : FElems) e->SaveToStream(s, 1200, true);
  return s.GetWString();
}

void TVnDOMAttribute::_SaveToStream(TStream& AStream, Word ACodePage, bool, Integer&) {
  WriteText(AStream, ACodePage, u" ");
  WriteText(AStream, ACodePage, QualifiedNameView());
  WriteText(AStream, ACodePage, u"=\"");
  WriteText(AStream, ACodePage, FNodeValue);
  WriteText(AStream, ACodePage, u"\"");
}

void TVnDOMCharacterData::_SaveToStream(TStream& AStream, Word ACodePage, bool, Integer&) {
  WriteText(AStream, ACodePage, FNodeValue);
}

void TVnDOMCDATA::_SaveToStream(TStream& AStream, Word ACodePage, bool, Integer&) {
  WriteText(AStream, ACodePage, u"<![CDATA[");
  WriteText(AStream, ACodePage, FNodeValue);
  WriteText(AStream, ACodePage, u"]]>");
}

void TVnDOMComment::_SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) {
  if (AFormatted) {
    if (!GetPreserveSpace()) WriteText(AStream, ACodePage, u"\r\n");
    if (ParentIsPlainElement(this)) WriteIndent(AStream, ACodePage, ALevel);
  }
  WriteText(AStream, ACodePage, u"<!--");
  WriteText(AStream, ACodePage, FNodeValue);
  WriteText(AStream, ACodePage, u"-->");
}

void TVnDOMProcessingInstruction::_SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) {
  if (AFormatted && AStream.GetSize() >= 5) {
    WriteText(AStream, ACodePage, u"\r\n");
    if (ParentIsPlainElement(this)) WriteIndent(AStream, ACodePage, ALevel);
  }
  WriteText(AStream, ACodePage, u"<?");
  WriteText(AStream, ACodePage, QualifiedNameView());
  if (!FData.empty()) {
    WriteText(AStream, ACodePage, u" ");
    WriteText(AStream, ACodePage, FData);
  }
  WriteText(AStream, ACodePage, u"?>");
}

}  // namespace vn
