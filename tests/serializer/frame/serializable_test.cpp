// Host objects that steer their own serialization, the operations of every object, and
// creation from text.
#include <gtest/gtest.h>

#include <thread>

#include "frame_domain.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/utf.h"

namespace {

using namespace vn;
using namespace framedomain;

constexpr auto kFake = static_cast<TVnDataSerializationFormatType>(4);

/// Writes the parameters it was given; reads by creating the class its text names. Records
/// what the frame handed it.
class TRecorder : public TVnCustomSerializer, public IVnSerializer, public IVnDeserializer {
  VN_DECLARE_CLASS(TRecorder, TVnCustomSerializer)
  VN_VNOBJECT_INTERFACES(TVnCustomSerializer, IVnSerializer, IVnDeserializer)
  VN_CUSTOM_SERIALIZER_SLOTS
 public:
  TVnDataSerializationFormatType Format() const override { return kFake; }
  TVnSerializedData Serialize() override {
    return UnicodeToUtf8(GetParam(u"xmlns") + u";" + GetParam(u"excludenamespaces"));
  }
  void Serialize(TStream&) override {}
  void SetCreatedObjects(TObjectList* AList) override { List = AList; }
  TObjectList* GetCreatedObjects() override { return List; }
  void Deserialize(const TVnSerializedData& AData) override {
    Owner = GetObjParam(u"Owner");
    Parent = GetObjParam(u"Parent");
    if (!FInstancePtr) FInstancePtr = CreateInstance(FindTypeInfo(Utf8ToUnicode(AData))->ClassType);
  }
  void Deserialize(TStream&) override {}
  static inline TObjectList* List = nullptr;
  static inline TObject *Owner = nullptr, *Parent = nullptr;
};

class TEcho : public TObject { VN_DECLARE_CLASS(TEcho, TObject) };

/// Tells from another thread whether the object's critical section is taken.
template <class T>
struct TLockProbe : T {
  bool LockedElsewhere() {
    bool free = false;
    std::thread([&] {
      if ((free = this->FCritSection.TryEnter())) this->FCritSection.Leave();
    }).join();
    return !free;
  }
};

template <class T>
void ExpectLockHeldWhileRunning() {
  TLockProbe<T> object;
  object.SetAutoDestroy(false);
  IPtr<IVnSerializerHelper> writer(&object);
  IPtr<IVnDeserializerHelper> reader(&object);
  bool handled = false;
  writer->BeforeSerialize(nullptr, handled);
  EXPECT_TRUE(object.GetSerializing() && object.LockedElsewhere() && !handled);
  writer->AfterSerialize(nullptr);
  EXPECT_FALSE(object.GetSerializing() || object.LockedElsewhere());
  reader->BeforeDeserialize(nullptr);
  EXPECT_TRUE(object.GetDeserializing() && object.LockedElsewhere());
  reader->AfterDeserialize(nullptr);
  EXPECT_FALSE(object.GetDeserializing() || object.LockedElsewhere());
}

TEST(Serializable, CriticalSectionSpansEachRun) {
  ExpectLockHeldWhileRunning<TVnSerializableObject>();
  ExpectLockHeldWhileRunning<TVnSerializableComponent>();
}

TEST(Serializable, ObjectOperationsAndCreationFromText) {
  VnRegisterSerializer(dsfXML, TEcho::StaticClass(), TRecorder::StaticClass(), nullptr);
  TEcho echo;
  EXPECT_EQ(std::tuple(AsXML(echo), AsXML(echo, u"urn:shop"), AsXML(echo, u"urn:shop", true)),
            std::tuple(";", "urn:shop;", ";true"));
  EXPECT_EQ(MessageOf([&] { Deserialize(echo, dsfXML, "<TEcho/>"); }),
            u"There is no registered XML deserializer for TEcho!");

  VnRegisterSerializer(kFake, static_cast<const TTypeInfo*>(nullptr), nullptr, TRecorder::StaticClass());
  std::unique_ptr<TObject> dog = VnCreateFrom(kFake, "uFrame.TDog");
  TComponent owner, parent;
  std::unique_ptr<TObject> animal(VnCreateFrom(kFake, &owner, &parent, "uFrame.TAnimal"));
  EXPECT_EQ(std::tuple(dog->ClassType(), animal->ClassType(), TRecorder::Owner, TRecorder::Parent),
            std::tuple(TDog::StaticClass(), TAnimal::StaticClass(), &owner, &parent));
  // Reading into an existing object gives that object back; the list goes to the deserializer.
  TObjectList created(false);
  EXPECT_EQ(VnDeserialize(kFake, TValue::FromObject(&echo), "x", &created), &echo);
  EXPECT_EQ(TRecorder::List, &created);
}

}  // namespace
