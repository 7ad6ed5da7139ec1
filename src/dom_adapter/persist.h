// persist.h: the loading and saving behind IDOMPersist, and replaceChild, shared by all kinds of node.
#pragma once

#include "vnxml/dom.h"
#include "vnxml/dom_adapter_interfaces.h"

namespace vn::detail {

/// The document's load state; other nodes are never loaded on their own.
Integer AsyncLoadState(TVnDOMNode* ANode);
/// A document takes text beginning with "<" as XML and anything else as a file name (false when
/// no such file exists); other nodes take it as their inner XML.
bool Load(TVnDOMNode* ANode, std::u16string_view ASource);
/// The code page of the node's document encoding, UTF-8 outside a document.
void SaveToStream(TVnDOMNode* ANode, TStream& AStream);
void SaveToFile(TVnDOMNode* ANode, std::u16string_view AFileName);
/// Reads the whole stream first; fewer bytes than its size raise EVnDomException.
void LoadFromInterfaceStream(TVnDOMNode* ANode, const IPtr<IStream>& AStream);
/// Writes the whole text with one call.
void SaveToInterfaceStream(TVnDOMNode* ANode, const IPtr<IStream>& AStream);
/// AOld goes; ANew takes its place, behind AOld's former predecessor or at the front.
void ReplaceChild(TVnDOMNode* AParent, TVnDOMNode* ANew, TVnDOMNode* AOld);

}  // namespace vn::detail
