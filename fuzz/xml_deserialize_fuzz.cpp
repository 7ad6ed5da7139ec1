// Fuzz target of the XML object reader: any bytes are read into one fixed registered type. A
// read either succeeds or fails with the library's own exception; a failed read leaves no
// created object linked to the target (and, under the sanitizers, none leaked). Every object
// created is of a class the target's members allow; the TValue member takes any class its text
// names, and the tree holding it frees it. What reads must survive its own output: the text
// written from it reads again and writes the same text.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "vnxml/common/classes.h"
#include "vnxml/common/generics.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/string_list.h"
#include "vnxml/common/utf.h"
#include "vnxml/serializer.h"

namespace fuzzdomain {

using namespace vn;

enum TTone : uint8_t { tnLow, tnMid, tnHigh };
VN_REGISTER_TYPE(TTone, u"uFuzz") { b.Values({u"tnLow", u"tnMid", u"tnHigh"}).TypeAttr<SerializerHint>(shoEnumPrefix, u"tn"); }
using TTones = TSet<TTone>;
VN_REGISTER_TYPE(TTones, u"uFuzz") {}

struct TSpot {
  Integer X = 0;
  UnicodeString Tag;
  std::vector<Double> Weights;
};
VN_REGISTER_TYPE(TSpot, u"uFuzz") { b.Public(u"X", &TSpot::X).Public(u"Tag", &TSpot::Tag).Public(u"Weights", &TSpot::Weights); }

class TLeaf : public TObject {
  VN_DECLARE_CLASS(TLeaf, TObject)
 public:
  UnicodeString Name;
  Int64 Size = 0;
};
VN_REGISTER_TYPE(TLeaf, u"uFuzz") { b.Public(u"Name", &TLeaf::Name).Public(u"Size", &TLeaf::Size); }

class TBigLeaf : public TLeaf {
  VN_DECLARE_CLASS(TBigLeaf, TLeaf)
 public:
  TTones Tones;
};
VN_REGISTER_TYPE(TBigLeaf, u"uFuzz") { b.Public(u"Tones", &TBigLeaf::Tones); }

class TTree : public TObject {
  VN_DECLARE_CLASS(TTree, TObject)
 public:
  TTree() : Notes(new TStringList()) {}
  TTree(const TTree&) = delete;
  TTree& operator=(const TTree&) = delete;
  ~TTree() override {
    delete Leaf;
    delete Next;
    for (TLeaf* leaf : Leaves) delete leaf;
    delete Notes;
    delete Bag;
    if (Boxed.IsObject()) delete Boxed.AsObject();
  }
  /// An owning object list, read-only: its elements are made by the container helper.
  generics::TObjectList<TLeaf>* GetBag() const { return Bag; }
  Integer Count = 0;
  bool Flag = false;
  Double Ratio = 0;
  UnicodeString Text;
  TTone Tone = tnLow;
  TTones Tones;
  TDateTime When = 0;
  Variant Any;
  TValue Boxed;
  TSpot Spot;
  TLeaf* Leaf = nullptr;
  TTree* Next = nullptr;
  std::vector<TLeaf*> Leaves;
  std::vector<TSpot> Spots;
  std::vector<std::vector<Integer>> Grid;
  TStringList* Notes;
  generics::TObjectList<TLeaf>* Bag = new generics::TObjectList<TLeaf>();
};
VN_REGISTER_TYPE(TTree, u"uFuzz") {
  b.Public(u"Count", &TTree::Count).Public(u"Flag", &TTree::Flag).Public(u"Ratio", &TTree::Ratio)
      .Public(u"Text", &TTree::Text).Public(u"Tone", &TTree::Tone).Public(u"Tones", &TTree::Tones)
      .Public(u"When", &TTree::When).OfType(u"TDateTime")
      .Public(u"Any", &TTree::Any).Public(u"Boxed", &TTree::Boxed).Public(u"Spot", &TTree::Spot)
      .Public(u"Leaf", &TTree::Leaf).Public(u"Next", &TTree::Next).Public(u"Leaves", &TTree::Leaves)
      .Public(u"Spots", &TTree::Spots).Public(u"Grid", &TTree::Grid).Public(u"Notes", &TTree::Notes)
      .Published(u"Bag", &TTree::GetBag);
}

/// The objects the TValue members of the chain took: each tree frees its own, of any class its
/// text names.
std::vector<const TObject*> BoxedObjects(const TTree& ATree) {
  std::vector<const TObject*> boxed;
  for (const TTree* t = &ATree; t; t = t->Next)
    if (t->Boxed.IsObject()) boxed.push_back(t->Boxed.AsObject());
  return boxed;
}

/// The created objects are all of classes the tree's members can hold.
void CheckCreated(const TObjectList& ACreated, const TTree& ATree) {
  const std::vector<const TObject*> boxed = BoxedObjects(ATree);
  for (TObject* object : ACreated) {
    if (std::find(boxed.begin(), boxed.end(), object) == boxed.end() && !object->Is<TLeaf>() && !object->Is<TTree>()) {
      std::fprintf(stderr, "created an object of class %s\n", UnicodeToUtf8(object->ClassName()).c_str());
      std::abort();
    }
  }
}

}  // namespace fuzzdomain

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* AData, size_t ASize) {
  using namespace fuzzdomain;
  const std::string input(reinterpret_cast<const char*>(AData), ASize);
  TTree tree;
  TObjectList created(false);
  try {
    VnDeserialize(dsfXML, TValue::FromObject(&tree), input, &created);
  } catch (const Exception&) {
    // Elements read before the failure stay, as simple members do; none may hold an object.
    const bool leafLeft = std::any_of(tree.Leaves.begin(), tree.Leaves.end(), [](TLeaf* ALeaf) { return ALeaf != nullptr; });
    if (tree.Leaf || tree.Next || leafLeft || created.GetCount() != 0) {
      std::fprintf(stderr, "a failed read left created objects behind\n");
      std::abort();
    }
    return 0;
  }
  CheckCreated(created, tree);
  const TVnSerializedData first = VnSerialize(dsfXML, &tree);
  TTree again;
  TObjectList createdAgain(false);
  VnDeserialize(dsfXML, TValue::FromObject(&again), first, &createdAgain);
  const TVnSerializedData second = VnSerialize(dsfXML, &again);
  if (first != second) {
    std::fprintf(stderr, "own output read back differently:\n%s\n%s\n", first.c_str(), second.c_str());
    std::abort();
  }
  return 0;
}
