// The records of the common package: text and Variant forms of TXsBoolean, TXsString, the date
// records and TXsDuration.
#include "vnxml/xml_values.h"
#include "vnxml/xs_simple.h"

namespace vn {

UnicodeString TXsBoolean::ToString() const { return IsNull() ? UnicodeString() : VnBoolToXML(FValue); }
Variant TXsBoolean::ToVariant() const { return IsNull() ? Variant::Null() : Variant(FValue); }

Variant TXsString::ToVariant() const { return IsNull() ? Variant::Null() : Variant(FValue); }

template <TVnTypeKind AKind>
UnicodeString TXsDateTimeRecord<AKind>::ToString(bool AWithZone) const {
  if (IsNull()) return {};
  const TVnTimeZoneFormat zone = AWithZone ? tzfOffset : tzfNone;
  if constexpr (AKind == vtkDate) return VnDateToXML(FValue, zone);
  if constexpr (AKind == vtkTime) return VnTimeToXML(FValue, zone);
  return VnDateTimeToXML(FValue, zone);
}

template <TVnTypeKind AKind>
Variant TXsDateTimeRecord<AKind>::ToVariant() const {
  return IsNull() ? Variant::Null() : Variant::FromDate(FValue);
}

template struct TXsDateTimeRecord<vtkDateTime>;
template struct TXsDateTimeRecord<vtkDate>;
template struct TXsDateTimeRecord<vtkTime>;

void TXsDuration::FromString(std::u16string_view AText) {
  if (AText.empty()) return Clear();
  Set(VnXMLToDuration(AText));
}

UnicodeString TXsDuration::ToString() const { return IsNull() ? UnicodeString() : VnDurationToXML(FValue); }
Variant TXsDuration::ToVariant() const { return IsNull() ? Variant::Null() : Variant(ToString()); }

}  // namespace vn
