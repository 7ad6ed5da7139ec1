// Loading and saving through IDOMPersist, and replaceChild: shared by all kinds of node.
#include "dom_adapter/persist.h"

#include "vnxml/common/code_page.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom_adapter.h"

namespace vn::detail {

namespace {
Word OutputCodePage(TVnDOMNode* ANode) {
  TVnDOMDocument* doc = ANode->Document();
  return doc ? VnCodePage(doc->GetEncoding()) : Word{65001};
}
}  // namespace

Integer AsyncLoadState(TVnDOMNode* ANode) {
  auto* doc = CastObject<TVnDOMDocument>(ANode);
  return doc ? doc->GetLoadState() : lsUninitialized;
}

bool Load(TVnDOMNode* ANode, std::u16string_view ASource) {
  auto* doc = CastObject<TVnDOMDocument>(ANode);
  if (!doc) {
    ANode->SetInnerXML(ASource);
    return true;
  }
  if (!ASource.empty() && ASource.front() == u'<') {
    doc->LoadFromXML(ASource);
    return true;
  }
  if (!FileExists(ASource)) return false;
  doc->LoadFromFile(ASource, fmShareDenyNone);
  return true;
}

void SaveToStream(TVnDOMNode* ANode, TStream& AStream) {
  ANode->SaveToStream(AStream, OutputCodePage(ANode), false);
}

void SaveToFile(TVnDOMNode* ANode, std::u16string_view AFileName) {
  TFileStream file(AFileName, fmCreate);
  SaveToStream(ANode, file);
}

void LoadFromInterfaceStream(TVnDOMNode* ANode, const IPtr<IStream>& AStream) {
  if (!AStream) throw EInvalidCast(cRtlInvalidCast);
  UInt64 size = 0;
  AStream->Seek(0, 2, &size);
  AStream->Seek(0, 0, nullptr);
  TVnMemoryStream buffer(static_cast<Int64>(size));
  buffer.SetSize(static_cast<Int64>(size));
  uint32_t read = 0;
  if (size > UINT32_MAX || AStream->Read(buffer.GetMemory(), static_cast<uint32_t>(size), &read) < 0 ||
      read != size)
    throw EVnDomException(cVnDomStreamIncomplete);
  ANode->LoadFromStream(buffer, Word{65001});
}

void SaveToInterfaceStream(TVnDOMNode* ANode, const IPtr<IStream>& AStream) {
  if (!AStream) throw EInvalidCast(cRtlInvalidCast);
  TVnMemoryStream buffer;
  SaveToStream(ANode, buffer);
  AStream->Write(buffer.GetMemory(), static_cast<uint32_t>(buffer.GetSize()), nullptr);
}

void ReplaceChild(TVnDOMNode* AParent, TVnDOMNode* ANew, TVnDOMNode* AOld) {
  if (!ANew || !AOld) throw EInvalidCast(cRtlInvalidCast);
  TVnDOMNode* before = AOld->PreviousSibling();
  const TVnDOMPosition where = before ? rdpAfter : rdpFirst;
  AParent->RemoveChild(AOld);
  try {
    AParent->AddChild(ANew, before, where);
  } catch (...) {
    // A refused new child leaves the tree as it was (the caller's reference kept AOld alive).
    AParent->AddChild(AOld, before, where);
    throw;
  }
}

}  // namespace vn::detail
