// TValue conversions: casts between types, Variant both ways, display text; enumeration and
// set names.
#include "rtti_registry.h"
#include "rtti_value_internal.h"
#include "vnxml/common/currency.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/variant.h"

namespace vn {

namespace {

bool IsOrdinalKind(TTypeKind AKind) {
  switch (AKind) {
    case tkInteger: case tkChar: case tkWChar: case tkEnumeration: case tkInt64: return true;
    default: return false;
  }
}

bool IsIntegerKind(TTypeKind AKind) { return AKind == tkInteger || AKind == tkInt64; }

/// Ordinal to ordinal: integers among themselves and to or from enumerations, chars among
/// themselves; an enumeration never becomes another enumeration, a char never a number.
bool CastOrdinal(const TValue& ASource, const TTypeInfo* ATarget, TValue& AResult) {
  const TTypeInfo* source = ASource.TypeInfo();
  const bool sourceChar = source->Kind == tkChar || source->Kind == tkWChar;
  const bool targetChar = ATarget->Kind == tkChar || ATarget->Kind == tkWChar;
  if (sourceChar != targetChar) return false;
  if (source->Kind == tkEnumeration && ATarget->Kind == tkEnumeration) return false;
  const Int64 value = ASource.AsOrdinal();
  // A UInt64 above the Int64 range only fits another UInt64.
  if (source->IsUnsigned && value < 0) return false;
  if (ATarget->IsUnsigned && value < 0) return false;
  if (!detail::OrdinalInRange(ATarget, value)) return false;
  AResult = TValue::FromOrdinal(ATarget, value);
  return true;
}

bool ToVariant(const TValue& AValue, Variant& AResult) {
  const TTypeInfo* t = AValue.TypeInfo();
  if (!t) {
    AResult = Variant();
    return true;
  }
  const void* p = AValue.GetReferenceToRawData();
  const detail::BuiltinTypes& b = detail::Builtins();
  switch (t->Kind) {
    case tkInteger: {
      const Int64 v = detail::ReadOrdinal(p, t);
      switch (t->OrdType) {
        case otSByte: AResult = Variant(static_cast<signed char>(v)); break;
        case otUByte: AResult = Variant(static_cast<unsigned char>(v)); break;
        case otSWord: AResult = Variant(static_cast<short>(v)); break;
        case otUWord: AResult = Variant(static_cast<unsigned short>(v)); break;
        case otSLong: AResult = Variant(static_cast<int>(v)); break;
        case otULong: AResult = Variant(static_cast<unsigned>(v)); break;
      }
      return true;
    }
    case tkInt64:
      if (t->IsUnsigned)
        AResult = Variant(static_cast<unsigned long long>(*static_cast<const UInt64*>(p)));
      else
        AResult = Variant(static_cast<long long>(*static_cast<const Int64*>(p)));
      return true;
    case tkEnumeration:
      if (t == b.Boolean)
        AResult = Variant(*static_cast<const bool*>(p));
      else
        AResult = Variant(static_cast<int>(detail::ReadOrdinal(p, t)));
      return true;
    case tkChar: case tkWChar: case tkUString:
      AResult = Variant(detail::ReadString(p, t));
      return true;
    case tkWString:
      AResult = Variant::FromOleStr(detail::ReadString(p, t));
      return true;
    case tkLString: AResult = Variant(*static_cast<const AnsiString*>(p)); return true;
    case tkString: AResult = Variant(static_cast<const std::string&>(*static_cast<const ShortString*>(p))); return true;
    case tkFloat:
      if (t == b.DateTime || t == b.Date || t == b.Time) {
        AResult = Variant::FromDate(*static_cast<const double*>(p));
        return true;
      }
      switch (t->FloatType) {
        case ftSingle: AResult = Variant(*static_cast<const float*>(p)); break;
        case ftDouble: AResult = Variant(*static_cast<const double*>(p)); break;
        case ftExtended: AResult = Variant(*static_cast<const long double*>(p)); break;
        case ftComp: AResult = Variant(static_cast<long long>(*static_cast<const Int64*>(p))); break;
        case ftCurr: AResult = Variant(*static_cast<const Currency*>(p)); break;
      }
      return true;
    case tkVariant: AResult = *static_cast<const Variant*>(p); return true;
    case tkInterface: AResult = Variant(AValue.AsInterface()); return true;
    default: return false;
  }
}

}  // namespace

TValue TValue::FromVariant(const Variant& AValue) {
  const TVarType vt = AValue.VarType();
  if (vt & varArray) return From(AValue);
  switch (vt & varTypeMask) {
    case varEmpty: case varNull: return TValue();
    case varSmallint: return From<SmallInt>(AValue.AsSmallInt());
    case varInteger: return From<Integer>(AValue.AsInteger());
    case varSingle: return From<Single>(AValue.AsSingle());
    case varDouble: return From<Double>(AValue.AsDouble());
    case varCurrency: return From<Currency>(AValue.AsCurrency());
    case varDate: {
      const TDateTime d = AValue.AsDateTime();
      return Make(&d, detail::Builtins().DateTime);
    }
    case varOleStr: {
      const UnicodeString s = AValue.AsString();
      return Make(&s, detail::Builtins().WideString);
    }
    case varBoolean: return From<bool>(AValue.AsBoolean());
    case varShortInt: return From<ShortInt>(AValue.AsShortInt());
    case varByte: return From<Byte>(AValue.AsByte());
    case varWord: return From<Word>(AValue.AsWord());
    case varLongWord: return From<Cardinal>(AValue.AsCardinal());
    case varInt64: return From<Int64>(AValue.AsInt64());
    case varUInt64: return From<UInt64>(AValue.AsUInt64());
    case varString: return From<AnsiString>(AValue.AsAnsiString());
    case varUString: return From<UnicodeString>(AValue.AsString());
    case varUnknown: case varDispatch: return From<IPtr<IInterface>>(AValue.AsInterface());
    default: return From(AValue);
  }
}

Variant TValue::AsVariant() const {
  Variant result;
  if (!ToVariant(*this, result)) throw EInvalidCast(u"Invalid class typecast");
  return result;
}

bool TValue::TryCast(const TTypeInfo* ATypeInfo, TValue& AResult) const {
  if (!ATypeInfo) return false;
  if (FTypeInfo == ATypeInfo) {
    AResult = *this;
    return true;
  }
  // A TValue-typed target holds the value itself, whatever it is.
  if (ATypeInfo == detail::Builtins().Value) {
    AResult = Make(this, ATypeInfo);
    return true;
  }
  if (!FTypeInfo) {
    AResult = Make(nullptr, ATypeInfo);
    return true;
  }
  const TTypeKind from = FTypeInfo->Kind;
  const TTypeKind to = ATypeInfo->Kind;
  if (from == tkVariant) {
    const TValue inner = FromVariant(*static_cast<const Variant*>(Payload()));
    return inner.TypeInfo() != FTypeInfo && inner.TryCast(ATypeInfo, AResult);
  }
  if (to == tkVariant) {
    Variant v;
    if (!ToVariant(*this, v)) return false;
    AResult = Make(&v, ATypeInfo);
    return true;
  }
  if (FTypeInfo == detail::Builtins().Value) return static_cast<const TValue*>(Payload())->TryCast(ATypeInfo, AResult);
  if (IsOrdinalKind(from) && IsOrdinalKind(to)) return CastOrdinal(*this, ATypeInfo, AResult);
  if (to == tkFloat && (from == tkFloat || IsIntegerKind(from))) {
    TValue v = Make(nullptr, ATypeInfo);
    if (!detail::WriteFloat(v.Payload(), ATypeInfo, AsExtended())) return false;
    AResult = std::move(v);
    return true;
  }
  if (detail::IsStringKind(to) && to != tkChar && to != tkWChar && detail::IsStringKind(from)) {
    TValue v = Make(nullptr, ATypeInfo);
    detail::WriteString(v.Payload(), ATypeInfo, detail::ReadString(Payload(), FTypeInfo));
    AResult = std::move(v);
    return true;
  }
  if (from == tkClass && to == tkClass) {
    TObject* object = AsObject();
    if (object && !object->InheritsFrom(ATypeInfo->ClassType)) return false;
    AResult = FromObject(object, ATypeInfo);
    return true;
  }
  if (from == tkClassRef && to == tkClassRef) {
    TClass c = AsClass();
    if (c && !ClassInheritsFrom(c, ATypeInfo->ClassType)) return false;
    AResult = Make(&c, ATypeInfo);
    return true;
  }
  if (from == tkInterface && to == tkInterface) {
    TValue v = Make(nullptr, ATypeInfo);
    if (!ATypeInfo->Ops->FromInterface(v.Payload(), FTypeInfo->Ops->ToInterface(Payload()))) return false;
    AResult = std::move(v);
    return true;
  }
  if (from == tkSet && to == tkSet && FTypeInfo->ElementType == ATypeInfo->ElementType) {
    AResult = Make(Payload(), ATypeInfo);
    return true;
  }
  if (from == tkPointer && to == tkPointer) {
    AResult = Make(Payload(), ATypeInfo);
    return true;
  }
  return false;
}

TValue TValue::Cast(const TTypeInfo* ATypeInfo) const {
  TValue result;
  if (!TryCast(ATypeInfo, result)) throw EInvalidCast(u"Invalid class typecast");
  return result;
}

UnicodeString TValue::ToString() const {
  if (!FTypeInfo) return u"(empty)";
  const void* p = Payload();
  auto address = [](const void* AAddress) { return IntToHex(reinterpret_cast<uintptr_t>(AAddress), 16); };
  switch (FTypeInfo->Kind) {
    case tkInteger: case tkInt64:
      return FTypeInfo->IsUnsigned ? UIntToStr(*static_cast<const UInt64*>(p)) : IntToStr(detail::ReadOrdinal(p, FTypeInfo));
    case tkEnumeration: return GetEnumName(FTypeInfo, static_cast<Integer>(detail::ReadOrdinal(p, FTypeInfo)));
    case tkSet: return SetToString(FTypeInfo, *static_cast<const UInt64*>(p), true);
    case tkFloat:
      if (FTypeInfo->FloatType == ftCurr) return CurrToStr(*static_cast<const Currency*>(p));
      return FloatToStr(detail::ReadFloat(p, FTypeInfo));
    case tkChar: case tkWChar: case tkString: case tkLString: case tkWString: case tkUString:
      return detail::ReadString(p, FTypeInfo);
    case tkVariant: return VarToStr(*static_cast<const Variant*>(p));
    case tkClass: {
      TObject* object = AsObject();
      if (!object) return u"(empty)";
      return u"(" + object->ClassName() + u" @ " + address(object) + u")";
    }
    case tkClassRef: {
      TClass c = AsClass();
      return c ? u"(class '" + ClassNameOf(c) + u"' @ " + address(c) + u")" : UnicodeString(u"(empty)");
    }
    case tkInterface: {
      IInterface* intf = FTypeInfo->Ops->ToInterface(p);
      return intf ? u"(interface @ " + address(intf) + u")" : UnicodeString(u"(empty)");
    }
    case tkPointer: return u"(pointer @ " + address(*static_cast<void* const*>(p)) + u")";
    case tkRecord: case tkMRecord:
      if (FTypeInfo == detail::Builtins().Value) return static_cast<const TValue*>(p)->ToString();
      return u"(record)";
    case tkArray: return u"(array)";
    case tkDynArray: return u"(dynamic array)";
    default: return u"(unknown)";
  }
}

// ---- enumeration and set names ----

UnicodeString GetEnumName(const TTypeInfo* ATypeInfo, Integer AValue) {
  if (ATypeInfo && ATypeInfo->Kind == tkEnumeration && AValue >= ATypeInfo->MinValue && AValue <= ATypeInfo->MaxValue) {
    const auto index = static_cast<size_t>(AValue - ATypeInfo->MinValue);
    if (index < ATypeInfo->EnumNames.size()) return ATypeInfo->EnumNames[index];
  }
  return IntToStr(AValue);
}

Integer GetEnumValue(const TTypeInfo* ATypeInfo, std::u16string_view AName) {
  if (!ATypeInfo) return -1;
  if (ATypeInfo->Kind == tkEnumeration) {
    for (size_t i = 0; i < ATypeInfo->EnumNames.size(); ++i)
      if (SameText(ATypeInfo->EnumNames[i], AName)) return static_cast<Integer>(ATypeInfo->MinValue + static_cast<Int64>(i));
    return -1;
  }
  Integer value;
  return IsIntegerKind(ATypeInfo->Kind) && TryStrToInt(AName, value) ? value : -1;
}

UnicodeString SetToString(const TTypeInfo* ASetType, UInt64 ABits, bool ABrackets) {
  const TTypeInfo* element = ASetType ? ASetType->ElementType : nullptr;
  UnicodeString text;
  for (Integer ord = 0; ord < 64; ++ord) {
    if (!(ABits & (UInt64{1} << ord))) continue;
    if (!text.empty()) text += u',';
    text += GetEnumName(element, ord);
  }
  return ABrackets ? u"[" + text + u"]" : text;
}

UInt64 StringToSet(const TTypeInfo* ASetType, std::u16string_view AText) {
  const TTypeInfo* element = ASetType ? ASetType->ElementType : nullptr;
  UnicodeString text = Trim(AText);
  std::u16string_view rest(text);
  if (!rest.empty() && rest.front() == u'[') rest.remove_prefix(1);
  if (!rest.empty() && rest.back() == u']') rest.remove_suffix(1);
  UInt64 bits = 0;
  while (!rest.empty()) {
    const size_t comma = rest.find(u',');
    const UnicodeString name = Trim(rest.substr(0, comma));
    rest = comma == std::u16string_view::npos ? std::u16string_view() : rest.substr(comma + 1);
    if (name.empty()) continue;
    const Integer ord = GetEnumValue(element, name);
    if (ord < 0 || ord >= 64) throw EPropertyConvertError(u"Invalid property element: %s", {name});
    bits |= UInt64{1} << ord;
  }
  return bits;
}

}  // namespace vn
