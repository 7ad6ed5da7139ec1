// Reading ISO 8601 / XML Schema date-time texts into TVnDateTimeParts.
#include "vnxml/common/date_utils.h"

#include "vnxml/common/exception.h"

namespace vn {

namespace {

bool IsDigit(char16_t ACh) { return ACh >= u'0' && ACh <= u'9'; }

bool IsLeap(unsigned AYear) { return (AYear % 4 == 0 && AYear % 100 != 0) || AYear % 400 == 0; }

unsigned DaysIn(unsigned AYear, unsigned AMonth, bool AYearKnown) {
  static constexpr unsigned cDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  // Without a year (gMonthDay, gDay) the 29th of February is allowed.
  if (AMonth == 2 && (!AYearKnown || IsLeap(AYear))) return 29;
  return cDays[AMonth - 1];
}

[[noreturn]] void Fail(std::u16string_view AText) { throw EConvertError(cVnInvalidISODateTime, {AText}); }

// A cursor over the trimmed text; every reader returns false and leaves the position undefined
// on a mismatch, since any mismatch fails the whole text.
class DateScanner {
 public:
  explicit DateScanner(std::u16string_view AText) : FText(AText) {}

  bool AtEnd() const { return FPos >= FText.size(); }
  char16_t Peek(size_t AAhead = 0) const {
    return FPos + AAhead < FText.size() ? FText[FPos + AAhead] : u'\0';
  }
  bool Take(char16_t ACh) {
    if (Peek() != ACh) return false;
    ++FPos;
    return true;
  }
  void Skip(size_t ACount) { FPos += ACount; }

  size_t DigitRun() const {
    size_t n = 0;
    while (IsDigit(Peek(n))) ++n;
    return n;
  }

  /// Exactly ACount digits.
  bool Number(size_t ACount, unsigned& AValue) {
    if (DigitRun() < ACount) return false;
    AValue = 0;
    for (size_t i = 0; i < ACount; ++i) AValue = AValue * 10 + unsigned(FText[FPos++] - u'0');
    return true;
  }

  /// A zone designator follows: "Z", or a sign with "hh:" (a bare "-mm" after a year is a month).
  bool ZoneAhead() const {
    char16_t ch = Peek();
    if (ch == u'Z') return true;
    if (ch == u'+') return true;
    return ch == u'-' && IsDigit(Peek(1)) && IsDigit(Peek(2)) && Peek(3) == u':';
  }

 private:
  std::u16string_view FText;
  size_t FPos = 0;
};

bool ReadTime(DateScanner& AScan, TVnDateTimeParts& AParts) {
  unsigned hour = 0, minute = 0, second = 0;
  if (!AScan.Number(2, hour) || !AScan.Take(u':') || !AScan.Number(2, minute)) return false;
  if (AScan.Take(u':')) {
    if (!AScan.Number(2, second)) return false;
    if (AScan.Take(u'.')) {
      size_t digits = AScan.DigitRun();
      if (digits == 0) return false;
      unsigned milli = 0;
      for (size_t i = 0; i < 3; ++i) {
        milli *= 10;
        if (i < digits) milli += unsigned(AScan.Peek(i) - u'0');
      }
      AScan.Skip(digits);
      AParts.MilliSecond = Word(milli);
    }
  }
  if (hour > 23 || minute > 59 || second > 59) return false;
  AParts.Hour = Word(hour);
  AParts.Minute = Word(minute);
  AParts.Second = Word(second);
  AParts.HasTime = true;
  return true;
}

bool ReadZone(DateScanner& AScan, TVnDateTimeParts& AParts) {
  if (AScan.AtEnd()) return true;
  if (AScan.Take(u'Z')) {
    AParts.TimeZone = tzfUTC;
    return true;
  }
  bool negative = AScan.Peek() == u'-';
  if (!AScan.Take(u'+') && !AScan.Take(u'-')) return false;
  unsigned hours = 0, minutes = 0;
  if (!AScan.Number(2, hours)) return false;
  if (AScan.Take(u':')) {
    if (!AScan.Number(2, minutes)) return false;
  } else if (AScan.DigitRun() > 0 && !AScan.Number(2, minutes)) {
    return false;
  }
  if (minutes > 59 || hours > 14 || (hours == 14 && minutes > 0)) return false;
  AParts.TimeZone = tzfOffset;
  AParts.TimeZoneNegative = negative;
  AParts.TimeZoneHour = Word(hours);
  AParts.TimeZoneMinute = Word(minutes);
  return true;
}

// [-]yyyy[-mm[-dd[Thh:mm[:ss[.f]]]]]
bool ReadDate(DateScanner& AScan, TVnDateTimeParts& AParts) {
  AParts.NegativeYear = AScan.Take(u'-');
  size_t yearDigits = AScan.DigitRun();
  unsigned year = 0, month = 0, day = 0;
  if (yearDigits < 4 || yearDigits > 5 || !AScan.Number(yearDigits, year) || year > 0xFFFF) return false;
  AParts.Year = Word(year);
  AParts.HasDate = true;
  if (AScan.ZoneAhead() || !AScan.Take(u'-')) return true;
  if (!AScan.Number(2, month) || month < 1 || month > 12) return false;
  AParts.Month = Word(month);
  if (AScan.ZoneAhead() || !AScan.Take(u'-')) return true;
  if (!AScan.Number(2, day) || day < 1 || day > DaysIn(year, month, true)) return false;
  AParts.Day = Word(day);
  if (AScan.Take(u'T') || AScan.Take(u' ')) return ReadTime(AScan, AParts);
  return true;
}

// --mm, --mm-dd, ---dd
bool ReadRecurringDate(DateScanner& AScan, TVnDateTimeParts& AParts) {
  unsigned month = 0, day = 0;
  AParts.HasDate = true;
  if (AScan.Peek(2) == u'-') {
    AScan.Skip(3);
    if (!AScan.Number(2, day) || day < 1 || day > 31) return false;
    AParts.Day = Word(day);
    return true;
  }
  AScan.Skip(2);
  if (!AScan.Number(2, month) || month < 1 || month > 12) return false;
  AParts.Month = Word(month);
  if (AScan.ZoneAhead() || !AScan.Take(u'-')) return true;
  if (!AScan.Number(2, day) || day < 1 || day > DaysIn(0, month, false)) return false;
  AParts.Day = Word(day);
  return true;
}

std::u16string_view TrimBlanks(std::u16string_view AText) {
  while (!AText.empty() && AText.front() <= u' ') AText.remove_prefix(1);
  while (!AText.empty() && AText.back() <= u' ') AText.remove_suffix(1);
  return AText;
}

}  // namespace

Integer TVnDateTimeParts::TimeZoneOffset() const {
  if (TimeZone != tzfOffset) return 0;
  Integer minutes = Integer(TimeZoneHour) * 60 + Integer(TimeZoneMinute);
  return TimeZoneNegative ? -minutes : minutes;
}

TVnDateTimeParts VnDecodeISODateTime(std::u16string_view AText) {
  std::u16string_view text = TrimBlanks(AText);
  DateScanner scan(text);
  TVnDateTimeParts parts;
  bool ok;
  if (scan.Peek() == u'-' && scan.Peek(1) == u'-')
    ok = ReadRecurringDate(scan, parts);
  else if (scan.DigitRun() == 2 && scan.Peek(2) == u':')
    ok = ReadTime(scan, parts);
  else
    ok = ReadDate(scan, parts);
  if (!ok || !ReadZone(scan, parts) || !scan.AtEnd()) Fail(AText);
  return parts;
}

}  // namespace vn
