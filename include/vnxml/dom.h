// dom.h: the XML document object model (unit uVnXMLDOM).
// Objects (TVnDOM...) are owned by their tree and used by direct calls; interfaces (IVnDOM...)
// are their counted faces, made on demand. Values are stored escaped; names are compared through
// the collation of the node's document. Failures raise the EVnDomException family.
#pragma once

#include "vnxml/dom_document.h"
#include "vnxml/dom_element.h"
#include "vnxml/dom_interfaces.h"
#include "vnxml/dom_leaves.h"
#include "vnxml/dom_lists.h"
#include "vnxml/dom_names.h"
#include "vnxml/dom_node.h"
#include "vnxml/dom_object.h"
#include "vnxml/dom_parser.h"
