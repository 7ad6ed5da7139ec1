// The node classes: the not-supported scheme, members and objects, arrays, ownership with
// interfaces. Lifetimes are checked by ASan and LeakSanitizer as much as by the expectations.
#include <gtest/gtest.h>

#include <functional>

#include "common/message_of.h"
#include "vnxml/common/json_doc_hooks.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/variant_array.h"
#include "vnxml/json_document.h"

namespace vn {
namespace {

UnicodeString NotSupportedText(std::u16string_view AClass, std::u16string_view AWord) {
  return Format(_cVnJSONMethodNotSupported, {AClass, AWord});
}

// AAction runs twice, for the code and for the message: the calls checked here change nothing.
template <class F>
void ExpectJSONError(F&& AAction, Integer ACode, const UnicodeString& AMessage) {
  EXPECT_EQ(test::CodeOf<EVnJSONException>(AAction), ACode);
  EXPECT_EQ(test::MessageOf<EVnJSONException>(AAction), AMessage);
}

TEST(JsonModel, OperationsAKindLacksRaiseWithTheirWord) {
  TVnJSONDocument doc(u"{\"o\":{},\"a\":[],\"s\":1}");
  auto valueOf = [&](const char16_t* AName) { return doc.GetRootValue()->FindMember(AName)->GetValueObj(); };
  TVnJSONBase *object = valueOf(u"o"), *array = valueOf(u"a"), *simple = valueOf(u"s");
  TVnJSONBase* member = doc.GetRootValue()->FindMember(u"s");
  struct Case { TVnJSONBase* Node; const char16_t *Class, *Word; std::function<void(TVnJSONBase&)> Call; };
  const Case cases[] = {
      {simple, u"TVnJSONSimpleType", u"Count", [](TVnJSONBase& n) { n.Count(); }},
      {array, u"TVnJSONArray", u"FindMember", [](TVnJSONBase& n) { n.FindMember(u"x"); }},
      {array, u"TVnJSONArray", u"Member", [](TVnJSONBase& n) { n.GetMember(u"x"); }},
      {simple, u"TVnJSONSimpleType", u"GetValue", [](TVnJSONBase& n) { n.GetValueObj(); }},
      {member, u"TVnJSONMember", u"SetValue", [](TVnJSONBase& n) { n.SetValue(nullptr); }},
      {object, u"TVnJSONObject", u"AddValue", [](TVnJSONBase& n) { n.AddValue(Variant(1)); }},
      {array, u"TVnJSONArray", u"AddMember", [](TVnJSONBase& n) { n.AddMember(u"x", jdtNull); }},
      {object, u"TVnJSONObject", u"GetAsString", [](TVnJSONBase& n) { n.GetAsString(); }},
      {object, u"TVnJSONObject", u"GetAsArray", [](TVnJSONBase& n) { n.GetAsArray(); }},
      {array, u"TVnJSONArray", u"GetAsObject", [](TVnJSONBase& n) { n.GetAsObject(); }},
      {simple, u"TVnJSONSimpleType", u"GetAsValue", [](TVnJSONBase& n) { n.GetAsValue(); }},
      {simple, u"TVnJSONSimpleType", u"SetAsValue", [](TVnJSONBase& n) { n.SetAsValue(TValue()); }},
      {object, u"TVnJSONObject", u"SetName", [](TVnJSONBase& n) { n.SetName(u"x"); }},
      {array, u"TVnJSONArray", u"GetName", [](TVnJSONBase& n) { n.GetName(); }},
      {simple, u"TVnJSONSimpleType", u"DeleteValue", [](TVnJSONBase& n) { n.DeleteValue(0); }},
      {array, u"TVnJSONArray", u"RemoveMember", [](TVnJSONBase& n) { n.RemoveMember(nullptr); }},
      {object, u"TVnJSONObject", u"SetAsInteger", [](TVnJSONBase& n) { n.SetAsInteger(1); }},
      // a member forwards to a simple value only
      {doc.GetRootValue()->FindMember(u"o"), u"TVnJSONMember", u"GetAsInteger",
       [](TVnJSONBase& n) { n.GetAsInteger(); }},
      {member, u"TVnJSONMember", u"GetAsObject", [](TVnJSONBase& n) { n.GetAsObject(); }},
      {member, u"TVnJSONMember", u"AddValue", [](TVnJSONBase& n) { n.AddValue(jdtNull); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(UnicodeToUtf8(c.Word));
    ExpectJSONError([&] { c.Call(*c.Node); }, cVnJSONErrMethodNotSupported, NotSupportedText(c.Class, c.Word));
  }
  EXPECT_EQ(std::tuple(object->GetAsObject(), array->GetAsArray()), std::tuple(object, array));
}

TEST(JsonModel, MembersFindCreateAndRaise) {
  TVnJSONObject object;
  object.AddMember(u"a", Variant(1));
  object.AddMember(u"a", Variant(2));  // names need not be unique; the first wins
  EXPECT_EQ(std::tuple(object.FindMember(u"a")->GetAsInteger(), object.FindMember(u"A", true)->GetAsInteger(),
                       object.FindMember(u"A", false), object.GetMember(u"b")), std::tuple(1, 1, nullptr, nullptr));
  ExpectJSONError([&] { object.GetMember(u"b", {jsoRaise}); }, cVnJSONErrNoMember, Format(_cVnJSONNoMember, {u"b"}));
  TVnJSONMember* created = object.GetMember(u"b", {jsoCreate, jsoRaise});
  ASSERT_NE(created, nullptr);
  EXPECT_EQ(std::tuple(object.GetLastMember(), object.Count(), object.HasMember(u"B", true), object.GetName()),
            std::tuple(created, 3, true, u"<object>"));
  // a member without a value makes one of the setter's kind
  created->SetAsString(u"x");
  TVnJSONMember* nested = object.AddMember(u"n");
  TVnJSONArray* deep = nested->GetAsObject()->AddMember(u"deep")->GetAsArray();
  EXPECT_EQ(std::tuple(created->GetValueObj()->GetJSONType(), deep->GetOwner()->GetOwner(), object.GetAsJSON()),
            std::tuple(jdtString, nested->GetValueObj(), u"{\"a\": 1, \"a\": 2, \"b\": \"x\", \"n\": {\"deep\": []}}"));
  object.DeleteMember(0);
  object.RemoveMember(object.FindMember(u"b"));
  EXPECT_EQ(object.GetAsJSON(), u"{\"a\": 2, \"n\": {\"deep\": []}}");
  EXPECT_THROW(object.DeleteMember(5), EListError);
}

TEST(JsonModel, VariantsBecomeValuesByMainKind) {
  TVnJSONObject object;
  const std::pair<const char16_t*, Variant> members[] = {{u"i", Variant(7)}, {u"f", Variant(1.5)},
      {u"s", Variant(u"a/b")}, {u"b", Variant(true)}, {u"l", VarArrayOf({Variant(1), Variant(u"x")})},
      {u"n", Variant::Null()}};
  for (const auto& [name, value] : members) object.AddMember(name, value);
  EXPECT_EQ(object.GetAsJSON(),
            u"{\"i\": 7, \"f\": 1.5, \"s\": \"a\\/b\", \"b\": true, \"l\": [1, \"x\"], \"n\": null}");
  EXPECT_EQ(object.FindMember(u"i")->GetValueObj()->GetJSONType(), jdtNumber);
  EXPECT_THROW(object.AddMember(u"x", jdtObject, u"text"), EInvalidCast);
}

TEST(JsonModel, SimpleValuesReadAndWrite) {
  // Text: as saved; String: GetAsString
  struct Case { std::function<void(TVnJSONBase&)> Set; const char16_t* Text; const char16_t* String; };
  const Case cases[] = {
      {[](TVnJSONBase& n) { n.SetAsInteger(-3); }, u"-3", u"-3"},
      {[](TVnJSONBase& n) { n.SetAsLargeInt(1LL << 40); }, u"1099511627776", u"1099511627776"},
      {[](TVnJSONBase& n) { n.SetAsBoolean(true); }, u"true", u"true"},
      {[](TVnJSONBase& n) { n.SetAsString(u"\u20AC\"\n"); }, u"\"\\u20AC\\\"\\n\"", u"\u20AC\"\n"},
      {[](TVnJSONBase& n) { n.SetAsVariant(Variant::Null()); }, u"null", u""},
  };
  for (const Case& c : cases) {
    TVnJSONDocument doc;
    TVnJSONBase* value = doc.CreateRootValue(jdtArray)->AddValue(jdtNull);
    c.Set(*value);
    EXPECT_EQ(std::tuple(value->GetAsJSON(), value->GetAsString()), std::tuple(c.Text, c.String));
  }
  // a loaded value reads through its text
  TVnJSONDocument doc(u"[\"12\", 1.50, true, \"a\\u00e9\"]");
  TVnJSONBase* root = doc.GetRootValue();
  EXPECT_EQ(std::tuple(root->Item(0)->GetAsInteger(), root->Item(1)->GetAsDouble(), root->Item(2)->GetAsBoolean(),
                       root->Item(3)->GetAsString(), VarToUStr(root->Item(1)->GetAsVariant())),
            std::tuple(12, 1.5, true, u"a\u00e9", u"1.50"));
  // loaded nodes that took heap memory since must still free it (LeakSanitizer watches)
  root->Item(3)->SetAsString(u"changed");
  root->AddValue(jdtObject)->AddMember(u"n")->SetName(u"renamed");
  EXPECT_EQ(doc.GetAsJSON(), u"[\"12\", 1.50, true, \"changed\", {\"renamed\": null}]");
  TVnJSONDocument object(u"{\"a\":1}");
  object.GetMember(u"a")->SetName(u"b");
  EXPECT_EQ(object.GetAsJSON(), u"{\"b\": 1}");
}

TEST(JsonModel, DocumentForwardsToTheRoot) {
  TVnJSONDocument empty;
  for (auto call : std::initializer_list<std::function<void()>>{
           [&] { empty.FindMember(u"a"); }, [&] { empty.Item(0); }, [&] { empty.GetMember(u"a"); }})
    ExpectJSONError(call, cVnJSONErrNoRoot, UnicodeString(_cVnJSONNoRoot));
  TVnJSONDocument doc(u"{\"a\":{\"b\":[1]}}");
  TVnJSONBase& asBase = doc;
  EXPECT_EQ(std::tuple(asBase.FindMember(u"a")->GetName(),
                       doc.GetMember(u"a")->GetAsObject()->FindMember(u"b")->GetAsArray()->Count(),
                       doc.GetMember(u"a")->GetAsObject()->GetPath(), doc.GetRootValue()->GetAsObject()->GetPath()),
            std::tuple(u"a", 1, u"#/a", u"#/"));
  TVnJSONBase* array = doc.CreateRootValue(jdtArray);
  EXPECT_EQ(std::tuple(doc.GetRootValue(), doc.ChildCount()), std::tuple(array, 1));
}

TEST(JsonModel, InterfacesShareTheNodesCount) {
  TVnJSONDocument doc(u"{\"a\":1,\"b\":[1,2,3]}");
  IPtr<IVnJSONMember> held = doc.GetMemberIntf(u"a", {});
  ASSERT_TRUE(held);
  doc.GetRootValue()->DeleteMember(0);
  // still usable until released; its value went with it
  EXPECT_EQ(std::tuple(held->GetName(), held->GetAsInteger()), std::tuple(u"a", 1));
  held = nullptr;

  IPtr<IVnJSONBase> root = doc.GetRootValueIntf();
  IPtr<IVnJSONObject> object = root.As<IVnJSONObject>();
  ASSERT_TRUE(object);
  EXPECT_FALSE(root.As<IVnJSONArray>());
  IPtr<IVnJSONArray> array = object->GetMemberEx(u"b")->GetAsArrayIntf();
  array->Exchange(0, 2);
  array->DeleteValue(1);
  IPtr<IVnJSONBase> kept = array->GetItem(0);
  array->RemoveValueIntf(kept);
  EXPECT_EQ(std::tuple(kept->GetAsInteger(), object->GetMemberEx(u"c")->GetName()), std::tuple(3, u"c"));  // c: made
  EXPECT_EQ(doc.GetAsJSON(), u"{\"b\": [1], \"c\": null}");
}

TEST(JsonModel, DocumentsAndNodesHeldByInterfaceDieWithTheLastHooksMakeOne) {
  IPtr<IVnJSONDocument> held(static_cast<IVnJSONDocument*>(new TVnJSONDocument(u"{\"a\":[true]}")));
  IPtr<IVnJSONBase> asBase = held.As<IVnJSONBase>();
  ASSERT_TRUE(asBase);
  EXPECT_EQ(held->GetRootValueIntf()->GetMemberEx(u"a")->GetValue()->GetItem(0)->GetAsBoolean(), true);
  // a node held past its document's end survives on its own
  IPtr<IVnJSONBase> survivor = held->GetRootValueIntf();
  held = nullptr;
  asBase = nullptr;
  EXPECT_EQ(survivor->GetAsJSON(), u"{\"a\": [true]}");

  // free-standing nodes die with their last interface too
  IPtr<IVnJSONArray> array(static_cast<IVnJSONArray*>(new TVnJSONArray(nullptr)));
  // without an owner the array lists nodes without owning them
  TVnJSONDocument doc(u"[1,2]");
  auto* list = static_cast<TVnJSONArray*>(dynamic_cast<TVnJSONArray*>(VnImplementor(array.Get())));
  list->AddReference(doc.GetRootValue()->Item(1));
  array = nullptr;
  EXPECT_EQ(doc.GetAsJSON(), u"[1, 2]");

  IPtr<IVnJSONObject> object(static_cast<IVnJSONObject*>(new TVnJSONObject()));
  object->AddMemberIntf2(u"x", jdtArray)->GetAsArrayIntf()->AddValueIntf2(jdtNumber, u"1e5");
  EXPECT_EQ(object->GetAsJSON(), u"{\"x\": [1e5]}");
  // the common package reaches the JSON unit only through its hooks
  IPtr<IVnJSONDocument> asDoc = GetCreateJSONDoc()(u"{\"a\":[1]}").As<IVnJSONDocument>();
  ASSERT_TRUE(asDoc);
  EXPECT_EQ(asDoc->GetAsJSON(), u"{\"a\": [1]}");
}

TEST(JsonModel, DeepTreesSaveAndFreeWithoutRecursion) {
  // built by hand through the operations, 300,000 levels: a recursive walk would overflow the stack
  TVnJSONDocument doc;  // freed at the end
  TVnJSONBase* node = doc.CreateRootValue(jdtArray);
  for (int i = 0; i < 100000; ++i) node = node->AddValue(jdtObject)->AddMember(u"k", jdtArray)->GetValueObj();
  EXPECT_EQ(doc.GetAsJSON().size(), 100000 * 9 + 2);
}

}  // namespace
}  // namespace vn
