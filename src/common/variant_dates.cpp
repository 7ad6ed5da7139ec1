// Date text of Variants: what VarToStr writes for a varDate and reads back.
#include <cmath>

#include "common/variant_internal.h"
#include "vnxml/common/sysutils.h"

namespace vn::detail {

namespace {

void AppendPadded(UnicodeString& AText, unsigned AValue, int ADigits) {
  char16_t digits[8];
  for (int i = ADigits - 1; i >= 0; --i) {
    digits[i] = static_cast<char16_t>(u'0' + AValue % 10);
    AValue /= 10;
  }
  AText.append(digits, static_cast<size_t>(ADigits));
}

/// Reads exactly ADigits digits at APos.
bool ReadNumber(std::u16string_view AText, size_t& APos, int ADigits, Word& AValue) {
  if (APos + static_cast<size_t>(ADigits) > AText.size()) return false;
  unsigned value = 0;
  for (int i = 0; i < ADigits; ++i) {
    char16_t c = AText[APos++];
    if (c < u'0' || c > u'9') return false;
    value = value * 10 + (c - u'0');
  }
  AValue = static_cast<Word>(value);
  return true;
}

bool ReadTime(std::u16string_view AText, size_t& APos, TDateTime& ATime) {
  Word hour, minute, second = 0, msec = 0;
  if (!ReadNumber(AText, APos, 2, hour) || APos >= AText.size() || AText[APos++] != u':' ||
      !ReadNumber(AText, APos, 2, minute))
    return false;
  if (APos < AText.size() && AText[APos] == u':') {
    ++APos;
    if (!ReadNumber(AText, APos, 2, second)) return false;
    if (APos < AText.size() && AText[APos] == u'.') {
      ++APos;
      // Milliseconds are the first three digits; later ones are dropped.
      unsigned scale = 100, digits = 0;
      while (APos < AText.size() && AText[APos] >= u'0' && AText[APos] <= u'9') {
        msec = static_cast<Word>(msec + (AText[APos++] - u'0') * scale);
        scale /= 10;
        ++digits;
      }
      if (digits == 0) return false;
    }
  }
  return TryEncodeTime(hour, minute, second, msec, ATime);
}

}  // namespace

UnicodeString DateToText(TDateTime AValue) {
  Word year, month, day, hour, minute, second, msec;
  DecodeDateTime(AValue, year, month, day, hour, minute, second, msec);
  const bool hasTime = hour || minute || second || msec;
  const bool hasDate = std::trunc(AValue) != 0 || !hasTime;
  UnicodeString text;
  if (hasDate) {
    AppendPadded(text, year, 4);
    text += u'-';
    AppendPadded(text, month, 2);
    text += u'-';
    AppendPadded(text, day, 2);
  }
  if (hasTime) {
    if (hasDate) text += u' ';
    AppendPadded(text, hour, 2);
    text += u':';
    AppendPadded(text, minute, 2);
    text += u':';
    AppendPadded(text, second, 2);
    if (msec) {
      text += u'.';
      AppendPadded(text, msec, 3);
    }
  }
  return text;
}

UnicodeString DateToISOText(TDateTime AValue) {
  Word year, month, day, hour, minute, second, msec;
  DecodeDateTime(AValue, year, month, day, hour, minute, second, msec);
  UnicodeString text;
  AppendPadded(text, year, 4);
  text += u'-';
  AppendPadded(text, month, 2);
  text += u'-';
  AppendPadded(text, day, 2);
  text += u'T';
  AppendPadded(text, hour, 2);
  text += u':';
  AppendPadded(text, minute, 2);
  text += u':';
  AppendPadded(text, second, 2);
  text += u'.';
  AppendPadded(text, msec, 3);
  return text;
}

bool TryTextToDate(std::u16string_view AText, TDateTime& AValue) {
  UnicodeString trimmed = Trim(AText);
  std::u16string_view text = trimmed;
  size_t pos = 0;
  TDateTime date = 0, time = 0;
  bool hasDate = text.size() >= 10 && text[4] == u'-';
  if (hasDate) {
    Word year, month, day;
    if (!ReadNumber(text, pos, 4, year) || text[pos++] != u'-' || !ReadNumber(text, pos, 2, month) ||
        pos >= text.size() || text[pos++] != u'-' || !ReadNumber(text, pos, 2, day) ||
        !TryEncodeDate(year, month, day, date))
      return false;
    if (pos < text.size()) {
      if (text[pos] != u' ' && text[pos] != u'T') return false;
      ++pos;
    }
  }
  if (pos < text.size() && !ReadTime(text, pos, time)) return false;
  if (pos != text.size() || pos == 0) return false;
  // Before 1899-12-30 the day counts down while the time still runs forward.
  AValue = date < 0 ? date - time : date + time;
  return true;
}

}  // namespace vn::detail
