// dom_node.h: TVnDOMNode, the common class of every node of the XML tree (unit uVnXMLDOM).
// A node owns its children (attributes of an element among them) in one ordered array; list
// objects over it are made only when asked for. Adding takes ownership of a detached node;
// removing a node frees it unless an interface still holds it. Freeing a node frees its subtree
// without recursion, so trees of any depth can be built, cloned and dropped.
#pragma once

#include <functional>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include "vnxml/dom_object.h"
#include "vnxml/dom_storage.h"

namespace vn {

class TStream;
struct IVnSAXLocator;

/// A failure event of a load; setting AHandled in a fatal error keeps the reader's own exception.
using TVnDOMParseError = std::function<void(IVnSAXLocator* ALocator, std::u16string_view AErrMsg, bool& AHandled)>;

namespace detail {
struct NodeExtras;
struct ParseEvents;
class TreeBuilder;
}

class TVnDOMNode : public TVnDOMObject {
  VN_DECLARE_CLASS(TVnDOMNode, TVnDOMObject)
 public:
  TVnDOMNode();
  ~TVnDOMNode() override;

  // A node is made on the heap or, by a load, in the load's pool; its flag tells which, and the
  // pool is found from the node's address (NodePool::Of). Delete reads the flag before the
  // destructor runs, so it is a destroying delete.
  static void* operator new(size_t ASize);
  static void* operator new(size_t ASize, detail::NodePool& APool) { return APool.AllocateNode(ASize); }
  static void operator delete(TVnDOMNode* ANode, std::destroying_delete_t) noexcept;
  /// For a constructor that throws.
  static void operator delete(void* APtr) noexcept;
  static void operator delete(void* APtr, detail::NodePool& APool) noexcept;

  // ---- names and values ----
  TVnDOMNodeType GetNodeType() const noexcept { return FNodeType; }
  UnicodeString GetLocalName() const { return UnicodeString(FName.Local()); }
  UnicodeString GetPrefix() const { return UnicodeString(FName.Prefix()); }
  /// "prefix:local", or the local name with an empty prefix.
  UnicodeString GetQualifiedName() const { return UnicodeString(FName.Qualified()); }
  /// The same names without a copy; valid until the node is renamed or freed.
  std::u16string_view LocalNameView() const noexcept { return FName.Local(); }
  std::u16string_view PrefixView() const noexcept { return FName.Prefix(); }
  std::u16string_view QualifiedNameView() const noexcept { return FName.Qualified(); }
  /// The same for nodes that share their name record (nodes of one document with one qualified
  /// name), different for different names: a key for remembering tests that depend on the name.
  const void* NameKey() const noexcept { return FName.Key(); }
  /// The parent's setting, or DefaultPreserveCase with no parent.
  virtual bool GetPreserveSpace() const;
  /// The decoded value; empty on a plain node.
  virtual UnicodeString GetNodeValue() const;
  virtual UnicodeString GetText() const;
  /// The parent's URI, or the pending one with no parent.
  virtual UnicodeString GetNamespaceURI() const;
  virtual UnicodeString GetInnerXML();
  virtual UnicodeString GetFormattedInnerXML();
  /// The node written as XML text, unformatted or formatted.
  UnicodeString GetXML();
  UnicodeString GetFormattedXML();
  /// Raises EVnDomNotSupported on a plain node.
  virtual void SetNodeValue(std::u16string_view AValue);
  virtual void SetPrefix(std::u16string_view AValue);
  /// Splits AName at its first colon into prefix and local name.
  virtual void SetQualifiedName(std::u16string_view AName);
  /// For builders: names a detached node with ADocument's shared name record, so that joining
  /// ADocument later costs no copy of the name.
  void SetQualifiedNameIn(TVnDOMDocument* ADocument, std::u16string_view AName);
  virtual void SetInnerXML(std::u16string_view AXML);
  /// Recomputes the namespace declarations in scope over the whole subtree.
  virtual void RefreshNamespaces();
  /// Merges neighbouring text nodes; nothing on a plain node.
  virtual void NormalizeTextNodes();

  // ---- text in and out ----
  // The writer copies names and stored values as they are, and what it writes loads back to the
  // same tree. A name that the reader would read back as another name, or that would end the tag
  // early, is not written: such a write raises EVnDomInvalidCharacter and the output stops
  // there. Attribute names must not start with "/", a quote, a colon or white space, end with
  // white space, or hold "=", "<" or ">" (an empty name is fine); element names must start with
  // a name character, again behind their first colon, and hold no white space, "/", ">", and no
  // "<" before that colon. Likewise a CDATA section holding "]]>", a comment holding "-->", an
  // instruction whose target holds a space or "?" and one whose data holds "?" or starts with a
  // space are refused: the reader would end them there, or skip the spaces.
  /// Writes this node (and its subtree) as XML to AStream in ACodePage.
  virtual void _SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel);
  virtual void SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted);
  /// Parses XML from AStream into this node; failures reach this node's parse events.
  virtual void LoadFromStream(TStream& AStream, Word ACodePage);

  // ---- events of loads into this node (LoadFromStream, SetInnerXML) ----
  const TVnDOMParseError& GetOnParseWarning() const noexcept;
  const TVnDOMParseError& GetOnParseError() const noexcept;
  /// Without a handler that sets AHandled, a fatal error ends the load in EVnDomSyntax.
  const TVnDOMParseError& GetOnParseFatalError() const noexcept;
  void SetOnParseWarning(TVnDOMParseError AEvent);
  void SetOnParseError(TVnDOMParseError AEvent);
  void SetOnParseFatalError(TVnDOMParseError AEvent);
  /// Call the event when one is set; the loader binds its handlers to these.
  void DoDOMParseWarning(IVnSAXLocator* ALocator, std::u16string_view AErrMsg, bool& AHandled);
  void DoDOMParseError(IVnSAXLocator* ALocator, std::u16string_view AErrMsg, bool& AHandled);
  void DoDOMParseFatalError(IVnSAXLocator* ALocator, std::u16string_view AErrMsg, bool& AHandled);

  // ---- the tree ----
  /// Takes ownership of the detached ANode and puts it among the children; returns ANode.
  virtual TVnDOMNode* AddChild(TVnDOMNode* ANode, TVnDOMNode* ARefNode = nullptr, TVnDOMPosition APosition = rdpLast);
  /// Creates a node of AClass by its virtual constructor and adds it.
  virtual TVnDOMNode* AddChild(TClass AClass, TVnDOMNode* ARefNode, TVnDOMPosition APosition);
  /// Adds ANode as last child.
  virtual TVnDOMNode* AppendChild(TVnDOMNode* ANode);
  TVnDOMNode* InsertBefore(TVnDOMNode* ANode, TVnDOMNode* ARefNode);
  /// Adopts a node the caller owns: parent->Append(std::make_unique<TVnDOMText>()).
  template <class T>
  T* Append(std::unique_ptr<T> ANode) {
    T* n = ANode.get();
    AppendChild(ANode.release());
    return n;
  }
  /// Detaches ANode; frees it unless an interface holds it (then it lives on, detached).
  virtual void RemoveChild(TVnDOMNode* ANode);
  /// Removes every child, last first.
  virtual void Clear();
  /// A detached copy that the caller owns; a deep one copies the subtree (attributes included).
  virtual std::unique_ptr<TVnDOMNode> CloneNode(bool ADeep) const;
  /// A detached copy of this node alone: same class, same name (and stored value for leaves).
  virtual std::unique_ptr<TVnDOMNode> CreateClone() const;

  Integer NodeCount() const {
    EnsureOpen();
    return static_cast<Integer>(FChildren.size());
  }
  /// Child by position in document order, attributes included; no range check.
  TVnDOMNode* ChildAt(Integer AIndex) const {
    EnsureOpen();
    return FChildren[static_cast<uint32_t>(AIndex)];
  }
  bool HasChilds() const {
    EnsureOpen();
    return !FChildren.empty();
  }
  /// The node is an element and has attributes.
  virtual bool HasAttributes() const;
  /// The list of all children (made on first use, owned by this node).
  TVnDOMNodeList* GetChildNodes();
  TVnDOMNode* ParentNode() const noexcept { return static_cast<TVnDOMNode*>(FParent); }
  TVnDOMDocument* Document() const noexcept { return FDOMDocument; }
  TVnDOMNode* NextSibling() const;
  TVnDOMNode* PreviousSibling() const;
  /// "/a/b[@id=\"7\"]": the steps from the document down, the key attribute on the last step only.
  UnicodeString NodePath(bool AUseLocalName = false, std::u16string_view AKeyAttribute = {}) const;

  // ---- selection by path ----
  /// All nodes that APath selects from this node, each once; the caller owns the list.
  /// soRaise raises EVnDomNotFound when nothing is found; soCreate adds missing elements on the way.
  std::unique_ptr<TVnDOMNodeList> CreateNodeList(std::u16string_view APath, TVnDOMSelectOptions AOptions = {});
  /// The first node that APath selects from this node, or nil.
  TVnDOMNode* SelectSingleNode(std::u16string_view APath, TVnDOMSelectOptions AOptions = {});

  // ---- Transform (XSLT through libxslt) ----
  /// Applies the style sheet in file AXSLFile to this node's XML; the result text.
  UnicodeString Transform(std::u16string_view AXSLFile);
  /// Applies the style sheet AXSLNode to this node's XML; the result text.
  UnicodeString Transform(TVnDOMNode* AXSLNode);
  /// As above, the result parsed into a new document that the caller owns.
  std::unique_ptr<TVnDOMDocument> TransformToDocument(std::u16string_view AXSLFile);
  std::unique_ptr<TVnDOMDocument> TransformToDocument(TVnDOMNode* AXSLNode);

  // ---- the object model ----
  bool CanAutoDestroy() const override;
  void SetDOMImpl(TVnDOMObjectImpl* AImpl) override;
  void SetDOMDocument(TVnDOMDocument* ADocument) override;
  void SetParentNode(TVnDOMObject* AParent) override;
  void BeforeDestruction() override;
  /// The children array itself, for walks that must not allocate.
  const detail::PtrVector<TVnDOMNode>& ChildrenView() const {
    EnsureOpen();
    return FChildren;
  }
  /// A loaded element makes its children from the load's records on first access; every
  /// reader of the child arrays comes through here first.
  void EnsureOpen() const {
    if (FLazy) OpenLazy();
  }
  /// The children are still the load's records, to be made on first access.
  bool IsDeferred() const noexcept { return FLazy; }

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;
  /// Puts ANode into the children array at its place, with no other effect.
  void InsertIntoChildren(TVnDOMNode* ANode, TVnDOMNode* ARefNode, TVnDOMPosition APosition);
  /// The children array of another node, for the typed bookkeeping of subclasses.
  static detail::PtrVector<TVnDOMNode>& ChildrenOf(TVnDOMNode* ANode) {
    ANode->EnsureOpen();
    return ANode->FChildren;
  }
  detail::NodeExtras& Extras();
  detail::ParseEvents& Events();
  detail::NodeExtras* ExtrasIfAny() const noexcept { return FHasExtras ? LookupExtras() : nullptr; }
  /// The name table of ADocument (made on first use), nil without a document.
  static detail::NameTable* NameTableOf(TVnDOMDocument* ADocument);
  /// A fixed name ("#text", ...) that no node needs to allocate.
  void SetFixedName(const detail::NameRec& AName) noexcept { FName.SetStatic(AName); }
  /// Frees ANode and its subtree with an explicit stack; nodes held by interfaces are detached.
  static void DestroySubtree(TVnDOMNode* ANode);
  /// This node's own part of RefreshNamespaces; the walk over the subtree is RefreshNamespaces.
  virtual void RefreshNamespacesSelf() {}
  /// Drops the typed bookkeeping of all children at destruction (elements override).
  virtual void ForgetAllChildren() {}
  /// This node changes beyond reading: a load's pool that made it can no longer be dropped whole.
  void TouchPool() const noexcept {
    if (FInPool) detail::NodePool::Of(this)->Touch();
  }
  /// This node is about to change in a way that decides how the load's records below it would
  /// be read (names, declarations, space handling, its place): they become nodes first.
  void Changing() const {
    if (FInPool) ChangingInPool();
  }

  /// Shared through the document's name table while the node is in a document.
  detail::NameRef FName;
  detail::PtrVector<TVnDOMNode> FChildren;

  friend class TVnDOMNodeListBase;
  friend class detail::TreeBuilder;

 private:
  detail::NodeExtras* LookupExtras() const noexcept;
  void OpenLazy() const;
  void ChangingInPool() const;
 protected:
  /// Makes every element below this node whose children are still the load's records.
  void OpenSubtree() const;
 private:
  static void ReleaseChildrenForDestruction(TVnDOMNode* ANode, std::vector<TVnDOMNode*>& ADoomed);
  /// Frees a pristine pool with all its nodes, whose target is being freed.
  static void DropPool(detail::NodePool* APool) noexcept;
};
using TVnDOMNodeClass = TClass;

}  // namespace vn
