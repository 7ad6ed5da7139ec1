// xml_utils.h: conversions between native values and XML text (unit uVnXMLUtils).
// xml_escape.h escapes and decodes character data; xml_values.h converts typed values.
#pragma once

#include "vnxml/xml_escape.h"
#include "vnxml/xml_reflected_values.h"
#include "vnxml/xml_values.h"
