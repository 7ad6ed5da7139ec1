// The built-in types of the reflection: scalars, strings, Variant, TValue, TGUID, TObject.
#include "rtti_registry.h"
#include "vnxml/common/currency.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/variant.h"

namespace vn {
namespace detail {
namespace {

template <class T>
TTypeInfo* AddOrdinal(Registry& R, TTypeKind AKind, const char16_t* AName, TOrdType AOrdType, Int64 AMin, Int64 AMax) {
  TTypeInfo* info = R.Add(AKind, AName, u"System", &kOps<T>);
  info->OrdType = AOrdType;
  info->MinValue = AMin;
  info->MaxValue = AMax;
  return info;
}

template <class T>
TTypeInfo* AddFloat(Registry& R, const char16_t* AName, TFloatType AFloatType) {
  TTypeInfo* info = R.Add(tkFloat, AName, u"System", &kOps<T>);
  info->FloatType = AFloatType;
  return info;
}

/// TObject's parameterless Create: makes an object of the class it is called for, as the
/// platform's virtual constructor does.
class DefaultCreate final : public TRttiMethod {
 public:
  DefaultCreate() : TRttiMethod(u"Create", mvPublic, mkConstructor, TypeInfoOf<TObject>()) {}

 protected:
  TValue DoInvoke(void*, TClass AClass, std::span<const TValue>) const override {
    return TValue::FromObject(CreateInstance(AClass ? AClass : TObject::StaticClass()));
  }
};

}  // namespace

void AddBuiltinTypes(Registry& R) {
  BuiltinTypes& b = R.Builtins;
  b.Integer = AddOrdinal<vn::Integer>(R, tkInteger, u"Integer", otSLong, INT32_MIN, INT32_MAX);
  R.AddAlias(b.Integer, u"LongInt");
  b.Cardinal = AddOrdinal<vn::Cardinal>(R, tkInteger, u"Cardinal", otULong, 0, UINT32_MAX);
  R.AddAlias(b.Cardinal, u"LongWord");
  b.ShortInt = AddOrdinal<vn::ShortInt>(R, tkInteger, u"ShortInt", otSByte, INT8_MIN, INT8_MAX);
  b.SmallInt = AddOrdinal<vn::SmallInt>(R, tkInteger, u"SmallInt", otSWord, INT16_MIN, INT16_MAX);
  b.Byte = AddOrdinal<vn::Byte>(R, tkInteger, u"Byte", otUByte, 0, UINT8_MAX);
  b.Word = AddOrdinal<vn::Word>(R, tkInteger, u"Word", otUWord, 0, UINT16_MAX);
  b.Int64 = AddOrdinal<vn::Int64>(R, tkInt64, u"Int64", otSLong, INT64_MIN, INT64_MAX);
  // As on the platform, UInt64's range reads as 0..-1 in signed terms.
  b.UInt64 = AddOrdinal<vn::UInt64>(R, tkInt64, u"UInt64", otULong, 0, -1);
  b.UInt64->IsUnsigned = true;
  b.Single = AddFloat<vn::Single>(R, u"Single", ftSingle);
  b.Double = AddFloat<vn::Double>(R, u"Double", ftDouble);
  b.Extended = AddFloat<vn::Extended>(R, u"Extended", ftExtended);
  b.Currency = AddFloat<vn::Currency>(R, u"Currency", ftCurr);
  b.Comp = AddFloat<vn::Int64>(R, u"Comp", ftComp);
  b.DateTime = AddFloat<vn::TDateTime>(R, u"TDateTime", ftDouble);
  b.Date = AddFloat<vn::TDate>(R, u"TDate", ftDouble);
  b.Time = AddFloat<vn::TTime>(R, u"TTime", ftDouble);
  b.Boolean = AddOrdinal<bool>(R, tkEnumeration, u"Boolean", otUByte, 0, 1);
  b.Boolean->EnumNames = {u"False", u"True"};
  b.Char = AddOrdinal<char16_t>(R, tkWChar, u"Char", otUWord, 0, UINT16_MAX);
  R.AddAlias(b.Char, u"WideChar");
  b.AnsiChar = AddOrdinal<char>(R, tkChar, u"AnsiChar", otUByte, 0, UINT8_MAX);
  b.String = R.Add(tkUString, u"string", u"System", &kOps<vn::UnicodeString>);
  R.AddAlias(b.String, u"UnicodeString");
  R.AddAlias(b.String, u"System.UnicodeString");
  b.AnsiString = R.Add(tkLString, u"AnsiString", u"System", &kOps<vn::AnsiString>);
  b.WideString = R.Add(tkWString, u"WideString", u"System", &kOps<vn::WideString>);
  b.ShortString = R.Add(tkString, u"ShortString", u"System", &kOps<vn::ShortString>);
  b.XMLString = R.Add(tkUString, u"VnXMLString", u"uVnCommon", &kOps<vn::VnXMLString>);
  b.JSONString = R.Add(tkUString, u"VnJSONString", u"uVnCommon", &kOps<vn::VnJSONString>);
  b.Variant = R.Add(tkVariant, u"Variant", u"System", &kOps<vn::Variant>);
  b.Value = R.Add(tkRecord, u"TValue", u"System.Rtti", &kOps<vn::TValue>);
  b.GUID = R.Add(tkRecord, u"TGUID", u"System", &kOps<vn::TGUID>);
  b.Pointer = R.Add(tkPointer, u"Pointer", u"System", &kOps<void*>);
  b.Object = R.ForClass(TObject::StaticClass());
  b.Class = R.Add(tkClassRef, u"TClass", u"System", &kOps<vn::TClass>);
  b.Class->ClassType = TObject::StaticClass();
}

void AddBuiltinMembers() {
  const BuiltinTypes& b = Builtins();
  b.Object->RttiType->AddMethod(std::make_unique<DefaultCreate>())->SetParent(b.Object->RttiType);
  TypeInfoOf<IInterface>();
  AddPlatformClassTypes();
}

}  // namespace detail

// clang-format off
template <> const TTypeInfo* TypeInfoOf<Integer>() { return detail::Builtins().Integer; }
template <> const TTypeInfo* TypeInfoOf<Cardinal>() { return detail::Builtins().Cardinal; }
template <> const TTypeInfo* TypeInfoOf<ShortInt>() { return detail::Builtins().ShortInt; }
template <> const TTypeInfo* TypeInfoOf<SmallInt>() { return detail::Builtins().SmallInt; }
template <> const TTypeInfo* TypeInfoOf<Byte>() { return detail::Builtins().Byte; }
template <> const TTypeInfo* TypeInfoOf<Word>() { return detail::Builtins().Word; }
template <> const TTypeInfo* TypeInfoOf<Int64>() { return detail::Builtins().Int64; }
template <> const TTypeInfo* TypeInfoOf<UInt64>() { return detail::Builtins().UInt64; }
template <> const TTypeInfo* TypeInfoOf<Single>() { return detail::Builtins().Single; }
template <> const TTypeInfo* TypeInfoOf<Double>() { return detail::Builtins().Double; }
template <> const TTypeInfo* TypeInfoOf<Extended>() { return detail::Builtins().Extended; }
template <> const TTypeInfo* TypeInfoOf<Currency>() { return detail::Builtins().Currency; }
template <> const TTypeInfo* TypeInfoOf<bool>() { return detail::Builtins().Boolean; }
template <> const TTypeInfo* TypeInfoOf<char16_t>() { return detail::Builtins().Char; }
template <> const TTypeInfo* TypeInfoOf<char>() { return detail::Builtins().AnsiChar; }
template <> const TTypeInfo* TypeInfoOf<UnicodeString>() { return detail::Builtins().String; }
template <> const TTypeInfo* TypeInfoOf<AnsiString>() { return detail::Builtins().AnsiString; }
template <> const TTypeInfo* TypeInfoOf<ShortString>() { return detail::Builtins().ShortString; }
template <> const TTypeInfo* TypeInfoOf<VnXMLString>() { return detail::Builtins().XMLString; }
template <> const TTypeInfo* TypeInfoOf<VnJSONString>() { return detail::Builtins().JSONString; }
template <> const TTypeInfo* TypeInfoOf<Variant>() { return detail::Builtins().Variant; }
template <> const TTypeInfo* TypeInfoOf<TValue>() { return detail::Builtins().Value; }
template <> const TTypeInfo* TypeInfoOf<TGUID>() { return detail::Builtins().GUID; }
template <> const TTypeInfo* TypeInfoOf<void*>() { return detail::Builtins().Pointer; }
template <> const TTypeInfo* TypeInfoOf<TClass>() { return detail::Builtins().Class; }
template <> const TTypeInfo* TypeInfoOf<TObject>() { return detail::Builtins().Object; }
template <> const TTypeInfo* TypeInfoOf<TObject*>() { return detail::Builtins().Object; }
// clang-format on

}  // namespace vn
