// The type registry: kinds, lookups by every name kind, schema names, Variant type codes and
// the serializer pairs.
#include <gtest/gtest.h>

#include <array>
#include <tuple>

#include "types_domain.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_types.h"

namespace {

using namespace vn;
using namespace typesdomain;

const TVnTypeInfo* Info(const TTypeInfo* AType) {
  const TVnTypeInfo* info = TVnTypes::GetTypeInfo(AType);
  EXPECT_NE(info, nullptr);
  return info;
}

const TTypeInfo* Named(std::u16string_view AName) {
  const TTypeInfo* t = FindTypeInfo(AName);
  EXPECT_NE(t, nullptr) << UnicodeToUtf8(AName);
  return t;
}

/// Every type the tests below sort, with what the registry must say of it: kind, main kind, simple.
using KindCase = std::tuple<const TTypeInfo*, TVnTypeKind, TVnMainTypeKind, bool>;

std::vector<KindCase> KindCases() {
  const TVnMainTypeKind I = mtkInteger, F = mtkFloat, S = mtkString, U = mtkUnknown;
  return {{TypeInfoOf<Byte>(), vtkByte, I, true},           {TypeInfoOf<Word>(), vtkWord, I, true},
          {TypeInfoOf<Cardinal>(), vtkLongWord, I, true},   {TypeInfoOf<UInt64>(), vtkUInt64, I, true},
          {TypeInfoOf<ShortInt>(), vtkShortInt, I, true},   {TypeInfoOf<SmallInt>(), vtkSmallInt, I, true},
          {TypeInfoOf<Integer>(), vtkInteger, I, true},     {TypeInfoOf<Int64>(), vtkInt64, I, true},
          {TypeInfoOf<Single>(), vtkSingle, F, true},       {TypeInfoOf<Double>(), vtkDouble, F, true},
          {TypeInfoOf<Extended>(), vtkExtended, F, true},   {TypeInfoOf<Currency>(), vtkExtended, F, true},
          {TypeInfoOf<char16_t>(), vtkText1, S, true},      {TypeInfoOf<char>(), vtkText2, S, true},
          {TypeInfoOf<ShortString>(), vtkText4, S, true},   {TypeInfoOf<AnsiString>(), vtkText5, S, true},
          {TypeInfoOf<UnicodeString>(), vtkText6, S, true}, {Named(u"WideString"), vtkText6, S, true},
          {TypeInfoOf<bool>(), vtkBoolean, mtkBoolean, true}, {TypeInfoOf<TFruit>(), vtkEnumeration, U, true},
          {TypeInfoOf<TFruits>(), vtkSet, U, true},         {Named(u"TDate"), vtkDate, mtkDateTime, true},
          {Named(u"TTime"), vtkTime, mtkDateTime, true},    {Named(u"TDateTime"), vtkDateTime, mtkDateTime, true},
          {TypeInfoOf<Variant>(), vtkVariant, U, true},
          {TypeInfoOf<std::array<Integer, 2>>(), vtkStaticArray, mtkArray, false},
          {TypeInfoOf<std::vector<UnicodeString>>(), vtkDynArray, mtkArray, false},
          {TypeInfoOf<TPoint>(), vtkRecord, U, false},      {TypeInfoOf<TValue>(), vtkRecord, U, false},
          {TypeInfoOf<TBase>(), vtkClass, U, false},        {TypeInfoOf<IInterface>(), vtkInterface, U, false},
          {TypeInfoOf<void*>(), vtkPointer, U, true},       {TypeInfoOf<TClass>(), vtkClassRef, U, true}};
}

TEST(VnTypes, KindsOfEveryValueKindAndOneRecordPerType) {
  for (const auto& [type, kind, main, simple] : KindCases()) {
    const TVnTypeInfo* info = Info(type);
    EXPECT_EQ((std::tuple{info->Kind(), info->GetMainTypeKind(), info->GetIsSimpleType(), info->Handle(),
                          TVnTypes::GetTypeInfo(type->RttiType)}),
              std::tuple(kind, main, simple, type, info))
        << UnicodeToUtf8(type->Name);
  }
  // A class nobody registered gets its record too, found by its class.
  EXPECT_EQ(TVnTypes::GetTypeInfo(TLeaf::StaticClass())->Name(), u"TLeaf");
}

TEST(VnTypes, EverySchemaNameFindsItsTypeAgainGenericOnesBeforeTheirRecordWasAskedFor) {
  // The record of TBox<uTypesTest.TBase> is made here, by the schema lookup itself.
  const TVnTypeInfo* box = TVnTypes::GetTypeInfo(u"xsd:TBoxOfTBase", tntSchemaName, false, mtkUnknown);
  ASSERT_NE(box, nullptr);
  EXPECT_EQ((std::tuple{box->Handle(), box->Name()}), std::tuple(TypeInfoOf<TBaseBox>(), u"TBox<uTypesTest.TBase>"));

  std::vector<const TTypeInfo*> types;
  for (const KindCase& c : KindCases()) types.push_back(std::get<0>(c));
  // The vector of Integer stands beside the static array of Integer.
  types.insert(types.end(), {TypeInfoOf<TBaseBox>(), TypeInfoOf<std::vector<TPoint>>(),
                             TypeInfoOf<std::vector<Integer>>(), ClassTypeInfo(TStringList::StaticClass())});
  for (const TTypeInfo* t : types) {
    const TVnTypeInfo* info = Info(t);
    const UnicodeString name = info->SchemaName(u"xsd");
    SCOPED_TRACE(UnicodeToUtf8(name));
    EXPECT_EQ(TVnTypes::GetTypeInfo(name, tntSchemaName, false, mtkUnknown), info);
    // Schema names are XML names: they go into attribute values and element names unescaped.
    for (char16_t c : info->SchemaName()) EXPECT_EQ(UnicodeString(u"<>,[] ").find(c), UnicodeString::npos);
  }
}

TEST(VnTypes, LookupsByNameKind) {
  const TVnTypeInfo* integer = Info(TypeInfoOf<Integer>());
  EXPECT_EQ(TVnTypes::GetTypeInfo(u"Integer", tntName, false, mtkUnknown), integer);
  EXPECT_EQ(TVnTypes::GetTypeInfo(u"INT", tntSchemaName, false, mtkUnknown), integer);
  // As in XML Schema, "byte" is signed: the schema name and the short name "Byte" differ.
  EXPECT_EQ(TVnTypes::GetTypeInfo(u"xsd:byte", tntSchemaName, false, mtkUnknown), Info(TypeInfoOf<ShortInt>()));
  EXPECT_EQ(TVnTypes::GetTypeInfo(u"Byte", tntName, false, mtkUnknown), Info(TypeInfoOf<Byte>()));
  // The main kind filters.
  EXPECT_EQ(TVnTypes::GetTypeInfo(u"string", tntName, true, mtkString), Info(TypeInfoOf<UnicodeString>()));
  EXPECT_EQ(TVnTypes::GetTypeInfo(u"Integer", tntName, true, mtkString), nullptr);
  for (TVnTypeNameType kind : {tntName, tntQualifiedName, tntSchemaName})
    EXPECT_EQ((std::tuple{TVnTypes::GetTypeInfo(u"TNoSuchType", kind, true, mtkUnknown),
                          TVnTypes::GetTypeInfo(u"", kind, true, mtkUnknown)}),
              std::tuple(nullptr, nullptr));
  EXPECT_EQ(TVnTypes::GetTypeInfo(u"xsd:", tntSchemaName, true, mtkUnknown), nullptr);
}

TEST(VnTypes, ArrayOfNamesMakeArraysThatNoPlatformTypeBacks) {
  auto arrayOf = [](std::u16string_view AName) { return TVnTypes::GetTypeInfo(AName, tntSchemaName, true, mtkArray); };
  const TVnTypeInfo* points = arrayOf(u"xsd:ArrayOfTPoint");
  ASSERT_NE(points, nullptr);
  EXPECT_EQ((std::tuple{points->Kind(), points->ElementType(), arrayOf(u"ArrayOfTPoint"),
                        arrayOf(u"ArrayOfNothingKnown"), arrayOf(u"ArrayOf")}),
            std::tuple(vtkDynArray, Info(TypeInfoOf<TPoint>()), points, nullptr, nullptr));

  // VirtualType: an array of the type, or the built-in type of a schema type.
  const TVnTypeInfo* base = Info(TypeInfoOf<TBase>());
  const TVnTypeInfo* bases = TVnTypes::GetTypeInfo(base->VirtualType(sdtArray));
  ASSERT_NE(bases, nullptr);
  EXPECT_EQ((std::tuple{bases->ElementType(), base->VirtualType(sdtInt), base->VirtualType(sdtDuration),
                        TVnTypes::GetTypeInfo(bases->SchemaName(), tntSchemaName, false, mtkUnknown)}),
            std::tuple(base, TypeInfoOf<Integer>(), nullptr, bases));
  // A value of such a type is safe to make and to grow: it stores Variants.
  TValue v = TValue::Make(nullptr, bases->Handle());
  v.SetArrayLength(2);
  v.SetArrayElement(1, TValue::From<Integer>(5));
  EXPECT_EQ(v.GetArrayElement(1).AsInteger(), 5);
}

TEST(VnTypes, AliasesAreFoundUnderEveryNameKind) {
  const TVnTypeInfo* stringList = Info(ClassTypeInfo(TStringList::StaticClass()));
  EXPECT_EQ(TVnTypes::GetTypeInfo(u"xsd:StringList", tntSchemaName, false, mtkUnknown), stringList);

  TVnTypes::RegisterTypeAlias(TypeInfoOf<TPoint>(), {u"PointPair", u"Pair2"});
  const TVnTypeInfo* point = Info(TypeInfoOf<TPoint>());
  EXPECT_EQ(point->SchemaName(), u"PointPair");
  for (TVnTypeNameType kind : {tntName, tntQualifiedName, tntSchemaName})
    EXPECT_EQ(TVnTypes::GetTypeInfo(u"pair2", kind, false, mtkUnknown), point);
  // A built-in schema type keeps its schema name.
  TVnTypes::RegisterTypeAlias(TypeInfoOf<Integer>(), {u"Int32"});
  EXPECT_EQ(Info(TypeInfoOf<Integer>())->SchemaName(), u"int");
}

TEST(VnTypes, VariantTypeCodesOfTypeNamesAndTypesOfVariants) {
  // The scalar codes go through elements in the DOM tests; these are the codes that no Variant holds.
  const std::pair<const char16_t*, TVarType> cases[] = {
      {u"xsd:TBase", varObject},  {u"xsd:TPoint", varRecord},    {u"xsd:ArrayOfTPoint", varArray},
      {u"xsd:TFruit", varUnknown}, {u"xsd:nothing", varUnknown}, {u"xsd:WideString", varOleStr}};
  TVnTypes::GetTypeInfo(u"ArrayOfTPoint", tntSchemaName, true, mtkArray);
  for (const auto& [name, varType] : cases)
    EXPECT_EQ(TVnTypes::GetVarType(name, tntSchemaName, varUnknown), varType) << UnicodeToUtf8(name);
  EXPECT_EQ(TVnTypes::GetVarType(u"System.Integer", tntQualifiedName, varEmpty), varInteger);
  EXPECT_EQ(TVnTypes::GetVarType(Info(TypeInfoOf<std::vector<Integer>>()), varEmpty), varArray | varInteger);

  // Every scalar kind goes through an element in the DOM tests; arrays need the element's code.
  for (const Variant& v : {VarArrayOf({Variant(1)}), VarArrayFromBytes(TBytes{1}), Variant(7LL)}) {
    const TVnTypeInfo* type = TVnTypes::VarTypeInfo(v);
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(TVnTypes::GetVarType(type->SchemaName(u"xsd"), tntSchemaName, varUnknown), v.VarType());
  }
  EXPECT_EQ(TVnTypes::VarTypeInfo(Variant::Null()), Info(TypeInfoOf<Variant>()));
}

// A class stands in for a serializer: the registry only stores class references.
class TPairMarker : public TObject {
  VN_DECLARE_CLASS(TPairMarker, TObject)
};
class TOtherMarker : public TObject {
  VN_DECLARE_CLASS(TOtherMarker, TObject)
};

TEST(VnTypes, SerializerPairsOfTypeAncestorOrDefault) {
  // Formats 2 to 4 belong to no notation: these registrations disturb nothing else.
  constexpr TVnSerializeFormat kFormat = 4;
  const TClass pair = TPairMarker::StaticClass(), other = TOtherMarker::StaticClass();
  auto serializerOf = [&](const TVnTypeInfo* AType) {
    const TVnSerializerPair* found = TVnTypes::FindSerializers(AType, kFormat);
    return found ? found->Serializer : nullptr;
  };
  const TVnTypeInfo* base = Info(TypeInfoOf<TBase>());
  const TVnTypeInfo* leaf = TVnTypes::GetTypeInfo(TLeaf::StaticClass());

  EXPECT_EQ(TVnTypes::FindSerializers(base, kFormat), nullptr);
  TVnTypes::RegisterTypeSerializers(TypeInfoOf<TBase>(), kFormat, {pair, nullptr});
  // Descendants take the nearest registered ancestor's pair.
  EXPECT_EQ((std::tuple{serializerOf(base), serializerOf(leaf)}), std::tuple(pair, pair));
  TVnTypes::RegisterTypeSerializers(TypeInfoOf<TDerived>(), kFormat, {other, nullptr});
  EXPECT_EQ((std::tuple{serializerOf(leaf), serializerOf(base)}), std::tuple(other, pair));
  // Other types and a nil type get the default, once there is one; other formats see nothing.
  EXPECT_EQ(TVnTypes::FindSerializers(Info(TypeInfoOf<TPoint>()), kFormat), nullptr);
  TVnTypes::RegisterTypeSerializers(nullptr, kFormat, {nullptr, other});
  EXPECT_EQ(TVnTypes::FindSerializers(Info(TypeInfoOf<TPoint>()), kFormat)->Deserializer, other);
  EXPECT_EQ(TVnTypes::FindSerializers(nullptr, kFormat)->Deserializer, other);
  // The type's own pair wins even where it lacks the deserializer the default has.
  EXPECT_EQ((std::tuple{TVnTypes::FindSerializers(base, kFormat)->Deserializer, TVnTypes::FindSerializers(base, 2),
                        TVnTypes::FindSerializers(base, 200)}),
            std::tuple(nullptr, nullptr, nullptr));
  EXPECT_THROW(TVnTypes::RegisterTypeSerializers(nullptr, 5, {}), EAssertionFailed);
}

}  // namespace
