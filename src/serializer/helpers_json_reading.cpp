// The JSON reader's side of the container helpers: the array that a list, object list or
// dictionary is written as. Values go to the list's helper (json_deserializer.cpp); each object
// goes to the helper's CanDeserialize with the class its "className" names (none for an empty
// object, a nil element), and one that no helper takes (a dictionary's pair, an element of an
// unknown class) is passed over, as are nested arrays. A simple wrapper is no container: its
// text is a value.
#include "vnxml/common/custom_simple_type.h"
#include "vnxml/json_serializer_reader.h"
#include "vnxml/serializer_helpers.h"

namespace vn {

bool TVnJSONDeserializer::IsHelperContainer() const {
  if (!FInstancePtr || !FInstanceTypeInfo || FInstanceTypeInfo->Kind() != vtkClass) return false;
  const TClass type = static_cast<TObject*>(FInstancePtr)->ClassType();
  return !ClassInheritsFrom(type, TVnCustomSimpleType::StaticClass()) && VnCreateSerializerHelper(type) != nullptr;
}

void TVnJSONDeserializer::ContainerElement() {
  UnicodeString named;
  // An empty object is a nil element: the helper keeps its place (an object list does).
  if (FCHelper && ReadClassName(named)) {
    const TVnTypeInfo* type = named.empty() ? nullptr : TVnTypes::GetTypeInfo(named, tntSchemaName, false, mtkUnknown);
    UnicodeString uri = FNamespace, name = FCurrentMember, dataType = type ? type->QualifiedName() : UnicodeString();
    if (FCHelper->CanDeserialize(this, uri, name, dataType) == desYes && !named.empty() && ChildTookOver()) {
      FDispatcher->FActive->FOpened = true;
      return;
    }
  }
  Skip();
}

}  // namespace vn
