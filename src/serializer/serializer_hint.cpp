// SerializerHint: finding a hint among attributes and resolving the helper classes it names.
#include "vnxml/serializer_hints.h"

#include "vnxml/common/vn_types.h"
#include "vnxml/serializer_helpers.h"

namespace vn {

namespace {

TClass HelperClass(const UnicodeString& AName, TClass ABase, const char16_t* AWrongBase) {
  const TVnTypeInfo* type = TVnTypes::GetTypeInfo(AName, tntQualifiedName, true, mtkUnknown);
  VnAssert(type != nullptr && type->Handle()->ClassType != nullptr, cVnHelperClassNotRegistered);
  TClass found = type->Handle()->ClassType;
  if (!ClassInheritsFrom(found, ABase)) throw Exception(UnicodeString(AWrongBase));
  return found;
}

}  // namespace

TClass SerializerHint::GetSerializerHelperClass() const {
  return HelperClass(FValue, TVnSerializerHelper::StaticClass(), cVnNotASerializerHelper);
}

TClass SerializerHint::GetDeserializerHelperClass() const {
  return HelperClass(FValue, TVnDeserializerHelper::StaticClass(), cVnNotADeserializerHelper);
}

bool GetSerializerHint(std::span<TCustomAttribute* const> AAttributes, TSerializerHintOption AOption,
                       SerializerHint*& AHint) {
  for (TCustomAttribute* attribute : AAttributes) {
    auto* hint = CastObject<SerializerHint>(attribute);
    if (hint && hint->FOption == AOption) {
      AHint = hint;
      return true;
    }
  }
  AHint = nullptr;
  return false;
}

bool GetSerializerHint(const TRttiObject* AObject, TSerializerHintOption AOption, SerializerHint*& AHint) {
  if (!AObject) {
    AHint = nullptr;
    return false;
  }
  return GetSerializerHint(std::span<TCustomAttribute* const>(AObject->GetAttributes()), AOption, AHint);
}

}  // namespace vn
