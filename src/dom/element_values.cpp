// TVnDOMElement: the element's text read and written as typed values. In schema-instance mode
// the writers also mark the type (xsi:type) or the null value (xsi:nil), and the readers take
// the type from there.
#include "dom/node_extras.h"
#include "vnxml/common/encoding.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_type_info_value.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_messages.h"
#include "vnxml/xml_utils.h"

namespace vn {

namespace {

bool IsStringVarType(TVarType AVarType) {
  return AVarType == varOleStr || AVarType == varString || AVarType == varUString;
}

/// The prefixes to write xsi:type and xsi:nil with: "xsi:" and "xsd" from the declarations in
/// scope. Outside schema-instance mode, or when a declaration is missing, the writers leave the
/// attributes alone.
struct SchemaPrefixes {
  UnicodeString Xsi;
  UnicodeString Xsd;
  bool Usable() const noexcept { return !Xsi.empty() && !Xsd.empty(); }
};

bool SchemaInstanceMode(const TVnDOMElement& AElement) {
  const TVnDOMDocument* document = AElement.Document();
  return document && document->GetUseSchemaInstance();
}

SchemaPrefixes PrefixesOf(const TVnDOMElement& AElement) {
  SchemaPrefixes prefixes;
  if (!SchemaInstanceMode(AElement)) return prefixes;
  // A default declaration gives no prefix, and an attribute without one is in no namespace.
  if (TVnDOMAttribute* xsi = AElement.FindScopeNamespace(cVnXSINamespaceURI)) {
    const UnicodeString prefix = xsi->NamespacePrefix();
    if (!prefix.empty()) prefixes.Xsi = prefix + u":";
  }
  if (TVnDOMAttribute* xsd = AElement.FindScopeNamespace(cVnXSDNamespaceURI)) prefixes.Xsd = xsd->NamespacePrefix();
  return prefixes;
}

TVnDOMAttribute* SchemaInstanceAttribute(const TVnDOMElement& AElement, std::u16string_view ALocalName) {
  return static_cast<TVnDOMAttribute*>(
      detail::FindInItems(AElement.AttributesView(), AElement, cVnXSINamespaceURI, ALocalName));
}

/// The name in xsi:type; an attribute without a value is a broken document.
UnicodeString SchemaTypeName(const TVnDOMAttribute& AType) {
  UnicodeString name = AType.GetNodeValue();
  if (name.empty()) throw EVnDomException(cVnDomInvalidTypeInfo);
  return name;
}

Variant StringVariant(const UnicodeString& AText, TVarType AVarType) {
  if (AVarType == varOleStr) return Variant::FromOleStr(AText);
  if (AVarType == varString) return Variant(UnicodeToUtf8(AText));
  return Variant(AText);
}

}  // namespace

// ---- readers ----

bool TVnDOMElement::GetAsBoolean() const { return VnXMLToBool(GetNodeValue()); }
TDateTime TVnDOMElement::GetAsDateTime() const { return VnXMLToDateTimeDef(GetNodeValue(), 0); }
Double TVnDOMElement::GetAsDouble() const { return VnXMLToDoubleDef(GetNodeValue(), 0); }
Int64 TVnDOMElement::GetAsInt64() const { return VnXMLToInt64Def(GetNodeValue(), 0); }
Integer TVnDOMElement::GetAsInteger() const { return VnXMLToIntDef(GetNodeValue(), 0); }
AnsiString TVnDOMElement::GetAsAnsiString() const { return TVnEncoding::ConvertW(GetNodeValue(), 0); }

Variant TVnDOMElement::GetAsVariant() const {
  if (SchemaInstanceAttribute(*this, u"nil")) return Variant::Null();
  TVnDOMAttribute* typeAttribute = SchemaInstanceAttribute(*this, u"type");
  if (!typeAttribute) return CharNodesView().empty() ? Variant::Null() : Variant(GetNodeValue());
  const UnicodeString typeName = SchemaTypeName(*typeAttribute);
  const TVarType varType = TVnTypes::GetVarType(typeName, tntSchemaName, varUnknown);
  const UnicodeString text = GetNodeValue();
  if (varType == varEmpty || IsStringVarType(varType)) return StringVariant(text, varType);
  if (SameText(typeName, u"time") || ContainsText(typeName, u":time")) return Variant::FromDate(VnXMLToTime(text));
  if (varType == varObject || varType == varRecord || varType == varArray) return Variant(text);
  if (ContainsText(typeName, u"base64binary")) return Variant(GetAsAnsiString());
  return VnXMLToVariant(text, varType);
}

TValue TVnDOMElement::GetAsValue() const {
  if (SchemaInstanceAttribute(*this, u"nil")) return TValue();
  const TVnTypeInfo* type = nullptr;
  if (TVnDOMAttribute* typeAttribute = SchemaInstanceAttribute(*this, u"type"))
    type = TVnTypes::GetTypeInfo(SchemaTypeName(*typeAttribute), tntSchemaName, false, mtkUnknown);
  if (!CharNodesView().empty()) {
    const UnicodeString text = GetNodeValue();
    if (!type) return TValue::From(text);
    // The conversion decodes strings and Variants itself: hand it the text in XML form again.
    if (type->GetMainTypeKind() == mtkString || type->Kind() == vtkVariant)
      return VnXMLToValue(VnStrToXML(text, false, false), type->Handle());
    return VnXMLToValue(text, type->Handle());
  }
  // An empty string keeps its type, as the Variant reader keeps it.
  if (type && type->GetMainTypeKind() == mtkString) return VnXMLToValue(u"", type->Handle());
  if (type && (type->Kind() == vtkEnumeration || type->Kind() == vtkSet)) {
    // An empty enumeration element may carry its ordinal in a value attribute.
    if (TVnDOMNode* value = detail::FindInItems(FAttrs, *this, u"value", {soLocalName, soCaseInsensitive}))
      return VnXMLToValue(value->GetNodeValue(), type->Handle());
  }
  return TValue();
}

Variant TVnDOMElement::GetChildElementValue(const Variant& AIndex) {
  TVnDOMElement* child = GetElements()->GetItem(AIndex);
  return child ? child->GetAsVariant() : Variant::Null();
}

// ---- writers ----

// In schema-instance mode each writer goes through SetAsVariant, which also writes xsi:type.

void TVnDOMElement::SetAsBoolean(bool AValue) {
  SchemaInstanceMode(*this) ? SetAsVariant(Variant(AValue)) : SetNodeValueEx(VnBoolToXML(AValue));
}

void TVnDOMElement::SetAsDateTime(TDateTime AValue) {
  SchemaInstanceMode(*this) ? SetAsVariant(Variant::FromDate(AValue)) : SetNodeValueEx(VnDateTimeToXML(AValue));
}

void TVnDOMElement::SetAsDouble(Double AValue) {
  SchemaInstanceMode(*this) ? SetAsVariant(Variant(AValue)) : SetNodeValueEx(VnDoubleToXML(AValue));
}

void TVnDOMElement::SetAsInt64(Int64 AValue) {
  SchemaInstanceMode(*this) ? SetAsVariant(Variant(static_cast<long long>(AValue))) : SetNodeValueEx(VnInt64ToXML(AValue));
}

void TVnDOMElement::SetAsInteger(Integer AValue) {
  SchemaInstanceMode(*this) ? SetAsVariant(Variant(AValue)) : SetNodeValueEx(VnIntToXML(AValue));
}

void TVnDOMElement::SetAsString(std::u16string_view AValue) {
  SchemaInstanceMode(*this) ? SetAsVariant(Variant(AValue)) : SetNodeValueEx(VnStrToXML(AValue, true, true));
}

void TVnDOMElement::SetAsAnsiString(std::string_view AValue) { SetAsString(TVnEncoding::ConvertA(AValue, 0)); }

void TVnDOMElement::SetAsVariant(const Variant& AValue) {
  const SchemaPrefixes prefixes = PrefixesOf(*this);
  if (!prefixes.Usable()) {
    SetNodeValueEx(VnVariantToXML(AValue));
    return;
  }
  if (VarIsEmpty(AValue) || VarIsNull(AValue)) {
    SetAttribute(prefixes.Xsi + u"nil", u"true");
    SetNodeValue(u"");
    return;
  }
  if (TVnDOMAttribute* nil = SchemaInstanceAttribute(*this, u"nil")) RemoveAttribute(nil);
  if (IsStringVarType(AValue.VarType()))
    SetNodeValue(AValue.AsString());
  else
    SetNodeValueEx(VnVariantToXML(AValue));
  SetAttribute(prefixes.Xsi + u"type", TVnTypes::VarTypeInfo(AValue)->SchemaName(prefixes.Xsd));
}

void TVnDOMElement::SetAsValue(const TValue& AValue) {
  const SchemaPrefixes prefixes = PrefixesOf(*this);
  if (!prefixes.Usable()) {
    SetNodeValueEx(VnValToXML(AValue));
    return;
  }
  if (IsNull(AValue)) {
    SetAttribute(prefixes.Xsi + u"nil", u"true");
    SetNodeValue(u"");
    return;
  }
  if (TVnDOMAttribute* nil = SchemaInstanceAttribute(*this, u"nil")) RemoveAttribute(nil);
  if (MainTypeKind(AValue) == mtkString)
    SetNodeValue(ToWideString(AValue));
  else
    SetNodeValueEx(VnValToXML(AValue));
  SetAttribute(prefixes.Xsi + u"type", TVnTypes::GetTypeInfo(AValue.TypeInfo())->SchemaName(prefixes.Xsd));
}

}  // namespace vn
