// Variants to JSON text, and JSON texts and Variants to dates and times.
#include <cmath>

#include "json/json_escape.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/variant_array.h"
#include "vnxml/common/vn_types.h"
#include "vnxml/json_values.h"
#include "vnxml/xml_values.h"

namespace vn {

namespace {

void AppendVarToJSON(const Variant& AValue, std::u16string& AOut) {
  switch (TVnTypes::VarMainTypeKind(AValue)) {
    case vmkInteger:
      AOut += VnInt64ToXML(AValue.VarType() == varUInt64 ? static_cast<Int64>(AValue.RawUInt64()) : AValue.AsInt64());
      return;
    case vmkFloat: {
      const Double d = AValue.AsDouble();
      if (std::isinf(d) || std::isnan(d))
        AOut += u"null";
      else if (d == 0 && std::signbit(d))
        AOut += u"-0";
      else
        AOut += VnDoubleToXML(d);
      return;
    }
    case vmkString:
      AOut += u'"';
      detail::AppendStrToJSON(AValue.AsString(), AOut);
      AOut += u'"';
      return;
    case vmkBoolean: AOut += VnBoolToXML(AValue.AsBoolean()); return;
    case vmkDateTime:
      AOut += u'"';
      AOut += VnDateTimeToXML(AValue.AsDouble(), tzfNone);
      AOut += u'"';
      return;
    case vmkArray: {
      AOut += u'[';
      const Integer low = VarArrayLowBound(AValue, 1), high = VarArrayHighBound(AValue, 1);
      for (Integer i = low; i <= high; ++i) {
        if (i > low) AOut += u',';
        AppendVarToJSON(VarArrayGet(AValue, {i}), AOut);
      }
      AOut += u']';
      return;
    }
    default: AOut += u"null"; return;
  }
}

enum class DateKind { Date, Time, DateTime };

TDateTime JSONToDate(std::u16string_view AText, DateKind AKind) {
  if (AText.empty()) return 0;
  if (AText[0] == u'/') {
    // "/Date(n)/": n stands from the seventh character to the last but two.
    std::u16string_view digits = AText.size() > 8 ? AText.substr(6, AText.size() - 8) : std::u16string_view();
    const Int64 ms = StrToInt64(digits);
    switch (AKind) {
      case DateKind::Date: return static_cast<TDateTime>(Trunc(IncMilliSecond(EncodeDate(1970, 1, 1), ms)));
      case DateKind::Time: return IncMilliSecond(0, ms);
      case DateKind::DateTime: return IncMilliSecond(EncodeDate(1970, 1, 1), ms);
    }
  }
  switch (AKind) {
    case DateKind::Date: return VnXMLToDate(AText);
    case DateKind::Time: return VnXMLToTime(AText, tzfNone);
    default: return VnXMLToDateTime(AText, tzfNone);
  }
}

TDateTime VariantToDate(const Variant& AValue, TDateTime ADefault, DateKind AKind, std::u16string_view AMessage) {
  if (VarIsNull(AValue)) return ADefault;
  switch (TVnTypes::VarMainTypeKind(AValue)) {
    case vmkInteger:
    case vmkFloat:
    case vmkDateTime: return AValue.AsDouble();
    case vmkString: return JSONToDate(AValue.AsString(), AKind);
    default: throw EConvertError(UnicodeString(AMessage));
  }
}

TDateTime JSONToDateDef(std::u16string_view AText, TDateTime ADefault, DateKind AKind) {
  try {
    return JSONToDate(AText, AKind);
  } catch (...) {
    return ADefault;
  }
}

}  // namespace

UnicodeString VnVarToJSON(const Variant& AValue) {
  UnicodeString out;
  AppendVarToJSON(AValue, out);
  return out;
}

TVnJSONDataType VnVarTypeToJSONType(const Variant& AValue) {
  switch (TVnTypes::VarMainTypeKind(AValue)) {
    case vmkInteger:
    case vmkFloat: return jdtNumber;
    case vmkString:
    case vmkDateTime: return jdtString;
    case vmkBoolean: return jdtBoolean;
    case vmkArray: return jdtArray;
    default: return jdtNull;
  }
}

TDateTime VnJSONToDate(std::u16string_view AText) { return JSONToDate(AText, DateKind::Date); }
TDateTime VnJSONToTime(std::u16string_view AText) { return JSONToDate(AText, DateKind::Time); }
TDateTime VnJSONToDateTime(std::u16string_view AText) { return JSONToDate(AText, DateKind::DateTime); }

TDateTime VnJSONToDate(const Variant& AValue, TDateTime ADefault) {
  return VariantToDate(AValue, ADefault, DateKind::Date, cVnJSONInvalidDateValue);
}
TDateTime VnJSONToTime(const Variant& AValue, TDateTime ADefault) {
  return VariantToDate(AValue, ADefault, DateKind::Time, cVnJSONInvalidTimeValue);
}
TDateTime VnJSONToDateTime(const Variant& AValue, TDateTime ADefault) {
  return VariantToDate(AValue, ADefault, DateKind::DateTime, cVnJSONInvalidDateTimeValue);
}

TDateTime VnJSONToDateDef(std::u16string_view AText, TDateTime ADefault) {
  return JSONToDateDef(AText, ADefault, DateKind::Date);
}
TDateTime VnJSONToTimeDef(std::u16string_view AText, TDateTime ADefault) {
  return JSONToDateDef(AText, ADefault, DateKind::Time);
}
TDateTime VnJSONToDateTimeDef(std::u16string_view AText, TDateTime ADefault) {
  return JSONToDateDef(AText, ADefault, DateKind::DateTime);
}

}  // namespace vn
