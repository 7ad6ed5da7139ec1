// tour: a walk through vnxml's capabilities on the bundled sample files.
// Usage: tour [DATA_DIR]   (default: examples/data next to the source tree)
#include <cstdio>
#include <exception>

#include "sections.h"

namespace tour {
namespace {
std::string g_data_dir = VNXML_TOUR_DATA_DIR;
}
const std::string& DataDir() { return g_data_dir; }
}  // namespace tour

int main(int argc, char** argv) {
  if (argc > 1) tour::g_data_dir = argv[1];
  try {
    tour::Encodings();
    tour::Scanner();
    tour::Sax();
    tour::Document();
    tour::Paths();
    tour::Json();
    tour::JsonPaths();
    tour::Form();
    tour::Bridges();
    tour::Objects();
    tour::Schema();
    tour::PlatformDom();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "tour failed: %s\n", e.what());
    return 1;
  }
  return 0;
}
