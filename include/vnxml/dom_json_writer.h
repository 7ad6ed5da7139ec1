// dom_json_writer.h: an XML tree written as JSON text (unit uVnXMLDOM).
// The shape of the tree drives the mapping: an element with child elements becomes an object,
// one without them a value, siblings of one local name an array at the place of the first of
// them, and attributes extra members named element_attribute (with "_" in front while a child
// element has that local name, compared exactly). Names are local names with "." as "_" (an array keeps its dots), and
// are written unescaped; prefixes, namespace declarations, xsi/xsd attributes, comments,
// processing instructions and the text of elements that have child elements are not written.
// A leaf's value follows its typed value: xsi:nil gives null, xsi:type of an integer or float
// type a bare number, of a boolean true or false, of an enumeration or set its JSON form; text
// without xsi:type is a string, and no text at all null. A number whose text doesn't start like
// one (+, -, ., a digit) is written as a string, so the output stays JSON.
// Separators are "," with no blank, except ", " before the attributes of a leaf; formatted text
// indents by two blanks a level and ends lines with "\r\n". Text is encoded in the code page
// given (1200 UTF-16LE, 65001 UTF-8, any other through its converter).
// Failures: an empty xsi:type raises EVnDomException, text that doesn't fit its xsi:type the
// conversion's exception; what was written up to there stays in the stream.
// The writer is a set of free functions over the node classes: the form is chosen by the
// node's type, as a virtual member would choose it. Depth costs no call stack.
#pragma once

#include "vnxml/common/types.h"

namespace vn {

class TStream;
class TVnDOMNode;
class TVnDOMDocument;

/// ANode as JSON in ACodePage: an element as a whole object {"name": value}; a document as the
/// bare "name": value pair of its root, with no braces around it; an attribute as its
/// "element_attribute": "value" pair; any other node writes nothing.
void SaveToJSONStream(const TVnDOMNode& ANode, TStream& AStream, Word ACodePage, bool AFormatted);
/// The document in UTF-8, after the UTF-8 byte-order mark when AWriteBOM is set.
void SaveToJSONStream(const TVnDOMDocument& ADocument, TStream& AStream, bool AFormatted, bool AWriteBOM);
/// A document takes (AFormatted, AWriteBOM); its node form is reached through a TVnDOMNode
/// reference. This keeps a code page from passing silently for the formatted flag.
void SaveToJSONStream(const TVnDOMDocument& ADocument, TStream& AStream, Word ACodePage, bool AFormatted) = delete;

/// The text SaveToJSONStream writes for ANode, as a string.
UnicodeString GetJSON(const TVnDOMNode& ANode, bool AFormatted = false);

}  // namespace vn
