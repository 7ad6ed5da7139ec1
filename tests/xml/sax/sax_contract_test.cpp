// The event contract: attribute lookups, the namespace stack, the locator, interfaces and the
// encoding decision of TVnXMLParser.
#include <gtest/gtest.h>

#include <array>
#include <tuple>

#include "common/message_of.h"
#include "support/files.h"
#include "support/raises.h"
#include "support/sax_handlers.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_streams.h"

using namespace vn;
using vn::test::RecordingReader;

namespace {

std::u16string UTF16(const std::string& AText) { return std::u16string(AText.begin(), AText.end()); }

template <class F>
int CodeOf(F&& AAction) { return test::CodeOf<EVnXMLParseError>(AAction); }

}  // namespace

TEST(SaxAttributes, Lookups) {
  TVnSAXXMAttributes attrs;
  attrs.Add(u"id", u"id", u"", u"7", TVnSAXAttributeType::CDATA);
  attrs.Add(u"href", u"x:href", u"urn:x", u"#a", TVnSAXAttributeType::ID);
  attrs.Add(u"lang", u"lang", u"", u"en", TVnSAXAttributeType::CDATA);
  EXPECT_EQ(attrs.FirstAttribute()->Next->Prev, attrs.FirstAttribute());
  EXPECT_EQ((std::tuple{attrs.Count(), attrs.GetAttribute(2)->Idx, attrs.GetQName(1), attrs.GetURI(1)}),
            std::tuple(3, 2, u"x:href", u"urn:x"));

  // Names compare without regard to case; GetIndex gives -1 where the others raise code 4.
  EXPECT_EQ((std::tuple{attrs.GetValue(u"ID"), attrs.GetIndex(u"X:HREF"), attrs.GetIndex(u"nope"),
                        attrs.GetIndex(u"URN:X", u"HREF"), attrs.GetType(u"urn:x", u"href")}),
            std::tuple(u"7", 1, -1, 1, TVnSAXAttributeType::ID));
  EXPECT_EQ(CodeOf([&] { attrs.GetValue(u"nope"); }), cVnXMLErrListIndexOutOfBounds);
  EXPECT_EQ(CodeOf([&] { attrs.GetType(u"nope"); }), cVnXMLErrListIndexOutOfBounds);
  EXPECT_EQ(CodeOf([&] { attrs.GetAttribute(3); }), cVnXMLErrListIndexOutOfBounds);
  EXPECT_EQ(CodeOf([&] { attrs.GetLocalName(-1); }), cVnXMLErrListIndexOutOfBounds);

  // "*" matches any namespace in GetValue only; an empty URI matches only the empty one.
  EXPECT_EQ((std::tuple{attrs.GetValue(u"*", u"href"), attrs.GetIndex(u"*", u"href")}), std::tuple(u"#a", -1));
  EXPECT_EQ(CodeOf([&] { attrs.GetValue(u"", u"href"); }), cVnXMLErrListIndexOutOfBounds);
  EXPECT_EQ(CodeOf([&] { attrs.GetType(u"*", u"href"); }), cVnXMLErrListIndexOutOfBounds);

  test::ExpectRaises<EVnXMLParseError>([&] { attrs.GetValue(u"a", u"b"); },
                                       Format(_cVnXMLListIndexOutOfBounds3, {u"a", u"b"}));
  test::ExpectRaises<EVnXMLParseError>([&] { attrs.GetAttribute(9); }, Format(_cVnXMLListIndexOutOfBounds1, {9}));

  // Cleared records come back for reuse, with their old content overwritten.
  attrs.Clear();
  EXPECT_EQ((std::tuple{attrs.Count(), attrs.FirstAttribute()}), std::tuple(0, nullptr));
  attrs.Add(u"n", u"n", u"", u"v", TVnSAXAttributeType::CDATA);
  EXPECT_EQ((std::tuple{attrs.GetValue(0), attrs.FirstAttribute()->Next}), std::tuple(u"v", nullptr));

  // Counting is off: an interface taken and dropped frees nothing.
  { IPtr<IVnSAXAttributes> intf(&attrs); }
  EXPECT_EQ(attrs.Count(), 1);
}

TEST(SaxNamespaceList, ScopesAndEventsAlsoPastManyDeclarations) {
  RecordingReader r;
  TVnSAXNamespaceList list(&r.Reader);
  list.AddURI(1, u"p", u"outer");
  list.AddURI(2, u"p", u"inner");
  list.AddURI(2, u"", u"default");
  EXPECT_EQ((std::tuple{list.GetURI(u"P"), list.GetURI(u"q"), list.GetNamespace(u"q")}),
            std::tuple(u"inner", u"", nullptr));
  list.RemoveLevel(3);  // nothing declared there: no event
  list.RemoveLevel(2);
  EXPECT_EQ((std::tuple{list.GetURI(u"p"), list.GetURI(u"")}), std::tuple(u"outer", u""));
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(r.Events(), (std::vector<std::string>{"startPrefix(p=outer)", "startPrefix(p=inner)",
                                                  "startPrefix(=default)", "endPrefix()", "endPrefix(p)"}));

  // Past a handful of declarations lookups go through an index: the scoping must not change.
  TVnSAXNamespaceList many;
  for (int i = 0; i < 50; ++i) many.AddURI(1, u"n" + UTF16(std::to_string(i)), u"outer" + UTF16(std::to_string(i)));
  many.AddURI(2, u"N7", u"inner");
  many.AddURI(3, u"n7", u"innermost");
  EXPECT_EQ((std::tuple{many.GetURI(u"n7"), many.GetURI(u"N49"), many.GetURI(u"n50")}),
            std::tuple(u"innermost", u"outer49", u""));
  many.RemoveLevel(3);
  EXPECT_EQ(many.GetNamespace(u"N7")->URI, u"inner");
  many.RemoveLevel(2);
  EXPECT_EQ(many.GetURI(u"n7"), u"outer7");
  many.RemoveLevel(1);
  EXPECT_EQ(many.GetURI(u"n7"), u"");
  many.AddURI(1, u"n7", u"again");
  EXPECT_EQ(many.GetURI(u"N7"), u"again");
}

TEST(SaxReaderFrame, LocatorInterfacesAndTheLocatorDuringEvents) {
  RecordingReader r;
  EXPECT_EQ((std::tuple{r.Reader.GetLineNr(), r.Reader.GetPosition()}), std::tuple(-1, -1));  // before any parse
  r.Reader.Parse(u"<a/>", u"doc-1");
  // After one that ended normally.
  EXPECT_EQ((std::tuple{r.Reader.GetLineNr(), r.Reader.GetColNr(), r.Reader.GetPublicID()}),
            std::tuple(-1, -1, u"doc-1"));

  IPtr<IVnSAXXMLReader> intf(&r.Reader);
  EXPECT_EQ((std::tuple{intf->GetFeature(u"anything"), VarIsNull(intf->GetProperty(u"anything")),
                        static_cast<bool>(intf.As<IVnSAXLocator>()),
                        static_cast<bool>(intf.As<IVnSAXContentHandler>())}),
            std::tuple(false, true, true, false));
  intf = nullptr;  // counting is off: the reader lives on

  // A handler asking the locator during an event gets the reader's current place.
  struct Asking : vn::test::SaxRecorder {
    IVnSAXLocator* Loc = nullptr;
    void StartElement(std::u16string_view, std::u16string_view, std::u16string_view q, IVnSAXAttributes*) override {
      Events.push_back(U8(q) + "@" + std::to_string(Loc->GetLineNr()) + ":" + std::to_string(Loc->GetColNr()) +
                       "#" + std::to_string(Loc->GetPosition()));
    }
  };
  TVnSAXXMLReader reader;
  IPtr<Asking> h(new Asking);
  h->Loc = &reader;
  reader.SetContentHandler(IPtr<IVnSAXContentHandler>(h.Get()));
  reader.SetErrorHandler(IPtr<IVnSAXErrorHandler>(h.Get()));
  reader.Parse(u"<r>\n  <a x='1'/>\n</r>", u"");
  EXPECT_EQ((std::tuple{h->Events[1], h->Events[3]}), std::tuple("r@1:3#3", "a@2:11#15"));
}

TEST(SaxReaderFrame, EntryPoints) {
  const std::string xml = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a>\xE9</a>";
  auto chars = [](RecordingReader& r) { return r.Events().at(3); };
  RecordingReader fromStream;  // a stream stays the caller's and is read from its position
  TMemoryStream stream;
  stream.WriteBuffer("junk", 4);
  stream.WriteBuffer(xml.data(), static_cast<Int64>(xml.size()));
  stream.SetPosition(4);
  fromStream.Reader.ParseStream(&stream, 0, u"");
  EXPECT_EQ(chars(fromStream), "chars(\xC3\xA9)");
  RecordingReader withCodePage;  // 8-bit text with the caller's code page: the declaration is not read
  withCodePage.Reader.Parse(std::string_view("<a>\xC3\xA9</a>"), 65001, u"");
  EXPECT_EQ(withCodePage.Events().at(2), "chars(\xC3\xA9)");

  // Only ParseFile looks for a byte-order mark, and the mark wins over the declaration.
  std::string bom = "\xFF\xFE";
  for (char c : std::string("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>")) bom += {c, '\0'};
  const test::TempFile file("sax_entry.xml", bom);
  RecordingReader fromFile;
  fromFile.Reader.ParseFile(file.Name(), fmOpenRead, u"file");
  EXPECT_EQ(chars(fromFile), "chars(\xC3\xA9)");
  // The same bytes through ParseBuffer: the mark isn't looked for.
  EXPECT_THROW(RecordingReader().Reader.ParseBuffer(bom.data(), Int64(bom.size()), 0, u""), EVnXMLParseError);
  EXPECT_THROW(RecordingReader().Reader.ParseFile(test::TempFile("missing.xml").Name(), fmOpenRead, u""), EFOpenError);
}

TEST(XmlParser, EncodingDecisionDispatchAndChecks) {
  auto decide = [](std::string_view bytes, bool detectBOM = false, Word cp = 0) {
    TVnMemoryStream stream(bytes.data(), static_cast<Int64>(bytes.size()));
    TVnXMLParser parser(&stream, false, detectBOM, cp);
    return std::pair<Word, TVnCharacterSetType>(parser.GetContentCodePage(), parser.GetCharacterSetType());
  };
  using R = std::pair<Word, TVnCharacterSetType>;
  const R utf8(65001, csUTF8), latin1(28591, csAnsi), ansi(1252, csAnsi);
  EXPECT_EQ((std::array{decide("<a/>"), decide("<?xml version=\"1.0\"?><a/>"), decide("<?xml encoding='ISO-8859-1'?>"),
                        decide("junk <?xml version='1.0' encoding = 'windows-1252' ?>"),
                        decide("<?xml version='1.0' ENCODING='ISO-8859-1'?>")}),
            (std::array{utf8, utf8, latin1, ansi, latin1}));
  // Only lower-case "<?xml" and a single space introduce a declaration. A mark or the caller's
  // code page wins, and then no part of the prolog is read.
  EXPECT_EQ((std::array{decide("<?XML version='1.0' encoding='ISO-8859-1'?>"),
                        decide("\xEF\xBB\xBF<?xml encoding='ISO-8859-1'?>", true),
                        decide("<?xml encoding='ISO-8859-1'?>", false, 1252)}),
            (std::array{utf8, utf8, ansi}));
  // An unknown name is the code page lookup's failure.
  EXPECT_THROW(decide("<?xml encoding='nonsense-42'?>"), EVnException);

  // The parser stands at the start of the text after deciding.
  std::string text = "x<?xml encoding='ISO-8859-1'?>";
  TVnMemoryStream stream(text.data(), static_cast<Int64>(text.size()));
  TVnXMLParser parser(&stream, false, false, 0);
  EXPECT_EQ(parser.CurrCharW(), u'x');

  // The checks dispatch over the three kinds of code units.
  std::u16string wide = u"<a:b>";
  TVnMemoryStream ws(wide.data(), static_cast<Int64>(wide.size() * 2));
  TVnXMLParser w(&ws, false, false, 1200);
  std::string narrow = "<a:b>";
  TVnMemoryStream ns(narrow.data(), static_cast<Int64>(narrow.size()));
  TVnXMLParser n(&ns, false, false, 65001);
  TVnXMLParser a(&ns, false, false, 28591);
  for (TVnXMLParser* p : {&w, &n, &a}) {
    EXPECT_TRUE(p->CheckCurrChar(p->FLt, false));
    EXPECT_FALSE(p->CheckCurrChar(p->FGt, false));  // no raise, no move
    EXPECT_EQ(p->GetCurPos(), 0);
    p->SkipWhile(soNotEqual, p->FColon);
    EXPECT_EQ(p->GetCurPos(), 2);
    EXPECT_EQ(test::MessageOf<EVnXMLParseError>([&] { p->CheckCurrChar(p->FGt, true); }),
              u"The document is not wellformed!\r\n\">\" expected, but \":\" found!");
    EXPECT_EQ(CodeOf([&] { p->CheckCurrChar(p->FGt, true); }), cVnXMLErrNotWellFormed);
    EXPECT_EQ(CodeOf([&] { p->CheckValidNameStartChar(); }), cVnXMLErrInvalidNameStartChar);
    p->NextChar();
    EXPECT_NO_THROW(p->CheckValidNameStartChar());
  }
  EXPECT_EQ(*static_cast<const char16_t*>(w.FLt), u'<');

  // The name-start ranges, at their edges.
  for (char16_t ok : {u'A', u'z', u'_', u'\u00C0', u'\u00F8', u'\u0370', u'\u037F', u'\u200C', u'\u2070', u'\u3001',
                      u'\uF900', u'\uFDF0', u'\uFFFD'})
    EXPECT_TRUE(TVnXMLParser::IsNameStartChar(ok)) << int(ok);
  for (char16_t bad : {u':', u'-', u'1', u'.', u'\u00D7', u'\u00F7', u'\u0300', u'\u037E', u'\u2000', char16_t(0x2190),
                       u'\u3000', char16_t(0xD800), char16_t(0xDFFF), u'\uFDD0', u'\uFFFE'})
    EXPECT_FALSE(TVnXMLParser::IsNameStartChar(bad)) << int(bad);
}
