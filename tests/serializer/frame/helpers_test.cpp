// The helper registry: nearest class first whatever the order of registration, generic
// patterns, and registrations that are refused without leaving a trace.
#include <gtest/gtest.h>

#include <tuple>

#include "frame_domain.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/utf.h"

namespace {

using namespace vn;
using namespace framedomain;

TClass ClassOf(const auto& AHelper) { return AHelper ? AHelper->ClassType() : nullptr; }
TClass WriterOf(TClass AClass) { return ClassOf(VnCreateSerializerHelper(AClass)); }
TClass ReaderOf(TClass AClass) { return ClassOf(VnCreateDeserializerHelper(AClass)); }

TEST(SerializerHelpers, GenericPatterns) {
  const std::tuple<const char16_t*, const char16_t*> cases[] = {
      {u"TObjectList<uShop.TItem>", u"TObjectList<T>"},
      {u"TObjectDictionary<string,uShop.TItem>", u"TObjectDictionary<T,T>"},
      {u"TDictionary<string,TList<uShop.TItem>>", u"TDictionary<T,T>"},
      {u"TItem", u"TItem"}};
  for (const auto& [name, pattern] : cases) EXPECT_EQ(VnGenericPattern(name), pattern);
}

TEST(SerializerHelpers, NearestClassAndPatternsDecide) {
  // The descendant first, then its ancestor: the nearer class still wins.
  VnRegisterSerializerHelper(TDog::StaticClass(), TDogWriter::StaticClass(), nullptr);
  VnRegisterSerializerHelper(TAnimal::StaticClass(), TAnimalWriter::StaticClass(), TAnimalReader::StaticClass());
  // The ancestor first, then the descendant.
  VnRegisterSerializerHelper(TList::StaticClass(), TAnimalWriter::StaticClass(), nullptr);
  VnRegisterSerializerHelper(TObjectList::StaticClass(), TDogWriter::StaticClass(), nullptr);
  VnRegisterSerializerHelper(u"TCage<T>", TCageWriter::StaticClass(), TCageReader::StaticClass());

  const std::tuple<TClass, TClass, TClass> cases[] = {
      {TPuppy::StaticClass(), TDogWriter::StaticClass(), nullptr},  // TDog's node decides, with no reader
      {TAnimal::StaticClass(), TAnimalWriter::StaticClass(), TAnimalReader::StaticClass()},
      {TObjectList::StaticClass(), TDogWriter::StaticClass(), nullptr},
      {TList::StaticClass(), TAnimalWriter::StaticClass(), nullptr},
      {TDogCage::StaticClass(), TCageWriter::StaticClass(), TCageReader::StaticClass()},
      {TStone::StaticClass(), nullptr, nullptr},
      {nullptr, nullptr, nullptr}};
  for (const auto& [type, writer, reader] : cases)
    EXPECT_EQ(std::tuple(WriterOf(type), ReaderOf(type)), std::tuple(writer, reader))
        << (type ? UnicodeToUtf8(ClassNameOf(type)) : "nil");

  // The same class and writer again completes the pair; a different reader then is a fault.
  VnRegisterSerializerHelper(TDog::StaticClass(), TDogWriter::StaticClass(), TAnimalReader::StaticClass());
  EXPECT_EQ(ReaderOf(TPuppy::StaticClass()), TAnimalReader::StaticClass());
  EXPECT_EQ(MessageOf([] {
              VnRegisterSerializerHelper(TDog::StaticClass(), TDogWriter::StaticClass(), TCageReader::StaticClass());
            }), cVnInvalidHelperCombination);
  EXPECT_EQ(ReaderOf(TPuppy::StaticClass()), TAnimalReader::StaticClass());
  // Helpers of the wrong base are refused before anything is stored.
  EXPECT_THROW(VnRegisterSerializerHelper(TPuppy::StaticClass(), TAnimalReader::StaticClass(), nullptr),
               EAssertionFailed);
  EXPECT_THROW(VnRegisterSerializerHelper(u"TCage<T>", nullptr, TDogWriter::StaticClass()), EAssertionFailed);
  EXPECT_EQ(std::tuple(WriterOf(TPuppy::StaticClass()), ReaderOf(TDogCage::StaticClass())),
            std::tuple(TDogWriter::StaticClass(), TCageReader::StaticClass()));
}

}  // namespace
