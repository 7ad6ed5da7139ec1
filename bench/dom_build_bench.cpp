// Building a tree of a million elements with attributes by program, and walking it through
// objects and through interfaces. Counters: ns per element and bytes of heap per element.
#include <malloc.h>

#include <benchmark/benchmark.h>

#include "vnxml/dom.h"

namespace {

using namespace vn;

constexpr int kItems = 1000000;

size_t HeapInUse() {
  struct mallinfo2 mi = mallinfo2();
  return mi.uordblks + mi.hblkhd;
}

// <root><item id="N" kind="k"><name>text</name></item>... : 2 elements, 2 attributes, 1 text each.
std::unique_ptr<TVnDOMDocument> Build(int AItems) {
  auto doc = std::make_unique<TVnDOMDocument>();
  TVnDOMElement* root = doc->CreateRootNode(u"root");
  for (int i = 0; i < AItems; ++i) {
    TVnDOMElement* item = root->AddElement(u"item");
    item->AddAttribute(u"id")->SetNodeValue(u"12345");
    item->AddAttribute(u"kind")->SetNodeValue(u"k");
    item->AddElement(u"name")->AddText(u"some text");
  }
  return doc;
}

void BM_BuildByObjects(benchmark::State& state) {
  for (auto _ : state) {
    size_t before = HeapInUse();
    auto doc = Build(kItems / 2);
    size_t after = HeapInUse();
    state.counters["bytes_per_element"] = static_cast<double>(after - before) / kItems;
    // the fixed part of each node, beside its arrays and strings
    state.counters["sizeof_element"] = sizeof(TVnDOMElement);
    state.counters["sizeof_attribute"] = sizeof(TVnDOMAttribute);
    state.counters["sizeof_text"] = sizeof(TVnDOMText);
    state.PauseTiming();
    doc.reset();
    state.ResumeTiming();
  }
  state.counters["ns_per_element"] =
      benchmark::Counter(static_cast<double>(kItems) * state.iterations(),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_WalkByObjects(benchmark::State& state) {
  auto doc = Build(kItems / 2);
  for (auto _ : state) {
    size_t n = 0;
    for (TVnDOMNode* item : doc->GetRootNode()->ElementsView()) {
      auto* e = static_cast<TVnDOMElement*>(item);
      n += e->AttributeCount() + e->FirstElement()->GetNodeValue().size();
    }
    benchmark::DoNotOptimize(n);
  }
  state.counters["ns_per_element"] =
      benchmark::Counter(static_cast<double>(kItems) * state.iterations(),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_WalkByInterfaces(benchmark::State& state) {
  auto doc = Build(kItems / 2);
  for (auto _ : state) {
    size_t n = 0;
    IPtr<IVnDOMElementList> items = doc->GetRootNode()->As<IVnDOMElement>()->GetElements();
    for (Integer i = 0, count = items->Count(); i < count; ++i) {
      IPtr<IVnDOMElement> e = items->GetItem(i).As<IVnDOMElement>();
      n += e->AttributeCount() + e->FirstElement()->GetNodeValue().size();
    }
    benchmark::DoNotOptimize(n);
  }
  state.counters["ns_per_element"] =
      benchmark::Counter(static_cast<double>(kItems) * state.iterations(),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

BENCHMARK(BM_BuildByObjects)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_WalkByObjects)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WalkByInterfaces)->Unit(benchmark::kMillisecond);

}  // namespace
