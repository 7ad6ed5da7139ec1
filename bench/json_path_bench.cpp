// json_path_bench: the JSON path language on the JSON files of corpora/perf, each query read
// afresh per call as a host calling CreateNodeList or SelectSingleNode would:
//   search/...  a recursive search ("$..name"), beside a hand-written walk over the same tree
//               that collects the same values (the floor)
//   filter/...  a filter over a large array, beside a hand-written loop doing the same test
//   index/...   a path of names and indexes to one value, beside RapidJSON's Pointer and
//               nlohmann's json_pointer (each parsed per call too, and once ahead: "/ready");
//               "/unkept": a text the thread's recent paths don't hold, read at every call
// Counter "nodes": what one run selects, the same for every library of a query.
#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench_data.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_path.h"

#ifdef VNXML_HAVE_RAPIDJSON
#include <rapidjson/document.h>
#include <rapidjson/pointer.h>
#endif
#ifdef VNXML_HAVE_NLOHMANN
#include <nlohmann/json.hpp>
#endif

namespace {

// The reader takes nothing after the top-level value, so every library reads the file without
// its trailing white space.
const std::string& Text(const char* AFile) {
  static std::map<std::string, std::string> cache;
  auto it = cache.find(AFile);
  if (it != cache.end()) return it->second;
  std::string bytes = vnbench::PerfFile(AFile);
  while (!bytes.empty() && static_cast<unsigned char>(bytes.back()) <= ' ') bytes.pop_back();
  return cache.emplace(AFile, std::move(bytes)).first->second;
}

vn::TVnJSONDocument& Doc(const char* AFile) {
  static std::map<std::string, std::unique_ptr<vn::TVnJSONDocument>> cache;
  std::unique_ptr<vn::TVnJSONDocument>& doc = cache[AFile];
  if (!doc) {
    doc = std::make_unique<vn::TVnJSONDocument>();
    const std::string& text = Text(AFile);
    vn::TVnMemoryStream in(text.data(), static_cast<vn::Int64>(text.size()));
    doc->LoadFromStream(in, vn::cVnCodePageUTF8, false);
  }
  return *doc;
}

struct Search {
  const char* FFile;
  const char16_t* FPath;  // "$.." and the name
  const char16_t* FName;
};
const Search kSearches[] = {
    {"twitter.json", u"$..screen_name", u"screen_name"},
    {"citm_catalog.json", u"$..amount", u"amount"},
    {"canada.json", u"$..type", u"type"},
};

struct Filter {
  const char* FFile;
  const char16_t* FPath;
  const char16_t* FArray;  // the array the hand-written loop runs over
  bool FNumeric;           // compare a number (else a text) ...
  const char16_t* FMember; // ... of this member (nil: the element's first item)
  double FBound;           // number: keep below (FLess) or above
  bool FLess;
  const char16_t* FText;
};
const Filter kFilters[] = {
    {"canada.json", u"$.features[0].geometry.coordinates[380][?(@[0] < -70)]",
     u"$.features[0].geometry.coordinates[380]", true, nullptr, -70, true, nullptr},
    {"twitter.json", u"$.statuses[?(@.retweet_count > 0)]", u"$.statuses", true, u"retweet_count", 0, false, nullptr},
    {"citm_catalog.json", u"$.performances[?(@.venueCode == 'PLEYEL_PLEYEL')]", u"$.performances", false,
     u"venueCode", 0, false, u"PLEYEL_PLEYEL"},
};

struct Index {
  const char* FFile;
  const char16_t* FPath;
  const char* FPointer;
};
const Index kIndexes[] = {
    {"twitter.json", u"$.statuses[50].user.screen_name", "/statuses/50/user/screen_name"},
    {"citm_catalog.json", u"$.performances[100].seatCategories[0].areas[0].areaId",
     "/performances/100/seatCategories/0/areas/0/areaId"},
    {"canada.json", u"$.features[0].geometry.coordinates[10][5][1]", "/features/0/geometry/coordinates/10/5/1"},
};

// ---- vnxml ----

void BM_vnxml_select(benchmark::State& AState, const char* AFile, const char16_t* APath) {
  vn::TVnJSONDocument& doc = Doc(AFile);
  vn::Integer nodes = 0;
  for (auto _ : AState) {
    std::unique_ptr<vn::TVnJSONArray> list = doc.CreateNodeList(APath);
    nodes = list->ChildCount();
    benchmark::DoNotOptimize(list.get());
  }
  AState.counters["nodes"] = nodes;
}

void BM_vnxml_single(benchmark::State& AState, const Index* AQuery) {
  vn::TVnJSONDocument& doc = Doc(AQuery->FFile);
  for (auto _ : AState) benchmark::DoNotOptimize(doc.SelectSingleNode(AQuery->FPath));
  AState.counters["nodes"] = doc.SelectSingleNode(AQuery->FPath) ? 1 : 0;
}

// As above, but each call with a text the thread has not kept (trailing blanks differ), so the
// path is read every time.
void BM_vnxml_single_unkept(benchmark::State& AState, const Index* AQuery) {
  vn::TVnJSONDocument& doc = Doc(AQuery->FFile);
  std::vector<vn::UnicodeString> texts;
  for (int i = 0; i < 32; ++i) texts.push_back(vn::UnicodeString(AQuery->FPath) + vn::UnicodeString(i, u' '));
  size_t next = 0;
  for (auto _ : AState) benchmark::DoNotOptimize(doc.SelectSingleNode(texts[next++ % texts.size()]));
  AState.counters["nodes"] = doc.SelectSingleNode(AQuery->FPath) ? 1 : 0;
}

// The floor of a search: every member of the name, found by a walk with a stack.
void BM_walk_search(benchmark::State& AState, const Search* AQuery) {
  vn::TVnJSONDocument& doc = Doc(AQuery->FFile);
  std::vector<vn::TVnJSONBase*> found, stack;
  for (auto _ : AState) {
    found.clear();
    stack.assign(1, doc.GetRootValue());
    while (!stack.empty()) {
      vn::TVnJSONBase* node = stack.back();
      stack.pop_back();
      const bool object = node->NodeClass() == vn::detail::JSONNodeClass::Object;
      for (vn::Integer i = node->ChildCount(); i-- > 0;) {
        vn::TVnJSONBase* child = node->Child(i);
        if (object) {
          auto* member = static_cast<vn::TVnJSONMember*>(child);
          if (member->RawName().Equals(AQuery->FName, false)) found.push_back(member->GetValueObj());
          child = member->GetValueObj();
        }
        if (child->ChildCount()) stack.push_back(child);
      }
    }
    benchmark::DoNotOptimize(found.data());
  }
  AState.counters["nodes"] = static_cast<double>(found.size());
}

// The floor of a filter: the same test on each element, through the tree's own getters.
void BM_loop_filter(benchmark::State& AState, const Filter* AQuery) {
  vn::TVnJSONDocument& doc = Doc(AQuery->FFile);
  vn::TVnJSONBase* array = doc.SelectSingleNode(AQuery->FArray);
  std::vector<vn::TVnJSONBase*> kept;
  for (auto _ : AState) {
    kept.clear();
    for (vn::Integer i = 0; i < array->ChildCount(); ++i) {
      vn::TVnJSONBase* element = array->Child(i);
      vn::TVnJSONBase* value =
          AQuery->FMember ? element->FindMember(AQuery->FMember)->GetValueObj() : element->Child(0);
      bool keep;
      if (AQuery->FNumeric) {
        const double v = value->GetAsDouble();
        keep = AQuery->FLess ? v < AQuery->FBound : v > AQuery->FBound;
      } else {
        keep = value->GetAsString() == AQuery->FText;
      }
      if (keep) kept.push_back(element);
    }
    benchmark::DoNotOptimize(kept.data());
  }
  AState.counters["nodes"] = static_cast<double>(kept.size());
}

// ---- peers ----

#ifdef VNXML_HAVE_RAPIDJSON
rapidjson::Document& RapidDoc(const char* AFile) {
  static std::map<std::string, std::unique_ptr<rapidjson::Document>> cache;
  std::unique_ptr<rapidjson::Document>& doc = cache[AFile];
  if (!doc) {
    doc = std::make_unique<rapidjson::Document>();
    doc->Parse(Text(AFile).c_str(), Text(AFile).size());
  }
  return *doc;
}

void BM_rapidjson_pointer(benchmark::State& AState, const Index* AQuery, bool AReady) {
  rapidjson::Document& doc = RapidDoc(AQuery->FFile);
  const rapidjson::Pointer ready(AQuery->FPointer);
  for (auto _ : AState) {
    if (AReady)
      benchmark::DoNotOptimize(ready.Get(doc));
    else
      benchmark::DoNotOptimize(rapidjson::Pointer(AQuery->FPointer).Get(doc));
  }
  AState.counters["nodes"] = ready.Get(doc) ? 1 : 0;
}
#endif

#ifdef VNXML_HAVE_NLOHMANN
nlohmann::json& NlohmannDoc(const char* AFile) {
  static std::map<std::string, std::unique_ptr<nlohmann::json>> cache;
  std::unique_ptr<nlohmann::json>& doc = cache[AFile];
  if (!doc) doc = std::make_unique<nlohmann::json>(nlohmann::json::parse(Text(AFile)));
  return *doc;
}

void BM_nlohmann_pointer(benchmark::State& AState, const Index* AQuery, bool AReady) {
  nlohmann::json& doc = NlohmannDoc(AQuery->FFile);
  const nlohmann::json::json_pointer ready(AQuery->FPointer);
  for (auto _ : AState) {
    if (AReady)
      benchmark::DoNotOptimize(&doc.at(ready));
    else
      benchmark::DoNotOptimize(&doc.at(nlohmann::json::json_pointer(AQuery->FPointer)));
  }
  AState.counters["nodes"] = doc.contains(ready) ? 1 : 0;
}
#endif

int RegisterAll() {
  auto add = [](const std::string& AName, auto&& AFn, auto... AArgs) {
    return benchmark::RegisterBenchmark(AName.c_str(), AFn, AArgs...);
  };
  for (const Search& q : kSearches) {
    const std::string f = std::string("/") + q.FFile;
    add("search/vnxml" + f, BM_vnxml_select, q.FFile, q.FPath)->Unit(benchmark::kMillisecond);
    add("search/walk" + f, BM_walk_search, &q)->Unit(benchmark::kMillisecond);
  }
  for (const Filter& q : kFilters) {
    const std::string f = std::string("/") + q.FFile;
    add("filter/vnxml" + f, BM_vnxml_select, q.FFile, q.FPath)->Unit(benchmark::kMicrosecond);
    add("filter/loop" + f, BM_loop_filter, &q)->Unit(benchmark::kMicrosecond);
  }
  for (const Index& q : kIndexes) {
    const std::string f = std::string("/") + q.FFile;
    add("index/vnxml" + f, BM_vnxml_single, &q);
    add("index/vnxml/unkept" + f, BM_vnxml_single_unkept, &q);
#ifdef VNXML_HAVE_RAPIDJSON
    add("index/rapidjson" + f, BM_rapidjson_pointer, &q, false);
    add("index/rapidjson/ready" + f, BM_rapidjson_pointer, &q, true);
#endif
#ifdef VNXML_HAVE_NLOHMANN
    add("index/nlohmann" + f, BM_nlohmann_pointer, &q, false);
    add("index/nlohmann/ready" + f, BM_nlohmann_pointer, &q, true);
#endif
  }
  return 0;
}
const int kRegistered = RegisterAll();

}  // namespace
