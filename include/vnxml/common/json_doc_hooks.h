// json_doc_hooks.h: the two JSON document hooks of the common package (unit rVnCommon), which
// let common code make a JSON document and read a value by path without knowing the JSON unit.
// The JSON unit fills them; they are in place before the first Get (the registry of the hooks
// runs the unit's registration on first use).
#pragma once

#include <string_view>

#include "vnxml/common/interface.h"
#include "vnxml/common/variant.h"

namespace vn {

/// Makes a document from JSON text and gives it as an interface.
using TVnCreateJSONDocFunc = IPtr<IInterface> (*)(std::u16string_view AText);
/// The value at APath in a document made by the first hook; unassigned when nothing is there.
using TVnGetJSONDocValueFunc = Variant (*)(const IPtr<IInterface>& ADoc, std::u16string_view APath);

void SetCreateJSONDoc(TVnCreateJSONDocFunc AFunc);
void SetGetJSONDocValue(TVnGetJSONDocValueFunc AFunc);
TVnCreateJSONDocFunc GetCreateJSONDoc();
TVnGetJSONDocValueFunc GetGetJSONDocValue();

}  // namespace vn
