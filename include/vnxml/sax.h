// sax.h: event reading of XML (unit uVnSAX).
// Flow: TVnSAXXMLReader scans the text with TVnXMLParser and calls the IVnSAX* handlers; it
// decodes no references and hands every name, value and text run on as it stands in the source.
// Lifetime: text and attribute sets handed to a handler are valid during the call only; copy
// what you keep. Readers and attribute sets don't count references: their creator frees them.
// Failures: reported to the error handler's FatalError, then raised as EVnXMLParseError (or the
// scanner's EVnTextParserEOF when the text ends where it may not).
#pragma once

#include "vnxml/sax_contract.h"
#include "vnxml/sax_reader.h"
#include "vnxml/sax_xml_parser.h"
// JSON read as XML events, and the component that picks the reader by the first character.
#include "vnxml/sax_json_reader.h"
#include "vnxml/sax_parser.h"
