// TapeSource: the content of an element that a load left on its tape, read for the JSON writer
// from the records themselves, where reading the tree would first make every node of it. What
// the records give (names, attribute values, the text of leaves, the space rule) is what the
// nodes made from them would give; elements whose JSON needs more (an attribute in the xsi or
// xsd namespace among the records, a declaration below the load's root, another collation) are
// written from nodes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dom/load_tape.h"
#include "vnxml/dom_storage.h"

namespace vn {
class TVnDOMElement;
}

namespace vn::detail {

class TapeSource {
 public:
  using Element = const LoadTape::Begin*;
  using Attribute = const LoadTape::Named*;

  /// The record of AElement when its content is still on its load's tape and the records
  /// answer for its JSON; else nil.
  static Element DeferredRecord(const TVnDOMElement* AElement);

  /// A walk starts at ATop, the record of the node ANode: its attributes are those of the node,
  /// its space rule the node's.
  void Start(const TVnDOMElement* ANode, Element ATop) {
    FTopNode = ANode;
    FTop = ATop;
  }

  /// The local name as the node made from the record has it: what follows the first colon,
  /// after one leading colon is dropped.
  static std::u16string_view LocalName(const NameRec* AName) noexcept {
    if (!AName) return {};
    if (AName->Colon == NameRec::kNoColon) return {AName->Chars, AName->Length};
    if (AName->Colon != 0) return {AName->Chars + AName->Colon + 1, AName->Length - AName->Colon - 1};
    const std::u16string_view rest(AName->Chars + 1, AName->Length - 1);
    const size_t colon = rest.find(u':');
    return colon == rest.npos ? rest : rest.substr(colon + 1);
  }
  static std::u16string_view LocalName(Element AElement) noexcept { return LocalName(AElement->Name); }

  /// AElement's child elements, valid until another element is asked about.
  const std::vector<Element>& Kids(Element AElement) {
    Read(AElement);
    return FKids;
  }
  bool HasChildElements(Element AElement) { return !Kids(AElement).empty(); }
  /// Keeps AElement's child elements for a level of the walk: Kid(at, i) reads them until
  /// Unpin(at).
  uint32_t Pin(Element AElement) {
    const auto at = static_cast<uint32_t>(FPinned.size());
    const std::vector<Element>& kids = Kids(AElement);
    FPinned.insert(FPinned.end(), kids.begin(), kids.end());
    return at;
  }
  void Unpin(uint32_t AAt) { FPinned.resize(AAt); }
  Element Kid(uint32_t AAt, uint32_t AIndex) const noexcept { return FPinned[AAt + AIndex]; }

  /// The attributes of AElement that take part, into AOut; returns whether AElement preserves
  /// white space, its parent doing so by AParentPreserves.
  bool Attributes(Element AElement, std::vector<Attribute>& AOut, bool AParentPreserves);

  /// A value as the node made from its record gives it: UTF-8 bytes that may still hold
  /// references, or decoded units; or no text at all.
  struct Value {
    enum Form : uint8_t { None, Bytes, Units } Is = None;
    std::string_view Utf8;
    std::u16string_view Text;
  };
  /// The value of a leaf, white space kept when APreserves.
  Value LeafValue(Element AElement, bool APreserves);
  Value AttributeValue(Attribute AAttribute);
  /// A Bytes value with its references decoded.
  std::u16string_view Decoded(std::string_view AUtf8);

 private:
  /// Reads AElement's records, once for all the questions about it.
  void Read(Element AElement) {
    if (AElement != FRead) ReadRecords(AElement);
  }
  void ReadRecords(Element AElement);
  /// Appends the value of a text or CDATA record to FText.
  void AppendValue(const LoadTape::Head* ARecord);

  const TVnDOMElement* FTopNode = nullptr;
  Element FTop = nullptr;
  // What Read found: the attributes, where the content starts, the child elements, and the
  // records that make text nodes (white space counted apart: it makes one only where kept).
  Element FRead = nullptr;
  std::vector<Attribute> FAttributes;
  const char* FContent = nullptr;
  std::vector<Element> FKids, FPinned;
  const LoadTape::Head* FFirstText = nullptr;
  const LoadTape::Head* FFirstSpace = nullptr;
  uint32_t FTexts = 0, FSpaces = 0;
  std::u16string FText, FScratch;
};

}  // namespace vn::detail
