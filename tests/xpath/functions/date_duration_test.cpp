// The duration and date functions: parts, signs, zones, and adjusting a zone without moving the clock.
#include "fn_test_support.h"

#include "vnxml/common/date_utils.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/xml_values.h"

namespace vn::testing {
namespace {

TEST_F(FunctionTest, DurationDateAndTimeParts) {
  ExpectShown({
      {uR"(months-from-duration("P1Y2M"))", "int 14"}, {uR"(years-from-duration("P1Y2M"))", "int 1"},
      {uR"(years-from-duration("-P1Y"))", "int -1"}, {uR"(months-from-duration("-P3M"))", "int -3"},
      {uR"(days-from-duration("P1DT2H"))", "int 1"}, {uR"(hours-from-duration("P1DT2H"))", "int 2"},
      {uR"(minutes-from-duration("PT1H30M"))", "int 30"}, {uR"(minutes-from-duration("-PT90M"))", "int -30"},
      {uR"(seconds-from-duration("P1DT2H"))", "float 93600"},
      {uR"(seconds-from-duration("PT1.5S"))", "float 1.5"}, {uR"(days-from-duration(()))", "null"},
  });

  // Each function reports a bad duration under its own name, and a wrong count of parameters too.
  for (const auto& [function, argument] :
       {std::pair{u"years", uR"("1Y")"}, {u"hours", uR"("PXH")"}, {u"seconds", u"@missing"}})
    ExpectXPathError(UnicodeString(function) + u"-from-duration(" + argument + u")", u"FORG0006",
                     u"An invalid parameter was passed to fn:" + UnicodeString(function) + u"-from-duration(arg)");
  ExpectError<EVnDomSyntax>(u"days-from-duration()",
                            u"The \"fn:days-from-duration(arg)\" function must have 1 parameter!");

  // Dates and times.
  ExpectShown({
      {uR"(year-from-dateTime("2020-03-04T05:06:07.25+02:00"))", "int 2020"},
      {uR"(month-from-dateTime("2020-03-04T05:06:07"))", "int 3"},
      {uR"(day-from-date("2020-03-04"))", "int 4"}, {uR"(year-from-date("-0044-03-15"))", "int -44"},
      {uR"(hours-from-dateTime("2020-03-04T05:06:07"))", "int 5"},
      {uR"(minutes-from-time("05:06:07"))", "int 6"}, {uR"(seconds-from-time("05:06:07.25"))", "float 7.25"},
      {uR"(seconds-from-dateTime("2020-03-04T05:06:07"))", "float 7"},
      {uR"(timezone-from-dateTime("2020-01-01T00:00:00+02:00"))", "str PT2H"},
      {uR"(timezone-from-time("10:00:00-05:30"))", "str -PT5H30M"},
      {uR"(timezone-from-date("2020-01-01"))", "null"},
  });
  EXPECT_THROW(Eval(uR"(year-from-date("2020-13-01"))"), EConvertError);
  ExpectError<EVnDomSyntax>(u"year-from-dateTime()",
                            u"The \"fn:year-from-dateTime(dateTime)\" function must have 1 parameter!");
  ExpectError<EVnDomSyntax>(uR"(hours-from-time("a", "b"))",
                            u"The \"fn:hours-from-time(time)\" function must have 1 parameter!");

  // "Z" answers with the machine's own offset at that moment.
  Integer minutes = VnCalcTimeZoneOffset(EncodeDate(2020, 7, 1) + EncodeTime(12, 0, 0, 0));
  TVnDuration expected;
  expected.Negative = minutes < 0;
  expected.Seconds = (minutes < 0 ? -minutes : minutes) * 60.0;
  EXPECT_EQ(ShowEval(uR"(timezone-from-dateTime("2020-07-01T12:00:00Z"))"),
            "str " + UnicodeToUtf8(VnDurationToXML(expected)));
}

TEST_F(FunctionTest, DateTimeJoinsDateAndTimeAdjustingKeepsTheClock) {
  ExpectShown({{uR"(dateTime("2020-01-01", "10:00:00Z"))", "str 2020-01-01T10:00:00.000Z"},
               {uR"(dateTime("2020-01-01+01:00", "10:00:00"))", "str 2020-01-01T10:00:00.000+01:00"},
               {uR"(dateTime("2020-01-01-01:30", "10:00:00-02:00"))", "str 2020-01-01T10:00:00.000-02:00"},
               {uR"(dateTime("2020-01-01", "10:20:30.5"))", "str 2020-01-01T10:20:30.500"}});
  ExpectXPathError(uR"(dateTime("2020-01-01Z", "10:00:00+01:00"))", u"FORG0008",
                   u"An invalid parameter was passed to fn:dateTime(arg)");
  ExpectError<EVnDomSyntax>(uR"(dateTime("2020-01-01"))", detail::cFnDateTimeArity);

  // A new zone replaces the old one; the clock reading is never shifted.
  ExpectShown({
      {uR"(adjust-dateTime-to-timezone("2020-01-01T10:00:00Z", "PT2H"))", "str 2020-01-01T10:00:00.000+02:00"},
      {uR"(adjust-dateTime-to-timezone("2020-01-01T10:00:00+05:00", "-PT1H30M"))",
       "str 2020-01-01T10:00:00.000-01:30"},
      {uR"(adjust-dateTime-to-timezone("2020-01-01T10:00:00+05:00", "PT0S"))", "str 2020-01-01T10:00:00.000+00:00"},
      {uR"(adjust-dateTime-to-timezone("2020-01-01T10:00:00", "PT2H"))", "str 2020-01-01T10:00:00+02:00"},
      {uR"(adjust-dateTime-to-timezone("2020-01-01T10:00:00+05:00", @missing))", "str 2020-01-01T10:00:00.000"},
      {uR"(adjust-dateTime-to-timezone("2020-01-01T10:00:00", @missing))", "str 2020-01-01T10:00:00"},
      {uR"(adjust-dateTime-to-timezone(@missing, "PT2H"))", "null"},
      {uR"(adjust-date-to-timezone("2020-01-01", "PT2H"))", "empty"},
      {uR"(adjust-time-to-timezone("10:00:00", "PT2H"))", "empty"},
  });
  // Without a zone parameter the machine's present offset is used.
  std::string local = ShowEval(uR"(adjust-dateTime-to-timezone("2020-01-01T10:00:00Z"))");
  EXPECT_EQ(local.substr(0, 27), "str 2020-01-01T10:00:00.000");
  ExpectError<EVnDomSyntax>(uR"(adjust-dateTime-to-timezone("a", "b", "c"))", detail::cFnAdjustDateTimeArity);
}

}  // namespace
}  // namespace vn::testing
