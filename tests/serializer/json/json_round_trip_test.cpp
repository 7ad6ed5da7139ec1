// Object graph to JSON text and back, over a member of every shape.
#include <gtest/gtest.h>

#include "json_domain.h"

namespace jsondomain {
namespace {

TEST(JSONRoundTrip, Smoke) {
  TShapes a;
  a.I = 42;
  a.S = u"Ann \"q\"";
  a.Ints = {1, 2, 3};
  a.Pet = new TCat;
  a.Pet->Name = u"Tom";
  a.Notes->Add(u"x");
  std::string text = ToJSON(a);
  std::cout << text << "\n";
  TShapes b;
  FromJSON(b, text);
  std::cout << ToJSON(b) << "\n";
  EXPECT_EQ(text, ToJSON(b));
}

}  // namespace
}  // namespace jsondomain
