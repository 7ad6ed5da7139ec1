// TreeBuilder: nodes of a load, made from the load's pool and joined without re-checking.
#include "dom/tree_builder.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "common/text_parser_scan.h"
#include "dom/ns_scope.h"
#include "dom/stored_text.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/sax_reader.h"

namespace vn::detail {

namespace {

// Does AText hold a double quote? Asked of attribute values, so eight units a step.
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

bool IsSchemaInstanceURI(std::u16string_view AValue) {
  return AValue.size() == std::size(cVnXSINamespaceURI) - 1 && SameText(AValue, cVnXSINamespaceURI);
}

std::u16string_view DecodeUtf8Bytes(std::string_view ABytes, std::u16string& AScratch) {
  const auto* p = reinterpret_cast<const uint8_t*>(ABytes.data());
  return DecodeUtf8(p, p + ABytes.size(), AScratch);
}

// Waiting children carry their kind in the two low bits of the pointer (nodes are 8-aligned).
constexpr uintptr_t kOtherKind = 0, kElementKind = 1, kCharKind = 2, kKindMask = 3;

uintptr_t Tagged(TVnDOMNode* ANode, TVnDOMNodeType AType) noexcept {
  uintptr_t kind = AType == ntElement ? kElementKind
                   : AType == ntText || AType == ntCDATA || AType == ntComment ? kCharKind
                                                                               : kOtherKind;
  return reinterpret_cast<uintptr_t>(ANode) | kind;
}

TVnDOMNode* Untagged(uintptr_t AItem) noexcept { return reinterpret_cast<TVnDOMNode*>(AItem & ~kKindMask); }

// The same failure for every event that arrives with no node to take it.
[[noreturn]] void NoNodeForEvent() {
  throw EVnXMLParseError(cVnXMLErrInvalidTextAtRoot, UnicodeString(_cVnXMLInvalidTextAtRoot));
}

}  // namespace

TreeBuilder::TreeBuilder(TVnDOMNode* ATarget)
    : FTarget(ATarget),
      FDocument(ATarget->FDOMDocument),
      FNames(TVnDOMNode::NameTableOf(ATarget->FDOMDocument)),
      FPool(NodePool::Create()) {
  // The target's arrays change: a pool it came from can't be dropped whole any more. Without a
  // document the names are not shared, and each node counts its own: no drop either.
  // A loaded target's own records become nodes first: the new children come after them.
  ATarget->Changing();
  if (!FNames) FPool->Touch();
  if (ATarget->FNodeType == ntElement) FTargetScope = static_cast<TVnDOMElement*>(ATarget)->FScope;
  SetCurrent(ATarget);
}

TreeBuilder::~TreeBuilder() {
  try {
    Finish();
  } catch (...) {
    // Out of memory while closing: what could not join stays with the pool.
  }
  FPool->Seal();
}

template <class T>
T* TreeBuilder::Make() {
  T* node = new (*FPool) T();
  node->FInPool = true;
  // Set now rather than by a walk when the node joins: the document its parent will have.
  node->FDOMDocument = FDocument;
  return node;
}

TVnDOMAttribute* TreeBuilder::MakeAttribute() { return Make<TVnDOMAttribute>(); }

void TreeBuilder::SetName(TVnDOMNode* ANode, std::u16string_view AName, const NameRec* AKnown) {
  if (!FNames) {
    ANode->FName.Set(AName);
    return;
  }
  if (AName.empty() || AName[0] == u':') {  // rare: left to the general rules
    ANode->FName.SetHeld(AName, *FNames, *FPool);
    return;
  }
  if (AKnown) {
    ANode->FName.TakeHeld(const_cast<NameRec*>(AKnown));
    return;
  }
  NameRec*& cached = FNameCache[(AName.size() * 31 + AName.front() * 7 + AName.back()) & (kNameCache - 1)];
  if (cached && cached->Length == AName.size() &&
      std::memcmp(cached->Chars, AName.data(), AName.size() * sizeof(char16_t)) == 0) {
    // The pool holds a count on every record it gave out, for as long as this builder runs.
    ANode->FName.TakeHeld(cached);
    return;
  }
  ANode->FName.SetHeld(AName, *FNames, *FPool);
  cached = const_cast<NameRec*>(static_cast<const NameRec*>(ANode->FName.Key()));
}

void TreeBuilder::SetCurrent(TVnDOMNode* ANode) {
  FCurrent = ANode;
  // Asked between every two tags: the elements of the load answer from their flag, the target
  // as its class does.
  FKeepsWhitespace = !ANode || (ANode == FTarget ? ANode->GetPreserveSpace()
                                                 : static_cast<TVnDOMElement*>(ANode)->FPreserveSpace);
}

TVnDOMNode* TreeBuilder::Current() {
  if (!FCurrent) NoNodeForEvent();
  return FCurrent;
}

// ---- start tags ----

void TreeBuilder::BeginElement(std::u16string_view AQName, const NameRec* AKnown) {
  Current();
  DropPending();
  FSchemaInstance = false;
  FMaybeSpace = false;
  FPending = Make<TVnDOMElement>();
  SetName(FPending, AQName, AKnown);
  FDeclaredURIs.clear();
}

TVnDOMAttribute* TreeBuilder::NewAttribute(std::u16string_view AQName, const NameRec* AKnown) {
  // The slot comes first: a node made is always found again, should anything below fail.
  FAttributes.push_back(nullptr);
  auto* a = Make<TVnDOMAttribute>();
  FAttributes.back() = a;
  a->FParent = FPending;
  SetName(a, AQName, AKnown);
  if (!FMaybeSpace) FMaybeSpace = MayBeXmlSpace(AQName);
  return a;
}

void TreeBuilder::AddAttribute(std::u16string_view AQName, std::u16string_view AValue, bool AMayHoldQuote,
                               const NameRec* AKnown) {
  TVnDOMAttribute* a = NewAttribute(AQName, AKnown);
  if (AMayHoldQuote && HasQuote(AValue))
    a->FNodeValue.AssignIn(*FPool, QuotesAsReferences(AValue));
  else
    a->FNodeValue.AssignIn(*FPool, AValue);
  if (AQName.size() >= 5 && a->IsNamespace()) FDeclaredURIs.emplace_back(AValue);
  if (!FSchemaInstance && IsSchemaInstanceURI(AValue)) FSchemaInstance = true;
}

void TreeBuilder::AddAttributeUtf8(std::u16string_view AQName, std::string_view AValue, bool AMayHoldQuote,
                                   bool AHigh, const NameRec* AKnown) {
  if (AHigh && !IsWellFormedUtf8(AValue)) {
    AddAttribute(AQName, DecodeUtf8Bytes(AValue, FDecoded), AMayHoldQuote, AKnown);
    return;
  }
  TVnDOMAttribute* a = NewAttribute(AQName, AKnown);
  if (AMayHoldQuote && AValue.find('"') != std::string_view::npos) {
    FQuoted.clear();
    for (char c : AValue) {
      if (c == '"')
        FQuoted += "&quot;";
      else
        FQuoted.push_back(c);
    }
    a->FNodeValue.AssignUtf8In(*FPool, FQuoted);
  } else {
    a->FNodeValue.AssignUtf8In(*FPool, AValue);
  }
  // "xmlns" or a prefix "xmlns": shorter names declare nothing, and most names are short
  if (AQName.size() >= 5 && a->IsNamespace()) FDeclaredURIs.emplace_back(DecodeUtf8Bytes(AValue, FDecoded));
  if (!FSchemaInstance && AValue.size() == std::size(cVnXSINamespaceURI) - 1 &&
      IsSchemaInstanceURI(DecodeUtf8Bytes(AValue, FDecoded)))
    FSchemaInstance = true;
}

void TreeBuilder::SealAttributes(TVnDOMElement* AElement) {
  std::erase(FAttributes, nullptr);
  if (!FAttributes.empty()) {
    AElement->FAttrs.reserve(static_cast<uint32_t>(FAttributes.size()), FPool);
    AElement->FAttrs.append_reserved(FAttributes.data(), static_cast<uint32_t>(FAttributes.size()));
  }
  FAttributes.clear();
}

void TreeBuilder::EnterElement() {
  TVnDOMNode* parent = Current();
  TVnDOMElement* element = FPending;
  SealAttributes(element);
  if (parent == FTarget) {
    AppendToTarget(element);
  } else {
    FWaiting.push_back(Tagged(element, ntElement));
  }
  FPending = nullptr;
  // Open before joining: should the namespaces fail to resolve, the element is closed like any
  // other, so its attributes reach its child list and are freed with the tree.
  FOpen.push_back({static_cast<uint32_t>(FWaiting.size()), static_cast<uint32_t>(FPushed.size())});
  FCurrent = element;
  Join(parent, element);
  if (FSchemaInstance && parent->GetNodeType() == ntDocument)
    static_cast<TVnDOMDocument*>(parent)->FUseSchemaInstance = true;
  SetCurrent(element);  // again: the space rule is the element's once it has joined
}

void TreeBuilder::Join(TVnDOMNode* AParent, TVnDOMElement* AElement) {
  // What SetParentNode does for a fresh element of this library's class, whose only children
  // so far are its attributes: a tree without a document works out no namespaces.
  AElement->FParent = AParent;
  if (FDocument) ResolveNamespaces(AParent, AElement);
  auto* parent = AParent->FNodeType == ntElement ? static_cast<TVnDOMElement*>(AParent) : nullptr;
  if (FMaybeSpace || AElement->GetCollation() != TVnXPathCollationASCIICI::Class()) {
    AElement->InheritPreserveSpace(parent);
  } else {
    // No "xml:space" of its own, and no children yet that the setting would reach.
    AElement->FPreserveSpace = parent ? parent->FPreserveSpace : DefaultPreserveCase;
  }
}

// ---- end tags ----

void TreeBuilder::EndElement() {
  // The name is not matched (the reader does not either), but an end tag never climbs above
  // the node being filled.
  if (Current() == FTarget) {
    SetCurrent(nullptr);
    NoNodeForEvent();
  }
  CloseElement();
}

void TreeBuilder::CloseElement() {
  auto* element = static_cast<TVnDOMElement*>(FCurrent);
  const uint32_t first = FOpen.back().Waiting;
  PopDeclarations(FOpen.back().Pushed);
  const uintptr_t* kids = FWaiting.data() + first;
  const auto kidCount = static_cast<uint32_t>(FWaiting.size() - first);
  const uint32_t attributeCount = element->FAttrs.size();
  if (attributeCount + kidCount) {
    uint32_t elements = 0, chars = 0;
    for (uint32_t i = 0; i < kidCount; ++i) {
      elements += (kids[i] & kKindMask) == kElementKind;
      chars += (kids[i] & kKindMask) == kCharKind;
    }
    // One block of the pool for the child array and both typed views; attributes lead the
    // child list, as they do in every element.
    using Array = PtrVector<TVnDOMNode>;
    const size_t childBytes = Array::BlockBytes(attributeCount + kidCount);
    const size_t elementBytes = elements ? Array::BlockBytes(elements) : 0;
    char* block = static_cast<char*>(
        FPool->Allocate(childBytes + elementBytes + (chars ? Array::BlockBytes(chars) : 0)));
    TVnDOMNode** all = element->FChildren.Adopt(block, attributeCount + kidCount);
    std::copy_n(element->FAttrs.begin(), attributeCount, all);
    TVnDOMNode** elems = elements ? element->FElems.Adopt(block + childBytes, elements) : nullptr;
    TVnDOMNode** texts = chars ? element->FChars.Adopt(block + childBytes + elementBytes, chars) : nullptr;
    for (uint32_t i = 0; i < kidCount; ++i) {
      TVnDOMNode* kid = Untagged(kids[i]);
      all[attributeCount + i] = kid;
      if ((kids[i] & kKindMask) == kElementKind)
        *elems++ = kid;
      else if ((kids[i] & kKindMask) == kCharKind)
        *texts++ = kid;
    }
  }
  FWaiting.resize(first);
  FOpen.pop_back();
  SetCurrent(element->ParentNode());
}

void TreeBuilder::DropPending() {
  TVnDOMElement* pending = std::exchange(FPending, nullptr);
  if (!pending) return;
  FPool->Touch();  // one of its nodes goes by itself
  // It never joined: it goes with its attributes, which its child list must hold for that.
  SealAttributes(pending);
  pending->FChildren.reserve(pending->FAttrs.size(), FPool);
  pending->FChildren.append_reserved(pending->FAttrs.begin(), pending->FAttrs.size());
  delete pending;
}

void TreeBuilder::Finish() {
  DropPending();
  while (!FOpen.empty()) CloseElement();
}

// ---- leaves ----

void TreeBuilder::AppendToTarget(TVnDOMNode* AChild) {
  FTarget->FChildren.push_back(AChild);
  if (FTarget->FNodeType == ntElement) {
    if (PtrVector<TVnDOMNode>* typed = static_cast<TVnDOMElement*>(FTarget)->TypedListFor(AChild)) typed->push_back(AChild);
  }
  AChild->FParent = FTarget;
  if (FTarget->FNodeType == ntDocument && AChild->FNodeType == ntElement) {
    auto* doc = static_cast<TVnDOMDocument*>(FTarget);
    if (!doc->FRootNode) doc->FRootNode = static_cast<TVnDOMElement*>(AChild);
  }
}

void TreeBuilder::Place(TVnDOMNode* ALeaf) {
  // A leaf made here, of this library's own class, already knows its document and has no
  // interface half or namespace to refresh: joining is all that SetParentNode would do.
  if (FCurrent == FTarget) {
    AppendToTarget(ALeaf);
  } else {
    FWaiting.push_back(Tagged(ALeaf, ALeaf->FNodeType));
    ALeaf->FParent = FCurrent;
  }
}

void TreeBuilder::AddText(std::u16string_view AStoredValue) {
  Current();
  auto* t = Make<TVnDOMText>();
  t->FNodeValue.AssignIn(*FPool, AStoredValue);
  Place(t);
}

void TreeBuilder::AddTextUtf8(std::string_view AStoredValue, bool AHigh) {
  Current();
  if (AHigh && !IsWellFormedUtf8(AStoredValue)) {
    AddText(DecodeUtf8Bytes(AStoredValue, FDecoded));
    return;
  }
  auto* t = Make<TVnDOMText>();
  t->FNodeValue.AssignUtf8In(*FPool, AStoredValue);
  Place(t);
}

void TreeBuilder::AddWhitespace(std::u16string_view AText) {
  Current();
  if (FKeepsWhitespace) AddText(AText);
}

void TreeBuilder::AddWhitespaceUtf8(std::string_view AText) {
  Current();
  if (FKeepsWhitespace) AddTextUtf8(AText, false);  // white space is ASCII
}

void TreeBuilder::AddCDATA(std::u16string_view AText) {
  if (Current()->GetNodeType() != ntElement) throw EInvalidCast(cRtlInvalidCast);
  auto* c = Make<TVnDOMCDATA>();
  c->FNodeValue.AssignIn(*FPool, AText);
  Place(c);
}

void TreeBuilder::AddCDATAUtf8(std::string_view AText, bool AHigh) {
  // Sections often hold long runs of text beyond ASCII, which every read would decode again:
  // such a section is decoded once, here.
  if (AHigh) {
    AddCDATA(DecodeUtf8Bytes(AText, FDecoded));
    return;
  }
  if (Current()->GetNodeType() != ntElement) throw EInvalidCast(cRtlInvalidCast);
  auto* c = Make<TVnDOMCDATA>();
  c->FNodeValue.AssignUtf8In(*FPool, AText);
  Place(c);
}

void TreeBuilder::AddComment(std::u16string_view AText) {
  Current();
  auto* c = Make<TVnDOMComment>();
  c->FNodeValue.AssignIn(*FPool, AText);
  Place(c);
}

void TreeBuilder::AddInstruction(std::u16string_view ATarget, std::u16string_view AData) {
  Current();
  auto* pi = Make<TVnDOMProcessingInstruction>();
  SetName(pi, ATarget);
  pi->FData.AssignIn(*FPool, AData);
  Place(pi);
}

}  // namespace vn::detail
