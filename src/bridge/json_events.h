// JSON as XML events: the sink of the JSON reading loop that turns its events into elements.
// The loop (src/json/json_read_loop.h) walks the text; XmlEventSink keeps the names of the open
// levels and hands an output of type Out the XML-shaped calls:
//   void StartDocument();  void EndDocument();
//   void StartRoot(std::u16string_view AName);          // with the namespace declarations
//   void StartElement(std::u16string_view ALocalName, std::u16string_view AQName, int AKind);
//   void Characters(std::u16string_view AText);         // in XML form
//   void EndElement(std::u16string_view AName);
// AKind is the TVnJSONSimpleDataType of a value element (its type mark), or kNoValue.
// An output may also take, for an element whose local and qualified names are one,
//   void StartNamedElement(std::u16string_view AName, int AKind, const void*& AHandle);
// where AHandle is nil at first and kept by the sink for as long as the name repeats (the items
// of an array): the output looks the name up once. An output that takes UTF-8 bytes may also
// take a value's element whole, start to end (a member's then ends with no call of its own):
//   void LeafUtf8(std::u16string_view AName, int AKind, const void*& AHandle, std::string_view AText, bool AHigh);
// Names and open levels live in two flat stacks: depth costs memory in proportion to the
// text, never call stack.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "common/text_parser_scan.h"
#include "json/json_read_loop.h"

namespace vn::detail {

inline constexpr int kNoValue = -1;

inline constexpr char16_t cVnBridgeObjectRoot[] = u"object";
inline constexpr char16_t cVnBridgeArrayRoot[] = u"array";
/// The local name of an array member's start event is its name and this; every other name of
/// it is its name and "Array".
inline constexpr std::u16string_view cVnBridgeArrStart = u"Arr";
inline constexpr std::u16string_view cVnBridgeArraySuffix = u"Array";
inline constexpr char16_t cVnBridgeXsiPrefix[] = u"xsi";
inline constexpr char16_t cVnBridgeXsdPrefix[] = u"xsd";
inline constexpr char16_t cVnBridgeXsiDeclaration[] = u"xmlns:xsi";
inline constexpr char16_t cVnBridgeXsdDeclaration[] = u"xmlns:xsd";

/// The type mark of a value of kind AKind: local name, qualified name, value, and whether its
/// namespace is xsi (else xsd).
struct BridgeTypeMark {
  std::u16string_view LocalName, QName, Value;
  bool Xsi;
  std::string_view Utf8Value;  // Value as UTF-8, for builders that keep the bytes
};
inline constexpr BridgeTypeMark kBridgeTypeMarks[4] = {
    {u"nil", u"xsi:nil", u"true", true, "true"},
    {u"type", u"xsd:type", u"string", false, "string"},
    {u"type", u"xsd:type", u"decimal", false, "decimal"},
    {u"type", u"xsd:type", u"boolean", false, "boolean"},
};

/// AName made a valid XML name, one character for one; appended to AOut.
void AppendBridgeName(std::u16string& AOut, std::u16string_view AName);
/// AText with "&", "<" and ">" as references, or AText itself when it holds none.
std::u16string_view BridgeXmlText(std::u16string_view AText, std::u16string& AScratch);

template <class Out>
class XmlEventSink {
 public:
  XmlEventSink(const TVnTextParser& AParser, Out& AOut)
      : P(AParser), O(AOut), Utf8(AParser.GetCharacterSetType() == csUTF8) {}

  void StartDocument() { O.StartDocument(); }
  void EndDocument() { O.EndDocument(); }
  void StartRoot(bool AIsObject) {
    ++NamesVersion;
    Names.assign(AIsObject ? cVnBridgeObjectRoot : cVnBridgeArrayRoot);
    RootLen = static_cast<uint32_t>(Names.size());
    O.StartRoot(Names);
  }
  void EndRoot() {
    O.EndElement(Name(0, RootLen));
  }
  void StartObject() { Open(false); }
  void StartArray() { Open(true); }
  void EndObject() { Close(); }
  void EndArray() { Close(); }

  template <class U>
  void StartMember(std::basic_string_view<U> AName) {
    ++NamesVersion;
    const auto at = static_cast<uint32_t>(Names.size());
    AppendBridgeName(Names, Text(AName));
    Members.push_back({at, static_cast<uint32_t>(Names.size()) - at, false, false});
  }
  void EndMember() {
    const Member m = Members.back();
    Members.pop_back();
    if (!m.Ended) {
      if (!kEndNames)
        O.EndElement({});
      else if (m.IsArray)
        O.EndElement(Suffixed(m.Off, m.Len, cVnBridgeArraySuffix));
      else
        O.EndElement(Name(m.Off, m.Len));
    }
    Names.resize(m.Off);
    ++NamesVersion;
  }

  template <class U>
  void Value(TVnJSONSimpleDataType AKind, std::basic_string_view<U> AText) {
    if constexpr (std::is_same_v<U, uint8_t> && requires(Out& AO) { AO.CharactersUtf8(std::string_view(), false); }) {
      // UTF-8 text goes on as its bytes to an output that keeps them, unless it needs references.
      if (Utf8) {
        bool high = false, markup = false;
        if (AKind == jdtString) {
          uint8_t any = 0;
          for (uint8_t c : AText) {
            any |= c;
            markup |= c == '&' || c == '<' || c == '>';
          }
          high = any >= 0x80;
        }
        if (!markup) {
          const std::string_view bytes(reinterpret_cast<const char*>(AText.data()), AText.size());
          if constexpr (kLeaves) {
            if (Level& l = Levels.back(); l.IsArray) return O.LeafUtf8(Name(l.Off, l.Len), AKind, l.Item, bytes, high);
            Member& m = Members.back();
            const void* handle = nullptr;  // a member's name seldom comes twice in a row
            O.LeafUtf8(Name(m.Off, m.Len), AKind, handle, bytes, high);
            m.Ended = true;
            return;
          }
          Emit(AKind, [&] { O.CharactersUtf8(bytes, high); });
          return;
        }
      }
    }
    // Numbers and literals are made of characters that need no reference.
    const std::u16string_view text = AKind == jdtString ? BridgeXmlText(Text(AText), Escaped) : Plain(AText);
    Emit(AKind, [&] { O.Characters(text); });
  }

 private:
  /// Whether the output reads the names of end tags (an output may say it does not).
  static constexpr bool kEndNames = [] {
    if constexpr (requires { Out::kEndNames; }) return Out::kEndNames;
    return true;
  }();
  enum : uint8_t { CloseNone, CloseItem, CloseItemArray };
  struct Level {
    uint32_t Off, Len;  // arrays: the name of their items; objects in arrays: their own
    bool IsArray;
    uint8_t Close;  // what ends with the container: nothing, the item, or the item's array
    // the output's handles of an array's item name and of the name of arrays among its items
    const void* Item = nullptr;
    const void* Nested = nullptr;
  };
  struct Member {
    uint32_t Off, Len;
    bool IsArray;
    bool Ended;  // its element was given whole
  };

  std::u16string_view Name(uint32_t AOff, uint32_t ALen) const { return {Names.data() + AOff, ALen}; }
  static constexpr bool kHandles = requires(Out& AO, const void*& AHandle) {
    AO.StartNamedElement(std::u16string_view(), 0, AHandle);
  };
  static constexpr bool kLeaves = requires(Out& AO, const void*& AHandle) {
    AO.LeafUtf8(std::u16string_view(), 0, AHandle, std::string_view(), false);
  };
  /// An element named AName alone, through AHandle where the output keeps one.
  void Start(std::u16string_view AName, int AKind, const void*& AHandle) {
    if constexpr (kHandles)
      O.StartNamedElement(AName, AKind, AHandle);
    else
      O.StartElement(AName, AName, AKind);
  }
  /// A value's element, with its text from ACharacters.
  template <class F>
  void Emit(TVnJSONSimpleDataType AKind, F&& ACharacters) {
    if (Levels.back().IsArray) {
      Level& l = Levels.back();
      Start(Name(l.Off, l.Len), AKind, l.Item);
      ACharacters();
      O.EndElement(kEndNames ? Name(l.Off, l.Len) : std::u16string_view());
      return;
    }
    const Member& m = Members.back();
    O.StartElement(Name(m.Off, m.Len), Name(m.Off, m.Len), AKind);
    ACharacters();
  }
  std::u16string_view Suffixed(uint32_t AOff, uint32_t ALen, std::u16string_view ASuffix,
                               std::u16string& AInto) {
    AInto.assign(Names, AOff, ALen);
    AInto += ASuffix;
    return AInto;
  }
  /// The items of nested arrays ask for the same suffixed name again and again: it is made
  /// once while the names it comes from stay as they are.
  std::u16string_view Suffixed(uint32_t AOff, uint32_t ALen, std::u16string_view ASuffix) {
    if (ScratchKey.Off != AOff || ScratchKey.Len != ALen || ScratchKey.Suffix != ASuffix.data() ||
        ScratchKey.Version != NamesVersion) {
      Suffixed(AOff, ALen, ASuffix, Scratch);
      ScratchKey = {AOff, ALen, ASuffix.data(), NamesVersion};
    }
    return Scratch;
  }

  void Open(bool AIsArray) {
    if (Levels.empty()) {
      // A top-level container: its members or items go straight into the root.
      Levels.push_back({0, RootLen, AIsArray, CloseNone});
      return;
    }
    if (Levels.back().IsArray) {
      Level& l = Levels.back();
      if (AIsArray) {
        Start(Suffixed(l.Off, l.Len, cVnBridgeArraySuffix), kNoValue, l.Nested);
        // the inner array's items bear the same names as the outer's
        const Level inner{l.Off, l.Len, true, CloseItemArray, l.Item, l.Nested};
        Levels.push_back(inner);
      } else {
        Start(Name(l.Off, l.Len), kNoValue, l.Item);
        const Level item{l.Off, l.Len, false, CloseItem};
        Levels.push_back(item);
      }
      return;
    }
    Member& m = Members.back();
    if (AIsArray) {
      m.IsArray = true;
      O.StartElement(Suffixed(m.Off, m.Len, cVnBridgeArrStart, LocalScratch),
                     Suffixed(m.Off, m.Len, cVnBridgeArraySuffix), kNoValue);
    } else {
      O.StartElement(Name(m.Off, m.Len), Name(m.Off, m.Len), kNoValue);
    }
    Levels.push_back({m.Off, m.Len, AIsArray, CloseNone});
  }

  void Close() {
    const Level l = Levels.back();
    if (l.Close == CloseItemArray) {
      // the outer array's items bear the same names: the next inner array finds their handles
      Level& outer = Levels[Levels.size() - 2];
      outer.Item = l.Item;
      outer.Nested = l.Nested;
    }
    Levels.pop_back();
    if (l.Close == CloseNone) return;
    if (!kEndNames)
      O.EndElement({});
    else if (l.Close == CloseItem)
      O.EndElement(Name(l.Off, l.Len));
    else
      O.EndElement(Suffixed(l.Off, l.Len, cVnBridgeArraySuffix));
  }

  std::u16string_view Text(std::u16string_view ASpan) { return ASpan; }
  std::u16string_view Plain(std::u16string_view ASpan) { return ASpan; }
  /// A number's or literal's text, ASCII by the reading loop's rules.
  std::u16string_view Plain(std::basic_string_view<uint8_t> ASpan) {
    if (Decoded.size() < ASpan.size()) Decoded.resize(std::max(ASpan.size(), 2 * Decoded.size()));
    char16_t* d = Decoded.data();
    for (uint8_t c : ASpan) *d++ = c;
    return {Decoded.data(), ASpan.size()};
  }
  std::u16string_view Text(std::basic_string_view<uint8_t> ASpan) {
    if (Utf8) return DecodeUtf8(ASpan.data(), ASpan.data() + ASpan.size(), Decoded);
    return SpanView(P, ASpan, Decoded);
  }

  const TVnTextParser& P;
  Out& O;
  bool Utf8;
  std::u16string Names;  // the root's name, then the names of the open members
  uint32_t RootLen = 0;
  std::vector<Level> Levels;
  std::vector<Member> Members;
  std::u16string Scratch, LocalScratch, Decoded, Escaped;
  // What Scratch holds: a name of Names (as it stood at NamesVersion) and its suffix.
  struct {
    uint32_t Off = UINT32_MAX, Len = 0;
    const char16_t* Suffix = nullptr;
    uint64_t Version = 0;
  } ScratchKey;
  uint64_t NamesVersion = 0;
};

/// Reads the JSON text of AParser as XML events into AOut.
template <class Out>
void RunXmlEventLoop(TVnJSONTextParser& AParser, Out& AOut) {
  XmlEventSink<Out> sink(AParser, AOut);
  switch (AParser.GetCharacterSetType()) {
    case csUTF16: JSONReadLoop<json_loop::Utf16Units, XmlEventSink<Out>>(AParser, sink).RunContainerSequence(); break;
    case csUTF8: JSONReadLoop<json_loop::Utf8Units, XmlEventSink<Out>>(AParser, sink).RunContainerSequence(); break;
    default: JSONReadLoop<json_loop::AnsiUnits, XmlEventSink<Out>>(AParser, sink).RunContainerSequence(); break;
  }
}

}  // namespace vn::detail
