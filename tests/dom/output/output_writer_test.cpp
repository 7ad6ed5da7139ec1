// The writer's buffering: every kind of stream gets the same bytes as a string stream, writes
// land at the stream's position, nodes of a host's classes write themselves in order, and each
// piece of text is converted on its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>

#include "support/files.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_exception.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

namespace vn {
namespace {

using test::ReadFile;

// A stream that is no memory stream: the writer has to hand it blocks through Write.
struct TRecordingStream : TStream {
  Int64 Read(void* ABuffer, Int64 ACount) override {
    const Int64 n = std::min<Int64>(ACount, static_cast<Int64>(Bytes.size()) - FPos);
    if (n <= 0) return 0;
    Bytes.copy(static_cast<char*>(ABuffer), static_cast<size_t>(n), static_cast<size_t>(FPos));
    FPos += n;
    return n;
  }
  Int64 Write(const void* ABuffer, Int64 ACount) override {
    ++Writes;
    if (Bytes.size() < static_cast<size_t>(FPos + ACount)) Bytes.resize(static_cast<size_t>(FPos + ACount));
    Bytes.replace(static_cast<size_t>(FPos), static_cast<size_t>(ACount), static_cast<const char*>(ABuffer),
                  static_cast<size_t>(ACount));
    FPos += ACount;
    return ACount;
  }
  Int64 Seek(Int64 AOffset, TSeekOrigin AOrigin) override {
    FPos = AOrigin == soBeginning ? AOffset : AOrigin == soCurrent ? FPos + AOffset : static_cast<Int64>(Bytes.size()) + AOffset;
    return FPos;
  }
  std::string Bytes;
  int Writes = 0;

 private:
  Int64 FPos = 0;
};

// A memory stream of the host's: its Write must still be called.
struct TCountingMemoryStream : TMemoryStream {
  Int64 Write(const void* ABuffer, Int64 ACount) override {
    ++Writes;
    return TMemoryStream::Write(ABuffer, ACount);
  }
  std::string Bytes() const { return {static_cast<const char*>(GetMemory()), static_cast<size_t>(GetMemorySize())}; }
  int Writes = 0;
};

// Host classes without a class record of their own, which mark where they write.
struct TMarkedElement : TVnDOMElement {
  void _SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) override {
    AStream.WriteBuffer("[", 1);
    TVnDOMElement::_SaveToStream(AStream, ACodePage, AFormatted, ALevel);
    AStream.WriteBuffer("]", 1);
  }
};

struct TMarkedText : TVnDOMText {
  void _SaveToStream(TStream& AStream, Word, bool, Integer&) override { AStream.WriteBuffer("{}", 2); }
};

std::string ToMemory(TVnDOMDocument& ADoc, Word ACodePage, bool AFormatted, bool ABOM = false) {
  TVnStringStream s(ACodePage);
  ADoc.SaveToStream(s, ACodePage, AFormatted, ABOM);
  return std::string(s.GetBytesView());
}

// Larger than any buffer: many tags, text beyond ASCII, and one text node longer on its own.
std::unique_ptr<TVnDOMDocument> LargeDocument() {
  auto doc = TVnDOMDocument::FromXML(u"<?xml version=\"1.0\"?><!--top--><r/>");
  TVnDOMElement* r = doc->GetRootNode();
  for (int i = 0; i < 3000; ++i) {
    TVnDOMElement* e = r->AddElement(u"item");
    e->SetAttribute(u"id", u"n" + std::u16string(1, static_cast<char16_t>(u'a' + i % 26)));
    e->AddText(i % 3 ? u"plain &amp; text" : u"caf\u00e9 \u20ac \U0001F600");
    if (i % 100 == 0) e->AddComment(u"c");
  }
  r->AddText(std::u16string(100000, u'\u00e9'));
  return doc;
}

TEST(DomOutputWriter, EveryKindOfStreamGetsTheSameBytes) {
  auto doc = LargeDocument();
  const test::TempFile file("writer.xml");
  for (Word cp : {cVnCodePageUTF8, cVnCodePageUTF16LE, Word(1252)})
    for (bool formatted : {false, true}) {
      SCOPED_TRACE(testing::Message() << "code page " << cp << (formatted ? ", formatted" : ""));
      const std::string expected = ToMemory(*doc, cp, formatted);
      ASSERT_GT(expected.size(), 200000u);

      TRecordingStream recorder;
      doc->SaveToStream(recorder, cp, formatted, false);
      EXPECT_EQ(recorder.Bytes, expected);
      // Blocks, not pieces: far fewer writes than the 3000 elements.
      EXPECT_LT(recorder.Writes, 50);

      TMemoryStream plain;
      doc->SaveToStream(plain, cp, formatted, false);
      EXPECT_EQ(std::string_view(static_cast<const char*>(plain.GetMemory()), static_cast<size_t>(plain.GetSize())),
                expected);

      TCountingMemoryStream counting;
      doc->SaveToStream(counting, cp, formatted, false);
      EXPECT_EQ(counting.Bytes(), expected);
      EXPECT_GT(counting.Writes, 0);

      doc->SetCodePage(cp);
      doc->SaveToFile(file.Name(), formatted, false);
      EXPECT_EQ(ReadFile(file.Path), expected);
    }
  // Code page 0 is this system's 8-bit default, UTF-8.
  EXPECT_EQ(ToMemory(*doc, 0, false), ToMemory(*doc, cVnCodePageUTF8, false));
}

TEST(DomOutputWriter, MarksAndLineEndsAtTheStartOfAFileWritesAtTheStreamPosition) {
  // The line-start rules look back at the stream: through a file they must come out as in memory.
  const test::TempFile file("marks.xml");
  const UnicodeString name = file.Name();
  auto doc = TVnDOMDocument::FromXML(u"<a><b/><?p x?></a>");
  doc->SetCodePage(cVnCodePageUTF16LE);
  doc->SaveToFile(name, true, true);
  EXPECT_EQ(ReadFile(file.Path), ToMemory(*doc, cVnCodePageUTF16LE, true, true));
  doc->SetCodePage(cVnCodePageUTF8);
  doc->SaveToFile(name, true, true);
  EXPECT_EQ(ReadFile(file.Path), "\xEF\xBB\xBF\r\n<a>\r\n  <b />\r\n  <?p x?>\r\n</a>");
  doc->SetEncoding(u"UTF-8");
  doc->SaveToFile(name, true, true);
  EXPECT_EQ(ReadFile(file.Path), ToMemory(*doc, cVnCodePageUTF8, true, true));

  // Writes land at the stream position.
  doc = TVnDOMDocument::FromXML(u"<a>t</a>");
  TVnDOMElement* a = doc->GetRootNode();
  // Inside the content: the bytes there are overwritten, the rest stays.
  TVnStringStream s(std::string_view("0123456789ABCDEF"), cVnCodePageUTF8);
  s.Seek(2, soBeginning);
  a->SaveToStream(s, cVnCodePageUTF8, false);
  EXPECT_EQ((std::tuple{s.GetBytesView(), s.GetPosition()}), std::tuple("01<a>t</a>ABCDEF", 10));
  // Behind the end: the gap is filled with zeros.
  TVnStringStream gap(std::string_view("ab"), cVnCodePageUTF8);
  gap.Seek(2, soEnd);
  a->SaveToStream(gap, cVnCodePageUTF8, false);
  EXPECT_EQ(gap.GetBytesView(), std::string_view("ab\0\0<a>t</a>", 12));
  // At the end of earlier content, twice in a row.
  TVnStringStream tail(cVnCodePageUTF16LE);
  tail.Add(std::u16string_view(u"x"));
  a->SaveToStream(tail, cVnCodePageUTF16LE, false);
  a->SaveToStream(tail, cVnCodePageUTF16LE, false);
  EXPECT_EQ((std::tuple{tail.GetWString(), tail.GetPosition()}), std::tuple(u"x<a>t</a><a>t</a>", tail.GetSize()));
  // A read-only view refuses, as its Write does.
  const char fixed[] = "0123456789";
  TVnMemoryStream view(fixed, 10);
  EXPECT_THROW(a->SaveToStream(view, cVnCodePageUTF8, false), EWriteError);
  EXPECT_THROW(a->SaveToStream(s, 65535, false), EVnException);
}

TEST(DomOutputWriter, HostNodesWriteInOrderAndEachPieceIsConvertedOnItsOwn) {
  auto doc = TVnDOMDocument::FromXML(u"<a><b/></a>");
  TVnDOMElement* a = doc->GetRootNode();
  auto* marked = a->Append(std::make_unique<TMarkedElement>());
  marked->SetQualifiedName(u"m");
  marked->AddElement(u"c")->AddText(u"t");
  a->Append(std::make_unique<TMarkedText>());
  a->AddElement(u"d");
  EXPECT_EQ(ToMemory(*doc, cVnCodePageUTF8, false), "<a><b />[<m><c>t</c></m>]{}<d /></a>");
  // The host's writes share the level and the line logic of the walk around them.
  EXPECT_EQ(ToMemory(*doc, cVnCodePageUTF8, true),
            "<a>\r\n  <b />[\r\n  <m>\r\n    <c>t</c>\r\n  </m>]{}\r\n  <d />\r\n</a>");
  TRecordingStream recorder;
  doc->SaveToStream(recorder, cVnCodePageUTF8, true, false);
  EXPECT_EQ(recorder.Bytes, ToMemory(*doc, cVnCodePageUTF8, true));

  // Each piece of text is converted on its own.
  doc = TVnDOMDocument::FromXML(u"<r/>");
  TVnDOMElement* r = doc->GetRootNode();
  // A surrogate pair split over two text nodes stays two broken characters.
  r->AddText(u"a\xD83D");
  r->AddText(u"\xDE00" u"b");
  EXPECT_EQ(ToMemory(*doc, cVnCodePageUTF8, false), "<r>a\xEF\xBF\xBD\xEF\xBF\xBD" "b</r>");
  EXPECT_EQ(ToMemory(*doc, cVnCodePageUTF16LE, false).size(), 2u * 11);
  r->Clear();
  r->AddText(u"a\xD83D\xDE00" u"b");
  EXPECT_EQ(ToMemory(*doc, cVnCodePageUTF8, false), "<r>a\xF0\x9F\x98\x80" "b</r>");
  // A character the code page lacks comes out as the converter gives it.
  EXPECT_EQ(ToMemory(*doc, cVnCodePageLatin1, false), "<r>a?b</r>");
}

}  // namespace
}  // namespace vn
