// TVnDOMNode: children, insertion and removal, cloning, paths, and destruction of subtrees.
// Every walk over a subtree uses an explicit stack: trees may be a million levels deep.
#include <algorithm>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "dom/node_extras.h"
#include "dom/tree_builder.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_messages.h"

namespace vn {

namespace detail {
void InsertByPosition(PtrVector<TVnDOMNode>& AItems, TVnDOMNode* ANode, TVnDOMNode* ARefNode,
                      TVnDOMPosition APosition) {
  switch (APosition) {
    case rdpFirst:
      AItems.insert(0, ANode);
      return;
    case rdpLast:
      AItems.push_back(ANode);
      return;
    case rdpBefore: {
      int64_t i = ARefNode ? AItems.IndexOf(ARefNode, true) : -1;
      AItems.insert(i < 0 ? 0 : static_cast<uint32_t>(i), ANode);
      return;
    }
    case rdpAfter: {
      int64_t i = ARefNode ? AItems.IndexOf(ARefNode, true) : -1;
      if (i < 0)
        AItems.push_back(ANode);
      else
        AItems.insert(static_cast<uint32_t>(i + 1), ANode);
      return;
    }
  }
}
}  // namespace detail

TVnDOMNode::TVnDOMNode() = default;

namespace {
// Extras of the nodes that have them: few nodes ever need a list object or a pending URI, so
// a table beats a pointer in every node. Trees of different threads may use it at once.
struct ExtrasTable {
  std::mutex Lock;
  std::unordered_map<const TVnDOMNode*, std::unique_ptr<detail::NodeExtras>> Map;
};
ExtrasTable& AllExtras() {
  // Never destroyed: documents held in static storage are freed after function-local statics.
  static ExtrasTable& table = *new ExtrasTable;
  return table;
}

// Frees the extras of ANode, which is going.
void DropExtras(TVnDOMNode* ANode, bool& AHasExtras) {
  if (!AHasExtras) return;
  std::unique_ptr<detail::NodeExtras> extras;
  {
    ExtrasTable& t = AllExtras();
    std::lock_guard<std::mutex> guard(t.Lock);
    auto it = t.Map.find(ANode);
    extras = std::move(it->second);
    t.Map.erase(it);
  }
  AHasExtras = false;
  // freed outside the lock: a name table or list may release more than memory
  extras.reset();
}

thread_local uint64_t tFreeWork = 0;
}  // namespace

uint64_t detail::FreeWork() noexcept { return tFreeWork; }

TVnDOMNode::~TVnDOMNode() {
  EnsureBeforeDestruction();
  bool hasExtras = FHasExtras;
  DropExtras(this, hasExtras);
  FHasExtras = false;
}

void TVnDOMNode::DropPool(detail::NodePool* APool) noexcept {
  // Pristine: every node of the pool is below the target being freed, and what they own beyond
  // pool memory is their extras and what the pool holds.
  for (size_t i = 0, n = APool->ExtrasCount(); i < n; ++i) {
    TVnDOMNode* node = APool->ExtrasAt(i);
    bool hasExtras = node->FHasExtras;
    DropExtras(node, hasExtras);
    node->FHasExtras = false;
  }
  APool->Drop();
}

detail::NodeExtras* TVnDOMNode::LookupExtras() const noexcept {
  ExtrasTable& t = AllExtras();
  std::lock_guard<std::mutex> guard(t.Lock);
  auto it = t.Map.find(this);
  return it == t.Map.end() ? nullptr : it->second.get();
}

detail::NameTable* TVnDOMNode::NameTableOf(TVnDOMDocument* ADocument) {
  if (!ADocument) return nullptr;
  auto* doc = static_cast<TVnDOMNode*>(ADocument);
  // The document's own name lives in its table, so the table is found without a look-up.
  if (const void* owner = doc->FName.OwnerTable()) return static_cast<detail::NameTable*>(const_cast<void*>(owner));
  auto& x = doc->Extras();
  if (!x.Names) x.Names = std::make_unique<detail::NameTable>();
  doc->FName.Rehome(x.Names.get());
  return x.Names.get();
}

detail::NodeExtras& TVnDOMNode::Extras() {
  if (FHasExtras) return *LookupExtras();
  auto extras = std::make_unique<detail::NodeExtras>();
  detail::NodeExtras* result = extras.get();
  if (FInPool) detail::NodePool::Of(this)->NoteExtras(this);
  ExtrasTable& t = AllExtras();
  std::lock_guard<std::mutex> guard(t.Lock);
  t.Map.emplace(this, std::move(extras));
  FHasExtras = true;
  return *result;
}

// ---- destruction ----

// Takes the children out of ANode, which is being destroyed: children still held by an
// interface are detached and live on; the others go to ADoomed, to be freed by the caller's loop.
void TVnDOMNode::ReleaseChildrenForDestruction(TVnDOMNode* ANode, std::vector<TVnDOMNode*>& ADoomed) {
  auto& children = ANode->FChildren;
  // The pools whose loads ANode was the target of, and that nothing touched since: their nodes
  // go all at once, below.
  detail::NodePool* whole[4];
  size_t wholeCount = 0;
  for (uint32_t i = children.size(); i-- > 0;) {
    if (i >= children.size()) continue;
    TVnDOMNode* c = children[i];
    if (c->FInPool) {
      detail::NodePool* pool = detail::NodePool::Of(c);
      if (pool->Pristine()) {
        if (std::find(whole, whole + wholeCount, pool) != whole + wholeCount) continue;
        if (wholeCount < std::size(whole)) {
          whole[wholeCount++] = pool;
          continue;
        }
        pool->Touch();  // more loads below one node than tracked: the rest go node by node
      }
    }
    ++tFreeWork;
    if (!c->CanAutoDestroy()) {
      ANode->RemoveChild(c);
    } else {
      c->FParent = nullptr;
      c->FDestroying = true;
      c->FBeforeDestructionDone = true;
      ADoomed.push_back(c);
    }
  }
  ANode->ForgetAllChildren();
  children.reset();
  for (size_t i = 0; i < wholeCount; ++i) DropPool(whole[i]);
}

void TVnDOMNode::BeforeDestruction() {
  TVnDOMObject::BeforeDestruction();
  std::vector<TVnDOMNode*> doomed;
  ReleaseChildrenForDestruction(this, doomed);
  while (!doomed.empty()) {
    TVnDOMNode* n = doomed.back();
    doomed.pop_back();
    ReleaseChildrenForDestruction(n, doomed);
    delete n;
  }
  if (FParent) ParentNode()->RemoveChild(this);
}

void TVnDOMNode::DestroySubtree(TVnDOMNode* ANode) { delete ANode; }

bool TVnDOMNode::CanAutoDestroy() const {
  if (FHasImpl) return false;
  return TVnDOMObject::CanAutoDestroy();
}

// ---- names and values ----

bool TVnDOMNode::GetPreserveSpace() const {
  return FParent ? ParentNode()->GetPreserveSpace() : DefaultPreserveCase;
}

UnicodeString TVnDOMNode::GetNodeValue() const { return {}; }
UnicodeString TVnDOMNode::GetText() const { return {}; }
UnicodeString TVnDOMNode::GetInnerXML() { return {}; }
UnicodeString TVnDOMNode::GetFormattedInnerXML() { return {}; }

UnicodeString TVnDOMNode::GetNamespaceURI() const {
  if (FParent) return ParentNode()->GetNamespaceURI();
  if (detail::NodeExtras* x = ExtrasIfAny()) return x->NamespaceURI;
  return {};
}

void TVnDOMNode::SetNodeValue(std::u16string_view) { throw EVnDomNotSupported(cVnDomSetNodeValueNotSupported); }
void TVnDOMNode::SetInnerXML(std::u16string_view) { throw EVnDomNotSupported(cVnDomSetInnerXMLNotSupported); }

void TVnDOMNode::SetPrefix(std::u16string_view AValue) {
  if (AValue == FName.Prefix()) return;
  Changing();
  FName.SetPrefix(AValue, NameTableOf(FDOMDocument));
}

void TVnDOMNode::SetQualifiedName(std::u16string_view AName) {
  Changing();
  FName.Set(AName, NameTableOf(FDOMDocument));
  std::u16string prefix(FName.Prefix());
  SetPrefix(prefix);
}

void TVnDOMNode::SetQualifiedNameIn(TVnDOMDocument* ADocument, std::u16string_view AName) {
  Changing();
  if (!FDOMDocument) FName.Set(AName, NameTableOf(ADocument));
  SetQualifiedName(AName);
}

void TVnDOMNode::RefreshNamespaces() {
  OpenSubtree();
  RefreshNamespacesSelf();
  // Pre-order: a parent's scope is ready before its children compute theirs. A node whose
  // children are leaves (each element of a load) needs no stack.
  bool leaves = true;
  for (TVnDOMNode* c : FChildren)
    if (c->HasChilds()) {
      leaves = false;
      break;
    }
  if (leaves) {
    for (uint32_t i = 0; i < FChildren.size(); ++i) FChildren[i]->RefreshNamespacesSelf();
    return;
  }
  std::vector<TVnDOMNode*> stack(FChildren.begin(), FChildren.end());
  std::reverse(stack.begin(), stack.end());
  while (!stack.empty()) {
    TVnDOMNode* n = stack.back();
    stack.pop_back();
    n->RefreshNamespacesSelf();
    const auto& ch = n->FChildren;
    for (uint32_t i = ch.size(); i-- > 0;) stack.push_back(ch[i]);
  }
}

void TVnDOMNode::NormalizeTextNodes() {}

// ---- events of loads ----

namespace {
const TVnDOMParseError kNoEvent;
}

const TVnDOMParseError& TVnDOMNode::GetOnParseWarning() const noexcept {
  detail::NodeExtras* x = ExtrasIfAny();
  return x && x->Events ? x->Events->Warning : kNoEvent;
}

const TVnDOMParseError& TVnDOMNode::GetOnParseError() const noexcept {
  detail::NodeExtras* x = ExtrasIfAny();
  return x && x->Events ? x->Events->Error : kNoEvent;
}

const TVnDOMParseError& TVnDOMNode::GetOnParseFatalError() const noexcept {
  detail::NodeExtras* x = ExtrasIfAny();
  return x && x->Events ? x->Events->FatalError : kNoEvent;
}

detail::ParseEvents& TVnDOMNode::Events() {
  auto& x = Extras();
  if (!x.Events) x.Events = std::make_unique<detail::ParseEvents>();
  return *x.Events;
}

void TVnDOMNode::SetOnParseWarning(TVnDOMParseError AEvent) { Events().Warning = std::move(AEvent); }
void TVnDOMNode::SetOnParseError(TVnDOMParseError AEvent) { Events().Error = std::move(AEvent); }
void TVnDOMNode::SetOnParseFatalError(TVnDOMParseError AEvent) { Events().FatalError = std::move(AEvent); }

void TVnDOMNode::DoDOMParseWarning(IVnSAXLocator* ALocator, std::u16string_view AErrMsg, bool& AHandled) {
  // A copy: the handler may replace the event, or load again into this node.
  if (TVnDOMParseError event = GetOnParseWarning()) event(ALocator, AErrMsg, AHandled);
}

void TVnDOMNode::DoDOMParseError(IVnSAXLocator* ALocator, std::u16string_view AErrMsg, bool& AHandled) {
  if (TVnDOMParseError event = GetOnParseError()) event(ALocator, AErrMsg, AHandled);
}

void TVnDOMNode::DoDOMParseFatalError(IVnSAXLocator* ALocator, std::u16string_view AErrMsg, bool& AHandled) {
  if (TVnDOMParseError event = GetOnParseFatalError()) event(ALocator, AErrMsg, AHandled);
}

// LoadFromStream lives with the parser (dom_parser.cpp).

// ---- the tree ----

void TVnDOMNode::InsertIntoChildren(TVnDOMNode* ANode, TVnDOMNode* ARefNode, TVnDOMPosition APosition) {
  EnsureOpen();
  detail::InsertByPosition(FChildren, ANode, ARefNode, APosition);
}

TVnDOMNode* TVnDOMNode::AddChild(TVnDOMNode* ANode, TVnDOMNode* ARefNode, TVnDOMPosition APosition) {
  if (!ANode) return nullptr;
  if (ANode->FParent) throw EVnDomHierarchyRequest(cVnDomHasParent);
  if (ANode == this) throw EVnDomHierarchyRequest(cVnDomAddToItself);
  if (ANode->FNodeType == ntDocument) throw EVnDomHierarchyRequest(cVnDomDocumentAsChild);
  if (ANode->HasChilds())
    for (TVnDOMObject* p = FParent; p; p = p->GetParent())
      if (p == ANode) throw EVnDomHierarchyRequest(cVnDomAddToItself);
  InsertIntoChildren(ANode, ARefNode, APosition);
  ANode->SetParentNode(this);
  return ANode;
}

TVnDOMNode* TVnDOMNode::AddChild(TClass AClass, TVnDOMNode* ARefNode, TVnDOMPosition APosition) {
  std::unique_ptr<TObject> obj(CreateInstance(AClass));
  auto* node = CastObject<TVnDOMNode>(obj.get());
  if (!node) throw EInvalidCast(cRtlInvalidCast);
  AddChild(node, ARefNode, APosition);
  obj.release();
  return node;
}

TVnDOMNode* TVnDOMNode::AppendChild(TVnDOMNode* ANode) { return AddChild(ANode, nullptr, rdpLast); }

TVnDOMNode* TVnDOMNode::InsertBefore(TVnDOMNode* ANode, TVnDOMNode* ARefNode) {
  return AddChild(ANode, ARefNode, rdpBefore);
}

void TVnDOMNode::RemoveChild(TVnDOMNode* ANode) {
  if (!ANode) return;
  // Detaching a child may release the last count on this node's own Impl; keep this node
  // alive until the call is done.
  TVnDOMObjectImpl* self = GetDOMImpl();
  if (self) self->KeepAlive();
  EnsureOpen();
  // A child that goes with this call takes the load's records below it along unread.
  if (ANode->FInPool && !ANode->FHasImpl && ANode->GetRefCount() == 0 && !ANode->FDestroying)
    detail::TreeBuilder::Forget(ANode);
  ANode->SetParentNode(nullptr);
  int64_t i = FChildren.IndexOf(ANode, true);
  if (i >= 0) FChildren.erase(static_cast<uint32_t>(i));
  if (ANode->CanAutoDestroy())
    delete ANode;
  else if (TVnDOMObjectImpl* impl = ANode->GetDOMImpl())
    impl->MarkOwner();
  if (self) self->LetGo();
}

void TVnDOMNode::Clear() {
  EnsureOpen();
  while (!FChildren.empty()) {
    TVnDOMNode* c = FChildren.back();
    RemoveChild(c);
    // a child that RemoveChild could not take out would loop forever
    if (!FChildren.empty() && FChildren.back() == c) FChildren.pop_back();
  }
}

std::unique_ptr<TVnDOMNode> TVnDOMNode::CreateClone() const {
  std::unique_ptr<TObject> obj(CreateInstance(ClassType()));
  std::unique_ptr<TVnDOMNode> node(static_cast<TVnDOMNode*>(obj.release()));
  node->SetQualifiedName(FName.Qualified());
  return node;
}

std::unique_ptr<TVnDOMNode> TVnDOMNode::CloneNode(bool ADeep) const {
  std::unique_ptr<TVnDOMNode> root = CreateClone();
  if (!ADeep) return root;
  std::vector<std::pair<const TVnDOMNode*, TVnDOMNode*>> stack{{this, root.get()}};
  while (!stack.empty()) {
    auto [src, dst] = stack.back();
    stack.pop_back();
    size_t mark = stack.size();
    for (TVnDOMNode* c : src->ChildrenView()) {
      std::unique_ptr<TVnDOMNode> copy = c->CreateClone();
      TVnDOMNode* added = dst->AddChild(copy.get(), nullptr, rdpAfter);
      copy.release();
      if (c->HasChilds()) stack.emplace_back(c, added);
    }
    // children are copied in order; their subtrees may go in any order
    (void)mark;
  }
  return root;
}

bool TVnDOMNode::HasAttributes() const { return false; }

TVnDOMNodeList* TVnDOMNode::GetChildNodes() {
  auto& x = Extras();
  EnsureOpen();
  if (!x.ChildNodes) x.ChildNodes = std::make_unique<TVnDOMNodeList>(this, &FChildren);
  return x.ChildNodes.get();
}

TVnDOMNode* TVnDOMNode::NextSibling() const {
  if (!FParent) return nullptr;
  const auto& sib = ParentNode()->FChildren;
  int64_t i = sib.IndexOf(this);
  if (i < 0) return sib.empty() ? nullptr : sib[0];
  return static_cast<uint32_t>(i + 1) < sib.size() ? sib[static_cast<uint32_t>(i + 1)] : nullptr;
}

TVnDOMNode* TVnDOMNode::PreviousSibling() const {
  if (!FParent) return nullptr;
  const auto& sib = ParentNode()->FChildren;
  int64_t i = sib.IndexOf(this);
  if (i < 0) throw EListError(cVnDomRefNodeNotInList);
  return i == 0 ? nullptr : sib[static_cast<uint32_t>(i - 1)];
}

UnicodeString TVnDOMNode::NodePath(bool AUseLocalName, std::u16string_view AKeyAttribute) const {
  if (FNodeType == ntDocument) return {};
  std::vector<const TVnDOMNode*> steps;
  const TVnDOMNode* top = this;
  for (const TVnDOMNode* n = this; n && n->FNodeType != ntDocument; n = n->ParentNode()) {
    steps.push_back(n);
    top = n;
  }
  UnicodeString path;
  if (top->FParent) path += u'/';  // the top step hangs below a document
  for (size_t i = steps.size(); i-- > 0;) {
    const TVnDOMNode* n = steps[i];
    if (n->FNodeType == ntAttribute) path += u'@';
    path += AUseLocalName ? n->FName.Local() : n->FName.Qualified();
    if (i > 0) path += u'/';
  }
  if (!AKeyAttribute.empty() && FNodeType == ntElement) {
    TVnDOMSelectOptions opts{soCaseInsensitive};
    if (AUseLocalName) opts = opts + TVnDOMSelectOptions{soLocalName};
    auto* self = static_cast<TVnDOMElement*>(const_cast<TVnDOMNode*>(this));
    if (TVnDOMAttribute* key = self->FindAttribute(AKeyAttribute, opts)) {
      path += u"[@";
      path += AKeyAttribute;
      path += u"=\"";
      path += key->GetNodeValue();
      path += u"\"]";
    }
  }
  return path;
}

// ---- the object model ----

void TVnDOMNode::SetDOMDocument(TVnDOMDocument* ADocument) {
  OpenSubtree();
  detail::NameTable* names = NameTableOf(ADocument);
  std::vector<TVnDOMNode*> stack{this};
  while (!stack.empty()) {
    TVnDOMNode* n = stack.back();
    stack.pop_back();
    n->TouchPool();
    n->FDOMDocument = ADocument;
    n->FName.Rehome(names);
    for (TVnDOMNode* c : n->FChildren) stack.push_back(c);
  }
}

void TVnDOMNode::SetDOMImpl(TVnDOMObjectImpl* AImpl) {
  // A node held by an interface may outlive its tree: what it holds is made now, while the
  // load's context is there to make it.
  if (AImpl)
    Changing();
  else
    TouchPool();
  TVnDOMObject::SetDOMImpl(AImpl);
}

void TVnDOMNode::SetParentNode(TVnDOMObject* AParent) {
  TVnDOMObject* old = FParent;
  // Parents of nodes are nodes.
  Changing();
  // An attribute's element reads the load's records below it by its attributes.
  for (TVnDOMObject* parent : {old, AParent}) {
    if (!parent) continue;
    auto* p = static_cast<TVnDOMNode*>(parent);
    if (FNodeType == ntAttribute)
      p->Changing();
    else
      p->TouchPool();
  }
  TVnDOMObject::SetParentNode(AParent);
  if (FDestroying) return;
  if (AParent) {
    if (FDOMDocument && (FDOMDocument->GetLoadState() != lsLoading || FNodeType == ntElement)) RefreshNamespaces();
  } else if (old && FHasImpl) {
    // A node that lives on outside the tree must not keep links to declarations of its old
    // ancestors, which may be freed before it.
    RefreshNamespaces();
  }
}

}  // namespace vn
