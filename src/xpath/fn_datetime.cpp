// The date and time functions: components of dates, times and date-times, their zones,
// dateTime(date, time) and adjust-dateTime-to-timezone.
// Values travel as text and are parsed again by each call; a text that is no date raises the
// parser's own error.
#include <cstdlib>

#include "vnxml/common/date_utils.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/var_utils.h"
#include "vnxml/xml_values.h"
#include "xpath/fn_messages.h"
#include "xpath/fn_registry.h"

namespace vn {
namespace {

using namespace detail;

UnicodeString Padded(Integer AValue, size_t AWidth) {
  UnicodeString digits = IntToStr(AValue);
  return digits.size() < AWidth ? UnicodeString(AWidth - digits.size(), u'0') + digits : digits;
}

// "+hh:mm" or "-hh:mm" of an offset in minutes; zero gives "+00:00".
UnicodeString OffsetText(Integer AMinutes) {
  Integer magnitude = std::abs(AMinutes);
  return (AMinutes < 0 ? u"-" : u"+") + Padded(magnitude / 60, 2) + u":" + Padded(magnitude % 60, 2);
}

// The moment that a parsed text stands for, as a local clock reading; a time alone counts today.
TDateTime MomentOf(const TVnDateTimeParts& AParts) {
  TDateTime date = AParts.HasDate ? EncodeDate(AParts.Year, AParts.Month, AParts.Day) : Trunc(Now());
  return date + EncodeTime(AParts.Hour, AParts.Minute, AParts.Second, AParts.MilliSecond);
}

// The zone of a parsed text as a duration text; Null when the text has none. A "Z" gives the
// machine's own offset at that moment, which is how the function has always answered.
Variant ZoneDuration(const TVnDateTimeParts& AParts) {
  Integer minutes;
  switch (AParts.TimeZone) {
    case tzfOffset:
      minutes = AParts.TimeZoneOffset();
      break;
    case tzfUTC:
      minutes = VnCalcTimeZoneOffset(MomentOf(AParts));
      break;
    default:
      return Variant::Null();
  }
  TVnDuration duration;
  duration.Negative = minutes < 0;
  duration.Seconds = std::abs(minutes) * 60.0;
  return VnDurationToXML(duration);
}

enum class DatePart : uint8_t { Year, Month, Day, Hours, Minutes, Seconds, TimeZone };

class DatePartFunction : public TVnXPathFunction {
  VN_DECLARE_CLASS(DatePartFunction, TVnXPathFunction)
 public:
  using TVnXPathFunction::TVnXPathFunction;

  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override {
    if (ParamCount() != 1) throw EVnDomSyntax(cFnDatePartArity, {Name(), Argument()});
    TVnDateTimeParts parts = VnDecodeISODateTime(ParamString(0, AList, AIndex));
    switch (Part()) {
      case DatePart::Year:
        return parts.NegativeYear ? -Integer(parts.Year) : Integer(parts.Year);
      case DatePart::Month:
        return Integer(parts.Month);
      case DatePart::Day:
        return Integer(parts.Day);
      case DatePart::Hours:
        return Integer(parts.Hour);
      case DatePart::Minutes:
        return Integer(parts.Minute);
      case DatePart::Seconds:
        return parts.Second + parts.MilliSecond / 1000.0;
      case DatePart::TimeZone:
        return ZoneDuration(parts);
    }
    return Variant::Null();
  }

 protected:
  virtual const char16_t* Name() const = 0;
  /// The argument as the arity message names it: "dateTime", "date" or "time".
  virtual const char16_t* Argument() const = 0;
  virtual DatePart Part() const = 0;
};

#define VN_XPATH_DATE_PART_FUNCTION(ClassName, FunctionName, ArgumentName, ThePart) \
  class ClassName : public DatePartFunction {                                        \
    VN_DECLARE_CLASS(ClassName, DatePartFunction)                                    \
   public:                                                                           \
    using DatePartFunction::DatePartFunction;                                        \
                                                                                     \
   protected:                                                                        \
    const char16_t* Name() const override { return FunctionName; }                   \
    const char16_t* Argument() const override { return ArgumentName; }              \
    DatePart Part() const override { return DatePart::ThePart; }                     \
  };

VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnYearFromDateTime, u"year-from-dateTime", u"dateTime", Year)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnYearFromDate, u"year-from-date", u"date", Year)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnMonthFromDateTime, u"month-from-dateTime", u"dateTime", Month)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnMonthFromDate, u"month-from-date", u"date", Month)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnDayFromDateTime, u"day-from-dateTime", u"dateTime", Day)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnDayFromDate, u"day-from-date", u"date", Day)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnHoursFromDateTime, u"hours-from-dateTime", u"dateTime", Hours)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnHoursFromTime, u"hours-from-time", u"time", Hours)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnMinutesFromDateTime, u"minutes-from-dateTime", u"dateTime", Minutes)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnMinutesFromTime, u"minutes-from-time", u"time", Minutes)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnSecondsFromDateTime, u"seconds-from-dateTime", u"dateTime", Seconds)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnSecondsFromTime, u"seconds-from-time", u"time", Seconds)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnTimeZoneFromDateTime, u"timezone-from-dateTime", u"dateTime", TimeZone)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnTimeZoneFromDate, u"timezone-from-date", u"date", TimeZone)
VN_XPATH_DATE_PART_FUNCTION(TVnXPathFnTimeZoneFromTime, u"timezone-from-time", u"time", TimeZone)

#undef VN_XPATH_DATE_PART_FUNCTION

VN_XPATH_FUNCTION(TVnXPathFnDateTime, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnAdjustDateTimeToTimeZone, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnAdjustDateToTimeZone, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnAdjustTimeToTimeZone, TVnXPathFunction)

Variant TVnXPathFnDateTime::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(2, 2, cFnDateTimeArity);
  TVnDateTimeParts date = VnDecodeISODateTime(ParamString(0, AList, AIndex));
  TVnDateTimeParts time = VnDecodeISODateTime(ParamString(1, AList, AIndex));
  const TVnDateTimeParts* zone = &time;
  if (date.TimeZone == tzfNone)
    zone = &time;
  else if (time.TimeZone == tzfNone)
    zone = &date;
  else if (date.TimeZone != time.TimeZone)
    throw EVnXPathException(cFnCodeDifferentZones, u"", cFnDateTimeZones);
  TDateTime value = EncodeDate(date.Year, date.Month, date.Day) +
                    EncodeTime(time.Hour, time.Minute, time.Second, time.MilliSecond);
  if (date.NegativeYear) value = -value;
  UnicodeString text = VnDateTimeToXML(value, tzfNone);
  if (zone->TimeZone == tzfUTC) return text + u"Z";
  if (zone->TimeZone == tzfOffset) return text + OffsetText(zone->TimeZoneOffset());
  return text;
}

// The clock time is never shifted: a new zone replaces the old one and the fields stay.
Variant TVnXPathFnAdjustDateTimeToTimeZone::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(0, 2, cFnAdjustDateTimeArity);
  Variant dt = ParamCount() > 0 ? ParamValue(0, AList, AIndex) : Variant::Null();
  if (VnVarIsEmpty(dt)) return Variant::Null();
  UnicodeString text = VnVarToStr(dt);
  TVnDateTimeParts parts = VnDecodeISODateTime(text);

  bool hasNewZone = true;
  Integer offset = 0;
  if (ParamCount() > 1) {
    Variant zone = ParamValue(1, AList, AIndex);
    if (VnVarIsEmpty(zone)) {
      hasNewZone = false;
    } else {
      TVnDuration duration = VnXMLToDuration(VnVarToStr(zone));
      Int64 seconds = Trunc(duration.Seconds);
      offset = static_cast<Integer>(seconds / 3600 * 60 + seconds % 3600 / 60);
      if (duration.Negative) offset = -offset;
    }
  } else {
    offset = VnCalcTimeZoneOffset(Now());
  }

  if (parts.TimeZone == tzfNone) return hasNewZone ? Variant(text + OffsetText(offset)) : dt;
  UnicodeString local = (parts.NegativeYear ? u"-" : u"") + Padded(parts.Year, 4) + u"-" + Padded(parts.Month, 2) +
                        u"-" + Padded(parts.Day, 2) + u"T" + Padded(parts.Hour, 2) + u":" + Padded(parts.Minute, 2) +
                        u":" + Padded(parts.Second, 2) + u"." + Padded(parts.MilliSecond, 3);
  return hasNewZone ? local + OffsetText(offset) : local;
}

// These two never had a result: a filter reads them as empty.
Variant TVnXPathFnAdjustDateToTimeZone::Value(const TVnDOMObjectList&, Integer) { return Variant(); }

Variant TVnXPathFnAdjustTimeToTimeZone::Value(const TVnDOMObjectList&, Integer) { return Variant(); }

const XPathFnEntry cDateTimeFunctions[] = {
    {u"year-from-dateTime", &TVnXPathFunctionTerm::Create<TVnXPathFnYearFromDateTime>},
    {u"year-from-date", &TVnXPathFunctionTerm::Create<TVnXPathFnYearFromDate>},
    {u"month-from-dateTime", &TVnXPathFunctionTerm::Create<TVnXPathFnMonthFromDateTime>},
    {u"month-from-date", &TVnXPathFunctionTerm::Create<TVnXPathFnMonthFromDate>},
    {u"day-from-dateTime", &TVnXPathFunctionTerm::Create<TVnXPathFnDayFromDateTime>},
    {u"day-from-date", &TVnXPathFunctionTerm::Create<TVnXPathFnDayFromDate>},
    {u"hours-from-dateTime", &TVnXPathFunctionTerm::Create<TVnXPathFnHoursFromDateTime>},
    {u"hours-from-time", &TVnXPathFunctionTerm::Create<TVnXPathFnHoursFromTime>},
    {u"minutes-from-dateTime", &TVnXPathFunctionTerm::Create<TVnXPathFnMinutesFromDateTime>},
    {u"minutes-from-time", &TVnXPathFunctionTerm::Create<TVnXPathFnMinutesFromTime>},
    {u"seconds-from-dateTime", &TVnXPathFunctionTerm::Create<TVnXPathFnSecondsFromDateTime>},
    {u"seconds-from-time", &TVnXPathFunctionTerm::Create<TVnXPathFnSecondsFromTime>},
    {u"timezone-from-dateTime", &TVnXPathFunctionTerm::Create<TVnXPathFnTimeZoneFromDateTime>},
    {u"timezone-from-date", &TVnXPathFunctionTerm::Create<TVnXPathFnTimeZoneFromDate>},
    {u"timezone-from-time", &TVnXPathFunctionTerm::Create<TVnXPathFnTimeZoneFromTime>},
    {u"dateTime", &TVnXPathFunctionTerm::Create<TVnXPathFnDateTime>},
    {u"adjust-dateTime-to-timezone", &TVnXPathFunctionTerm::Create<TVnXPathFnAdjustDateTimeToTimeZone>},
    {u"adjust-date-to-timezone", &TVnXPathFunctionTerm::Create<TVnXPathFnAdjustDateToTimeZone>},
    {u"adjust-time-to-timezone", &TVnXPathFunctionTerm::Create<TVnXPathFnAdjustTimeToTimeZone>},
};

}  // namespace

std::span<const detail::XPathFnEntry> detail::DateTimeFunctionTable() { return cDateTimeFunctions; }

}  // namespace vn
