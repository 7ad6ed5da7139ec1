// TList (pointers) and TObjectList: notifications, index errors, and who frees the items.
#include <gtest/gtest.h>

#include <functional>
#include <tuple>
#include <vector>

#include "common/message_of.h"
#include "tracked.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

using namespace vn;
using vn::test::TTracked;

namespace {

class TRecordingList : public TList {
 public:
  std::vector<std::pair<void*, TListNotification>> Log;

 protected:
  void Notify(void* AItem, TListNotification AAction) override { Log.emplace_back(AItem, AAction); }
};

UnicodeString ListErrorOf(const std::function<void()>& AFunc) { return test::MessageOf<EListError>(AFunc); }

}  // namespace

TEST(TList, NotifiesNonNilItemsThatComeAndGo) {
  int a = 0, b = 0, c = 0;
  TRecordingList list;
  EXPECT_EQ((std::tuple{list.Add(&a), list.Add(nullptr)}), std::tuple(0, 1));  // nil is stored but not told
  list.Insert(0, &b);
  list.SetItem(2, &c);            // replaces nil: only the newcomer is told
  // Remove leaves [b, c]; c is extracted once.
  EXPECT_EQ((std::tuple{list.Remove(&a), list.Extract(&c), list.Extract(&c)}), std::tuple(1, &c, nullptr));
  using N = std::pair<void*, TListNotification>;
  EXPECT_EQ(list.Log,
            (std::vector<N>{{&a, lnAdded}, {&b, lnAdded}, {&c, lnAdded}, {&a, lnDeleted}, {&c, lnExtracted}}));
  list.Log.clear();
  list.Add(&a);
  list.Clear();  // deletes from the end
  EXPECT_EQ(list.Log, (std::vector<N>{{&a, lnAdded}, {&a, lnDeleted}, {&b, lnDeleted}}));
}

TEST(TList, OrderOperations) {
  int v[4] = {3, 1, 2, 0};
  TList list;
  for (int& x : v) list.Add(&x);
  list.Move(0, 3);
  list.Exchange(0, 1);  // leaves the last where Move put it
  EXPECT_EQ((std::tuple{list.First(), list.Last()}), std::tuple(&v[2], &v[0]));
  list.Sort([](void* x, void* y) { return *static_cast<int*>(x) - *static_cast<int*>(y); });
  std::vector<int> sorted;
  for (void* p : list) sorted.push_back(*static_cast<int*>(p));
  EXPECT_EQ(sorted, (std::vector<int>{0, 1, 2, 3}));
  list.SetCount(6);
  EXPECT_EQ(list.GetItem(5), nullptr);
  list.Pack();
  EXPECT_EQ((std::tuple{list.GetCount(), list.IndexOf(&v[1])}), std::tuple(4, 1));
}

TEST(TList, IndexErrorsCarryTheIndex) {
  TList list;
  EXPECT_EQ(ListErrorOf([&] { list.First(); }), Format(cRtlListIndexError, {0}));
  EXPECT_EQ(ListErrorOf([&] { list.Last(); }), Format(cRtlListIndexError, {-1}));
  list.Add(nullptr);
  const std::tuple<std::function<void()>, const char16_t*, Integer> cases[] = {
      {[&] { list.Delete(5); }, cRtlListIndexError, 5}, {[&] { list.Insert(2, nullptr); }, cRtlListIndexError, 2},
      {[&] { list.Move(0, 1); }, cRtlListIndexError, 1}, {[&] { list.SetCount(-1); }, cRtlListCountError, -1},
      {[&] { list.SetCapacity(0); }, cRtlListCapacityError, 0}};
  for (const auto& [call, message, index] : cases) EXPECT_EQ(ListErrorOf(call), Format(message, {index}));
  list.Insert(1, nullptr);  // inserting at Count appends
  EXPECT_EQ(list.GetCount(), 2);
}

TEST(TObjectList, OwnedItemsAreFreedUnlessExtractedOthersLeftAlone) {
  int freed = 0;
  auto* list = new TObjectList();
  TTracked* b = nullptr;
  for (int id = 1; id <= 3; ++id) list->Add(id == 2 ? (b = new TTracked(&freed, id)) : new TTracked(&freed, id));
  list->Delete(0);
  EXPECT_EQ(freed, 1);
  EXPECT_EQ((std::tuple{list->Extract(b), freed}), std::tuple(b, 1));
  list->SetItem(0, new TTracked(&freed, 4));  // replaces the third, which is freed
  int ids = 0;
  for (TObject* o : *list) ids += static_cast<TTracked*>(o)->Id();
  EXPECT_EQ((std::tuple{freed, ids}), std::tuple(2, 4));
  delete list;
  EXPECT_EQ(freed, 3);
  delete b;
  EXPECT_EQ(freed, 4);

  // Not owning leaves items alone.
  int alone = 0;
  TTracked first(&alone), second(&alone);
  {
    TObjectList borrowed(false);
    for (TTracked* t : {&first, &second}) borrowed.Add(t);
    borrowed.Remove(&first);
    EXPECT_EQ((std::tuple{borrowed.FindInstanceOf(TTracked::StaticClass()),
                          borrowed.FindInstanceOf(TObject::StaticClass()),
                          borrowed.FindInstanceOf(TObject::StaticClass(), false)}),
              std::tuple(0, -1, 0));
  }
  EXPECT_EQ(alone, 0);
}
