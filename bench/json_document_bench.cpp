// json_document_bench: the JSON tree on the JSON files of corpora/perf, beside RapidJSON,
// nlohmann-json and simdjson (when installed), one file at a time so that the runs interleave:
//   load/...            text in memory to a tree, the tree freed again (RapidJSON
//                       Document::Parse, nlohmann::json::parse, simdjson's DOM parser)
//   load_walk/...       the same, then every node visited once (vnxml makes the nodes of its
//                       loaded containers on first access: this is the load with all of them)
//   save_compact/...    the tree to compact UTF-8 (RapidJSON Writer, nlohmann dump())
//   save_formatted/...  the tree to formatted UTF-8 (RapidJSON PrettyWriter, nlohmann dump(2))
//   memory/...          peak resident memory of a process that holds the loaded tree, less that
//                       of a process that holds only the text, as a multiple of the text's size;
//                       each library in a process of its own (this program, run again);
//                       vnxml-open holds the tree with every container opened.
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "bench_data.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_document.h"

#ifdef VNXML_HAVE_RAPIDJSON
#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#endif
#ifdef VNXML_HAVE_NLOHMANN
#include <nlohmann/json.hpp>
#endif
#ifdef VNXML_HAVE_SIMDJSON
#include <simdjson.h>
#endif

extern char** environ;

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

void Bytes(benchmark::State& state, const std::string& text) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
}

void LoadInto(vn::TVnJSONDocument& doc, const std::string& text) {
  vn::TVnMemoryStream in(text.data(), static_cast<vn::Int64>(text.size()));
  doc.LoadFromStream(in, vn::cVnCodePageUTF8, false);
}

// ---- vnxml ----

void BM_vnxml_load(benchmark::State& state, const char* file) {
  const std::string& text = Text(file);
  if (text.empty()) return state.SkipWithError("corpus file missing");
  for (auto _ : state) {
    vn::TVnJSONDocument doc;
    LoadInto(doc, text);
    benchmark::DoNotOptimize(doc.GetRootValue());
  }
  Bytes(state, text);
}

void BM_vnxml_save(benchmark::State& state, const char* file, bool formatted) {
  const std::string& text = Text(file);
  if (text.empty()) return state.SkipWithError("corpus file missing");
  vn::TVnJSONDocument doc;
  LoadInto(doc, text);
  vn::TVnMemoryStream out;
  for (auto _ : state) {
    out.SetSize(0);
    doc.SaveToStream(out, formatted, vn::cVnCodePageUTF8, false);
    benchmark::DoNotOptimize(out.GetMemory());
  }
  Bytes(state, text);
  state.counters["out"] = static_cast<double>(out.GetSize());
}

// Visits every node, counting them, as a caller walking the whole tree does.
size_t WalkAll(vn::TVnJSONBase* ARoot) {
  size_t count = 0;
  std::vector<vn::TVnJSONBase*> work{ARoot};
  while (!work.empty()) {
    vn::TVnJSONBase* n = work.back();
    work.pop_back();
    ++count;
    for (vn::Integer i = 0, k = n->ChildCount(); i < k; ++i) work.push_back(n->Child(i));
  }
  return count;
}

void BM_vnxml_load_walk(benchmark::State& state, const char* file) {
  const std::string& text = Text(file);
  if (text.empty()) return state.SkipWithError("corpus file missing");
  for (auto _ : state) {
    vn::TVnJSONDocument doc;
    LoadInto(doc, text);
    benchmark::DoNotOptimize(WalkAll(&doc));
  }
  Bytes(state, text);
}

// ---- peers ----

#ifdef VNXML_HAVE_RAPIDJSON
void BM_rapidjson_load(benchmark::State& state, const char* file) {
  const std::string& text = Text(file);
  for (auto _ : state) {
    rapidjson::Document doc;
    doc.Parse(text.c_str(), text.size());
    if (doc.HasParseError()) return state.SkipWithError("rapidjson failed");
    benchmark::DoNotOptimize(&doc);
  }
  Bytes(state, text);
}

size_t WalkAll(const rapidjson::Value& ARoot) {
  size_t count = 0;
  std::vector<const rapidjson::Value*> work{&ARoot};
  while (!work.empty()) {
    const rapidjson::Value* v = work.back();
    work.pop_back();
    ++count;
    if (v->IsObject())
      for (auto& m : v->GetObject()) work.push_back(&m.value);
    else if (v->IsArray())
      for (auto& e : v->GetArray()) work.push_back(&e);
  }
  return count;
}

void BM_rapidjson_load_walk(benchmark::State& state, const char* file) {
  const std::string& text = Text(file);
  for (auto _ : state) {
    rapidjson::Document doc;
    doc.Parse(text.c_str(), text.size());
    benchmark::DoNotOptimize(WalkAll(doc));
  }
  Bytes(state, text);
}

template <class Writer>
void BM_rapidjson_save(benchmark::State& state, const char* file) {
  const std::string& text = Text(file);
  rapidjson::Document doc;
  doc.Parse(text.c_str(), text.size());
  size_t size = 0;
  for (auto _ : state) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    doc.Accept(writer);
    size = buffer.GetSize();
    benchmark::DoNotOptimize(buffer.GetString());
  }
  Bytes(state, text);
  state.counters["out"] = static_cast<double>(size);
}
#endif

#ifdef VNXML_HAVE_NLOHMANN
void BM_nlohmann_load(benchmark::State& state, const char* file) {
  const std::string& text = Text(file);
  for (auto _ : state) {
    nlohmann::json doc = nlohmann::json::parse(text);
    benchmark::DoNotOptimize(&doc);
  }
  Bytes(state, text);
}

void BM_nlohmann_save(benchmark::State& state, const char* file, int indent) {
  const std::string& text = Text(file);
  nlohmann::json doc = nlohmann::json::parse(text);
  size_t size = 0;
  for (auto _ : state) {
    std::string out = doc.dump(indent);
    size = out.size();
    benchmark::DoNotOptimize(out.data());
  }
  Bytes(state, text);
  state.counters["out"] = static_cast<double>(size);
}
#endif

#ifdef VNXML_HAVE_SIMDJSON
void BM_simdjson_load(benchmark::State& state, const char* file) {
  const std::string& text = Text(file);
  simdjson::padded_string padded(text);
  for (auto _ : state) {
    simdjson::dom::parser parser;  // a new parser each time: its tape is the tree
    simdjson::dom::element root;
    if (parser.parse(padded).get(root)) return state.SkipWithError("simdjson failed");
    benchmark::DoNotOptimize(root);
  }
  Bytes(state, text);
}
#endif

// ---- peak memory, one process per library ----

constexpr const char* kProbeVariable = "VNXML_JSON_MEMORY_PROBE";

// The high-water mark of this image's resident memory (VmHWM): unlike getrusage's maximum it
// starts afresh at exec, where a spawned child would otherwise inherit its parent's.
long PeakKiB() {
  long kib = -1;
  if (FILE* status = std::fopen("/proc/self/status", "r")) {
    char line[256];
    while (std::fgets(line, sizeof line, status))
      if (std::strncmp(line, "VmHWM:", 6) == 0) kib = std::atol(line + 6);
    std::fclose(status);
  }
  return kib;
}

// In the child: load the file with the named library, hold the tree, print the peak and leave.
[[noreturn]] void Probe(const std::string& spec) {
  const size_t colon = spec.find(':');
  const std::string lib = spec.substr(0, colon);
  // Read in one block of the file's size, so that the baseline holds the text and no more.
  std::string text;
  if (FILE* in = std::fopen((std::string(VNXML_CORPORA_DIR) + "/perf/" + spec.substr(colon + 1)).c_str(), "rb")) {
    std::fseek(in, 0, SEEK_END);
    text.resize(static_cast<size_t>(std::ftell(in)));
    std::fseek(in, 0, SEEK_SET);
    if (std::fread(text.data(), 1, text.size(), in) != text.size()) std::_Exit(4);
    std::fclose(in);
  }
  while (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ') text.pop_back();
  if (lib == "vnxml" || lib == "vnxml-open") {
    auto* doc = new vn::TVnJSONDocument;
    LoadInto(*doc, text);
    if (lib == "vnxml-open") WalkAll(doc);
#ifdef VNXML_HAVE_RAPIDJSON
  } else if (lib == "rapidjson") {
    auto* doc = new rapidjson::Document;
    doc->Parse(text.c_str(), text.size());
#endif
#ifdef VNXML_HAVE_NLOHMANN
  } else if (lib == "nlohmann") {
    auto* doc = new nlohmann::json(nlohmann::json::parse(text));
    (void)doc;
#endif
#ifdef VNXML_HAVE_SIMDJSON
  } else if (lib == "simdjson") {
    auto* padded = new simdjson::padded_string(text);
    auto* parser = new simdjson::dom::parser;
    simdjson::dom::element root;
    if (parser->parse(*padded).get(root)) std::_Exit(3);
#endif
  }
  std::printf("%ld\n", PeakKiB());
  std::fflush(stdout);
  std::_Exit(0);
}

const int kProbeHook = [] {
  if (const char* spec = std::getenv(kProbeVariable)) Probe(spec);
  return 0;
}();

// Runs this program again as a probe and returns its peak resident size in KiB, or -1.
long RunProbe(const std::string& spec) {
  int pipeFds[2];
  if (pipe(pipeFds) != 0) return -1;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 1);
  posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
  std::string variable = std::string(kProbeVariable) + "=" + spec;
  char* envp[] = {variable.data(), nullptr};
  char self[] = "/proc/self/exe";
  char* argv[] = {self, nullptr};
  pid_t pid = 0;
  const int spawned = posix_spawn(&pid, self, &actions, nullptr, argv, envp);
  posix_spawn_file_actions_destroy(&actions);
  close(pipeFds[1]);
  char buffer[64] = {};
  const ssize_t n = spawned == 0 ? read(pipeFds[0], buffer, sizeof buffer - 1) : -1;
  close(pipeFds[0]);
  int status = 0;
  if (spawned == 0) waitpid(pid, &status, 0);
  return n > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0 ? std::atol(buffer) : -1;
}

void BM_memory(benchmark::State& state, const char* lib, const char* file) {
  const std::string& text = Text(file);
  long tree = 0, base = 0;
  for (auto _ : state) {
    tree = RunProbe(std::string(lib) + ":" + file);
    base = RunProbe(std::string("none:") + file);
  }
  if (tree < 0 || base < 0) return state.SkipWithError("probe failed");
  state.counters["peak_MiB"] = static_cast<double>(tree - base) / 1024.0;
  state.counters["x_input"] = static_cast<double>(tree - base) * 1024.0 / static_cast<double>(text.size());
}

int RegisterAll() {
  if (std::getenv(kProbeVariable)) return 0;
  auto add = [](const std::string& name, auto&& fn, auto... args) {
    benchmark::RegisterBenchmark(name.c_str(), fn, args...)->Unit(benchmark::kMillisecond);
  };
  for (const char* file : kFiles) {
    const std::string f = std::string("/") + file;
    add("load/vnxml" + f, BM_vnxml_load, file);
#ifdef VNXML_HAVE_RAPIDJSON
    add("load/rapidjson" + f, BM_rapidjson_load, file);
#endif
#ifdef VNXML_HAVE_NLOHMANN
    add("load/nlohmann" + f, BM_nlohmann_load, file);
#endif
#ifdef VNXML_HAVE_SIMDJSON
    add("load/simdjson" + f, BM_simdjson_load, file);
#endif
    add("load_walk/vnxml" + f, BM_vnxml_load_walk, file);
#ifdef VNXML_HAVE_RAPIDJSON
    add("load_walk/rapidjson" + f, BM_rapidjson_load_walk, file);
#endif
    add("save_compact/vnxml" + f, BM_vnxml_save, file, false);
    add("save_formatted/vnxml" + f, BM_vnxml_save, file, true);
#ifdef VNXML_HAVE_RAPIDJSON
    add("save_compact/rapidjson" + f, BM_rapidjson_save<rapidjson::Writer<rapidjson::StringBuffer>>, file);
    add("save_formatted/rapidjson" + f, BM_rapidjson_save<rapidjson::PrettyWriter<rapidjson::StringBuffer>>, file);
#endif
#ifdef VNXML_HAVE_NLOHMANN
    add("save_compact/nlohmann" + f, BM_nlohmann_save, file, -1);
    add("save_formatted/nlohmann" + f, BM_nlohmann_save, file, 2);
#endif
  }
  for (const char* file : kFiles)
    for (const char* lib : {"vnxml", "vnxml-open", "rapidjson", "nlohmann", "simdjson"}) {
      benchmark::RegisterBenchmark((std::string("memory/") + lib + "/" + file).c_str(), BM_memory, lib, file)
          ->Iterations(1)
          ->Unit(benchmark::kMillisecond);
    }
  return 0;
}
const int kRegistered = RegisterAll();

}  // namespace
