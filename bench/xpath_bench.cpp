// Selection by path on the perf corpus, side by side with the equivalent XPath in pugixml and
// libxml2 (when installed): descendant searches with an attribute filter, a child path with a
// numeric filter, a filter with a string function and an index filter. Every run parses its
// query afresh, as a host calling SelectSingleNode or CreateNodeList would. Counter "nodes"
// is the size of the result, which must agree between the libraries.
#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench_data.h"
#include "vnxml/dom.h"
#include "vnxml/dom_path.h"
#include "vnxml/xpath.h"

#ifdef VNXML_HAVE_PUGIXML
#include <pugixml.hpp>
#endif
#ifdef VNXML_HAVE_LIBXML2
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>
#endif

namespace {

using namespace vn;

constexpr char cCatalog[] = "synthetic-catalog-20mb.xml";
constexpr char cVk[] = "vk.xml";
constexpr char cCatalogNS[] = "urn:example:catalog";

struct Query {
  const char* FName;
  const char* FFile;
  const char16_t* FVnPath;  // the path language: indexes from 0, names by prefix text
  const char* FXPath;       // XPath for pugixml, which ignores the default namespace
  const char* FXPathNS;     // XPath for libxml2, with the catalog's namespace bound to "c"
};

const Query cQueries[] = {
    {"descendants_with_id", cCatalog, u"//*[@id]", "//*[@id]", "//*[@id]"},
    {"descendants_with_name", cVk, u"//*[@name]", "//*[@name]", "//*[@name]"},
    {"child_path_numeric_filter", cCatalog, u"/catalog/products/product[price > 500]/name",
     "/catalog/products/product[price > 500]/name", "/c:catalog/c:products/c:product[c:price > 500]/c:name"},
    {"string_function_filter", cCatalog, u"/catalog/products/product[starts-with(@sku, \"SKU-1\")]",
     "/catalog/products/product[starts-with(@sku, 'SKU-1')]",
     "/c:catalog/c:products/c:product[starts-with(@sku, 'SKU-1')]"},
    {"index_filter", cCatalog, u"/catalog/products/product[9]/name", "/catalog/products/product[10]/name",
     "/c:catalog/c:products/c:product[10]/c:name"},
};

// Documents stay loaded until the process ends and are never freed: freeing them while static
// objects are destroyed is not a road the library promises. They load whole, so that every run
// measures the search alone and not, in its first run, the making of the nodes a deferred load
// leaves to first access (dom_load_bench and dom_walk_bench measure that).
TVnDOMDocument& VnDoc(const char* AFile) {
  static std::map<std::string, TVnDOMDocument*> docs;
  TVnDOMDocument*& doc = docs[AFile];
  if (!doc) {
    doc = new TVnDOMDocument();
    doc->SetDeferChildren(false);
    doc->LoadFromAnsiXML(vnbench::PerfFile(AFile));
  }
  return *doc;
}

void BM_vnxml(benchmark::State& state, const Query* AQuery) {
  TVnDOMDocument& doc = VnDoc(AQuery->FFile);
  size_t nodes = 0;
  for (auto _ : state) {
    std::unique_ptr<TVnDOMNodeList> list = CreateNodeList(&doc, AQuery->FVnPath);
    nodes = static_cast<size_t>(list->Count());
    benchmark::DoNotOptimize(list);
  }
  state.counters["nodes"] = static_cast<double>(nodes);
}

// The floor under "//*[@id]": a hand-written walk over the same tree that asks each element
// for an "id" attribute, without any path machinery.
void BM_vnxml_walk_floor(benchmark::State& state) {
  TVnDOMDocument& doc = VnDoc(cCatalog);
  size_t nodes = 0;
  for (auto _ : state) {
    std::vector<TVnDOMNode*> found;
    std::vector<TVnDOMNode*> stack{doc.GetRootNode()};
    while (!stack.empty()) {
      auto* e = static_cast<TVnDOMElement*>(stack.back());
      stack.pop_back();
      for (TVnDOMNode* a : e->AttributesView())
        if (a->LocalNameView() == u"id") {
          found.push_back(e);
          break;
        }
      const auto& elements = e->ElementsView();
      for (uint32_t i = elements.size(); i-- > 0;) stack.push_back(elements[i]);
    }
    nodes = found.size();
    benchmark::DoNotOptimize(found);
  }
  state.counters["nodes"] = static_cast<double>(nodes);
}

#ifdef VNXML_HAVE_PUGIXML
pugi::xml_document& PugiDoc(const char* AFile) {
  static std::map<std::string, std::unique_ptr<pugi::xml_document>> docs;
  auto& doc = docs[AFile];
  if (!doc) {
    doc = std::make_unique<pugi::xml_document>();
    const std::string& bytes = vnbench::PerfFile(AFile);
    doc->load_buffer(bytes.data(), bytes.size());
  }
  return *doc;
}

void BM_pugixml(benchmark::State& state, const Query* AQuery) {
  pugi::xml_document& doc = PugiDoc(AQuery->FFile);
  size_t nodes = 0;
  for (auto _ : state) {
    pugi::xpath_node_set set = doc.select_nodes(AQuery->FXPath);
    nodes = set.size();
    benchmark::DoNotOptimize(set);
  }
  state.counters["nodes"] = static_cast<double>(nodes);
}
#endif

#ifdef VNXML_HAVE_LIBXML2
xmlDocPtr XmlDoc(const char* AFile) {
  static std::map<std::string, xmlDocPtr> docs;
  xmlDocPtr& doc = docs[AFile];
  if (!doc) {
    const std::string& bytes = vnbench::PerfFile(AFile);
    doc = xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), AFile, nullptr, XML_PARSE_HUGE);
  }
  return doc;
}

void BM_libxml2(benchmark::State& state, const Query* AQuery) {
  xmlDocPtr doc = XmlDoc(AQuery->FFile);
  xmlXPathContextPtr ctx = xmlXPathNewContext(doc);
  xmlXPathRegisterNs(ctx, BAD_CAST "c", BAD_CAST cCatalogNS);
  size_t nodes = 0;
  for (auto _ : state) {
    xmlXPathObjectPtr result = xmlXPathEvalExpression(BAD_CAST AQuery->FXPathNS, ctx);
    nodes = result && result->nodesetval ? static_cast<size_t>(result->nodesetval->nodeNr) : 0;
    xmlXPathFreeObject(result);
  }
  xmlXPathFreeContext(ctx);
  state.counters["nodes"] = static_cast<double>(nodes);
}
#endif

// Interleaved per query, so that the libraries meet the same machine state.
const bool cRegistered = [] {
  for (const Query& q : cQueries) {
    std::string name(q.FName);
    benchmark::RegisterBenchmark(("vnxml/" + name).c_str(), BM_vnxml, &q)->Unit(benchmark::kMillisecond);
#ifdef VNXML_HAVE_PUGIXML
    benchmark::RegisterBenchmark(("pugixml/" + name).c_str(), BM_pugixml, &q)->Unit(benchmark::kMillisecond);
#endif
#ifdef VNXML_HAVE_LIBXML2
    benchmark::RegisterBenchmark(("libxml2/" + name).c_str(), BM_libxml2, &q)->Unit(benchmark::kMillisecond);
#endif
  }
  benchmark::RegisterBenchmark("vnxml_walk_floor/descendants_with_id", BM_vnxml_walk_floor)
      ->Unit(benchmark::kMillisecond);
  return true;
}();

}  // namespace
