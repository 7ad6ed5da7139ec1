// The loader's way of making nodes: from one pool per load, named through the document's name
// table, and joined to their parent with the same effects as AppendChild but none of the
// checks that a fresh node cannot fail.
//
// The children of an open element wait in one list shared by all open levels; when the
// element closes they move into arrays of just their size. So a loaded tree carries no slack,
// and no array is copied as it grows.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vnxml/dom_document.h"

namespace vn::detail {

/// An opened element makes the content of a child with at most this many bytes of records at
/// once, so that its nodes lie beside it as a walk reads them; larger parts wait for their own
/// first access. Tests set 0 to open one level at a time.
inline ptrdiff_t SmallContentBytes = 4096;

class LoadTape;
class NameTable;
struct NsScope;

class TreeBuilder {
 public:
  /// Builds below ATarget. The nodes made here come from a new pool; ATarget's own arrays stay
  /// on the heap, as ATarget may outlive every node of the load.
  explicit TreeBuilder(TVnDOMNode* ATarget);
  /// Finishes what is open; the pool is left to the nodes.
  ~TreeBuilder();
  TreeBuilder(const TreeBuilder&) = delete;
  TreeBuilder& operator=(const TreeBuilder&) = delete;

  // A start tag: BeginElement, each attribute, then EnterElement. AKnown, when given, is the
  // record of the name that this load's pool holds already (a load's records, read again).
  void BeginElement(std::u16string_view AQName, const NameRec* AKnown = nullptr);
  /// AValue as read. Values are written back in double quotes, so one that may hold a double
  /// quote (read from single quotes) keeps it as a reference and the saved text loads the same.
  void AddAttribute(std::u16string_view AQName, std::u16string_view AValue, bool AMayHoldQuote = true,
                    const NameRec* AKnown = nullptr);
  /// As AddAttribute for a value of UTF-8 bytes, kept as they are when well-formed; without
  /// AHigh the reader saw only ASCII, which needs no check.
  void AddAttributeUtf8(std::u16string_view AQName, std::string_view AValue, bool AMayHoldQuote = true,
                        bool AHigh = true, const NameRec* AKnown = nullptr);
  /// The element of the start tag joins the node being filled and is filled next.
  void EnterElement();
  /// An end tag: the element being filled is complete. One for the target itself ends the load
  /// in order, with a failure.
  void EndElement();

  void AddText(std::u16string_view AStoredValue);
  /// As AddText for UTF-8 bytes, kept as they are when well-formed (ASCII without AHigh).
  void AddTextUtf8(std::string_view AStoredValue, bool AHigh = true);
  /// White space between tags, kept only where the node being filled preserves space.
  void AddWhitespace(std::u16string_view AText);
  void AddWhitespaceUtf8(std::string_view AText);
  /// Would AddWhitespace keep it? True when there is no node to fill, which AddWhitespace reports.
  bool KeepsWhitespace() const { return FKeepsWhitespace; }
  void AddCDATA(std::u16string_view AText);
  /// As AddCDATA for UTF-8 bytes, kept as they are when ASCII (without AHigh).
  void AddCDATAUtf8(std::string_view AText, bool AHigh);
  void AddComment(std::u16string_view AText);
  void AddInstruction(std::u16string_view ATarget, std::u16string_view AData);

  /// Makes the tree whole as far as the load got: open elements get their children, a start tag
  /// cut short is dropped. Runs at the end of a load and before anyone hears of a failure.
  void Finish();

  // ---- content left on a load's tape (tree_builder_replay.cpp) ----
  /// Makes the children of AElement from its content on the tape, as the load would have made
  /// them; child elements with content of their own stay on the tape, unless AWhole.
  static void OpenElement(TVnDOMElement* AElement, bool AWhole);
  /// Opens every element below ARoot whose content is still on the tape.
  static void OpenAll(TVnDOMNode* ARoot);
  /// ARoot is about to be freed: the content below it stays on the tape, unread.
  static void Forget(TVnDOMNode* ARoot);
  /// The tape and record of AElement while its content is still on the tape, else nil.
  static const char* DeferredBegin(const TVnDOMElement* AElement, const LoadTape** ATape) noexcept;
  /// Under the default collation only a name of nine ASCII characters with a colon at the
  /// fourth, or a name with other characters, can be "xml:space".
  static bool MayBeXmlSpace(std::u16string_view AName, bool AAscii = false) {
    if (AName.size() == 9 && AName[3] == u':') return true;
    if (AAscii) return false;
    for (char16_t c : AName)
      if (c >= 0x80) return true;
    return false;
  }

 private:
  friend class LoadRecorder;
  struct Saved;
  /// Goes on filling AElement, a loaded element, as the load that made it would: same pool,
  /// same declarations in force. AStacks are those of the last element opened in this load.
  TreeBuilder(TVnDOMElement* AElement, Saved& AStacks);
  /// The stacks move from the elements of FPath to AElement: popped up to its parent, pushed
  /// from there (from the load's root when the parent is not on the path).
  void MoveTo(TVnDOMElement* AElement);
  /// Pushes what AElement's start tag declared, as the load pushed it.
  void EnterStacks(TVnDOMElement* AElement);
  void SwapStacks(Saved& AStacks) noexcept;
  /// Feeds the records from AFrom to ATo to this builder; child elements with content are left
  /// on the tape unless AWhole.
  void Replay(const char* AFrom, const char* ATo, bool AWhole);
  /// AElement's record on the tape is at ABegin; with AContent its children stay there.
  void LeaveOnTape(TVnDOMElement* AElement, const char* ABegin, bool AContent);
  template <class T>
  T* Make();
  TVnDOMAttribute* MakeAttribute();
  /// A named attribute of the pending element, its value still to be set.
  TVnDOMAttribute* NewAttribute(std::u16string_view AQName, const NameRec* AKnown);
  /// Names a node of the load; the pool holds the name when the document shares names.
  void SetName(TVnDOMNode* ANode, std::u16string_view AName, const NameRec* AKnown = nullptr);
  /// The node being filled; fails once a stray end tag has left none.
  TVnDOMNode* Current();
  void SetCurrent(TVnDOMNode* ANode);
  /// Adds ALeaf, a node of this builder, as the last child of the node being filled.
  void Place(TVnDOMNode* ALeaf);
  /// The target takes children one by one, into its own arrays, as AppendChild would.
  void AppendToTarget(TVnDOMNode* AChild);
  /// What joining its parent does to a loaded element: namespaces and space handling.
  void Join(TVnDOMNode* AParent, TVnDOMElement* AElement);
  /// The attributes read for the pending element become its own.
  void SealAttributes(TVnDOMElement* AElement);
  /// Frees the element of a start tag that never ended.
  void DropPending();
  /// The innermost open element takes its waiting children and the one above it is filled.
  void CloseElement();

  // ---- namespaces (tree_builder_namespaces.cpp) ----
  // The declarations of the open elements stand in stacks per name, so that every lookup of
  // the load is one hash probe, however deep the nesting and however many names are in force.
  struct Declared {
    TVnDOMAttribute* Attr;
    uint64_t Seq;  // order of declaration, which is the order of the scope's entries
    bool Empty;    // the value is the empty URI
  };
  struct Pushed {
    std::vector<Declared>* ByName;       // or
    std::vector<UnicodeString>* ByPrefix;
  };
  /// What joining does to namespaces: the element's scope, its own declaration and those of
  /// its attributes, as a refresh would work them out (the reader's URI picks the declaration
  /// the element's own attributes give it).
  void ResolveNamespaces(TVnDOMNode* AParent, TVnDOMElement* AElement);
  /// The declaration named AQName in force at the innermost open element (the last one wins).
  TVnDOMAttribute* DeclarationInScope(std::u16string_view AQName);
  /// The same for the declaration of APrefix ("xmlns" for none).
  TVnDOMAttribute* DeclarationForPrefix(std::u16string_view APrefix);
  /// The first declaration in force whose URI is empty, in the order of the scope.
  TVnDOMAttribute* FirstEmptyDeclaration();
  /// The element's "xmlns" attribute, made if missing, with the empty URI.
  TVnDOMAttribute* EmptyDefaultDeclaration(TVnDOMElement* AElement);
  void PushDeclaration(TVnDOMAttribute* AAttr);
  void PopDeclarations(uint32_t AMark);

  std::unordered_map<std::string, std::vector<Declared>> FByName;          // by collation key
  std::unordered_map<std::u16string, std::vector<UnicodeString>> FByPrefix;  // the reader's view
  std::vector<Pushed> FPushed;
  std::map<uint64_t, TVnDOMAttribute*> FVisibleEmpty;  // by Seq: declarations of "" not redeclared
  uint64_t FSeq = 0;
  uint64_t FGeneration = 0;  // changes with every push and pop: the age of FHits
  struct Hit {
    uint64_t Generation = UINT64_MAX;
    std::u16string Name;
    TVnDOMAttribute* Found = nullptr;
  };
  Hit FHits[4];
  struct PrefixHit {
    uint64_t Generation = UINT64_MAX;
    const char16_t* Data = nullptr;  // the prefix asked for last, by address
    size_t Size = 0;
    TVnDOMAttribute* Found = nullptr;
  };
  PrefixHit FPrefixHit;
  uint64_t FDefaultGeneration = UINT64_MAX;  // the age of FDefault
  TVnDOMAttribute* FDefault = nullptr;       // the declaration "xmlns" in force
  uint8_t FNextHit = 0;
  std::vector<UnicodeString> FDeclaredURIs;  // the start tag's declarations as read
  const NsScope* FTargetScope = nullptr;     // what is in force at the target
  // Opening: the elements whose declarations are on the stacks, from the root down, each with
  // the size of FPushed before its own.
  std::vector<std::pair<const TVnDOMElement*, uint32_t>> FPath;
  struct Saved {
    decltype(FByName) ByName;
    decltype(FByPrefix) ByPrefix;
    decltype(FPushed) PushedList;
    decltype(FVisibleEmpty) VisibleEmpty;
    uint64_t Seq = 0;
    uint64_t Generation = 0;
    decltype(FPath) Path;
  };
  bool FTargetEmptyKnown = false;
  std::vector<TVnDOMAttribute*> FTargetEmpty;  // its declarations of the empty URI

  TVnDOMNode* FTarget;
  TVnDOMDocument* FDocument;
  NameTable* FNames;
  NodePool* FPool;
  TVnDOMNode* FCurrent = nullptr;
  bool FKeepsWhitespace = true;
  TVnDOMElement* FPending = nullptr;  // the element of a start tag being read
  bool FSchemaInstance = false;       // the start tag declares the schema-instance namespace
  bool FMaybeSpace = false;           // the start tag has an attribute that may be "xml:space"
  std::vector<TVnDOMNode*> FAttributes;
  // Children of the open elements, innermost last, each with its kind in the low bits (see
  // Tagged), so that closing sorts them into the typed views without reading them again.
  std::vector<uintptr_t> FWaiting;
  struct Open {
    uint32_t Waiting;  // where the element's children start in FWaiting
    uint32_t Pushed;   // where its declarations start in FPushed
  };
  std::vector<Open> FOpen;
  // Names this load has given, by length and end units: a load meets the same few names over
  // and over, and a record that this load's pool holds already is given again without counting.
  static constexpr size_t kNameCache = 64;
  NameRec* FNameCache[kNameCache] = {};
  std::u16string FDecoded;  // UTF-8 that is not kept as it is, decoded
  std::string FQuoted;      // a UTF-8 value with its double quotes as references
};

}  // namespace vn::detail
