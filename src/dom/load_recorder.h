// LoadRecorder: the sink of a document load that keeps the root element's content as records
// on a tape (see load_tape.h) instead of nodes. Events outside the root element, and the root's
// own start and end tags, go to the builder as they come; the root is left with its content on
// the tape, made into nodes when first asked for.
#pragma once

#include <string_view>
#include <vector>

#include "dom/load_tape.h"
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

  // The builder's events, in the same order.
  void BeginElement(std::u16string_view AQName);
  void AddAttribute(std::u16string_view AQName, std::u16string_view AValue, bool AMayHoldQuote = true);
  void AddAttributeUtf8(std::u16string_view AQName, std::string_view AValue, bool AMayHoldQuote, bool AHigh);
  void EnterElement();
  void EndElement();
  void AddText(std::u16string_view AStoredValue);
  void AddTextUtf8(std::string_view AStoredValue, bool AHigh);
  void AddWhitespace(std::u16string_view AText);
  void AddWhitespaceUtf8(std::string_view AText);
  /// Inside the root, white space is kept unless no element of the load can keep it.
  bool KeepsWhitespace() const { return Recording() ? FKeepSpace : BuilderKeepsWhitespace(); }
  void AddCDATA(std::u16string_view AText);
  void AddCDATAUtf8(std::string_view AText, bool AHigh);
  void AddComment(std::u16string_view AText);
  void AddInstruction(std::u16string_view ATarget, std::u16string_view AData);
  /// As TreeBuilder::Finish: a start tag cut short is dropped, open elements end here.
  void Finish();

 private:
  bool Recording() const noexcept { return !FOpen.empty(); }
  bool BuilderKeepsWhitespace() const;
  /// AName's record, held by the load's pool for as long as the tape.
  const NameRec* Intern(std::u16string_view AName);
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
