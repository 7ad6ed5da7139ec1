// Host types of the JSON binding tests: one class with a member of every shape the notation
// writes, a small class tree for created members, and helpers to run both directions.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "common/message_of.h"
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
  Integer X = 0;
  Integer Y = 0;
  bool operator==(const TPoint&) const = default;
};
VN_REGISTER_TYPE(TPoint, u"uJSONTest") { b.Public(u"X", &TPoint::X).Public(u"Y", &TPoint::Y); }

class TPet : public TObject {
  VN_DECLARE_CLASS(TPet, TObject)
 public:
  ~TPet() override {
    // A long chain of friends goes without recursion.
    while (TPet* f = Friend) {
      Friend = f->Friend;
      f->Friend = nullptr;
      delete f;
    }
  }
  UnicodeString Name;
  Integer Legs = 4;
  TPet* Friend = nullptr;
};
VN_REGISTER_TYPE(TPet, u"uJSONTest") {
  b.Public(u"Name", &TPet::Name).Public(u"Legs", &TPet::Legs).Public(u"Friend", &TPet::Friend);
}
class TCat : public TPet {
  VN_DECLARE_CLASS(TCat, TPet)
 public:
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
  ~TShapes() override {
    delete Pet;
    delete Spare;
    for (TPet* p : Pets) delete p;
    delete Notes;
    delete Data;
    delete Doc;
  }
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
      .Public(u"B", &TShapes::B).Public(u"W", &TShapes::W).Public(u"LW", &TShapes::LW).Public(u"U64", &TShapes::U64)
      .Public(u"SI", &TShapes::SI).Public(u"SM", &TShapes::SM).Public(u"I", &TShapes::I).Public(u"I64", &TShapes::I64)
      .Public(u"F32", &TShapes::F32).Public(u"F64", &TShapes::F64).Public(u"F80", &TShapes::F80)
      .Public(u"C", &TShapes::C).Public(u"S", &TShapes::S).Public(u"Flag", &TShapes::Flag)
      .Public(u"Tone", &TShapes::Tone).Public(u"Shade", &TShapes::Shade).Public(u"Tones", &TShapes::Tones)
      .Public(u"Day", &TShapes::Day).OfType(u"TDate")
      .Public(u"Clock", &TShapes::Clock).OfType(u"TTime")
      .Public(u"Stamp", &TShapes::Stamp).OfType(u"TDateTime")
      .Public(u"V", &TShapes::V).Public(u"Ints", &TShapes::Ints).Public(u"Fixed", &TShapes::Fixed)
      .Public(u"Words", &TShapes::Words).Public(u"ToneList", &TShapes::ToneList).Public(u"Point", &TShapes::Point)
      .Public(u"Points", &TShapes::Points).Public(u"Pet", &TShapes::Pet).Public(u"Spare", &TShapes::Spare)
      .Public(u"Pets", &TShapes::Pets).Public(u"Notes", &TShapes::Notes).Public(u"Data", &TShapes::Data)
      .Public(u"Any", &TShapes::Any).Public(u"Raw", &TShapes::Raw).Public(u"Doc", &TShapes::Doc);
}

inline std::string ToJSON(TShapes& AObject) { return VnSerialize(dsfJSON, &AObject); }
inline void FromJSON(TShapes& AObject, const std::string& AText) {
  VnDeserialize(dsfJSON, &AObject, TypeInfoOf<TShapes>(), AText);
}

}  // namespace jsondomain
