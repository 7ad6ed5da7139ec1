// Enumeration and set names without the prefix a hint gives them, and back.
#include "vnxml/serializer_enums.h"

#include "vnxml/common/rtti.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/serializer_hints.h"

namespace vn {

namespace {

bool StartsWithDigit(std::u16string_view AText) { return !AText.empty() && AText[0] >= u'0' && AText[0] <= u'9'; }

bool InRange(const TTypeInfo* AType, Int64 AOrdinal) {
  return AType && AOrdinal >= AType->MinValue && AOrdinal <= AType->MaxValue;
}

}  // namespace

UnicodeString VnEnumPrefix(const TTypeInfo* AType) {
  if (AType && AType->Kind == tkSet) AType = AType->ElementType;
  SerializerHint* hint = nullptr;
  return AType && GetSerializerHint(AType->RttiType, shoEnumPrefix, hint) ? hint->GetValue() : UnicodeString();
}

UnicodeString VnEnumName(const TTypeInfo* AType, Int64 AOrdinal, std::u16string_view APrefix) {
  if (!InRange(AType, AOrdinal)) return IntToStr(AOrdinal);
  UnicodeString name = GetEnumName(AType, static_cast<Integer>(AOrdinal));
  if (!APrefix.empty() && name.size() > APrefix.size() && StartsText(APrefix, name)) name.erase(0, APrefix.size());
  return name;
}

UnicodeString VnSetNames(const TTypeInfo* ASetType, UInt64 ABits, std::u16string_view APrefix) {
  const TTypeInfo* element = ASetType ? ASetType->ElementType : nullptr;
  UnicodeString text = u"[";
  for (Int64 ordinal = 0; ordinal < 64; ++ordinal) {
    if (!(ABits & (UInt64{1} << ordinal))) continue;
    if (text.size() > 1) text += u',';
    text += VnEnumName(element, ordinal, APrefix);
  }
  return text + u"]";
}

Int64 VnEnumOrdinal(const TTypeInfo* AType, std::u16string_view AText, std::u16string_view APrefix) {
  const UnicodeString text = Trim(AText);
  Int64 ordinal = -1;
  if (text.empty()) {
    ordinal = 0;
  } else if (StartsWithDigit(text)) {
    if (!TryStrToInt64(text, ordinal)) ordinal = -1;
  } else {
    if (!APrefix.empty()) ordinal = GetEnumValue(AType, UnicodeString(APrefix) + text);
    if (ordinal < 0) ordinal = GetEnumValue(AType, text);
  }
  return InRange(AType, ordinal) ? ordinal : -1;
}

bool VnSetBits(const TTypeInfo* ASetType, std::u16string_view AText, std::u16string_view APrefix, UInt64& ABits) {
  const TTypeInfo* element = ASetType ? ASetType->ElementType : nullptr;
  std::u16string_view rest = AText;
  while (!rest.empty() && rest.front() == u' ') rest.remove_prefix(1);
  while (!rest.empty() && rest.back() == u' ') rest.remove_suffix(1);
  Int64 number = 0;
  if (StartsWithDigit(rest) && TryStrToInt64(rest, number)) {
    // Only elements the type has: a bit beyond them has no name to write back.
    for (Int64 ordinal = 0; ordinal < 64; ++ordinal)
      if ((static_cast<UInt64>(number) >> ordinal & 1) && element && !InRange(element, ordinal)) return false;
    ABits = static_cast<UInt64>(number);
    return true;
  }
  if (!rest.empty() && rest.front() == u'[') rest.remove_prefix(1);
  if (!rest.empty() && rest.back() == u']') rest.remove_suffix(1);
  UInt64 bits = 0;
  while (!rest.empty()) {
    const size_t comma = rest.find(u',');
    const UnicodeString name = Trim(rest.substr(0, comma));
    rest = comma == rest.npos ? std::u16string_view() : rest.substr(comma + 1);
    if (name.empty()) continue;
    const Int64 ordinal = VnEnumOrdinal(element, name, APrefix);
    if (ordinal < 0 || ordinal >= 64) return false;
    bits |= UInt64{1} << ordinal;
  }
  ABits = bits;
  return true;
}

}  // namespace vn
