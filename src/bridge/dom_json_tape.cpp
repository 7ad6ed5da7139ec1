// TapeSource: a load's records read as the nodes made from them would read.
#include "bridge/dom_json_tape.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>

#include "common/text_parser_scan.h"
#include "dom/stored_text.h"
#include "dom/tree_builder.h"
#include "vnxml/common/exception.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom_document.h"
#include "vnxml/xml_escape.h"

namespace vn::detail {

namespace {

using Tape = LoadTape;

bool IsAttributeRecord(const char* APosition) noexcept {
  const Tape::Kind kind = reinterpret_cast<const Tape::Head*>(APosition)->GetKind();
  return kind == Tape::kAttr || kind == Tape::kAttrUtf8;
}

/// Where the records after a Begin start: its attributes, then its content.
const char* AfterBegin(TapeSource::Element AElement) noexcept {
  return Tape::Resolve(reinterpret_cast<const char*>(AElement) + sizeof(Tape::Begin));
}

/// The qualified name of the node a record's name makes: one leading colon dropped.
std::u16string_view NodeName(const NameRec* AName) noexcept {
  if (!AName) return {};
  std::u16string_view name(AName->Chars, AName->Length);
  if (name[0] == u':') name.remove_prefix(1);
  return name;
}

/// Bytes the loader could not keep as they are: it kept their decoded units instead.
bool Malformed(const Tape::Head* ARecord) { return (ARecord->Flags() & Tape::kHigh) && !IsWellFormedUtf8(Tape::Bytes(ARecord)); }

/// Units of UTF-8 bytes that may be malformed, decoded as the loader decodes them.
std::u16string_view Units(std::string_view ABytes, std::u16string& AScratch) {
  const auto* b = reinterpret_cast<const uint8_t*>(ABytes.data());
  AScratch.clear();
  return DecodeUtf8(b, b + ABytes.size(), AScratch);
}

/// Well-formed UTF-8 text stored with its references, decoded as its node decodes it.
UnicodeString DecodedUtf8(std::string_view ABytes) {
  UnicodeString text = CompactString::DecodeUtf8Text(ABytes);
  return ABytes.find('&') == ABytes.npos ? text : VnXMLToStr(text);
}

/// Does the node attribute declare a namespace, as the writer's filter asks it?
bool IsDeclaration(const TVnDOMAttribute* AAttribute) {
  const std::u16string_view prefix = AAttribute->PrefixView();
  return (prefix.empty() ? AAttribute->LocalNameView() : prefix).size() == 5 && AAttribute->IsNamespace();
}

bool IsSchemaURI(std::u16string_view AURI) {
  auto is = [&](std::u16string_view AOf) { return AURI.size() == AOf.size() && SameText(AURI, AOf); };
  return is(cVnXSINamespaceURI) || is(cVnXSDNamespaceURI);
}

/// The prefixes that the declarations in scope at AElement bind to the xsi or xsd namespace,
/// into AOut; false when one of them binds the default namespace.
bool SchemaPrefixes(const TVnDOMElement* AElement, std::vector<std::u16string>& AOut) {
  for (const TVnDOMNode* n = AElement; n && n->GetNodeType() == ntElement; n = n->ParentNode())
    for (const TVnDOMNode* a : static_cast<const TVnDOMElement*>(n)->AttributesView()) {
      const auto* attribute = static_cast<const TVnDOMAttribute*>(a);
      if (!attribute->IsNamespace() || !IsSchemaURI(attribute->GetNodeValue())) continue;
      if (attribute->PrefixView().empty()) return false;
      AOut.emplace_back(attribute->LocalNameView());
    }
  return true;
}

/// The prefix of the node a record's name makes (one leading colon dropped, the part before the
/// first colon of the rest).
std::u16string_view PrefixOf(const NameRec* AName) noexcept {
  const std::u16string_view name = NodeName(AName);
  const size_t colon = name.find(u':');
  return colon == name.npos ? std::u16string_view() : name.substr(0, colon);
}

/// Whether APrefix may resolve to one of ABound: the tree folds prefixes to ASCII lower case, the
/// collation's match takes in more.
bool MayBeBound(std::u16string_view APrefix, const std::vector<std::u16string>& ABound) {
  auto folded = [](char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c; };
  for (const std::u16string& bound : ABound) {
    if (TVnXPathCollationASCIICI::Class()->SameText(APrefix, bound)) return true;
    if (APrefix.size() == bound.size() &&
        std::equal(APrefix.begin(), APrefix.end(), bound.begin(), [&](char16_t a, char16_t b) { return folded(a) == folded(b); }))
      return true;
  }
  return false;
}

/// Whether the records from AContent to AEnd name an attribute whose prefix may be bound to the
/// xsi or xsd namespace (ABound); each name is looked at once.
bool SchemaAttributeIn(const char* AContent, const char* AEnd, const std::vector<std::u16string>& ABound) {
  std::unordered_map<const NameRec*, bool> seen;
  for (const char* p = AContent; p != AEnd; p = Tape::Resolve(p)) {
    const Tape::Head* h = Tape::Next(p);
    if (h->GetKind() != Tape::kAttr && h->GetKind() != Tape::kAttrUtf8) continue;
    const NameRec* name = reinterpret_cast<const Tape::Named*>(h)->Name;
    if (PrefixOf(name).empty()) continue;
    const auto [at, fresh] = seen.try_emplace(name, false);
    if (fresh) at->second = MayBeBound(PrefixOf(name), ABound);
    if (at->second) return true;
  }
  return false;
}

/// Whether an attribute is "xml:space" as the default collation matches the node's qualified
/// name (one leading colon dropped): beyond ASCII, by what the collation tells apart.
bool IsXmlSpace(const NameRec* AName) {
  const std::u16string_view name = NodeName(AName);
  return !name.empty() && TreeBuilder::MayBeXmlSpace(name) && TVnXPathCollationASCIICI::Class()->SameText(name, u"xml:space");
}

bool IsTextRecord(Tape::Kind AKind) noexcept {
  return AKind == Tape::kText || AKind == Tape::kTextUtf8 || AKind == Tape::kSpace || AKind == Tape::kSpaceUtf8;
}

/// Units stored with references as the loader stores them: a double quote of a value that may
/// hold one as "&quot;"; then decoded.
UnicodeString DecodedStored(std::u16string_view AUnits, bool AQuotesAsReferences) {
  if (!AQuotesAsReferences || AUnits.find(u'"') == AUnits.npos) return VnXMLToStr(AUnits);
  return VnXMLToStr(QuotesAsReferences(AUnits));
}

}  // namespace

TapeSource::Element TapeSource::DeferredRecord(const TVnDOMElement* AElement) {
  const LoadTape* tape = nullptr;
  const char* p = TreeBuilder::DeferredBegin(AElement, &tape);
  if (!p || tape->Declarations || AElement->GetCollation() != TVnXPathCollationASCIICI::Class()) return nullptr;
  const auto* begin = reinterpret_cast<Element>(Tape::Next(p));
  // The node's attributes are the record's, one for one.
  const char* end = Tape::Resolve(begin->ContentEnd);
  uint32_t records = 0;
  for (p = Tape::Resolve(p); p != end && IsAttributeRecord(p); p = Tape::Resolve(p)) {
    Tape::Next(p);
    ++records;
  }
  if (records != AElement->AttributesView().size()) return nullptr;
  // Declarations of the schema namespaces in scope (on the node and above it: none below) type
  // no attribute of the records when no attribute there bears a prefix they bind; the node's
  // own such attributes are left out, and on a leaf they would type its value.
  std::vector<std::u16string> bound;
  try {
    if (!SchemaPrefixes(AElement, bound)) return nullptr;
    if (bound.empty()) return begin;
    bool typed = false;
    for (const TVnDOMNode* a : AElement->AttributesView())
      typed = typed || SameText(a->GetNamespaceURI(), cVnXSINamespaceURI);
    if (typed) {
      bool leaf = true;
      for (const char* q = p; q != end && leaf; q = Tape::Resolve(q)) leaf = Tape::Next(q)->GetKind() != Tape::kBegin;
      if (leaf) return nullptr;
    }
  } catch (const Exception&) {
    return nullptr;  // a declaration that does not decode: the nodes tell what follows
  }
  return SchemaAttributeIn(p, end, bound) ? nullptr : begin;
}

void TapeSource::ReadRecords(Element AElement) {
  FRead = AElement;
  FAttributes.clear();
  FKids.clear();
  FFirstText = FFirstSpace = nullptr;
  FTexts = FSpaces = 0;
  const char* end = Tape::Resolve(AElement->ContentEnd);
  const char* p = AfterBegin(AElement);
  while (p != end && IsAttributeRecord(p)) {
    FAttributes.push_back(reinterpret_cast<Attribute>(Tape::Next(p)));
    p = Tape::Resolve(p);
  }
  FContent = p;
  while (p != end) {
    const Tape::Head* h = Tape::Next(p);
    switch (h->GetKind()) {
      case Tape::kBegin: {
        const auto* kid = reinterpret_cast<Element>(h);
        FKids.push_back(kid);
        p = kid->ContentEnd;  // over the kid's attributes and content
        break;
      }
      case Tape::kSpace:
      case Tape::kSpaceUtf8:
        if (FSpaces++ == 0) FFirstSpace = h;
        break;
      case Tape::kText:
      case Tape::kTextUtf8:
      case Tape::kCData:
      case Tape::kCDataUtf8:
      case Tape::kComment:
        if (FTexts++ == 0) FFirstText = h;
        break;
      default: break;  // instructions make no text node
    }
    p = Tape::Resolve(p);
  }
}

bool TapeSource::Attributes(Element AElement, std::vector<Attribute>& AOut, bool AParentPreserves) {
  Read(AElement);
  AOut.clear();
  const bool top = AElement == FTop;
  Attribute space = nullptr;
  for (uint32_t j = 0; j < FAttributes.size(); ++j) {
    const Attribute a = FAttributes[j];
    if (top) {
      const auto* node = static_cast<const TVnDOMAttribute*>(FTopNode->AttributesView()[j]);
      if (IsDeclaration(node) || IsSchemaURI(node->GetNamespaceURI())) continue;
    } else if (IsXmlSpace(a->Name)) {
      space = a;  // the last one rules
    }
    AOut.push_back(a);
  }
  if (top) return FTopNode->GetPreserveSpace();
  if (!space) return AParentPreserves;
  // the value as stored, references and all
  return SameText(space->H.GetKind() == Tape::kAttr ? Tape::Units(&space->H) : Units(Tape::Bytes(&space->H), FScratch),
                  u"preserve");
}

TapeSource::Value TapeSource::AttributeValue(Attribute AAttribute) {
  const bool quotes = AAttribute->H.Flags() & Tape::kMayHoldQuote;
  if (AAttribute->H.GetKind() == Tape::kAttr) {
    FText = DecodedStored(Tape::Units(&AAttribute->H), quotes);
    return {Value::Units, {}, FText};
  }
  const std::string_view bytes = Tape::Bytes(&AAttribute->H);
  if (Malformed(&AAttribute->H)) {
    FText = DecodedStored(Units(bytes, FScratch), quotes);
    return {Value::Units, {}, FText};
  }
  // Quotes stored as references change what a reference next to them reads as.
  if (quotes && bytes.find('"') != bytes.npos && bytes.find('&') != bytes.npos) {
    FText = DecodedStored(CompactString::DecodeUtf8Text(bytes), true);
    return {Value::Units, {}, FText};
  }
  return {Value::Bytes, bytes, {}};
}

std::u16string_view TapeSource::Decoded(std::string_view AUtf8) {
  FText = DecodedUtf8(AUtf8);
  return FText;
}

void TapeSource::AppendValue(const Tape::Head* ARecord) {
  switch (ARecord->GetKind()) {
    case Tape::kText:
    case Tape::kSpace: {
      const std::u16string_view units = Tape::Units(ARecord);
      if (units.find(u'&') == units.npos)
        FText.append(units);
      else
        FText += VnXMLToStr(units);
      break;
    }
    case Tape::kTextUtf8:
    case Tape::kSpaceUtf8: {
      const std::string_view bytes = Tape::Bytes(ARecord);
      FText += Malformed(ARecord) ? VnXMLToStr(Units(bytes, FScratch)) : DecodedUtf8(bytes);
      break;
    }
    case Tape::kCData: FText.append(Tape::Units(ARecord)); break;
    case Tape::kCDataUtf8: FText.append(Units(Tape::Bytes(ARecord), FScratch)); break;
    default: break;  // comments count as text nodes but add no text
  }
}

TapeSource::Value TapeSource::LeafValue(Element AElement, bool APreserves) {
  Read(AElement);
  const uint32_t count = FTexts + (APreserves ? FSpaces : 0);
  if (count == 0) return {};
  const Tape::Head* only = FTexts ? FFirstText : FFirstSpace;
  const Tape::Kind kind = only->GetKind();
  if (count == 1 && (kind == Tape::kTextUtf8 || kind == Tape::kSpaceUtf8) && !Malformed(only))
    return {Value::Bytes, Tape::Bytes(only), {}};
  // One text of another form, or the text of several nodes as the element's value joins it.
  FText.clear();
  if (count == 1 && IsTextRecord(kind)) {
    AppendValue(only);
  } else {
    const char* end = Tape::Resolve(AElement->ContentEnd);
    for (const char* p = FContent; p != end; p = Tape::Resolve(p)) {
      const Tape::Head* h = Tape::Next(p);
      const Tape::Kind k = h->GetKind();
      if (k == Tape::kBegin) break;  // a leaf has none
      if ((k != Tape::kSpace && k != Tape::kSpaceUtf8) || APreserves) AppendValue(h);
    }
  }
  return {Value::Units, {}, FText};
}

}  // namespace vn::detail
