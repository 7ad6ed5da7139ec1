// The leaves: character data with its editing operations, attributes with their namespace
// links, and processing instructions. Text and attribute values are kept escaped.
#include <iterator>

#include "dom/node_extras.h"
#include "dom/ns_scope.h"
#include "dom/stored_text.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_messages.h"
#include "vnxml/xml_escape.h"

namespace vn {

namespace {
constexpr char16_t cXMLNamespaceURI[] = u"http://www.w3.org/XML/1998/namespace";

// One-based offsets clipped to the value, as the platform's Copy and Delete clip them.
void ClipRange(const UnicodeString& AValue, Integer AOffset, Integer ACount, size_t& AStart, size_t& ALength) {
  Int64 start = AOffset < 1 ? 0 : static_cast<Int64>(AOffset) - 1;
  Int64 size = static_cast<Int64>(AValue.size());
  if (start > size) start = size;
  Int64 count = ACount < 0 ? 0 : ACount;
  if (count > size - start) count = size - start;
  AStart = static_cast<size_t>(start);
  ALength = static_cast<size_t>(count);
}
}  // namespace

// ---- character data ----

TVnDOMCharacterData::TVnDOMCharacterData() {
  FNodeType = ntText;
  static constexpr detail::NameRec kName = detail::FixedName(u"#text", 5);
  SetFixedName(kName);
}

UnicodeString TVnDOMCharacterData::GetNodeValue() const { return detail::DecodeEscaped(FNodeValue); }

void TVnDOMCharacterData::SetNodeValue(std::u16string_view AValue) {
  Changing();
  FNodeValue = VnStrToXML(AValue, true, true);
}

std::unique_ptr<TVnDOMNode> TVnDOMCharacterData::CreateClone() const {
  auto clone = TVnDOMNode::CreateClone();
  static_cast<TVnDOMCharacterData*>(clone.get())->FNodeValue = FNodeValue;
  return clone;
}

UnicodeString TVnDOMCharacterData::Substring(Integer AOffset, Integer ACount) const {
  UnicodeString v = GetNodeValue();
  size_t start, len;
  ClipRange(v, AOffset, ACount, start, len);
  return v.substr(start, len);
}

void TVnDOMCharacterData::AppendStr(std::u16string_view AText) {
  UnicodeString v = GetNodeValue();
  v += AText;
  SetNodeValue(v);
}

void TVnDOMCharacterData::InsertStr(Integer AOffset, std::u16string_view AText) {
  UnicodeString v = GetNodeValue();
  size_t start, len;
  ClipRange(v, AOffset, 0, start, len);
  v.insert(start, AText);
  SetNodeValue(v);
}

void TVnDOMCharacterData::DeleteStr(Integer AOffset, Integer ACount) {
  UnicodeString v = GetNodeValue();
  size_t start, len;
  ClipRange(v, AOffset, ACount, start, len);
  v.erase(start, len);
  SetNodeValue(v);
}

void TVnDOMCharacterData::ReplaceStr(Integer AOffset, Integer ACount, std::u16string_view AText) {
  UnicodeString v = GetNodeValue();
  size_t start, len;
  ClipRange(v, AOffset, ACount, start, len);
  v.replace(start, len, AText);
  SetNodeValue(v);
}

TVnDOMText::TVnDOMText() = default;

TVnDOMText* TVnDOMText::SplitText(Integer AOffset) {
  if (!FParent) throw EVnDomException(cVnDomSplitNeedsParent);
  UnicodeString v = GetNodeValue();
  size_t start, len;
  ClipRange(v, 1, AOffset, start, len);
  auto* rest = static_cast<TVnDOMText*>(ParentNode()->AddChild(TVnDOMText::StaticClass(), this, rdpAfter));
  rest->SetNodeValue(std::u16string_view(v).substr(len));
  SetNodeValue(std::u16string_view(v).substr(0, len));
  return rest;
}

TVnDOMComment::TVnDOMComment() {
  FNodeType = ntComment;
  static constexpr detail::NameRec kName = detail::FixedName(u"#comment", 8);
  SetFixedName(kName);
}

UnicodeString TVnDOMComment::GetNodeValue() const { return FNodeValue.str(); }
void TVnDOMComment::SetNodeValue(std::u16string_view AValue) {
  Changing();
  FNodeValue.assign(AValue);
}

TVnDOMCDATA::TVnDOMCDATA() {
  FNodeType = ntCDATA;
  static constexpr detail::NameRec kName = detail::FixedName(u"#cdata-section", 14);
  SetFixedName(kName);
}

UnicodeString TVnDOMCDATA::GetNodeValue() const { return FNodeValue.str(); }
void TVnDOMCDATA::SetNodeValue(std::u16string_view AValue) {
  Changing();
  FNodeValue.assign(AValue);
}

// ---- attributes ----

TVnDOMAttribute::TVnDOMAttribute() { FNodeType = ntAttribute; }

UnicodeString TVnDOMAttribute::GetNodeValue() const { return detail::DecodeEscaped(FNodeValue); }

void TVnDOMAttribute::SetNodeValue(std::u16string_view AValue) {
  Changing();
  FNodeValue = VnStrToXML(AValue, false, true);
  if (IsNamespace()) detail::NamespacesChanged(FDOMDocument);
}

void TVnDOMAttribute::SetStoredValue(std::u16string_view AValue) {
  Changing();
  FNodeValue.assign(AValue);
  if (IsNamespace()) detail::NamespacesChanged(FDOMDocument);
}

bool TVnDOMAttribute::IsNamespace() const {
  std::u16string_view prefix = FName.Prefix();
  std::u16string_view word = prefix.empty() ? FName.Local() : prefix;
  // asked for every attribute of a load: most fail on the length alone
  return word.size() == 5 && SameText(word, u"xmlns");
}

UnicodeString TVnDOMAttribute::NamespacePrefix() const {
  VnAssert(IsNamespace(), cVnDomNotANamespace);
  return FName.Prefix().empty() ? UnicodeString() : UnicodeString(FName.Local());
}

TVnDOMElement* TVnDOMAttribute::OwnerElement() const {
  return FParent ? CastObject<TVnDOMElement>(FParent) : nullptr;
}

TVnDOMAttribute* TVnDOMAttribute::NextAttribute() const {
  TVnDOMElement* e = OwnerElement();
  return e ? static_cast<TVnDOMAttribute*>(e->GetAttributes()->Next(this)) : nullptr;
}

TVnDOMAttribute* TVnDOMAttribute::PreviousAttribute() const {
  TVnDOMElement* e = OwnerElement();
  return e ? static_cast<TVnDOMAttribute*>(e->GetAttributes()->Previous(this)) : nullptr;
}

UnicodeString TVnDOMAttribute::GetNamespaceURI() const {
  if (FNamespace) return FNamespace->GetNodeValue();
  if (FName.Prefix() == u"xml") return cXMLNamespaceURI;
  if (FParent) return {};
  if (detail::NodeExtras* x = ExtrasIfAny()) return x->NamespaceURI;
  return {};
}

void TVnDOMAttribute::SetNamespaceURI(std::u16string_view AURI) {
  if (TVnDOMElement* owner = OwnerElement()) {
    if (FNamespaceSet && ExtrasIfAny() && !owner->FindScopeNamespace(ExtrasIfAny()->NamespaceURI)) {
      auto decl = std::make_unique<TVnDOMAttribute>();
      std::u16string_view prefix = FName.Prefix();
      decl->SetQualifiedName(prefix.empty() ? UnicodeString(u"xmlns") : u"xmlns:" + UnicodeString(prefix));
      decl->SetNodeValue(AURI);
      FNamespace = static_cast<TVnDOMAttribute*>(owner->AddChild(decl.get(), this, rdpBefore));
      decl.release();
    }
    if (detail::NodeExtras* x = ExtrasIfAny()) x->NamespaceURI.clear();
    FNamespaceSet = false;
  } else {
    Extras().NamespaceURI.assign(AURI);
    FNamespaceSet = true;
  }
}

void TVnDOMAttribute::SetPrefix(std::u16string_view AValue) {
  bool wasNamespace = IsNamespace();
  TVnDOMNode::SetPrefix(AValue);
  // lookups of declarations by name remember their answers until a declaration's name changes
  if (wasNamespace || IsNamespace()) detail::NamespacesChanged(FDOMDocument);
  RefreshNamespacesSelf();
}

void TVnDOMAttribute::RefreshNamespacesSelf() {
  TVnDOMElement* owner = OwnerElement();
  if (!owner) {
    FNamespace = nullptr;
    return;
  }
  if (!owner->FScope) {  // nothing declared in scope
    FNamespace = nullptr;
    return;
  }
  std::u16string_view prefix = FName.Prefix();
  if (prefix.empty()) {
    FNamespace = owner->FindScopeDeclaration(u"xmlns");
    return;
  }
  // "xmlns:" and the prefix, built on the stack for the usual short prefixes
  char16_t buffer[64];
  if (prefix.size() + 6 <= std::size(buffer)) {
    std::char_traits<char16_t>::copy(buffer, u"xmlns:", 6);
    std::char_traits<char16_t>::copy(buffer + 6, prefix.data(), prefix.size());
    FNamespace = owner->FindScopeDeclaration(std::u16string_view(buffer, prefix.size() + 6));
  } else {
    FNamespace = owner->FindScopeDeclaration(u"xmlns:" + UnicodeString(prefix));
  }
}

void TVnDOMAttribute::SetQualifiedName(std::u16string_view AName) {
  bool wasNamespace = IsNamespace();
  TVnDOMNode::SetQualifiedName(AName);
  if (wasNamespace || IsNamespace()) detail::NamespacesChanged(FDOMDocument);
  if (FDestroying) return;
  if (FDOMDocument && FDOMDocument->GetLoadState() == lsLoading) return;
  if (TVnDOMElement* owner = OwnerElement())
    if (wasNamespace || IsNamespace()) owner->RefreshNamespaces();
}

void TVnDOMAttribute::SetParentNode(TVnDOMObject* AParent) {
  TVnDOMObject* old = FParent;
  if (!FDestroying && old && !AParent) {
    UnicodeString uri = GetNamespaceURI();
    Extras().NamespaceURI = std::move(uri);
    FNamespaceSet = true;
  }
  TVnDOMNode::SetParentNode(AParent);
  if (FDestroying) return;
  detail::NodeExtras* x = ExtrasIfAny();
  if (!old && AParent && CastObject<TVnDOMElement>(AParent) && FNamespaceSet && x && !x->NamespaceURI.empty()) {
    UnicodeString uri = x->NamespaceURI;
    SetNamespaceURI(uri);
  }
}

std::unique_ptr<TVnDOMNode> TVnDOMAttribute::CreateClone() const {
  auto clone = TVnDOMNode::CreateClone();
  static_cast<TVnDOMAttribute*>(clone.get())->FNodeValue = FNodeValue;
  return clone;
}

// ---- processing instructions ----

TVnDOMProcessingInstruction::TVnDOMProcessingInstruction() { FNodeType = ntProcessingInstruction; }

std::unique_ptr<TVnDOMNode> TVnDOMProcessingInstruction::CreateClone() const {
  auto clone = TVnDOMNode::CreateClone();
  static_cast<TVnDOMProcessingInstruction*>(clone.get())->FData = FData;
  return clone;
}

}  // namespace vn
