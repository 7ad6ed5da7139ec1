// TVnSAXXMAttributes and TVnSAXNamespaceList: what a start tag carries and the declarations in force.
#include <cstring>

#include "vnxml/common/sysutils.h"
#include "vnxml/sax_reader.h"

namespace vn {

namespace {

// Names compare as the platform's SameText: A-Z folded, nothing else.
bool SameName(std::u16string_view A, std::u16string_view B) {
  if (A.size() != B.size()) return false;
  for (size_t i = 0; i < A.size(); ++i) {
    char16_t a = A[i], b = B[i];
    if (a == b) continue;
    if (a >= u'A' && a <= u'Z') a = static_cast<char16_t>(a + 32);
    if (b >= u'A' && b <= u'Z') b = static_cast<char16_t>(b + 32);
    if (a != b) return false;
  }
  return true;
}

inline void AssignChanged(VnXMLString& ATo, std::u16string_view AFrom) {
  if (ATo.size() == AFrom.size() &&
      (AFrom.empty() || std::memcmp(ATo.data(), AFrom.data(), AFrom.size() * sizeof(char16_t)) == 0))
    return;
  ATo.assign(AFrom);
}

const VnXMLString& EmptyXMLString() {
  static const VnXMLString empty;
  return empty;
}

}  // namespace

// ---- TVnSAXXMAttributes ----

TVnSAXXMAttributes::TVnSAXXMAttributes() { SetAutoDestroy(false); }

TVnSAXXMAttributes::~TVnSAXXMAttributes() {
  Clear();
  while (FSpare) delete std::exchange(FSpare, FSpare->Next);
}

void TVnSAXXMAttributes::Add(std::u16string_view ALocalName, std::u16string_view AQName, std::u16string_view AURI,
                             std::u16string_view AValue, TVnSAXAttributeType AAttrType) {
  PVnSAXXMAttribute rec = FSpare;
  if (rec)
    FSpare = rec->Next;
  else
    rec = new TVnSAXXMAttribute;
  // Assigning into a reused record keeps its strings' capacity: no allocation once warm. A
  // record serves the attribute at the same place in the tag before, so names and URIs often
  // stand there already.
  AssignChanged(rec->LocalName, ALocalName);
  AssignChanged(rec->QName, AQName);
  AssignChanged(rec->URI, AURI);
  rec->Value.assign(AValue);
  rec->AttrType = AAttrType;
  rec->Idx = FCount;
  rec->Prev = FLast;
  rec->Next = nullptr;
  if (FLast)
    FLast->Next = rec;
  else
    FFirst = rec;
  FLast = rec;
  ++FCount;
}

void TVnSAXXMAttributes::Clear() {
  if (FLast) {
    FLast->Next = FSpare;
    FSpare = FFirst;
  }
  FFirst = FLast = FCurrent = nullptr;
  FCount = 0;
}

PVnSAXXMAttribute TVnSAXXMAttributes::GetAttribute(Integer AIndex) {
  if (AIndex < 0 || AIndex >= FCount)
    throw EVnXMLParseError(cVnXMLErrListIndexOutOfBounds, _cVnXMLListIndexOutOfBounds1, {AIndex});
  for (FCurrent = FFirst; FCurrent->Idx != AIndex; FCurrent = FCurrent->Next) {
  }
  return FCurrent;
}

PVnSAXXMAttribute TVnSAXXMAttributes::FindQName(std::u16string_view AQName) {
  for (FCurrent = FFirst; FCurrent; FCurrent = FCurrent->Next)
    if (SameName(FCurrent->QName, AQName)) return FCurrent;
  return nullptr;
}

PVnSAXXMAttribute TVnSAXXMAttributes::FindName(std::u16string_view AURI, std::u16string_view ALocalName,
                                               bool AWildcard) {
  bool any = AWildcard && AURI == u"*";
  for (FCurrent = FFirst; FCurrent; FCurrent = FCurrent->Next)
    if ((any || SameName(FCurrent->URI, AURI)) && SameName(FCurrent->LocalName, ALocalName)) return FCurrent;
  return nullptr;
}

Integer TVnSAXXMAttributes::GetIndex(std::u16string_view AQName) {
  PVnSAXXMAttribute rec = FindQName(AQName);
  return rec ? rec->Idx : -1;
}

Integer TVnSAXXMAttributes::GetIndex(std::u16string_view AURI, std::u16string_view ALocalName) {
  PVnSAXXMAttribute rec = FindName(AURI, ALocalName, false);
  return rec ? rec->Idx : -1;
}

TVnSAXAttributeType TVnSAXXMAttributes::GetType(std::u16string_view AQName) {
  if (PVnSAXXMAttribute rec = FindQName(AQName)) return rec->AttrType;
  throw EVnXMLParseError(cVnXMLErrListIndexOutOfBounds, _cVnXMLListIndexOutOfBounds2, {AQName});
}

TVnSAXAttributeType TVnSAXXMAttributes::GetType(std::u16string_view AURI, std::u16string_view ALocalName) {
  if (PVnSAXXMAttribute rec = FindName(AURI, ALocalName, false)) return rec->AttrType;
  throw EVnXMLParseError(cVnXMLErrListIndexOutOfBounds, _cVnXMLListIndexOutOfBounds3, {AURI, ALocalName});
}

const VnXMLString& TVnSAXXMAttributes::GetValue(std::u16string_view AQName) {
  if (PVnSAXXMAttribute rec = FindQName(AQName)) return rec->Value;
  throw EVnXMLParseError(cVnXMLErrListIndexOutOfBounds, _cVnXMLListIndexOutOfBounds2, {AQName});
}

const VnXMLString& TVnSAXXMAttributes::GetValue(std::u16string_view AURI, std::u16string_view ALocalName) {
  if (PVnSAXXMAttribute rec = FindName(AURI, ALocalName, true)) return rec->Value;
  throw EVnXMLParseError(cVnXMLErrListIndexOutOfBounds, _cVnXMLListIndexOutOfBounds3, {AURI, ALocalName});
}

// ---- TVnSAXNamespaceList ----

namespace {
// Short lists are scanned; the index pays only when many declarations are in force.
constexpr size_t cNamespaceScanLimit = 8;

void FoldPrefix(std::u16string_view APrefix, std::u16string& AKey) {
  AKey.assign(APrefix);
  for (char16_t& c : AKey)
    if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - 32);
}
}  // namespace

void TVnSAXNamespaceList::AddURI(Integer ALevel, std::u16string_view APrefix, std::u16string_view AURI) {
  TVnSAXNamespace& ns = FList.emplace_back();
  ns.Level = ALevel;
  ns.Prefix.assign(APrefix);
  ns.URI.assign(AURI);
  FoldPrefix(APrefix, FKey);
  FByPrefix[FKey].push_back(static_cast<uint32_t>(FList.size() - 1));
  if (APrefix.empty()) FDefault = static_cast<int64_t>(FList.size() - 1);
  FLastFound = -1;
  if (FOwner) {
    if (IPtr<IVnSAXContentHandler> handler = FOwner->GetContentHandler()) handler->StartPrefixMapping(APrefix, AURI);
  }
}

int64_t TVnSAXNamespaceList::Find(std::u16string_view APrefix) const {
  if (APrefix.empty()) return FDefault;
  // While the list stands still, the newest declaration of a prefix stays where it was found.
  if (FLastFound >= 0 && SameName(FList[static_cast<size_t>(FLastFound)].Prefix, APrefix)) return FLastFound;
  int64_t found = -1;
  if (FList.size() <= cNamespaceScanLimit) {
    for (size_t i = FList.size(); i-- > 0;)
      if (SameName(FList[i].Prefix, APrefix)) {
        found = static_cast<int64_t>(i);
        break;
      }
  } else {
    found = FindIndexed(APrefix);
  }
  if (found >= 0) FLastFound = found;
  return found;
}

int64_t TVnSAXNamespaceList::FindIndexed(std::u16string_view APrefix) const {
  FoldPrefix(APrefix, FKey);
  auto it = FByPrefix.find(FKey);
  return it == FByPrefix.end() || it->second.empty() ? -1 : static_cast<int64_t>(it->second.back());
}

const VnXMLString& TVnSAXNamespaceList::GetURI(std::u16string_view APrefix) const {
  const int64_t i = Find(APrefix);
  return i < 0 ? EmptyXMLString() : FList[static_cast<size_t>(i)].URI;
}

PVnSAXNamespace TVnSAXNamespaceList::GetNamespace(std::u16string_view APrefix) {
  const int64_t i = Find(APrefix);
  return i < 0 ? nullptr : &FList[static_cast<size_t>(i)];
}

void TVnSAXNamespaceList::RemoveLevel(Integer ALevel) {
  IPtr<IVnSAXContentHandler> handler;
  while (!FList.empty() && FList.back().Level >= ALevel) {
    if (FOwner && !handler) handler = FOwner->GetContentHandler();
    // The record goes first, so a handler that raises leaves the list consistent.
    VnXMLString prefix = std::move(FList.back().Prefix);
    FList.pop_back();
    FLastFound = -1;
    FoldPrefix(prefix, FKey);
    auto it = FByPrefix.find(FKey);
    if (it != FByPrefix.end()) {
      it->second.pop_back();
      if (prefix.empty()) FDefault = it->second.empty() ? -1 : static_cast<int64_t>(it->second.back());
      if (it->second.empty()) FByPrefix.erase(it);
    }
    if (handler) handler->EndPrefixMapping(prefix);
  }
}

void TVnSAXNamespaceList::Clear() {
  FList.clear();
  FByPrefix.clear();
  FDefault = FLastFound = -1;
}

}  // namespace vn
