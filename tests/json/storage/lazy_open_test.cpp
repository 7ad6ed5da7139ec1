// A loaded document keeps records until a container is opened: output must not depend on which
// containers were opened, nodes handed out keep their identity, and nodes taken out of a tree
// keep what they need after the document is gone.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "json/json_roundtrip_oracle.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_document.h"

namespace vn {
namespace {

void LoadBytes(TVnJSONDocument& ADoc, const std::string& AText, Word ACodePage) {
  TVnMemoryStream in(AText.data(), static_cast<Int64>(AText.size()));
  ADoc.LoadFromStream(in, ACodePage, false);
}

// A stream that claims to be one byte long: the load cannot size its text from it.
class ShortSizedStream : public TStream {
 public:
  explicit ShortSizedStream(std::string AText) : FText(std::move(AText)) {}
  Int64 Read(void* ABuffer, Int64 ACount) override {
    const auto n = std::min<Int64>(ACount, static_cast<Int64>(FText.size()) - FPos);
    if (n <= 0) return 0;
    std::memcpy(ABuffer, FText.data() + FPos, static_cast<size_t>(n));
    FPos += n;
    return n;
  }
  Int64 Write(const void*, Int64) override { return 0; }
  Int64 Seek(Int64 AOffset, TSeekOrigin AOrigin) override {
    return FPos = AOffset + (AOrigin == soBeginning ? 0 : AOrigin == soCurrent ? FPos : Int64(FText.size()));
  }
  Int64 GetSize() override { return 1; }

 private:
  std::string FText;
  Int64 FPos = 0;
};

TEST(JsonStorage, OutputIsTheSameWhateverWasOpened) {
  const char* const texts[] = {
      R"({"a":[1,-2.5e3,true,false,null],"b":{"c":{},"d":[]},"e":"x\/y\n\u00e9\u4e2d","f":[[[]],{"g":"h"}]})",
      R"([{"n\u00e4me":"caf\u00e9 \ud83d\ude00"},"\"q\"",[0,{"k":[1,{"z":null}]}]])",
      "{\"utf8\":\"caf\xc3\xa9 \xe4\xb8\xad\",\"esc\":\"tab\\there\",\"\":\"\"}",
  };
  for (const char* text : texts) {
    for (Word cp : {cVnCodePageUTF8, Word{1252}}) {
      SCOPED_TRACE(std::string(text) + " @" + std::to_string(cp));
      TVnJSONDocument lazy, open, half;
      for (TVnJSONDocument* doc : {&lazy, &open, &half}) LoadBytes(*doc, text, cp);
      testing_support::TreeDepth(open);  // its walk, top down as a caller's, opens every container
      half.GetRootValue()->Child(0);  // half open: the root's first child only
      for (bool formatted : {false, true})
        for (Word out : {cVnCodePageUTF8, cVnCodePageUTF16LE, Word{1252}}) {
          const auto saved = [&](TVnJSONDocument& ADoc) { return testing_support::SaveJSON(ADoc, formatted, out); };
          EXPECT_EQ(std::tuple(saved(lazy), saved(half)), std::tuple(saved(open), saved(open)))
              << formatted << " " << out;
        }
      EXPECT_EQ(lazy.GetRootValue()->GetAsJSON(), open.GetRootValue()->GetAsJSON());
    }
  }
}

TEST(JsonStorage, OpenedNodesKeepIdentityAndTakeEdits) {
  TVnJSONDocument doc(u"{\"a\":[1,{\"b\":2}],\"c\":\"d\"}");
  TVnJSONBase* root = doc.GetRootValue();
  EXPECT_EQ(root->ChildCount(), 2);  // counted from the records, nothing opened
  TVnJSONBase* a = root->FindMember(u"a")->GetValueObj();
  EXPECT_EQ(std::tuple(root->Child(0)->GetValueObj(), a->Item(1), static_cast<TVnJSONObject*>(root)->GetLastMember(),
                       a->Item(1)->GetOwner()), std::tuple(a, a->Child(1), root->Child(1), a));
  a->Item(1)->FindMember(u"b")->SetAsInteger(3);
  a->AddValue(jdtString, u"new");
  root->AddMember(u"e", jdtNull);
  root->DeleteMember(1);
  EXPECT_EQ(doc.GetAsJSON(), u"{\"a\": [1, {\"b\": 3}, \"new\"], \"e\": null}");
}

TEST(JsonStorage, NodesTakenOutOutliveTheirDocument) {
  IPtr<IVnJSONBase> unopened, opened, member;
  {
    TVnJSONDocument doc(u"{\"x\":{\"y\":[1,\"two\",{\"z\":null}]},\"w\":\"caf\\u00e9\"}");
    unopened = IPtr<IVnJSONBase>(static_cast<IVnJSONBase*>(doc.GetRootValue()->FindMember(u"x")->GetValueObj()));
    TVnJSONBase* w = doc.GetRootValue()->FindMember(u"w");
    member = IPtr<IVnJSONBase>(static_cast<IVnJSONBase*>(w));
    w->FreeObject();  // taken out while held
    doc.SetAsJSON(u"[1]");  // a second load replaces the first tree
    opened = IPtr<IVnJSONBase>(static_cast<IVnJSONBase*>(doc.GetRootValue()));
    opened->GetItem(0);
  }
  EXPECT_EQ(std::tuple(unopened->GetAsJSON(), unopened->GetMemberEx(u"y")->GetValue()->GetItem(1)->GetAsString(),
                       member->GetAsString(), opened->GetAsJSON()),
            std::tuple(u"{\"y\": [1, \"two\", {\"z\": null}]}", u"two", u"caf\u00e9", u"[1]"));
}

TEST(JsonStorage, TextOutgrowingTheStreamsSizeStillLoads) {
  std::string text = "[";
  for (int i = 0; i < 2000; ++i) text += (i ? ",\"" : "\"") + std::string(40, char('a' + i % 26)) + "\"";
  text += "]";
  ShortSizedStream in(text);
  TVnJSONDocument doc;
  doc.LoadFromStream(in, cVnCodePageUTF8, false);
  ASSERT_NE(doc.GetRootValue(), nullptr);
  EXPECT_EQ(std::tuple(doc.GetRootValue()->ChildCount(), doc.GetRootValue()->Item(1999)->GetAsString()),
            std::tuple(2000, std::u16string(40, u'a' + 1999 % 26)));
  EXPECT_EQ(Utf8ToUnicode(testing_support::SaveJSON(doc, false, cVnCodePageUTF8)), VnFormatJSON(Utf8ToUnicode(text)));
}

TEST(JsonStorage, MillionDeepTreeOpenedLevelByLevelSavesAndFrees) {
  constexpr size_t kDepth = 1000000;
  std::string text(kDepth, '[');
  text += "1";
  text.append(kDepth, ']');
  TVnJSONDocument doc;
  LoadBytes(doc, text, cVnCodePageUTF8);
  TVnJSONBase* n = doc.GetRootValue();
  for (size_t i = 1; i < kDepth; ++i) n = n->Child(0);
  EXPECT_EQ(n->Child(0)->GetAsInteger(), 1);
  EXPECT_EQ(testing_support::SaveJSON(doc, false, cVnCodePageUTF8), text);
}

}  // namespace
}  // namespace vn
