// dom_object.h: the two-level objects of the XML document object model (unit uVnXMLDOM).
// A TVnDOMObject is the real thing, owned by its parent and used by direct calls; its
// TVnDOMObjectImpl is the counted interface half, made on the first interface request and
// dropped with the last release. An Impl counts on its parent's Impl, so one interface held on
// a node keeps the whole chain of ancestors alive. Objects never count themselves.
// Ownership: a node in a tree belongs to its parent. A detached object that an interface was
// taken on directly belongs to its interfaces (the last release frees it); one that was only
// counted through its children's interfaces stays its creator's.
// Failures: the EVnDomException family below; misuse of the counting raises Exception.
#pragma once

#include <cstdint>

#include "vnxml/common/exception.h"
#include "vnxml/common/vn_object.h"
#include "vnxml/dom_names.h"

namespace vn {

class TVnDOMObject;
class TVnDOMObjectImpl;
class TVnDOMNode;
class TVnDOMNodeListBase;
class TVnDOMNodeList;
class TVnDOMElementList;
class TVnDOMAttrList;
class TVnDOMElement;
class TVnDOMCharacterData;
class TVnDOMText;
class TVnDOMComment;
class TVnDOMCDATA;
class TVnDOMAttribute;
class TVnDOMProcessingInstruction;
class TVnDOMDocument;

enum TVnDOMNodeType : uint8_t {
  ntUnknown,
  ntElement,
  ntAttribute,
  ntText,
  ntCDATA,
  ntEntityRef,
  ntEntity,
  ntProcessingInstruction,
  ntComment,
  ntDocument,
  ntDocumentType,
  ntDocumentFragment,
  ntNotation
};
enum TVnDOMPosition : uint8_t { rdpFirst, rdpLast, rdpBefore, rdpAfter };
/// Subrange rdpFirst..rdpLast.
using TVnDOMAbsPosition = TVnDOMPosition;
/// Subrange rdpBefore..rdpAfter.
using TVnDOMRelPosition = TVnDOMPosition;
enum TVnDOMNodeNameType : uint8_t { nntLocalName, nntQualifiedName };
enum TVnDOMLoadState : uint8_t { lsUninitialized, lsLoading, lsLoaded, lsInteractive, lsComplete };

/// The name of each node type: "Unknown", "Element", ... "Notation".
extern const char16_t* const VnDOMNodeTypes[13];

// Unit-level settings, read when a document or element is created.
/// Name matching of objects outside a document, and of new documents (initially soQualifiedName).
extern TVnDOMSelectMatchOption DefaultSelectMatchOption;
/// White-space preservation where nothing says otherwise (initially false).
extern bool DefaultPreserveCase;
/// Element lookups of new documents (initially coRaise).
extern TVnDOMSelectCheckOption DefaultSelectCheckOption;
/// Collation of objects outside a document, and of new documents (initially TVnXPathCollationASCIICI).
extern TVnXPathCollationClass DefaultXPathCollation;

VN_EXCEPTION(EVnDomException, Exception)
VN_EXCEPTION(EVnDomStringSize, EVnDomException)
VN_EXCEPTION(EVnDomHierarchyRequest, EVnDomException)
VN_EXCEPTION(EVnDomIndexSize, EVnDomException)
VN_EXCEPTION(EVnDomInUseAttribute, EVnDomException)
VN_EXCEPTION(EVnDomInvalidAcces, EVnDomException)
VN_EXCEPTION(EVnDomInvalidCharacter, EVnDomException)
VN_EXCEPTION(EVnDomInvalidModification, EVnDomException)
VN_EXCEPTION(EVnDomInvalidState, EVnDomException)
VN_EXCEPTION(EVnDomNamespace, EVnDomException)
VN_EXCEPTION(EVnDomNotFound, EVnDomException)
VN_EXCEPTION(EVnDomNotSupported, EVnDomException)
VN_EXCEPTION(EVnDomNoDataAllowed, EVnDomException)
VN_EXCEPTION(EVnDomNoModificationAllowed, EVnDomException)
VN_EXCEPTION(EVnDomSyntax, EVnDomException)
VN_EXCEPTION(EVnDomTypeMismatch, EVnDomException)
VN_EXCEPTION(EVnDomValidation, EVnDomException)
VN_EXCEPTION(EVnDomWrongDocument, EVnDomException)

/// The object half of everything in the tree. Counting requests go to the Impl half.
class TVnDOMObject : public TVnObject {
  VN_DECLARE_CLASS(TVnDOMObject, TVnObject)
 public:
  TVnDOMObject();
  /// Destruction by delete (or a std::unique_ptr) never raises: an Impl still counted from
  /// outside is cut loose and then answers every call with an exception.
  ~TVnDOMObject() override;

  /// The Impl is asked first; what it declines is asked of the object itself.
  HRESULT QueryInterface(const TGUID& AIID, void** AObj) override;
  /// Creates the Impl (and those of all ancestors) when needed, then counts on it.
  int32_t _AddRef() override;
  /// Counts down on the Impl; raises when there is none.
  int32_t _Release() override;

  /// Checked destruction: raises "An instance of %s is destroyed while it's refcount is not 0!"
  /// when an interface still counts on this object, else deletes it.
  void Free();

  /// May a release of the last interface free this object?
  virtual bool CanAutoDestroy() const;
  /// The collation is not TVnXPathCollationASCIICI.
  virtual bool GetCaseSensitive() const;
  /// The document's collation, else DefaultXPathCollation.
  virtual TVnXPathCollationClass GetCollation() const;
  /// The document's match option, else DefaultSelectMatchOption.
  virtual TVnDOMSelectMatchOption GetSelectMatchOption() const;
  virtual void SetDOMImpl(TVnDOMObjectImpl* AImpl);
  virtual void SetDOMDocument(TVnDOMDocument* ADocument);
  /// Links the object to AParent (nil detaches) and moves the Impl's parent reference along.
  virtual void SetParentNode(TVnDOMObject* AParent);
  /// Runs once, before the destructors: marks the object as being destroyed.
  virtual void BeforeDestruction();

  TVnDOMDocument* GetDOMDocument() const noexcept { return FDOMDocument; }
  TVnDOMObject* GetParent() const noexcept { return FParent; }
  /// The interface half, nil while no interface is held.
  TVnDOMObjectImpl* GetDOMImpl() const noexcept { return FHasImpl ? LookupImpl() : nullptr; }
  bool GetDestroying() const noexcept { return FDestroying; }

  /// The interface I of this object (creating the Impl); empty when it isn't supported.
  template <class I>
  IPtr<I> As() {
    void* p = nullptr;
    if (QueryInterface(I::IID, &p) != S_OK || !p) return {};
    return IPtr<I>::Attach(static_cast<I*>(p));
  }

 protected:
  /// Makes the interface half of this object; each concrete class returns its twin.
  virtual TVnDOMObjectImpl* CreateDOMImpl() = 0;
  /// What the object answers itself after the Impl declined.
  virtual HRESULT QueryObjectInterface(const TGUID& AIID, void** AObj);
  /// Calls BeforeDestruction unless it ran already; the destructors of classes that hold
  /// children call it first, while their overrides still work.
  void EnsureBeforeDestruction();

  // Nodes are many, so their flags sit here, in the padding after the counting members, and the
  // rarely made Impl is found through a side table (FHasImpl) instead of a pointer per object.
  bool FDestroying : 1 = false;
  bool FBeforeDestructionDone : 1 = false;
  bool FHasImpl : 1 = false;
  /// Nodes: their rarely needed extras live in a side table too.
  bool FHasExtras : 1 = false;
  /// Nodes: the pending namespace URI (in the extras) counts.
  bool FNamespaceSet : 1 = false;
  /// Elements: xml:space says preserve, here or inherited.
  bool FPreserveSpace : 1 = false;
  /// Nodes: made by a load, in its pool (whose address is in front of the node).
  bool FInPool : 1 = false;
  /// Elements: the namespace scope is held by the pool, not counted by the element.
  bool FScopeHeld : 1 = false;
  TVnDOMNodeType FNodeType = ntUnknown;
  // The load state shares its byte with a flag: nodes stay 40 bytes before their own fields.
  TVnDOMLoadState FLoadState : 7 = lsUninitialized;
  /// Elements of a load: the children are still records on the load's tape.
  bool FLazy : 1 = false;
  TVnDOMDocument* FDOMDocument = nullptr;
  TVnDOMObject* FParent = nullptr;

 private:
  friend class TVnDOMObjectImpl;
  /// The Impl of this object, made (with those of its ancestors) when missing.
  TVnDOMObjectImpl* EnsureImpl();
  TVnDOMObjectImpl* LookupImpl() const noexcept;
};

/// The counted interface half of a TVnDOMObject.
class TVnDOMObjectImpl : public TVnObject {
  VN_DECLARE_CLASS(TVnDOMObjectImpl, TVnObject)
 public:
  explicit TVnDOMObjectImpl(TVnDOMObject* AObject);
  ~TVnDOMObjectImpl() override;

  /// A direct interface reference: from now on this Impl may free a detached object at 0.
  int32_t _AddRef() override;
  /// At 0: the object loses its Impl, is freed if it may be, and the parent's count goes down.
  int32_t _Release() override;
  /// A count that pins the object during an operation without making the interface its owner.
  void KeepAlive() noexcept { ++FRefCount; }
  void LetGo() { ReleaseChain(this); }
  /// The object left its tree while this Impl was counted: the interfaces own it now.
  void MarkOwner() noexcept { FOwnsObject = true; }
  /// The object behind AInterface as a node: the Impl's object, or the implementor itself.
  static TVnDOMNode* Node(IInterface* AInterface);

  /// The object half; raises when that object was deleted while this interface was held.
  TVnDOMObject* GetDOMObject() const;
  /// The Impl of the parent this one counts on, or nil.
  TVnDOMObjectImpl* GetParentImpl() const noexcept { return FParent; }

 private:
  friend class TVnDOMObject;
  // Releases one count on each Impl from AImpl upwards while counts fall to 0, without recursion.
  static void ReleaseChain(TVnDOMObjectImpl* AImpl);
  void SetParentImpl(TVnDOMObjectImpl* AParent);

  TVnDOMObject* FDOMObject;
  TVnDOMObjectImpl* FParent = nullptr;
  // Counts that only come from children's Impls never free an object its creator owns (a
  // document held as a plain object stays when an interface on one of its nodes goes).
  bool FOwnsObject = false;
};
using TVnDOMObjectImplClass = TClass;

}  // namespace vn
