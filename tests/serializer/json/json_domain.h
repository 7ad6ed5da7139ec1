// Host types of the JSON binding tests: one class with a member of every shape the notation
// writes, a small class tree for created members, and helpers to run both directions.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common/message_of.h"
#include "serializer/domain_support.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/string_list.h"
#include "vnxml/common/variant.h"
#include "vnxml/json_document.h"
#include "vnxml/json_serializer.h"
#include "vnxml/json_serializer_reader.h"

namespace jsondomain {

using namespace vn;
using test::MessageOf;

enum TTone : uint8_t { toLow, toMid, toHigh };
VN_REGISTER_TYPE(TTone, u"uJSONTest") { b.Values({u"toLow", u"toMid", u"toHigh"}); }
enum TShade : uint8_t { shLight, shDark };
VN_REGISTER_TYPE(TShade, u"uJSONTest") {
  b.Values({u"shLight", u"shDark"}).TypeAttr<SerializerHint>(shoEnumPrefix, u"sh");
}
using TTones = TSet<TTone>;
VN_REGISTER_TYPE(TTones, u"uJSONTest") {}

struct TPoint {
  Integer X = 0, Y = 0;
  bool operator==(const TPoint&) const = default;
};
VN_REGISTER_TYPE(TPoint, u"uJSONTest") { b VN_TEST_PUBLIC(TPoint, X, Y); }

class TPet : public TObject {
  VN_DECLARE_CLASS(TPet, TObject)
 public:
  explicit TPet(UnicodeString AName = {}) : Name(std::move(AName)) {}
  ~TPet() override { test::DeleteChain(Friend, &TPet::Friend); }
  UnicodeString Name;
  Integer Legs = 4;
  TPet* Friend = nullptr;
};
VN_REGISTER_TYPE(TPet, u"uJSONTest") { b VN_TEST_PUBLIC(TPet, Name, Legs, Friend); }
class TCat : public TPet {
  VN_DECLARE_CLASS(TCat, TPet)
 public:
  using TPet::TPet;
  Boolean Purrs = false;
};
VN_REGISTER_TYPE(TCat, u"uJSONTest") { b.Public(u"Purrs", &TCat::Purrs); }
/// Registered, but no pet.
class TRock : public TObject {
  VN_DECLARE_CLASS(TRock, TObject)
 public:
  Integer Weight = 0;
};
VN_REGISTER_TYPE(TRock, u"uJSONTest") { b.Public(u"Weight", &TRock::Weight); }

/// A member of every shape; owns its objects.
class TShapes : public TObject {
  VN_DECLARE_CLASS(TShapes, TObject)
 public:
  TShapes() : Notes(new TStringList), Data(new TMemoryStream) {}
  ~TShapes() override { test::DeleteAll(Pet, Spare, Pets, Notes, Data, Doc); }
  // clang-format off
  Byte B = 0; Word W = 0; LongWord LW = 0; UInt64 U64 = 0; ShortInt SI = 0; SmallInt SM = 0; Integer I = 0;
  Int64 I64 = 0; Single F32 = 0; Double F64 = 0; Extended F80 = 0; Char C = u'a'; UnicodeString S;
  Boolean Flag = false; TTone Tone = toLow; TShade Shade = shLight; TTones Tones;
  TDate Day = 0; TTime Clock = 0; TDateTime Stamp = 0; Variant V;
  std::vector<Integer> Ints; std::array<Integer, 3> Fixed{}; std::vector<UnicodeString> Words;
  std::vector<TTone> ToneList; TPoint Point; std::vector<TPoint> Points;
  TPet* Pet = nullptr; TPet* Spare = nullptr; std::vector<TPet*> Pets; TStringList* Notes; TMemoryStream* Data;
  TValue Any; VnJSONString Raw; TVnJSONDocument* Doc = nullptr;
  // clang-format on
  Integer GetProp() const { return FProp; }
  void SetProp(Integer AValue) { FProp = AValue; }
  Integer FProp = 0;
};
VN_REGISTER_TYPE(TShapes, u"uJSONTest") {
  b.Published(u"Prop", &TShapes::GetProp, &TShapes::SetProp)
      VN_TEST_PUBLIC(TShapes, B, W, LW, U64, SI, SM, I, I64, F32, F64, F80, C, S, Flag, Tone, Shade, Tones, Day)
      .OfType(u"TDate").Public(u"Clock", &TShapes::Clock).OfType(u"TTime")
      .Public(u"Stamp", &TShapes::Stamp).OfType(u"TDateTime")
      VN_TEST_PUBLIC(TShapes, V, Ints, Fixed, Words, ToneList, Point, Points, Pet, Spare, Pets, Notes, Data, Any, Raw,
                     Doc);
}

inline std::string ToJSON(TShapes& AObject) { return VnSerialize(dsfJSON, &AObject); }
inline void FromJSON(TShapes& AObject, const std::string& AText) {
  VnDeserialize(dsfJSON, &AObject, TypeInfoOf<TShapes>(), AText);
}

}  // namespace jsondomain
