// JSON as XML events: the sink of the JSON reading loop that turns its events into elements.
// The loop (src/json/json_read_loop.h) walks the text; XmlEventSink keeps the names of the open
// levels and hands an output of type Out the XML-shaped calls:
//   void StartDocument();  void EndDocument();
//   void StartRoot(std::u16string_view AName);          // with the namespace declarations
//   void StartElement(std::u16string_view ALocalName, std::u16string_view AQName, int AKind);
//   void Characters(std::u16string_view AText);         // in XML form
//   void EndElement(std::u16string_view AName);
// AKind is the TVnJSONSimpleDataType of a value element (its type mark), or kNoValue.
// Names and open levels live in two flat stacks: depth costs memory in proportion to the
// text, never call stack.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
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
};
inline constexpr BridgeTypeMark kBridgeTypeMarks[4] = {
    {u"nil", u"xsi:nil", u"true", true},
    {u"type", u"xsd:type", u"string", false},
    {u"type", u"xsd:type", u"decimal", false},
    {u"type", u"xsd:type", u"boolean", false},
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
    const auto at = static_cast<uint32_t>(Names.size());
    AppendBridgeName(Names, Text(AName));
    Members.push_back({at, static_cast<uint32_t>(Names.size()) - at, false});
  }
  void EndMember() {
    const Member m = Members.back();
    Members.pop_back();
    if (m.IsArray)
      O.EndElement(Suffixed(m.Off, m.Len, cVnBridgeArraySuffix));
    else
      O.EndElement(Name(m.Off, m.Len));
    Names.resize(m.Off);
  }

  template <class U>
  void Value(TVnJSONSimpleDataType AKind, std::basic_string_view<U> AText) {
    // Numbers and literals are made of characters that need no reference.
    const std::u16string_view text = AKind == jdtString ? BridgeXmlText(Text(AText), Escaped) : Plain(AText);
    if (Levels.back().IsArray) {
      const Level& l = Levels.back();
      O.StartElement(Name(l.Off, l.Len), Name(l.Off, l.Len), AKind);
      O.Characters(text);
      O.EndElement(Name(l.Off, l.Len));
      return;
    }
    const Member& m = Members.back();
    O.StartElement(Name(m.Off, m.Len), Name(m.Off, m.Len), AKind);
    O.Characters(text);
  }

 private:
  enum : uint8_t { CloseNone, CloseItem, CloseItemArray };
  struct Level {
    uint32_t Off, Len;  // arrays: the name of their items; objects in arrays: their own
    bool IsArray;
    uint8_t Close;  // what ends with the container: nothing, the item, or the item's array
  };
  struct Member {
    uint32_t Off, Len;
    bool IsArray;
  };

  std::u16string_view Name(uint32_t AOff, uint32_t ALen) const { return {Names.data() + AOff, ALen}; }
  std::u16string_view Suffixed(uint32_t AOff, uint32_t ALen, std::u16string_view ASuffix,
                               std::u16string& AInto) {
    AInto.assign(Names, AOff, ALen);
    AInto += ASuffix;
    return AInto;
  }
  std::u16string_view Suffixed(uint32_t AOff, uint32_t ALen, std::u16string_view ASuffix) {
    return Suffixed(AOff, ALen, ASuffix, Scratch);
  }

  void Open(bool AIsArray) {
    if (Levels.empty()) {
      // A top-level container: its members or items go straight into the root.
      Levels.push_back({0, RootLen, AIsArray, CloseNone});
      return;
    }
    if (Levels.back().IsArray) {
      const Level l = Levels.back();
      if (AIsArray) {
        const std::u16string_view name = Suffixed(l.Off, l.Len, cVnBridgeArraySuffix);
        O.StartElement(name, name, kNoValue);
        Levels.push_back({l.Off, l.Len, true, CloseItemArray});
      } else {
        O.StartElement(Name(l.Off, l.Len), Name(l.Off, l.Len), kNoValue);
        Levels.push_back({l.Off, l.Len, false, CloseItem});
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
    Levels.pop_back();
    if (l.Close == CloseItem)
      O.EndElement(Name(l.Off, l.Len));
    else if (l.Close == CloseItemArray)
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
