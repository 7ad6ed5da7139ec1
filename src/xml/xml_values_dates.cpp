// Dates, times and date-times to XML text and back, in the three zone formats.
#include <cmath>

#include "vnxml/common/sysutils.h"
#include "xml/xml_values_internal.h"

namespace vn {

namespace {

constexpr double cMinutesPerDay = 1440;
constexpr Int64 cMSecsPerDay = 86400000;

void AppendPadded(UnicodeString& AText, unsigned AValue, unsigned AWidth) {
  UnicodeString digits = IntToStr(AValue);
  if (digits.size() < AWidth) AText.append(AWidth - digits.size(), u'0');
  AText += digits;
}

void AppendDate(UnicodeString& AText, TDateTime AValue) {
  Word year = 0, month = 0, day = 0;
  DecodeDate(AValue, year, month, day);
  AppendPadded(AText, year, 4);
  AText += u'-';
  AppendPadded(AText, month, 2);
  AText += u'-';
  AppendPadded(AText, day, 2);
}

void AppendTime(UnicodeString& AText, TDateTime AValue, bool AMilliSeconds) {
  Word hour = 0, minute = 0, second = 0, milli = 0;
  DecodeTime(AValue, hour, minute, second, milli);
  AppendPadded(AText, hour, 2);
  AText += u':';
  AppendPadded(AText, minute, 2);
  AText += u':';
  AppendPadded(AText, second, 2);
  if (AMilliSeconds) {
    AText += u'.';
    AppendPadded(AText, milli, 3);
  }
}

// "+hh:mm" or "-hh:mm"; zero is "+00:00".
void AppendOffset(UnicodeString& AText, Integer AMinutes) {
  AText += AMinutes < 0 ? u'-' : u'+';
  unsigned minutes = static_cast<unsigned>(AMinutes < 0 ? -AMinutes : AMinutes);
  AppendPadded(AText, minutes / 60, 2);
  AText += u':';
  AppendPadded(AText, minutes % 60, 2);
}

// A time of day has no date of its own; zones are applied as they stand today, not as in 1899.
// The time of a negative value counts forwards, as everywhere in TDateTime.
TDateTime OnToday(TTime ATime) { return std::floor(Date()) + std::fabs(ATime - std::trunc(ATime)); }

// The time of day of a value, rounded to the millisecond and kept in [0, 1).
TTime TimeOfDay(TDateTime AValue) {
  Int64 ms = std::llround((AValue - std::floor(AValue)) * double(cMSecsPerDay)) % cMSecsPerDay;
  return double(ms) / double(cMSecsPerDay);
}

bool IsZeroText(std::u16string_view AText) { return AText.empty() || AText == u"0"; }

// Moves a parsed clock reading (as AValue) into the zone AFormat asks for.
TDateTime ApplyZone(TDateTime AValue, const TVnDateTimeParts& AParts, TVnTimeZoneFormat AFormat) {
  if (AParts.TimeZone == tzfNone) {
    if (AFormat != tzfNone) throw Exception(UnicodeString(cVnXMLDateTimeNoTimezone));
    return AValue;
  }
  TDateTime utc = AValue - AParts.TimeZoneOffset() / cMinutesPerDay;
  return AFormat == tzfUTC ? utc : VnUTCToLocal(utc);
}

}  // namespace

namespace detail {

TTime EncodeClock(const TVnDateTimeParts& AParts) {
  return EncodeTime(AParts.Hour, AParts.Minute, AParts.Second, AParts.MilliSecond);
}

TDateTime EncodeCalendarDate(const TVnDateTimeParts& AParts) {
  if (!AParts.HasDate) return 0;
  TDateTime date = EncodeDate(AParts.Year, AParts.Month, AParts.Day);
  return AParts.NegativeYear ? -date : date;
}

}  // namespace detail

// ---- zone formats ----

TVnXMLDateTimeFormat VnXMLDateTimeFormat(const TVnDateTimeParts& AParts) {
  switch (AParts.TimeZone) {
    case tzfOffset:
      return xdtfTimezone;
    case tzfUTC:
      return xdtfUTC;
    default:
      return xdtfLocal;
  }
}

TVnDateTimeParts VnDecodeXMLDateTime(std::u16string_view AText) { return VnDecodeISODateTime(AText); }

TVnTimeZoneFormat VnTimeZoneFormatOf(TVnXMLDateTimeFormat AFormat) {
  switch (AFormat) {
    case xdtfUTC:
      return tzfUTC;
    case xdtfTimezone:
      return tzfOffset;
    default:
      return tzfNone;
  }
}

// ---- value to text ----

UnicodeString VnDateToXML(TDateTime AValue, TVnTimeZoneFormat AFormat) {
  UnicodeString text;
  if (AFormat == tzfUTC) {
    AppendDate(text, VnLocalToUTC(AValue));
    text += u'Z';
  } else {
    AppendDate(text, AValue);
    if (AFormat == tzfOffset) AppendOffset(text, VnCalcTimeZoneOffset(AValue));
  }
  return text;
}

UnicodeString VnTimeToXML(TDateTime AValue, TVnTimeZoneFormat AFormat) {
  UnicodeString text;
  if (AFormat == tzfUTC) {
    AppendTime(text, TimeOfDay(VnLocalToUTC(OnToday(AValue))), true);
    text += u'Z';
  } else {
    AppendTime(text, AValue, true);
    if (AFormat == tzfOffset) AppendOffset(text, VnCalcTimeZoneOffset(OnToday(AValue)));
  }
  return text;
}

UnicodeString VnDateTimeToXML(TDateTime AValue, TVnTimeZoneFormat AFormat) {
  UnicodeString text;
  TDateTime value = AFormat == tzfUTC ? VnLocalToUTC(AValue) : AValue;
  AppendDate(text, value);
  text += u'T';
  AppendTime(text, value, AFormat != tzfUTC);
  if (AFormat == tzfUTC)
    text += u'Z';
  else if (AFormat == tzfOffset)
    AppendOffset(text, VnCalcTimeZoneOffset(AValue));
  return text;
}

UnicodeString VnDateToXML(TDateTime AValue, TVnXMLDateTimeFormat AFormat) {
  return VnDateToXML(AValue, VnTimeZoneFormatOf(AFormat));
}
UnicodeString VnTimeToXML(TDateTime AValue, TVnXMLDateTimeFormat AFormat) {
  return VnTimeToXML(AValue, VnTimeZoneFormatOf(AFormat));
}
UnicodeString VnDateTimeToXML(TDateTime AValue, TVnXMLDateTimeFormat AFormat) {
  return VnDateTimeToXML(AValue, VnTimeZoneFormatOf(AFormat));
}

// ---- text to value ----

TDateTime VnXMLToDate(std::u16string_view AText) {
  if (IsZeroText(AText)) return 0;
  TVnDateTimeParts parts = VnDecodeISODateTime(AText);
  TDateTime date = EncodeDate(parts.Year, parts.Month, parts.Day);  // raises for a text without a day
  return parts.NegativeYear ? -date : date;
}

TTime VnXMLToTime(std::u16string_view AText, TVnTimeZoneFormat AFormat) {
  if (IsZeroText(AText)) return 0;
  TVnDateTimeParts parts = VnDecodeISODateTime(AText);
  TTime clock = detail::EncodeClock(parts);
  if (parts.TimeZone == tzfNone && AFormat == tzfNone) return clock;
  return TimeOfDay(ApplyZone(OnToday(clock), parts, AFormat));
}

TDateTime VnXMLToDateTime(std::u16string_view AText, TVnTimeZoneFormat AFormat) {
  if (IsZeroText(AText)) return 0;
  TVnDateTimeParts parts = VnDecodeISODateTime(AText);
  TDateTime value = detail::EncodeCalendarDate(parts);
  TTime clock = detail::EncodeClock(parts);
  value = value < 0 ? value - clock : value + clock;
  return ApplyZone(value, parts, AFormat);
}

TDateTime VnXMLToDateDef(std::u16string_view AText, TDateTime ADefault) {
  try {
    return VnXMLToDate(AText);
  } catch (const std::exception&) {
    return ADefault;
  }
}

TTime VnXMLToTimeDef(std::u16string_view AText, TTime ADefault, TVnTimeZoneFormat AFormat) {
  try {
    return VnXMLToTime(AText, AFormat);
  } catch (const std::exception&) {
    return ADefault;
  }
}

TDateTime VnXMLToDateTimeDef(std::u16string_view AText, TDateTime ADefault, TVnTimeZoneFormat AFormat) {
  try {
    return VnXMLToDateTime(AText, AFormat);
  } catch (const std::exception&) {
    return ADefault;
  }
}

TTime VnXMLToTime(std::u16string_view AText, TVnXMLDateTimeFormat AFormat) {
  return VnXMLToTime(AText, VnTimeZoneFormatOf(AFormat));
}
TTime VnXMLToTimeDef(std::u16string_view AText, TTime ADefault, TVnXMLDateTimeFormat AFormat) {
  return VnXMLToTimeDef(AText, ADefault, VnTimeZoneFormatOf(AFormat));
}
TDateTime VnXMLToDateTime(std::u16string_view AText, TVnXMLDateTimeFormat AFormat) {
  return VnXMLToDateTime(AText, VnTimeZoneFormatOf(AFormat));
}
TDateTime VnXMLToDateTimeDef(std::u16string_view AText, TDateTime ADefault, TVnXMLDateTimeFormat AFormat) {
  return VnXMLToDateTimeDef(AText, ADefault, VnTimeZoneFormatOf(AFormat));
}

}  // namespace vn
