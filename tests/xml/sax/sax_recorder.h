// Moved to support/sax_handlers.h; kept for tests written against the old place.
#pragma once
#include "support/sax_handlers.h"
namespace vntest {
using vn::test::RecordingReader;
using vn::test::SaxRecorder;
}  // namespace vntest
