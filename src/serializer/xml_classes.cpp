// The XML classes of string lists, components and TValue, and the start-up registration of
// the XML pair.
#include "serializer/boxed_read.h"
#include "serializer/serializer_startup.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/string_list.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_element.h"
#include "vnxml/xml_dom_serializer.h"
#include "vnxml/xml_escape.h"
#include "vnxml/serializer_walker.h"
#include "vnxml/xml_serializer.h"

namespace vn {

void TVnXMLStringsSerializer::DoSerialize(TVnSerializer* AParent, std::u16string_view, std::u16string_view) {
  auto* strings = CastObject<TStrings>(static_cast<TObject*>(FInstancePtr));
  if (!strings) return;
  const TVnTypeInfo* stringType = TVnTypes::GetTypeInfo<UnicodeString>();
  for (Integer i = 0; i < strings->GetCount(); ++i)
    AParent->SerializeValue(u"item", stringType, TValue::From(strings->GetStrings(i)), i, {});
}

void TVnXMLStringsDeserializer::DeserializeStartType() {
  TVnXMLDeserializer::DeserializeStartType();
  if (auto* strings = CastObject<TStrings>(static_cast<TObject*>(FInstancePtr))) strings->Clear();
}

TVnCanDeserialize TVnXMLStringsDeserializer::CanDeserialize(UnicodeString&, UnicodeString& AName, UnicodeString&,
                                                            bool) {
  ReleaseChild();
  return SameText(AName, u"item") ? desYes : desNo;
}

void TVnXMLStringsDeserializer::MemberText(std::u16string_view AText, bool) {
  if (!SameText(FLocalName, u"item")) return;
  if (auto* strings = CastObject<TStrings>(static_cast<TObject*>(FInstancePtr))) strings->Add(VnXMLToStr(AText));
}

void TVnXMLComponentSerializer::DoSerialize(TVnSerializer* AParent, std::u16string_view AName,
                                            std::u16string_view APath) {
  auto* component = CastObject<TComponent>(static_cast<TObject*>(FInstancePtr));
  if (TComponent* owner = component ? component->GetOwner() : nullptr; owner && !owner->GetName().empty())
    AParent->SerializeValue(u"Owner", TVnTypes::GetTypeInfo(owner->ClassType()), TValue::From(owner->GetName()), -1, {});
  TVnXMLSerializer::DoSerialize(AParent, AName, APath);
}

void TVnXMLValueDeserializer::DoStartElement(std::u16string_view, std::u16string_view, std::u16string_view AQName,
                                             IVnSAXAttributes* AAttributes) {
  // Level 0 is the member's own element: everything inside is kept as markup.
  ++FLevel;
  FMarkup += u'<';
  FMarkup += AQName;
  if (AAttributes) {
    for (PVnSAXXMAttribute a = AAttributes->FirstAttribute(); a; a = a->Next) {
      FMarkup += u' ';
      FMarkup += a->QName;
      FMarkup += u"=\"";
      FMarkup += a->Value;
      FMarkup += u'"';
    }
  }
  FMarkup += u'>';
}

void TVnXMLValueDeserializer::DoCharacters(std::u16string_view AText) {
  if (FLevel >= 1) {
    FMarkup += FInCDATA ? VnStrToXML(AText, false, false) : UnicodeString(AText);
    return;
  }
  if (FLevel != 0) return;
  FText += AText;
  FHasText = true;
}

void TVnXMLValueDeserializer::DoEndElement(std::u16string_view AURI, std::u16string_view ALocalName,
                                           std::u16string_view AQName) {
  if (FLevel < 1) return TVnXMLDeserializer::DoEndElement(AURI, ALocalName, AQName);
  FMarkup += u"</";
  FMarkup += AQName;
  FMarkup += u'>';
  --FLevel;
}

void TVnXMLValueDeserializer::ReadComplex(const TVnTypeInfo* AType) {
  auto& target = *static_cast<TValue*>(FInstancePtr);
  // A member given twice keeps the later value; an object this read made for it before goes.
  FreeIfCreated(target);
  // The markup read as the members of a root of its own; the xsi prefix of the text's root
  // is declared again, for the type marks inside.
  const UnicodeString text = u"<value xmlns:xsi=\"" + UnicodeString(cVnXSINamespace) + u"\">" + FMarkup + u"</value>";
  const Integer depth = detail::BoxedReadDepth(*this, cVnNestingTooDeep, GetPath());
  switch (AType->Kind()) {
    case vtkRecord:
    case vtkDynArray:
    case vtkStaticArray:
      target = detail::ReadBoxed(dsfXML, TValue::Make(nullptr, AType->Handle()), UnicodeToUtf8(text), depth);
      break;
    case vtkClass: {
      // The member must be one a failed read can reset: a field or property of an object.
      TVnDeserializer* parent = GetParentDeserializer();
      if (!CallerListsCreated() || !parent || !parent->GetInstanceTypeInfo() ||
          parent->GetInstanceTypeInfo()->GetKind() != tkClass || (!parent->GetMemberField() && !parent->GetMemberProp()))
        break;
      const TVnTypeInfo* type = AType;
      TObject* made = TVnDeserializer::CreateInstance(type);
      target = TValue::FromObject(made);
      RecordLink(parent->GetInstancePtr(), parent->GetMemberField(), parent->GetMemberProp());
      detail::ReadBoxed(dsfXML, TValue::FromObject(made), UnicodeToUtf8(text), depth);
      break;
    }
    default:
      break;
  }
}

void TVnXMLValueDeserializer::DeserializeEndType() {
  auto* parent = CastObject<TVnXMLDeserializer>(GetParentDeserializer());
  if (!FMarkup.empty() && FInstancePtr && parent && parent->GetDataTypeInfo()) {
    ReadComplex(parent->GetDataTypeInfo());
    FMarkup.clear();
    FHasText = false;
  } else if (FHasText && FInstancePtr) {
    // The element's xsi:type gives the value its type; without one it is a string.
    auto& target = *static_cast<TValue*>(FInstancePtr);
    FreeIfCreated(target);
    target = FDataType.empty() ? TValue::From(ValueToStr(FText)) : ValueToVal(FText, FDataType);
    FHasText = false;
  }
  TVnXMLDeserializer::DeserializeEndType();
}

namespace detail {

void RegisterXMLSerializers() {
  const TClass serializer = TVnXMLSerializer::StaticClass();
  const TClass deserializer = TVnXMLDeserializer::StaticClass();
  VnRegisterSerializer(dsfXML, static_cast<const TTypeInfo*>(nullptr), serializer, deserializer);
  VnRegisterSerializer(dsfXML, TStrings::StaticClass(), TVnXMLStringsSerializer::StaticClass(),
                       TVnXMLStringsDeserializer::StaticClass());
  VnRegisterSerializer(dsfXML, TComponent::StaticClass(), TVnXMLComponentSerializer::StaticClass(),
                       TVnXMLComponentDeserializer::StaticClass());
  VnRegisterSerializer(dsfXML, TypeInfoOf<TValue>(), serializer, TVnXMLValueDeserializer::StaticClass());
  VnRegisterSerializer(dsfXML, TVnDOMDocument::StaticClass(), TVnXMLDocSerializer::StaticClass(),
                       TVnXMLDocDeserializer::StaticClass());
  VnRegisterSerializer(dsfXML, TVnDOMElement::StaticClass(), TVnDOMElementSerializer::StaticClass(),
                       TVnDOMElementDeserializer::StaticClass());
  VnRegisterSerializer(dsfJSON, TVnDOMDocument::StaticClass(), TVnXMLDocJSONSerializer::StaticClass(), nullptr);
}

}  // namespace detail

}  // namespace vn
