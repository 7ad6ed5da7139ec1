// xs:duration text to TVnDuration and back.
#include <cmath>

#include "vnxml/common/sysutils.h"
#include "xml/xml_values_internal.h"

namespace vn {

namespace {

// Each part of a duration text is a 16-bit number.
constexpr unsigned cMaxPart = 0xFFFF;

void AppendPart(UnicodeString& AText, Int64 AValue, char16_t ADesignator) {
  if (AValue == 0) return;
  AText += IntToStr(AValue);
  AText += ADesignator;
}

[[noreturn]] void FailInvalid(std::u16string_view AText) { throw Exception(cVnDurationInvalid, {AText}); }

bool IsDigit(char16_t ACh) { return ACh >= u'0' && ACh <= u'9'; }

// Reads digits into AValue; false when there are none or they exceed a part's range.
bool ReadPart(std::u16string_view AText, size_t& APos, unsigned& AValue) {
  size_t start = APos;
  AValue = 0;
  while (APos < AText.size() && IsDigit(AText[APos])) {
    AValue = AValue * 10 + unsigned(AText[APos++] - u'0');
    if (AValue > cMaxPart) return false;
  }
  return APos > start;
}

}  // namespace

UnicodeString VnDurationToXML(const TVnDuration& ADuration) {
  bool negative = ADuration.Negative != (ADuration.Months < 0 || ADuration.Seconds < 0);
  Int64 months = std::llabs(Int64(ADuration.Months));
  // Whole milliseconds first, so that 1.9996 s becomes 2 s rather than 1 s and 1000 ms.
  double seconds = std::fabs(ADuration.Seconds);
  Int64 totalMs = std::isfinite(seconds) && seconds < 9.0e15 ? std::llround(seconds * 1000) : 0;
  Int64 wholeSeconds = totalMs / 1000;
  Int64 milli = totalMs % 1000;

  UnicodeString text = negative ? u"-P" : u"P";
  Int64 days = wholeSeconds / 86400;
  Int64 hours = wholeSeconds % 86400 / 3600;
  Int64 minutes = wholeSeconds % 3600 / 60;
  Int64 secs = wholeSeconds % 60;
  if (months == 0 && wholeSeconds == 0 && milli == 0) return text + u"0Y";
  AppendPart(text, months / 12, u'Y');
  AppendPart(text, months % 12, u'M');
  AppendPart(text, days, u'D');
  if (hours == 0 && minutes == 0 && secs == 0 && milli == 0) return text;
  text += u'T';
  AppendPart(text, hours, u'H');
  AppendPart(text, minutes, u'M');
  if (milli != 0) {
    UnicodeString fraction = IntToStr(1000 + milli).substr(1);  // three digits, leading zeros kept
    while (fraction.back() == u'0') fraction.pop_back();
    text += IntToStr(secs) + u'.' + fraction + u'S';
  } else {
    AppendPart(text, secs, u'S');
  }
  return text;
}

TVnDuration VnXMLToDuration(std::u16string_view AText) {
  if (AText.empty()) throw Exception(UnicodeString(cVnDurationEmpty));
  bool negative = AText.front() == u'-';
  size_t pos = negative ? 1 : 0;
  if (pos >= AText.size() || AText[pos] != u'P') throw Exception(UnicodeString(cVnDurationNoP));
  ++pos;

  unsigned years = 0, months = 0, days = 0, hours = 0, minutes = 0, seconds = 0, milli = 0;
  bool inTime = false;
  while (pos < AText.size()) {
    if (AText[pos] == u'T') {
      inTime = true;
      ++pos;
      continue;
    }
    unsigned value = 0;
    if (!ReadPart(AText, pos, value)) FailInvalid(AText);
    unsigned fraction = 0;
    bool hasFraction = pos < AText.size() && AText[pos] == u'.';
    if (hasFraction) {
      // Up to three digits count as milliseconds; further digits are dropped.
      ++pos;
      size_t digits = 0;
      for (; pos < AText.size() && IsDigit(AText[pos]); ++pos, ++digits)
        if (digits < 3) fraction = fraction * 10 + unsigned(AText[pos] - u'0');
      if (digits == 0) FailInvalid(AText);
      for (; digits < 3; ++digits) fraction *= 10;
    }
    char16_t designator = pos < AText.size() ? AText[pos++] : u'\0';
    if (hasFraction && designator != u'S') FailInvalid(AText);
    switch (designator) {
      case u'Y':
        years = value;
        break;
      case u'M':
        (inTime ? minutes : months) = value;
        break;
      case u'D':
        days = value;
        break;
      case u'H':
        hours = value;
        break;
      case u'S':
        seconds = value;
        milli = fraction;
        break;
      default:
        FailInvalid(AText);
    }
  }
  return VnEncodeDuration(Integer(years), Integer(months), Integer(days), Integer(hours), Integer(minutes),
                          Integer(seconds), Integer(milli), negative);
}

}  // namespace vn
