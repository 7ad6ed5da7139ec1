// Object graph to XML and back, over a member of every shape.
#include <gtest/gtest.h>

#include "../serial_domain.h"
#include "vnxml/common/utf.h"
#include "vnxml/xml_serializer.h"

namespace {

using namespace serialdomain;

TEST(XMLRoundTrip, EveryShapeComesBackEqualAndWritesTheSameText) {
  for (int variant : {0, 1, 2}) {
    SCOPED_TRACE(variant);
    TAll original;
    Fill(original, variant);
    const TVnSerializedData text = VnSerialize(dsfXML, &original);
    TAll copy;
    VnDeserialize(dsfXML, TValue::FromObject(&copy), text);
    ExpectSame(original, copy);
    EXPECT_EQ(text, VnSerialize(dsfXML, &copy));
    if (HasFailure()) {
      std::cout << text << "\n";
      return;
    }
  }
}

}  // namespace
