// TreeBuilder: the content a document load left on its tape, made into nodes on first access.
// The builder takes up an element where the load left it (same pool, same declarations in
// force) and is fed the records as the reader fed the load, so an opened element is the one an
// eager load would have made.
#include <algorithm>
#include <memory>
#include <vector>

#include "common/text_parser_scan.h"
#include "dom/load_tape.h"
#include "dom/ns_scope.h"
#include "dom/tree_builder.h"
#include "vnxml/common/sysutils.h"

namespace vn::detail {

namespace {

using Tape = LoadTape;

// The prefix a declaration binds, as the reader reads it: "xmlns" binds the empty one.
std::u16string FoldedDeclaredPrefix(const TVnDOMAttribute* AAttr) {
  std::u16string key(AAttr->PrefixView().empty() ? std::u16string_view() : AAttr->LocalNameView());
  for (char16_t& c : key)
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
  return key;
}

bool IsAttributeRecord(const char* APosition) {
  const Tape::Kind kind = reinterpret_cast<const Tape::Head*>(APosition)->GetKind();
  return kind == Tape::kAttr || kind == Tape::kAttrUtf8;
}

// Passes over the attributes of the element whose Begin record was just read; returns where
// its content starts (resolved).
const char* SkipAttributes(const char* APosition, const char* AContentEnd) {
  const char* p = Tape::Resolve(APosition);
  while (p != AContentEnd && IsAttributeRecord(p)) {
    Tape::Next(p);
    p = Tape::Resolve(p);
  }
  return p;
}

}  // namespace

TreeBuilder::TreeBuilder(TVnDOMElement* AElement, Saved& AStacks)
    : FTarget(AElement->FDOMDocument),
      FDocument(AElement->FDOMDocument),
      FNames(TVnDOMNode::NameTableOf(AElement->FDOMDocument)),
      FPool(NodePool::Of(AElement)) {
  FPool->Reopen();
  SwapStacks(AStacks);
  try {
    MoveTo(AElement);
  } catch (...) {
    FPool->Seal();
    throw;
  }
  FOpen.push_back({0, static_cast<uint32_t>(FPushed.size())});
  SetCurrent(AElement);
}

void TreeBuilder::SwapStacks(Saved& AStacks) noexcept {
  std::swap(FByName, AStacks.ByName);
  std::swap(FByPrefix, AStacks.ByPrefix);
  std::swap(FPushed, AStacks.PushedList);
  std::swap(FVisibleEmpty, AStacks.VisibleEmpty);
  std::swap(FSeq, AStacks.Seq);
  std::swap(FGeneration, AStacks.Generation);
  std::swap(FPath, AStacks.Path);
}

void TreeBuilder::MoveTo(TVnDOMElement* AElement) {
  TVnDOMNode* parent = AElement->ParentNode();
  size_t keep = 0;
  if (parent && parent->FNodeType == ntElement) {
    // a walk opens children of what it opened last, or of an element above it
    keep = FPath.size();
    while (keep > 0 && FPath[keep - 1].first != parent) --keep;
    if (keep == 0) {
      std::vector<TVnDOMElement*> chain;
      for (TVnDOMNode* n = parent; n && n->FNodeType == ntElement; n = n->ParentNode())
        chain.push_back(static_cast<TVnDOMElement*>(n));
      if (!FPath.empty()) PopDeclarations(FPath.front().second);
      FPath.clear();
      for (size_t k = chain.size(); k-- > 0;) EnterStacks(chain[k]);
      keep = FPath.size();
    }
  }
  if (FPath.size() > keep) {
    PopDeclarations(FPath[keep].second);
    FPath.resize(keep);
  }
  EnterStacks(AElement);
}

void TreeBuilder::EnterStacks(TVnDOMElement* AElement) {
  FPath.emplace_back(AElement, static_cast<uint32_t>(FPushed.size()));
  // The reader's view: each declaration as read, in the order of the start tag.
  const char* p = FPool->Tape()->Begins.at(AElement);
  const auto* begin = reinterpret_cast<const Tape::Begin*>(Tape::Next(p));
  const char* end = Tape::Resolve(begin->ContentEnd);
  p = Tape::Resolve(p);
  for (uint32_t j = 0; p != end && IsAttributeRecord(p); ++j) {
    const Tape::Head* h = Tape::Next(p);
    p = Tape::Resolve(p);
    auto* a = static_cast<TVnDOMAttribute*>(AElement->FAttrs[j]);
    if (!a->IsNamespace()) continue;
    UnicodeString read;
    if (h->GetKind() == Tape::kAttr) {
      read = UnicodeString(Tape::Units(h));
    } else {
      std::string_view bytes = Tape::Bytes(h);
      const auto* b = reinterpret_cast<const uint8_t*>(bytes.data());
      read = UnicodeString(DecodeUtf8(b, b + bytes.size(), FDecoded));
    }
    auto& stack = FByPrefix[FoldedDeclaredPrefix(a)];
    stack.push_back(read.find(u'&') == read.npos ? std::move(read) : a->GetNodeValue());
    FPushed.push_back({nullptr, &stack});
  }
  // The load's stacks: an element with a scope of its own pushed its own declarations.
  TVnDOMNode* parent = AElement->ParentNode();
  const NsScope* above = parent && parent->FNodeType == ntElement ? static_cast<TVnDOMElement*>(parent)->FScope : nullptr;
  if (AElement->FScope && AElement->FScope != above)
    for (TVnDOMAttribute* a : AElement->FScope->Own) PushDeclaration(a);
}

void TreeBuilder::Replay(const char* AFrom, const char* ATo, bool AWhole) {
  std::vector<const char*> ends;  // where the content of each element entered here ends
  const char* end = Tape::Resolve(ATo);
  const char* p = Tape::Resolve(AFrom);
  for (;;) {
    while (!ends.empty() && p == ends.back()) {
      ends.pop_back();
      EndElement();
    }
    if (ends.empty() && p == end) break;
    const char* record = p;
    const Tape::Head* h = Tape::Next(p);
    switch (h->GetKind()) {
      case Tape::kBegin: {
        const auto* begin = reinterpret_cast<const Tape::Begin*>(h);
        const char* contentEnd = Tape::Resolve(begin->ContentEnd);
        // The records' names are the pool's already: the nodes take them without a look-up.
        BeginElement(Tape::NameOf(h), begin->Name);
        for (p = Tape::Resolve(p); p != contentEnd && IsAttributeRecord(p); p = Tape::Resolve(p)) {
          const Tape::Head* a = Tape::Next(p);
          const bool mayHoldQuote = a->Flags() & Tape::kMayHoldQuote;
          const NameRec* name = reinterpret_cast<const Tape::Named*>(a)->Name;
          if (a->GetKind() == Tape::kAttr)
            AddAttribute(Tape::NameOf(a), Tape::Units(a), mayHoldQuote, name);
          else
            AddAttributeUtf8(Tape::NameOf(a), Tape::Bytes(a), mayHoldQuote, a->Flags() & Tape::kHigh, name);
        }
        if (h->Flags() & Tape::kJoinFails) {
          try {
            EnterElement();
          } catch (...) {
            // the load failed here and ended: the element stays as far as it joined
          }
        } else {
          EnterElement();
        }
        if (p == contentEnd) {
          EndElement();
        } else if (AWhole || (contentEnd > p && contentEnd - p <= SmallContentBytes)) {
          // a small part is made at once: its nodes then lie beside their element, as a walk
          // reads them
          ends.push_back(contentEnd);
        } else {
          LeaveOnTape(static_cast<TVnDOMElement*>(FCurrent), record, true);
          p = contentEnd;
          EndElement();
        }
        break;
      }
      case Tape::kText:
        AddText(Tape::Units(h));
        break;
      case Tape::kTextUtf8:
        AddTextUtf8(Tape::Bytes(h), h->Flags() & Tape::kHigh);
        break;
      case Tape::kSpace:
        AddWhitespace(Tape::Units(h));
        break;
      case Tape::kSpaceUtf8:
        AddWhitespaceUtf8(Tape::Bytes(h));
        break;
      case Tape::kCData:
        AddCDATA(Tape::Units(h));
        break;
      case Tape::kCDataUtf8:
        AddCDATAUtf8(Tape::Bytes(h), h->Flags() & Tape::kHigh);
        break;
      case Tape::kComment:
        AddComment(Tape::Units(h));
        break;
      case Tape::kInstruction:
        AddInstruction(Tape::NameOf(h), Tape::Units(h));
        break;
      default:  // attributes are read with their Begin; nothing else is written
        break;
    }
    p = Tape::Resolve(p);
  }
}

void TreeBuilder::LeaveOnTape(TVnDOMElement* AElement, const char* ABegin, bool AContent) {
  if (!AContent) return;
  FPool->Tape()->Begins.emplace(AElement, ABegin);
  AElement->FLazy = true;
  ++FPool->Tape()->Lazy;
}

void TreeBuilder::OpenElement(TVnDOMElement* AElement, bool AWhole) {
  NodePool* pool = NodePool::Of(AElement);
  AElement->FLazy = false;
  --pool->Tape()->Lazy;
  const char* p = pool->Tape()->Begins.at(AElement);
  const auto* begin = reinterpret_cast<const Tape::Begin*>(Tape::Next(p));
  const char* end = Tape::Resolve(begin->ContentEnd);
  // The stacks of the last open are taken up; should this open fail, they are dropped.
  std::shared_ptr<Saved> stacks = std::static_pointer_cast<Saved>(std::move(pool->Tape()->Resume));
  if (!stacks) stacks = std::make_shared<Saved>();
  TreeBuilder builder(AElement, *stacks);
  builder.Replay(SkipAttributes(p, end), end, AWhole);
  builder.CloseElement();
  builder.SwapStacks(*stacks);
  if (pool->Tape()->Lazy)
    pool->Tape()->Resume = std::move(stacks);
  else
    pool->DropTape();  // nothing left to open
}

void TreeBuilder::OpenAll(TVnDOMNode* ARoot) {
  std::vector<TVnDOMNode*> stack{ARoot};
  while (!stack.empty()) {
    TVnDOMNode* n = stack.back();
    stack.pop_back();
    if (n->FLazy) {
      OpenElement(static_cast<TVnDOMElement*>(n), true);
      continue;
    }
    for (TVnDOMNode* c : n->FChildren)
      if (c->FNodeType == ntElement) stack.push_back(c);
  }
}

const char* TreeBuilder::DeferredBegin(const TVnDOMElement* AElement, const LoadTape** ATape) noexcept {
  if (!AElement->FLazy) return nullptr;
  const LoadTape* tape = NodePool::Of(AElement)->Tape();
  const auto at = tape->Begins.find(AElement);
  if (at == tape->Begins.end()) return nullptr;
  *ATape = tape;
  return at->second;
}

void TreeBuilder::Forget(TVnDOMNode* ARoot) {
  LoadTape* tape = NodePool::Of(ARoot)->Tape();
  if (!tape || !tape->Lazy) return;
  std::vector<TVnDOMNode*> stack{ARoot};
  while (!stack.empty()) {
    TVnDOMNode* n = stack.back();
    stack.pop_back();
    if (n->FLazy) {
      n->FLazy = false;
      --tape->Lazy;
      continue;
    }
    for (TVnDOMNode* c : n->FChildren)
      if (c->FNodeType == ntElement) stack.push_back(c);
  }
  if (!tape->Lazy) NodePool::Of(ARoot)->DropTape();
}

}  // namespace vn::detail

namespace vn {

void TVnDOMNode::OpenLazy() const {
  detail::TreeBuilder::OpenElement(static_cast<TVnDOMElement*>(const_cast<TVnDOMNode*>(this)), false);
}

void TVnDOMNode::OpenSubtree() const {
  auto lazyBelow = [](const TVnDOMNode* ANode) {
    if (!ANode->FInPool) return false;
    detail::LoadTape* tape = detail::NodePool::Of(ANode)->Tape();
    return tape && tape->Lazy;
  };
  if (FNodeType == ntDocument) {
    // the document is made by hand; its load's nodes are its children
    for (TVnDOMNode* c : FChildren)
      if (lazyBelow(c)) detail::TreeBuilder::OpenAll(c);
  } else if (lazyBelow(this)) {
    detail::TreeBuilder::OpenAll(const_cast<TVnDOMNode*>(this));
  }
}

void TVnDOMNode::ChangingInPool() const {
  detail::NodePool* pool = detail::NodePool::Of(this);
  pool->Touch();
  // a node on its way out changes nothing that is read later
  if (FDestroying) return;
  detail::LoadTape* tape = pool->Tape();
  if (!tape || !tape->Lazy) return;
  const TVnDOMNode* top = FNodeType == ntAttribute && FParent ? ParentNode() : this;
  detail::TreeBuilder::OpenAll(const_cast<TVnDOMNode*>(top));
}

}  // namespace vn
