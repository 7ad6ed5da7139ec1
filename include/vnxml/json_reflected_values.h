// json_reflected_values.h: values whose type is known at run time, to JSON text and back, and
// the JSON-schema name of a type (unit uVnJSON).
// Enumerations, sets, classes, arrays and records go through the JSON serializer (serializer.h),
// so they raise its "no registered serializer" text while none is registered. Numbers, booleans,
// dates and Variants have the lexical forms of XML (xml_reflected_values.h).
#pragma once

#include <string_view>

#include "vnxml/common/value.h"
#include "vnxml/common/vn_type_info.h"

namespace vn {

inline constexpr char16_t cVnJSONToValueFailed[] = u"Failed to convert the value \"%s\" to a value of type %s!";
inline constexpr char16_t cVnJSONToValueUnsupported[] =
    u"Failed to convert \"%s\" into a TValue!\r\nThe type %s is not supported.";

/// The JSON text of AValue. Strings and characters are escaped as inside a JSON string, without
/// the quotes, so that VnJSONToVal with ADecode reads them back; other simple kinds are written
/// as VnValToXML writes them; enumerations, sets, classes, arrays and records are serialized.
UnicodeString VnValToJSON(const TValue& AValue);

/// A value of type AType read from JSON text. With ADecode the escapes of strings and characters
/// are decoded first; a character is the first one of the text (an 8-bit one holds Latin-1, '?'
/// otherwise). Enumerations take a name or an ordinal (cVnJSONToValueFailed when neither fits);
/// sets their names or their bits as a number; dates also the "/Date(n)/" form. Classes, arrays,
/// records and other complex kinds raise cVnJSONToValueUnsupported.
TValue VnJSONToVal(std::u16string_view AText, const TTypeInfo* AType, bool ADecode = true);
/// The same for the type of that name (unit-qualified or short); an unknown name raises
/// cVnJSONToValueUnsupported.
TValue VnJSONToVal(std::u16string_view AText, std::u16string_view ATypeName, bool ADecode = true);

/// The JSON-schema name of AType ("integer", "number" kinds as "float" or "double", "string",
/// "boolean", "date", "dateTime", "xml", "json", "any", else its schema name), with AFormat its
/// refinement ("int32", "int64", "date-time", ...) or empty, and the schema type in ASchemaType
/// when given. A nil type gives empty texts and sdtNone.
UnicodeString VnJSONType(const TVnTypeInfo* AType, UnicodeString& AFormat, TVnSchemaDataType* ASchemaType = nullptr);
UnicodeString VnJSONType(const TRttiType* AType, UnicodeString& AFormat, TVnSchemaDataType* ASchemaType = nullptr);

}  // namespace vn
