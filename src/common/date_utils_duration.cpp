// Building TVnDuration records from their parts.
#include "vnxml/common/date_utils.h"

namespace vn {

TVnDuration VnEncodeDuration(Integer AYears, Integer AMonths, Integer ADays, Integer AHours, Integer AMinutes,
                             Integer ASeconds, Integer AMilliSeconds, bool ANegative) {
  TVnDuration result;
  result.Negative = ANegative;
  result.Months = static_cast<Integer>(Int64(AYears) * 12 + AMonths);
  // Whole seconds are summed as integers so that the millisecond fraction stays exact.
  Int64 seconds = Int64(ADays) * 86400 + Int64(AHours) * 3600 + Int64(AMinutes) * 60 + ASeconds;
  result.Seconds = double(seconds) + AMilliSeconds / 1000.0;
  return result;
}

}  // namespace vn
