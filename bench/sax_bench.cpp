// sax_bench: event reading of the XML files of corpora/perf from memory, vnxml beside expat and
// libxml2's SAX2 (when installed), one file at a time so that the three runs interleave.
// Each handler only counts its events; "events" is reported per second.
#include <benchmark/benchmark.h>

#include <string>

#include "bench_data.h"
#include "vnxml/sax.h"

#ifdef VNXML_HAVE_EXPAT
#include <expat.h>
#endif
#ifdef VNXML_HAVE_LIBXML2
#include <libxml/parser.h>
#endif

namespace {

const char* const kFiles[] = {"vk.xml", "GLib-2.0.gir", "synthetic-catalog-20mb.xml"};

class CountingHandler : public vn::TVnObject, public vn::IVnSAXContentHandler, public vn::IVnSAXErrorHandler {
  VN_VNOBJECT_INTERFACES(vn::TVnObject, vn::IVnSAXContentHandler, vn::IVnSAXErrorHandler)
 public:
  int64_t Events = 0;
  void SetDocumentLocator(vn::IVnSAXLocator*) override {}
  void Characters(std::u16string_view) override { ++Events; }
  void EndDocument() override { ++Events; }
  void EndElement(std::u16string_view, std::u16string_view, std::u16string_view) override { ++Events; }
  void EndPrefixMapping(std::u16string_view) override { ++Events; }
  void IgnorableWhitespace(std::u16string_view) override { ++Events; }
  void ProcessingInstruction(std::u16string_view, std::u16string_view) override { ++Events; }
  void SkippedEntity(std::u16string_view) override {}
  void StartDocument() override { ++Events; }
  void StartElement(std::u16string_view, std::u16string_view, std::u16string_view, vn::IVnSAXAttributes*) override {
    ++Events;
  }
  void StartPrefixMapping(std::u16string_view, std::u16string_view) override { ++Events; }
  void Warning(vn::IVnSAXLocator*, std::u16string_view) override {}
  void Error(vn::IVnSAXLocator*, std::u16string_view) override {}
  void FatalError(vn::IVnSAXLocator*, std::u16string_view) override {}
};

void Report(benchmark::State& state, const std::string& bytes, int64_t events) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes.size()));
  state.counters["events"] = benchmark::Counter(static_cast<double>(events), benchmark::Counter::kIsRate);
}

void BM_vnxml(benchmark::State& state, const char* file) {
  const std::string& bytes = vnbench::PerfFile(file);
  if (bytes.empty()) return state.SkipWithError("corpus file missing");
  vn::IPtr<CountingHandler> handler(new CountingHandler);
  vn::TVnSAXXMLReader reader;
  reader.SetContentHandler(vn::IPtr<vn::IVnSAXContentHandler>(handler.Get()));
  reader.SetErrorHandler(vn::IPtr<vn::IVnSAXErrorHandler>(handler.Get()));
  for (auto _ : state) reader.ParseBuffer(bytes.data(), static_cast<vn::Int64>(bytes.size()), 0, u"");
  Report(state, bytes, handler->Events);
}

#ifdef VNXML_HAVE_EXPAT
void BM_expat(benchmark::State& state, const char* file) {
  const std::string& bytes = vnbench::PerfFile(file);
  if (bytes.empty()) return state.SkipWithError("corpus file missing");
  int64_t events = 0;
  XML_Parser parser = XML_ParserCreate(nullptr);
  for (auto _ : state) {
    XML_ParserReset(parser, nullptr);
    XML_SetUserData(parser, &events);
    XML_SetElementHandler(
        parser, [](void* d, const XML_Char*, const XML_Char**) { ++*static_cast<int64_t*>(d); },
        [](void* d, const XML_Char*) { ++*static_cast<int64_t*>(d); });
    XML_SetCharacterDataHandler(parser, [](void* d, const XML_Char*, int) { ++*static_cast<int64_t*>(d); });
    if (XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), 1) != XML_STATUS_OK)
      return state.SkipWithError("expat failed");
  }
  XML_ParserFree(parser);
  Report(state, bytes, events);
}
#endif

#ifdef VNXML_HAVE_LIBXML2
void BM_libxml2_sax2(benchmark::State& state, const char* file) {
  const std::string& bytes = vnbench::PerfFile(file);
  if (bytes.empty()) return state.SkipWithError("corpus file missing");
  int64_t events = 0;
  xmlSAXHandler sax{};
  sax.initialized = XML_SAX2_MAGIC;
  sax.startElementNs = [](void* d, const xmlChar*, const xmlChar*, const xmlChar*, int, const xmlChar**, int, int,
                          const xmlChar**) { ++*static_cast<int64_t*>(d); };
  sax.endElementNs = [](void* d, const xmlChar*, const xmlChar*, const xmlChar*) { ++*static_cast<int64_t*>(d); };
  sax.characters = [](void* d, const xmlChar*, int) { ++*static_cast<int64_t*>(d); };
  for (auto _ : state) {
    if (xmlSAXUserParseMemory(&sax, &events, bytes.data(), static_cast<int>(bytes.size())) != 0)
      return state.SkipWithError("libxml2 failed");
  }
  Report(state, bytes, events);
}
#endif

int RegisterAll() {
  for (const char* file : kFiles) {
    std::string name = std::string("/") + file;
    benchmark::RegisterBenchmark(("vnxml" + name).c_str(), BM_vnxml, file)->Unit(benchmark::kMillisecond);
#ifdef VNXML_HAVE_EXPAT
    benchmark::RegisterBenchmark(("expat" + name).c_str(), BM_expat, file)->Unit(benchmark::kMillisecond);
#endif
#ifdef VNXML_HAVE_LIBXML2
    benchmark::RegisterBenchmark(("libxml2_sax2" + name).c_str(), BM_libxml2_sax2, file)
        ->Unit(benchmark::kMillisecond);
#endif
  }
  return 0;
}
const int kRegistered = RegisterAll();

}  // namespace
