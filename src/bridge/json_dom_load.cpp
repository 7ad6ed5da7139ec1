// The JSON reader of a DOM load: elements made straight from the scan, with no handler calls
// or attribute records between.
#include "bridge/json_dom_load.h"

#include <iterator>
#include <type_traits>

#include "bridge/json_events.h"
#include "dom/load_recorder.h"
#include "dom/tree_builder.h"
#include "vnxml/common/code_page.h"
#include "vnxml/sax_json_reader.h"

namespace vn::detail {

namespace {

// Builder: the TreeBuilder, or the LoadRecorder of a deferred load, which takes the same calls.
template <class Builder>
class TreeOut {
 public:
  static constexpr bool kEndNames = false;  // the builder closes the element it is in
  static constexpr bool kRecords = std::is_same_v<Builder, LoadRecorder>;
  explicit TreeOut(Builder& ABuilder) : B(ABuilder) {}

  void StartDocument() {}
  void EndDocument() {}
  void StartRoot(std::u16string_view AName) {
    B.BeginElement(AName);
    B.AddAttribute(cVnBridgeXsiDeclaration, cVnXSINamespaceURI, false);
    B.AddAttribute(cVnBridgeXsdDeclaration, cVnXSDNamespaceURI, false);
    B.EnterElement();
  }
  void StartElement(std::u16string_view, std::u16string_view AQName, int AKind) {
    B.BeginElement(AQName);
    if (AKind != kNoValue) Mark(AKind);
    B.EnterElement();
  }
  /// The items of an array repeat one name: the recorder looks it up once, AHandle keeps it.
  void StartNamedElement(std::u16string_view AQName, int AKind, const void*& AHandle)
    requires(kRecords)
  {
    if (!AHandle) AHandle = B.InternName(AQName);
    B.BeginNamedElement(static_cast<const NameRec*>(AHandle), AQName);
    if (AKind != kNoValue) Mark(AKind);
    B.EnterElement();
  }
  /// A value's element as a whole: start, type mark, text and end.
  void LeafUtf8(std::u16string_view AQName, int AKind, const void*& AHandle, std::string_view AText, bool AHigh)
    requires(kRecords)
  {
    if (!AHandle) AHandle = B.InternName(AQName);
    LoadRecorder::PlainAttribute mark{};
    if (AKind != kNoValue) mark = {MarkName(AKind), kBridgeTypeMarks[AKind].QName, kBridgeTypeMarks[AKind].Utf8Value};
    B.AddLeafUtf8(static_cast<const NameRec*>(AHandle), AQName, mark, AText, AHigh);
  }
  void Characters(std::u16string_view AText) { B.AddText(AText); }
  /// AHigh: not plain ASCII (the builder checks the bytes then).
  void CharactersUtf8(std::string_view AText, bool AHigh) { B.AddTextUtf8(AText, AHigh); }
  void EndElement(std::u16string_view) { B.EndElement(); }

 private:
  const NameRec* MarkName(int AKind)
    requires(kRecords)
  {
    const NameRec*& name = MarkNames[AKind];
    if (!name) name = B.InternName(kBridgeTypeMarks[AKind].QName);
    return name;
  }
  /// The type mark of a value of kind AKind; the recorder takes it without a lookup.
  void Mark(int AKind) {
    const BridgeTypeMark& mark = kBridgeTypeMarks[AKind];
    if constexpr (kRecords)
      B.AddPlainAttributeUtf8(MarkName(AKind), mark.QName, mark.Utf8Value);
    else
      B.AddAttributeUtf8(mark.QName, mark.Utf8Value, false, false);
  }

  Builder& B;
  const NameRec* MarkNames[std::size(kBridgeTypeMarks)] = {};
};

class TreeReader final : public TVnSAXJSONReader {
 public:
  TreeReader(TreeBuilder& ABuilder, LoadRecorder* ARecorder) : FBuilder(ABuilder), FRecorder(ARecorder) {}

 protected:
  void ReadContent() override {
    if (FRecorder) {
      TreeOut<LoadRecorder> out(*FRecorder);
      RunXmlEventLoop(*GetJSONParser(), out);
    } else {
      TreeOut<TreeBuilder> out(FBuilder);
      RunXmlEventLoop(*GetJSONParser(), out);
    }
  }

 private:
  TreeBuilder& FBuilder;
  LoadRecorder* FRecorder;
};

}  // namespace

bool IsJSONLoadText(const void* AData, size_t ASize, Word ACodePage) {
  const auto* bytes = static_cast<const Byte*>(AData);
  size_t unit = 1;
  bool bigEndian = false;
  switch (ACodePage) {
    case cVnCodePageUTF16BE: bigEndian = true; [[fallthrough]];
    case cVnCodePageUTF16LE: unit = 2; break;
    case cVnCodePageUTF32BE: bigEndian = true; [[fallthrough]];
    case cVnCodePageUTF32LE: unit = 4; break;
    default: break;
  }
  if (ASize < unit) return false;
  uint32_t first = 0;
  for (size_t i = 0; i < unit; ++i) first |= uint32_t(bytes[bigEndian ? unit - 1 - i : i]) << (8 * i);
  return first != '<';
}

std::unique_ptr<TVnSAXReader> MakeJSONLoadReader(TreeBuilder* ABuilder, LoadRecorder* ARecorder) {
  if (ABuilder) return std::make_unique<TreeReader>(*ABuilder, ARecorder);
  return std::make_unique<TVnSAXJSONReader>();
}

}  // namespace vn::detail
