// TVnXMLSerializer: parameters, element starts and ends, and the text of values.
#include <charconv>
#include <cstdio>
#include <unistd.h>

#include "serializer/walker_output.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_type_info_value.h"
#include "vnxml/serializer_enums.h"
#include "vnxml/xml_escape.h"
#include "vnxml/xml_serializer.h"
#include "vnxml/xml_values.h"

namespace vn {

namespace {

/// "urn:" and the name of the running program, without directory and extension.
UnicodeString DefaultNamespace() {
  static const UnicodeString name = [] {
    char path[4096];
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    std::string exe = n > 0 ? std::string(path, static_cast<size_t>(n)) : std::string("vnxml");
    exe = exe.substr(exe.find_last_of('/') + 1);
    if (const size_t dot = exe.find_last_of('.'); dot != std::string::npos && dot > 0) exe.resize(dot);
    return u"urn:" + Utf8ToUnicode(exe);
  }();
  return name;
}

void AppendAscii(std::string& AOut, std::string_view AText) { AOut.append(AText); }

void AppendInt(std::string& AOut, Int64 AValue) {
  char buffer[24];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, AValue);
  AOut.append(buffer, result.ptr);
}

void AppendUInt(std::string& AOut, UInt64 AValue) {
  char buffer[24];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, AValue);
  AOut.append(buffer, result.ptr);
}

/// Escaped text: most values need no escape and go straight to UTF-8.
void AppendEscaped(std::string& AOut, std::u16string_view AText) {
  for (char16_t c : AText) {
    if (c < 32 || c == u'<' || c == u'>' || c == u'&' || c == u'"' || c == u'\'') {
      detail::AppendUtf8(AOut, VnStrToXML(AText, true, true));
      return;
    }
  }
  detail::AppendUtf8(AOut, AText);
}

Int64 OrdinalOf(const TValue& AValue) {
  switch (AValue.Kind()) {
    case tkInteger: case tkInt64: case tkEnumeration: case tkChar: case tkWChar: case tkSet:
      return AValue.AsOrdinal();
    default:
      return ToInt64(AValue);
  }
}

bool IsComplexKind(TVnTypeKind AKind) {
  return AKind == vtkRecord || AKind == vtkClass || AKind == vtkInterface || AKind == vtkPointer;
}

TVnTimeZoneFormat ZoneFormatOf(TVnAttributes AAttributes, bool& AFound) {
  SerializerHint* hint = nullptr;
  AFound = GetSerializerHint(AAttributes, shoTimezoneFormat, hint);
  if (!AFound) return tzfNone;
  const UnicodeString& name = hint->GetValue();
  if (SameText(name, u"tzfUTC") || SameText(name, u"2")) return tzfUTC;
  if (SameText(name, u"tzfOffset") || SameText(name, u"1")) return tzfOffset;
  return tzfNone;
}

}  // namespace

// ---- parameters ----

void TVnXMLSerializer::SetParent(TVnCustomSerializer* AParent) {
  TVnSerializer::SetParent(AParent);
  if (auto* parent = CastObject<TVnXMLSerializer>(AParent); parent && FParams->GetCount() == 0) {
    // A child with no parameters of its own reads what its parent read.
    FExcludeNamespaces = parent->FExcludeNamespaces;
    FDefaultNamespace = parent->FDefaultNamespace;
    FXSINamespace = parent->FXSINamespace;
    FXSIPrefix = parent->FXSIPrefix;
    FXSDNamespace = parent->FXSDNamespace;
    FXSDPrefix = parent->FXSDPrefix;
    return;
  }
  if (!AParent) {
    if (!ParamIsTrue(u"excludenamespaces")) {
      SetParam(u"excludenamespaces", u"false");
      auto defaultOf = [&](std::u16string_view AName, const UnicodeString& AValue) {
        if (!HasParam(AName)) SetParam(AName, AValue);
      };
      defaultOf(u"xsi-namespace", cVnXSINamespace);
      defaultOf(u"xsi-prefix", u"xsi");
      defaultOf(u"xsd-namespace", cVnXSDNamespace);
      defaultOf(u"xsd-prefix", u"xsd");
      defaultOf(u"xmlns", DefaultNamespace());
    } else {
      for (const char16_t* name : {u"xsi-namespace", u"xsi-prefix", u"xsd-namespace", u"xsd-prefix", u"xmlns"})
        SetParam(name, u"");
    }
  }
  FExcludeNamespaces = ParamIsTrue(u"excludenamespaces");
  FDefaultNamespace = GetParam(u"xmlns");
  FXSINamespace = GetParam(u"xsi-namespace");
  FXSIPrefix = GetParam(u"xsi-prefix");
  FXSDNamespace = GetParam(u"xsd-namespace");
  FXSDPrefix = GetParam(u"xsd-prefix");
}

UnicodeString TVnXMLSerializer::GetRootElementName(TVnTypeKind AKind) {
  return AKind == vtkRecord ? u"record" : AKind == vtkClass ? u"object" : u"array";
}

bool TVnXMLSerializer::WriteRootAttributes(std::u16string_view) { return true; }
bool TVnXMLSerializer::WriteValueAttributes(std::u16string_view, Integer) { return true; }

// ---- elements ----

void TVnXMLSerializer::Flush() {
  Write(std::string_view(FOut));
  FOut.clear();
}

void TVnXMLSerializer::AppendTypeAttribute(const TVnTypeInfo* AType) {
  // The prefixes are the root's for the whole walk, so each type's text is made once.
  std::string* cached = FTypeAttributes ? &(*FTypeAttributes)[AType] : nullptr;
  if (cached && !cached->empty()) {
    FOut += *cached;
    return;
  }
  const size_t start = FOut.size();
  FOut += ' ';
  detail::AppendUtf8(FOut, FXSIPrefix);
  AppendAscii(FOut, ":type=\"");
  if (AType) detail::AppendUtf8(FOut, AType->SchemaName(FXSDPrefix));
  FOut += '"';
  if (cached) cached->assign(FOut, start, std::string::npos);
}

void TVnXMLSerializer::SerializeStartType(std::u16string_view AName, const TVnTypeInfo* AType, Integer) {
  const TVnTypeKind kind = AType ? AType->Kind() : vtkUnknown;
  if (kind != vtkStaticArray && kind != vtkDynArray && !IsComplexKind(kind)) {
    VnAssert(AName.empty() || !GetParent(), cVnXMLBasicTypeNotAtRoot);
    return;
  }
  FOut += '<';
  if (!AName.empty()) {
    detail::AppendUtf8(FOut, AName);
    if (WriteRootAttributes(AName) && !FExcludeNamespaces) AppendTypeAttribute(AType);
  } else {
    detail::AppendUtf8(FOut, GetRootElementName(kind));
    if (WriteRootAttributes({}) && !FExcludeNamespaces) {
      AppendAscii(FOut, " xmlns:");
      detail::AppendUtf8(FOut, FXSIPrefix);
      AppendAscii(FOut, "=\"");
      detail::AppendUtf8(FOut, FXSINamespace);
      AppendAscii(FOut, "\" xmlns:");
      detail::AppendUtf8(FOut, FXSDPrefix);
      AppendAscii(FOut, "=\"");
      detail::AppendUtf8(FOut, FXSDNamespace);
      FOut += '"';
      AppendTypeAttribute(AType);
      if (!FDefaultNamespace.empty()) {
        AppendAscii(FOut, " xmlns=\"");
        detail::AppendUtf8(FOut, FDefaultNamespace);
        FOut += '"';
      }
    }
  }
  FOut += '>';
  Flush();
}

void TVnXMLSerializer::SerializeEndType(std::u16string_view AName, const TVnTypeInfo* AType, Integer) {
  const TVnTypeKind kind = AType ? AType->Kind() : vtkUnknown;
  if (kind == vtkPointer) return;
  if (kind < vtkStaticArray || kind > vtkInterface) {
    VnAssert(AName.empty() || !GetParent(), cVnXMLBasicTypeNotAtRoot);
    return;
  }
  AppendAscii(FOut, "</");
  if (AName.empty())
    detail::AppendUtf8(FOut, GetRootElementName(kind));
  else
    detail::AppendUtf8(FOut, AName);
  FOut += '>';
  Flush();
}

// ---- values ----

void TVnXMLSerializer::SerializeValue(std::u16string_view AName, const TVnTypeInfo* AType, const TValue& AValue,
                                      Integer AIndex, TVnAttributes AAttributes) {
  // The type written: a Variant's content, and a reference kind holding a number or a text.
  const TVnTypeInfo* written = AType;
  const TVnTypeKind given = AType ? AType->Kind() : vtkUnknown;
  if (given == vtkVariant) {
    written = VnTypeInfo(AValue);
    if (written && written->Kind() == vtkVariant && !IsNull(AValue))
      written = TVnTypes::VarTypeInfo(*static_cast<const Variant*>(AValue.GetReferenceToRawData()));
    if (!written) written = AType;
  } else if (IsComplexKind(given)) {
    const TVnMainTypeKind main = MainTypeKind(AValue);
    if (main == mtkInteger || main == mtkString) written = VnTypeInfo(AValue);
  } else if (given == vtkClassRef) {
    written = TVnTypes::GetTypeInfo<UnicodeString>();
  }
  const bool null = IsNull(AValue);
  if (!AName.empty()) {
    FOut += '<';
    detail::AppendUtf8(FOut, AName);
    if (WriteValueAttributes(AName, AIndex) && !FExcludeNamespaces) {
      AppendTypeAttribute(written);
      if (null) {
        FOut += ' ';
        detail::AppendUtf8(FOut, FXSIPrefix);
        AppendAscii(FOut, ":nil=\"true\"/>");
        Flush();
        return;
      }
      if (given == vtkEnumeration || given == vtkSet) {
        AppendAscii(FOut, " value=\"");
        AppendInt(FOut, OrdinalOf(AValue));
        FOut += '"';
      }
      FOut += '>';
    } else if (null) {
      AppendAscii(FOut, "/>");
      Flush();
      return;
    } else {
      FOut += '>';
    }
  }
  if (!null) AppendValueText(AName, written, AValue, AAttributes);
  if (!AName.empty()) {
    AppendAscii(FOut, "</");
    detail::AppendUtf8(FOut, AName);
    FOut += '>';
  }
  Flush();
}

void TVnXMLSerializer::AppendValueText(std::u16string_view AName, const TVnTypeInfo* AType, const TValue& AValue,
                                       TVnAttributes AAttributes) {
  const TVnTypeKind kind = AType ? AType->Kind() : vtkUnknown;
  switch (kind) {
    case vtkByte: case vtkWord: case vtkLongWord: case vtkUInt64:
      AppendUInt(FOut, ToUInt64(AValue));
      return;
    case vtkShortInt: case vtkSmallInt: case vtkInteger: case vtkInt64:
      AppendInt(FOut, ToInt64(AValue));
      return;
    case vtkSingle: case vtkDouble:
      detail::AppendUtf8(FOut, VnDoubleToXML(ToDouble(AValue)));
      return;
    case vtkExtended:
      detail::AppendUtf8(FOut, VnExtToXML(ToExtended(AValue)));
      return;
    case vtkText1: case vtkText2: case vtkText3: case vtkText4: case vtkText5: case vtkText6:
      if (AType->Name() == u"VnXMLString")
        detail::AppendUtf8(FOut, ToWideString(AValue));
      else
        AppendEscaped(FOut, ToWideString(AValue));
      return;
    case vtkBoolean:
      AppendAscii(FOut, ToBoolean(AValue) ? "true" : "false");
      return;
    case vtkEnumeration: {
      const TTypeInfo* type = AType->Handle();
      detail::AppendUtf8(FOut, VnEnumName(type, OrdinalOf(AValue), VnEnumPrefix(type)));
      return;
    }
    case vtkSet: {
      const TTypeInfo* type = AType->Handle();
      detail::AppendUtf8(FOut, VnSetNames(type, static_cast<UInt64>(AValue.AsOrdinal()), VnEnumPrefix(type)));
      return;
    }
    case vtkDate: case vtkTime: case vtkDateTime: {
      if (MainTypeKind(AValue) == mtkString) {
        AppendEscaped(FOut, ToWideString(AValue));
        return;
      }
      const TDateTime value = ToDouble(AValue);
      auto text = [&](TVnTimeZoneFormat AFormat) {
        return kind == vtkDate ? VnDateToXML(value, AFormat)
               : kind == vtkTime ? VnTimeToXML(value, AFormat)
                                 : VnDateTimeToXML(value, AFormat);
      };
      const std::u16string_view utcName = kind == vtkDate ? u"TVnUTCDate" : kind == vtkTime ? u"TVnUTCTime" : u"TVnUTCDateTime";
      bool hinted = false;
      const TVnTimeZoneFormat format = ZoneFormatOf(AAttributes, hinted);
      if (AType->Name() == utcName) {
        detail::AppendUtf8(FOut, text(tzfNone));
        FOut += 'Z';
      } else {
        detail::AppendUtf8(FOut, text(hinted ? format : tzfNone));
      }
      return;
    }
    case vtkStaticArray: case vtkDynArray:
      throw Exception(cVnXMLArraysNeedChild);
    case vtkRecord: case vtkClass: case vtkInterface: case vtkPointer: {
      const TVnMainTypeKind main = MainTypeKind(AValue);
      if (main != mtkInteger && main != mtkString) throw Exception(cVnXMLComplexNeedsChild);
      detail::AppendUtf8(FOut, ToWideString(AValue));
      return;
    }
    case vtkClassRef:
      if (TClass c = AValue.AsClass()) detail::AppendUtf8(FOut, ClassNameOf(c));
      return;
    default:
      throw EVnSerializeException(cVnFieldCannotBeSerialized,
                                  {FPath, UnicodeString(AName), AType ? AType->QualifiedName() : UnicodeString()});
  }
}

}  // namespace vn
