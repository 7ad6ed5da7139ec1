// dom_messages.h: the fixed message texts of the XML document object model (unit uVnXMLDOM).
// Callers and tests compare against these constants; %s and %d are filled by Format.
#pragma once

namespace vn {

inline constexpr char16_t cVnDomNoImpl[] =
    u"DOM Objects do not support interfaces. All interface requests should be handled by the DOMIMpl object.";
inline constexpr char16_t cVnDomDestroyedWhileCounted[] = u"An instance of %s is destroyed while it's refcount is not 0!";
inline constexpr char16_t cVnDomSetNodeValueNotSupported[] = u"The SetNodeValue is not supported by the TVnDomNode";
inline constexpr char16_t cVnDomSetInnerXMLNotSupported[] = u"The SetInnerXML is not supported by the TVnDomNode";
inline constexpr char16_t cVnDomListEmpty[] = u"Failed to get the first node!\r\nThe list contains no nodes.";
inline constexpr char16_t cVnDomRefNodeNotInList[] = u"The specified referencenode is not part of this list!";
inline constexpr char16_t cVnDomNoChildElementNamed[] = u"There is no childelement with the name %s!";
inline constexpr char16_t cVnDomInvalidIdx[] = u"Invalid idx value";
inline constexpr char16_t cVnDomBothCaseOptions[] =
    u"It is not possible to specify both soCaseSensitive and soCaseInsensitive!";
inline constexpr char16_t cVnDomNoCreateInFind[] = u"It is not possible to specify soCreate!";
inline constexpr char16_t cVnDomNoNodeForName[] = u"There is no node for the given name \"%s\".";
inline constexpr char16_t cVnDomNoChildNamed[] = u"There is no child with the name \"%s\"!";
inline constexpr char16_t cVnDomNodeClassRequired[] = u"A NodeClass is required when soCreate is specified!";
inline constexpr char16_t cVnDomNoChildLocalNS[] = u"There is no child with the localname \"%s\" and namespace \"%s\"!";
inline constexpr char16_t cVnDomNotAChild[] = u"The specified ChildNode is not a child of this element!";
inline constexpr char16_t cVnDomNoRaiseOrCreate[] = u"It is not possible to specify either soRaise or soCreate!";
inline constexpr char16_t cVnDomNoCDATAIndex[] = u"There is no CDATA element with index %d!";
inline constexpr char16_t cVnDomHasRoot[] = u"This DOM document already contains a rootnode!";
inline constexpr char16_t cVnDomNoDocumentClone[] =
    u"It is not possible to clone a TVnDOMDocument using the CloneNode method!";
inline constexpr char16_t cVnDomNotANamespace[] = u"The attribute is not a namespace declaration!";
inline constexpr char16_t cVnDomSplitNeedsParent[] = u"SplitText needs a node with a parent!";
inline constexpr char16_t cVnDomObjectGone[] = u"The DOM object behind this interface has been freed.";
inline constexpr char16_t cVnDomHasParent[] = u"The node already has a parent; remove it there first!";
inline constexpr char16_t cVnDomAddToItself[] = u"A node cannot be added below itself!";
inline constexpr char16_t cVnDomDocumentAsChild[] = u"A document cannot be added below another node!";
inline constexpr char16_t cVnDomNotYetSupported[] = u"%s is not supported yet.";
inline constexpr char16_t cVnDomJSONOutput[] = u"Serialization as JSON";
inline constexpr char16_t cVnDomInvalidTypeInfo[] = u"The type attribute does not contain valid typeinfo.";
inline constexpr char16_t cVnDomListWrongKind[] = u"A node of type %s does not belong in this list!";
inline constexpr char16_t cVnDomListNeedsOwner[] =
    u"A path or coCreate needs a list that belongs to an element; a list made for a caller has none!";
inline constexpr char16_t cVnDomListReadOnly[] =
    u"The namespaces in scope are read-only; add or remove the declarations on the elements instead!";
inline constexpr char16_t cVnDomNoProcessingInstruction[] = u"There is no processinginstruction \"%s\"!";
inline constexpr char16_t cVnDomSyntaxAt[] = u"Line %d, column %d: %s";
inline constexpr char16_t cVnDomNoCollator[] = u"The collator of the invariant locale is not available.";
inline constexpr char16_t cVnDomAttributeNameNotWritable[] =
    u"The attribute name \"%s\" cannot be written as XML that loads back with the same name!";
inline constexpr char16_t cVnDomElementNameNotWritable[] =
    u"The element name \"%s\" cannot be written as XML that loads back with the same name!";
inline constexpr char16_t cVnDomCDATANotWritable[] =
    u"The CDATA section \"%s\" holds \"]]>\" and cannot be written as XML that loads back with the same text!";
inline constexpr char16_t cVnDomCommentNotWritable[] =
    u"The comment \"%s\" holds \"-->\" and cannot be written as XML that loads back with the same text!";
inline constexpr char16_t cVnDomInstructionNotWritable[] =
    u"The processing instruction data \"%s\" holds \"?\" or starts with a space and cannot be written as XML that loads back with the same text!";
inline constexpr char16_t cVnDomInstructionTargetNotWritable[] =
    u"The processing instruction target \"%s\" holds a space or \"?\" and cannot be written as XML that loads back with the same target!";

}  // namespace vn
