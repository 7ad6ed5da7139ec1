// xml_reflected_values.h: values whose type is known at run time, to XML text and back (unit uVnXMLUtils).
// The type comes as a TValue, a type record, a type name or a TVnTypeKind; the lexical forms are
// those of xml_values.h. Classes, arrays and records go through the XML serializer (serializer.h),
// so they raise its "no registered serializer" text while none is registered. Bad lexical forms
// raise what the conversions of xml_values.h raise; the other failures are a plain Exception
// with the texts below.
#pragma once

#include <string_view>

#include "vnxml/common/value.h"
#include "vnxml/common/variant.h"
#include "vnxml/common/vn_type_info.h"

namespace vn {

inline constexpr char16_t cVnXMLToVariantFailed[] = u"Failed to convert the value \"%s\" to a variant value of type %s!";
inline constexpr char16_t cVnXMLToValueFailed[] = u"Failed to convert the value \"%s\" to a value of type %s!";
inline constexpr char16_t cVnXMLToValueUnsupported[] =
    u"Failed to convert \"%s\" into a TValue!\r\nThe type %s is not supported.";

/// The XML text of AValue: strings escaped (both quote kinds), booleans "true" or "false" as
/// XML Schema writes them, an enumeration's value name (a
/// number outside its range as it stands), a Variant by VnVariantToXML, dates in their XML forms,
/// floats in the fewest digits (15 or more) that read back as the same value of their width,
/// classes, arrays and records serialized as XML, anything else its generic text.
UnicodeString VnValToXML(const TValue& AValue);

/// A value of type AType read from XML text. Enumerations take a value name or an ordinal
/// (cVnXMLToValueFailed when neither fits), sets their names or their bits as a number;
/// classes, arrays, records and other complex kinds raise cVnXMLToValueUnsupported.
TValue VnXMLToValue(std::u16string_view AText, const TTypeInfo* AType);
/// The same for the type of that name (unit-qualified or short); an unknown name raises
/// cVnXMLToValueUnsupported.
TValue VnXMLToValue(std::u16string_view AText, std::u16string_view ATypeName);

/// A Variant of the type code TVnTypes::GetVarType gives for the type of that name (unit-qualified
/// or short); an unknown name keeps the text.
Variant VnXMLToVariant(std::u16string_view AText, std::u16string_view ATypeName);
/// A Variant read by the kind: numbers, strings (decoded), booleans, dates (no zone); other kinds
/// raise cVnXMLToVariantFailed.
Variant VnXMLToVariant(std::u16string_view AText, TVnTypeKind ATypeKind);

}  // namespace vn
