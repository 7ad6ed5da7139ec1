// schema_element.h: TVnXMLSchemaElement, a typed view over one DOM element (unit uVnXMLSchema).
// A descendant describes the attributes and child elements its element may hold, one row each
// under an integer index (AddSchemaInfo, in document order), and offers properties over the
// typed accessors. Reading a required row, or an element row with a minimum of one, creates the
// node; new elements go in the order of the rows. There is no validation: occurrence counts and
// choice groups are kept for descendants and read by nobody here.
// Ownership: the wrapper holds one counted reference on its element and owns its rows, its
// sub-element wrappers and the objects of its array table. Failures: EListError for an index or
// name outside the table (texts below); a read conversion's own exception passes through.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "vnxml/common/generics.h"
#include "vnxml/common/value.h"
#include "vnxml/dom_interfaces.h"

namespace vn {

inline constexpr char16_t cVnSchemaInvalidIndex[] = u"Invalid Schema Index";
inline constexpr char16_t cVnSchemaNodeNotInSchema[] =
    u"The specified nodename (%s) is not part of the Schema!";

/// One row of the table: an attribute (FNodeType ntAttribute) or a child element (anything else).
class TVnXMLSchemaInfo : public TObject {
  VN_DECLARE_CLASS(TVnXMLSchemaInfo, TObject)
 public:
  TVnXMLSchemaInfo() = default;
  TVnXMLSchemaInfo(std::u16string_view AName, TVnDOMNodeType ANodeType)
      : FNodeType(ANodeType), FName(AName) {}

  TVnDOMNodeType FNodeType = ntElement;
  /// The name as the document writes it, prefix included (p:name).
  UnicodeString FName;
  Integer FMinOccurs = 0;
  Integer FMaxOccurs = 0;
  /// The node must exist: reading it creates it.
  bool FRequired = false;
  Integer FChoiceIdx = 0;
};

class TVnXMLSchemaElement;
/// Fired before a row's node is looked up (not again while the same row's handler runs).
using TVnXMLSchemaElementOnGetValue =
    std::function<void(TVnXMLSchemaElement* ASender, TVnXMLSchemaInfo* ASchemaInfo)>;
/// The virtual constructor of a descendant: TVnXMLSchemaElement::Create<T>.
using TVnXMLSchemaElementClass =
    std::unique_ptr<TVnXMLSchemaElement> (*)(const IPtr<IVnDOMElement>& AElement);

class TVnXMLSchemaElement : public TVnObjectEx {
  VN_DECLARE_CLASS(TVnXMLSchemaElement, TVnObjectEx)
 public:
  /// Keeps AElement (one counted reference); the table starts empty. The wrapper is a plain
  /// object: its creator (or the owning wrapper's FSubElements) frees it.
  explicit TVnXMLSchemaElement(IPtr<IVnDOMElement> AElement);
  ~TVnXMLSchemaElement() override;

  template <class T>
  static std::unique_ptr<TVnXMLSchemaElement> Create(const IPtr<IVnDOMElement>& AElement) {
    return std::make_unique<T>(AElement);
  }

  /// Adds a row under AIndex, at the end of the document order; a taken index raises EListError.
  void AddSchemaInfo(Integer AIndex, TVnDOMNodeType ANodeType, std::u16string_view AName,
                     Integer AMinOccurs = 0, Integer AMaxOccurs = 1, bool ARequired = false,
                     Integer AChoiceIdx = 0);
  /// The first row whose name equals AName ignoring ASCII case (prefix included), or nil.
  TVnXMLSchemaInfo* FindSchemaInfo(std::u16string_view AName) const;
  /// The row's node; created when ACreate, the row is required, or an element row has a minimum
  /// of one. Nil when it is absent and not created. An unknown index raises EListError.
  IPtr<IVnDOMNode> GetNodeByIndex(Integer AIndex, bool ACreate);
  /// The node of the row named AName (or whose name behind its prefix is AName); the element
  /// itself for an empty name; nil for a name outside the table.
  IPtr<IVnDOMNode> FindNode(std::u16string_view AName);
  /// As FindNode, creating the node; a name outside the table raises EListError.
  IPtr<IVnDOMNode> GetNode(std::u16string_view AName);
  /// Removes the child that AName selects (local name, any case) and the wrappers of it.
  void RemoveNode(std::u16string_view AName);

  const IPtr<IVnDOMElement>& AsElement() const noexcept { return FDOMElement; }
  UnicodeString GetXML() const { return FDOMElement->GetXML(); }
  /// Drops the array and sub-element wrappers and empties the element; the table stays.
  virtual void Clear();

  /// The decoded node value; false (and AValue empty) when the node is absent.
  bool GetValue(Integer AIndex, UnicodeString& AValue);
  /// Writes AValue, creating the node unless AValue is empty.
  void SetValue(Integer AIndex, std::u16string_view AValue);

  // Typed accessors: a missing node reads as 0, empty or the all-zero GUID.
  Byte GetByteValue(Integer AIndex);
  void SetByteValue(Integer AIndex, Byte AValue);
  SmallInt GetShortValue(Integer AIndex);
  void SetShortValue(Integer AIndex, SmallInt AValue);
  Integer GetIntValue(Integer AIndex);
  void SetIntValue(Integer AIndex, Integer AValue);
  Integer GetIntegerValue(Integer AIndex) { return GetIntValue(AIndex); }
  void SetIntegerValue(Integer AIndex, Integer AValue) { SetIntValue(AIndex, AValue); }
  Int64 GetLongValue(Integer AIndex);
  void SetLongValue(Integer AIndex, Int64 AValue);
  Int64 GetInt64Value(Integer AIndex) { return GetLongValue(AIndex); }
  void SetInt64Value(Integer AIndex, Int64 AValue) { SetLongValue(AIndex, AValue); }
  Int64 GetInteger64Value(Integer AIndex) { return GetLongValue(AIndex); }
  void SetInteger64Value(Integer AIndex, Int64 AValue) { SetLongValue(AIndex, AValue); }
  Byte GetUnsignedByteValue(Integer AIndex) { return GetByteValue(AIndex); }
  void SetUnsignedByteValue(Integer AIndex, Byte AValue) { SetByteValue(AIndex, AValue); }
  Word GetUnsignedShortValue(Integer AIndex);
  void SetUnsignedShortValue(Integer AIndex, Word AValue);
  Cardinal GetUnsignedIntValue(Integer AIndex);
  void SetUnsignedIntValue(Integer AIndex, Cardinal AValue);
  Cardinal GetNonNegativeIntegerValue(Integer AIndex) { return GetUnsignedIntValue(AIndex); }
  void SetNonNegativeIntegerValue(Integer AIndex, Cardinal AValue) { SetUnsignedIntValue(AIndex, AValue); }
  UInt64 GetUnsignedLongValue(Integer AIndex);
  void SetUnsignedLongValue(Integer AIndex, UInt64 AValue);
  TDateTime GetDateValue(Integer AIndex);
  void SetDateValue(Integer AIndex, TDateTime AValue);
  TDateTime GetTimeValue(Integer AIndex);
  void SetTimeValue(Integer AIndex, TDateTime AValue);
  /// Read like Datetime, written without a zone.
  TDateTime GetTimeInstantValue(Integer AIndex);
  void SetTimeInstantValue(Integer AIndex, TDateTime AValue);
  /// Written in UTC.
  TDateTime GetDatetimeValue(Integer AIndex);
  void SetDatetimeValue(Integer AIndex, TDateTime AValue);
  UnicodeString GetDurationValue(Integer AIndex) { return GetStringValue(AIndex); }
  void SetDurationValue(Integer AIndex, std::u16string_view AValue) { SetValue(AIndex, AValue); }
  /// Float and Decimal are Double; Double is Extended.
  Double GetFloatValue(Integer AIndex);
  void SetFloatValue(Integer AIndex, Double AValue);
  Double GetDecimalValue(Integer AIndex) { return GetFloatValue(AIndex); }
  void SetDecimalValue(Integer AIndex, Double AValue) { SetFloatValue(AIndex, AValue); }
  Extended GetDoubleValue(Integer AIndex);
  void SetDoubleValue(Integer AIndex, Extended AValue);
  /// The node value as stored, without a second decoding.
  UnicodeString GetXmlValue(Integer AIndex);
  void SetXmlValue(Integer AIndex, std::u16string_view AValue) { SetValue(AIndex, AValue); }
  UnicodeString GetJsonValue(Integer AIndex) { return GetXmlValue(AIndex); }
  void SetJsonValue(Integer AIndex, std::u16string_view AValue) { SetValue(AIndex, AValue); }
  /// The node value decoded once more (a stored "&amp;amp;" reads as "&").
  UnicodeString GetStringValue(Integer AIndex);
  void SetStringValue(Integer AIndex, std::u16string_view AValue) { SetValue(AIndex, AValue); }
  UnicodeString GetLanguageValue(Integer AIndex) { return GetStringValue(AIndex); }
  void SetLanguageValue(Integer AIndex, std::u16string_view AValue) { SetValue(AIndex, AValue); }
  UnicodeString GetAnyValue(Integer AIndex) { return GetStringValue(AIndex); }
  void SetAnyValue(Integer AIndex, std::u16string_view AValue) { SetValue(AIndex, AValue); }
  UnicodeString GetAnyUriValue(Integer AIndex) { return GetStringValue(AIndex); }
  void SetAnyUriValue(Integer AIndex, std::u16string_view AValue) { SetValue(AIndex, AValue); }
  /// The text as UTF-8 bytes; written back from UTF-8, so a value survives the round trip.
  AnsiString GetBase64binaryValue(Integer AIndex);
  void SetBase64binaryValue(Integer AIndex, std::string_view AValue);
  bool GetBooleanValue(Integer AIndex);
  void SetBooleanValue(Integer AIndex, bool AValue);
  TGUID GetGuidValue(Integer AIndex);
  void SetGuidValue(Integer AIndex, const TGUID& AValue);

  TVnXMLSchemaElementOnGetValue FOnGetValue;

 protected:
  /// Into another schema element: it is cleared and takes this element's inner XML.
  void AssignTo(TObject* ADest) const override;

  /// Rows whose FOnGetValue handler runs now; no ownership.
  std::vector<TVnXMLSchemaInfo*> FCreating;
  IPtr<IVnDOMElement> FDOMElement;
  /// The rows by index; owns them. Enumerates in the order of the AddSchemaInfo calls.
  generics::TDictionary<Integer, TVnXMLSchemaInfo*> FSchemaInfo;
  /// The rows in document order; no ownership.
  std::vector<TVnXMLSchemaInfo*> FSchemaInfoList;
  /// Wrappers of child elements, filled by descendants; owned.
  generics::TObjectList<TVnXMLSchemaElement> FSubElements;
  /// Wrappers of repeating children by index, filled by descendants; each holds an owned object.
  generics::TDictionary<Integer, TValue> FArrayElements;

 private:
  void FreeArrayElements();
};

}  // namespace vn
