// serializer_bench: 10,000 records (integer, double, string, boolean, date, enumeration, nested
// record, list of five integers) written to text and read back, in XML and JSON, vnxml beside
// cereal (XML and JSON archives), Boost.Serialization (XML archive) and nlohmann-json (to_json /
// from_json), each in its own idiomatic form, when installed. The runs alternate per direction
// and notation; run with --benchmark_enable_random_interleaving=true --benchmark_repetitions=5
// and compare ratios, not absolute figures.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "vnxml/common/rtti_register.h"
#include "vnxml/json_serializer.h"
#include "vnxml/serializer.h"

#ifdef VNXML_HAVE_CEREAL
#include <cereal/archives/json.hpp>
#include <cereal/archives/xml.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/vector.hpp>
#endif
#ifdef VNXML_HAVE_BOOST_SERIALIZATION
#include <boost/archive/xml_iarchive.hpp>
#include <boost/archive/xml_oarchive.hpp>
#include <boost/serialization/nvp.hpp>
#include <boost/serialization/split_member.hpp>
#include <boost/serialization/string.hpp>
#include <boost/serialization/vector.hpp>
#endif
#ifdef VNXML_HAVE_NLOHMANN
#include <nlohmann/json.hpp>
#endif

constexpr int kRecords = 10000;

// ---- the vnxml form: reflected records ----
namespace benchvn {
using namespace vn;
enum TLevel : uint8_t { lvLow, lvMid, lvHigh };
VN_REGISTER_TYPE(TLevel, u"uBench") { b.Values({u"lvLow", u"lvMid", u"lvHigh"}); }
struct TSpot {
  Integer X = 0;
  Integer Y = 0;
};
VN_REGISTER_TYPE(TSpot, u"uBench") { b.Public(u"X", &TSpot::X).Public(u"Y", &TSpot::Y); }
struct TRecord {
  Integer Id = 0;
  Double Price = 0;
  UnicodeString Name;
  Boolean Active = false;
  TDate Born = 0;
  TLevel Level = lvLow;
  TSpot Spot;
  std::vector<Integer> Scores;
};
VN_REGISTER_TYPE(TRecord, u"uBench") {
  b.Public(u"Id", &TRecord::Id)
      .Public(u"Price", &TRecord::Price)
      .Public(u"Name", &TRecord::Name)
      .Public(u"Active", &TRecord::Active)
      .Public(u"Born", &TRecord::Born)
      .OfType(u"TDate")
      .Public(u"Level", &TRecord::Level)
      .Public(u"Spot", &TRecord::Spot)
      .Public(u"Scores", &TRecord::Scores);
}
struct TFile {
  std::vector<TRecord> Items;
};
VN_REGISTER_TYPE(TFile, u"uBench") { b.Public(u"Items", &TFile::Items); }
}  // namespace benchvn

// ---- the peers' form: plain structs, UTF-8 strings, the date as a day count ----
namespace benchpeer {
enum class Level : int { Low, Mid, High };
struct Spot {
  int x = 0;
  int y = 0;
};
/// Days since 1899-12-30, written as yyyy-mm-dd as vnxml writes a date.
struct Date {
  int days = 0;
  std::string Text() const {
    int z = days - 25569 + 719468;  // days since 0000-03-01
    int era = (z >= 0 ? z : z - 146096) / 146097;
    int doe = z - era * 146097;
    int yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    int doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    int mp = (5 * doy + 2) / 153;
    int d = doy - (153 * mp + 2) / 5 + 1;
    int m = mp < 10 ? mp + 3 : mp - 9;
    int y = yoe + era * 400 + (m <= 2);
    char buf[16];
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d", y, m, d);
    return buf;
  }
  static Date FromText(const std::string& s) {
    int y = 0, m = 0, d = 0;
    std::sscanf(s.c_str(), "%d-%d-%d", &y, &m, &d);
    y -= m <= 2;
    int era = (y >= 0 ? y : y - 399) / 400;
    int yoe = y - era * 400;
    int doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    int doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return {era * 146097 + doe - 719468 + 25569};
  }
};
struct Record {
  int id = 0;
  double price = 0;
  std::string name;
  bool active = false;
  Date born;
  Level level = Level::Low;
  Spot spot;
  std::vector<int> scores;
};
}  // namespace benchpeer

namespace {

const benchvn::TFile& VnData() {
  static const benchvn::TFile file = [] {
    benchvn::TFile f;
    f.Items.resize(kRecords);
    for (int i = 0; i < kRecords; ++i) {
      benchvn::TRecord& r = f.Items[i];
      r.Id = i;
      r.Price = i * 1.25 + 0.1;
      r.Name = u"item \"" + vn::IntToStr(i) + u"\" & co";
      r.Active = i % 3 == 0;
      r.Born = 40000 + i % 5000;
      r.Level = static_cast<benchvn::TLevel>(i % 3);
      r.Spot = {i, -i};
      r.Scores = {i, i + 1, i + 2, i + 3, i + 4};
    }
    return f;
  }();
  return file;
}

const std::vector<benchpeer::Record>& PeerData() {
  static const std::vector<benchpeer::Record> records = [] {
    std::vector<benchpeer::Record> v(kRecords);
    for (int i = 0; i < kRecords; ++i) {
      benchpeer::Record& r = v[i];
      r.id = i;
      r.price = i * 1.25 + 0.1;
      r.name = "item \"" + std::to_string(i) + "\" & co";
      r.active = i % 3 == 0;
      r.born = {40000 + i % 5000};
      r.level = static_cast<benchpeer::Level>(i % 3);
      r.spot = {i, -i};
      r.scores = {i, i + 1, i + 2, i + 3, i + 4};
    }
    return v;
  }();
  return records;
}

void Report(benchmark::State& state, size_t bytes) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kRecords);
  state.counters["bytes"] = static_cast<double>(bytes);
}

// ---- vnxml ----
void BM_vnxml_write(benchmark::State& state, vn::TVnDataSerializationFormatType format) {
  benchvn::TFile& file = const_cast<benchvn::TFile&>(VnData());
  size_t size = 0;
  for (auto _ : state) {
    vn::TVnSerializedData text = vn::VnSerialize(format, &file, vn::TypeInfoOf<benchvn::TFile>());
    size = text.size();
    benchmark::DoNotOptimize(text.data());
  }
  Report(state, size);
}

void BM_vnxml_read(benchmark::State& state, vn::TVnDataSerializationFormatType format) {
  benchvn::TFile& source = const_cast<benchvn::TFile&>(VnData());
  const vn::TVnSerializedData text = vn::VnSerialize(format, &source, vn::TypeInfoOf<benchvn::TFile>());
  for (auto _ : state) {
    benchvn::TFile file;
    vn::VnDeserialize(format, &file, vn::TypeInfoOf<benchvn::TFile>(), text);
    if (file.Items.size() != static_cast<size_t>(kRecords)) return state.SkipWithError("vnxml read short");
    benchmark::DoNotOptimize(file.Items.data());
  }
  Report(state, text.size());
}

}  // namespace

// ---- nlohmann-json: to_json / from_json ----
#ifdef VNXML_HAVE_NLOHMANN
namespace benchpeer {
NLOHMANN_JSON_SERIALIZE_ENUM(Level, {{Level::Low, "lvLow"}, {Level::Mid, "lvMid"}, {Level::High, "lvHigh"}})
void to_json(nlohmann::json& j, const Spot& s) { j = nlohmann::json{{"x", s.x}, {"y", s.y}}; }
void from_json(const nlohmann::json& j, Spot& s) {
  j.at("x").get_to(s.x);
  j.at("y").get_to(s.y);
}
void to_json(nlohmann::json& j, const Record& r) {
  j = nlohmann::json{{"id", r.id},         {"price", r.price}, {"name", r.name},   {"active", r.active},
                     {"born", r.born.Text()}, {"level", r.level}, {"spot", r.spot}, {"scores", r.scores}};
}
void from_json(const nlohmann::json& j, Record& r) {
  j.at("id").get_to(r.id);
  j.at("price").get_to(r.price);
  j.at("name").get_to(r.name);
  j.at("active").get_to(r.active);
  r.born = Date::FromText(j.at("born").get<std::string>());
  j.at("level").get_to(r.level);
  j.at("spot").get_to(r.spot);
  j.at("scores").get_to(r.scores);
}
}  // namespace benchpeer

namespace {
void BM_nlohmann_write(benchmark::State& state) {
  size_t size = 0;
  for (auto _ : state) {
    std::string text = nlohmann::json{{"items", PeerData()}}.dump();
    size = text.size();
    benchmark::DoNotOptimize(text.data());
  }
  Report(state, size);
}
void BM_nlohmann_read(benchmark::State& state) {
  const std::string text = nlohmann::json{{"items", PeerData()}}.dump();
  for (auto _ : state) {
    std::vector<benchpeer::Record> records = nlohmann::json::parse(text).at("items").get<std::vector<benchpeer::Record>>();
    if (records.size() != static_cast<size_t>(kRecords)) return state.SkipWithError("nlohmann read short");
    benchmark::DoNotOptimize(records.data());
  }
  Report(state, text.size());
}
}  // namespace
#endif

// ---- cereal: one serialize template, the date as a minimal (string) value ----
#ifdef VNXML_HAVE_CEREAL
namespace benchpeer {
template <class A>
void serialize(A& ar, Spot& s) {
  ar(cereal::make_nvp("x", s.x), cereal::make_nvp("y", s.y));
}
template <class A>
std::string save_minimal(const A&, const Date& d) {
  return d.Text();
}
template <class A>
void load_minimal(const A&, Date& d, const std::string& s) {
  d = Date::FromText(s);
}
template <class A>
void serialize(A& ar, Record& r) {
  ar(cereal::make_nvp("id", r.id), cereal::make_nvp("price", r.price), cereal::make_nvp("name", r.name),
     cereal::make_nvp("active", r.active), cereal::make_nvp("born", r.born), cereal::make_nvp("level", r.level),
     cereal::make_nvp("spot", r.spot), cereal::make_nvp("scores", r.scores));
}
}  // namespace benchpeer

namespace {
template <class Out>
std::string CerealText() {
  std::ostringstream os;
  {
    Out ar(os);
    ar(cereal::make_nvp("items", PeerData()));
  }
  return os.str();
}
template <class Out>
void BM_cereal_write(benchmark::State& state) {
  size_t size = 0;
  for (auto _ : state) {
    std::string text = CerealText<Out>();
    size = text.size();
    benchmark::DoNotOptimize(text.data());
  }
  Report(state, size);
}
template <class Out, class In>
void BM_cereal_read(benchmark::State& state) {
  const std::string text = CerealText<Out>();
  for (auto _ : state) {
    std::vector<benchpeer::Record> records;
    {
      std::istringstream is(text);
      In ar(is);
      ar(cereal::make_nvp("items", records));
    }
    if (records.size() != static_cast<size_t>(kRecords)) return state.SkipWithError("cereal read short");
    benchmark::DoNotOptimize(records.data());
  }
  Report(state, text.size());
}
}  // namespace
#endif

// ---- Boost.Serialization: the XML archive, the date split into save and load ----
#ifdef VNXML_HAVE_BOOST_SERIALIZATION
namespace boost::serialization {
template <class A>
void serialize(A& ar, benchpeer::Spot& s, unsigned) {
  ar& make_nvp("x", s.x) & make_nvp("y", s.y);
}
template <class A>
void save(A& ar, const benchpeer::Date& d, unsigned) {
  std::string text = d.Text();
  ar& make_nvp("text", text);
}
template <class A>
void load(A& ar, benchpeer::Date& d, unsigned) {
  std::string text;
  ar& make_nvp("text", text);
  d = benchpeer::Date::FromText(text);
}
template <class A>
void serialize(A& ar, benchpeer::Date& d, unsigned version) {
  split_free(ar, d, version);
}
template <class A>
void serialize(A& ar, benchpeer::Record& r, unsigned) {
  ar& make_nvp("id", r.id) & make_nvp("price", r.price) & make_nvp("name", r.name) & make_nvp("active", r.active) &
      make_nvp("born", r.born) & make_nvp("level", r.level) & make_nvp("spot", r.spot) & make_nvp("scores", r.scores);
}
}  // namespace boost::serialization

namespace {
std::string BoostText() {
  std::ostringstream os;
  {
    boost::archive::xml_oarchive ar(os);
    const std::vector<benchpeer::Record>& items = PeerData();
    ar << boost::serialization::make_nvp("items", items);
  }
  return os.str();
}
void BM_boost_xml_write(benchmark::State& state) {
  size_t size = 0;
  for (auto _ : state) {
    std::string text = BoostText();
    size = text.size();
    benchmark::DoNotOptimize(text.data());
  }
  Report(state, size);
}
void BM_boost_xml_read(benchmark::State& state) {
  const std::string text = BoostText();
  for (auto _ : state) {
    std::vector<benchpeer::Record> records;
    {
      std::istringstream is(text);
      boost::archive::xml_iarchive ar(is);
      ar >> boost::serialization::make_nvp("items", records);
    }
    if (records.size() != static_cast<size_t>(kRecords)) return state.SkipWithError("boost read short");
    benchmark::DoNotOptimize(records.data());
  }
  Report(state, text.size());
}
}  // namespace
#endif

namespace {
int RegisterAll() {
  auto add = [](const char* name, auto fn, auto... args) {
    benchmark::RegisterBenchmark(name, fn, args...)->Unit(benchmark::kMillisecond);
  };
  // JSON, then XML; within each the writers, then the readers.
  add("json_write/vnxml", BM_vnxml_write, vn::dsfJSON);
#ifdef VNXML_HAVE_NLOHMANN
  add("json_write/nlohmann", BM_nlohmann_write);
#endif
#ifdef VNXML_HAVE_CEREAL
  add("json_write/cereal", BM_cereal_write<cereal::JSONOutputArchive>);
#endif
  add("json_read/vnxml", BM_vnxml_read, vn::dsfJSON);
#ifdef VNXML_HAVE_NLOHMANN
  add("json_read/nlohmann", BM_nlohmann_read);
#endif
#ifdef VNXML_HAVE_CEREAL
  add("json_read/cereal", BM_cereal_read<cereal::JSONOutputArchive, cereal::JSONInputArchive>);
#endif
  add("xml_write/vnxml", BM_vnxml_write, vn::dsfXML);
#ifdef VNXML_HAVE_CEREAL
  add("xml_write/cereal", BM_cereal_write<cereal::XMLOutputArchive>);
#endif
#ifdef VNXML_HAVE_BOOST_SERIALIZATION
  add("xml_write/boost", BM_boost_xml_write);
#endif
  add("xml_read/vnxml", BM_vnxml_read, vn::dsfXML);
#ifdef VNXML_HAVE_CEREAL
  add("xml_read/cereal", BM_cereal_read<cereal::XMLOutputArchive, cereal::XMLInputArchive>);
#endif
#ifdef VNXML_HAVE_BOOST_SERIALIZATION
  add("xml_read/boost", BM_boost_xml_read);
#endif
  return 0;
}
const int kRegistered = RegisterAll();
}  // namespace
