// Host types of the frame tests: a small class tree, a generic container, a prefixed
// enumeration, hinted members, and helpers registered under qualified names.
#pragma once

#include "common/message_of.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/serializer.h"

namespace framedomain {

using namespace vn;

using test::MessageOf;

// clang-format off
class TAnimal : public TObject { VN_DECLARE_CLASS(TAnimal, TObject) };
class TDog : public TAnimal { VN_DECLARE_CLASS(TDog, TAnimal) };
class TPuppy : public TDog { VN_DECLARE_CLASS(TPuppy, TDog) };
class TStone : public TObject { VN_DECLARE_CLASS(TStone, TObject) };
/// Registered under its generic name, "TCage<uFrame.TDog>".
class TDogCage : public TObject { VN_DECLARE_CLASS(TDogCage, TObject) };
class TAnimalWriter : public TVnSerializerHelper { VN_DECLARE_CLASS(TAnimalWriter, TVnSerializerHelper) };
class TDogWriter : public TVnSerializerHelper { VN_DECLARE_CLASS(TDogWriter, TVnSerializerHelper) };
class TCageWriter : public TVnSerializerHelper { VN_DECLARE_CLASS(TCageWriter, TVnSerializerHelper) };
class TAnimalReader : public TVnDeserializerHelper { VN_DECLARE_CLASS(TAnimalReader, TVnDeserializerHelper) };
class TCageReader : public TVnDeserializerHelper { VN_DECLARE_CLASS(TCageReader, TVnDeserializerHelper) };
// clang-format on
VN_REGISTER_TYPE(TAnimal, u"uFrame") {}
VN_REGISTER_TYPE(TDog, u"uFrame") {}
VN_REGISTER_TYPE(TDogCage, u"uFrame") { b.Name(GenericTypeName(u"TCage", {TypeInfoOf<TDog>()}), u"uFrame"); }
VN_REGISTER_TYPE(TAnimalWriter, u"uFrame") {}
VN_REGISTER_TYPE(TAnimalReader, u"uFrame") {}

enum TColor : uint8_t { coRed, coGreen, coBlue };
VN_REGISTER_TYPE(TColor, u"uFrame") {
  b.Values({u"coRed", u"coGreen", u"coBlue"}).TypeAttr<SerializerHint>(shoEnumPrefix, u"co");
}
using TColors = TSet<TColor>;
VN_REGISTER_TYPE(TColors, u"uFrame") {}

struct THinted { Integer Plain = 0, Named = 0; };
VN_REGISTER_TYPE(THinted, u"uFrame") {
  b.TypeAttr<SerializerHint>(shoDoNotSerialize).Public(u"Plain", &THinted::Plain)
      .Public(u"Named", &THinted::Named).Attr<SerializerHint>(shoName, u"first").Attr<SerializerHint>(shoRequired)
      .Attr<SerializerHint>(shoName, u"second").Attr<SerializerHint>(shoSerializerHelper, u"uFrame.TAnimalWriter")
      .Attr<SerializerHint>(shoDeserializerHelper, u"uFrame.TAnimalWriter");
}

}  // namespace framedomain
