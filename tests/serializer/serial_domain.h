// A domain of host types for the walker and XML tests: one class with a member of every shape
// the serializers tell apart, a record, a small class tree, and comparisons.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <utility>
#include <vector>

#include "vnxml/common/currency.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/string_list.h"
#include "vnxml/serializer.h"
#include "domain_support.h"

namespace serialdomain {

using namespace vn;

enum TKind : uint8_t { kNone, kBoss, kStaff };
VN_REGISTER_TYPE(TKind, u"uSerial") { b.Values({u"kNone", u"kBoss", u"kStaff"}); }
enum TColor : uint8_t { clRed, clGreen, clBlue };
VN_REGISTER_TYPE(TColor, u"uSerial") {
  b.Values({u"clRed", u"clGreen", u"clBlue"}).TypeAttr<SerializerHint>(shoEnumPrefix, u"cl");
}
using TColors = TSet<TColor>;
VN_REGISTER_TYPE(TColors, u"uSerial") {}

struct TPoint {
  Integer X = 0;
  Integer Y = 0;
  UnicodeString Label;
  bool operator==(const TPoint&) const = default;
};
VN_REGISTER_TYPE(TPoint, u"uSerial") { b VN_TEST_PUBLIC(TPoint, X, Y, Label); }

class TAddress : public TObject {
  VN_DECLARE_CLASS(TAddress, TObject)
 public:
  explicit TAddress(UnicodeString ACity = {}, Integer AZip = 0) : City(std::move(ACity)), Zip(AZip) {}
  UnicodeString City;
  Integer Zip;
};
VN_REGISTER_TYPE(TAddress, u"uSerial") { b VN_TEST_PUBLIC(TAddress, City, Zip); }

class TPostBox : public TAddress {
  VN_DECLARE_CLASS(TPostBox, TAddress)
 public:
  explicit TPostBox(UnicodeString ACity = {}, Integer ABox = 0) : TAddress(std::move(ACity)), Box(ABox) {}
  Integer Box;
};
VN_REGISTER_TYPE(TPostBox, u"uSerial") { b.Public(u"Box", &TPostBox::Box); }

/// Registered, but no address: a text naming it for an address member must fail.
class TStranger : public TObject { VN_DECLARE_CLASS(TStranger, TObject) };
VN_REGISTER_TYPE(TStranger, u"uSerial") {}

/// A chain of any length; freed without recursion.
class TChain : public TObject {
  VN_DECLARE_CLASS(TChain, TObject)
 public:
  TChain() = default;
  TChain(const TChain&) = delete;
  TChain& operator=(const TChain&) = delete;
  ~TChain() override { test::DeleteChain(Next, &TChain::Next); }
  TChain* Next = nullptr;
  Integer Value = 0;
};
VN_REGISTER_TYPE(TChain, u"uSerial") { b.Public(u"Next", &TChain::Next).Public(u"Value", &TChain::Value); }

/// A member of every shape. Owns its object members.
class TAll : public TObject {
  VN_DECLARE_CLASS(TAll, TObject)
 public:
  TAll() : Notes(new TStringList()) {}
  ~TAll() override { test::DeleteAll(Home, Other, Missing, Places, Notes); }
  TAll(const TAll&) = delete;
  TAll& operator=(const TAll&) = delete;

  // clang-format off
  Integer I32 = 0; Cardinal U32 = 0; ShortInt I8 = 0; SmallInt I16 = 0; Byte U8 = 0; Word U16 = 0; Int64 I64 = 0;
  UInt64 U64 = 0; Single F32 = 0; Double F64 = 0; Extended F80 = 0; Currency Money; bool Flag = false;
  char16_t Letter = u'a'; UnicodeString Text; AnsiString Ansi; VnXMLString Markup; TKind Kind = kNone;
  TColor Color = clRed; TColors Colors; TDateTime When = 0; TDateTime Day = 0; TDateTime Clock = 0; Variant Any;
  TValue Boxed; TPoint Point; TAddress* Home = nullptr; TAddress* Other = nullptr; TAddress* Missing = nullptr;
  std::vector<Integer> Numbers; std::vector<UnicodeString> Words; std::array<Integer, 3> Triple{};
  std::vector<TPoint> Points; std::vector<TAddress*> Places; std::vector<std::vector<Integer>> Grid;
  TStringList* Notes; UnicodeString Hidden;
  // clang-format on

  const UnicodeString& GetTitle() const { return FTitle; }
  void SetTitle(const UnicodeString& AValue) { FTitle = AValue; }

 private:
  UnicodeString FTitle;
};
VN_REGISTER_TYPE(TAll, u"uSerial") {
  b.Published(u"Title", &TAll::GetTitle, &TAll::SetTitle)
      VN_TEST_PUBLIC(TAll, I32, U32, I8, I16, U8, U16, I64, U64, F32, F64, F80, Money, Flag, Letter, Text, Ansi, Markup,
                     Kind, Color, Colors, When).OfType(u"TDateTime").Public(u"Day", &TAll::Day).OfType(u"TDate")
      .Public(u"Clock", &TAll::Clock).OfType(u"TTime")
      VN_TEST_PUBLIC(TAll, Any, Boxed, Point, Home, Other, Missing, Numbers, Words, Triple, Points, Places, Grid, Notes)
      .Public(u"Hidden", &TAll::Hidden).Attr<SerializerHint>(shoDoNotSerialize);
}

/// Fills every member; AVariant picks plain values (0), edge values (1) or texts that need
/// escaping and extremes (2).
inline void Fill(TAll& A, int AVariant) {
  const bool edge = AVariant >= 1;
  A.SetTitle(AVariant == 2 ? u"<a & \"b\" 'c'>" : u"Report");
  A.I32 = edge ? INT32_MIN : 42;
  A.U32 = edge ? UINT32_MAX : 7;
  A.I8 = edge ? -128 : 5;
  A.I16 = edge ? -32768 : 300;
  A.U8 = edge ? 255 : 1;
  A.U16 = edge ? 65535 : 2;
  A.I64 = edge ? INT64_MIN : 1234567890123LL;
  A.U64 = edge ? UINT64_MAX : 99;
  A.F32 = edge ? 3.4e38f : 0.1f;
  A.F64 = edge ? -1e-300 : 2.5;
  A.F80 = edge ? 1.5e4000L : 3.25L;
  A.Money = Currency::FromRaw(edge ? -123456789 : 10000);
  A.Flag = !edge;
  A.Letter = edge ? u'\u00e9' : u'x';
  A.Text = AVariant == 2 ? u"x < y && z > \"q\" 'r' \u00e9\u4e2d" : u"plain";
  A.Ansi = AVariant == 2 ? "a&b" : "ansi";
  A.Markup = VnXMLString(AVariant == 2 ? u"<b>bold &amp; <i>it</i></b>" : u"<p>x</p>");
  A.Kind = edge ? kStaff : kBoss;
  A.Color = edge ? clBlue : clGreen;
  A.Colors = edge ? TColors{clRed, clBlue} : TColors{clGreen};
  A.When = 45000.5;
  A.Day = 45001;
  A.Clock = 0.75;
  A.Any = edge ? Variant(UnicodeString(u"text")) : Variant(Integer(17));
  A.Boxed = TValue::From<Integer>(edge ? -5 : 8);
  A.Point = TPoint{edge ? -1 : 3, 4, AVariant == 2 ? u"<&>" : u"p"};
  A.Home = new TAddress(AVariant == 2 ? u"S\u00e3o & Paulo" : u"Rome", 100);
  A.Other = new TPostBox(u"Oslo", 12);
  A.Numbers = edge ? std::vector<Integer>{} : std::vector<Integer>{1, 2, 3};
  A.Words = {u"alpha", AVariant == 2 ? u"<b>" : u"beta", u""};
  A.Triple = {7, 8, 9};
  A.Points = {TPoint{1, 2, u"a"}, TPoint{3, 4, u"b"}};
  for (int i = 0; i < (edge ? 1 : 2); ++i) A.Places.push_back(new TAddress(i ? u"P1" : u"P0"));
  A.Grid = {{1, 2}, {}, {3}};
  A.Notes->Add(u"first");
  A.Notes->Add(AVariant == 2 ? u"a&b<c>" : u"second");
}

inline void ExpectSameAddress(const TAddress* A, const TAddress* B) {
  ASSERT_EQ(A == nullptr, B == nullptr);
  if (!A) return;
  EXPECT_EQ(std::tuple(A->ClassType(), A->City, A->Zip), std::tuple(B->ClassType(), B->City, B->Zip));
  if (auto* box = CastObject<TPostBox>(const_cast<TAddress*>(A))) {
    EXPECT_EQ(box->Box, static_cast<const TPostBox*>(B)->Box);
  }
}

/// Each listed member of A equals B's; a failure tells the member's place in the list.
template <class T, class... M>
void ExpectSameMembers(const T& A, const T& B, M T::*... AMembers) {
  int place = 0;
  const auto same = [&](auto AMember) {
    ++place;
    EXPECT_EQ(A.*AMember, B.*AMember) << "member " << place;
  };
  (same(AMembers), ...);
}

/// Every member of A equals B's.
inline void ExpectSame(const TAll& A, const TAll& B) {
  EXPECT_EQ(A.GetTitle(), B.GetTitle());
  ExpectSameMembers(A, B, &TAll::I32, &TAll::U32, &TAll::I8, &TAll::I16, &TAll::U8, &TAll::U16, &TAll::I64,
                    &TAll::U64, &TAll::F32, &TAll::F64, &TAll::F80, &TAll::Flag, &TAll::Letter, &TAll::Text,
                    &TAll::Ansi, &TAll::Markup, &TAll::Kind, &TAll::Color, &TAll::Colors, &TAll::When, &TAll::Day,
                    &TAll::Clock, &TAll::Point, &TAll::Numbers, &TAll::Words, &TAll::Triple, &TAll::Points,
                    &TAll::Grid);
  const auto rest = [](const TAll& AOne) {
    return std::tuple(AOne.Money.Raw(), AOne.Any.VarType(), VarToStr(AOne.Any), AOne.Boxed.ToString(),
                      AOne.Boxed.TypeInfo(), AOne.Notes->GetText());
  };
  EXPECT_EQ(rest(A), rest(B));
  for (TAddress* TAll::*place : {&TAll::Home, &TAll::Other, &TAll::Missing}) ExpectSameAddress(A.*place, B.*place);
  ASSERT_EQ(A.Places.size(), B.Places.size());
  for (size_t i = 0; i < A.Places.size(); ++i) ExpectSameAddress(A.Places[i], B.Places[i]);
}

}  // namespace serialdomain
