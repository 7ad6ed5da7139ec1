// The text of a double member: the writers take the short way for values of up to 15 digits
// and the exact expansion beyond, and both must give the same 15-digit text.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>

#include "vnxml/common/utf.h"
#include "vnxml/xml_values.h"

namespace {

using namespace vn;

TEST(DoubleText, FifteenDigitsAtTheEdges) {
  struct Case { double Value; const char16_t* Expected; };
  const Case cases[] = {
      {0.1, u"0.1"}, {12501.35, u"12501.35"}, {-0.000123, u"-0.000123"}, {1e21, u"1E21"},
      {0.123456789012345, u"0.123456789012345"},         // 15 digits: exact as written
      {0.1234567890123456, u"0.123456789012346"},        // 16 digits: rounded
      {99999.99999999999, u"100000"},                    // rounds up to the next power of ten
      {std::nextafter(1e-4, 0.0), u"0.0001"},            // just below a power of ten
      {DBL_MIN, u"2.2250738585072E-308"}, {DBL_TRUE_MIN, u"4.94065645841247E-324"},  // normal, subnormal
      {DBL_MAX, u"1.79769313486232E308"},
  };
  for (const Case& c : cases) EXPECT_EQ(UnicodeToUtf8(VnDoubleToXML(c.Value)), UnicodeToUtf8(c.Expected)) << c.Value;
}

}  // namespace
