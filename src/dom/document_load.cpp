// TVnDOMDocument: the ways in (streams, files, strings) and the encoding detection of a load.
#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom_document.h"

namespace vn {

namespace {

// Looks at most this far for the encoding of the declaration.
constexpr size_t kDeclarationWindow = 1025;

// The code page named in the declaration at AStream's position (a 8-bit text starting with
// "<"), or 65001; the stream is back where it was afterwards.
Word DeclaredCodePage(TStream& AStream) {
  Int64 start = AStream.GetPosition();
  char head[kDeclarationWindow];
  Int64 got = AStream.Read(head, static_cast<Int64>(sizeof head));
  AStream.SetPosition(start);
  std::u16string text;
  for (Int64 i = 0; i < got; ++i) {
    text.push_back(static_cast<unsigned char>(head[i]));
    if (head[i] == '>') break;
  }
  UnicodeString lower = LowerCase(text);
  size_t word = lower.find(u"encoding");
  if (word == UnicodeString::npos) return cVnCodePageUTF8;
  size_t open = lower.find(u'"', word);
  size_t close = open == UnicodeString::npos ? open : lower.find(u'"', open + 1);
  UnicodeString name = close == UnicodeString::npos ? UnicodeString() : Trim(lower.substr(open + 1, close - open - 1));
  Word cp = VnCodePage(name);
  return cp ? cp : cVnCodePageUTF8;
}

// Marks a load as running and, whatever happens, as done afterwards.
class LoadScope {
 public:
  explicit LoadScope(TVnDOMDocument& ADocument) : FDocument(ADocument) { FDocument.SetLoadState(lsLoading); }
  ~LoadScope() { FDocument.SetLoadState(lsLoaded); }
  LoadScope(const LoadScope&) = delete;
  LoadScope& operator=(const LoadScope&) = delete;

 private:
  TVnDOMDocument& FDocument;
};

}  // namespace

TVnDOMDocument::TVnDOMDocument(std::u16string_view AFileName, Word AMode) : TVnDOMDocument() {
  LoadFromFile(AFileName, AMode);
}

TVnDOMDocument::TVnDOMDocument(TStream& AStream, Word ACodePage) : TVnDOMDocument() {
  LoadFromStream(AStream, ACodePage);
}

std::unique_ptr<TVnDOMDocument> TVnDOMDocument::FromXML(std::u16string_view AXML) {
  auto doc = std::make_unique<TVnDOMDocument>();
  doc->LoadXML(AXML);
  return doc;
}

std::unique_ptr<TVnDOMDocument> TVnDOMDocument::FromAnsiXML(std::string_view AText) {
  auto doc = std::make_unique<TVnDOMDocument>();
  doc->LoadFromAnsiXML(AText);
  return doc;
}

void TVnDOMDocument::LoadFromStream(TStream& AStream) {
  {
    LoadScope scope(*this);
    Word codePage = VnGetCodePage(&AStream);
    const Int64 unit = codePage == cVnCodePageUTF16LE ? 2 : 1;
    unsigned char buf[2] = {0, 0};
    char16_t first = 0;
    while (AStream.Read(buf, unit) == unit) {
      first = unit == 2 ? static_cast<char16_t>(buf[0] | (buf[1] << 8)) : buf[0];
      if (first > 32) {
        AStream.Seek(-unit, soCurrent);
        break;
      }
      first = 0;
    }
    if (codePage == 0) codePage = first == u'<' ? DeclaredCodePage(AStream) : cVnCodePageUTF8;
    TVnDOMNode::LoadFromStream(AStream, codePage);
  }
  DoXMLLoaded();
}

void TVnDOMDocument::LoadFromStream(TStream& AStream, Word ACodePage) {
  TVnDOMNode::LoadFromStream(AStream, ACodePage);
  DoXMLLoaded();
}

void TVnDOMDocument::LoadXML(std::u16string_view AXML) {
  Clear();
  if (AXML.empty()) return;
  {
    LoadScope scope(*this);
    TVnStringStream stream(AXML);
    TVnDOMNode::LoadFromStream(stream, cVnCodePageUTF16LE);
  }
  DoXMLLoaded();
}

void TVnDOMDocument::LoadFromAnsiXML(std::string_view AText) {
  Clear();
  if (AText.empty()) return;
  {
    LoadScope scope(*this);
    TVnStringStream stream(AText, cVnCodePageDefault);
    TVnDOMNode::LoadFromStream(stream, cVnCodePageDefault);
  }
  DoXMLLoaded();
}

void TVnDOMDocument::LoadXML(std::u16string_view AFileName, Word AMode) {
  TFileStream stream(AFileName, AMode);
  LoadFromStream(stream);
}

void TVnDOMDocument::LoadFromFile(std::u16string_view AFileName, Word AMode) {
  LoadXML(AFileName, AMode);
  FDocumentURI.assign(AFileName);
}

}  // namespace vn
