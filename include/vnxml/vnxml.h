// vnxml.h: the whole public surface of the library.
#pragma once

#include "vnxml/common.h"
#include "vnxml/dom.h"
#include "vnxml/dom_path.h"
#include "vnxml/json_contract.h"
#include "vnxml/json_document.h"
#include "vnxml/json_form_reader.h"
#include "vnxml/json_handler.h"
#include "vnxml/json_parser.h"
#include "vnxml/json_path.h"
#include "vnxml/json_reader.h"
#include "vnxml/json_reflected_values.h"
#include "vnxml/json_values.h"
#include "vnxml/sax.h"
#include "vnxml/serializer.h"
#include "vnxml/xml_utils.h"
#include "vnxml/xpath.h"

// schema-adapter
#include "vnxml/dom_adapter.h"
#include "vnxml/schema_element.h"
// ---- serial-walk ----
#include "vnxml/serializer_builder.h"
#include "vnxml/serializer_walker.h"
#include "vnxml/xml_dom_serializer.h"
#include "vnxml/xml_serializer.h"
// bridges
#include "vnxml/dom_json_writer.h"
#include "vnxml/sax_json_reader.h"
#include "vnxml/sax_parser.h"
// ---- serial-json ----
#include "vnxml/json_serializer.h"
#include "vnxml/json_serializer_reader.h"
