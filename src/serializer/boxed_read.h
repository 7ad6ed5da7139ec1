// A TValue member's object, record or array is read from its collected text by a reader of its
// own, which may meet another such member inside: the depth of these nested reads travels as a
// parameter of each inner reader, and is bounded, so that a text cannot make the reads recurse
// (or parse its tail again) without end.
#pragma once

#include "vnxml/common/sysutils.h"
#include "vnxml/serializer.h"
#include "vnxml/serializer_builder.h"

namespace vn::detail {

inline constexpr Integer kMaxBoxedReads = 64;
inline constexpr char16_t kBoxedDepthParam[] = u"vn:boxed-depth";
/// Set to "1" in the read of a boxed record or array: an object made there would have no owner.
inline constexpr char16_t kBoxedNoOwnerParam[] = u"vn:boxed-no-owner";

/// Raises cVnBoxedObjectUnowned when ASerializer reads inside a boxed record or array.
inline void CheckBoxedOwner(TVnCustomSerializer& ASerializer, const UnicodeString& APath) {
  if (ASerializer.GetParam(kBoxedNoOwnerParam) == u"1") throw EVnSerializeException(cVnBoxedObjectUnowned, {APath});
}

/// The depth of an inner read started by ASerializer; past the bound, AMessage (a format with
/// the path) is raised with APath.
inline Integer BoxedReadDepth(TVnCustomSerializer& ASerializer, const char16_t* AMessage, const UnicodeString& APath) {
  const Integer depth = StrToIntDef(ASerializer.GetParam(kBoxedDepthParam), 0) + 1;
  if (depth > kMaxBoxedReads) throw EVnSerializeException(AMessage, {APath});
  return depth;
}

/// Reads AText into AValue's payload (or the object it holds) with a reader of its own at ADepth;
/// the result is the reader's own copy of the value.
inline TValue ReadBoxed(TVnDataSerializationFormatType AFormat, const TValue& AValue, const TVnSerializedData& AText,
                        Integer ADepth) {
  IPtr<IVnDeserializer> reader = VnCreateDeserializer(AFormat, AValue);
  reader->SetParam(kBoxedDepthParam, IntToStr(static_cast<Int64>(ADepth)));
  if (!AValue.IsObject()) reader->SetParam(kBoxedNoOwnerParam, u"1");
  reader->Deserialize(AText);
  return AValue.IsObject() ? AValue : TValue::Make(reader->GetInstancePtr(), AValue.TypeInfo());
}

}  // namespace vn::detail
