// The JSON reader's one-pass loop. It walks the scanner's buffer with a local pointer, one
// instantiation per kind of code unit and per sink (json_sink.h), and keeps the open
// containers on a stack of its own: nesting costs one byte per level and no call stack.
//
// The loop follows the reader's rules step by step; the recursive reading they describe
// becomes these states, each named for the step it stands at:
//   ArrayItem       past "[" or ",": skip white space, then a value, a nested container or "]"
//   ArrayAfterItem  skip to the next "," or "]"; "]" or the end closes the array
//   ObjectMember    skip to the next quote, read a name, skip to ":" and past it, then a value
//   ObjectAfterMember  EndMember, skip to the next "," or "}"; "}" or the end closes the object
// A container that closes hands control to the state after a value of the one around it.
// Moving past the end of the text raises the scanner's EVnTextParserEOF, as NextChar does.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>
#include <vector>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "common/text_parser_scan.h"
#include "json/json_sink.h"

namespace vn::detail {

namespace json_loop {

struct Utf16Units {
  using U = char16_t;
  static const U* Next(const U* p, const U*) { return p + 1; }
};
struct Utf8Units {
  using U = uint8_t;
  static const U* Next(const U* p, const U* e) { return Utf8Next(p, e); }
};
struct AnsiUnits {
  using U = uint8_t;
  static const U* Next(const U* p, const U*) { return p + 1; }
};

inline constexpr ByteClass kNumberChars{"+-.0123456789Ee", false, false};
inline constexpr ByteClass kArrayStops{"],", false, false};
inline constexpr ByteClass kObjectStops{"},", false, false};
inline constexpr ByteClass kValueStops{"]},", false, false};
inline constexpr ByteClass kObjectStart{"}\"", false, false};
inline constexpr ByteClass kContainerStart{"{[", false, false};

// The end of a string body: the first quote or backslash. String bodies are the bulk of most
// texts, so this runs sixteen bytes (eight units) at a time.
inline const uint8_t* FindQuoteOrBackslash(const uint8_t* p, const uint8_t* e) {
#if defined(__SSE2__)
  const __m128i q = _mm_set1_epi8('"'), b = _mm_set1_epi8('\\');
  while (e - p >= 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const auto m = static_cast<uint32_t>(_mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(v, q), _mm_cmpeq_epi8(v, b))));
    if (m) return p + std::countr_zero(m);
    p += 16;
  }
#endif
  while (p < e && *p != '"' && *p != '\\') ++p;
  return p;
}

inline const char16_t* FindQuoteOrBackslash(const char16_t* p, const char16_t* e) {
#if defined(__SSE2__)
  const __m128i q = _mm_set1_epi16('"'), b = _mm_set1_epi16('\\');
  while (e - p >= 8) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const auto m = static_cast<uint32_t>(_mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi16(v, q), _mm_cmpeq_epi16(v, b))));
    if (m) return p + std::countr_zero(m) / 2;
    p += 8;
  }
#endif
  while (p < e && *p != u'"' && *p != u'\\') ++p;
  return p;
}

}  // namespace json_loop

template <class Enc, class Sink>
class JSONReadLoop {
  using U = typename Enc::U;
  using Span = std::basic_string_view<U>;
  static_assert(JSONReadSink<Sink, U>);

 public:
  JSONReadLoop(TVnJSONTextParser& AParser, Sink& ASink) : P(AParser), C(AParser.Cursor()), S(ASink) {
    p = reinterpret_cast<const U*>(C.Cur);
    end = reinterpret_cast<const U*>(C.End);
  }

  void Run() {
    p = SkipEqual(p, end, U(' '));  // only blanks here: a tab or line break is a value's start
    Sync();
    S.StartDocument();
    // Several values may follow one another at the top level.
    while (p < end) {
      if (*p == U('[') || *p == U('{')) {
        Containers();
        continue;
      }
      SimpleValue();
      if (p < end) {
        // White space may follow a string, number or literal, nothing else: the first
        // character after one is passed over unseen.
        Next();
        p = SkipAtMost(p, end, 0x20);
        if (p < end) Fail(u"");
      }
    }
    Sync();
    S.EndDocument();
  }

  /// The top level of JSON read as XML events: text before the first bracket is passed over,
  /// then containers follow one another with white space, or one stray character, between
  /// them; a text without a bracket, and a string, number or literal between containers, are
  /// refused. The sink also hears StartRoot(AIsObject) after StartDocument and EndRoot before
  /// EndDocument.
  void RunContainerSequence() {
    p = FindInClass(p, end, json_loop::kContainerStart);
    Sync();
    S.StartDocument();
    if (p >= end) Fail(u"");
    S.StartRoot(*p == U('{'));
    while (p < end) {
      if (*p == U('[') || *p == U('{')) {
        Containers();
        continue;
      }
      Next();
      p = SkipAtMost(p, end, 0x20);
      if (p < end && *p != U('[') && *p != U('{')) Fail(u"");
    }
    Sync();
    S.EndRoot();
    S.EndDocument();
  }

 private:
  // Closed: the container at the top has fired its end and waits to be stepped past.
  enum State : uint8_t { ArrayItem, ArrayAfterItem, ObjectMember, ObjectAfterMember, Closed };
  static constexpr uint8_t kArray = 0, kObject = 1;

  // ---- cursor ----
  void Sync() { C.Cur = reinterpret_cast<const Byte*>(p); }
  char16_t Cur() const { return p < end ? static_cast<char16_t>(*p) : 0; }
  void Next() {
    if (p >= end) {
      Sync();
      TVnTextParser::RaiseEOF();
    }
    p = Enc::Next(p, end);
  }
  Span Cut(const U* a, const U* b) const { return Span(a, static_cast<size_t>(b - a)); }

  [[noreturn]] void Fail(std::u16string_view AExpected) {
    Sync();
    P.RaiseNotWellFormed(AExpected);
  }

  // ---- containers ----
  // On "[" or "{": reads that container with everything inside it and stands after its close.
  void Containers() {
    State state = Open();
    for (;;) {
      switch (state) {
        case ArrayItem:
          Next();
          p = SkipAtMost(p, end, 0x20);
          if (p < end && (*p == U('[') || *p == U('{'))) {
            state = Open();
            continue;
          }
          if (!(p < end && *p == U(']'))) SimpleValue();
          [[fallthrough]];
        case ArrayAfterItem:
          p = FindInClass(p, end, json_loop::kArrayStops);
          if (p < end && *p == U(',')) {
            state = ArrayItem;
            continue;
          }
          Sync();
          S.EndArray();
          break;
        case ObjectMember: {
          p = FindUnit(p, end, U('"'));
          Span name = String();
          Sync();
          S.StartMember(name);
          Next();
          p = FindUnit(p, end, U(':'));
          Next();
          p = SkipAtMost(p, end, 0x20);
          if (p < end && (*p == U('[') || *p == U('{'))) {
            state = Open();
            continue;
          }
          SimpleValue();
        }
          [[fallthrough]];
        case ObjectAfterMember:
          Sync();
          S.EndMember();
          p = FindInClass(p, end, json_loop::kObjectStops);
          if (p < end && *p == U(',')) {
            state = ObjectMember;
            continue;
          }
          Sync();
          S.EndObject();
          break;
        case Closed:
          break;
      }
      // The container at the top closed: step past its bracket (or fail at the end of the
      // text), then go on after a value in the container around it.
      Stack.pop_back();
      Next();
      if (Stack.empty()) return;
      state = Stack.back() == kArray ? ArrayAfterItem : ObjectAfterMember;
    }
  }

  // On "[" or "{": fires the start and gives the state that reads the first item.
  State Open() {
    Sync();
    if (*p == U('[')) {
      Stack.push_back(kArray);
      S.StartArray();
      return ArrayItem;
    }
    Stack.push_back(kObject);
    S.StartObject();
    // Anything up to the first name or the close is passed over.
    p = FindInClass(p, end, json_loop::kObjectStart);
    if (p < end && *p == U('"')) return ObjectMember;
    Sync();
    S.EndObject();
    return Closed;
  }

  // ---- values ----
  void SimpleValue() {
    const char16_t c = Cur();
    switch (c) {
      case u'"': {
        Span text = String();
        Sync();
        S.Value(jdtString, text);
        return;
      }
      case u't': return Literal(u"true", jdtBoolean);
      case u'f': return Literal(u"false", jdtBoolean);
      case u'n': return Literal(u"null", jdtNull);
      case u'+': case u'-': case u'.': case u'E': case u'e':
      case u'0': case u'1': case u'2': case u'3': case u'4':
      case u'5': case u'6': case u'7': case u'8': case u'9': {
        const U* start = p;
        p = SkipInClass(p, end, json_loop::kNumberChars);
        Sync();
        S.Value(jdtNumber, Cut(start, p));
        p = FindInClass(p, end, json_loop::kValueStops);
        return;
      }
      default: Fail(cVnJSONValueStartExpected);
    }
  }

  // The letters are compared one by one; a wrong one is named, and the text after it found.
  void Literal(std::u16string_view AWord, TVnJSONSimpleDataType AKind) {
    const U* start = p;
    for (char16_t letter : AWord) {
      const bool same = p < end && *p == U(letter);
      if (p < end) p = Enc::Next(p, end);
      if (!same) Fail(std::u16string_view(&letter, 1));
    }
    Sync();
    S.Value(AKind, Cut(start, p));
  }

  // On the opening quote: the raw text up to the closing quote, which stays current, or up to
  // the end of the text. Escapes are only stepped over, never decoded.
  Span String() {
    if (!(p < end && *p == U('"'))) Fail(u"\"");
    ++p;
    const U* start = p;
    for (;;) {
      p = json_loop::FindQuoteOrBackslash(p, end);
      if (p >= end || *p == U('"')) break;
      ++p;  // the backslash
      switch (Cur()) {
        case u'"': case u'/': case u'\\': case u'b': case u'f': case u'n': case u'r': case u't':
          p = Enc::Next(p, end);
          break;
        case u'u':
          // The "u" and three more; the fourth goes with the step below. Whether they are
          // hexadecimal digits is the decoder's business.
          for (int i = 0; i < 4; ++i) Next();
          break;
        default: Fail(cVnJSONEscapeExpected);
      }
      if (p < end && *p != U('"') && *p != U('\\')) p = Enc::Next(p, end);
    }
    return Cut(start, p);
  }

  TVnJSONTextParser& P;
  TextCursor& C;
  Sink& S;
  const U* p;
  const U* end;
  std::vector<uint8_t> Stack;
};

template <class Sink>
void RunJSONReadLoop(TVnJSONReader& AReader, Sink& ASink) {
  TVnJSONTextParser& parser = *AReader.GetParser();
  switch (parser.GetCharacterSetType()) {
    case csUTF16: JSONReadLoop<json_loop::Utf16Units, Sink>(parser, ASink).Run(); break;
    case csUTF8: JSONReadLoop<json_loop::Utf8Units, Sink>(parser, ASink).Run(); break;
    default: JSONReadLoop<json_loop::AnsiUnits, Sink>(parser, ASink).Run(); break;
  }
}

}  // namespace vn::detail
