// The XML reader's one-pass loop over prolog, tags, text and the tail after the root.
// It walks the scanner's buffer with a local pointer, one instantiation per kind of code unit,
// and hands the scanner its position back before every event and every failure, so that a
// locator always reports where the reader stands.
//
// Events go to a sink, called directly: the reader's own sink turns them into handler calls
// and attribute records; the DOM's loader builds nodes from them without either. A sink has:
//   static constexpr bool kNamespaces;  // false: no URIs worked out, no declarations tracked
//   static constexpr bool kEndTagNames; // false: end tags arrive with empty names
//   KeepsWhitespace()                    // false: white space between tags is dropped unseen
//   StartDocument(), EndDocument()
//   StartTag(qname)                      // a start tag opens; its attributes follow
//   Attribute(local, qname, uri, value, singleQuoted)
//   AttributeUtf8(qname, bytes, mayHoldQuote, high, asciiName)   // a sink with kUtf8Values
//   StartElement(uri, local, qname, hasAttributes), EndElement(uri, local, qname)
//   Characters(text), IgnorableWhitespace(text), ProcessingInstruction(target, data)
//   StartCDATA(), EndCDATA(), WantsComments(), Comment(text), StartDTD(), EndDTD()
// Names and values are views into the loop's buffers, valid until the sink's call returns,
// except a start tag's qname, which lasts until its StartElement.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>

#include "common/text_parser_scan.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/sax_reader.h"

namespace vn::detail {

namespace read_loop {

inline constexpr ByteClass kElementName{":<>/", true, false};
inline constexpr ByteClass kElementLocalName{">/", true, false};
inline constexpr ByteClass kAttributeName{"=:<>", false, false};
inline constexpr ByteClass kAttributeLocalName{"=<>", false, false};
inline constexpr ByteClass kQuoteOrTagEnd{"'\"<>", false, false};
inline constexpr ByteClass kQuotesAndWhite{"'\"", true, false};
inline constexpr ByteClass kSpaceOrQuest{" ?", false, false};
inline constexpr ByteClass kAngles{"<>", false, false};

// Names are seldom surrounded by white space: the test for that stays inline.
[[gnu::always_inline]] inline std::u16string_view TrimView(std::u16string_view s) {
  if (!s.empty() && s.front() > u' ' && s.back() > u' ') return s;
  size_t b = 0, e = s.size();
  while (b < e && s[b] <= u' ') ++b;
  while (e > b && s[e - 1] <= u' ') --e;
  return s.substr(b, e - b);
}

// "xmlns" as five characters whose low bytes spell it, in any case.
inline bool IsXmlns(std::u16string_view s) {
  if (s.size() != 5) return false;
  static constexpr char kWord[] = "xmlns";
  for (size_t i = 0; i < 5; ++i)
    if (((s[i] & 0xFF) | 0x20) != kWord[i]) return false;
  return true;
}

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

}  // namespace read_loop

template <class Enc, class Sink>
class XmlReadLoop {
  using U = typename Enc::U;
  // UTF-8 text takes the sixteen-byte paths for ASCII runs; the others select and decode.
  static constexpr bool kUtf8 = std::is_same_v<Enc, read_loop::Utf8Units>;

 public:
  // Values and text go to the sink as bytes: no decoding buffers between the scan and the sink.
  static constexpr bool kRawUtf8 = [] {
    if constexpr (requires { Sink::kUtf8Values; }) return kUtf8 && Sink::kUtf8Values && !Sink::kNamespaces;
    return false;
  }();

  XmlReadLoop(TVnSAXXMLReader& AReader, Sink& ASink)
      : R(AReader),
        P(*AReader.GetXMLParser()),
        C(P.Cursor()),
        NS(AReader.FNamespaceList),
        S(ASink),
        Check(AReader.FCheckSingleRootElm) {
    p = reinterpret_cast<const U*>(C.Cur);
    end = reinterpret_cast<const U*>(C.End);
    FastUtf8 = P.GetCharacterSetType() == csUTF8 &&
               (P.GetContentCodePage() == 65001 || P.GetContentCodePage() == 0);
  }

  void Run() {
    p = FindUnit(p, end, U('<'));
    Sync();
    S.StartDocument();
    Prolog();
    p = SkipAtMost(p, end, 0x20);
    CheckCurr(u'<');
    while (p < end) {
      if (Tail) {
        TailStep();
        continue;
      }
      if (*p != U('<')) {
        Characters();
        continue;
      }
      if (!CommentCDataOrInstruction()) Element();
    }
    Sync();
    S.EndDocument();
  }

 private:
  // ---- cursor ----
  void Sync() { C.Cur = reinterpret_cast<const Byte*>(p); }
  char16_t Cur() const { return p < end ? static_cast<char16_t>(*p) : 0; }
  // The character after the current one, as far as the reader needs it: ASCII exactly,
  // anything else as some unit that is neither markup nor white space.
  char16_t PeekW() const {
    if (p >= end) return 0;
    const U* q = Enc::Next(p, end);
    if (q >= end) return 0;
    return static_cast<char16_t>(*q);
  }
  void Next() {
    if (p >= end) {
      Sync();
      TVnTextParser::RaiseEOF();
    }
    p = Enc::Next(p, end);
  }
  // Past a unit known to be ASCII (markup the loop has just looked at), or EOF at the end.
  void NextAscii() {
    if (p >= end) {
      Sync();
      TVnTextParser::RaiseEOF();
    }
    ++p;
  }
  void MarkStart() { R.MarkConstructStart(p - reinterpret_cast<const U*>(C.Begin)); }

  std::u16string_view Sel(const U* a, const U* b, std::u16string& buf) const {
    if (b <= a) return {};
    if constexpr (std::is_same_v<U, char16_t>) {
      return {a, static_cast<size_t>(b - a)};
    } else {
      if (FastUtf8) return DecodeUtf8(a, b, buf);
      return P.DecodeSpanView(a, b, buf);
    }
  }

  static std::string_view Bytes(const U* a, const U* b) {
    return {reinterpret_cast<const char*>(a), static_cast<size_t>(b - a)};
  }

  // ---- failures ----
  void CheckCurr(char16_t AExpected) {
    if (Cur() != AExpected) {
      Sync();
      P.RaiseNotWellFormed(AExpected);
    }
  }
  [[noreturn]] void Fail(Integer ACode, std::u16string_view AMessage) {
    Sync();
    throw EVnXMLParseError(ACode, UnicodeString(AMessage));
  }
  [[noreturn]] void FailElementNotClosed() {
    Integer line, col;
    R.ConstructLineCol(line, col);
    Sync();
    throw EVnXMLParseError(cVnXMLErrELMNotClosed, _cVnXMLELMNotClosed, {line, col});
  }
  void CheckNameStart() {
    char16_t c = Cur();
    if (c < 0x80 && ((c | 0x20) >= u'a' && (c | 0x20) <= u'z')) return;
    if (c == u'_') return;
    Sync();
    P.CheckValidNameStartChar();
  }

  // ---- constructs ----
  void Prolog() {
    for (;;) {
      char16_t next = PeekW();
      if (next >= 1 && next <= 32) {
        Next();
      } else if (next == u'!') {
        Next();
        if (PeekW() == u'-')
          Comment();
        else
          Dtd();
      } else if (next == u'?') {
        ProcessingInstruction();
      } else {
        return;
      }
      p = FindUnit(p, end, U('<'));
      if (p >= end) return;
    }
  }

  // On a "<" in content: reads a comment, CDATA section or processing instruction and says so;
  // false leaves the "<" of an element where it is.
  bool CommentCDataOrInstruction() {
    char16_t next = PeekW();
    if (next == u'!') {
      Next();
      if (PeekW() == u'-')
        Comment();
      else
        CData();
      return true;
    }
    if (next == u'?') {
      ProcessingInstruction();
      return true;
    }
    return false;
  }

  void TailStep() {
    p = SkipAtMost(p, end, 0x20);
    if (p >= end) return;
    if (*p == U('<')) {
      if (CommentCDataOrInstruction()) return;
      if (Check) Fail(cVnXMLErrMultipleRoot, _cVnXMLMultipleRoot);
      Element();
    } else if (Check) {
      Fail(cVnXMLErrInvalidTextAtRoot, _cVnXMLInvalidTextAtRoot);
    } else {
      Characters();
    }
  }

  void Element() {
    MarkStart();
    CheckCurr(u'<');
    ++p;  // the checks found a unit here
    bool endTag = Cur() == u'/';
    if (endTag) ++p;
    CheckNameStart();
    bool prefixed = false;
    std::u16string_view qname;
    if (!endTag || Sink::kEndTagNames)
      qname = ElementName(prefixed);
    else
      PassElementName(prefixed);
    std::u16string_view prefix, local = qname;
    if (Sink::kNamespaces && prefixed) {
      size_t colon = qname.find(u':');
      prefix = qname.substr(0, colon);
      local = qname.substr(colon + 1);
    }
    p = SkipEqual(p, end, U(' '));
    if (endTag) {
      const VnXMLString& uri = URIOf(prefix);
      CheckCurr(u'>');
      Sync();
      S.EndElement(uri, local, qname);
      CloseLevel();
      --Level;
    } else {
      ++Level;
      S.StartTag(qname);
      bool attributes = false;
      char16_t c = Cur();
      if (c != u'/' && c != u'>') {
        attributes = true;
        ParseAttributes();
      }
      c = Cur();
      if (c == u'/') {
        const VnXMLString& uri = URIOf(prefix);
        Sync();
        S.StartElement(uri, local, qname, attributes);
        S.EndElement(uri, local, qname);
        CloseLevel();
        --Level;
      } else if (c == u'>') {
        Sync();
        S.StartElement(URIOf(prefix), local, qname, attributes);
      }
    }
    if (p >= end || *p != U('>')) p = FindUnit(p, end, U('>'));
    NextAscii();
    if (Level == 0) {
      // The root has closed: what follows is read by the tail step, in this same loop.
      Tail = true;
      return;
    }
    if (p < end && *p != U('<')) Characters();
  }

  // ---- names, values and text ----

  // The name of an element, from its first character: a prefix ends at the first colon, the
  // local name at '>', '/' or white space. A '<' before any colon fails.
  std::u16string_view ElementName(bool& prefixed) {
    const U* nameStart = p;
    if constexpr (kUtf8) {
      if (FastUtf8) {
        size_t n = 0;
        p = ScanAscii(p, end, StopAt<true, ':', '<', '>', '/'>{}, QNameBuf, n);
        if (p >= end || *p < 0x80) {
          if (Cur() == u'<') FailElementNotClosed();
          prefixed = Cur() == u':';
          if (!prefixed) return {QNameBuf.data(), n};
          const U* colon = p;
          NextAscii();
          CheckNameStart();
          p = ScanAscii(colon, end, StopAt<true, '>', '/'>{}, QNameBuf, n);
          if (p >= end || *p < 0x80) return {QNameBuf.data(), n};
        }
        p = nameStart;  // not ASCII: the general path below reads it again
      }
    }
    PassElementName(prefixed);
    return Sel(nameStart, p, QNameBuf);
  }

  // Moves past an element's name, by the rules of ElementName, without decoding it.
  void PassElementName(bool& prefixed) {
    p = FindInClass(p, end, read_loop::kElementName);
    if (Cur() == u'<') FailElementNotClosed();
    prefixed = Cur() == u':';
    if (prefixed) {
      NextAscii();
      CheckNameStart();
      p = FindInClass(p, end, read_loop::kElementLocalName);
    }
  }

  // The parts of an attribute's name, each trimmed of white space.
  struct AttributeName {
    std::u16string_view Prefix, Local, QName;
  };

  // An attribute's name runs to '='; a '<' or '>' before it fails. The prefix ends at the first
  // colon, and the local name starts after the colons that follow it.
  AttributeName ReadAttributeName() {
    const U* nameStart = p;
    AttributeName name;
    if constexpr (kUtf8) {
      if (FastUtf8) {
        size_t n = 0;
        p = ScanAscii(p, end, StopAt<false, '=', '<', '>'>{}, AttrQNameBuf, n);
        if (p >= end || *p < 0x80) {
          char16_t c = Cur();
          if (c == u'<' || c == u'>') Fail(cVnXMLErrMissingAttribute, _cVnXMLMissingAttribute);
          // One byte is one unit here, so the colons stand at the same offsets in the decoded name.
          std::u16string_view all(AttrQNameBuf.data(), n);
          name.QName = read_loop::TrimView(all);
          size_t colon = all.find(u':');
          if (colon == std::u16string_view::npos) {
            name.Local = name.QName;
          } else {
            name.Prefix = read_loop::TrimView(all.substr(0, colon));
            size_t local = all.find_first_not_of(u':', colon);
            name.Local = local == std::u16string_view::npos ? std::u16string_view() : read_loop::TrimView(all.substr(local));
          }
          return name;
        }
        p = nameStart;
      }
    }
    p = FindInClass(p, end, read_loop::kAttributeName);
    char16_t c = Cur();
    if (c == u'<' || c == u'>') Fail(cVnXMLErrMissingAttribute, _cVnXMLMissingAttribute);
    if (c == u':') {
      name.Prefix = read_loop::TrimView(Sel(nameStart, p, PrefixBuf));
      p = SkipEqual(p, end, U(':'));
      const U* localStart = p;
      p = FindInClass(p, end, read_loop::kAttributeLocalName);
      c = Cur();
      if (c == u'<' || c == u'>') Fail(cVnXMLErrMissingAttribute, _cVnXMLMissingAttribute);
      name.Local = read_loop::TrimView(Sel(localStart, p, LocalBuf));
      name.QName = read_loop::TrimView(Sel(nameStart, p, AttrQNameBuf));
    } else {
      name.QName = name.Local = read_loop::TrimView(Sel(nameStart, p, AttrQNameBuf));
    }
    return name;
  }

  // A value runs from behind its quote to the next quote of the same kind, raw.
  std::u16string_view ReadValue(U AQuote) {
    const U* start = p;
    if constexpr (kUtf8) {
      if (FastUtf8) {
        size_t n = 0;
        p = ScanAscii(p, end, StopAtByte(AQuote), ValueBuf, n);
        if (p >= end || *p == AQuote) return {ValueBuf.data(), n};
        const U* rest = p;
        p = FindUnit(p, end, AQuote);
        return DecodeUtf8Rest(start, rest, p, ValueBuf, n);
      }
    }
    p = FindUnit(p, end, AQuote);
    return Sel(start, p, ValueBuf);
  }

  // A run of text up to the next '<' or the end; AllWhite when no character above the space
  // comes before that.
  std::u16string_view ReadText(bool& AllWhite) {
    const U* start = p;
    if constexpr (kUtf8) {
      if (FastUtf8) {
        size_t n = 0;
        p = ScanAscii(p, end, StopAtNonWhite{}, TextBuf, n);
        AllWhite = p >= end || *p == U('<');
        if (!AllWhite) p = ScanAscii(p, end, StopAt<false, '<'>{}, TextBuf, n);
        if (p >= end || *p == U('<')) return {TextBuf.data(), n};
        const U* rest = p;
        p = FindUnit(p, end, U('<'));
        return DecodeUtf8Rest(start, rest, p, TextBuf, n);
      }
    }
    const U* q = SkipAtMost(p, end, 0x20);
    AllWhite = q >= end || *q == U('<');
    p = AllWhite ? q : FindUnit(q, end, U('<'));
    return Sel(start, p, TextBuf);
  }

  // An element closes: the declarations of its level end, if there are any.
  void CloseLevel() {
    if constexpr (Sink::kNamespaces)
      if (!NS.FList.empty() && NS.FList.back().Level >= Level) NS.RemoveLevel(Level);
  }

  // Namespaces: the default one is at hand, and with no declaration in force nothing needs
  // looking up. A sink that works namespaces out for itself gets none.
  const VnXMLString& URIOf(std::u16string_view APrefix) const {
    if constexpr (!Sink::kNamespaces) return NoURI;
    if (APrefix.empty()) {
      const VnXMLString* uri = NS.DefaultURI();
      return uri ? *uri : NoURI;
    }
    return NS.Count() == 0 ? NoURI : NS.GetURI(APrefix);
  }

  void ParseAttributes() {
    MarkStart();
    if constexpr (kRawUtf8) {
      if (FastUtf8) {
        ParseAttributesUtf8();
        return;
      }
    }
    do {
      AttributeName name = ReadAttributeName();
      // Whatever stands between the name and the quote is dropped.
      p = FindInClass(p, end, read_loop::kQuoteOrTagEnd);
      char16_t c = Cur();
      if (c == u'<' || c == u'>') Fail(cVnXMLErrMissingAttribute, _cVnXMLMissingAttribute);
      U quote = p < end ? *p : U(0);
      NextAscii();
      std::u16string_view value = ReadValue(quote);
      const bool singleQuoted = quote == U('\'');
      if constexpr (!Sink::kNamespaces) {
        S.Attribute(name.Local, name.QName, NoURI, value, singleQuoted);
      } else if (read_loop::IsXmlns(name.QName)) {
        S.Attribute(name.Local, name.QName, NoURI, value, singleQuoted);
        Sync();
        NS.AddURI(Level, {}, value);
      } else if (read_loop::IsXmlns(name.Prefix)) {
        S.Attribute(name.Local, name.QName, NoURI, value, singleQuoted);
        Sync();
        NS.AddURI(Level, name.Local, value);
      } else {
        S.Attribute(name.Local, name.QName, URIOf(name.Prefix), value, singleQuoted);
      }
      p = SkipInClass(p, end, read_loop::kQuotesAndWhite);
    } while (p < end && *p != U('>') && *p != U('/'));
  }

  // The attributes of a sink that takes values as their bytes: it needs the whole name only,
  // which ASCII names give without splitting it.
  void ParseAttributesUtf8() {
    do {
      std::u16string_view qname;
      const U* nameStart = p;
      size_t n = 0;
      p = ScanAscii(p, end, StopAt<false, '=', '<', '>'>{}, AttrQNameBuf, n);
      const bool ascii = p >= end || *p < 0x80;
      if (!ascii) {
        p = nameStart;
        qname = ReadAttributeName().QName;
      } else {
        char16_t c = Cur();
        if (c == u'<' || c == u'>') Fail(cVnXMLErrMissingAttribute, _cVnXMLMissingAttribute);
        // the raw bytes tell whether there is white space to trim, the units just made don't
        // need to be read back
        qname = {AttrQNameBuf.data(), n};
        if (n == 0 || *nameStart <= ' ' || p[-1] <= ' ') qname = read_loop::TrimView(qname);
      }
      // Whatever stands between the name and the quote is dropped.
      p = FindInClass(p, end, read_loop::kQuoteOrTagEnd);
      char16_t c = Cur();
      if (c == u'<' || c == u'>') Fail(cVnXMLErrMissingAttribute, _cVnXMLMissingAttribute);
      U quote = p < end ? *p : U(0);
      NextAscii();
      const U* start = p;
      ScanNotes notes;
      p = FindUnitNoting(p, end, quote, notes);
      S.AttributeUtf8(qname, Bytes(start, p), quote == U('\'') && notes.Quote, notes.High, ascii);
      p = SkipInClass(p, end, read_loop::kQuotesAndWhite);
    } while (p < end && *p != U('>') && *p != U('/'));
  }

  void Characters() {
    MarkStart();
    if (!S.KeepsWhitespace()) {
      // White space up to a tag, which nobody keeps, is passed over unread.
      const U* q = SkipAtMost(p, end, 0x20);
      if (q < end && *q == U('<')) {
        p = q;
        return;
      }
    }
    if constexpr (kRawUtf8) {
      if (FastUtf8) {
        const U* start = p;
        const U* q = SkipAtMost(p, end, 0x20);
        const bool white = q >= end || *q == U('<');
        ScanNotes notes;
        p = white ? q : FindUnitNoting(q, end, U('<'), notes);
        Sync();
        if (Check && p >= end) TVnTextParser::RaiseEOF();
        if (white) {
          S.IgnorableWhitespaceUtf8(Bytes(start, p));
        } else {
          S.CharactersUtf8(Bytes(start, p), notes.High);
          if (p >= end) S.IgnorableWhitespace({});
        }
        return;
      }
    }
    bool allWhite = false;
    std::u16string_view text = ReadText(allWhite);
    Sync();
    // Text that runs to the end fails with the check on; without it the run is delivered.
    if (Check && p >= end) TVnTextParser::RaiseEOF();
    if (allWhite) {
      S.IgnorableWhitespace(text);
    } else {
      S.Characters(text);
      if (p >= end) S.IgnorableWhitespace({});
    }
  }

  // Moves to the first AUnit AUnit '>' (the end of a CDATA section or comment), or to the end.
  void FindCloser(U AUnit) {
    for (;;) {
      p = FindUnit(p, end, AUnit);
      if (end - p >= 3 && p[1] == AUnit && p[2] == U('>')) return;
      Next();
      if (p >= end) return;
    }
  }

  void CData() {
    MarkStart();
    CheckCurr(u'!');
    const U* start = p;
    for (int i = 0; i < 7; ++i) Next();
    const U* through = p < end ? Enc::Next(p, end) : p;
    static constexpr char kOpen[] = "![CDATA[";
    bool ok = through - start == 8;
    for (int i = 0; ok && i < 8; ++i) ok = start[i] == U(kOpen[i]);
    if (!ok) {
      UnicodeString found(Sel(start, through, TextBuf));
      Sync();
      throw EVnXMLParseError(cVnXMLErrCDATAExpected, _cVnXMLCDATAExpected, {found});
    }
    Sync();
    S.StartCDATA();
    Next();
    const U* text = p;
    FindCloser(U(']'));
    Sync();
    if constexpr (kRawUtf8) {
      if (FastUtf8) {
        // Handed on as read; the sink decodes a section with bytes above 0x7F.
        uint8_t any = 0;
        for (const U* q = text; q < p; ++q) any |= *q;
        S.CDataUtf8(Bytes(text, p), any >= 0x80);
        S.EndCDATA();
        p = FindUnit(p, end, U('>'));
        Next();
        return;
      }
    }
    S.Characters(Sel(text, p, TextBuf));
    S.EndCDATA();
    p = FindUnit(p, end, U('>'));
    Next();
  }

  void Comment() {
    MarkStart();
    CheckCurr(u'!');
    // The '!' and two more characters; the second of them isn't looked at.
    Next();
    Next();
    Next();
    const U* text = p;
    FindCloser(U('-'));
    if (S.WantsComments()) {
      Sync();
      S.Comment(Sel(text, p, TextBuf));
    }
    p = FindUnit(p, end, U('>'));
    Next();
  }

  void ProcessingInstruction() {
    MarkStart();
    CheckCurr(u'<');
    Next();
    Next();
    const U* targetStart = p;
    p = FindInClass(p, end, read_loop::kSpaceOrQuest);
    std::u16string_view target = Sel(targetStart, p, QNameBuf);
    std::u16string_view data;
    if (Cur() == u' ') {
      p = SkipEqual(p, end, U(' '));
      const U* dataStart = p;
      p = FindUnit(p, end, U('?'));
      data = Sel(dataStart, p, TextBuf);
    } else {
      p = SkipInClass(p, end, read_loop::kSpaceOrQuest);
    }
    Sync();
    S.ProcessingInstruction(target, data);
    p = FindUnit(p, end, U('>'));
    Next();
  }

  void Dtd() {
    MarkStart();
    CheckCurr(u'!');
    Next();
    const U* nameStart = p;
    p = FindUnit(p, end, U(' '));
    std::u16string_view name = Sel(nameStart, p, QNameBuf);
    if (name != u"DOCTYPE") {
      UnicodeString found(name);
      Sync();
      throw EVnXMLParseError(cVnXMLErrDOCTypeExpected, _cVnXMLDOCTypeExpected, {found});
    }
    Sync();
    S.StartDTD();
    // Brackets are counted, nothing else: quotes and comments mean nothing here.
    Integer depth = 1;
    do {
      Next();
      p = FindInClass(p, end, read_loop::kAngles);
      if (p >= end) break;
      depth += *p == U('<') ? 1 : -1;
    } while (depth != 0);
    Sync();
    S.EndDTD();
    p = FindUnit(p, end, U('>'));
    Next();
  }

  TVnSAXXMLReader& R;
  TVnXMLParser& P;
  TextCursor& C;
  TVnSAXNamespaceList& NS;
  Sink& S;
  const bool Check;
  bool FastUtf8 = false;
  bool Tail = false;
  Integer Level = 0;  // the only memory of open elements
  const U* p;
  const U* end;
  const VnXMLString NoURI;
  // Reused decode buffers: one per name or value that must outlive the next selection.
  std::u16string QNameBuf, PrefixBuf, LocalBuf, AttrQNameBuf, ValueBuf, TextBuf;
};

/// Runs the loop in the instantiation for the scanner's kind of code unit: the one place that
/// chooses it, for every sink.
template <class Sink>
void RunXmlReadLoop(TVnSAXXMLReader& AReader, Sink& ASink) {
  switch (AReader.GetXMLParser()->GetCharacterSetType()) {
    case csUTF16: XmlReadLoop<read_loop::Utf16Units, Sink>(AReader, ASink).Run(); break;
    case csUTF8: XmlReadLoop<read_loop::Utf8Units, Sink>(AReader, ASink).Run(); break;
    default: XmlReadLoop<read_loop::AnsiUnits, Sink>(AReader, ASink).Run(); break;
  }
}

}  // namespace vn::detail
