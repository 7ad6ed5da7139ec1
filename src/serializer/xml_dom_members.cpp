// DOM documents and elements below the root of an object's XML: the markup stands inside the
// member's element, and is collected from the reader's events as it came, to be loaded at the end.
#include <vector>

#include "serializer/boxed_read.h"
#include "vnxml/common/code_page.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_element.h"
#include "vnxml/dom_leaves.h"
#include "vnxml/sax_contract.h"
#include "vnxml/xml_dom_serializer.h"
#include "vnxml/xml_escape.h"

namespace vn {

namespace detail {

struct DOMMemberText {
  /// All the markup inside the member's element.
  UnicodeString Text;
  /// The first element inside: its qualified name, its attributes (values as written) and
  /// where its content starts and ends in Text.
  UnicodeString Name;
  std::vector<std::pair<UnicodeString, UnicodeString>> Attributes;
  size_t InnerStart = 0;
  size_t InnerEnd = 0;
  bool HasElement = false;
};

}  // namespace detail

namespace {

template <class T>
T* InstanceAs(void* AInstance) {
  auto* object = CastObject<T>(static_cast<TObject*>(AInstance));
  VnAssert(object != nullptr, cVnNotADOMInstance);
  return object;
}

}  // namespace

// ---- writing ----

void TVnXMLDocSerializer::DoSerialize(TVnSerializer*, std::u16string_view, std::u16string_view) {
  if (TVnDOMElement* root = InstanceAs<TVnDOMDocument>(FInstancePtr)->GetRootNode())
    root->SaveToStream(*FStream, cVnCodePageUTF8, false);
}

void TVnDOMElementSerializer::DoSerialize(TVnSerializer*, std::u16string_view, std::u16string_view) {
  InstanceAs<TVnDOMElement>(FInstancePtr)->SaveToStream(*FStream, cVnCodePageUTF8, false);
}

// ---- reading ----

TObject* TVnXMLDeserializer::CreateInstance(const TVnTypeInfo*& AType) {
  if (AType && AType->GetKind() == tkClass && ClassInheritsFrom(AType->Handle()->ClassType, TVnDOMElement::StaticClass()))
    throw Exception(cVnNotSupported);
  detail::CheckBoxedOwner(*this, GetPath());
  return TVnDeserializer::CreateInstance(AType);
}

TVnXMLDOMMemberDeserializer::TVnXMLDOMMemberDeserializer() : FMarkup(new detail::DOMMemberText()) {}
TVnXMLDOMMemberDeserializer::~TVnXMLDOMMemberDeserializer() = default;

void TVnXMLDOMMemberDeserializer::Load(const detail::DOMMemberText&) {}

void TVnXMLDOMMemberDeserializer::DoStartElement(std::u16string_view, std::u16string_view, std::u16string_view AQName,
                                                 IVnSAXAttributes* AAttributes) {
  // Level 0 is the member's own element, which started before this deserializer took over.
  ++FLevel;
  const bool first = FLevel == 1 && !FMarkup->HasElement;
  UnicodeString& text = FMarkup->Text;
  text += u'<';
  text += AQName;
  if (first) FMarkup->Name = AQName;
  if (AAttributes) {
    for (PVnSAXXMAttribute a = AAttributes->FirstAttribute(); a; a = a->Next) {
      text += u' ';
      text += a->QName;
      text += u"=\"";
      text += a->Value;
      text += u'"';
      if (first) FMarkup->Attributes.emplace_back(a->QName, a->Value);
    }
  }
  text += u'>';
  if (first) {
    FMarkup->HasElement = true;
    FMarkup->InnerStart = text.size();
  }
}

void TVnXMLDOMMemberDeserializer::DoCharacters(std::u16string_view AText) {
  // A CDATA section's text is not escaped; it joins the markup escaped.
  FMarkup->Text += FInCDATA ? VnStrToXML(AText, false, false) : UnicodeString(AText);
}

void TVnXMLDOMMemberDeserializer::DoEndElement(std::u16string_view AURI, std::u16string_view ALocalName,
                                               std::u16string_view AQName) {
  if (FLevel >= 1) {
    if (FLevel == 1 && FMarkup->InnerEnd < FMarkup->InnerStart) FMarkup->InnerEnd = FMarkup->Text.size();
    FMarkup->Text += u"</";
    FMarkup->Text += AQName;
    FMarkup->Text += u'>';
    --FLevel;
    return;
  }
  try {
    Load(*FMarkup);
  } catch (const EAssertionFailed&) {
    throw;
  } catch (const Exception& e) {
    throw EVnSerializeException(cVnDOMMemberFailure, {GetPath(), e.Message()});
  }
  FMarkup.reset(new detail::DOMMemberText());
  TVnXMLDeserializer::DoEndElement(AURI, ALocalName, AQName);
}

void TVnXMLDocDeserializer::Load(const detail::DOMMemberText& AText) {
  InstanceAs<TVnDOMDocument>(FInstancePtr)->LoadXML(AText.Text);
}

void TVnDOMElementDeserializer::Load(const detail::DOMMemberText& AText) {
  if (!AText.HasElement) return;
  auto* element = InstanceAs<TVnDOMElement>(FInstancePtr);
  element->SetQualifiedName(AText.Name);
  while (element->AttributeCount() > 0)
    element->RemoveAttribute(static_cast<TVnDOMAttribute*>(element->AttributesView()[0]));
  for (const auto& [name, value] : AText.Attributes) element->SetAttribute(name, VnXMLToStr(value));
  element->SetInnerXML(std::u16string_view(AText.Text).substr(AText.InnerStart, AText.InnerEnd - AText.InnerStart));
  element->RefreshNamespaces();
}

}  // namespace vn
