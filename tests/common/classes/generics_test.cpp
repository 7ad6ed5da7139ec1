// Generic containers: list order and errors, ownership of objects, dictionary keys and order.
#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <tuple>

#include "common/message_of.h"
#include "tracked.h"
#include "vnxml/common/generics.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sync_objs.h"
#include "vnxml/common/sysutils.h"

#include <thread>

using namespace vn;
using namespace vn::generics;
using vn::test::TTracked;

TEST(GenericList, OrderSearchAndErrors) {
  TList<int> list;
  list.AddRange({5, 3, 9});
  list.Insert(1, 7);  // 5 7 3 9
  EXPECT_EQ((std::tuple{list.IndexOf(3), list.Remove(42), list.Remove(7)}), std::tuple(2, -1, 1));
  list.Add(5);
  EXPECT_EQ(list.LastIndexOf(5), 3);
  list.Sort();
  EXPECT_EQ(list.ToArray(), (std::vector<int>{3, 5, 5, 9}));
  Integer at = -1;
  EXPECT_EQ((std::tuple{list.BinarySearch(5, at), at}), std::tuple(true, 1));
  EXPECT_EQ((std::tuple{list.BinarySearch(6, at), at}), std::tuple(false, 3));
  list.Sort([](const int& a, const int& b) { return b - a; });
  EXPECT_EQ((std::tuple{list.First(), std::accumulate(list.begin(), list.end(), 0)}), std::tuple(9, 22));
  list.Move(0, 3);
  list.Exchange(0, 1);
  list.DeleteRange(1, 2);
  EXPECT_EQ(list.ToArray(), (std::vector<int>{5, 9}));
  EXPECT_EQ(test::MessageOf<EArgumentOutOfRangeException>([&] { list[2]; }), cRtlArgumentOutOfRange);
  EXPECT_THROW(list.Insert(3, 1), EArgumentOutOfRangeException);
  EXPECT_THROW(list.DeleteRange(1, 2), EArgumentOutOfRangeException);
  list.Clear();
  EXPECT_THROW(list.Last(), EArgumentOutOfRangeException);
}

TEST(GenericObjectList, OwnsAndFreesClassNamesPerInstantiation) {
  int freed = 0;
  auto* list = new TObjectList<TTracked>();
  for (int i = 1; i <= 4; ++i) list->Add(new TTracked(&freed, i));
  list->Delete(0);
  EXPECT_EQ(freed, 1);
  TTracked* kept = list->Extract(list->First());
  EXPECT_EQ(freed, 1);
  list->SetItem(0, new TTracked(&freed, 9));  // the replaced one is freed
  int ids = 0;
  for (TTracked* t : *list) ids += t->Id();
  EXPECT_EQ((std::tuple{freed, ids}), std::tuple(2, 9 + 4));
  delete list;
  EXPECT_EQ(freed, 4);
  delete kept;

  TTracked a(&freed);
  {
    TObjectList<TTracked> borrowed(false);
    borrowed.Add(&a);
    borrowed.Remove(&a);
    borrowed.Add(&a);
    // Class names per instantiation.
    EXPECT_EQ((std::tuple{borrowed.ClassName(), borrowed.InheritsFrom(TList<TTracked*>::StaticClass()),
                          borrowed.InheritsFrom(TList<int>::StaticClass())}),
              std::tuple(u"TObjectList<T>", true, false));
  }
  EXPECT_EQ(freed, 5);  // only kept
  TList<double>::SetClassName(u"TList<System.Double>");
  EXPECT_EQ(TList<double>().ClassName(), u"TList<System.Double>");
}

TEST(GenericDictionary, KeysValuesAndErrors) {
  TDictionary<UnicodeString, int> map;
  for (const auto& [key, value] : {std::pair{u"b", 2}, {u"a", 1}, {u"c", 3}}) map.Add(key, value);
  EXPECT_EQ(test::MessageOf<EListError>([&] { map.Add(u"a", 9); }), cRtlDuplicateItem);
  EXPECT_EQ(test::MessageOf<EListError>([&] { map[u"zz"]; }), cRtlItemNotFound);
  EXPECT_THROW(map.SetItem(u"zz", 1), EListError);
  map.Remove(u"b");
  map.Remove(u"missing");
  map.AddOrSetValue(u"a", 10);
  map.AddOrSetValue(u"d", 4);
  EXPECT_EQ(map.Keys(), (std::vector<UnicodeString>{u"a", u"c", u"d"}));  // insertion order
  EXPECT_EQ(map.Values(), (std::vector<int>{10, 3, 4}));
  int v = -1;
  EXPECT_EQ((std::tuple{map.TryGetValue(u"c", v), v}), std::tuple(true, 3));
  int sum = 0;
  for (const auto& pair : map) sum += pair.Value;
  EXPECT_EQ((std::tuple{map.TryGetValue(u"b", v), map.ContainsValue(4), map.ContainsKey(u"b"), sum}),
            std::tuple(false, true, false, 17));
  // The index still holds after removals in the middle.
  EXPECT_EQ((std::tuple{map.ExtractPair(u"a").Value, map.Count(), map[u"d"]}), std::tuple(10, 2, 4));
}

TEST(GenericObjectDictionary, OwnershipsDecideWhatIsFreed) {
  int freed = 0;
  {
    TObjectDictionary<UnicodeString, TTracked*> values(doOwnsValues);
    values.Add(u"x", new TTracked(&freed));
    values.AddOrSetValue(u"x", new TTracked(&freed));  // the replaced value is freed
    EXPECT_EQ(freed, 1);
    values.Add(u"y", new TTracked(&freed));
    values.Remove(u"y");
    EXPECT_EQ(freed, 2);
    auto pair = values.ExtractPair(u"x");
    EXPECT_EQ(freed, 2);
    delete pair.Value;
    values.Add(u"z", new TTracked(&freed));
  }
  EXPECT_EQ(freed, 4);
  {
    TObjectDictionary<TTracked*, int> keys(doOwnsKeys);
    for (int i = 0; i < 2; ++i) keys.Add(new TTracked(&freed), i);
  }
  EXPECT_EQ(freed, 6);
}

TEST(TCriticalSection, ReentrantAndExclusive) {
  TCriticalSection lock;
  lock.Enter();
  EXPECT_TRUE(lock.TryEnter());  // the holder may take it again
  bool otherGotIt = true;
  std::thread([&] { otherGotIt = lock.TryEnter(); }).join();
  EXPECT_FALSE(otherGotIt);
  lock.Leave();
  lock.Leave();

  int counter = 0;
  auto work = [&] {
    for (int i = 0; i < 10000; ++i) {
      std::lock_guard guard(lock);
      ++counter;
    }
  };
  for (std::thread& t : std::array{std::thread(work), std::thread(work)}) t.join();
  EXPECT_EQ(counter, 20000);
}
