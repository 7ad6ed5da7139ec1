// vnxml.h: the whole public surface of the library.
#pragma once

#include "vnxml/common.h"
#include "vnxml/dom.h"
#include "vnxml/dom_path.h"
#include "vnxml/sax.h"
#include "vnxml/serializer.h"
#include "vnxml/xml_utils.h"
#include "vnxml/xpath.h"
