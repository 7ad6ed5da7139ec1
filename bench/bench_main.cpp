// Shared main of every benchmark program: keeps freed memory in the process, so that page
// faults of memory handed back to the kernel don't dominate what is measured.
#include <malloc.h>

#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, -1);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
