// The common package's small text helpers.
#include "vnxml/common/vn_utils.h"

#include "vnxml/common/code_page.h"
#include "vnxml/common/encoding.h"
#include "vnxml/common/stream.h"

namespace vn {

namespace {
template <class C>
inline C FoldAscii(C c) {
  return c >= 'A' && c <= 'Z' ? static_cast<C>(c + ('a' - 'A')) : c;
}

template <class C>
bool SameTextImpl(std::basic_string_view<C> A, std::basic_string_view<C> B) {
  if (A.size() != B.size()) return false;
  for (size_t i = 0; i < A.size(); ++i)
    if (A[i] != B[i] && FoldAscii(A[i]) != FoldAscii(B[i])) return false;
  return true;
}
}  // namespace

bool VnSameText(std::u16string_view A, std::u16string_view B) { return SameTextImpl(A, B); }
bool VnSameText(std::string_view A, std::string_view B) { return SameTextImpl(A, B); }

std::vector<UnicodeString> VnTokenize(std::u16string_view AText, std::u16string_view ASeparator) {
  std::vector<UnicodeString> tokens;
  if (AText.empty()) return tokens;
  if (ASeparator.empty()) {
    tokens.emplace_back(AText);
    return tokens;
  }
  size_t start = 0;
  for (;;) {
    const size_t found = AText.find(ASeparator, start);
    if (found == std::u16string_view::npos) break;
    tokens.emplace_back(AText.substr(start, found - start));
    start = found + ASeparator.size();
  }
  tokens.emplace_back(AText.substr(start));
  return tokens;
}

UnicodeString VnLoadStringFromFile(std::u16string_view AFileName, Word ACodePage) {
  TFileStream file(AFileName, fmOpenRead | fmShareDenyWrite);
  Word codePage = VnGetCodePage(&file);
  if (codePage == 0) codePage = ACodePage;
  const Int64 start = file.GetPosition();
  std::string bytes(static_cast<size_t>(file.GetSize() - start), '\0');
  if (!bytes.empty()) file.ReadBuffer(bytes.data(), static_cast<Int64>(bytes.size()));
  return TVnEncoding::ConvertA(bytes, codePage);
}

}  // namespace vn
