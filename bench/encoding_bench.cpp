// UTF-8 -> UTF-16 decoding (and back) in MB/s of UTF-8 on the perf corpus, beside ICU's converter.
#include <benchmark/benchmark.h>
#include <unicode/ucnv.h>

#include <string>

#include "bench_data.h"
#include "vnxml/common/encoding.h"
#include "vnxml/common/utf.h"

namespace {

const char* const kFiles[] = {"twitter.json", "citm_catalog.json", "canada.json",
                              "vk.xml",       "GLib-2.0.gir",      "synthetic-catalog-20mb.xml"};

const std::string* Input(benchmark::State& AState) {
  const std::string& bytes = vnbench::PerfFile(kFiles[AState.range(0)]);
  if (bytes.empty()) AState.SkipWithError("corpus file missing");
  AState.SetLabel(kFiles[AState.range(0)]);
  return &bytes;
}

void BM_Utf8Decode_vnxml(benchmark::State& AState) {
  const std::string* bytes = Input(AState);
  std::u16string text;
  text.reserve(bytes->size());
  for (auto _ : AState) {
    text.clear();
    vn::TVnEncoding::UTF8()->AppendString(*bytes, text);
    benchmark::DoNotOptimize(text.data());
  }
  AState.SetBytesProcessed(static_cast<int64_t>(AState.iterations() * bytes->size()));
}

void BM_Utf8Decode_icu(benchmark::State& AState) {
  const std::string* bytes = Input(AState);
  UErrorCode err = U_ZERO_ERROR;
  UConverter* converter = ucnv_open("UTF-8", &err);
  std::u16string text(bytes->size() + 1, u'\0');
  for (auto _ : AState) {
    err = U_ZERO_ERROR;
    const int32_t n = ucnv_toUChars(converter, reinterpret_cast<UChar*>(text.data()), static_cast<int32_t>(text.size()),
                                    bytes->data(), static_cast<int32_t>(bytes->size()), &err);
    benchmark::DoNotOptimize(n);
  }
  ucnv_close(converter);
  AState.SetBytesProcessed(static_cast<int64_t>(AState.iterations() * bytes->size()));
}

void BM_Utf8Encode_vnxml(benchmark::State& AState) {
  const std::string* bytes = Input(AState);
  const std::u16string text = vn::Utf8ToUnicode(*bytes);
  std::string out;
  out.reserve(bytes->size() * 3);
  for (auto _ : AState) {
    out.clear();
    vn::TVnEncoding::UTF8()->AppendBytes(text, out);
    benchmark::DoNotOptimize(out.data());
  }
  AState.SetBytesProcessed(static_cast<int64_t>(AState.iterations() * bytes->size()));
}

void Files(benchmark::internal::Benchmark* ABench) {
  for (int i = 0; i < static_cast<int>(std::size(kFiles)); ++i) ABench->Arg(i);
}

// Interleaved per file, so that the ratios are taken under the same conditions.
BENCHMARK(BM_Utf8Decode_vnxml)->Apply(Files);
BENCHMARK(BM_Utf8Decode_icu)->Apply(Files);
BENCHMARK(BM_Utf8Encode_vnxml)->Apply(Files);

}  // namespace
