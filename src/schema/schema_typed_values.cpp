// The typed accessors of TVnXMLSchemaElement: a read conversion over GetValue, a write
// conversion before SetValue. A missing node reads as the type's zero without converting.
#include "vnxml/common/encoding.h"
#include "vnxml/common/utf.h"
#include "vnxml/schema_element.h"
#include "vnxml/xml_escape.h"
#include "vnxml/xml_values.h"

namespace vn {

namespace {
template <class T, class Read>
T ReadAs(TVnXMLSchemaElement& ASelf, Integer AIndex, Read ARead) {
  UnicodeString text;
  if (!ASelf.GetValue(AIndex, text)) return T{};
  return ARead(text);
}
}  // namespace

#define VN_SCHEMA_ACCESSORS(Name, Type, ReadExpr, WriteExpr)                                 \
  Type TVnXMLSchemaElement::Get##Name##Value(Integer AIndex) {                               \
    return ReadAs<Type>(*this, AIndex, [](const UnicodeString& AText) { return ReadExpr; }); \
  }                                                                                          \
  void TVnXMLSchemaElement::Set##Name##Value(Integer AIndex, Type AValue) { SetValue(AIndex, WriteExpr); }

VN_SCHEMA_ACCESSORS(Byte, Byte, VnXMLToByte(AText), VnByteToXML(AValue))
VN_SCHEMA_ACCESSORS(Short, SmallInt, VnXMLToSmallint(AText), VnIntToXML(AValue))
VN_SCHEMA_ACCESSORS(Int, Integer, VnXMLToInt(AText), VnIntToXML(AValue))
VN_SCHEMA_ACCESSORS(Long, Int64, VnXMLToInt64(AText), VnInt64ToXML(AValue))
VN_SCHEMA_ACCESSORS(UnsignedShort, Word, VnXMLToWord(AText), VnWordToXML(AValue))
VN_SCHEMA_ACCESSORS(UnsignedInt, Cardinal, VnXMLToLongword(AText), VnLongWordToXML(AValue))
VN_SCHEMA_ACCESSORS(UnsignedLong, UInt64, VnXMLToUInt64(AText), VnUInt64ToXML(AValue))
VN_SCHEMA_ACCESSORS(Date, TDateTime, VnXMLToDate(AText), VnDateToXML(AValue, tzfNone))
VN_SCHEMA_ACCESSORS(Time, TDateTime, VnXMLToTime(AText, tzfNone), VnTimeToXML(AValue, tzfNone))
VN_SCHEMA_ACCESSORS(TimeInstant, TDateTime, VnXMLToDateTime(AText, tzfNone), VnDateTimeToXML(AValue, tzfNone))
VN_SCHEMA_ACCESSORS(Datetime, TDateTime, VnXMLToDateTime(AText, tzfNone), VnDateTimeToXML(AValue, tzfUTC))
VN_SCHEMA_ACCESSORS(Float, Double, VnXMLToDouble(AText), VnDoubleToXML(AValue))
VN_SCHEMA_ACCESSORS(Double, Extended, VnXMLToExtended(AText), VnExtToXML(AValue))
VN_SCHEMA_ACCESSORS(Boolean, bool, VnXMLToBool(AText), VnBoolToXML(AValue))

#undef VN_SCHEMA_ACCESSORS

UnicodeString TVnXMLSchemaElement::GetXmlValue(Integer AIndex) {
  UnicodeString text;
  GetValue(AIndex, text);
  return text;
}

UnicodeString TVnXMLSchemaElement::GetStringValue(Integer AIndex) {
  return ReadAs<UnicodeString>(*this, AIndex, [](const UnicodeString& AText) { return VnXMLToStr(AText); });
}

AnsiString TVnXMLSchemaElement::GetBase64binaryValue(Integer AIndex) {
  return ReadAs<AnsiString>(*this, AIndex, [](const UnicodeString& AText) {
    return TVnEncoding::ConvertW(VnXMLToStr(AText), 65001);
  });
}

void TVnXMLSchemaElement::SetBase64binaryValue(Integer AIndex, std::string_view AValue) {
  SetValue(AIndex, Utf8ToUnicode(AValue));
}

TGUID TVnXMLSchemaElement::GetGuidValue(Integer AIndex) {
  return ReadAs<TGUID>(*this, AIndex, [](const UnicodeString& AText) { return StringToGUID(AText); });
}

void TVnXMLSchemaElement::SetGuidValue(Integer AIndex, const TGUID& AValue) {
  SetValue(AIndex, GUIDToString(AValue));
}

}  // namespace vn
