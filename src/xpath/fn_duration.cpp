// The duration component functions: years- to seconds-from-duration.
// Durations travel as text and are parsed again by each call; year and month parts live in
// Months, day and time parts in Seconds, so "P1Y2M" has 14 months and "P1DT2H" 93600 seconds.
#include <cmath>

#include "vnxml/common/sysutils.h"
#include "vnxml/xml_values.h"
#include "xpath/fn_messages.h"
#include "xpath/fn_registry.h"

namespace vn {
namespace {

using namespace detail;

class DurationFunction : public TVnXPathFunction {
  VN_DECLARE_CLASS(DurationFunction, TVnXPathFunction)
 public:
  using TVnXPathFunction::TVnXPathFunction;

  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override {
    if (ParamCount() != 1) throw EVnDomSyntax(cFnDurationArity, {Name()});
    if (auto* list = CastObject<TVnXPathListTerm>(GetParam(0)); list && list->Count() == 0) return Variant::Null();
    UnicodeString text = ParamString(0, AList, AIndex);
    TVnDuration duration;
    try {
      duration = VnXMLToDuration(text);
    } catch (const Exception&) {
      // Each function reports a bad duration under its own name.
      throw EVnXPathException(cFnCodeInvalidArgument, text, Format(cFnDurationInvalid, {Name()}));
    }
    Variant part = Part(duration);
    return duration.Negative ? -part : part;
  }

 protected:
  virtual const char16_t* Name() const = 0;
  virtual Variant Part(const TVnDuration& ADuration) const = 0;
  static Int64 WholeSeconds(const TVnDuration& ADuration) { return Trunc(ADuration.Seconds); }
};

#define VN_XPATH_DURATION_FUNCTION(ClassName, FunctionName, Expression)                  \
  class ClassName : public DurationFunction {                                            \
    VN_DECLARE_CLASS(ClassName, DurationFunction)                                        \
   public:                                                                               \
    using DurationFunction::DurationFunction;                                            \
                                                                                         \
   protected:                                                                            \
    const char16_t* Name() const override { return FunctionName; }                       \
    Variant Part(const TVnDuration& d) const override { return Expression; }             \
  };

VN_XPATH_DURATION_FUNCTION(TVnXPathFnYearsFromDuration, u"years-from-duration", d.Months / 12)
// All months, not the months within the year.
VN_XPATH_DURATION_FUNCTION(TVnXPathFnMonthsFromDuration, u"months-from-duration", d.Months)
VN_XPATH_DURATION_FUNCTION(TVnXPathFnDaysFromDuration, u"days-from-duration", WholeSeconds(d) / 86400)
VN_XPATH_DURATION_FUNCTION(TVnXPathFnHoursFromDuration, u"hours-from-duration", WholeSeconds(d) % 86400 / 3600)
VN_XPATH_DURATION_FUNCTION(TVnXPathFnMinutesFromDuration, u"minutes-from-duration", WholeSeconds(d) % 3600 / 60)
// The whole duration in seconds, days included.
VN_XPATH_DURATION_FUNCTION(TVnXPathFnSecondsFromDuration, u"seconds-from-duration", d.Seconds)

#undef VN_XPATH_DURATION_FUNCTION

const XPathFnEntry cDurationFunctions[] = {
    {u"years-from-duration", &TVnXPathFunctionTerm::Create<TVnXPathFnYearsFromDuration>},
    {u"months-from-duration", &TVnXPathFunctionTerm::Create<TVnXPathFnMonthsFromDuration>},
    {u"days-from-duration", &TVnXPathFunctionTerm::Create<TVnXPathFnDaysFromDuration>},
    {u"hours-from-duration", &TVnXPathFunctionTerm::Create<TVnXPathFnHoursFromDuration>},
    {u"minutes-from-duration", &TVnXPathFunctionTerm::Create<TVnXPathFnMinutesFromDuration>},
    {u"seconds-from-duration", &TVnXPathFunctionTerm::Create<TVnXPathFnSecondsFromDuration>},
};

}  // namespace

std::span<const detail::XPathFnEntry> detail::DurationFunctionTable() { return cDurationFunctions; }

}  // namespace vn
