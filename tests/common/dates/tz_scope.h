// tz_scope.h: switches the process time zone (TZ) for the life of a test and restores it.
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace vn::test {

// Zones used by the date tests; POSIX rules need no tz database.
inline constexpr const char* cZoneUTC = "UTC0";
// Central Europe: +01:00, +02:00 from the last Sunday of March 02:00 to the last Sunday of October 03:00.
inline constexpr const char* cZoneBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";
// Newfoundland: -03:30, -02:30 in summer; a negative offset with minutes.
inline constexpr const char* cZoneNewfoundland = "NST3:30NDT,M3.2.0,M11.1.0";

class TimeZoneScope {
 public:
  explicit TimeZoneScope(const char* AZone) {
    if (const char* old = std::getenv("TZ")) FOld = old;
    setenv("TZ", AZone, 1);
    tzset();
  }
  ~TimeZoneScope() {
    (void)(FOld ? setenv("TZ", FOld->c_str(), 1) : unsetenv("TZ"));
    tzset();
  }
  TimeZoneScope(const TimeZoneScope&) = delete;
  TimeZoneScope& operator=(const TimeZoneScope&) = delete;

 private:
  std::optional<std::string> FOld;
};

}  // namespace vn::test
