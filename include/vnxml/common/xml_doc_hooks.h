// xml_doc_hooks.h: the two XML document hooks of the common package (unit rVnCommon), which
// let common code make an XML document and read a value by path without knowing the DOM unit.
// The DOM unit fills them; they are in place before the first Get (the registry of the hooks
// runs the unit's registration on first use).
#pragma once

#include <string_view>

#include "vnxml/common/interface.h"
#include "vnxml/common/variant.h"

namespace vn {

/// Makes a document from XML text and gives it as an interface.
using TVnCreateXMLDocFunc = IPtr<IInterface> (*)(std::u16string_view AText);
/// The value of the node at APath in a document made by the first hook; unassigned when there is none.
using TVnGetXMLDocValueFunc = Variant (*)(const IPtr<IInterface>& ADoc, std::u16string_view APath);

void SetCreateXMLDoc(TVnCreateXMLDocFunc AFunc);
void SetGetXMLDocValue(TVnGetXMLDocValueFunc AFunc);
TVnCreateXMLDocFunc GetCreateXMLDoc();
TVnGetXMLDocValueFunc GetGetXMLDocValue();

}  // namespace vn
