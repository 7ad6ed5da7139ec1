// The selection members of nodes and elements: thin doors into the path engine.
#include "vnxml/dom_path.h"

namespace vn {

std::unique_ptr<TVnDOMNodeList> TVnDOMNode::CreateNodeList(std::u16string_view APath, TVnDOMSelectOptions AOptions) {
  return vn::CreateNodeList(this, APath, AOptions);
}

TVnDOMNode* TVnDOMNode::SelectSingleNode(std::u16string_view APath, TVnDOMSelectOptions AOptions) {
  return vn::SelectSingleNode(this, APath, AOptions);
}

std::unique_ptr<TVnDOMElementList> TVnDOMElement::CreateElementList(std::u16string_view APath,
                                                                    TVnDOMSelectOptions AOptions) {
  return vn::CreateElementList(this, APath, AOptions);
}

TVnDOMElement* TVnDOMElement::SelectSingleElement(std::u16string_view APath, TVnDOMSelectOptions AOptions) {
  return vn::SelectSingleElement(this, APath, AOptions);
}

}  // namespace vn
