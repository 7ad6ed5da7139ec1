// The round-trip oracle of the JSON tree, shared by the corpus test and the fuzz target: a
// loaded tree saved, loaded and saved again gives the same bytes. Names are kept raw and the
// writer encodes them again, so a name with a character the encoder escapes grows by its
// escapes on every trip; for such a tree the second load must hold the same shape and values,
// and names that decode to the first load's raw names.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "vnxml/common/vn_streams.h"
#include "vnxml/json_document.h"
#include "vnxml/json_values.h"

namespace vn::testing_support {

inline std::string SaveJSON(TVnJSONDocument& ADoc, bool AFormatted, Word ACodePage, bool ABOM = false) {
  TVnMemoryStream stream;
  ADoc.SaveToStream(stream, AFormatted, ACodePage, ABOM);
  return std::string(static_cast<const char*>(stream.GetMemory()), static_cast<size_t>(stream.GetSize()));
}

// The raw name as the second trip must decode it: the characters the encoder drops are gone.
inline UnicodeString WithoutDropped(UnicodeString AName) {
  std::erase_if(AName, [](char16_t c) { return c >= 1 && c <= 7; });
  return AName;
}

/// The number of levels of the tree below ANode.
inline size_t TreeDepth(TVnJSONBase& ANode) {
  size_t deepest = 0;
  std::vector<std::pair<TVnJSONBase*, size_t>> work{{&ANode, 0}};
  while (!work.empty()) {
    auto [n, d] = work.back();
    work.pop_back();
    deepest = std::max(deepest, d);
    for (Integer i = 0; i < n->ChildCount(); ++i) work.emplace_back(n->Child(i), d + 1);
  }
  return deepest;
}

/// Formatted text indents each line by its level, so its size grows with the square of the
/// depth: trees deeper than this are checked compact only.
inline constexpr size_t cFormattedDepthLimit = 2000;

/// Empty when ALoaded passes, else what failed.
inline std::string CheckJSONRoundTrip(TVnJSONDocument& ALoaded, bool AFormatted, Word ACodePage) {
  const std::string first = SaveJSON(ALoaded, AFormatted, ACodePage);
  TVnJSONDocument again;
  try {
    TVnStringStream in(first, ACodePage);
    again.LoadFromStream(in, ACodePage, false);
  } catch (const Exception& e) {
    return "saved text does not load: " + std::string(e.what());
  }
  if (SaveJSON(again, AFormatted, ACodePage) == first) return {};
  // Only re-encoded names may make the difference.
  std::vector<std::pair<TVnJSONBase*, TVnJSONBase*>> work{{&ALoaded, &again}};
  bool nameGrew = false;
  while (!work.empty()) {
    auto [a, b] = work.back();
    work.pop_back();
    if (a->NodeClass() != b->NodeClass() || a->ChildCount() != b->ChildCount()) return "shape differs";
    if (a->NodeClass() == detail::JSONNodeClass::Member) {
      UnicodeString rawA = a->GetName(), rawB = b->GetName();
      if (VnJSONtoStr(rawB, jdtString) != WithoutDropped(rawA)) return "name does not decode to the first";
      nameGrew = nameGrew || rawA != rawB;
    } else if (a->NodeClass() == detail::JSONNodeClass::Simple) {
      auto* sa = static_cast<TVnJSONSimpleType*>(a);
      auto* sb = static_cast<TVnJSONSimpleType*>(b);
      if (sa->GetJSONType() != sb->GetJSONType() || sa->ValueText() != sb->ValueText()) return "value differs";
    }
    for (Integer i = 0; i < a->ChildCount(); ++i) work.emplace_back(a->Child(i), b->Child(i));
  }
  return nameGrew ? std::string() : "second save differs";
}

}  // namespace vn::testing_support
