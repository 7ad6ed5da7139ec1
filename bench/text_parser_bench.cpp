// text_parser_bench: the scanner's bulk skip over the files of corpora/perf, in MB/s.
// Each pass walks the whole text from '<' to '<' (or '"' to '"' for JSON) with SkipWhile and
// NextChar, as the readers do between constructs; also the same walk over the text as UTF-16.
#include <benchmark/benchmark.h>

#include <string>

#include "bench_data.h"
#include "vnxml/common/text_parser.h"
#include "vnxml/common/utf.h"

namespace {

const char* const kFiles[] = {"vk.xml", "GLib-2.0.gir", "synthetic-catalog-20mb.xml",
                              "canada.json", "citm_catalog.json", "twitter.json"};

char16_t StopCharOf(const std::string& file) { return file.ends_with(".json") ? u'"' : u'<'; }

int64_t Walk(vn::TVnTextParser& parser, char16_t stop) {
  int64_t stops = 0;
  parser.First();
  for (;;) {
    parser.SkipWhile(vn::soNotEqual, stop);
    if (parser._GetEOF()) break;
    parser.NextChar();
    ++stops;
  }
  return stops;
}

void BM_SkipUtf8(benchmark::State& state, const char* file) {
  const std::string& bytes = vnbench::PerfFile(file);
  if (bytes.empty()) return state.SkipWithError("corpus file missing");
  vn::TVnTextParser parser(bytes.data(), bytes.size(), 65001);
  for (auto _ : state) benchmark::DoNotOptimize(Walk(parser, StopCharOf(file)));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes.size()));
}

void BM_SkipUtf16(benchmark::State& state, const char* file) {
  const std::string& bytes = vnbench::PerfFile(file);
  if (bytes.empty()) return state.SkipWithError("corpus file missing");
  std::u16string text = vn::Utf8ToUnicode(bytes);
  vn::TVnTextParser parser(text.data(), text.size() * 2, 1200);
  for (auto _ : state) benchmark::DoNotOptimize(Walk(parser, StopCharOf(file)));
  // Counted in bytes of the UTF-8 file, so that the two figures compare.
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes.size()));
}

int RegisterAll() {
  for (const char* file : kFiles) {
    std::string name = std::string("/") + file;
    benchmark::RegisterBenchmark(("skip_utf8" + name).c_str(), BM_SkipUtf8, file)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("skip_utf16" + name).c_str(), BM_SkipUtf16, file)->Unit(benchmark::kMillisecond);
  }
  return 0;
}
const int kRegistered = RegisterAll();

}  // namespace
