// The JSON reader of a DOM load: elements made straight from the scan, with no handler calls
// or attribute records between.
#include "bridge/json_dom_load.h"

#include "bridge/json_events.h"
#include "dom/tree_builder.h"
#include "vnxml/common/code_page.h"
#include "vnxml/sax_json_reader.h"

namespace vn::detail {

namespace {

class TreeOut {
 public:
  explicit TreeOut(TreeBuilder& ABuilder) : B(ABuilder) {}

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
    if (AKind != kNoValue) B.AddAttribute(kBridgeTypeMarks[AKind].QName, kBridgeTypeMarks[AKind].Value, false);
    B.EnterElement();
  }
  void Characters(std::u16string_view AText) { B.AddText(AText); }
  void EndElement(std::u16string_view) { B.EndElement(); }

 private:
  TreeBuilder& B;
};

class TreeReader final : public TVnSAXJSONReader {
 public:
  explicit TreeReader(TreeBuilder& ABuilder) : FBuilder(ABuilder) {}

 protected:
  void ReadContent() override {
    TreeOut out(FBuilder);
    RunXmlEventLoop(*GetJSONParser(), out);
  }

 private:
  TreeBuilder& FBuilder;
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

std::unique_ptr<TVnSAXReader> MakeJSONLoadReader(TreeBuilder* ABuilder) {
  if (ABuilder) return std::make_unique<TreeReader>(*ABuilder);
  return std::make_unique<TVnSAXJSONReader>();
}

}  // namespace vn::detail
