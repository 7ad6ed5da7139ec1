// Writing an XML tree as JSON: one walk with an explicit stack, through the XML writer's block
// outputs, so the stream sees large writes and depth costs no call stack.
#include "vnxml/dom_json_writer.h"

#include <algorithm>
#include <type_traits>
#include <cstdint>
#include <cstring>
#include <memory>
#include <typeinfo>
#include <string>
#include <unordered_map>
#include <vector>

#include "bridge/dom_json_tape.h"
#include "bridge/json_name_pieces.h"
#include "bridge/json_text_put.h"
#include "dom/output_writer.h"
#include "json/json_escape.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/common/vn_type_info_value.h"
#include "vnxml/dom_document.h"
#include "vnxml/json_reflected_values.h"
#include "vnxml/xml_escape.h"

namespace vn {

namespace {

constexpr std::string_view kLineBreak = "\r\n";

const TVnDOMElement& AsElement(const TVnDOMNode* ANode) { return *static_cast<const TVnDOMElement*>(ANode); }

constexpr std::u16string_view kXsiURI = cVnXSINamespaceURI;
constexpr std::u16string_view kXsdURI = cVnXSDNamespaceURI;

bool IsURI(std::u16string_view AURI, std::u16string_view AOf) {
  return AURI.size() == AOf.size() && SameText(AURI, AOf);
}

/// Which attributes take part: none that declares a namespace or is in the xsi or xsd
/// namespace. Reading a namespace URI decodes its declaration's value, so the answer is kept per
/// declaration for the write (the tree is read only meanwhile).
class AttributeFilter {
 public:
  /// Whether AAttribute takes part; AXsi tells whether it is in the xsi namespace.
  bool Counts(const TVnDOMNode* AAttribute, bool& AXsi) {
    const auto* a = static_cast<const TVnDOMAttribute*>(AAttribute);
    AXsi = false;
    // only a name of five letters can declare a namespace
    const std::u16string_view prefix = a->PrefixView();
    if ((prefix.empty() ? a->LocalNameView() : prefix).size() == 5 && a->IsNamespace()) return false;
    // An owned attribute of this library's class without a declaration has no URI or the XML
    // namespace's: it counts either way.
    const TVnDOMAttribute* decl = a->GetNamespaceDecl();
    const bool plain = typeid(*a) == typeid(TVnDOMAttribute) && a->ParentNode();
    if (plain && !decl) return true;
    if (!plain || !decl) return Classify(a->GetNamespaceURI(), AXsi);
    Seen& slot = Memo[(reinterpret_cast<uintptr_t>(decl) >> 4) & (kMemo - 1)];
    if (slot.Decl != decl) slot = {decl, Class(a->GetNamespaceURI())};
    AXsi = slot.K == kXsi;
    return slot.K == kOther;
  }

 private:
  enum Kind : uint8_t { kOther, kXsi, kXsd };
  struct Seen {
    const TVnDOMAttribute* Decl = nullptr;
    Kind K = kOther;
  };
  static constexpr size_t kMemo = 16;
  static Kind Class(std::u16string_view AURI) {
    if (IsURI(AURI, kXsiURI)) return kXsi;
    return IsURI(AURI, kXsdURI) ? kXsd : kOther;
  }
  static bool Classify(std::u16string_view AURI, bool& AXsi) {
    const Kind k = Class(AURI);
    AXsi = k == kXsi;
    return k == kOther;
  }
  Seen Memo[kMemo];
};

/// The stored text of a text node or attribute of this library's classes, else nil.
const detail::CompactString* KeptText(const TVnDOMNode* ANode) {
  // The node type first: an exact-class test between different classes compares names.
  const TVnDOMNodeType type = ANode->GetNodeType();
  if (type == ntText && typeid(*ANode) == typeid(TVnDOMText)) return &static_cast<const TVnDOMText*>(ANode)->StoredText();
  if (type == ntAttribute && typeid(*ANode) == typeid(TVnDOMAttribute))
    return &static_cast<const TVnDOMAttribute*>(ANode)->StoredText();
  return nullptr;
}

/// The decoded value of a node: the stored UTF-16 text itself where it holds no reference, else
/// decoded into AScratch.
std::u16string_view DecodedValue(const TVnDOMNode* ANode, std::u16string& AScratch) {
  const detail::CompactString* kept = KeptText(ANode);
  if (!kept || kept->IsUtf8()) return AScratch = ANode->GetNodeValue();
  const std::u16string_view stored = kept->Wide();
  if (stored.find(u'&') == std::u16string_view::npos) return stored;
  return AScratch = VnXMLToStr(stored);
}

/// The one text child of an element whose value is that text, else nil.
const TVnDOMNode* OnlyText(const TVnDOMElement* AElement) {
  const auto& chars = AElement->CharNodesView();
  return chars.size() == 1 && chars[0]->GetNodeType() == ntText ? chars[0] : nullptr;
}

/// Names are shared within a document, so equal names mostly share their characters too.
bool SameName(std::u16string_view A, std::u16string_view B) noexcept {
  return A.size() == B.size() && (A.data() == B.data() || A == B);
}

bool StartsLikeNumber(std::u16string_view AText) {
  if (AText.empty()) return false;
  const char16_t c = AText.front();
  return c == u'+' || c == u'-' || c == u'.' || (c >= u'0' && c <= u'9');
}

/// The tree's nodes as the walk reads them.
struct NodeSource {
  using Element = const TVnDOMElement*;
  using Attribute = const TVnDOMNode*;
  static std::u16string_view LocalName(Element AElement) noexcept { return AElement->LocalNameView(); }
};

template <class Out, class Src>
class JsonTreeWriter {
  static constexpr bool kNodes = std::is_same_v<Src, NodeSource>;
  static constexpr bool kUtf8 = std::is_same_v<Out, detail::Utf8Output>;

 public:
  using Element = typename Src::Element;
  using Attr = typename Src::Attribute;

  JsonTreeWriter(Out& AOut, bool AFormatted, Integer& ALevel, detail::NamePieces& APieces)
      : O(AOut), Formatted(AFormatted), Level(ALevel), Pieces(APieces) {}

  /// The node's own form: an element's member, an attribute's pair, a document's children.
  void Node(const TVnDOMNode* ANode) requires kNodes {
    switch (ANode->GetNodeType()) {
      case ntElement: Run(&AsElement(ANode)); break;
      case ntAttribute:
        if (bool xsi; Filter.Counts(ANode, xsi)) Attribute(ANode, Formatted);
        break;
      case ntDocument:
        for (const TVnDOMNode* child : ANode->ChildrenView())
          if (child->GetNodeType() == ntElement) Run(&AsElement(child));
        break;
      default: break;
    }
  }

  /// The element form: the member inside braces of its own.
  void Object(const TVnDOMElement* AElement) requires kNodes {
    O.Ascii("{");
    LineBreak();
    Run(AElement);
    LineBreak();
    O.Ascii("}");
  }

  /// The member or array item of ANode, written from its load's record ATop.
  void FromTape(const TVnDOMElement* ANode, Element ATop, bool AItem) requires(!kNodes) {
    S.Start(ANode, ATop);
    AItem ? Item(ATop) : Member(ATop);
    Drain();
  }

 private:
  // What an open level writes next: the groups of an element's children (arrays gathered at
  // their first place), the items of one such array, or an array item's child elements as
  // they come.
  enum Kind : uint8_t { Groups, Items, Members };
  struct Frame {
    Kind K;
    Element E;
    uint32_t Next;     // Groups, Items: position in FPlan; Members: index among the elements
    uint32_t End;      // the end of the same
    uint32_t PlanAt;   // Groups: where the element's plan starts, dropped with the frame
    uint32_t KidsAt;   // records: where the source keeps E's child elements
    bool First;        // nothing written at this level yet
    bool Preserves;    // records: E keeps white space
  };

  // ---- the walk ----
  void Run(Element ARoot) {
    Member(ARoot);
    Drain();
  }

  void Drain() {
    while (!Stack.empty()) {
      Frame& f = Stack.back();
      if (f.Next == f.End) {
        Close();
        continue;
      }
      if (!f.First) Separator();
      f.First = false;
      switch (f.K) {
        case Groups: {
          const uint32_t at = f.Next;
          const uint32_t count = Plan[at];
          f.Next = at + 1 + count;
          if (count == 1)
            Member(Kid(f, Plan[at + 1]));
          else
            Array(f, at);
          break;
        }
        case Items: {
          const Element item = Kid(f, Plan[f.Next++]);
          Item(item);
          break;
        }
        case Members: {
          const Element child = Kid(f, f.Next++);
          Member(child);
          break;
        }
      }
    }
  }

  void Close() {
    const Frame f = Stack.back();
    Stack.pop_back();
    --Level;
    if (Formatted) {
      LineBreak();
      O.Indent(static_cast<size_t>(Level));
    }
    O.Ascii(f.K == Items ? "]" : "}");
    if (f.K == Groups) Plan.resize(f.PlanAt);
    if constexpr (!kNodes)
      if (f.K != Items) S.Unpin(f.KidsAt);
  }

  /// Child AIndex of the element of AFrame.
  Element Kid(const Frame& AFrame, uint32_t AIndex) {
    if constexpr (kNodes)
      return &AsElement(AFrame.E->ElementsView()[AIndex]);
    else
      return S.Kid(AFrame.KidsAt, AIndex);
  }
  const auto& Kids(Element AElement) {
    if constexpr (kNodes)
      return AElement->ElementsView();
    else
      return S.Kids(AElement);
  }
  bool HasChildElements(Element AElement) {
    if constexpr (kNodes)
      return AElement->HasChildElements();
    else
      return S.HasChildElements(AElement);
  }
  /// A frame of AElement; the source keeps its child elements meanwhile.
  void Push(Kind AKind, Element AElement, uint32_t ANext, uint32_t AEnd, uint32_t APlanAt, bool AFirst) {
    uint32_t kids = 0;
    if constexpr (!kNodes) kids = S.Pin(AElement);
    Stack.push_back({AKind, AElement, ANext, AEnd, APlanAt, kids, AFirst, Preserves});
  }

  /// A content that its load still keeps as records goes from there, when they answer for it:
  /// its nodes are not made for the write.
  bool WrittenFromTape(Element AElement, bool AItem) {
    if constexpr (kNodes) {
      if (!AElement->IsDeferred()) return false;
      const auto record = detail::TapeSource::DeferredRecord(AElement);
      if (!record) return false;
      if (!Tape) Tape = std::make_unique<JsonTreeWriter<Out, detail::TapeSource>>(O, Formatted, Level, Pieces);
      Tape->FromTape(AElement, record, AItem);
      return true;
    } else {
      return false;
    }
  }

  // ---- the three forms ----
  /// "name": and the value, or the opening of the object that the children fill.
  void Member(Element AElement) {
    if (WrittenFromTape(AElement, false)) return;
    Pad();
    Name(Src::LocalName(AElement), true);
    CollectAttributes(AElement);
    if (!HasChildElements(AElement)) {
      Value(AElement);
      // The attributes of a leaf follow its value as members of the enclosing object.
      for (size_t i = 0; i < Attrs.size(); ++i) {
        O.Ascii(", ");
        if (Formatted) {
          LineBreak();
          Pad();
        }
        Attribute(AElement, Attrs[i], false);
      }
      return;
    }
    // The plan first: it gathers the child names that the attributes' names are checked against.
    PushGroups(AElement);
    if (!Attrs.empty()) O.Ascii("{");
    ++Level;
    for (const Attr a : Attrs) {
      LineBreak();
      Attribute(AElement, a, Formatted);
      O.Ascii(",");
    }
    if (Attrs.empty()) O.Ascii("{");
    LineBreak();
  }

  /// The siblings of one local name as an array, at the place of the first of them.
  void Array(const Frame& AParent, uint32_t AGroup) {
    Pad();
    Name(Src::LocalName(Kid(AParent, Plan[AGroup + 1])), false);
    O.Ascii("[");
    LineBreak();
    ++Level;
    // the items are the parent's children, which the source keeps for the parent's frame
    const Frame f = AParent;
    Stack.push_back({Items, f.E, AGroup + 1, AGroup + 1 + Plan[AGroup], 0, f.KidsAt, true, f.Preserves});
  }

  /// One element of an array: its value, or an object of its attributes and child elements,
  /// where repeated names are not gathered.
  void Item(Element AElement) {
    if (WrittenFromTape(AElement, true)) return;
    Pad();
    CollectAttributes(AElement);
    if (!HasChildElements(AElement)) {
      Value(AElement);
      return;
    }
    O.Ascii("{");
    LineBreak();
    ++Level;
    for (size_t i = 0; i < Attrs.size(); ++i) {
      if (i) Separator();
      Attribute(AElement, Attrs[i], Formatted);
    }
    Push(Members, AElement, 0, static_cast<uint32_t>(Kids(AElement).size()), 0, Attrs.empty());
  }

  /// "element_attribute": "value", with "_" in front while a child element has that name; the
  /// attribute is one that Counts.
  void Attribute(const TVnDOMNode* AAttribute, bool APad) requires kNodes {
    const TVnDOMNode* owner = AAttribute->ParentNode();
    Attribute(owner && owner->GetNodeType() == ntElement ? &AsElement(owner) : nullptr, AAttribute, APad);
  }
  /// The same for an attribute of AOwner, nil for one without an element.
  void Attribute(Element AOwner, Attr AAttribute, bool APad) {
    const std::u16string_view ownerName = OwnerName(AOwner, AAttribute);
    const std::u16string_view local = AttributeLocalName(AAttribute);
    const bool checked = AOwner && HasChildElements(AOwner);
    if constexpr (kUtf8) {
      // the made name serves unless a child element of the owner bears it
      const auto piece = Pieces.Get(detail::NamePieces::AttributeName, ownerName, local);
      if (!checked || !HasChildNamed(AOwner, piece.Name)) {
        if (APad) Pad();
        PutPiece(piece.Bytes);
        return QuotedValue(AAttribute);
      }
    }
    Text.assign(ownerName);
    Text += u'_';
    Text.append(local);
    for (char16_t& c : Text)
      if (c == u'.') c = u'_';
    if (checked) {
      while (HasChildNamed(AOwner, Text)) Text.insert(Text.begin(), u'_');
    }
    if (APad) Pad();
    QuotedName(Text);
    QuotedValue(AAttribute);
  }
  /// The owner's local name: a node's parent of any type names it.
  static std::u16string_view OwnerName(Element AOwner, Attr AAttribute) {
    if constexpr (kNodes) {
      const TVnDOMNode* owner = AAttribute->ParentNode();
      return owner ? owner->LocalNameView() : std::u16string_view();
    } else {
      return Src::LocalName(AOwner);
    }
  }
  static std::u16string_view AttributeLocalName(Attr AAttribute) {
    if constexpr (kNodes)
      return AAttribute->LocalNameView();
    else
      return Src::LocalName(AAttribute->Name);
  }

  // ---- values ----
  /// The value of an element without child elements, by the kind of its typed value.
  /// The attributes of AElement are collected.
  void Value(Element AElement) {
    if constexpr (!kNodes) {
      // no attribute of a record is in the xsi namespace: the text as a string, or null
      return QuotedTapeValue(S.LeafValue(AElement, Preserves));
    } else {
      // Without an attribute in the xsi namespace there is neither xsi:nil nor xsi:type: the
      // text as a string, or null.
      if (!XsiSeen) {
        if (AElement->CharNodesView().empty())
          O.Ascii("null");
        else
          QuotedText(AElement);
        return;
      }
      const TValue value = AElement->GetAsValue();
      if (value.IsEmpty()) return O.Ascii("null");
      const TVnTypeKind kind = TypeKind(value);
      if (kind == vtkEnumeration || kind == vtkSet) return O.Text(VnValToJSON(value));
      switch (MainTypeKind(value)) {
        case mtkInteger:
        case mtkFloat: {
          // A number as its text; text that doesn't start like one stays a string, so the
          // output stays JSON.
          const UnicodeString text = AElement->GetNodeValue();
          if (text.empty())
            O.Ascii("null");
          else if (StartsLikeNumber(text))
            O.Text(text);
          else
            QuotedString(text);
          return;
        }
        case mtkString:
        case mtkDateTime: return QuotedText(AElement);
        case mtkBoolean: return O.Ascii(ToBoolean(value) ? "true" : "false");
        default: return O.Ascii("null");
      }
    }
  }

  /// The value of a text node or attribute as a JSON string; UTF-8 kept without references
  /// goes to UTF-8 output without a detour through UTF-16.
  void QuotedValue(Attr ANode) {
    if constexpr (!kNodes) {
      return QuotedTapeValue(S.AttributeValue(ANode));
    } else {
      if constexpr (kUtf8) {
        const detail::CompactString* kept = KeptText(ANode);
        if (kept && kept->IsUtf8() && QuotedUtf8(kept->Utf8())) return;
      }
      QuotedString(DecodedValue(ANode, Value16));
    }
  }
  /// A value read from the records: UTF-8 as it is unless it holds a reference.
  void QuotedTapeValue(const detail::TapeSource::Value& AValue) requires(!kNodes) {
    using V = detail::TapeSource::Value;
    if (AValue.Is == V::None) return O.Ascii("null");
    if (AValue.Is == V::Units) return QuotedString(AValue.Text);
    if constexpr (kUtf8)
      if (QuotedUtf8(AValue.Utf8)) return;
    QuotedString(S.Decoded(AValue.Utf8));
  }
  /// UTF-8 text as a JSON string, unless it holds a reference: then nothing is written.
  bool QuotedUtf8(std::string_view ABytes) requires kUtf8 {
    // the quotes around: one byte before the text, one after
    char* const out = O.Reserve(ABytes.size() * 6 + 2);
    *out = '"';
    char* const last = detail::PutJSONFromUtf8(out + 1, ABytes);
    if (!last) return false;
    *last = '"';
    O.Advance(last + 1);
    return true;
  }
  /// An element's value text as a JSON string.
  void QuotedText(const TVnDOMElement* AElement) requires kNodes {
    if (const TVnDOMNode* text = OnlyText(AElement)) return QuotedValue(text);
    QuotedString(AElement->GetNodeValue());
  }

  void QuotedString(std::u16string_view AText) {
    O.Ascii("\"");
    Escape(AText);
    O.Ascii("\"");
  }

  /// AText escaped as VnStrToJSON does, straight into the output: unchanged runs go whole.
  void Escape(std::u16string_view AText) {
    if constexpr (kUtf8) {
      O.Advance(detail::PutJSONUtf8(O.Reserve(AText.size() * 6), AText));
      return;
    }
    size_t run = 0;
    for (size_t i = 0; i < AText.size(); ++i) {
      const char16_t c = AText[i];
      const char16_t e = detail::kStrToJSONEscapes[c];
      if (e == 0) continue;
      if (i > run) O.Text(AText.substr(run, i - run));
      run = i + 1;
      if (e == 1) continue;
      if (e != 0xFFFF) {
        const char escape[2] = {'\\', static_cast<char>(e)};
        O.Ascii({escape, 2});
      } else {
        using detail::kHex;
        const char escape[6] = {'\\', 'u', kHex[c >> 12], kHex[(c >> 8) & 15], kHex[(c >> 4) & 15], kHex[c & 15]};
        O.Ascii({escape, 6});
      }
    }
    if (run < AText.size()) O.Text(AText.substr(run));
  }

  // ---- pieces ----
  void Name(std::u16string_view ALocalName, bool AUnderscoreDots) {
    if constexpr (kUtf8) {
      const auto piece =
          Pieces.Get(AUnderscoreDots ? detail::NamePieces::Member : detail::NamePieces::ArrayName, ALocalName);
      return PutPiece(piece.Bytes);
    }
    if (AUnderscoreDots && ALocalName.find(u'.') != std::u16string_view::npos) {
      Text.assign(ALocalName);
      for (char16_t& c : Text)
        if (c == u'.') c = u'_';
      ALocalName = Text;
    }
    QuotedName(ALocalName);
  }
  /// A name goes as it is, unless it holds what would end or break the JSON string: then it is
  /// escaped as values are, so that the output stays JSON.
  void QuotedName(std::u16string_view AName) {
    if (detail::NeedsEscape(AName)) {
      O.Ascii("\"");
      Escape(AName);
      O.Ascii("\": ");
    } else {
      O.Framed("\"", AName, "\": ");
    }
  }
  /// A piece of NamePieces: most are short and go in one fixed-size copy.
  void PutPiece(std::string_view APiece) {
    constexpr size_t kSlack = detail::NamePieces::kSlack;
    char* const out = O.Reserve(APiece.size() + kSlack);
    if (APiece.size() <= kSlack)
      std::memcpy(out, APiece.data(), kSlack);
    else
      std::memcpy(out, APiece.data(), APiece.size());
    O.Advance(out + APiece.size());
  }
  void Pad() {
    if (Formatted) O.Indent(static_cast<size_t>(Level));
  }
  void LineBreak() {
    if (Formatted) O.Ascii(kLineBreak);
  }
  void Separator() {
    O.Ascii(",");
    LineBreak();
  }

  /// The attributes of AElement that take part into Attrs; for records, the space rule of
  /// AElement into Preserves (its parent's until then, in the frame on top).
  void CollectAttributes(Element AElement) {
    if constexpr (kNodes) {
      Attrs.clear();
      XsiSeen = false;
      for (const TVnDOMNode* a : AElement->AttributesView()) {
        bool xsi;
        if (Filter.Counts(a, xsi)) Attrs.push_back(a);
        XsiSeen = XsiSeen || xsi;
      }
    } else {
      Preserves = S.Attributes(AElement, Attrs, Stack.empty() ? false : Stack.back().Preserves);
    }
  }

  /// Whether AElement has a child element of local name AName.
  bool HasChildNamed(Element AElement, std::u16string_view AName) {
    GatherNames(AElement);
    if (GroupName.size() <= 8)
      return std::any_of(GroupName.begin(), GroupName.end(), [&](std::u16string_view n) { return SameName(n, AName); });
    return GroupOf.count(AName) != 0;
  }

  /// The local names of AElement's child elements, each read once: Group[i] is the group of
  /// element i, groups numbered by first appearance, with their names and sizes. The names of
  /// the element last gathered stay, so its attributes check against them without a scan.
  void GatherNames(Element AElement) {
    if (NamesOf == AElement) return;
    NamesOf = AElement;
    const auto& elements = Kids(AElement);
    const auto n = static_cast<uint32_t>(elements.size());
    Group.assign(n, 0);
    GroupSize.clear();
    GroupName.clear();
    if (!GroupOf.empty()) GroupOf.clear();  // clearing sweeps every bucket, even of an empty map
    constexpr uint32_t kAhead = 8;
    if constexpr (kNodes)
      for (uint32_t i = 0; i < n && i < kAhead; ++i) __builtin_prefetch(elements[i]);
    for (uint32_t i = 0; i < n; ++i) {
      Element e;
      if constexpr (kNodes) {
        if (i + kAhead < n) __builtin_prefetch(elements[i + kAhead]);
        e = static_cast<Element>(elements[i]);
        // The walk reaches these lists soon: asked for now, they load meanwhile.
        __builtin_prefetch(e->AttributesView().begin());
        __builtin_prefetch(e->CharNodesView().begin());
        __builtin_prefetch(e->ElementsView().begin());
      } else {
        e = elements[i];
      }
      const std::u16string_view name = Src::LocalName(e);
      uint32_t g = static_cast<uint32_t>(GroupName.size());
      if (g <= 8) {
        for (uint32_t k = 0; k < GroupName.size(); ++k)
          if (SameName(GroupName[k], name)) {
            g = k;
            break;
          }
        // past eight names a map takes over, holding the names so far
        if (g == 8 && GroupOf.empty())
          for (uint32_t k = 0; k < GroupName.size(); ++k) GroupOf.emplace(GroupName[k], k);
      }
      if (g >= 8) g = GroupOf.try_emplace(name, static_cast<uint32_t>(GroupName.size())).first->second;
      if (g == GroupName.size()) {
        GroupName.push_back(name);
        GroupSize.push_back(0);
      }
      ++GroupSize[g];
      Group[i] = g;
    }
  }

  /// The plan of AElement's children: per local name, in the order of first appearance, the
  /// count and the indexes of the elements that bear it.
  void PushGroups(Element AElement) {
    GatherNames(AElement);
    const auto at = static_cast<uint32_t>(Plan.size());
    const auto n = static_cast<uint32_t>(Group.size());
    // Lay the groups out: count, then the indexes; Fill[g] is where group g's next index goes.
    Fill.resize(GroupSize.size());
    uint32_t cursor = at;
    for (size_t g = 0; g < GroupSize.size(); ++g) {
      Fill[g] = cursor + 1;
      cursor += 1 + GroupSize[g];
    }
    Plan.resize(cursor);
    for (size_t g = 0; g < GroupSize.size(); ++g) Plan[Fill[g] - 1] = GroupSize[g];
    for (uint32_t i = 0; i < n; ++i) Plan[Fill[Group[i]]++] = i;
    Push(Groups, AElement, at, cursor, at, true);
  }

  Out& O;
  bool Formatted;
  Integer& Level;
  detail::NamePieces& Pieces;  // UTF-8 output only
  std::vector<Frame> Stack;
  std::vector<uint32_t> Plan;
  std::vector<Attr> Attrs;
  std::u16string Text;
  // The child names of NamesOf (GatherNames) and the scratch of PushGroups.
  std::vector<uint32_t> Group, GroupSize, Fill;
  std::vector<std::u16string_view> GroupName;
  std::unordered_map<std::u16string_view, uint32_t> GroupOf;
  Element NamesOf = nullptr;
  // nodes
  AttributeFilter Filter;
  bool XsiSeen = false;  // an attribute of the last collected element is in the xsi namespace
  std::u16string Value16;
  std::unique_ptr<JsonTreeWriter<Out, detail::TapeSource>> Tape;  // for contents left as records
  // records
  detail::TapeSource S;
  bool Preserves = false;  // the last collected element keeps white space
};

// Runs AWrite(JsonTreeWriter&) with the output for ACodePage. What was written before a
// failure reaches the stream too.
template <class Fn>
void WriteJSON(TStream& AStream, Word ACodePage, bool AFormatted, Fn&& AWrite) {
  auto run = [&](auto& AOut) {
    Integer level = 1;
    detail::NamePieces pieces;
    JsonTreeWriter<std::remove_reference_t<decltype(AOut)>, NodeSource> writer(AOut, AFormatted, level, pieces);
    try {
      AWrite(writer);
    } catch (...) {
      AOut.Flush();
      throw;
    }
    AOut.Flush();
  };
  switch (ACodePage) {
    case cVnCodePageDefault:
    case cVnCodePageUTF8: {
      detail::Utf8Output out(AStream);
      run(out);
      break;
    }
    case cVnCodePageUTF16LE: {
      detail::Utf16Output out(AStream);
      run(out);
      break;
    }
    default: {
      detail::ConvertingOutput out(AStream, ACodePage);
      run(out);
    }
  }
}

}  // namespace

void SaveToJSONStream(const TVnDOMNode& ANode, TStream& AStream, Word ACodePage, bool AFormatted) {
  WriteJSON(AStream, ACodePage, AFormatted, [&](auto& AWriter) {
    if (ANode.GetNodeType() == ntElement)
      AWriter.Object(&AsElement(&ANode));
    else
      AWriter.Node(&ANode);
  });
}

void SaveToJSONStream(const TVnDOMDocument& ADocument, TStream& AStream, bool AFormatted, bool AWriteBOM) {
  if (AWriteBOM) AStream.WriteBuffer(cVnUTF8.data(), static_cast<Int64>(cVnUTF8.size()));
  WriteJSON(AStream, cVnCodePageUTF8, AFormatted, [&](auto& AWriter) { AWriter.Node(&ADocument); });
}

UnicodeString GetJSON(const TVnDOMNode& ANode, bool AFormatted) {
  TVnStringStream stream(cVnCodePageUTF16LE);
  SaveToJSONStream(ANode, stream, cVnCodePageUTF16LE, AFormatted);
  std::string_view bytes = stream.GetBytesView();
  UnicodeString text(bytes.size() / 2, u'\0');
  if (!bytes.empty()) std::memcpy(text.data(), bytes.data(), text.size() * 2);
  return text;
}

}  // namespace vn
