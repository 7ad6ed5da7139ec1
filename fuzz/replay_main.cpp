// Runs a fuzz target over files and folders given on the command line, without libFuzzer,
// so that any compiler replays the seeds and every crash found before as a plain test.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {
int RunFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  return 1;
}
}  // namespace

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    std::filesystem::path arg(argv[i]);
    if (std::filesystem::is_directory(arg)) {
      for (const auto& entry : std::filesystem::recursive_directory_iterator(arg))
        if (entry.is_regular_file()) count += RunFile(entry.path());
    } else if (std::filesystem::exists(arg)) {
      count += RunFile(arg);
    }
  }
  std::printf("replayed %d inputs\n", count);
  // A moved or emptied seed folder must not pass as a clean run.
  if (count == 0) std::fprintf(stderr, "no inputs found\n");
  return count == 0 ? 1 : 0;
}
