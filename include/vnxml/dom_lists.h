// dom_lists.h: the node lists of the XML tree (unit uVnXMLDOM).
// A list owned by a node is a view on that node's children (all, attributes, elements or
// character data) and lives as long as the node; a list made for a caller (CreateElementList)
// belongs to the caller. Lists never own the nodes they point at. Every list works in a
// range-for: `for (TVnDOMElement* e : *element->GetElements())`.
// Edits of a node's own list are edits of the tree: Add adopts the node as AddChild does, Delete
// and Clear remove children as RemoveChild does (freed unless an interface holds them); a node
// of a kind the list does not show is refused with EVnDomHierarchyRequest. A list keeps no
// document of its own: it reads its owner's at each call, so it follows the owner from document
// to document and never reads a freed one. Element lists hold elements only and attribute lists
// attributes only, also when made for a caller; the namespaces in scope (GetNamespaces) are a
// snapshot that refuses every edit with EVnDomNotSupported.
#pragma once

#include <memory>
#include <vector>

#include "vnxml/dom_node.h"

namespace vn {

class Variant;

/// Index-based iteration, so a list may grow while it is walked.
template <class T>
class TVnDOMListIterator {
 public:
  TVnDOMListIterator(const TVnDOMNodeListBase* AList, Integer AIndex) noexcept : FList(AList), FIndex(AIndex) {}
  T* operator*() const;
  TVnDOMListIterator& operator++() noexcept {
    ++FIndex;
    return *this;
  }
  bool operator!=(const TVnDOMListIterator& AOther) const noexcept;

 private:
  const TVnDOMNodeListBase* FList;
  Integer FIndex;
};

class TVnDOMNodeListBase : public TVnDOMObject {
  VN_DECLARE_CLASS(TVnDOMNodeListBase, TVnDOMObject)
 public:
  /// A list of its own (no owner node), as made for callers.
  TVnDOMNodeListBase();
  /// A view on AItems, owned by AOwner.
  TVnDOMNodeListBase(TVnDOMNode* AOwner, detail::PtrVector<TVnDOMNode>* AItems);
  ~TVnDOMNodeListBase() override;

  Integer Count() const noexcept { return static_cast<Integer>(FItems->size()); }
  /// Raises EListError "List index out of bounds (%d)" outside 0..Count-1.
  TVnDOMNode* GetItem(Integer AIndex) const;
  /// Empties the list; on a node's own list the children it shows leave the tree.
  void Clear();
  /// Inserts ANode by position and reference (see TVnDOMPosition); returns ANode. On a node's own
  /// list the node must be detached and becomes a child of the owner.
  TVnDOMNode* Add(TVnDOMNode* ANode, TVnDOMNode* ARefNode = nullptr, TVnDOMPosition APosition = rdpLast);
  TVnDOMNode* Add(TVnDOMNode* ANode, TVnDOMPosition APosition) { return Add(ANode, nullptr, APosition); }
  TVnDOMNode* Add(TVnDOMNode* ANode, TVnDOMPosition APosition, TVnDOMNode* ARefNode) {
    return Add(ANode, ARefNode, APosition);
  }
  /// Takes the first occurrence of ANode out of the list; returns it, or nil when it isn't there.
  /// On a node's own list the child leaves the tree and is freed unless an interface holds it:
  /// the result is then nil too, so it never points at a freed node.
  TVnDOMNode* Delete(TVnDOMNode* ANode);
  /// Raises EVnDomNotFound on an empty list.
  TVnDOMNode* First() const;
  TVnDOMNode* Last() const;
  /// The item behind ANode (nil for the last); a node not in the list gives the first item.
  TVnDOMNode* Next(const TVnDOMNode* ANode) const;
  /// The item before ANode (nil for the first); raises EListError for a node not in the list.
  TVnDOMNode* Previous(const TVnDOMNode* ANode) const;
  bool ContainsNode(const TVnDOMNode* ANode) const;
  Integer IndexOf(const TVnDOMNode* ANode) const;

  /// The last node whose local name (and URI, when given) matches under the list's collation.
  TVnDOMNode* Find(std::u16string_view ANamespaceURI, std::u16string_view ALocalName) const;
  /// The last node of that name under AOptions; soRaise raises EVnDomNotFound when none.
  TVnDOMNode* Find(std::u16string_view AName, TVnDOMSelectOptions AOptions) const;
  /// Find, then Delete.
  TVnDOMNode* Delete(std::u16string_view AName, TVnDOMSelectOptions AOptions);
  TVnDOMNode* Delete(std::u16string_view ANamespaceURI, std::u16string_view ALocalName);

  TVnDOMNode* GetOwner() const noexcept { return static_cast<TVnDOMNode*>(FParent); }
  /// The owner's document now, nil for a list without owner or an owner outside a document.
  TVnDOMDocument* GetOwnerDocument() const noexcept;
  TVnDOMListIterator<TVnDOMNode> begin() const noexcept { return {this, 0}; }
  TVnDOMListIterator<TVnDOMNode> end() const noexcept { return {this, Count()}; }

  bool CanAutoDestroy() const override;
  TVnXPathCollationClass GetCollation() const override;
  TVnDOMSelectMatchOption GetSelectMatchOption() const override;
  /// The items themselves.
  const detail::PtrVector<TVnDOMNode>& Items() const noexcept { return *FItems; }

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;
  /// Whether this kind of list may hold ANode at all (element lists: elements ...).
  virtual bool HoldsKind(const TVnDOMNode& ANode) const;
  /// The items are the children of the owner (or one typed share of them).
  bool IsChildView() const noexcept { return FParent && FItems != &FOwnItems; }
  /// Replaces the items of a list the owner computes (the namespaces in scope).
  void SetSnapshot(const std::vector<TVnDOMAttribute*>& AItems);

  detail::PtrVector<TVnDOMNode> FOwnItems;
  detail::PtrVector<TVnDOMNode>* FItems;

 private:
  friend class TVnDOMElement;
  /// Refuses what the list cannot take; on a child view, a node that would land in another view.
  void CheckAdd(const TVnDOMNode* ANode) const;
  /// A list with an owner and items of its own is the owner's computed snapshot: read-only.
  void CheckWritable() const;
};

/// The platform-style enumerator: MoveNext and GetCurrent over a list.
class TVnDOMNodeListBaseEnumerator : public TObject {
  VN_DECLARE_CLASS(TVnDOMNodeListBaseEnumerator, TObject)
 public:
  explicit TVnDOMNodeListBaseEnumerator(const TVnDOMNodeListBase* AList = nullptr) : FList(AList) {}
  bool MoveNext() { return ++FIndex < FList->Count(); }
  TVnDOMNode* GetCurrent() const { return FList->GetItem(FIndex); }

 protected:
  Integer FIndex = -1;
  const TVnDOMNodeListBase* FList;
};

class TVnDOMNodeList : public TVnDOMNodeListBase {
  VN_DECLARE_CLASS(TVnDOMNodeList, TVnDOMNodeListBase)
 public:
  using TVnDOMNodeListBase::TVnDOMNodeListBase;
  std::unique_ptr<TVnDOMNodeListBaseEnumerator> GetEnumerator() const {
    return std::make_unique<TVnDOMNodeListBaseEnumerator>(this);
  }

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;
};

class TVnDOMElementListEnumerator : public TVnDOMNodeListBaseEnumerator {
  VN_DECLARE_CLASS(TVnDOMElementListEnumerator, TVnDOMNodeListBaseEnumerator)
 public:
  using TVnDOMNodeListBaseEnumerator::TVnDOMNodeListBaseEnumerator;
  TVnDOMElement* GetCurrent() const;
};

class TVnDOMElementList : public TVnDOMNodeListBase {
  VN_DECLARE_CLASS(TVnDOMElementList, TVnDOMNodeListBase)
 public:
  using TVnDOMNodeListBase::TVnDOMNodeListBase;
  TVnDOMElement* GetItem(Integer AIndex) const;
  /// By an integer index, or by a name under the check option of the owner's document.
  TVnDOMElement* GetItem(const Variant& AIndex) const;
  /// By number, by name ("." is the owner), or by path under coCreate or with a "/".
  TVnDOMElement* GetItemEx(const Variant& AIndex, TVnDOMSelectCheckOption ACheck) const;
  /// The same for a name given as text.
  TVnDOMElement* GetItemEx(std::u16string_view AName, TVnDOMSelectCheckOption ACheck) const;
  TVnDOMElement* Find(std::u16string_view AName, TVnDOMSelectOptions AOptions) const;
  TVnDOMElement* Find(std::u16string_view ANamespaceURI, std::u16string_view ALocalName) const;
  TVnDOMListIterator<TVnDOMElement> begin() const noexcept { return {this, 0}; }
  TVnDOMListIterator<TVnDOMElement> end() const noexcept { return {this, Count()}; }
  std::unique_ptr<TVnDOMElementListEnumerator> GetEnumerator() const {
    return std::make_unique<TVnDOMElementListEnumerator>(this);
  }

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;
  bool HoldsKind(const TVnDOMNode& ANode) const override;
};

class TVnDOMAttrList : public TVnDOMNodeListBase {
  VN_DECLARE_CLASS(TVnDOMAttrList, TVnDOMNodeListBase)
 public:
  using TVnDOMNodeListBase::TVnDOMNodeListBase;
  TVnDOMAttribute* GetAttribute(Integer AIndex) const;
  /// In list order, the first declaration whose decoded value equals AURI under the collation.
  TVnDOMAttribute* FindNamespace(std::u16string_view AURI) const;
  TVnDOMAttribute* Find(std::u16string_view AName, TVnDOMSelectOptions AOptions) const;
  TVnDOMAttribute* Find(std::u16string_view ANamespaceURI, std::u16string_view ALocalName) const;
  TVnDOMListIterator<TVnDOMAttribute> begin() const noexcept { return {this, 0}; }
  TVnDOMListIterator<TVnDOMAttribute> end() const noexcept { return {this, Count()}; }

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;
  bool HoldsKind(const TVnDOMNode& ANode) const override;
};

/// A plain, non-owning list of DOM objects, used by the path engine.
class TVnDOMObjectList : public TObject {
  VN_DECLARE_CLASS(TVnDOMObjectList, TObject)
 public:
  Integer Count() const noexcept { return static_cast<Integer>(FItems.size()); }
  TVnDOMObject* GetItem(Integer AIndex) const;
  void Add(TVnDOMObject* AObject) { FItems.push_back(AObject); }
  void Clear() noexcept { FItems.clear(); }
  /// Clear, reserve the other's count, add each item in order.
  void Assign(const TVnDOMObjectList& AList);
  auto begin() const noexcept { return FItems.begin(); }
  auto end() const noexcept { return FItems.end(); }

 private:
  std::vector<TVnDOMObject*> FItems;
};

template <class T>
T* TVnDOMListIterator<T>::operator*() const {
  return static_cast<T*>(FList->GetItem(FIndex));
}
template <class T>
bool TVnDOMListIterator<T>::operator!=(const TVnDOMListIterator& AOther) const noexcept {
  // A list that shrank while walked ends the walk early instead of reading past its end.
  return FIndex != AOther.FIndex && FIndex < FList->Count();
}

}  // namespace vn
