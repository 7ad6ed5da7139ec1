// The JSON unit's two hooks for the common package: a document from text, a value by path.
#include "vnxml/common/json_doc_hooks.h"
#include "vnxml/json_document.h"

namespace vn::detail {

namespace {
IPtr<IInterface> CreateJSONDoc(std::u16string_view AText) {
  IPtr<IVnJSONDocument> doc(static_cast<IVnJSONDocument*>(new TVnJSONDocument()));
  doc->SetAsJSON(AText);
  return IPtr<IInterface>(doc.Get());
}

Variant GetJSONDocValue(const IPtr<IInterface>& ADoc, std::u16string_view APath) {
  IPtr<IVnJSONDocument> doc = ADoc.As<IVnJSONDocument>();
  if (!doc) return Variant();
  IPtr<IVnJSONArray> nodes = doc->SelectIntf(APath, {});
  if (!nodes || nodes->Count() == 0) return Variant();
  return nodes->GetItem(0)->GetAsVariant();
}
}  // namespace

void RegisterJSONDocHooks() {
  SetCreateJSONDoc(&CreateJSONDoc);
  SetGetJSONDocValue(&GetJSONDocValue);
}

}  // namespace vn::detail
