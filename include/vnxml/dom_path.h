// dom_path.h: selection of nodes by path in the XML tree (unit uVnXMLDOM).
// A path is a small language of its own that looks like XPath: steps separated by "/", "//" for
// any depth, "@name" for attributes, "*", ".", "..", "node()", "text()", groups "( )",
// alternatives "|" and filters "[...]" (xpath_terms.h). Indexes in filters count from 0; names
// match by their prefix text, through the node's collation (case-insensitive by default).
// A list made for a caller belongs to the caller; it never owns the nodes it lists.
//
// Work stays bounded by the tree and the path: a node that a step reaches again with the same
// rest of the path adds nothing new, so it is not run again, and a path inside a filter that
// starts at the document ("//x", "/r/x") is run once per selection, not once per candidate; a
// filter therefore sees the tree as it stood when that path first ran. soCreate adds no element
// while a "//" search is under way, since the search would go on into what it added: a step
// that would create there raises the "//" message of soCreate instead, and the tree is left as
// it was. Outside a search, and behind one that has finished (a search inside a filter),
// soCreate creates as usual.
#pragma once

#include <memory>
#include <string_view>

#include "vnxml/dom_document.h"
#include "vnxml/dom_messages.h"

namespace vn {

// ---- messages of the path and filter languages ----
inline constexpr char16_t cVnPathBothRaiseCreate[] = u"It is not possible to specify both soRaise and soCreate!";
inline constexpr char16_t cVnPathNoNodes[] = u"There are no nodes for the given path \"%s!.";
inline constexpr char16_t cVnPathNoElements[] = u"There are no nodes for the given path \"%s\"!";
inline constexpr char16_t cVnPathNoNode[] = u"There is no node for the given path \"%s\"!";
inline constexpr char16_t cVnPathTooComplex[] = u"The given path \"%s\" was too complex to use the soCreate option!";
inline constexpr char16_t cVnPathEmpty[] = u"The specified nodePath is empty!";
inline constexpr char16_t cVnPathNoRootRaise[] = u"There is no node for the given path \"%s\".";
inline constexpr char16_t cVnPathNoRootCreate[] =
    u"It is not possible to use XPath statements on documents without rootnode!";
inline constexpr char16_t cVnPathStartsWithSlash[] = u"The specified nodePath started with an unexpected token (/)!";
inline constexpr char16_t cVnPathNoDomNode[] = u"The XPath expression does not return a DOM Node!";
inline constexpr char16_t cVnPathInvalid[] = u"The XPath expression is not valid!";
inline constexpr char16_t cVnPathAfterStar[] =
    u"The XPath expression contains an error at \"%s\"!\r\na \"/\" or \"[\" was expected after the \"*\".";
inline constexpr char16_t cVnPathDeepParent[] =
    u"The XPath expression contains an error at \"%s\"!\r\nThe \"//\" cannot be used in combination with \"..\".";
inline constexpr char16_t cVnPathAfterDots[] =
    u"The XPath expression contains an error at \"%s\"!\r\na \"/\" or \"[\" was expected after the \"..\".";
inline constexpr char16_t cVnPathCreateDeep[] =
    u"The soCreate option cannot be used in combination with the \"//\" search option!";
inline constexpr char16_t cVnPathTooDeep[] = u"The XPath expression is nested too deeply!";
inline constexpr char16_t cVnFilterInvalid[] = u"\"%s\" is an invalid filter expression!";
inline constexpr char16_t cVnFilterStatementInvalid[] = u"The specified XPath statement is not valid!";
inline constexpr char16_t cVnFilterNumberExpected[] = u"Either a number or a string was expected!";
inline constexpr char16_t cVnFilterNumberOfString[] = u"Either a number of a string was expected!";
inline constexpr char16_t cVnFilterInvalidOperation[] = u"An invalid operation has been detected!";
inline constexpr char16_t cVnFilterCheckParenthesis[] = u"An invalid expression was detected!\r\nCheck the parenthesis.";
inline constexpr char16_t cVnFilterNotNeedsChild[] =
    u"An invalid expression was detected!\r\nA \"not\" operator must have a child value.";
inline constexpr char16_t cVnFilterInvalidCompare[] = u"The filter \"%s\" contains an invalid compare operator (%s)!";

// The selection operations of nodes, elements and documents. They take the node as their first
// parameter; the interface forms (IVnDOMNode::SelectSingleNode ...) forward to them.

/// All nodes that APath selects from ANode, in order of discovery, each once; the caller owns the list.
/// soRaise raises EVnDomNotFound when nothing is found; soCreate adds missing elements on the way.
std::unique_ptr<TVnDOMNodeList> CreateNodeList(TVnDOMNode* ANode, std::u16string_view APath,
                                               TVnDOMSelectOptions AOptions = {});
/// The first node that APath selects from ANode, or nil.
TVnDOMNode* SelectSingleNode(TVnDOMNode* ANode, std::u16string_view APath, TVnDOMSelectOptions AOptions = {});
/// As CreateNodeList, into an element list.
std::unique_ptr<TVnDOMElementList> CreateElementList(TVnDOMElement* AElement, std::u16string_view APath,
                                                     TVnDOMSelectOptions AOptions);
/// As SelectSingleNode; a node that is no element raises EInvalidCast.
TVnDOMElement* SelectSingleElement(TVnDOMElement* AElement, std::u16string_view APath,
                                   TVnDOMSelectOptions AOptions = {});
/// From the root element; without one an empty list (or the messages of soRaise and soCreate).
std::unique_ptr<TVnDOMElementList> CreateElementList(TVnDOMDocument* ADocument, std::u16string_view APath,
                                                     TVnDOMSelectOptions AOptions);
/// From the root element; an empty path raises EVnDomNotFound "The specified nodePath is empty!".
TVnDOMElement* SelectSingleElement(TVnDOMDocument* ADocument, std::u16string_view APath,
                                   TVnDOMSelectOptions AOptions = {});

}  // namespace vn
