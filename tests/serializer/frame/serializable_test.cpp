// Host objects that steer their own serialization, the operations of every object, and the
// one-call functions that create objects from text.
#include <gtest/gtest.h>

#include <thread>

#include "frame_domain.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/utf.h"

namespace {

using namespace vn;
using namespace framedomain;

constexpr auto kEmpty = static_cast<TVnDataSerializationFormatType>(2);
constexpr auto kFake = static_cast<TVnDataSerializationFormatType>(4);

/// Writes the parameters the object operations set.
class TEchoSerializer : public TVnCustomSerializer, public IVnSerializer {
  VN_DECLARE_CLASS(TEchoSerializer, TVnCustomSerializer)
  VN_VNOBJECT_INTERFACES(TVnCustomSerializer, IVnSerializer)
  VN_CUSTOM_SERIALIZER_SLOTS
 public:
  TVnDataSerializationFormatType Format() const override { return dsfXML; }
  TVnSerializedData Serialize() override {
    return UnicodeToUtf8(u"xmlns=" + GetParam(u"xmlns") + u";exclude=" + GetParam(u"excludenamespaces"));
  }
  void Serialize(TStream&) override {}
};

/// Creates an object of the class its text names and records what the frame handed it.
class TNamingDeserializer : public TVnCustomSerializer, public IVnDeserializer {
  VN_DECLARE_CLASS(TNamingDeserializer, TVnCustomSerializer)
  VN_VNOBJECT_INTERFACES(TVnCustomSerializer, IVnDeserializer)
  VN_CUSTOM_SERIALIZER_SLOTS
 public:
  TVnDataSerializationFormatType Format() const override { return kFake; }
  void SetCreatedObjects(TObjectList* AList) override { LastList = AList; }
  TObjectList* GetCreatedObjects() override { return LastList; }
  void Deserialize(const TVnSerializedData& AData) override {
    LastOwner = GetObjParam(u"Owner");
    LastParent = GetObjParam(u"Parent");
    if (!FInstancePtr)
      FInstancePtr = CreateInstance(TVnTypes::GetTypeInfo(Utf8ToUnicode(AData), tntSchemaName, true, mtkUnknown)
                                        ->Handle()
                                        ->ClassType);
  }
  void Deserialize(TStream&) override {}
  static inline TObjectList* LastList = nullptr;
  static inline TObject* LastOwner = nullptr;
  static inline TObject* LastParent = nullptr;
};

class TEcho : public TObject {
  VN_DECLARE_CLASS(TEcho, TObject)
};

/// Tells from another thread whether the object's critical section is taken.
template <class T>
class TLockProbe : public T {
 public:
  bool LockedElsewhere() {
    bool free = false;
    std::thread([&] {
      free = this->FCritSection.TryEnter();
      if (free) this->FCritSection.Leave();
    }).join();
    return !free;
  }
};

template <class T>
void ExpectLockHeldWhileRunning() {
  TLockProbe<T> object;
  object.SetAutoDestroy(false);
  void* found = nullptr;
  ASSERT_EQ(object.QueryInterface(IVnSerializerHelper::IID, &found), S_OK);
  auto* writer = static_cast<IVnSerializerHelper*>(found);
  ASSERT_EQ(object.QueryInterface(IVnDeserializerHelper::IID, &found), S_OK);
  auto* reader = static_cast<IVnDeserializerHelper*>(found);

  bool handled = false;
  writer->BeforeSerialize(nullptr, handled);
  EXPECT_TRUE(object.GetSerializing() && object.LockedElsewhere());
  EXPECT_FALSE(handled);
  writer->AfterSerialize(nullptr);
  EXPECT_FALSE(object.GetSerializing() || object.LockedElsewhere());
  reader->BeforeDeserialize(nullptr);
  EXPECT_TRUE(object.GetDeserializing() && object.LockedElsewhere());
  reader->AfterDeserialize(nullptr);
  EXPECT_FALSE(object.GetDeserializing() || object.LockedElsewhere());

  UnicodeString uri, name = u"x", type;
  EXPECT_TRUE(writer->CanSerializeChild(nullptr, nullptr, nullptr, name));
  EXPECT_EQ(reader->CanDeserialize(nullptr, uri, name, type), desNo);
  writer->_Release();
  reader->_Release();
}

TEST(Serializable, CriticalSectionSpansEachRun) {
  ExpectLockHeldWhileRunning<TVnSerializableObject>();
  ExpectLockHeldWhileRunning<TVnSerializableComponent>();
}

TEST(Serializable, ObjectOperations) {
  VnRegisterSerializer(dsfXML, TEcho::StaticClass(), TEchoSerializer::StaticClass(), nullptr);
  TEcho echo;
  EXPECT_EQ(AsXML(echo), "xmlns=;exclude=");
  EXPECT_EQ(AsXML(echo, u"urn:shop"), "xmlns=urn:shop;exclude=");
  EXPECT_EQ(AsXML(echo, u"urn:shop", true), "xmlns=;exclude=true");
  EXPECT_EQ(Serialize(echo, dsfXML), "xmlns=;exclude=");

  // A format with nothing registered says so.
  try {
    Serialize(echo, kEmpty);
    ADD_FAILURE();
  } catch (const Exception& e) {
    EXPECT_EQ(e.Message(), u"There is no registered serializer for \"Format2\"!");
  }
  try {
    Deserialize(echo, kEmpty, "<TEcho/>");
    ADD_FAILURE();
  } catch (const Exception& e) {
    EXPECT_EQ(e.Message(), u"There is no registered Format2 deserializer for TEcho!");
  }
}

TEST(Serializable, CreateFromTextAndCreatedObjects) {
  VnRegisterSerializer(kFake, static_cast<const TTypeInfo*>(nullptr), nullptr, TNamingDeserializer::StaticClass());
  std::unique_ptr<TObject> dog = VnCreateFrom(kFake, "TDog");
  ASSERT_NE(dog, nullptr);
  EXPECT_EQ(dog->ClassType(), TDog::StaticClass());
  EXPECT_EQ(TNamingDeserializer::LastOwner, nullptr);

  TComponent owner, parent;
  std::unique_ptr<TObject> animal(VnCreateFrom(kFake, &owner, &parent, "TAnimal"));
  EXPECT_EQ(animal->ClassType(), TAnimal::StaticClass());
  EXPECT_EQ(TNamingDeserializer::LastOwner, &owner);
  EXPECT_EQ(TNamingDeserializer::LastParent, &parent);
  std::unique_ptr<TObject> owned(VnCreateFrom(kFake, &owner, "TDog"));
  EXPECT_EQ(TNamingDeserializer::LastParent, nullptr);

  // Reading into an existing object gives that object back; the list goes to the deserializer.
  TObjectList created(false);
  TDog existing;
  EXPECT_EQ(VnDeserialize(kFake, TValue::FromObject(&existing), "TDog", &created), &existing);
  EXPECT_EQ(TNamingDeserializer::LastList, &created);
}

}  // namespace
