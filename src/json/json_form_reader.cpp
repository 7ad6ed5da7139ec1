// TVnFormURLEncodedJSONReader: form text to JSON events. The text layer (keys, values, percent
// escapes) reads through the scanner; the level layer below turns the keys of consecutive pairs
// into one structure and keeps the events within the grammar whatever the keys say.
#include "vnxml/json_form_reader.h"

#include <vector>

#include "vnxml/common/encoding.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/json_values.h"

namespace vn {

namespace {

enum class LevelKind : uint8_t { Member, Index };

// One step of a key path. A member level stands for a StartMember that has fired, an index level
// for an open array (opened by it or by the element before it).
struct Level {
  UnicodeString Text;
  LevelKind Kind;
  bool Open = false;    // an object is open: the member's value, or the array's current element
  bool Filled = false;  // a member whose array closed during this pair: it can take no other value
};

const TVnAnsiCharSet kKeyStops("=%[]");
const TVnAnsiCharSet kValueStops("&%+\n\r");

bool StartsWithDigit(std::u16string_view AText) { return !AText.empty() && AText[0] >= u'0' && AText[0] <= u'9'; }

class FormReading {
 public:
  FormReading(TVnJSONTextParser& AParser, IVnJSONContentHandler& AHandler) : P(AParser), H(AHandler) {}

  void Run() {
    H.StartDocument();
    H.StartObject();
    for (;;) {
      M = 0;
      UnicodeString name = ReadKeyText();
      // A trailing name that begins with "_" is dropped, as a pair behind "&" would be.
      if (P._GetEOF() && !name.empty() && name[0] == u'_') break;
      Segment(std::move(name), LevelKind::Member);
      if (P._GetEOF() || P.CurrCharW() != u'=') {
        do {
          ReadOpeningMark();
          UnicodeString text = ReadKeyText();
          ReadClosingMark();
          const LevelKind kind = text.empty() || StartsWithDigit(text) ? LevelKind::Index : LevelKind::Member;
          Segment(std::move(text), kind);
        } while (!P._GetEOF() && P.CurrCharW() != u'=');
      }
      // What the previous key opened beyond this one's end is done with.
      CloseFrom(M);
      const UnicodeString value = P._GetEOF() ? UnicodeString() : ReadValue();
      PrepareValueSlot();
      H.Value(jdtString, value);
      // An index level stays: its array goes on at the next pair.
      if (L.back().Kind == LevelKind::Member) {
        H.EndMember();
        L.pop_back();
      }
      if (P._GetEOF()) break;
      P.NextChar();  // the "&"
      // A pair whose key begins with "_" ends the form; the rest is not read.
      if (P._GetEOF() || P.CurrCharW() == u'_') break;
    }
    CloseFrom(0);
    H.EndObject();
    H.EndDocument();
  }

 private:
  // ---- text ----

  // The decoded text of a name or segment, up to "=", "[", "]", "%5B", "%5D" or the end.
  UnicodeString ReadKeyText() {
    UnicodeString result;
    P.SetMark(tpMark1);
    for (;;) {
      P.SkipWhileSet(soNotInSet, kKeyStops);
      if (P._GetEOF() || P.CurrCharW() != u'%') break;
      const AnsiString head = P.PeekString(3);
      if (head == "%5B" || head == "%5D") break;
      result += P.Selected(tpMark1, tpCurrent, true);
      result += ReadPercentEscape();
      P.SetMark(tpMark1);
    }
    result += P.Selected(tpMark1, tpCurrent, true);
    return result;
  }

  // On "=": the value as JSON string text, up to "&" or the end.
  UnicodeString ReadValue() {
    UnicodeString value;
    P.NextChar();
    for (;;) {
      P.SetMark(tpMark1);
      P.SkipWhileSet(soNotInSet, kValueStops);
      value += P.Selected(tpMark1, tpCurrent, true);
      if (P._GetEOF()) break;
      const WideChar c = P.CurrCharW();
      if (c == u'&') break;
      if (c == u'%') {
        // Escaped control characters drop out of a value.
        UnicodeString text = ReadPercentEscape();
        if (!(text < u" ")) value += text;
      } else {
        if (c == u'+') value += u' ';
        P.NextChar();  // "+", or a raw line break, which drops out
      }
    }
    // Text that looks like JSON is passed as it stands; it stays a string all the same.
    if (!value.empty() && (value[0] == u'[' || value[0] == u'{')) return value;
    return VnStrToJSON(value);
  }

  // On "%": one escape, and for a lead byte above 0x7F one more for each continuation byte its
  // high bits announce; the bytes decoded as UTF-8.
  UnicodeString ReadPercentEscape() {
    std::string bytes(1, static_cast<char>(ReadEscapedByte()));
    const auto lead = static_cast<uint8_t>(bytes[0]);
    if (lead > 0x7F) {
      for (auto bits = static_cast<uint8_t>(lead << 1); bits & 0x80; bits = static_cast<uint8_t>(bits << 1)) {
        if (P._GetEOF() || P.CurrCharW() != u'%') throw Exception(UnicodeString(cVnFormInvalidUTF8));
        bytes += static_cast<char>(ReadEscapedByte());
      }
    }
    return TVnEncoding::ConvertA(bytes, cVnCodePageUTF8);
  }

  // On "%": the two characters after it as a hexadecimal byte. A text that ends first raises
  // the scanner's end-of-text failure; digits that aren't hexadecimal the conversion's.
  uint8_t ReadEscapedByte() {
    P.NextChar();
    char16_t digits[3] = {u'$', 0, 0};
    for (int i = 1; i <= 2; ++i) {
      P.CheckEOF();
      digits[i] = P.CurrCharW();
      P.NextChar();
    }
    return static_cast<uint8_t>(StrToInt(std::u16string_view(digits, 3)) & 0xFF);
  }

  void ReadOpeningMark() {
    if (!P._GetEOF() && P.CurrCharW() == u'[') return P.NextChar();
    const UnicodeString found = P.PeekStringW(3);
    if (found != u"%5B") throw Exception(cVnFormOpeningMarkExpected, {found});
    P.SkipChars(3);
  }

  // Whatever follows a segment's text closes it: "]", "%5D", or any one character.
  void ReadClosingMark() {
    if (P.PeekString(3) == "%5D") return P.SkipChars(3);
    P.NextChar();
  }

  // ---- levels ----
  // L holds the levels left open by the previous pair; the current key has matched the first M.

  void Segment(UnicodeString AText, LevelKind AKind) {
    bool arrayGoesOn = false;
    if (L.size() > M && L[M].Text != AText) {
      if (L[M].Kind == LevelKind::Index && AKind == LevelKind::Index && StartsWithDigit(AText)) {
        // Another index: the element ends, its array goes on.
        CloseFrom(M + 1);
        if (L[M].Open) H.EndObject();
        L.pop_back();
        arrayGoesOn = true;
      } else {
        CloseFrom(M);
      }
    }
    if (L.size() > M) {  // the same level as the previous key's: nothing to fire
      ++M;
      return;
    }
    if (AKind == LevelKind::Index) {
      if (!arrayGoesOn) {
        PrepareValueSlot();
        H.StartArray();
      }
    } else {
      PrepareObjectSlot();
      H.StartMember(AText);
    }
    L.push_back(Level{std::move(AText), AKind});
    ++M;
  }

  // Before a value or an array at the end of L: the level there must be waiting for one.
  void PrepareValueSlot() {
    Level& last = L.back();
    if (last.Kind == LevelKind::Member) {
      if (last.Open || last.Filled) Restart(last);
    } else if (last.Open) {
      H.EndObject();  // the element's object ends, the array takes the next element
      last.Open = false;
    }
  }

  // Before a member below the end of L: an object must be open there (the root always is).
  void PrepareObjectSlot() {
    if (L.empty()) return;
    Level& last = L.back();
    if (last.Filled) Restart(last);
    if (!last.Open) {
      H.StartObject();
      last.Open = true;
    }
  }

  // A member that can take no other value is given again under the same name.
  void Restart(Level& AMember) {
    if (AMember.Open) H.EndObject();
    H.EndMember();
    H.StartMember(AMember.Text);
    AMember.Open = AMember.Filled = false;
  }

  // Closes the levels from position AFrom on, deepest first.
  void CloseFrom(size_t AFrom) {
    while (L.size() > AFrom) {
      const Level last = std::move(L.back());
      L.pop_back();
      if (last.Open) H.EndObject();
      if (last.Kind == LevelKind::Member) {
        H.EndMember();
      } else {
        H.EndArray();
        if (!L.empty() && L.back().Kind == LevelKind::Member) L.back().Filled = true;
      }
    }
  }

  TVnJSONTextParser& P;
  IVnJSONContentHandler& H;
  std::vector<Level> L;
  size_t M = 0;
};

}  // namespace

void TVnFormURLEncodedJSONReader::InternalParse() {
  // Raised outside the failure path, before any event; a form reader needs no error handler.
  if (!FContentHandler)
    throw EVnJSONException(cVnJSONErrNoContentHandler, UnicodeString(_cVnJSONNoContentHandler));
  VnAssert(FParser != nullptr, u"TVnFormURLEncodedJSONReader.InternalParse: no parser");
  // The handlers are held for the whole parse even if one of them replaces another.
  IPtr<IVnJSONContentHandler> content = FContentHandler;
  IPtr<IVnJSONErrorHandler> errors = FErrorHandler;
  try {
    FormReading(*FParser, *content.Get()).Run();
  } catch (const std::exception& e) {
    // The end-of-text flag is the JSON reader's: a form failure leaves it as it was.
    if (errors) {
      auto* error = dynamic_cast<const Exception*>(&e);
      errors->FatalError(this, error ? error->Message() : Utf8ToUnicode(e.what()));
    }
    throw;
  }
}

}  // namespace vn
