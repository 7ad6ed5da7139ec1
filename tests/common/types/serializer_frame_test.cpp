// The serializer frame: finding and creating serializers, the one-call functions, their
// messages, the instance a serializer takes, and parameters down a chain of serializers.
#include <gtest/gtest.h>

#include <functional>
#include <tuple>
#include <utility>

#include "common/message_of.h"
#include "types_domain.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/interfaced_object.h"
#include "vnxml/common/utf.h"
#include "vnxml/serializer.h"

namespace {

using namespace vn;
using namespace typesdomain;

// Formats 2 and 3 belong to no notation, so nothing registered here reaches XML or JSON.
constexpr auto kFake = static_cast<TVnDataSerializationFormatType>(3);
constexpr auto kEmpty = static_cast<TVnDataSerializationFormatType>(2);

/// Writes "<type name>:<whether the instance is set>"; counts its live instances.
class TFakeSerializer : public TVnCustomSerializer, public IVnSerializer {
  VN_DECLARE_CLASS(TFakeSerializer, TVnCustomSerializer)
  VN_VNOBJECT_INTERFACES(TVnCustomSerializer, IVnSerializer)
  VN_CUSTOM_SERIALIZER_SLOTS
 public:
  TFakeSerializer() { ++Live; }
  ~TFakeSerializer() override { --Live; }
  TVnDataSerializationFormatType Format() const override { return kFake; }
  TVnSerializedData Serialize() override {
    const UnicodeString type = FInstanceTypeInfo ? FInstanceTypeInfo->Name() : UnicodeString(u"nil");
    return UnicodeToUtf8(type + (FInstancePtr ? u":set" : u":nil"));
  }
  void Serialize(TStream&) override {}
  static inline int Live = 0;
};

/// A plain serializer to probe Create and the parameters with; never registered.
class TProbe : public TVnCustomSerializer {
  VN_DECLARE_CLASS(TProbe, TVnCustomSerializer)
 public:
  TVnDataSerializationFormatType Format() const override { return kFake; }
};

void RegisterFakes() {
  static const bool done =
      (VnRegisterSerializer(kFake, TBase::StaticClass(), TFakeSerializer::StaticClass(), nullptr), true);
  (void)done;
}

TEST(SerializerFrame, OneCallSerializesAndFreesTheSerializer) {
  RegisterFakes();
  EXPECT_EQ(VnFindSerializerClassEx(kFake, TVnTypes::GetTypeInfo(TLeaf::StaticClass())),
            TFakeSerializer::StaticClass());
  TDerived object;
  EXPECT_EQ((std::tuple{VnSerialize(kFake, &object), VnSerialize(kFake, &object, TypeInfoOf<TBase>()),
                        VnSerialize(kFake, TValue::FromObject(nullptr, TypeInfoOf<TDerived>())),
                        TFakeSerializer::Live}),
            std::tuple("TDerived:set", "TBase:set", "TDerived:nil", 0));

  // A serializer kept by the caller takes parameters before it runs.
  IPtr<IVnSerializer> s = VnCreateSerializer(kFake, TValue::FromObject(&object));
  s->SetParam(u"excluderoot", u"true");
  EXPECT_EQ((std::tuple{s->GetInstancePtr(), TFakeSerializer::Live}), std::tuple(&object, 1));
  s = nullptr;
  EXPECT_EQ(TFakeSerializer::Live, 0);
}

TEST(SerializerFrame, FailuresRaiseTheFormatsMessageAndFreeTheSerializer) {
  RegisterFakes();
  TBase object;
  // The fourth: the pair exists, but without a deserializer.
  const std::pair<std::function<void()>, UnicodeString> cases[] = {
      {[&] { VnSerialize(kEmpty, TValue::FromObject(&object)); }, Format(cVnNoSerializerForValue, {u"Format2"})},
      {[&] { VnSerialize(kEmpty, &object, TypeInfoOf<TBase>()); },
       Format(cVnNoSerializerForType, {u"Format2", u"TBase"})},
      {[&] { VnCreateDeserializer(kEmpty, TValue::From<Integer>(1)); },
       Format(cVnNoDeserializerForValue, {u"Format2"})},
      {[&] { VnDeserialize(kFake, &object, TypeInfoOf<TBase>(), TVnSerializedData("x")); },
       Format(cVnNoDeserializerForType, {u"Format3", u"TBase"})},
      {[&] { VnSerializeEx(kEmpty, nullptr, nullptr); }, Format(cVnNoSerializerForType, {u"Format2", u"nil"})}};
  for (const auto& [call, message] : cases) EXPECT_EQ(test::MessageOf<Exception>(call), message);
  EXPECT_EQ(TFakeSerializer::Live, 0);

  // A failing Create frees the new serializer.
  VnRegisterSerializer(kFake, TypeInfoOf<IInterface>(), TFakeSerializer::StaticClass(), nullptr);
  EXPECT_THROW(VnSerialize(kFake, TValue::From(IPtr<IInterface>())), Exception);
  EXPECT_EQ(TFakeSerializer::Live, 0);
}

TEST(SerializerFrame, CreateTakesTheRightInstance) {
  TBase object;
  TProbe number, text, instance, set;
  number.Create(TValue::From<Integer>(42));
  ASSERT_NE(number.GetInstancePtr(), nullptr);
  EXPECT_EQ((std::tuple{*static_cast<Integer*>(number.GetInstancePtr()), number.GetInstanceTypeInfo()}),
            std::tuple(42, TVnTypes::GetTypeInfo<Integer>()));
  text.Create(TValue::From<UnicodeString>(u"text"));
  instance.Create(TValue::FromObject(&object));
  EXPECT_EQ((std::tuple{text.GetInstancePtr(), instance.GetInstancePtr()}), std::tuple(nullptr, &object));
  // From an instance, a set is copied in and read from the copy afterwards.
  TFruits fruits{frPear};
  set.Create(&fruits, TypeInfoOf<TFruits>());
  EXPECT_EQ((std::tuple{set.GetValue().AsOrdinal(), set.GetInstancePtr()}),
            std::tuple(2, set.GetValue().GetReferenceToRawData()));
  EXPECT_EQ(test::MessageOf<Exception>([] { TProbe().Create(TValue::From(IPtr<IInterface>())); }),
            Format(cVnValueCannotBeSerialized, {u"tkInterface"}));
}

TEST(SerializerFrame, ParametersFallBackToTheParent) {
  TProbe root, child;
  child.SetParent(&root);
  TStringList owner;
  root.SetParam(u"xsd-prefix", u"xs");
  root.SetParam(u"xmlns", u"urn:a");
  root.SetObjParam(u"Owner", &owner);
  child.SetParam(u"xmlns", u"urn:b");

  EXPECT_EQ((std::tuple{child.GetParam(u"xsd-prefix"), child.GetParam(u"xmlns"), child.GetParam(u"missing")}),
            std::tuple(u"xs", u"urn:b", u""));
  EXPECT_EQ((std::tuple{child.HasParam(u"xsd-prefix"), child.HasParam(u"Owner"), child.HasParam(u"missing"),
                        child.GetObjParam(u"Owner"), child.GetObjParam(u"Parent")}),
            std::tuple(true, true, false, &owner, nullptr));

  // SetParams copies names, values and objects.
  TStringList params;
  params.SetValues(u"excludenamespaces", u"true");
  params.AddObject(u"Parent", &owner);
  child.SetParams(params);
  EXPECT_EQ((std::tuple{child.GetParam(u"excludenamespaces"), child.GetObjParam(u"Parent"),
                        root.GetObjParam(u"Parent")}),
            std::tuple(u"true", &owner, nullptr));
}

}  // namespace
