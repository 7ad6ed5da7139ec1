// TVnXMLSchemaElement: the table of rows, the lookup and schema-ordered creation of nodes.
#include "vnxml/schema_element.h"

#include <algorithm>

#include "vnxml/common/sysutils.h"
#include "vnxml/dom_path.h"

namespace vn {

TVnXMLSchemaElement::TVnXMLSchemaElement(IPtr<IVnDOMElement> AElement) : FDOMElement(std::move(AElement)) {
  // A plain object: interfaces taken on it never free it, its creator does.
  SetAutoDestroy(false);
}

TVnXMLSchemaElement::~TVnXMLSchemaElement() {
  FreeArrayElements();
  FSubElements.Clear();
  for (const auto& pair : FSchemaInfo) delete pair.Value;
  FSchemaInfo.Clear();
}

void TVnXMLSchemaElement::FreeArrayElements() {
  for (const auto& pair : FArrayElements)
    if (pair.Value.IsObject()) delete pair.Value.AsObject();
  FArrayElements.Clear();
}

void TVnXMLSchemaElement::AddSchemaInfo(Integer AIndex, TVnDOMNodeType ANodeType, std::u16string_view AName,
                                        Integer AMinOccurs, Integer AMaxOccurs, bool ARequired,
                                        Integer AChoiceIdx) {
  auto info = std::make_unique<TVnXMLSchemaInfo>(AName, ANodeType);
  info->FMinOccurs = AMinOccurs;
  info->FMaxOccurs = AMaxOccurs;
  info->FRequired = ARequired;
  info->FChoiceIdx = AChoiceIdx;
  FSchemaInfo.Add(AIndex, info.get());  // a taken index raises before anything changes
  FSchemaInfoList.push_back(info.release());
}

TVnXMLSchemaInfo* TVnXMLSchemaElement::FindSchemaInfo(std::u16string_view AName) const {
  for (const auto& pair : FSchemaInfo)
    if (SameText(pair.Value->FName, AName)) return pair.Value;
  return nullptr;
}

namespace {
// Runs the row's event unless its handler is running already (a handler may read its own row).
void FireOnGetValue(TVnXMLSchemaElement* ASender, const TVnXMLSchemaElementOnGetValue& AEvent,
                    std::vector<TVnXMLSchemaInfo*>& ACreating, TVnXMLSchemaInfo* AInfo) {
  if (!AEvent || std::find(ACreating.begin(), ACreating.end(), AInfo) != ACreating.end()) return;
  ACreating.push_back(AInfo);
  struct Pop {
    std::vector<TVnXMLSchemaInfo*>& List;
    TVnXMLSchemaInfo* Info;
    ~Pop() { List.erase(std::find(List.begin(), List.end(), Info)); }
  } pop{ACreating, AInfo};
  AEvent(ASender, AInfo);
}
}  // namespace

IPtr<IVnDOMNode> TVnXMLSchemaElement::GetNodeByIndex(Integer AIndex, bool ACreate) {
  TVnXMLSchemaInfo* info = nullptr;
  if (!FSchemaInfo.TryGetValue(AIndex, info)) throw EListError(cVnSchemaInvalidIndex);
  FireOnGetValue(this, FOnGetValue, FCreating, info);

  IPtr<IVnDOMNode> node;
  if (info->FNodeType == ntAttribute) {
    if (FDOMElement->HasAttribute(info->FName, TVnDOMSelectOptions{}))
      node = FDOMElement->AttributeByName(info->FName, TVnDOMSelectOptions{});
    else if (info->FRequired)
      ACreate = true;
  } else {
    node = FDOMElement->ElementByName(info->FName, TVnDOMSelectOptions{});
    if (!node && (info->FRequired || info->FMinOccurs == 1)) ACreate = true;
  }
  if (node || !ACreate) return node;

  if (info->FNodeType == ntAttribute) return FDOMElement->AddAttribute(info->FName);
  if (FDOMElement->ElementCount() == 0) return FDOMElement->AddElement(info->FName);
  // Behind the nearest earlier row that has an element, else in front of everything.
  auto place = std::find(FSchemaInfoList.begin(), FSchemaInfoList.end(), info);
  while (place != FSchemaInfoList.begin()) {
    --place;
    if (IPtr<IVnDOMElement> before = FDOMElement->ElementByName((*place)->FName, TVnDOMSelectOptions{}))
      return FDOMElement->InsertElement(info->FName, rdpAfter, before);
  }
  return FDOMElement->InsertElement(info->FName, rdpFirst, nullptr);
}

namespace {
// The row's name, or its name behind the first colon, equals AName exactly.
bool RowMatches(const UnicodeString& ARowName, std::u16string_view AName) {
  if (ARowName == AName) return true;
  size_t colon = ARowName.find(u':');
  return colon != UnicodeString::npos && std::u16string_view(ARowName).substr(colon + 1) == AName;
}
}  // namespace

IPtr<IVnDOMNode> TVnXMLSchemaElement::FindNode(std::u16string_view AName) {
  if (AName.empty()) return FDOMElement;
  for (const auto& pair : FSchemaInfo)
    if (RowMatches(pair.Value->FName, AName)) return GetNodeByIndex(pair.Key, false);
  return nullptr;
}

IPtr<IVnDOMNode> TVnXMLSchemaElement::GetNode(std::u16string_view AName) {
  if (AName.empty()) return FDOMElement;
  for (const auto& pair : FSchemaInfo)
    if (RowMatches(pair.Value->FName, AName)) return GetNodeByIndex(pair.Key, true);
  throw EListError(Format(cVnSchemaNodeNotInSchema, {AName}));
}

void TVnXMLSchemaElement::RemoveNode(std::u16string_view AName) {
  IPtr<IVnDOMNode> node = FDOMElement->SelectSingleNode(AName, {soCaseInsensitive, soLocalName});
  if (!node) return;
  // Compared by the object behind the interfaces, not by interface pointer.
  TVnDOMNode* target = TVnDOMObjectImpl::Node(node.Get());
  for (Integer i = FSubElements.Count() - 1; i >= 0; --i) {
    TVnXMLSchemaElement* sub = FSubElements[i];
    if (sub->FDOMElement && TVnDOMObjectImpl::Node(sub->FDOMElement.Get()) == target) FSubElements.Delete(i);
  }
  FDOMElement->RemoveChild(node);
}

void TVnXMLSchemaElement::Clear() {
  FreeArrayElements();
  FSubElements.Clear();
  FDOMElement->Clear();
}

void TVnXMLSchemaElement::AssignTo(TObject* ADest) const {
  if (auto* dest = CastObject<TVnXMLSchemaElement>(ADest)) {
    dest->Clear();
    dest->FDOMElement->SetInnerXML(FDOMElement->GetInnerXML());
    return;
  }
  TVnObjectEx::AssignTo(ADest);
}

bool TVnXMLSchemaElement::GetValue(Integer AIndex, UnicodeString& AValue) {
  IPtr<IVnDOMNode> node = GetNodeByIndex(AIndex, false);
  if (!node) {
    AValue.clear();
    return false;
  }
  AValue = node->GetNodeValue();
  return true;
}

void TVnXMLSchemaElement::SetValue(Integer AIndex, std::u16string_view AValue) {
  IPtr<IVnDOMNode> node = GetNodeByIndex(AIndex, false);
  if (!node) {
    if (AValue.empty()) return;
    node = GetNodeByIndex(AIndex, true);
  }
  node->SetNodeValue(AValue);
}

}  // namespace vn
