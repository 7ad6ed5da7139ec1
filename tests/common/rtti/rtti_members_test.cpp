// Reflection over the shop domain through the contract's operations only.
#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "shop_domain.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/variant.h"

namespace {

using namespace vn;
using namespace shop;

TRttiType* TypeOfName(std::u16string_view AName) {
  TRttiType* t = TRttiContext::FindType(AName);
  EXPECT_NE(t, nullptr) << UnicodeToUtf8(AName);
  return t;
}

std::vector<UnicodeString> Names(const auto& AMembers) {
  std::vector<UnicodeString> names;
  for (const auto* m : AMembers) names.push_back(m->Name());
  return names;
}

std::vector<UnicodeString> Hints(const TRttiObject* AObject) {
  std::vector<UnicodeString> hints;
  for (auto* attribute : AObject->GetAttributes()) {
    auto* hint = CastObject<THint>(attribute);
    hints.push_back(hint ? hint->FValue : u"(other)");
  }
  return hints;
}
using V = std::vector<UnicodeString>;

// A shop and its type, which most member tests read and write.
class RttiMembers : public testing::Test {
 protected:
  TShop shop;
  TRttiType* type = TRttiContext::GetType(TShop::StaticClass());
  TRttiType* itemType = TRttiContext::GetType(TItem::StaticClass());
};
using RttiMethods = RttiMembers;

TEST(RttiTypes, LookupByNameAndClass) {
  TRttiType* item = TypeOfName(u"uShop.TItem");
  EXPECT_EQ(TypeOfName(u"tshop"), TypeOfName(u"USHOP.TSHOP"));  // short and qualified, any case
  EXPECT_EQ((std::tuple{item->QualifiedName(), TRttiContext::GetType(TItem::StaticClass()),
                        TRttiContext::FindType(u"uShop.TNoSuchType")}),
            std::tuple(u"uShop.TItem", item, nullptr));
  EXPECT_EQ((std::tuple{item->BaseType(), item->BaseType()->BaseType(), item->BaseType()->BaseType()->BaseType()}),
            std::tuple(TypeOfName(u"uShop.TNamed"), TypeOfName(u"System.TObject"), nullptr));

  // A class that was never registered still has a type, with its ancestors' members.
  TRttiType* special = TRttiContext::GetType(TSpecialItem::StaticClass());
  ASSERT_NE(special, nullptr);
  EXPECT_EQ((std::tuple{special->Name(), special->BaseType()}), std::tuple(u"TSpecialItem", item));
  // Naming it from C++ must not hand it its registered ancestor's names.
  EXPECT_EQ(TypeInfoOf<TSpecialItem*>()->Name, u"TSpecialItem");
  EXPECT_EQ(TypeOfName(u"uShop.TItem"), item);
}

TEST(RttiTypes, BuiltinsAreDistinctNamedTypes) {
  const TTypeInfo* string = TypeInfoOf<UnicodeString>();
  EXPECT_EQ((std::tuple{string->Name, string->QualifiedName, FindTypeInfo(u"UnicodeString")}),
            std::tuple(u"string", u"System.string", string));
  EXPECT_EQ((std::tuple{TypeInfoOf<VnXMLString>()->Name, TypeInfoOf<VnJSONString>()->Name}),
            std::tuple(u"VnXMLString", u"VnJSONString"));
  for (const char16_t* date : {u"TDateTime", u"TDate", u"TTime"}) {
    const TTypeInfo* t = FindTypeInfo(date);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ((std::tuple{t->Kind, t == TypeInfoOf<Double>()}), std::tuple(tkFloat, false)) << UnicodeToUtf8(date);
  }
  const TTypeInfo* boolean = TypeInfoOf<bool>();
  EXPECT_EQ((std::tuple{boolean->Kind, GetEnumName(boolean, 1), GetEnumValue(boolean, u"false")}),
            std::tuple(tkEnumeration, u"True", 0));
}

TEST_F(RttiMembers, OwnFirstThenInheritedNamesMayRepeat) {
  EXPECT_EQ(Names(itemType->GetProperties()), (V{u"Name", u"Price", u"Color", u"Name"}));
  EXPECT_EQ(Names(itemType->GetFields()), V{u"Tag"});
  // The derived Name wins a lookup, whatever the case.
  TRttiProperty* name = itemType->GetProperty(u"NAME");
  ASSERT_NE(name, nullptr);
  EXPECT_EQ((std::tuple{name->Parent(), name->IsWritable(), itemType->GetField(u"tag")->Parent()}),
            std::tuple(itemType, false, TypeOfName(u"uShop.TNamed")));
  // Price is a property, not a field.
  EXPECT_EQ((std::tuple{itemType->GetField(u"Price"), itemType->GetIndexedProperty(u"Items")}),
            std::tuple(nullptr, nullptr));
}

TEST_F(RttiMembers, VisibilityIsOrderedAttributesKeepTheirOrder) {
  EXPECT_EQ(type, TypeOfName(u"uShop.TShop"));
  EXPECT_EQ((std::tuple{type->GetField(u"Secret")->Visibility(), type->GetProperty(u"Internal")->Visibility(),
                        type->GetField(u"Address")->Visibility(), type->GetProperty(u"Colors")->Visibility()}),
            std::tuple(mvPrivate, mvProtected, mvPublic, mvPublished));
  // Attributes in declared order; the last is on an enumeration type.
  EXPECT_EQ((std::tuple{Hints(itemType->GetProperty(u"Name")), Hints(itemType->GetField(u"Tag")),
                        Hints(itemType->GetProperty(u"Price")), Hints(TypeOfName(u"uShop.TShop")),
                        Hints(TypeInfoOf<TColor>()->RttiType)}),
            std::tuple(V{u"first", u"second"}, V{u"tag"}, V{}, V{u"shop"}, V{u"cl"}));
}

TEST_F(RttiMembers, ReadAndWriteObjectMembersAndAnIndexedProperty) {
  shop.SetName(u"Corner");
  EXPECT_EQ(type->GetProperty(u"Name")->GetValue(&shop).AsString(), u"Corner");
  type->GetProperty(u"Name")->SetValue(&shop, TValue::From(UnicodeString(u"Main")));
  EXPECT_EQ(shop.GetName(), u"Main");

  type->GetField(u"Tag")->SetValue(&shop, TValue::From<Integer>(7));
  TRttiProperty* colors = type->GetProperty(u"Colors");
  colors->SetValue(&shop, TValue::From(TColors{clRed, clBlue}));
  EXPECT_EQ((std::tuple{shop.FTag, shop.FColors.Contains(clBlue), colors->GetValue(&shop).ToString()}),
            std::tuple(7, true, u"[clRed,clBlue]"));

  // A date field is a float of its own type.
  TRttiField* opened = type->GetField(u"Opened");
  EXPECT_EQ(opened->FieldTypeInfo(), FindTypeInfo(u"TDateTime"));
  opened->SetValue(&shop, TValue::From<Double>(45000.5));
  EXPECT_EQ((std::tuple{shop.FOpened, VarType(opened->GetValue(&shop).AsVariant())}), std::tuple(45000.5, varDate));

  // A value is a copy: changing it leaves the object alone.
  TValue name = type->GetProperty(u"Name")->GetValue(&shop);
  *static_cast<UnicodeString*>(name.GetReferenceToRawData()) = u"Copy";
  EXPECT_EQ(shop.GetName(), u"Main");

  // Protected and private members read like any other.
  EXPECT_EQ(type->GetProperty(u"Internal")->GetValue(&shop).AsInteger(), 42);
  EXPECT_EQ(type->GetField(u"Secret")->GetValue(&shop).AsInteger(), 42);
  // An indexed property.
  shop.Add(new TItem);
  shop.Add(new TItem);
  TRttiIndexedProperty* items = type->GetIndexedProperty(u"items");
  ASSERT_NE(items, nullptr);
  EXPECT_EQ(items->GetValue(&shop, TValue::From<Integer>(1)).AsObject(), shop.GetItem(1));
  auto* replacement = new TSpecialItem;
  TItem* old = shop.GetItem(0);
  items->SetValue(&shop, TValue::From<Integer>(0), TValue::From(replacement));
  EXPECT_EQ(shop.GetItem(0), replacement);
  delete old;
  EXPECT_THROW(items->GetValue(&shop, TValue::From(UnicodeString(u"x"))), EInvalidCast);
}

TEST_F(RttiMembers, WritesConvertOrRefuse) {
  EXPECT_THROW(type->GetProperty(u"Count")->SetValue(&shop, TValue::From<Integer>(1)), EPropertyError);
  EXPECT_THROW(type->GetField(u"Tag")->SetValue(&shop, TValue::From(UnicodeString(u"7"))), EInvalidCast);
  EXPECT_THROW(type->GetField(u"Tag")->GetValue(static_cast<TObject*>(nullptr)), EInvalidPointer);

  // Objects: the declared class or a descendant, nothing else.
  TRttiField* partner = type->GetField(u"Partner");
  TShop other;
  partner->SetValue(&shop, TValue::From(&other));
  EXPECT_EQ(partner->GetValue(&shop).AsObject(), &other);
  TItem item;
  EXPECT_THROW(partner->SetValue(&shop, TValue::From(&item)), EInvalidCast);
  partner->SetValue(&shop, TValue());  // the empty value clears it
  EXPECT_EQ(shop.FPartner, nullptr);

  // Class references: the class or a descendant.
  TRttiField* itemClass = type->GetField(u"ItemClass");
  EXPECT_EQ(itemClass->FieldTypeInfo()->Name, u"TItemClass");
  itemClass->SetValue(&shop, TValue::From<TClass>(TSpecialItem::StaticClass()));
  EXPECT_EQ(shop.FItemClass.Value, TSpecialItem::StaticClass());
  EXPECT_THROW(itemClass->SetValue(&shop, TValue::From<TClass>(TShop::StaticClass())), EInvalidCast);
}

TEST_F(RttiMembers, RecordsAtAnAddress) {
  TRttiType* address = TypeOfName(u"uShop.TAddress");
  TAddress a{u"High Street", 5};
  EXPECT_EQ(address->GetField(u"street")->GetValue(&a).AsString(), u"High Street");
  address->GetField(u"Number")->SetValue(&a, TValue::From<Integer>(9));
  EXPECT_EQ(a.Number, 9);

  // A record member of an object: its address inside the object takes writes.
  TRttiField* field = type->GetField(u"Address");
  address->GetField(u"Street")->SetValue(field->GetAddress(&shop), TValue::From(UnicodeString(u"Quay")));
  // A read gives a copy, written back as a whole.
  TValue copy = field->GetValue(&shop);
  address->GetField(u"Number")->SetValue(copy.GetReferenceToRawData(), TValue::From<Integer>(3));
  EXPECT_EQ((std::tuple{shop.FAddress.Street, shop.FAddress.Number}), std::tuple(u"Quay", 0));
  field->SetValue(&shop, copy);
  EXPECT_EQ(shop.FAddress.Number, 3);
}

TEST_F(RttiMembers, ArraysOfRecordsGrowAndTakeElementsElementsMetaclassesHandles) {
  TRttiField* lines = type->GetField(u"Lines");
  TRttiType* linesType = lines->FieldType();
  EXPECT_EQ((std::tuple{linesType->TypeKind(), linesType->Name(), linesType->GetElementType()}),
            std::tuple(tkDynArray, u"TArray<uShop.TLine>", TypeOfName(u"uShop.TLine")));

  void* array = lines->GetAddress(&shop);
  DynArraySetLength(array, lines->FieldTypeInfo(), 2);
  EXPECT_EQ(DynArraySize(array, lines->FieldTypeInfo()), 2);
  TValue value = lines->GetValue(&shop);
  TValue line = value.GetArrayElement(1);
  TRttiField* sku = TypeOfName(u"uShop.TLine")->GetField(u"Sku");
  sku->SetValue(line.GetReferenceToRawData(), TValue::From(UnicodeString(u"A-1")));
  value.SetArrayElement(1, line);
  lines->SetValue(&shop, value);
  EXPECT_EQ(shop.FLines[1].Sku, u"A-1");
  EXPECT_THROW(value.GetArrayElement(2), EArgumentOutOfRangeException);
  EXPECT_THROW(value.SetArrayElement(0, TValue::From<Integer>(1)), EInvalidCast);

  TRttiType* ratings = type->GetField(u"Ratings")->FieldType();
  TValue r = type->GetField(u"Ratings")->GetValue(&shop);
  EXPECT_EQ((std::tuple{ratings->TypeKind(), ratings->Name(), r.GetArrayLength()}),
            std::tuple(tkArray, u"array[0..2] of Integer", 3));
  EXPECT_THROW(r.SetArrayLength(4), EInvalidCast);  // a static array keeps its size
  // Element types, metaclasses and handles of other types.
  TRttiType* colors = TRttiContext::GetType(TypeInfoOf<TColors>());
  EXPECT_EQ((std::tuple{colors->TypeKind(), colors->QualifiedName(), colors->GetElementType()->GetHandle()}),
            std::tuple(tkSet, u"uShop.TColors", TypeInfoOf<TColor>()));
  TRttiType* itemClass = TRttiContext::GetType(TypeInfoOf<TClassRef<TItem>>());
  EXPECT_EQ((std::tuple{itemClass->TypeKind(), itemClass->GetMetaclassType(), itemType->GetElementType()}),
            std::tuple(tkClassRef, TItem::StaticClass(), nullptr));
}

TEST_F(RttiMethods, ParametersAndInvoke) {
  TRttiMethod* add = type->GetMethod(u"add");
  ASSERT_EQ(add->GetParameters().size(), 1u);
  EXPECT_EQ((std::tuple{add->GetParameters()[0]->Name(), add->GetParameters()[0]->ParamType(), add->ReturnType()}),
            std::tuple(u"AItem", itemType, TRttiContext::GetType(TypeInfoOf<Integer>())));
  auto* item = new TItem;
  item->FPrice = 2.5;
  EXPECT_EQ((std::tuple{add->Invoke(&shop, {TValue::From(item)}).AsInteger(), shop.GetCount()}), std::tuple(0, 1));
  EXPECT_THROW(add->Invoke(&shop, {}), EInvocationError);
  EXPECT_THROW(add->Invoke(&shop, {TValue::From<Integer>(1)}), EInvalidCast);

  // Arguments convert to the parameter types: an Integer reaches a Double.
  EXPECT_EQ(type->GetMethod(u"Total")->Invoke(&shop, {TValue::From<Integer>(2)}).AsExtended(), 5.0);
  TRttiMethod* motto = type->GetMethod(u"Motto");
  EXPECT_TRUE(motto->IsStatic());
  EXPECT_EQ(motto->Invoke(TShop::StaticClass(), {}).AsString(), u"cheap");
}

TEST_F(RttiMethods, Constructors) {
  TRttiMethod* create = type->GetMethod(u"Create");
  ASSERT_TRUE(create->IsConstructor());
  ASSERT_EQ(create->GetParameters().size(), 1u);
  std::unique_ptr<TObject> made(create->Invoke(TShop::StaticClass(), {TValue::From(UnicodeString(u"New"))}).AsObject());
  ASSERT_TRUE(made->Is<TShop>());
  EXPECT_EQ(static_cast<TShop*>(made.get())->GetName(), u"New");

  // Without a constructor of its own a class finds TObject's, which builds the class asked for.
  TRttiMethod* inherited = itemType->GetMethod(u"Create");
  ASSERT_NE(inherited, nullptr);
  std::unique_ptr<TObject> item(inherited->Invoke(TSpecialItem::StaticClass(), {}).AsObject());
  EXPECT_EQ((std::tuple{inherited->GetParameters().empty(), item->ClassType()}),
            std::tuple(true, TSpecialItem::StaticClass()));
  EXPECT_THROW(type->GetMethod(u"Add")->Invoke(TShop::StaticClass(), {}), EInvocationError);
}

TEST(RttiClasses, NamesInheritanceRegistrationPlatformAndSelfReferencingClasses) {
  TSpecialItem special;
  EXPECT_EQ((std::tuple{special.ClassName(), special.InheritsFrom(TNamed::StaticClass()),
                        special.InheritsFrom(TShop::StaticClass()), TItem().ClassInfo()}),
            std::tuple(u"TSpecialItem", true, false, TypeInfoOf<TItem>()));

  EXPECT_EQ(GetClass(u"TItem"), nullptr);  // reflection does not register for GetClass
  RegisterClass(TItem::StaticClass());
  EXPECT_EQ(GetClass(u"titem"), TItem::StaticClass());
  UnRegisterClass(TItem::StaticClass());
  EXPECT_EQ(GetClass(u"TItem"), nullptr);
  TRttiType* component = TypeOfName(u"System.Classes.TComponent");

  TComponent owner;
  TRttiMethod* create = component->GetMethod(u"Create");
  ASSERT_EQ(create->GetParameters().size(), 1u);
  auto* child = CastObject<TComponent>(create->Invoke(TComponent::StaticClass(), {TValue::From(&owner)}).AsObject());
  ASSERT_NE(child, nullptr);
  component->GetProperty(u"Tag")->SetValue(child, TValue::From<Integer>(5));
  EXPECT_EQ((std::tuple{child->GetOwner(), child->GetTag()}), std::tuple(&owner, 5));  // the owner frees it

  // A class with members of its own type.
  TRttiType* node = TypeOfName(u"uTree.TNode");
  EXPECT_EQ(node->GetField(u"Next")->FieldType(), node);
  EXPECT_EQ(node->GetField(u"Children")->FieldType()->GetElementType(), node);
}

}  // namespace
