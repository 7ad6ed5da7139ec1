// Writing nodes as XML text. Values are stored escaped, so the writer copies what is stored.
#include <cstring>

#include "vnxml/common/code_page.h"
#include "vnxml/common/encoding.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom_document.h"

namespace vn {

namespace {
// Writes UTF-16 text as UTF-8 at AOut (room for 3 bytes a unit) and returns the end; a lone
// surrogate becomes U+FFFD, as the converter does.
char* EncodeUtf8(char* AOut, std::u16string_view AText) {
  const char16_t* p = AText.data();
  const char16_t* end = p + AText.size();
  while (p < end) {
    uint32_t c = *p++;
    if (c < 0x80) {
      *AOut++ = static_cast<char>(c);
      continue;
    }
    if (c >= 0xD800 && c <= 0xDBFF && p < end && *p >= 0xDC00 && *p <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (*p++ - 0xDC00);
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = 0xFFFD;
    }
    if (c < 0x800) {
      *AOut++ = static_cast<char>(0xC0 | (c >> 6));
    } else if (c < 0x10000) {
      *AOut++ = static_cast<char>(0xE0 | (c >> 12));
      *AOut++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    } else {
      *AOut++ = static_cast<char>(0xF0 | (c >> 18));
      *AOut++ = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      *AOut++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    }
    *AOut++ = static_cast<char>(0x80 | (c & 0x3F));
  }
  return AOut;
}

void WriteText(TStream& AStream, Word ACodePage, std::u16string_view AText) {
  if (AText.empty()) return;
  if (ACodePage == cVnCodePageUTF16LE) {
    AStream.WriteBuffer(AText.data(), static_cast<Int64>(AText.size() * sizeof(char16_t)));
    return;
  }
  if (ACodePage == cVnCodePageUTF8) {
    // UTF-8 is the common case: no converter lookup and no allocation per piece.
    thread_local std::string scratch;
    if (scratch.size() < AText.size() * 3) scratch.resize(AText.size() * 3);
    char* end = EncodeUtf8(scratch.data(), AText);
    AStream.WriteBuffer(scratch.data(), static_cast<Int64>(end - scratch.data()));
    return;
  }
  RawByteString bytes = TVnEncoding::ConvertW(AText, ACodePage);
  AStream.WriteBuffer(bytes.data(), static_cast<Int64>(bytes.size()));
}

// The pieces of one tag, collected in the output's code page and written with one call.
class TagBuffer {
 public:
  TagBuffer(TStream& AStream, Word ACodePage) : FStream(AStream), FCodePage(ACodePage) { FBytes.clear(); }
  void Add(std::u16string_view AText) {
    if (FCodePage == cVnCodePageUTF16LE) {
      FBytes.append(reinterpret_cast<const char*>(AText.data()), AText.size() * sizeof(char16_t));
    } else if (FCodePage == cVnCodePageUTF8) {
      size_t at = FBytes.size();
      FBytes.resize(at + AText.size() * 3);
      FBytes.resize(static_cast<size_t>(EncodeUtf8(FBytes.data() + at, AText) - FBytes.data()));
    } else {
      FBytes += TVnEncoding::ConvertW(AText, FCodePage);
    }
  }
  void Flush() {
    if (!FBytes.empty()) FStream.WriteBuffer(FBytes.data(), static_cast<Int64>(FBytes.size()));
    FBytes.clear();
  }

 private:
  TStream& FStream;
  Word FCodePage;
  // Reused across tags: the walk allocates nothing once it has seen its longest tag.
  static thread_local std::string FBytes;
};
thread_local std::string TagBuffer::FBytes;

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

namespace {
// The text of a UTF-16 string stream; an empty stream has no memory block to copy from.
UnicodeString TextOf(const TVnStringStream& AStream) {
  std::string_view bytes = AStream.GetBytesView();
  if (bytes.empty()) return {};
  UnicodeString text(bytes.size() / 2, u'\0');
  std::memcpy(text.data(), bytes.data(), text.size() * 2);
  return text;
}
}  // namespace

UnicodeString TVnDOMNode::GetXML() {
  TVnStringStream s(1200);
  SaveToStream(s, 1200, false);
  return TextOf(s);
}

UnicodeString TVnDOMNode::GetFormattedXML() {
  TVnStringStream s(1200);
  SaveToStream(s, 1200, true);
  return TextOf(s);
}

void TVnDOMDocument::SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, bool AWriteBOM) {
  if (AWriteBOM) {
    if (ACodePage == cVnCodePageUTF16LE)
      AStream.WriteBuffer(cVnUTF16LE.data(), static_cast<Int64>(cVnUTF16LE.size()));
    else if (ACodePage == cVnCodePageUTF8)
      AStream.WriteBuffer(cVnUTF8.data(), static_cast<Int64>(cVnUTF8.size()));
  }
  TVnDOMNode::SaveToStream(AStream, ACodePage, AFormatted);
}

void TVnDOMDocument::SaveToStreamEx(TStream& AStream, bool AFormatted, bool AWriteBOM) {
  SaveToStream(AStream, VnCodePage(GetEncoding()), AFormatted, AWriteBOM);
}

void TVnDOMDocument::SaveToFile(std::u16string_view AFileName, bool AFormatted, bool AWriteBOM) {
  TFileStream file(AFileName, fmCreate);
  // Pieces are small: collect them and write the file in large blocks.
  TVnMemoryStream buffer;
  SaveToStreamEx(buffer, AFormatted, AWriteBOM);
  file.WriteBuffer(buffer.GetMemory(), buffer.GetSize());
}

UnicodeString VnFormatXML(std::u16string_view AXML) {
  TVnDOMDocument doc;
  doc.LoadXML(AXML);
  return doc.GetFormattedXML();
}

UnicodeString VnFormatXML(std::string_view AXML) { return VnFormatXML(Utf8ToUnicode(AXML)); }

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
    TagBuffer tag(AStream, ACodePage);
    tag.Add(u"<");
    tag.Add(e->QualifiedNameView());
    for (TVnDOMNode* a : e->FAttrs) {
      if (a->ClassType() == TVnDOMAttribute::StaticClass()) {
        // The plain attribute's writing, inlined into the tag's one write.
        auto* attr = static_cast<TVnDOMAttribute*>(a);
        tag.Add(u" ");
        tag.Add(attr->QualifiedNameView());
        tag.Add(u"=\"");
        tag.Add(attr->GetStoredValue());
        tag.Add(u"\"");
      } else {
        tag.Flush();
        a->_SaveToStream(AStream, ACodePage, AFormatted, ALevel);
      }
    }
    bool empty = e->FElems.empty() && e->FChars.empty();
    tag.Add(empty ? u" />" : u">");
    tag.Flush();
    if (empty) return false;
    ++ALevel;
    return true;
  };
  auto close = [&](TVnDOMElement* e) {
    --ALevel;
    if (AFormatted && !e->FElems.empty() && !e->GetPreserveSpace()) {
      WriteText(AStream, ACodePage, u"\r\n");
      WriteIndent(AStream, ACodePage, ALevel);
    }
    TagBuffer tag(AStream, ACodePage);
    tag.Add(u"</");
    tag.Add(e->QualifiedNameView());
    tag.Add(u">");
    tag.Flush();
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
  return TextOf(s);
}

UnicodeString TVnDOMElement::GetFormattedInnerXML() {
  TVnStringStream s(1200);
  for (TVnDOMNode* e : FElems) e->SaveToStream(s, 1200, true);
  return TextOf(s);
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
