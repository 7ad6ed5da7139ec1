// Reading a loaded tree: every element's name, every attribute value and every text value, on
// every XML file of the perf corpus. The tree hands out decoded UTF-16 strings, so the cost of
// decoding on demand shows here. pugixml does the same walk twice: its char* values converted
// to UTF-16 (the like-for-like cost) and raw (the floor of any walk). Counter "chars" is what
// was read, which should agree between the runs of one file (pugixml's raw run counts bytes).
// A document load leaves the root's content to its first reader: DomWalk walks a tree walked
// once before (what every later reader meets), DomLoadWalk loads and walks once (what a reader
// that reads everything once pays), beside pugixml doing the same. vnxml_eager loads whole
// trees, whose nodes lie in document order.
#include <benchmark/benchmark.h>

#include <dirent.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "bench_data.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"

#ifdef VNXML_HAVE_PUGIXML
#include <pugixml.hpp>
#endif

namespace {

using namespace vn;

std::vector<std::string> XmlFiles() {
  std::vector<std::string> names;
  if (DIR* dir = opendir(VNXML_CORPORA_DIR "/perf")) {
    while (dirent* e = readdir(dir)) {
      std::string n = e->d_name;
      size_t dot = n.rfind('.');
      std::string ext = dot == std::string::npos ? "" : n.substr(dot);
      if (n[0] != '.' && ext != ".json" && ext != ".md") names.push_back(n);
    }
    closedir(dir);
  }
  return names;
}

size_t WalkVn(TVnDOMDocument& ADoc) {
  size_t chars = 0;
  std::vector<TVnDOMNode*> stack{&ADoc};
  while (!stack.empty()) {
    TVnDOMNode* n = stack.back();
    stack.pop_back();
    switch (n->GetNodeType()) {
      case ntElement:
        chars += n->GetQualifiedName().size();
        break;
      case ntAttribute:
      case ntText:
      case ntCDATA:
        chars += n->GetNodeValue().size();
        break;
      default:
        break;
    }
    const auto& kids = n->ChildrenView();
    for (uint32_t i = kids.size(); i-- > 0;) stack.push_back(kids[i]);
  }
  return chars;
}

// AWide loads the file from UTF-16 text, so that the tree keeps its values in UTF-16: the
// walk then reads them as a tree did before values loaded from UTF-8 stayed UTF-8.
void BM_Walk_vnxml(benchmark::State& state, std::string AFile, bool AWide, bool ADefer) {
  TVnDOMDocument doc;
  doc.SetDeferChildren(ADefer);
  if (AWide)
    doc.LoadFromXML(Utf8ToUnicode(vnbench::PerfFile(AFile)));
  else
    doc.LoadFromAnsiXML(vnbench::PerfFile(AFile));
  size_t chars = WalkVn(doc);
  for (auto _ : state) {
    chars = WalkVn(doc);
    benchmark::DoNotOptimize(chars);
  }
  state.counters["chars"] = static_cast<double>(chars);
}

void BM_LoadWalk_vnxml(benchmark::State& state, std::string AFile, bool ADefer) {
  const std::string& bytes = vnbench::PerfFile(AFile);
  size_t chars = 0;
  for (auto _ : state) {
    TVnDOMDocument doc;
    doc.SetDeferChildren(ADefer);
    doc.LoadFromAnsiXML(bytes);
    chars = WalkVn(doc);
    benchmark::DoNotOptimize(chars);
  }
  state.counters["chars"] = static_cast<double>(chars);
}

#ifdef VNXML_HAVE_PUGIXML
template <bool kWiden>
size_t Take(const char* AText) {
  if constexpr (kWiden) {
    return Utf8ToUnicode(AText).size();
  } else {
    return std::strlen(AText);
  }
}

template <bool kWiden>
size_t WalkPugi(const pugi::xml_document& ADoc) {
  size_t chars = 0;
  std::vector<pugi::xml_node> stack{ADoc};
  while (!stack.empty()) {
    pugi::xml_node n = stack.back();
    stack.pop_back();
    switch (n.type()) {
      case pugi::node_element:
        chars += Take<kWiden>(n.name());
        for (pugi::xml_attribute a : n.attributes()) chars += Take<kWiden>(a.value());
        break;
      case pugi::node_pcdata:
      case pugi::node_cdata:
        chars += Take<kWiden>(n.value());
        break;
      default:
        break;
    }
    size_t mark = stack.size();
    for (pugi::xml_node c : n.children()) stack.push_back(c);
    std::reverse(stack.begin() + static_cast<std::ptrdiff_t>(mark), stack.end());
  }
  return chars;
}

template <bool kWiden>
void BM_Walk_pugixml(benchmark::State& state, std::string AFile) {
  const std::string& bytes = vnbench::PerfFile(AFile);
  pugi::xml_document doc;
  doc.load_buffer(bytes.data(), bytes.size());
  size_t chars = 0;
  for (auto _ : state) {
    chars = WalkPugi<kWiden>(doc);
    benchmark::DoNotOptimize(chars);
  }
  state.counters["chars"] = static_cast<double>(chars);
}

void BM_LoadWalk_pugixml(benchmark::State& state, std::string AFile) {
  const std::string& bytes = vnbench::PerfFile(AFile);
  size_t chars = 0;
  for (auto _ : state) {
    pugi::xml_document doc;
    doc.load_buffer(bytes.data(), bytes.size());
    chars = WalkPugi<true>(doc);
    benchmark::DoNotOptimize(chars);
  }
  state.counters["chars"] = static_cast<double>(chars);
}
#endif

const bool kRegistered = [] {
  for (const std::string& file : XmlFiles()) {
    benchmark::RegisterBenchmark(("DomWalk/" + file + "/vnxml").c_str(), BM_Walk_vnxml, file, false, true)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("DomWalk/" + file + "/vnxml_eager").c_str(), BM_Walk_vnxml, file, false, false)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("DomWalk/" + file + "/vnxml_utf16_stored").c_str(), BM_Walk_vnxml, file, true,
                                 true)
        ->Unit(benchmark::kMillisecond);
#ifdef VNXML_HAVE_PUGIXML
    benchmark::RegisterBenchmark(("DomWalk/" + file + "/pugixml_utf16").c_str(), BM_Walk_pugixml<true>, file)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("DomWalk/" + file + "/pugixml_raw").c_str(), BM_Walk_pugixml<false>, file)
        ->Unit(benchmark::kMillisecond);
#endif
  }
  for (const std::string& file : XmlFiles()) {
    benchmark::RegisterBenchmark(("DomLoadWalk/" + file + "/vnxml").c_str(), BM_LoadWalk_vnxml, file, true)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("DomLoadWalk/" + file + "/vnxml_eager").c_str(), BM_LoadWalk_vnxml, file, false)
        ->Unit(benchmark::kMillisecond);
#ifdef VNXML_HAVE_PUGIXML
    benchmark::RegisterBenchmark(("DomLoadWalk/" + file + "/pugixml_utf16").c_str(), BM_LoadWalk_pugixml, file)
        ->Unit(benchmark::kMillisecond);
#endif
  }
  return true;
}();

}  // namespace
