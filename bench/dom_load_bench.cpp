// Loading XML files into a tree and saving them again, side by side with the peers, on every
// XML file of the perf corpus. Peak memory of a loaded tree is measured per library in a forked
// child of its own (peak RSS over the child's baseline), reported as a multiple of the input.
// vnxml loads as it does by default (the root's content stays records until read); vnxml_eager
// makes every node during the load, as a program that reads the whole tree may choose.
#include <fcntl.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "bench_data.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

#ifdef VNXML_HAVE_PUGIXML
#include <pugixml.hpp>
#endif
#ifdef VNXML_HAVE_LIBXML2
#include <libxml/parser.h>
#include <libxml/xmlsave.h>
#endif
#ifdef VNXML_HAVE_TINYXML2
#include <tinyxml2.h>
#endif

namespace {

using namespace vn;

// ---- one loader per library; each returns an opaque owner that frees the tree ----

using Holder = std::shared_ptr<void>;

Holder LoadVnAs(const std::string& ABytes, bool ADefer) {
  auto doc = std::make_shared<TVnDOMDocument>();
  doc->SetDeferChildren(ADefer);
  TVnMemoryStream in(ABytes.data(), static_cast<Int64>(ABytes.size()));
  doc->LoadFromStream(in);
  return doc;
}

// Deferred (the default): the root's content stays records until read. Eager: every node made
// during the load, the cost a program pays that reads the whole tree.
Holder LoadVn(const std::string& ABytes) { return LoadVnAs(ABytes, true); }
Holder LoadVnEager(const std::string& ABytes) { return LoadVnAs(ABytes, false); }

size_t SaveVn(void* ADoc) {
  TVnStringStream out(cVnCodePageUTF8);
  static_cast<TVnDOMDocument*>(ADoc)->SaveToStream(out, cVnCodePageUTF8, false, false);
  return out.GetBytesView().size();
}

#ifdef VNXML_HAVE_PUGIXML
Holder LoadPugi(const std::string& ABytes) {
  auto doc = std::make_shared<pugi::xml_document>();
  doc->load_buffer(ABytes.data(), ABytes.size());
  return doc;
}
struct PugiSink : pugi::xml_writer {
  size_t Size = 0;
  std::string Text;
  void write(const void* data, size_t size) override { Text.append(static_cast<const char*>(data), size); }
};
size_t SavePugi(void* ADoc) {
  PugiSink sink;
  static_cast<pugi::xml_document*>(ADoc)->save(sink, "", pugi::format_raw);
  return sink.Text.size();
}
#endif

#ifdef VNXML_HAVE_LIBXML2
Holder LoadLibxml(const std::string& ABytes) {
  xmlDocPtr doc = xmlReadMemory(ABytes.data(), static_cast<int>(ABytes.size()), nullptr, nullptr, XML_PARSE_HUGE);
  return Holder(doc, [](void* p) { xmlFreeDoc(static_cast<xmlDocPtr>(p)); });
}
size_t SaveLibxml(void* ADoc) {
  xmlChar* mem = nullptr;
  int size = 0;
  xmlDocDumpMemory(static_cast<xmlDocPtr>(ADoc), &mem, &size);
  xmlFree(mem);
  return static_cast<size_t>(size);
}
#endif

#ifdef VNXML_HAVE_TINYXML2
Holder LoadTiny(const std::string& ABytes) {
  auto doc = std::make_shared<tinyxml2::XMLDocument>();
  doc->Parse(ABytes.data(), ABytes.size());
  return doc;
}
size_t SaveTiny(void* ADoc) {
  tinyxml2::XMLPrinter printer(nullptr, true);
  static_cast<tinyxml2::XMLDocument*>(ADoc)->Print(&printer);
  return std::strlen(printer.CStr());
}
#endif

struct Library {
  const char* Name;
  std::function<Holder(const std::string&)> Load;
  std::function<size_t(void*)> Save;
};

std::vector<Library> Libraries() {
  std::vector<Library> libs{{"vnxml", LoadVn, SaveVn}, {"vnxml_eager", LoadVnEager, SaveVn}};
#ifdef VNXML_HAVE_PUGIXML
  libs.push_back({"pugixml", LoadPugi, SavePugi});
#endif
#ifdef VNXML_HAVE_LIBXML2
  libs.push_back({"libxml2", LoadLibxml, SaveLibxml});
#endif
#ifdef VNXML_HAVE_TINYXML2
  libs.push_back({"tinyxml2", LoadTiny, SaveTiny});
#endif
  return libs;
}

std::vector<std::string> XmlFiles() {
  std::vector<std::string> names;
  if (DIR* dir = opendir(VNXML_CORPORA_DIR "/perf")) {
    while (dirent* e = readdir(dir)) {
      std::string n = e->d_name;
      // every XML file, whatever its suffix (.xml, .gir, ...): all but the JSON files and notes
      size_t dot = n.rfind('.');
      std::string ext = dot == std::string::npos ? "" : n.substr(dot);
      if (n[0] != '.' && ext != ".json" && ext != ".md") names.push_back(n);
    }
    closedir(dir);
  }
  return names;
}

long StatusKiB(const char* AField) {
  FILE* f = std::fopen("/proc/self/status", "r");
  if (!f) return 0;
  char line[256];
  long value = 0;
  size_t len = std::strlen(AField);
  while (std::fgets(line, sizeof line, f))
    if (std::strncmp(line, AField, len) == 0) value = std::atol(line + len);
  std::fclose(f);
  return value;
}

// Peak memory runs in a fresh process of its own: this program started again with
// VNXML_PEAK=LIBRARY:FILE runs only a measuring step, which prints "peak <bytes>" and exits.
const Library* FindLibrary(const std::string& AName) {
  static const std::vector<Library> libs = Libraries();
  for (const Library& lib : libs)
    if (AName == lib.Name) return &lib;
  return nullptr;
}

void MeasurePeak(benchmark::State& state, std::string AArg) {
  for (auto _ : state) {
  }
  size_t colon = AArg.find(':');
  const Library* lib = FindLibrary(AArg.substr(0, colon));
  // read at its size: a string grown while reading would leave a high-water mark of its own
  std::ifstream in(std::string(VNXML_CORPORA_DIR) + "/perf/" + AArg.substr(colon + 1), std::ios::binary | std::ios::ate);
  std::string bytes(static_cast<size_t>(in.tellg()), '\0');
  in.seekg(0);
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  long base = StatusKiB("VmHWM:");
  Holder doc = lib ? lib->Load(bytes) : nullptr;
  long peak = StatusKiB("VmHWM:");
  std::printf("\npeak %ld\n", (peak - base) * 1024);
  std::fflush(stdout);
  _exit(0);
}

double PeakBytes(const Library& ALib, const std::string& AFile) {
  // The shell of popen has its own /proc/self/exe: name this program's path.
  char self[4096];
  ssize_t len = readlink("/proc/self/exe", self, sizeof self - 1);
  if (len <= 0) return 0;
  self[len] = 0;
  std::string cmd = "VNXML_PEAK=" + std::string(ALib.Name) + ":" + AFile + " '" + self + "' 2>/dev/null";
  FILE* p = popen(cmd.c_str(), "r");
  if (!p) return 0;
  double bytes = 0;
  char line[512];
  while (std::fgets(line, sizeof line, p))
    if (std::strncmp(line, "peak ", 5) == 0) bytes = std::atof(line + 5);
  pclose(p);
  return bytes;
}

void Load(benchmark::State& state, Library ALib, std::string AFile) {
  const std::string& bytes = vnbench::PerfFile(AFile);
  for (auto _ : state) {
    Holder doc = ALib.Load(bytes);
    benchmark::DoNotOptimize(doc.get());
    state.PauseTiming();
    doc.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(static_cast<int64_t>(bytes.size()) * state.iterations());
  state.counters["peak_x_input"] = PeakBytes(ALib, AFile) / static_cast<double>(bytes.size());
}

// A whole cycle: load, then free the tree, as a program that reads many documents pays it.
void LoadAndFree(benchmark::State& state, Library ALib, std::string AFile) {
  const std::string& bytes = vnbench::PerfFile(AFile);
  for (auto _ : state) {
    Holder doc = ALib.Load(bytes);
    benchmark::DoNotOptimize(doc.get());
    doc.reset();
  }
  state.SetBytesProcessed(static_cast<int64_t>(bytes.size()) * state.iterations());
}

void Save(benchmark::State& state, Library ALib, std::string AFile) {
  const std::string& bytes = vnbench::PerfFile(AFile);
  Holder doc = ALib.Load(bytes);
  size_t written = 0;
  for (auto _ : state) {
    written = ALib.Save(doc.get());
    benchmark::DoNotOptimize(written);
  }
  state.SetBytesProcessed(static_cast<int64_t>(written) * state.iterations());
}

const bool kRegistered = [] {
  if (const char* peak = std::getenv("VNXML_PEAK")) {
    benchmark::RegisterBenchmark("Peak", MeasurePeak, std::string(peak))->Iterations(1);
    return true;
  }
  for (const std::string& file : XmlFiles())
    for (const Library& lib : Libraries()) {
      benchmark::RegisterBenchmark(("DomLoad/" + file + "/" + lib.Name).c_str(), Load, lib, file)
          ->Unit(benchmark::kMillisecond)
          ->UseRealTime();
      benchmark::RegisterBenchmark(("DomLoadFree/" + file + "/" + lib.Name).c_str(), LoadAndFree, lib, file)
          ->Unit(benchmark::kMillisecond)
          ->UseRealTime();
      benchmark::RegisterBenchmark(("DomSave/" + file + "/" + lib.Name).c_str(), Save, lib, file)
          ->Unit(benchmark::kMillisecond)
          ->UseRealTime();
    }
  return true;
}();

}  // namespace
