// TVnDOMDocument: the ways in (streams, files, strings); strings and memory are scanned in place.
#include "dom/load_source.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom_document.h"

namespace vn {

namespace {

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
    detail::LoadSource source(AStream);
    const Word codePage = source.DetectCodePage();
    detail::LoadInto(*this, source, codePage);
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
    detail::LoadSource source(AXML.data(), AXML.size() * sizeof(char16_t));
    detail::LoadInto(*this, source, cVnCodePageUTF16LE);
  }
  DoXMLLoaded();
}

void TVnDOMDocument::LoadFromAnsiXML(std::string_view AText) {
  Clear();
  if (AText.empty()) return;
  {
    LoadScope scope(*this);
    detail::LoadSource source(AText.data(), AText.size());
    detail::LoadInto(*this, source, cVnCodePageDefault);
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
