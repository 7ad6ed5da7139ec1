// json_read_bench: event reading of the JSON files of corpora/perf from memory, vnxml beside
// RapidJSON's Reader with a null handler and nlohmann-json's sax_parse (when installed), one
// file at a time so that the runs interleave. "vnxml" is the reader with a handler that counts
// (names and values reach it as UTF-16 views); "vnxml_loop" is the scanning loop alone, with a
// sink that takes the spans in the input's own code units, as the document loader does.
#include <benchmark/benchmark.h>

#include <map>
#include <string>

#include "bench_data.h"
#include "json/json_read_loop.h"
#include "vnxml/json_reader.h"

#ifdef VNXML_HAVE_RAPIDJSON
#include <rapidjson/reader.h>
#endif
#ifdef VNXML_HAVE_NLOHMANN
#include <nlohmann/json.hpp>
#endif

namespace {

const char* const kFiles[] = {"canada.json", "citm_catalog.json", "twitter.json"};

// The reader takes nothing after a top-level object, not even a line break (canada.json ends
// with one), so every library reads the file without its trailing white space.
const std::string& Text(const char* file) {
  static std::map<std::string, std::string> cache;
  auto it = cache.find(file);
  if (it != cache.end()) return it->second;
  std::string bytes = vnbench::PerfFile(file);
  while (!bytes.empty() && static_cast<unsigned char>(bytes.back()) <= ' ') bytes.pop_back();
  return cache.emplace(file, std::move(bytes)).first->second;
}

class CountingHandler : public vn::TVnObject, public vn::IVnJSONContentHandler, public vn::IVnJSONErrorHandler {
  VN_VNOBJECT_INTERFACES(vn::TVnObject, vn::IVnJSONContentHandler, vn::IVnJSONErrorHandler)
 public:
  int64_t Events = 0;
  void SetDocumentLocator(vn::IVnJSONLocator*) override {}
  void StartDocument() override { ++Events; }
  void StartObject() override { ++Events; }
  void StartMember(std::u16string_view) override { ++Events; }
  void StartArray() override { ++Events; }
  void Value(vn::TVnJSONSimpleDataType, std::u16string_view) override { ++Events; }
  void EndArray() override { ++Events; }
  void EndMember() override { ++Events; }
  void EndObject() override { ++Events; }
  void EndDocument() override { ++Events; }
  void Warning(vn::IVnJSONLocator*, std::u16string_view) override {}
  void Error(vn::IVnJSONLocator*, std::u16string_view) override {}
  void FatalError(vn::IVnJSONLocator*, std::u16string_view) override {}
};

// Counts the loop's events and touches each span's length, nothing more.
struct CountingSink {
  int64_t Events = 0;
  void StartDocument() { ++Events; }
  void EndDocument() { ++Events; }
  void StartObject() { ++Events; }
  void EndObject() { ++Events; }
  void StartArray() { ++Events; }
  void EndArray() { ++Events; }
  void EndMember() { ++Events; }
  template <class U>
  void StartMember(std::basic_string_view<U> AName) {
    Events += 1 + (AName.size() == 0);
  }
  template <class U>
  void Value(vn::TVnJSONSimpleDataType, std::basic_string_view<U> AText) {
    Events += 1 + (AText.size() == 0);
  }
};

void Report(benchmark::State& state, const std::string& bytes, int64_t events) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes.size()));
  state.counters["events"] = benchmark::Counter(static_cast<double>(events), benchmark::Counter::kIsRate);
}

void BM_vnxml(benchmark::State& state, const char* file) {
  const std::string& bytes = Text(file);
  if (bytes.empty()) return state.SkipWithError("corpus file missing");
  vn::IPtr<CountingHandler> handler(new CountingHandler);
  vn::TVnJSONReader reader;
  reader.SetContentHandler(vn::IPtr<vn::IVnJSONContentHandler>(handler.Get()));
  reader.SetErrorHandler(vn::IPtr<vn::IVnJSONErrorHandler>(handler.Get()));
  for (auto _ : state) reader.ParseBuffer(bytes.data(), static_cast<vn::Cardinal>(bytes.size()), 65001, u"");
  Report(state, bytes, handler->Events);
}

void BM_vnxml_loop(benchmark::State& state, const char* file) {
  const std::string& bytes = Text(file);
  if (bytes.empty()) return state.SkipWithError("corpus file missing");
  vn::IPtr<CountingHandler> handler(new CountingHandler);
  CountingSink sink;
  vn::TVnJSONReader reader;
  reader.SetContentHandler(vn::IPtr<vn::IVnJSONContentHandler>(handler.Get()));
  reader.SetErrorHandler(vn::IPtr<vn::IVnJSONErrorHandler>(handler.Get()));
  reader.SetLoopOverride({[](vn::TVnJSONReader& r, void* s) {
                            vn::detail::RunJSONReadLoop(r, *static_cast<CountingSink*>(s));
                          },
                          &sink});
  for (auto _ : state) reader.ParseBuffer(bytes.data(), static_cast<vn::Cardinal>(bytes.size()), 65001, u"");
  Report(state, bytes, sink.Events);
}

#ifdef VNXML_HAVE_RAPIDJSON
void BM_rapidjson_reader(benchmark::State& state, const char* file) {
  const std::string& bytes = Text(file);
  if (bytes.empty()) return state.SkipWithError("corpus file missing");
  rapidjson::BaseReaderHandler<> handler;
  rapidjson::Reader reader;
  for (auto _ : state) {
    rapidjson::StringStream in(bytes.c_str());
    if (reader.Parse(in, handler).IsError()) return state.SkipWithError("rapidjson failed");
  }
  Report(state, bytes, 0);
}
#endif

#ifdef VNXML_HAVE_NLOHMANN
struct NlohmannCounter : nlohmann::json_sax<nlohmann::json> {
  int64_t Events = 0;
  bool null() override { return ++Events; }
  bool boolean(bool) override { return ++Events; }
  bool number_integer(number_integer_t) override { return ++Events; }
  bool number_unsigned(number_unsigned_t) override { return ++Events; }
  bool number_float(number_float_t, const string_t&) override { return ++Events; }
  bool string(string_t&) override { return ++Events; }
  bool binary(binary_t&) override { return ++Events; }
  bool start_object(std::size_t) override { return ++Events; }
  bool key(string_t&) override { return ++Events; }
  bool end_object() override { return ++Events; }
  bool start_array(std::size_t) override { return ++Events; }
  bool end_array() override { return ++Events; }
  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override { return false; }
};

void BM_nlohmann_sax(benchmark::State& state, const char* file) {
  const std::string& bytes = Text(file);
  if (bytes.empty()) return state.SkipWithError("corpus file missing");
  NlohmannCounter counter;
  for (auto _ : state)
    if (!nlohmann::json::sax_parse(bytes, &counter)) return state.SkipWithError("nlohmann failed");
  Report(state, bytes, counter.Events);
}
#endif

int RegisterAll() {
  for (const char* file : kFiles) {
    std::string name = std::string("/") + file;
    benchmark::RegisterBenchmark(("vnxml" + name).c_str(), BM_vnxml, file)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("vnxml_loop" + name).c_str(), BM_vnxml_loop, file)->Unit(benchmark::kMillisecond);
#ifdef VNXML_HAVE_RAPIDJSON
    benchmark::RegisterBenchmark(("rapidjson_reader" + name).c_str(), BM_rapidjson_reader, file)
        ->Unit(benchmark::kMillisecond);
#endif
#ifdef VNXML_HAVE_NLOHMANN
    benchmark::RegisterBenchmark(("nlohmann_sax" + name).c_str(), BM_nlohmann_sax, file)
        ->Unit(benchmark::kMillisecond);
#endif
  }
  return 0;
}
const int kRegistered = RegisterAll();

}  // namespace
