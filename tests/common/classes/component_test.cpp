// TPersistent's Assign protocol, TComponent ownership, names and notifications, and GetClass.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "common/message_of.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

using namespace vn;

namespace {

// Records what it is told and counts its own destruction.
class TProbe : public TComponent {
  VN_DECLARE_CLASS(TProbe, TComponent)
 public:
  explicit TProbe(TComponent* AOwner = nullptr, int* AFreed = nullptr) : TComponent(AOwner), FFreed(AFreed) {}
  ~TProbe() override {
    if (FFreed) ++*FFreed;
  }
  using Event = std::pair<TComponent*, TOperation>;
  std::vector<Event> Events;
  TComponent* Watched = nullptr;

 protected:
  void Notification(TComponent* AComponent, TOperation AOperation) override {
    TComponent::Notification(AComponent, AOperation);
    Events.push_back({AComponent, AOperation});
    if (AOperation == opRemove && AComponent == Watched) Watched = nullptr;
  }

 private:
  int* FFreed;
};

// Knows how to put itself into a string list, as a platform class would through AssignTo.
class TPoint2 : public TPersistent {
  VN_DECLARE_CLASS(TPoint2, TPersistent)
 public:
  explicit TPoint2(int AX = 0, int AY = 0) : X(AX), Y(AY) {}
  int X, Y;

 protected:
  void AssignTo(TPersistent* ADest) const override {
    if (auto* list = CastObject<TStrings>(ADest)) {
      list->Clear();
      list->AddPair(u"X", IntToStr(X));
      list->AddPair(u"Y", IntToStr(Y));
      return;
    }
    TPersistent::AssignTo(ADest);
  }
};

using test::MessageOf;

}  // namespace

TEST(TPersistent, AssignFallsBackToAssignToThenFails) {
  TPoint2 point(3, -4);
  TStringList list;
  list.Assign(&point);
  EXPECT_EQ(list.GetText(), u"X=3\r\nY=-4\r\n");

  TPoint2 other;
  TComponent component;
  const std::tuple<TPersistent*, TPersistent*, const char16_t*, const char16_t*> failures[] = {
      {&other, &list, u"TStringList", u"TPoint2"}, {&list, nullptr, u"nil", u"TStringList"},
      {&list, &component, u"TComponent", u"TStringList"}};
  for (const auto& [dest, source, from, to] : failures)
    EXPECT_EQ(MessageOf<EConvertError>([&] { dest->Assign(source); }), Format(cRtlAssignError, {from, to}));
  EXPECT_EQ(point.GetNamePath(), u"TPoint2");
}

TEST(TComponent, OwnerFreesOwnedComponentsLastFirst) {
  int freed = 0;
  auto* owner = new TProbe(nullptr, &freed);
  auto* a = new TProbe(owner, &freed);
  auto* b = new TProbe(owner, &freed);
  new TProbe(a, &freed);  // a grandchild goes with its parent
  EXPECT_EQ((std::tuple{owner->GetComponentCount(), owner->GetComponents(1), b->GetComponentIndex()}),
            std::tuple(2, b, 1));
  EXPECT_EQ(std::vector<TComponent*>(owner->begin(), owner->end()), (std::vector<TComponent*>{a, b}));

  delete b;  // leaves its owner on the way out
  EXPECT_EQ((std::tuple{owner->GetComponentCount(), freed}), std::tuple(1, 1));
  delete owner;
  EXPECT_EQ(freed, 4);
}

TEST(TComponent, NamesAreIdentifiersUniqueWithinTheOwner) {
  TComponent owner;
  auto* a = new TComponent(&owner);
  auto* b = new TComponent(&owner);
  a->SetName(u"Alpha");
  EXPECT_EQ((std::tuple{owner.FindComponent(u"ALPHA"), owner.FindComponent(u"Beta"), owner.FindComponent(u"")}),
            std::tuple(a, nullptr, nullptr));
  EXPECT_EQ(MessageOf<EComponentError>([&] { b->SetName(u"alpha"); }), Format(cRtlDuplicateName, {u"alpha"}));
  EXPECT_EQ(MessageOf<EComponentError>([&] { b->SetName(u"1abc"); }), Format(cRtlInvalidName, {u"1abc"}));
  EXPECT_THROW(b->SetName(u"a b"), EComponentError);
  a->SetName(u"ALPHA");  // a new case of its own name is no clash
  b->SetName(u"_beta2");
  EXPECT_EQ(b->GetNamePath(), u"_beta2");
  b->SetName(u"");
  EXPECT_EQ(owner.FindComponent(u"_beta2"), nullptr);
  EXPECT_THROW(owner.GetComponents(2), EListError);
}

TEST(TComponent, InsertAndRemoveMoveOwnershipAndNotifyFreeNotificationTellsTheSurvivor) {
  TProbe first, second;
  auto* child = new TComponent(&first);
  EXPECT_EQ(first.Events, (std::vector<TProbe::Event>{{child, opInsert}}));

  second.InsertComponent(child);
  EXPECT_EQ((std::tuple{child->GetOwner(), first.Events.back().second}), std::tuple(&second, opRemove));

  (new TComponent(&first))->SetName(u"Dup");
  child->SetName(u"Dup");
  EXPECT_THROW(first.InsertComponent(child), EComponentError);  // the name is taken there
  EXPECT_EQ(child->GetOwner(), &second);

  second.RemoveComponent(child);
  EXPECT_EQ(child->GetOwner(), nullptr);
  delete child;
  // A free notification tells the survivor.
  TProbe watcher;
  int freed = 0;
  auto* target = new TProbe(nullptr, &freed);
  watcher.Watched = target;
  watcher.FreeNotification(target);
  delete target;
  EXPECT_EQ((std::tuple{watcher.Watched, freed}), std::tuple(nullptr, 1));
  // The survivor no longer holds the freed one: its own destruction must not touch it (ASan checks).

  auto* other = new TProbe();
  watcher.FreeNotification(other);
  watcher.RemoveFreeNotification(other);
  watcher.Watched = other;
  delete other;
  EXPECT_EQ(watcher.Watched, other);  // no longer told
}

TEST(ClassRegistry, PlatformClassesAreFoundByName) {
  TObject* created = CreateInstance(GetClass(u"TStringList"));
  ASSERT_NE(created, nullptr);
  EXPECT_EQ((std::tuple{GetClass(u"tstringlist"), FindClass(u"TComponent"), created->ClassName()}),
            std::tuple(TStringList::StaticClass(), TComponent::StaticClass(), u"TStringList"));
  delete created;
}
