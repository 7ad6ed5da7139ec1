// bridge_bench: the bridges on the files of corpora/perf, each beside the plain road of the
// same library, one file at a time so that the runs interleave:
//   JsonLoad/...        JSON text to the JSON tree, freed again (the plain JSON load)
//   JsonToDom/...       the same text through the bridge into the XML tree, freed again
//   XmlLoad/...         XML text to the XML tree, freed again (the plain XML load, which leaves
//                       the root's content as records until read)
//   XmlLoadWhole/...    the same with every node made during the load
//   XmlToJson/...       the plain load, then the document written as compact JSON (from the
//                       load's records, which no node is made of)
//   XmlToJsonWhole/...  the whole load, then the tree written as compact JSON from its nodes
//   XmlSave/...         a tree loaded whole written as compact XML
//   JsonWrite/...       the same tree written as compact JSON from its nodes
// The bridge's overhead is the ratio of each pair: JsonToDom/JsonLoad, XmlToJson/XmlLoad (and
// against XmlLoadWhole) and JsonWrite/XmlSave.
#include <benchmark/benchmark.h>

#include <string>

#include "bench_data.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"
#include "vnxml/dom_json_writer.h"
#include "vnxml/json_document.h"

namespace {

const char* const kJsonFiles[] = {"canada.json", "citm_catalog.json", "twitter.json"};
const char* const kXmlFiles[] = {"GLib-2.0.gir", "synthetic-catalog-20mb.xml", "vk.xml"};

// The JSON reader takes nothing after a top-level object, so the text goes without its trailing
// white space on both roads.
std::string Trimmed(const char* file) {
  std::string bytes = vnbench::PerfFile(file);
  while (!bytes.empty() && static_cast<unsigned char>(bytes.back()) <= ' ') bytes.pop_back();
  return bytes;
}

void Bytes(benchmark::State& state, const std::string& text) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
}

void LoadDom(vn::TVnDOMDocument& doc, const std::string& text, bool whole = false) {
  doc.SetDeferChildren(!whole);
  vn::TVnMemoryStream in(text.data(), static_cast<vn::Int64>(text.size()));
  doc.LoadFromStream(in);
}

void BM_JsonLoad(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    vn::TVnJSONDocument doc;
    vn::TVnMemoryStream in(text.data(), static_cast<vn::Int64>(text.size()));
    doc.LoadFromStream(in, vn::cVnCodePageUTF8, false);
    benchmark::DoNotOptimize(doc.GetRootValue());
  }
  Bytes(state, text);
}

void BM_JsonToDom(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    vn::TVnDOMDocument doc;
    LoadDom(doc, text);
    benchmark::DoNotOptimize(doc.GetRootNode());
  }
  Bytes(state, text);
}

template <bool Whole>
void BM_XmlLoad(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    vn::TVnDOMDocument doc;
    LoadDom(doc, text, Whole);
    benchmark::DoNotOptimize(doc.GetRootNode());
  }
  Bytes(state, text);
}

template <bool Whole>
void BM_XmlToJson(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    vn::TVnDOMDocument doc;
    LoadDom(doc, text, Whole);
    vn::TVnStringStream out(vn::cVnCodePageUTF8);
    vn::SaveToJSONStream(*doc.GetRootNode(), out, vn::cVnCodePageUTF8, false);
    benchmark::DoNotOptimize(out.GetBytesView().data());
  }
  Bytes(state, text);
}

template <bool Json>
void BM_Write(benchmark::State& state, const std::string& text) {
  vn::TVnDOMDocument doc;
  LoadDom(doc, text, true);
  for (auto _ : state) {
    vn::TVnStringStream out(vn::cVnCodePageUTF8);
    if constexpr (Json)
      vn::SaveToJSONStream(*doc.GetRootNode(), out, vn::cVnCodePageUTF8, false);
    else
      doc.GetRootNode()->SaveToStream(out, vn::cVnCodePageUTF8, false);
    benchmark::DoNotOptimize(out.GetBytesView().data());
  }
  Bytes(state, text);
}

const bool kRegistered = [] {
  static std::string texts[6];
  int i = 0;
  for (const char* file : kJsonFiles) {
    std::string& text = texts[i++] = Trimmed(file);
    if (text.empty()) continue;
    benchmark::RegisterBenchmark((std::string("JsonLoad/") + file).c_str(), BM_JsonLoad, text);
    benchmark::RegisterBenchmark((std::string("JsonToDom/") + file).c_str(), BM_JsonToDom, text);
  }
  for (const char* file : kXmlFiles) {
    std::string& text = texts[i++] = vnbench::PerfFile(file);
    if (text.empty()) continue;
    benchmark::RegisterBenchmark((std::string("XmlLoad/") + file).c_str(), BM_XmlLoad<false>, text);
    benchmark::RegisterBenchmark((std::string("XmlLoadWhole/") + file).c_str(), BM_XmlLoad<true>, text);
    benchmark::RegisterBenchmark((std::string("XmlToJson/") + file).c_str(), BM_XmlToJson<false>, text);
    benchmark::RegisterBenchmark((std::string("XmlToJsonWhole/") + file).c_str(), BM_XmlToJson<true>, text);
    benchmark::RegisterBenchmark((std::string("XmlSave/") + file).c_str(), BM_Write<false>, text);
    benchmark::RegisterBenchmark((std::string("JsonWrite/") + file).c_str(), BM_Write<true>, text);
  }
  return true;
}();

}  // namespace
