// Bytes asked of operator new in this test program: the measure of work and memory for loads.
#pragma once

#include <cstddef>

namespace vn::test {
size_t AllocatedBytes();
}
