// Fuzz target of the JSON binding: arbitrary bytes read into a fixed registered class with a
// member of most shapes and a member of its own class (so depth is open). A first byte 0x01
// reads the rest as form text. Oracle: a read either succeeds or raises the library's own
// exception, never an assertion or another exception; every object it created is of a
// registered class the member allows; a successful read writes text that reads back to the same
// text. The one loss the JSON escaping makes by rule, the characters U+0001 to U+0007 dropped on
// writing, changes the value once: such a graph must write text that settles a round later.
// Leaks are the sanitizer's to find.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "vnxml/common/generics.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/string_list.h"
#include "vnxml/json_serializer.h"
#include "vnxml/json_serializer_reader.h"

namespace fz {

using namespace vn;

enum TFzTone : uint8_t { ftLow, ftMid, ftHigh };
VN_REGISTER_TYPE(TFzTone, u"uFuzz") { b.Values({u"ftLow", u"ftMid", u"ftHigh"}); }
using TFzTones = TSet<TFzTone>;
VN_REGISTER_TYPE(TFzTones, u"uFuzz") {}
struct TFzPoint {
  Integer X = 0;
  Double Y = 0;
};
VN_REGISTER_TYPE(TFzPoint, u"uFuzz") { b.Public(u"X", &TFzPoint::X).Public(u"Y", &TFzPoint::Y); }

class TFzNode : public TObject {
  VN_DECLARE_CLASS(TFzNode, TObject)
 public:
  TFzNode() : Notes(new TStringList) {}
  ~TFzNode() override {
    // Unlinks the chain first, so that a long one is freed without recursion.
    while (TFzNode* next = Next) {
      Next = next->Next;
      next->Next = nullptr;
      delete next;
    }
    for (TFzNode* k : Kids) delete k;
    delete Notes;
    delete Bag;
  }
  /// An owning object list, read-only: its elements are made by the container helper.
  generics::TObjectList<TFzNode>* GetBag() const { return Bag; }
  UnicodeString Name;
  Int64 N = 0;
  Byte B = 0;
  Double D = 0;
  Char C = u' ';
  Boolean Flag = false;
  TFzTone Tone = ftLow;
  TFzTones Tones;
  TDate Day = 0;
  Variant V;
  TValue Any;
  TFzPoint Point;
  std::vector<Integer> Ints;
  std::vector<TFzPoint> Points;
  std::vector<TFzTone> ToneList;
  TFzNode* Next = nullptr;
  std::vector<TFzNode*> Kids;
  TStringList* Notes;
  generics::TObjectList<TFzNode>* Bag = new generics::TObjectList<TFzNode>();
};
VN_REGISTER_TYPE(TFzNode, u"uFuzz") {
  b.Public(u"Name", &TFzNode::Name)
      .Public(u"N", &TFzNode::N)
      .Public(u"B", &TFzNode::B)
      .Public(u"D", &TFzNode::D)
      .Public(u"C", &TFzNode::C)
      .Public(u"Flag", &TFzNode::Flag)
      .Public(u"Tone", &TFzNode::Tone)
      .Public(u"Tones", &TFzNode::Tones)
      .Public(u"Day", &TFzNode::Day)
      .OfType(u"TDate")
      .Public(u"V", &TFzNode::V)
      .Public(u"Any", &TFzNode::Any)
      .Public(u"Point", &TFzNode::Point)
      .Public(u"Ints", &TFzNode::Ints)
      .Public(u"Points", &TFzNode::Points)
      .Public(u"ToneList", &TFzNode::ToneList)
      .Public(u"Next", &TFzNode::Next)
      .Public(u"Kids", &TFzNode::Kids)
      .Public(u"Notes", &TFzNode::Notes)
      .Published(u"Bag", &TFzNode::GetBag);
}
/// Registered, but never a node.
class TFzOther : public TObject {
  VN_DECLARE_CLASS(TFzOther, TObject)
};
VN_REGISTER_TYPE(TFzOther, u"uFuzz") {}

[[noreturn]] void Finding(const char* AWhat, const std::string& AText) {
  std::fprintf(stderr, "json_deserialize_fuzz: %s\n%s\n", AWhat, AText.c_str());
  std::abort();
}

/// Every object below ANode is a node (the only class these members allow); iterative.
void CheckClasses(const TFzNode& ANode) {
  std::vector<const TFzNode*> todo{&ANode};
  while (!todo.empty()) {
    const TFzNode* n = todo.back();
    todo.pop_back();
    if (n->ClassType() != TFzNode::StaticClass()) Finding("an object of another class", "");
    if (!n->Notes) Finding("the string list was unlinked", "");
    if (n->Next) todo.push_back(n->Next);
    for (const TFzNode* k : n->Kids)
      if (k) todo.push_back(k);
    for (const TFzNode* k : *n->Bag)
      if (k) todo.push_back(k);
  }
}

bool DropsOnWriting(std::u16string_view AText) {
  for (char16_t c : AText)
    if (c >= 1 && c <= 7) return true;
  return false;
}

/// Some text below ANode holds a character the JSON escaping drops; iterative.
bool HoldsDroppedChars(const TFzNode& ANode) {
  std::vector<const TFzNode*> todo{&ANode};
  while (!todo.empty()) {
    const TFzNode* n = todo.back();
    todo.pop_back();
    if (DropsOnWriting(n->Name) || DropsOnWriting(std::u16string_view(&n->C, 1))) return true;
    if (VarIsStr(n->V) && DropsOnWriting(n->V.AsString())) return true;
    if (n->Any.Kind() == tkUString && DropsOnWriting(n->Any.AsString())) return true;
    for (const UnicodeString& line : *n->Notes)
      if (DropsOnWriting(line)) return true;
    if (n->Next) todo.push_back(n->Next);
    for (const TFzNode* k : n->Kids)
      if (k) todo.push_back(k);
    for (const TFzNode* k : *n->Bag)
      if (k) todo.push_back(k);
  }
  return false;
}

/// Reads AText into ANode; false when the library raised its own failure.
bool Read(TFzNode& ANode, const std::string& AText, bool AForm) {
  try {
    IPtr<IVnDeserializer> reader = VnCreateDeserializer(dsfJSON, &ANode, TypeInfoOf<TFzNode>());
    if (AForm) reader->SetParam(u"UrlEncoded", u"1");
    reader->Deserialize(AText);
    return true;
  } catch (const EAssertionFailed& e) {
    Finding(e.what(), AText);
  } catch (const Exception&) {
    return false;
  } catch (const std::exception& e) {
    Finding(e.what(), AText);
  }
}

}  // namespace fz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* AData, size_t ASize) {
  using namespace fz;
  const bool form = ASize > 0 && AData[0] == 1;
  const std::string text(reinterpret_cast<const char*>(AData) + (form ? 1 : 0), ASize - (form ? 1 : 0));
  TFzNode node;
  const bool read = Read(node, text, form);
  CheckClasses(node);
  if (!read) return 0;
  std::string written;
  try {
    written = VnSerialize(dsfJSON, &node);
  } catch (const Exception&) {
    return 0;  // a graph too deep to write
  }
  const bool lossy = HoldsDroppedChars(node);
  TFzNode copy;
  if (!Read(copy, written, false)) Finding("the library's own text does not read back", written);
  CheckClasses(copy);
  const std::string again = VnSerialize(dsfJSON, &copy);
  if (again == written) return 0;
  if (!lossy) Finding("the text changed on the way back", written);
  TFzNode settled;
  if (!Read(settled, again, false)) Finding("the library's own text does not read back", again);
  if (VnSerialize(dsfJSON, &settled) != again) Finding("the text does not settle after the escaping's loss", again);
  return 0;
}
