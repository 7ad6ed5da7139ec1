// TVnJSONHandler: JSON events into operations on the tree's nodes.
#include "vnxml/json_handler.h"

#include "json/doc_load.h"
#include "json/doc_messages.h"
#include "vnxml/json_values.h"

namespace vn {

using detail::JSONNodeClass;

namespace {
[[noreturn]] void Oops() { throw EVnJSONException(0, UnicodeString(detail::cJSONHandlerOops)); }
}  // namespace

void TVnJSONHandler::OpenContainer(TVnJSONDataType AKind) {
  TVnJSONBase* current = FCurrValue;
  switch (current ? current->NodeClass() : JSONNodeClass::Base) {
    case JSONNodeClass::Document: FCurrValue = static_cast<TVnJSONDocument*>(current)->CreateRootValue(AKind); break;
    case JSONNodeClass::Array: FCurrValue = current->AddValue(AKind); break;
    case JSONNodeClass::Object: {
      TVnJSONMember* last = static_cast<TVnJSONObject*>(current)->GetLastMember();
      if (!last) Oops();  // an object without a member has nothing to hold the value
      FCurrValue = last->CreateValue(AKind);
      break;
    }
    case JSONNodeClass::Member: FCurrValue = static_cast<TVnJSONMember*>(current)->CreateValue(AKind); break;
    default: Oops();
  }
}

void TVnJSONHandler::CloseContainer() {
  TVnJSONBase* n = FCurrValue ? FCurrValue->GetOwner() : nullptr;
  while (n) {
    JSONNodeClass c = n->NodeClass();
    if (c == JSONNodeClass::Object || c == JSONNodeClass::Array || c == JSONNodeClass::Document) break;
    n = n->GetOwner();
  }
  FCurrValue = n;
}

void TVnJSONHandler::StartMember(std::u16string_view AName) {
  if (!FCurrValue || FCurrValue->NodeClass() != JSONNodeClass::Object)
    throw Exception(UnicodeString(detail::cJSONInvalidObjectType));
  FCurrValue->AddMember(AName, jdtNull);
}

void TVnJSONHandler::Value(TVnJSONSimpleDataType AValueType, std::u16string_view AValue) {
  TVnJSONBase* node = nullptr;
  TVnJSONBase* current = FCurrValue;
  switch (current ? current->NodeClass() : JSONNodeClass::Base) {
    case JSONNodeClass::Object: {
      TVnJSONMember* last = static_cast<TVnJSONObject*>(current)->GetLastMember();
      if (!last) Oops();
      node = last->CreateValue(AValueType);
      break;
    }
    case JSONNodeClass::Array: node = current->AddValue(AValueType); break;
    default: Oops();
  }
  auto* simple = dynamic_cast<TVnJSONSimpleType*>(node);
  if (!simple) Oops();
  detail::CheckJSONText(AValue, AValueType);
  // Kept raw: decoded on reading exactly as the string variant of VnJSONtoStr would read.
  detail::JSONText raw;
  raw.AssignOwned(AValue);
  simple->StoreRaw(raw, AValueType);
}

}  // namespace vn
