// LoadRecorder: the sink of a document load that keeps the root element's content as records
// on a tape (see load_tape.h) instead of nodes. Events outside the root element, and the root's
// own start and end tags, go to the builder as they come; the root is left with its content on
// the tape, made into nodes when first asked for.
#pragma once

#include <cstring>
#include <string_view>
#include <vector>

#include "dom/load_tape.h"
#include "dom/name_table.h"
#include "dom/tree_builder.h"
#include "vnxml/common/types.h"

namespace vn {
class TVnDOMElement;
}

namespace vn::detail {

class NameTable;
class NodePool;
class TreeBuilder;

class LoadRecorder {
 public:
  /// Records for ABuilder, which builds below a document.
  explicit LoadRecorder(TreeBuilder& ABuilder);
  LoadRecorder(const LoadRecorder&) = delete;
  LoadRecorder& operator=(const LoadRecorder&) = delete;

  // The builder's events, in the same order. What most events inside the root do is written
  // here, where the reading loop's code takes it in; the rest is out of line.
  void BeginElement(std::u16string_view AQName) {
    if (!Recording() || !FEscapedDeclarations.empty()) return BeginElementSlow(AQName);
    FPending = FTape->AddBegin(Intern(AQName));
  }
  void AddAttribute(std::u16string_view AQName, std::u16string_view AValue, bool AMayHoldQuote = true);

  // A source that repeats a few names (the JSON bridge) looks each up once: InternName gives a
  // handle that stands for the name for the rest of the load.
  const NameRec* InternName(std::u16string_view AName) { return Intern(AName); }
  /// As BeginElement, with AName from InternName(AQName).
  void BeginNamedElement(const NameRec* AName, std::u16string_view AQName) {
    if (!Recording() || !FEscapedDeclarations.empty()) return BeginElementSlow(AQName);
    FPending = FTape->AddBegin(AName);
  }
  /// As AddAttributeUtf8 for a plain value (no double quote, ASCII), AName from
  /// InternName(AQName), for a name that neither declares a namespace nor may be xml:space.
  void AddPlainAttributeUtf8(const NameRec* AName, std::u16string_view AQName, std::string_view AValue) {
    if (!Recording() || !FPending) return AddAttributeUtf8Slow(AQName, AValue, false, false);
    FTape->AddAttrUtf8(AName, AValue, false, false);
  }
  /// An attribute as AddPlainAttributeUtf8 takes it.
  struct PlainAttribute {
    const NameRec* Name;
    std::u16string_view QName;
    std::string_view Value;
  };
  /// A whole element of one text, with AAttribute unless its name is nil: the calls from
  /// BeginNamedElement to EndElement in one, without keeping the element open between.
  void AddLeafUtf8(const NameRec* AName, std::u16string_view AQName, const PlainAttribute& AAttribute,
                   std::string_view AText, bool AHigh) {
    if (!Recording() || !FEscapedDeclarations.empty() || FPending) {
      BeginNamedElement(AName, AQName);
      if (AAttribute.Name) AddPlainAttributeUtf8(AAttribute.Name, AAttribute.QName, AAttribute.Value);
      EnterElement();
      AddTextUtf8(AText, AHigh);
      return EndElement();
    }
    LoadTape::Begin* begin = FTape->AddBegin(AName);
    if (AAttribute.Name) FTape->AddAttrUtf8(AAttribute.Name, AAttribute.Value, false, false);
    FTape->AddTextUtf8(LoadTape::kTextUtf8, AText, AHigh);
    begin->ContentEnd = FTape->Position();
  }
  /// AAsciiName: the reader knows the name is plain ASCII.
  void AddAttributeUtf8(std::u16string_view AQName, std::string_view AValue, bool AMayHoldQuote, bool AHigh,
                        bool AAsciiName = false) {
    if (!Recording() || !FPending || IsDeclaration(AQName)) return AddAttributeUtf8Slow(AQName, AValue, AMayHoldQuote, AHigh);
    if (!FKeepSpace && TreeBuilder::MayBeXmlSpace(AQName, AAsciiName)) FKeepSpace = true;
    FTape->AddAttrUtf8(Intern(AQName), AValue, AMayHoldQuote, AHigh);
  }
  void EnterElement() {
    if (!Recording() || !FEscapedDeclarations.empty()) return EnterElementSlow();
    if (LoadTape::Begin* begin = std::exchange(FPending, nullptr)) FOpen.push_back({begin, FTape->Position()});
  }
  void EndElement() {
    if (FOpen.size() < 2) return EndElementSlow();
    FOpen.back().Begin->ContentEnd = FTape->Position();
    FOpen.pop_back();
  }
  void AddText(std::u16string_view AStoredValue);
  void AddTextUtf8(std::string_view AStoredValue, bool AHigh) {
    if (!Recording()) return B.AddTextUtf8(AStoredValue, AHigh);
    FTape->AddTextUtf8(LoadTape::kTextUtf8, AStoredValue, AHigh);
  }
  void AddWhitespace(std::u16string_view AText);
  void AddWhitespaceUtf8(std::string_view AText) {
    if (!Recording()) return B.AddWhitespaceUtf8(AText);
    if (FKeepSpace) FTape->AddTextUtf8(LoadTape::kSpaceUtf8, AText, false);
  }
  /// Inside the root, white space is kept unless no element of the load can keep it.
  bool KeepsWhitespace() const { return Recording() ? FKeepSpace : BuilderKeepsWhitespace(); }
  void AddCDATA(std::u16string_view AText);
  void AddCDATAUtf8(std::string_view AText, bool AHigh) {
    if (!Recording()) return B.AddCDATAUtf8(AText, AHigh);
    FTape->AddTextUtf8(LoadTape::kCDataUtf8, AText, AHigh);
  }
  void AddComment(std::u16string_view AText);
  void AddInstruction(std::u16string_view ATarget, std::u16string_view AData);
  /// As TreeBuilder::Finish: a start tag cut short is dropped, open elements end here.
  void Finish();

 private:
  bool Recording() const noexcept { return !FOpen.empty(); }
  bool BuilderKeepsWhitespace() const;
  /// AName's record, held by the load's pool for as long as the tape.
  const NameRec* Intern(std::u16string_view AName) {
    const size_t n = AName.size();
    if (n) {
      NameRec* cached = FNameCache[CacheSlot(AName)];
      if (cached && cached->Length == n && SameUnits(cached->Chars, AName.data(), n)) return cached;
    }
    return InternSlow(AName);
  }
  const NameRec* InternSlow(std::u16string_view AName);
  static size_t CacheSlot(std::u16string_view AName) noexcept {
    const size_t n = AName.size();
    return (n * 31 + AName[0] * 7 + AName[n - 1] * 3 + AName[n / 2] * 13) & (kNameCache - 1);
  }
  // Names are short: eight bytes a step, in registers, beat a call; the last step overlaps the
  // one before it rather than going unit by unit.
  static bool SameUnits(const char16_t* A, const char16_t* B, size_t N) noexcept {
    auto same = [&](size_t AAt, auto AWord) {
      decltype(AWord) a, b;
      std::memcpy(&a, A + AAt, sizeof a);
      std::memcpy(&b, B + AAt, sizeof b);
      return a == b;
    };
    if (N < 4) {
      if (N >= 2) return same(0, uint32_t{}) && same(N - 2, uint32_t{});
      return N == 0 || A[0] == B[0];
    }
    for (size_t i = 0; i + 4 < N; i += 4)
      if (!same(i, uint64_t{})) return false;
    return same(N - 4, uint64_t{});
  }
  void BeginElementSlow(std::u16string_view AQName);
  void AddAttributeUtf8Slow(std::u16string_view AQName, std::string_view AValue, bool AMayHoldQuote, bool AHigh);
  void EnterElementSlow();
  void EndElementSlow();
  /// The root's content is complete: it is left on the tape.
  struct Open {
    LoadTape::Begin* Begin;
    const char* Content;  // where its content starts
  };
  void CloseRoot(const Open& ARoot);

  TreeBuilder& B;
  NameTable* FNames;
  NodePool* FPool;
  LoadTape* FTape;  // nil once finished
  LoadTape::Begin* FPending = nullptr;  // the Begin of a start tag being read
  std::vector<Open> FOpen;  // the root first
  TVnDOMElement* FRoot = nullptr;
  bool FKeepSpace = false;  // white space inside the root may be kept
  // The pending start tag's declarations that hold references: the element's join decodes
  // them, and fails where one does not decode.
  std::vector<UnicodeString> FEscapedDeclarations;
  /// Does the attribute AQName declare a namespace?
  static bool IsDeclaration(std::u16string_view AQName) {
    // "xmlns" or "xmlns:", in any case, maybe behind a colon: most names fail on the first unit
    return AQName.size() >= 5 && (AQName[0] == u'x' || AQName[0] == u'X' || AQName[0] == u':') &&
           IsDeclarationSlow(AQName);
  }
  static bool IsDeclarationSlow(std::u16string_view AQName);
  void NoteEscaped(std::u16string_view AValue, bool AMayHoldQuote);
  static constexpr size_t kNameCache = 256;
  NameRec* FNameCache[kNameCache] = {};
};

}  // namespace vn::detail
