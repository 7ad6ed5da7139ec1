// custom_simple_type.h: TVnCustomSimpleType, the base of objects that wrap one simple value
// (unit rVnCommon). The serializers write such an object as its value alone and read it back
// through SetAsValue, so a wrapper costs a member no more text than the value it holds.
#pragma once

#include <memory>

#include "vnxml/common/rtti_register.h"
#include "vnxml/common/variant.h"
#include "vnxml/common/vn_types.h"

namespace vn {

class TVnCustomSimpleType : public TObject {
  VN_DECLARE_CLASS(TVnCustomSimpleType, TObject)
 public:
  /// The wrapped value; Empty (or Null) when the wrapper holds nothing. The base holds nothing.
  virtual void GetAsVariant(Variant& AValue) const { AValue = Variant(); }
  /// The type of the wrapped value. It belongs to the class: every instance of a class answers
  /// the same, since a nil member is written under its declared class's type. The base: string.
  virtual const TVnTypeInfo* SimpleTypeInfo() const { return TVnTypes::GetTypeInfo<UnicodeString>(); }
  /// Takes a value of SimpleTypeInfo's type (or Empty). The base ignores it.
  virtual void SetAsValue(const TValue& AValue) { (void)AValue; }

  /// SimpleTypeInfo of the class AClass, asked of a default instance; nullptr when AClass is no
  /// wrapper. An abstract wrapper class raises EAbstractError.
  static const TVnTypeInfo* SimpleTypeInfoOf(TClass AClass) {
    if (!AClass || !ClassInheritsFrom(AClass, StaticClass())) return nullptr;
    std::unique_ptr<TObject> probe(CreateInstance(AClass));
    auto* wrapper = CastObject<TVnCustomSimpleType>(probe.get());
    return wrapper ? wrapper->SimpleTypeInfo() : nullptr;
  }
};
VN_REGISTER_TYPE(TVnCustomSimpleType, u"rVnCommon") {}

}  // namespace vn
