// variant_internal.h: storage of variant arrays and helpers shared by the variant_*.cpp files.
#pragma once

#include <atomic>
#include <vector>

#include "vnxml/common/variant.h"

namespace vn::detail {

struct VarArrayBound {
  Integer Low;
  Integer Count;
};

/// Shared, counted storage of one variant array; written only through a unique owner.
struct VarArrayData {
  std::atomic<int> Refs{1};
  TVarType ElemType = varVariant;
  int Locks = 0;
  std::vector<VarArrayBound> Bounds;
  std::vector<Variant> Items;  // every element type but varByte
  std::vector<Byte> Bytes;     // varByte elements, reachable as plain bytes

  size_t Count() const { return ElemType == varByte ? Bytes.size() : Items.size(); }
  VarArrayData* Clone() const;
};

void ReleaseArray(VarArrayData* AData) noexcept;

// ---- failures with the platform's texts ----
[[noreturn]] void RaiseCastError(TVarType AFrom, TVarType ATo);
[[noreturn]] void RaiseOverflow(TVarType AFrom, TVarType ATo);
[[noreturn]] void RaiseInvalidOp();
[[noreturn]] void RaiseBadIndex();
[[noreturn]] void RaiseInvalidArg();
[[noreturn]] void RaiseArrayCreate();
[[noreturn]] void RaiseArrayLocked();
[[noreturn]] void RaiseBadVarType();

// ---- value helpers ----
inline bool IsIntegerType(TVarType t) {
  switch (t) {
    case varSmallint: case varInteger: case varShortInt: case varByte: case varWord:
    case varLongWord: case varInt64: case varUInt64:
      return true;
    default:
      return false;
  }
}
inline bool IsStringType(TVarType t) { return t == varOleStr || t == varUString || t == varString; }
/// The text of a string kind as UTF-16 (varString bytes read as UTF-8, as Latin-1 when not UTF-8).
UnicodeString StringOf(const Variant& V);
/// Reads a date-time text in the form VarToStr writes ("yyyy-mm-dd hh:nn:ss", either half alone)
/// or an ISO form with 'T'; false when the text is no such date.
bool TryTextToDate(std::u16string_view AText, TDateTime& AValue);
/// The text VarToStr gives for a date: date, time or both, omitting a zero half.
UnicodeString DateToText(TDateTime AValue);
/// ISO 8601 without zone: "yyyy-mm-ddThh:nn:ss.zzz".
UnicodeString DateToISOText(TDateTime AValue);

}  // namespace vn::detail
