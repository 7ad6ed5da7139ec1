// Counted objects: self-destruction, SetAutoDestroy, shared counts across interfaces, Assign,
// and EVnException's code.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "common/message_of.h"
#include "vnxml/common/interfaced_object.h"
#include "vnxml/common/vn_component.h"
#include "vnxml/common/vn_exception.h"
#include "vnxml/common/vn_object.h"

namespace vn {
namespace {

struct IGreeter : IVnObject {
  static constexpr TGUID IID = TGUID::Parse("0C1D4A4E-2B7C-4E57-9B0D-6A3A1F0E5C11");
  virtual UnicodeString Greet() = 0;
};
struct ICounter : IInterface {
  static constexpr TGUID IID = TGUID::Parse("5D0C2E0B-7A61-4B0E-8F5A-0E3C9B7D2A44");
  virtual int Next() = 0;
};

// Records its destruction in a flag owned by the test.
class TGreeter : public TVnObject, public IGreeter, public ICounter {
  VN_DECLARE_CLASS(TGreeter, TVnObject)
  VN_VNOBJECT_INTERFACES(TVnObject, IGreeter, ICounter)
 public:
  explicit TGreeter(bool* ADestroyed = nullptr) : FDestroyed(ADestroyed) {}
  ~TGreeter() override {
    if (FDestroyed) *FDestroyed = true;
  }
  UnicodeString Greet() override { return u"hello"; }
  int Next() override { return ++FNext; }

 private:
  bool* FDestroyed;
  int FNext = 0;
};

TEST(VnObject, LastInterfaceFreesTheObjectThroughAnyOfItsInterfacesUnlessAutoDestroyIsOff) {
  bool destroyed = false;
  {
    IPtr<IGreeter> greeter(new TGreeter(&destroyed));
    IPtr<ICounter> counter = greeter.As<ICounter>();
    IPtr<IVnObject> base = counter.As<IVnObject>();
    IPtr<IInterface> unknown = greeter.As<IInterface>();
    ASSERT_TRUE(counter && base && unknown);
    auto* object = static_cast<TGreeter*>(greeter->Implementor());
    // One count, whichever interface holds it.
    EXPECT_EQ((std::tuple{object->GetRefCount(), base->Implementor(), VnImplementor(counter.Get()), counter->Next()}),
              std::tuple(4, object, object, 1));
    greeter = nullptr;
    counter = nullptr;
    base = nullptr;
    EXPECT_FALSE(destroyed);
  }
  EXPECT_TRUE(destroyed);

  // With auto-destruction off the object is left to its creator.
  bool freed = false;
  auto* object = new TGreeter(&freed);
  object->SetAutoDestroy(false);
  {
    IPtr<IGreeter> held(object);
    IPtr<IVnObject> other = held.As<IVnObject>();
  }
  EXPECT_EQ((std::tuple{freed, object->GetRefCount()}), std::tuple(false, 0));
  // Turning it back on doesn't free by itself; the next count that reaches 0 does.
  object->SetAutoDestroy(true);
  EXPECT_FALSE(freed);
  { IPtr<IGreeter> again(object); }
  EXPECT_TRUE(freed);
}

TEST(VnObject, UnknownInterfacesAndPlainObjects) {
  IPtr<IVnObject> plain(new TVnObject);
  EXPECT_FALSE(plain.As<IGreeter>());
  void* obj = reinterpret_cast<void*>(1);
  EXPECT_EQ((std::tuple{plain->QueryInterface(ICounter::IID, &obj), obj}), std::tuple(E_NOINTERFACE, nullptr));
  EXPECT_EQ(std::tuple(VnImplementor(plain.Get()), VnImplementor(nullptr)), std::tuple(plain->Implementor(), nullptr));

  // An object without IVnObject has no implementor to give.
  IPtr<IInterface> interfaced(new TInterfacedObject);
  auto* object = static_cast<TInterfacedObject*>(interfaced.Get());
  EXPECT_EQ((std::tuple{VnImplementor(interfaced.Get()), object->GetRefCount()}), std::tuple(nullptr, 1));
}

class TPoint : public TVnObjectEx {
  VN_DECLARE_CLASS(TPoint, TVnObjectEx)
 public:
  int X = 0;

 protected:
  void AssignTo(TObject* ADest) const override {
    if (auto* dest = CastObject<TPoint>(ADest)) {
      dest->X = X;
      return;
    }
    TVnObjectEx::AssignTo(ADest);
  }
};
class TOther : public TVnObjectEx {
  VN_DECLARE_CLASS(TOther, TVnObjectEx)
};

TEST(VnObjectEx, AssignCopiesThroughAssignToOrNamesBothClasses) {
  TPoint a, b;
  a.X = 7;
  b.Assign(&a);
  EXPECT_EQ(b.X, 7);

  TOther other;
  TObject plain;
  const std::tuple<TVnObjectEx*, const TObject*, const char16_t*> failures[] = {
      {&other, &a, u"Cannot assign a TPoint to a TOther"}, {&a, &other, u"Cannot assign a TOther to a TPoint"},
      {&a, nullptr, u"Cannot assign a nil to a TPoint"}, {&a, &plain, u"Cannot assign a TObject to a TPoint"}};
  for (const auto& [dest, source, message] : failures)
    EXPECT_EQ(test::MessageOf<EConvertError>([&] { dest->Assign(source); }), message);
}

TEST(VnComponent, CountsLikeAVnObjectAndLeavesItsOwnerWhenFreed) {
  TComponent owner;
  auto* component = new TVnComponent(&owner);
  {
    IPtr<IVnObject> held(component);
    EXPECT_EQ((std::tuple{held->Implementor(), owner.GetComponentCount()}), std::tuple(component, 1));
  }
  // The count freed it, and its destructor took it out of the owner's list.
  EXPECT_EQ(owner.GetComponentCount(), 0);

  auto* kept = new TVnComponent(&owner);
  kept->SetAutoDestroy(false);
  { IPtr<IVnObject> held(kept); }
  EXPECT_EQ(owner.GetComponentCount(), 1);  // the owner frees it at the end of the test
}

VN_EXCEPTION(EVnTestError, EVnException)

TEST(VnException, MessageFormatAndCode) {
  // A format with one integer argument stays a format, not a code.
  const EVnException plain(u"plain"), formatted(u"%d items", {5});
  const EVnTestError coded(42, u"at %s", {u"x"});
  EXPECT_EQ((std::tuple{plain.Message(), plain.GetCode(), formatted.Message(), formatted.GetCode()}),
            std::tuple(u"plain", 0, u"5 items", 0));
  EXPECT_EQ((std::tuple{coded.Message(), coded.GetCode(), std::string(coded.what()), coded.ClassName()}),
            std::tuple(u"at x", 42, "at x", u"EVnTestError"));
}

}  // namespace
}  // namespace vn
