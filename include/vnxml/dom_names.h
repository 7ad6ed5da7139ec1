// dom_names.h: lookup options and collations of the XML document object model (unit uVnXMLDOM).
// Every name in the tree is compared through a collation; every lookup by name takes the same
// small option set. Collations are stateless singletons passed around by pointer (the "class
// reference" TVnXPathCollationClass); both sit on ICU's root collator.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "vnxml/common/set.h"
#include "vnxml/common/types.h"

namespace vn {

enum TVnDOMSelectOption : uint8_t { soRaise, soCreate, soCaseSensitive, soCaseInsensitive, soLocalName, soQualifiedName };
using TVnDOMSelectOptions = TSet<TVnDOMSelectOption>;
/// Subrange soCaseSensitive..soCaseInsensitive.
using TVnDOMSelectCaseOption = TVnDOMSelectOption;
/// Subrange soLocalName..soQualifiedName.
using TVnDOMSelectMatchOption = TVnDOMSelectOption;

enum TVnDOMSelectCheckOption : uint8_t { coReturnNil, coCreate, coRaise };
using TVnDOMSelectCheckOptions = TSet<TVnDOMSelectCheckOption>;

/// A collation: never instantiated by callers; the singletons are passed as TVnXPathCollationClass.
class TVnXPathCollation {
 public:
  TVnXPathCollation(const TVnXPathCollation&) = delete;
  TVnXPathCollation& operator=(const TVnXPathCollation&) = delete;

  /// -1, 0 or 1 in the linguistic order of the invariant locale.
  virtual Integer Compare(std::u16string_view S1, std::u16string_view S2) const = 0;
  /// One-based position of ASubStr in AText, 0 when absent.
  virtual Integer Pos(std::u16string_view ASubStr, std::u16string_view AText) const = 0;
  /// Compare(S1, S2) == 0, with a fast path for plain ASCII names.
  virtual bool SameText(std::u16string_view S1, std::u16string_view S2) const = 0;
  /// Bytes equal exactly when the texts compare equal: a key for hashing under this collation.
  virtual std::string SortKey(std::u16string_view AText) const = 0;
  /// The class name, as "TVnXPathCollationASCIICI".
  virtual const char16_t* ClassName() const noexcept = 0;

 protected:
  constexpr TVnXPathCollation() = default;
  ~TVnXPathCollation() = default;
};
using TVnXPathCollationClass = const TVnXPathCollation*;

/// Ignores case (ICU secondary strength) in Compare; Pos folds A-Z only.
class TVnXPathCollationASCIICI final : public TVnXPathCollation {
 public:
  /// The class reference.
  static TVnXPathCollationClass Class() noexcept;
  Integer Compare(std::u16string_view S1, std::u16string_view S2) const override;
  Integer Pos(std::u16string_view ASubStr, std::u16string_view AText) const override;
  bool SameText(std::u16string_view S1, std::u16string_view S2) const override;
  std::string SortKey(std::u16string_view AText) const override;
  const char16_t* ClassName() const noexcept override { return u"TVnXPathCollationASCIICI"; }

 private:
  constexpr TVnXPathCollationASCIICI() = default;
  static const TVnXPathCollationASCIICI FInstance;
};

/// Case-sensitive linguistic order (ICU tertiary strength), not code point order despite its name.
class TVnXPathCollationCodepoint final : public TVnXPathCollation {
 public:
  /// The class reference.
  static TVnXPathCollationClass Class() noexcept;
  Integer Compare(std::u16string_view S1, std::u16string_view S2) const override;
  Integer Pos(std::u16string_view ASubStr, std::u16string_view AText) const override;
  bool SameText(std::u16string_view S1, std::u16string_view S2) const override;
  std::string SortKey(std::u16string_view AText) const override;
  const char16_t* ClassName() const noexcept override { return u"TVnXPathCollationCodepoint"; }

 private:
  constexpr TVnXPathCollationCodepoint() = default;
  static const TVnXPathCollationCodepoint FInstance;
};

}  // namespace vn
