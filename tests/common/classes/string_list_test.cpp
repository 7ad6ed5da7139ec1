// TStrings and TStringList: lines and objects, sorting and duplicates, names and values, text forms.
#include <gtest/gtest.h>

#include <functional>
#include <tuple>
#include <vector>

#include "common/message_of.h"
#include "tracked.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

using namespace vn;
using vn::test::TTracked;

namespace {

std::vector<UnicodeString> Lines(const TStrings& AList) {
  std::vector<UnicodeString> lines;
  for (const UnicodeString& s : AList) lines.push_back(s);
  return lines;
}

using L = std::vector<UnicodeString>;

UnicodeString StringListErrorOf(const std::function<void()>& AFunc) {
  return test::MessageOf<EStringListError>(AFunc);
}

}  // namespace

TEST(TStringList, LinesObjectsAndIndexErrors) {
  TStringList list;
  TTracked object;
  EXPECT_EQ((std::tuple{list.Add(u"one"), list.AddObject(u"two", &object)}), std::tuple(0, 1));
  list.Insert(0, u"zero");
  EXPECT_EQ(Lines(list), (L{u"zero", u"one", u"two"}));
  // Case-insensitive by default.
  EXPECT_EQ((std::tuple{list.GetObjects(2), list.IndexOfObject(&object), list.IndexOf(u"ONE")}),
            std::tuple(&object, 2, 1));
  list.SetCaseSensitive(true);
  EXPECT_EQ(list.IndexOf(u"ONE"), -1);
  list.SetStrings(1, u"uno");
  list.Move(2, 0);
  // The object travels with its line.
  EXPECT_EQ((std::tuple{Lines(list), list.GetObjects(0)}), std::tuple(L{u"two", u"zero", u"uno"}, &object));
  list.Exchange(0, 2);
  list.Delete(1);
  const std::pair<std::function<void()>, Integer> bad[] = {
      {[&] { list.GetStrings(2); }, 2}, {[&] { list.Delete(-1); }, -1}, {[&] { list.Insert(3, u"x"); }, 3},
      {[&] { list.SetObjects(9, nullptr); }, 9}};
  for (const auto& [call, index] : bad) EXPECT_EQ(StringListErrorOf(call), Format(cRtlListIndexError, {index}));
}

TEST(TStringList, SortedListsAndDuplicates) {
  TStringList list;
  list.SetSorted(true);
  for (const char16_t* s : {u"pear", u"Apple", u"banana", u"apple"}) list.Add(s);
  EXPECT_EQ(Lines(list), (L{u"Apple", u"banana", u"pear"}));  // "apple" equals "Apple": ignored
  Integer at = -1;
  EXPECT_EQ((std::tuple{list.Find(u"cherry", at), at}), std::tuple(false, 2));
  EXPECT_EQ((std::tuple{list.Find(u"PEAR", at), at, list.IndexOf(u"BANANA")}), std::tuple(true, 2, 1));
  EXPECT_EQ(StringListErrorOf([&] { list.Insert(0, u"x"); }), cRtlSortedListError);
  EXPECT_EQ(StringListErrorOf([&] { list.SetStrings(0, u"x"); }), cRtlSortedListError);

  list.SetDuplicates(dupError);
  EXPECT_EQ(StringListErrorOf([&] { list.Add(u"PEAR"); }), cRtlDuplicateString);
  list.SetDuplicates(dupAccept);
  // Before the equal line already there.
  EXPECT_EQ((std::tuple{list.Add(u"PEAR"), list.GetCount()}), std::tuple(2, 4));

  TStringList cased(dupAccept, true, true);
  for (const char16_t* s : {u"b", u"B", u"a", u"A", u"_", u"10", u"9"}) cased.Add(s);
  // Linguistic order: punctuation, digits as text, lower case before upper case.
  EXPECT_EQ(Lines(cased), (L{u"_", u"10", u"9", u"a", u"A", u"b", u"B"}));
  cased.SetCaseSensitive(false);  // re-sorts; equal lines keep their order
  EXPECT_EQ(Lines(cased), (L{u"_", u"10", u"9", u"a", u"A", u"b", u"B"}));

  TStringList unsorted;
  for (const char16_t* s : {u"c", u"a", u"b"}) unsorted.Add(s);
  unsorted.CustomSort([](TStringList* S, Integer A, Integer B) { return CompareStr((*S)[B], (*S)[A]); });
  EXPECT_EQ(Lines(unsorted), (L{u"c", u"b", u"a"}));
  unsorted.SetSorted(true);
  EXPECT_EQ(Lines(unsorted), (L{u"a", u"b", u"c"}));
}

TEST(TStrings, NamesAndValues) {
  TStringList list;
  list.SetText(u"host=example\r\nport=80\r\nflag\r\nempty=\r\neq=a=b");
  // A line without separator has no value, and no name either.
  EXPECT_EQ((std::tuple{list.GetNames(0), list.GetValueFromIndex(2), list.GetValueFromIndex(4), list.GetValues(u"PORT"),
                        list.GetValues(u"flag"), list.IndexOfName(u"empty"), list.IndexOfName(u"flag")}),
            std::tuple(u"host", u"", u"a=b", u"80", u"", 3, -1));

  list.SetValues(u"port", u"8080");
  list.SetValues(u"user", u"me");    // appended
  list.SetValues(u"host", u"");      // an empty value deletes the line
  EXPECT_EQ(Lines(list), (L{u"port=8080", u"flag", u"empty=", u"eq=a=b", u"user=me"}));
  list.SetValueFromIndex(1, u"on");  // a line without name becomes "=on"
  list.SetValueFromIndex(-1, u"new");
  EXPECT_EQ((std::tuple{list[1], list[5]}), std::tuple(u"=on", u"=new"));
  list.SetNameValueSeparator(u':');
  list.AddPair(u"k", u"v");
  EXPECT_EQ(list.GetValues(u"k"), u"v");
}

TEST(TStrings, TextSplitsOnAnyLineEnd) {
  TStringList list;
  const std::pair<const char16_t*, L> cases[] = {
      {u"", {}}, {u"a", {u"a"}}, {u"a\r\n", {u"a"}}, {u"\r\n", {u""}},
      {u"a\r\nb\nc\rd", {u"a", u"b", u"c", u"d"}}, {u"a\n\nb", {u"a", u"", u"b"}},
      {u"a\r\r\nb", {u"a", u"", u"b"}},
  };
  for (const auto& [text, lines] : cases) {
    list.SetText(text);
    EXPECT_EQ(Lines(list), lines);
  }
  list.SetText(u"x\ny");
  EXPECT_EQ(list.GetText(), u"x\r\ny\r\n");
  list.SetTrailingLineBreak(false);
  EXPECT_EQ(list.GetText(), u"x\r\ny");
  list.SetLineBreak(u"|");
  list.SetText(u"p|q\nr");
  EXPECT_EQ(Lines(list), (L{u"p", u"q\nr"}));
  list.Clear();
  EXPECT_EQ(list.GetText(), u"");
}

TEST(TStrings, CommaTextQuotesWhatNeedsItDelimitedTextMayBeStrict) {
  TStringList list;
  for (const char16_t* s : {u"a b", u"c", u"", u"d\"e", u"f,g", u"h\ti"}) list.Add(s);
  EXPECT_EQ(list.GetCommaText(), u"\"a b\",c,,\"d\"\"e\",\"f,g\",\"h\ti\"");
  list.Clear();
  list.Add(u"");
  EXPECT_EQ(list.GetCommaText(), u"\"\"");  // a lone empty line must not vanish

  // Reading.
  using namespace std::literals;
  const std::pair<std::u16string_view, L> cases[] = {
      {u"", {}}, {u"a,b", {u"a", u"b"}},
      {u"a b", {u"a", u"b"}},  // blanks separate too
      {u"  a , b  ", {u"a", u"b"}}, {u"\"a b\",c", {u"a b", u"c"}}, {u"\"x\"\"y\"", {u"x\"y"}},
      {u"a,", {u"a", u""}}, {u",a", {u"", u"a"}}, {u"a,,b", {u"a", u"", u"b"}},
      {u"\"unclosed", {u"unclosed"}}, {u"\"q\"tail,z", {u"q", u"tail", u"z"}}, {u"\"\"", {u""}},
      {u"a\0b"sv, {u"a"}},
  };
  for (const auto& [text, lines] : cases) {
    list.SetCommaText(text);
    EXPECT_EQ(Lines(list), lines) << text.size();
  }
  list.SetCommaText(u"\"a b\",c,,\"d\"\"e\"");
  EXPECT_EQ(list.GetCommaText(), u"\"a b\",c,,\"d\"\"e\"");

  TStringList strict;
  strict.SetDelimiter(u';');
  strict.SetQuoteChar(u'\'');
  strict.SetStrictDelimiter(true);
  strict.SetDelimitedText(u" a b ;'c;d';;e");
  EXPECT_EQ(Lines(strict), (L{u" a b ", u"c;d", u"", u"e"}));
  // Blanks need no quotes when strict; the comma form keeps its own rules.
  EXPECT_EQ((std::tuple{strict.GetDelimitedText(), strict.GetCommaText()}),
            std::tuple(u" a b ;'c;d';;e", u"\" a b \",c;d,,e"));
}

TEST(TStringList, OwnedObjectsAreFreedWithTheirLines) {
  int freed = 0;
  {
    TStringList list(true);
    for (const char16_t* s : {u"a", u"b", u"c", u"d"}) list.AddObject(s, new TTracked(&freed));
    list.Delete(0);
    EXPECT_EQ(freed, 1);
    list.Move(0, 2);  // moving is not deleting
    EXPECT_EQ(freed, 1);
    list.Clear();
    EXPECT_EQ(freed, 4);
    list.AddObject(u"e", new TTracked(&freed));
  }
  EXPECT_EQ(freed, 5);
}

TEST(TStringList, AssignCopiesLinesObjectsAndSettings) {
  TTracked object;
  TStringList source(dupAccept, true, true);
  source.SetDelimiter(u';');
  source.AddObject(u"b", &object);
  for (int i = 0; i < 2; ++i) source.Add(u"a");
  TStringList copy;
  copy.Assign(&source);
  EXPECT_EQ(Lines(copy), (L{u"a", u"a", u"b"}));
  EXPECT_EQ((std::tuple{copy.GetObjects(2), copy.GetSorted(), copy.GetCaseSensitive(), copy.GetDuplicates(),
                        copy.GetDelimiter(), copy.Equals(source)}),
            std::tuple(&object, true, true, dupAccept, u';', true));
  copy.SetSorted(false);
  copy.Add(u"c");
  EXPECT_FALSE(copy.Equals(source));
  copy.AddStrings(copy);  // adding a list to itself doubles it once
  EXPECT_EQ(copy.GetCount(), 8);
}
