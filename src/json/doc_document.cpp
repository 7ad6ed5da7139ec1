// TVnJSONDocument, loading and saving of every node, VnFormatJSON.
#include <typeinfo>

#include "json/doc_load.h"
#include "json/doc_writer.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/encoding.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_document.h"

namespace vn {

using detail::JSONNodeClass;
using detail::JSONOutputKind;
using detail::JSONWriter;

// ---- loading and saving, every node ----

void TVnJSONBase::LoadFromStream(TStream& AStream) { LoadFromStream(AStream, VnGetCodePage(&AStream), false); }

void TVnJSONBase::LoadFromStream(TStream& AStream, Word ACodePage, bool AFormURLEncoded) {
  if (AStream.GetSize() == 0) {
    DestroyObjects();
    return;
  }
  detail::LoadWithHandler(*this, AStream, ACodePage, AFormURLEncoded);
}

void TVnJSONBase::SetAsJSON(std::u16string_view AText) {
  if (AText.empty()) {
    DestroyObjects();
    return;
  }
  TVnStringStream stream(AText);
  LoadFromStream(stream, cVnCodePageUTF16LE, false);
}

void TVnJSONBase::SaveToStream(TStream& AStream, bool AFormatted, Integer ALevel, bool AIndent) {
  JSONWriter::Write(*this, AStream, JSONOutputKind::Utf16, 0, AFormatted, ALevel, AIndent);
}
void TVnJSONSimpleType::SaveToStream(TStream& AStream, bool AFormatted, Integer ALevel, bool AIndent) {
  TVnJSONBase::SaveToStream(AStream, AFormatted, ALevel, AIndent);
}
void TVnJSONMember::SaveToStream(TStream& AStream, bool AFormatted, Integer ALevel, bool AIndent) {
  TVnJSONBase::SaveToStream(AStream, AFormatted, ALevel, AIndent);
}
void TVnJSONObject::SaveToStream(TStream& AStream, bool AFormatted, Integer ALevel, bool AIndent) {
  TVnJSONBase::SaveToStream(AStream, AFormatted, ALevel, AIndent);
}
void TVnJSONArray::SaveToStream(TStream& AStream, bool AFormatted, Integer ALevel, bool AIndent) {
  TVnJSONBase::SaveToStream(AStream, AFormatted, ALevel, AIndent);
}

namespace {
UnicodeString TextOf(TVnJSONBase& ANode, bool AFormatted) {
  TVnStringStream stream(cVnCodePageUTF16LE, 16);
  JSONWriter::Write(ANode, stream, JSONOutputKind::Utf16, 0, AFormatted, 0, false);
  return stream.GetWString();
}
}  // namespace

UnicodeString TVnJSONBase::GetAsJSON() { return TextOf(*this, false); }
UnicodeString TVnJSONBase::GetFormattedJSON() { return TextOf(*this, true); }

// ---- TVnJSONDocument ----

TVnJSONDocument::TVnJSONDocument() { FNodeClass = JSONNodeClass::Document; }

TVnJSONDocument::TVnJSONDocument(const UnicodeString& AFileName, Word AMode) : TVnJSONDocument() {
  LoadFromFile(AFileName, AMode);
}

TVnJSONDocument::TVnJSONDocument(std::u16string_view AText) : TVnJSONDocument() { SetAsJSON(AText); }

TVnJSONDocument::TVnJSONDocument(const RawByteString& AText, Word ACodePage) : TVnJSONDocument() {
  SetAsJSON(TVnEncoding::ConvertA(AText, ACodePage));
}

TVnJSONDocument::TVnJSONDocument(TStream& AStream, Word ACodePage, bool AFormURLEncoded) : TVnJSONDocument() {
  LoadFromStream(AStream, ACodePage, AFormURLEncoded);
}

TVnJSONBase* TVnJSONDocument::CreateRootValue(TVnJSONDataType AKind) {
  DestroyObjects();
  return CreateValueNode(AKind);
}

namespace {
TVnJSONBase& RootOf(const TVnJSONDocument& ADoc) {
  TVnJSONBase* root = ADoc.GetRootValue();
  if (!root) throw EVnJSONParseError(cVnJSONErrNoRoot, UnicodeString(_cVnJSONNoRoot));
  return *root;
}
}  // namespace

TVnJSONMember* TVnJSONDocument::FindMember(std::u16string_view AName, bool ACaseInsensitive) {
  return RootOf(*this).FindMember(AName, ACaseInsensitive);
}
TVnJSONMember* TVnJSONDocument::GetMember(std::u16string_view AName, TVnJDOCSelectOptions AOptions) {
  return RootOf(*this).GetMember(AName, AOptions);
}
TVnJSONBase* TVnJSONDocument::Item(Integer AIndex) { return RootOf(*this).Item(AIndex); }

void TVnJSONDocument::LoadFromFile(const UnicodeString& AFileName, Word AMode) {
  if (!FileExists(AFileName)) throw EReadError(_cVnJSONNoFile, {AFileName});
  TFileStream stream(AFileName, AMode);
  TVnJSONBase::LoadFromStream(stream);
}

void TVnJSONDocument::SaveToFile(const UnicodeString& AFileName, bool AFormatted) {
  TFileStream stream(AFileName, fmCreate);
  SaveToStream(stream, AFormatted, cVnCodePageUTF8, true);
}

void TVnJSONDocument::SaveToStream(TStream& AStream, bool AFormatted, Word ACodePage, bool AWriteBOM) {
  // Every character the writer makes is below U+0100 (the encoder escapes the rest), so each
  // code page gets its bytes piece by piece with the same result as converting the whole text.
  if (ACodePage == cVnCodePageUTF16LE) {
    if (AWriteBOM) AStream.WriteBuffer(cVnUTF16LE.data(), static_cast<Int64>(cVnUTF16LE.size()));
    JSONWriter::Write(*this, AStream, JSONOutputKind::Utf16, 0, AFormatted, 0, false);
  } else if (ACodePage == cVnCodePageUTF8) {
    if (AWriteBOM) AStream.WriteBuffer(cVnUTF8.data(), static_cast<Int64>(cVnUTF8.size()));
    JSONWriter::Write(*this, AStream, JSONOutputKind::Utf8, 0, AFormatted, 0, false);
  } else {
    JSONWriter::Write(*this, AStream, JSONOutputKind::Converted, ACodePage, AFormatted, 0, false);
  }
}

UnicodeString TVnJSONDocument::GetAsJSON() { return TVnJSONBase::GetAsJSON(); }

void TVnJSONDocument::LoadFromStream(TStream& AStream, Word ACodePage, bool AFormURLEncoded) {
  // The fast road builds straight from the scan; a subclass may have its own forms of the
  // operations the handler calls, so it takes the handler's road.
  if (!AFormURLEncoded && typeid(*this) == typeid(TVnJSONDocument) && AStream.GetSize() != 0) {
    detail::LoadDocumentFast(*this, AStream, ACodePage);
    return;
  }
  TVnJSONBase::LoadFromStream(AStream, ACodePage, AFormURLEncoded);
}

IPtr<IVnJSONBase> TVnJSONDocument::GetRootValueIntf() {
  TVnJSONBase* root = GetRootValue();
  return root ? IPtr<IVnJSONBase>(static_cast<IVnJSONBase*>(root)) : IPtr<IVnJSONBase>();
}

IPtr<IVnJSONBase> TVnJSONDocument::CreateRootValueIntf(TVnJSONDataType AKind) {
  return IPtr<IVnJSONBase>(static_cast<IVnJSONBase*>(CreateRootValue(AKind)));
}

// ---- unit level ----

UnicodeString VnFormatJSON(std::u16string_view AText) {
  TVnJSONDocument doc(AText);
  return doc.GetAsJSON();
}

UnicodeString VnFormatJSON(const RawByteString& AText) {
  TVnJSONDocument doc(Utf8ToUnicode(AText));
  return doc.GetFormattedJSON();
}

}  // namespace vn
