// The reader's rules for names, turned around: what the writer may write as a name.
#include "output_names.h"

#include "vnxml/sax_xml_parser.h"

namespace vn::detail {

namespace {

// The reader trims white space and control characters from a name's ends, and skips them
// between attributes.
bool IsBlank(char16_t c) noexcept { return c <= u' '; }

}  // namespace

bool AttributeNameReadsBack(std::u16string_view AName) noexcept {
  // An empty name reads back as empty: nothing stands between the blank and "=".
  if (AName.empty()) return true;
  const char16_t first = AName.front();
  // Behind a value the reader skips quotes, and "/" or ">" there end the tag; one colon in
  // front is taken for an empty prefix and dropped.
  if (IsBlank(first) || first == u'"' || first == u'\'' || first == u'/' || first == u':') return false;
  if (IsBlank(AName.back())) return false;
  // The name ends at "="; "<" and ">" inside fail the read.
  for (char16_t c : AName)
    if (c == u'=' || c == u'<' || c == u'>') return false;
  return true;
}

bool ElementNameReadsBack(std::u16string_view AName) noexcept {
  if (AName.empty() || !TVnXMLParser::IsNameStartChar(AName.front())) return false;
  size_t colon = AName.find(u':');
  // The prefix ends at the first colon, behind which a name must start again.
  if (colon != std::u16string_view::npos &&
      (colon + 1 == AName.size() || !TVnXMLParser::IsNameStartChar(AName[colon + 1])))
    return false;
  // The name ends at white space, "/" or ">"; "<" in the prefix fails the read.
  for (size_t i = 0; i < AName.size(); ++i) {
    const char16_t c = AName[i];
    if (IsBlank(c) || c == u'/' || c == u'>' || (c == u'<' && i < colon)) return false;
  }
  return true;
}

bool NameCheck::Passed::CheckNew(std::u16string_view AName, bool (*ARule)(std::u16string_view) noexcept) {
  // Names of nodes outside a document are not shared: past this many the rule alone decides.
  constexpr size_t cMaxRemembered = 4096;
  if (!ARule(AName)) return false;
  if (AName.empty() || FCount >= cMaxRemembered) return true;
  if ((FCount + 1) * 2 > FTable.size()) {
    std::vector<Entry> old = std::move(FTable);
    FTable.assign(old.empty() ? 64 : old.size() * 2, Entry{});
    FCount = 0;
    for (const Entry& e : old)
      if (e.FData) CheckNew({e.FData, e.FSize}, ARule);
  }
  const size_t mask = FTable.size() - 1;
  size_t i = Slot(AName.data(), mask);
  while (FTable[i].FData) i = (i + 1) & mask;
  FTable[i] = {AName.data(), AName.size()};
  ++FCount;
  return true;
}

}  // namespace vn::detail
