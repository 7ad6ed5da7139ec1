// Writing an XML tree as JSON: one walk with an explicit stack, through the XML writer's block
// outputs, so the stream sees large writes and depth costs no call stack.
#include "vnxml/dom_json_writer.h"

#include <algorithm>
#include <type_traits>
#include <cstdint>
#include <cstring>
#include <typeinfo>
#include <string>
#include <unordered_map>
#include <vector>

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

constexpr char kHex[] = "0123456789ABCDEF";

/// The JSON escape of one UTF-16 unit at AOut, as VnStrToJSON makes it, in UTF-8; the end.
char* PutEscapedUnit(char* AOut, char16_t c) noexcept {
  const char16_t e = detail::kStrToJSONEscapes[c];
  if (e == 0) {
    if (c < 0x80) {
      *AOut++ = static_cast<char>(c);
    } else {
      *AOut++ = static_cast<char>(0xC0 | (c >> 6));
      *AOut++ = static_cast<char>(0x80 | (c & 0x3F));
    }
  } else if (e == 0xFFFF) {
    const char escape[6] = {'\\', 'u', kHex[c >> 12], kHex[(c >> 8) & 15], kHex[(c >> 4) & 15], kHex[c & 15]};
    std::memcpy(AOut, escape, 6);
    AOut += 6;
  } else if (e != 1) {
    *AOut++ = '\\';
    *AOut++ = static_cast<char>(e);
  }
  return AOut;
}

/// The bytes of UTF-8 text that go out as they are: ASCII that needs no escape, and no "&".
struct StaysInUtf8 {
  bool Of[256] = {};
  constexpr StaysInUtf8() {
    for (int c = 0x20; c < 0x80; ++c) Of[c] = detail::kStrToJSONEscapes[static_cast<char16_t>(c)] == 0 && c != '&';
  }
  constexpr bool operator[](uint8_t AByte) const noexcept { return Of[AByte]; }
};
constexpr StaysInUtf8 kStaysInUtf8;

/// Well-formed UTF-8 text escaped as VnStrToJSON escapes its UTF-16 form, at AOut, which has
/// room for 6 bytes a byte; the end, or nil at a "&": text with references must be decoded
/// first. What stays as it is goes in runs, sixteen bytes a step.
char* PutJSONFromUtf8(char* AOut, std::string_view AText) noexcept {
  const auto* p = reinterpret_cast<const uint8_t*>(AText.data());
  const uint8_t* const end = p + AText.size();
  while (p < end) {
#if defined(__SSE2__)
    // a byte stays when it lies in 0x20..0x7F and is none of " / backslash &; signed, bytes from
    // 0x80 up compare below the blank
    const __m128i space = _mm_set1_epi8(0x20);
    const __m128i quote = _mm_set1_epi8('"'), slash = _mm_set1_epi8('/'), backslash = _mm_set1_epi8('\\');
    const __m128i amp = _mm_set1_epi8('&');
    while (end - p >= 16) {
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
      __m128i stop = _mm_or_si128(_mm_cmplt_epi8(v, space), _mm_cmpeq_epi8(v, quote));
      stop = _mm_or_si128(stop, _mm_or_si128(_mm_cmpeq_epi8(v, slash), _mm_cmpeq_epi8(v, backslash)));
      stop = _mm_or_si128(stop, _mm_cmpeq_epi8(v, amp));
      const unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(stop));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(AOut), v);
      if (mask != 0) {
        const unsigned keep = static_cast<unsigned>(__builtin_ctz(mask));
        p += keep;
        AOut += keep;
        break;
      }
      p += 16;
      AOut += 16;
    }
#endif
    while (p < end && kStaysInUtf8[*p]) *AOut++ = static_cast<char>(*p++);
    if (p == end) break;
    const uint8_t c = *p;
    if (c == '&') return nullptr;
    if (c < 0x80) {
      AOut = PutEscapedUnit(AOut, c);
      ++p;
    } else if (c < 0xE0) {
      AOut = PutEscapedUnit(AOut, static_cast<char16_t>(((c & 0x1F) << 6) | (p[1] & 0x3F)));
      p += 2;
    } else if (c < 0xF0) {
      AOut = PutEscapedUnit(AOut, static_cast<char16_t>(((c & 0x0F) << 12) | ((p[1] & 0x3F) << 6) | (p[2] & 0x3F)));
      p += 3;
    } else {
      const uint32_t cp = ((c & 0x07u) << 18) | ((p[1] & 0x3Fu) << 12) | ((p[2] & 0x3Fu) << 6) | (p[3] & 0x3Fu);
      AOut = PutEscapedUnit(AOut, static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)));
      AOut = PutEscapedUnit(AOut, static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
      p += 4;
    }
  }
  return AOut;
}

/// AText escaped as VnStrToJSON does, encoded as UTF-8 at AOut, which has room for 6 bytes a
/// unit; the end. Plain ASCII goes eight units a step.
char* PutJSONUtf8(char* AOut, std::u16string_view AText) noexcept {
  const char16_t* p = AText.data();
  const char16_t* const end = p + AText.size();
  while (p < end) {
#if defined(__SSE2__)
    // a unit is plain when it lies in 0x20..0x7F and is none of " / backslash
    const __m128i high = _mm_set1_epi16(static_cast<short>(0xFF80));
    const __m128i space = _mm_set1_epi16(0x20);
    const __m128i quote = _mm_set1_epi16('"'), slash = _mm_set1_epi16('/'), backslash = _mm_set1_epi16('\\');
    while (end - p >= 8) {
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
      __m128i stop = _mm_cmpeq_epi16(_mm_and_si128(v, high), _mm_setzero_si128());  // below 0x80
      stop = _mm_andnot_si128(_mm_cmplt_epi16(v, space), stop);
      stop = _mm_andnot_si128(_mm_cmpeq_epi16(v, quote), stop);
      stop = _mm_andnot_si128(_mm_cmpeq_epi16(v, slash), stop);
      stop = _mm_andnot_si128(_mm_cmpeq_epi16(v, backslash), stop);
      if (_mm_movemask_epi8(stop) != 0xFFFF) break;
      _mm_storel_epi64(reinterpret_cast<__m128i*>(AOut), _mm_packus_epi16(v, v));
      p += 8;
      AOut += 8;
    }
    if (p == end) break;
#endif
    AOut = PutEscapedUnit(AOut, *p++);
  }
  return AOut;
}

/// Whether a member name must be escaped to stay inside its JSON string.
bool NeedsEscape(std::u16string_view AName) noexcept {
  return std::any_of(AName.begin(), AName.end(), [](char16_t c) { return c == u'"' || c == u'\\' || c < 0x20; });
}

/// The member names of one UTF-8 write as they go out, `"name": `, found again by the address of
/// the names they are made of: names are shared within a document, so each is made once and
/// then copied. The tree is read only meanwhile, so an address keeps its text.
class NamePieces {
 public:
  enum Form : uint8_t { Member, ArrayName, AttributeName };
  /// The bytes readable behind each piece.
  static constexpr size_t kSlack = 32;
  struct Piece {
    std::string_view Bytes;
    std::u16string_view Name;  // the name itself, for the attribute form only
  };

  Piece Get(Form AForm, std::u16string_view AFirst, std::u16string_view ASecond = {}) {
    if (Count * 2 >= Table.size()) Grow();
    const size_t mask = Table.size() - 1;
    size_t i = Slot(AForm, AFirst.data(), ASecond.data(), mask);
    for (; Table[i].Used; i = (i + 1) & mask) {
      const Entry& e = Table[i];
      if (e.First == AFirst.data() && e.Second == ASecond.data() && e.FirstSize == AFirst.size() &&
          e.SecondSize == ASecond.size() && e.F == AForm)
        return PieceOf(e);
    }
    Table[i] = Make(AForm, AFirst, ASecond);
    ++Count;
    return PieceOf(Table[i]);
  }

 private:
  struct Entry {
    const char16_t* First = nullptr;
    const char16_t* Second = nullptr;
    uint32_t FirstSize = 0, SecondSize = 0;
    uint32_t BytesAt = 0, BytesSize = 0, NameAt = 0, NameSize = 0;
    Form F = Member;
    bool Used = false;
  };
  static size_t Slot(Form AForm, const char16_t* AFirst, const char16_t* ASecond, size_t AMask) noexcept {
    const uint64_t h = (reinterpret_cast<uintptr_t>(AFirst) ^ (reinterpret_cast<uintptr_t>(ASecond) * 31) ^ AForm) *
                       0x9E3779B97F4A7C15ull;
    return static_cast<size_t>(h >> 40) & AMask;
  }
  Piece PieceOf(const Entry& AEntry) const noexcept {
    return {std::string_view(Bytes).substr(AEntry.BytesAt, AEntry.BytesSize),
            std::u16string_view(Names).substr(AEntry.NameAt, AEntry.NameSize)};
  }
  [[gnu::noinline]] void Grow() {
    std::vector<Entry> old(Table.size() < 64 ? 64 : Table.size() * 2);
    old.swap(Table);
    const size_t mask = Table.size() - 1;
    for (const Entry& e : old) {
      if (!e.Used) continue;
      size_t i = Slot(e.F, e.First, e.Second, mask);
      while (Table[i].Used) i = (i + 1) & mask;
      Table[i] = e;
    }
  }
  /// The name of the form: an element's local name with dots as "_" for a member, as it is for
  /// an array; the owner's local name, "_" and the attribute's, dots as "_", for an attribute.
  [[gnu::noinline]] Entry Make(Form AForm, std::u16string_view AFirst, std::u16string_view ASecond) {
    Entry e{AFirst.data(), ASecond.data(), static_cast<uint32_t>(AFirst.size()), static_cast<uint32_t>(ASecond.size())};
    e.F = AForm;
    e.Used = true;
    e.NameAt = static_cast<uint32_t>(Names.size());
    Names.append(AFirst);
    if (AForm == AttributeName) {
      Names += u'_';
      Names.append(ASecond);
    }
    if (AForm != ArrayName) std::replace(Names.begin() + e.NameAt, Names.end(), u'.', u'_');
    const std::u16string_view name = std::u16string_view(Names).substr(e.NameAt);
    e.BytesAt = static_cast<uint32_t>(Bytes.size());
    Bytes.resize(Bytes.size() + name.size() * 6 + 4);
    char* out = Bytes.data() + e.BytesAt;
    *out++ = '"';
    out = NeedsEscape(name) ? PutJSONUtf8(out, name) : detail::PutUtf8(out, name);
    std::memcpy(out, "\": ", 3);
    out += 3;
    e.BytesSize = static_cast<uint32_t>(out - Bytes.data() - e.BytesAt);
    // room behind every piece, so that a short one can be copied in one fixed-size step
    Bytes.resize(e.BytesAt + e.BytesSize + kSlack);
    if (AForm == AttributeName) {
      e.NameSize = static_cast<uint32_t>(name.size());
    } else {
      Names.resize(e.NameAt);  // only the attribute form asks for its name again
    }
    return e;
  }

  std::vector<Entry> Table;
  size_t Count = 0;
  std::string Bytes;
  std::u16string Names;
};

/// Names are shared within a document, so equal names mostly share their characters too.
bool SameName(std::u16string_view A, std::u16string_view B) noexcept {
  return A.size() == B.size() && (A.data() == B.data() || A == B);
}

bool StartsLikeNumber(std::u16string_view AText) {
  if (AText.empty()) return false;
  const char16_t c = AText.front();
  return c == u'+' || c == u'-' || c == u'.' || (c >= u'0' && c <= u'9');
}

template <class Out>
class JsonTreeWriter {
 public:
  JsonTreeWriter(Out& AOut, bool AFormatted, Integer& ALevel) : O(AOut), Formatted(AFormatted), Level(ALevel) {}

  /// The node's own form: an element's member, an attribute's pair, a document's children.
  void Node(const TVnDOMNode* ANode) {
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
  void Object(const TVnDOMElement* AElement) {
    O.Ascii("{");
    LineBreak();
    Run(AElement);
    LineBreak();
    O.Ascii("}");
  }

 private:
  // What an open level writes next: the groups of an element's children (arrays gathered at
  // their first place), the items of one such array, or an array item's child elements as
  // they come.
  enum Kind : uint8_t { Groups, Items, Members };
  struct Frame {
    Kind K;
    const TVnDOMElement* E;
    uint32_t Next;     // Groups, Items: position in FPlan; Members: index among the elements
    uint32_t End;      // the end of the same
    uint32_t PlanAt;   // Groups: where the element's plan starts, dropped with the frame
    bool First;        // nothing written at this level yet
  };

  // ---- the walk ----
  void Run(const TVnDOMElement* ARoot) {
    Member(ARoot);
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
          const TVnDOMElement* parent = f.E;
          if (count == 1)
            Member(Child(parent, Plan[at + 1]));
          else
            Array(parent, at);
          break;
        }
        case Items: {
          const TVnDOMElement* item = Child(f.E, Plan[f.Next++]);
          Item(item);
          break;
        }
        case Members: {
          const TVnDOMElement* child = &AsElement(f.E->ElementsView()[f.Next++]);
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
  }

  static const TVnDOMElement* Child(const TVnDOMElement* AParent, uint32_t AIndex) {
    return &AsElement(AParent->ElementsView()[AIndex]);
  }

  // ---- the three forms ----
  /// "name": and the value, or the opening of the object that the children fill.
  void Member(const TVnDOMElement* AElement) {
    Pad();
    Name(AElement->LocalNameView(), true);
    CollectAttributes(AElement);
    if (!AElement->HasChildElements()) {
      Value(AElement);
      // The attributes of a leaf follow its value as members of the enclosing object.
      for (size_t i = 0; i < Attrs.size(); ++i) {
        O.Ascii(", ");
        if (Formatted) {
          LineBreak();
          Pad();
        }
        Attribute(Attrs[i], false);
      }
      return;
    }
    // The plan first: it gathers the child names that the attributes' names are checked against.
    PushGroups(AElement);
    if (!Attrs.empty()) O.Ascii("{");
    ++Level;
    for (const TVnDOMNode* a : Attrs) {
      LineBreak();
      Attribute(a, Formatted);
      O.Ascii(",");
    }
    if (Attrs.empty()) O.Ascii("{");
    LineBreak();
  }

  /// The siblings of one local name as an array, at the place of the first of them.
  void Array(const TVnDOMElement* AParent, uint32_t AGroup) {
    Pad();
    Name(Child(AParent, Plan[AGroup + 1])->LocalNameView(), false);
    O.Ascii("[");
    LineBreak();
    ++Level;
    Stack.push_back({Items, AParent, AGroup + 1, AGroup + 1 + Plan[AGroup], 0, true});
  }

  /// One element of an array: its value, or an object of its attributes and child elements,
  /// where repeated names are not gathered.
  void Item(const TVnDOMElement* AElement) {
    Pad();
    CollectAttributes(AElement);
    if (!AElement->HasChildElements()) {
      Value(AElement);
      return;
    }
    O.Ascii("{");
    LineBreak();
    ++Level;
    for (size_t i = 0; i < Attrs.size(); ++i) {
      if (i) Separator();
      Attribute(Attrs[i], Formatted);
    }
    Stack.push_back({Members, AElement, 0, static_cast<uint32_t>(AElement->ElementCount()), 0, Attrs.empty()});
  }

  /// "element_attribute": "value", with "_" in front while a child element has that name; the
  /// attribute is one that Counts.
  void Attribute(const TVnDOMNode* AAttribute, bool APad) {
    const TVnDOMNode* owner = AAttribute->ParentNode();
    if constexpr (kUtf8) {
      // the made name serves unless a child element of the owner bears it
      const auto piece =
          Pieces.Get(NamePieces::AttributeName, owner ? owner->LocalNameView() : std::u16string_view(),
                     AAttribute->LocalNameView());
      if (!owner || owner->GetNodeType() != ntElement || !AsElement(owner).HasChildElements() ||
          !HasChildNamed(AsElement(owner), piece.Name)) {
        if (APad) Pad();
        PutPiece(piece.Bytes);
        return QuotedValue(AAttribute);
      }
    }
    Text.clear();
    if (owner) Text.append(owner->LocalNameView());
    Text += u'_';
    Text.append(AAttribute->LocalNameView());
    for (char16_t& c : Text)
      if (c == u'.') c = u'_';
    if (owner && owner->GetNodeType() == ntElement && AsElement(owner).HasChildElements()) {
      while (HasChildNamed(AsElement(owner), Text)) Text.insert(Text.begin(), u'_');
    }
    if (APad) Pad();
    QuotedName(Text);
    QuotedValue(AAttribute);
  }

  // ---- values ----
  /// The value of an element without child elements, by the kind of its typed value.
  /// The attributes of AElement are collected.
  void Value(const TVnDOMElement* AElement) {
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

  /// The value of a text node or attribute as a JSON string; UTF-8 kept without references
  /// goes to UTF-8 output without a detour through UTF-16.
  void QuotedValue(const TVnDOMNode* ANode) {
    if constexpr (std::is_same_v<Out, detail::Utf8Output>) {
      const detail::CompactString* kept = KeptText(ANode);
      if (kept && kept->IsUtf8()) {
        const std::string_view bytes = kept->Utf8();
        // the quotes around: one byte before the text, one after
        char* const out = O.Reserve(bytes.size() * 6 + 2);
        *out = '"';
        if (char* const last = PutJSONFromUtf8(out + 1, bytes)) {
          *last = '"';
          O.Advance(last + 1);
          return;
        }
      }
    }
    QuotedString(DecodedValue(ANode, Value16));
  }
  /// An element's value text as a JSON string.
  void QuotedText(const TVnDOMElement* AElement) {
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
    if constexpr (std::is_same_v<Out, detail::Utf8Output>) {
      O.Advance(PutJSONUtf8(O.Reserve(AText.size() * 6), AText));
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
        const char escape[6] = {'\\', 'u', kHex[c >> 12], kHex[(c >> 8) & 15], kHex[(c >> 4) & 15], kHex[c & 15]};
        O.Ascii({escape, 6});
      }
    }
    if (run < AText.size()) O.Text(AText.substr(run));
  }

  // ---- pieces ----
  void Name(std::u16string_view ALocalName, bool AUnderscoreDots) {
    if constexpr (kUtf8) {
      const auto piece = Pieces.Get(AUnderscoreDots ? NamePieces::Member : NamePieces::ArrayName, ALocalName);
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
    if (NeedsEscape(AName)) {
      O.Ascii("\"");
      Escape(AName);
      O.Ascii("\": ");
    } else {
      O.Framed("\"", AName, "\": ");
    }
  }
  /// A piece of NamePieces: most are short and go in one fixed-size copy.
  void PutPiece(std::string_view APiece) {
    char* const out = O.Reserve(APiece.size() + NamePieces::kSlack);
    if (APiece.size() <= NamePieces::kSlack)
      std::memcpy(out, APiece.data(), NamePieces::kSlack);
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

  void CollectAttributes(const TVnDOMElement* AElement) {
    Attrs.clear();
    XsiSeen = false;
    for (const TVnDOMNode* a : AElement->AttributesView()) {
      bool xsi;
      if (Filter.Counts(a, xsi)) Attrs.push_back(a);
      XsiSeen = XsiSeen || xsi;
    }
  }

  /// Whether AElement has a child element of local name AName.
  bool HasChildNamed(const TVnDOMElement& AElement, std::u16string_view AName) {
    GatherNames(AElement);
    if (GroupName.size() <= 8)
      return std::any_of(GroupName.begin(), GroupName.end(), [&](std::u16string_view n) { return SameName(n, AName); });
    return GroupOf.count(AName) != 0;
  }

  /// The local names of AElement's child elements, each read once: Group[i] is the group of
  /// element i, groups numbered by first appearance, with their names and sizes. The names of
  /// the element last gathered stay, so its attributes check against them without a scan.
  void GatherNames(const TVnDOMElement& AElement) {
    if (NamesOf == &AElement) return;
    NamesOf = &AElement;
    const auto& elements = AElement.ElementsView();
    const auto n = static_cast<uint32_t>(elements.size());
    Group.assign(n, 0);
    GroupSize.clear();
    GroupName.clear();
    if (!GroupOf.empty()) GroupOf.clear();  // clearing sweeps every bucket, even of an empty map
    constexpr uint32_t kAhead = 8;
    for (uint32_t i = 0; i < n && i < kAhead; ++i) __builtin_prefetch(elements[i]);
    for (uint32_t i = 0; i < n; ++i) {
      if (i + kAhead < n) __builtin_prefetch(elements[i + kAhead]);
      const auto* e = static_cast<const TVnDOMElement*>(elements[i]);
      // The walk reaches these lists soon: asked for now, they load meanwhile.
      __builtin_prefetch(e->AttributesView().begin());
      __builtin_prefetch(e->CharNodesView().begin());
      __builtin_prefetch(e->ElementsView().begin());
      const std::u16string_view name = e->LocalNameView();
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
  void PushGroups(const TVnDOMElement* AElement) {
    GatherNames(*AElement);
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
    Stack.push_back({Groups, AElement, at, cursor, at, true});
  }

  static constexpr bool kUtf8 = std::is_same_v<Out, detail::Utf8Output>;

  Out& O;
  bool Formatted;
  Integer& Level;
  std::vector<Frame> Stack;
  std::vector<uint32_t> Plan;
  std::vector<const TVnDOMNode*> Attrs;
  AttributeFilter Filter;
  NamePieces Pieces;  // UTF-8 output only
  bool XsiSeen = false;  // an attribute of the last collected element is in the xsi namespace
  std::u16string Value16;
  std::u16string Text;
  // The child names of NamesOf (GatherNames) and the scratch of PushGroups.
  std::vector<uint32_t> Group, GroupSize, Fill;
  std::vector<std::u16string_view> GroupName;
  std::unordered_map<std::u16string_view, uint32_t> GroupOf;
  const TVnDOMElement* NamesOf = nullptr;
};

// Runs AWrite(JsonTreeWriter&) with the output for ACodePage. What was written before a
// failure reaches the stream too.
template <class Fn>
void WriteJSON(TStream& AStream, Word ACodePage, bool AFormatted, Fn&& AWrite) {
  auto run = [&](auto& AOut) {
    Integer level = 1;
    JsonTreeWriter<std::remove_reference_t<decltype(AOut)>> writer(AOut, AFormatted, level);
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
