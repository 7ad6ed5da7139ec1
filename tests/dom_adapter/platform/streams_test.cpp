// Loading and saving through IDOMPersist and IDOMNodeEx: component streams, library streams in
// the document's encoding, and transformations into text or another document.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "support/raises.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"
#include "vnxml/dom_adapter.h"

namespace {

using namespace vn;
using test::ExpectRaises;
using test::U8;

// A component stream over a string, on the test's stack; Short makes every Read one byte short.
struct TTestStream final : IStream {
  std::string Data;
  size_t Pos = 0;
  bool Short = false;
  int Writes = 0;
  HRESULT QueryInterface(const TGUID&, void**) override { return E_NOINTERFACE; }
  int32_t _AddRef() override { return 1; }
  int32_t _Release() override { return 1; }
  HRESULT Read(void* ABuffer, uint32_t ACount, uint32_t* ARead) override {
    size_t n = std::min<size_t>(ACount - (Short ? 1 : 0), Data.size() - Pos);
    std::memcpy(ABuffer, Data.data() + Pos, n);
    *ARead = static_cast<uint32_t>(n);
    Pos += n;
    return S_OK;
  }
  HRESULT Write(const void* ABuffer, uint32_t ACount, uint32_t*) override {
    Data.append(static_cast<const char*>(ABuffer), ACount);
    ++Writes;
    return S_OK;
  }
  HRESULT Seek(Int64 AMove, uint32_t AOrigin, UInt64* ANewPosition) override {
    Pos = static_cast<size_t>(AMove) + (AOrigin == 2 ? Data.size() : AOrigin == 1 ? Pos : 0);
    if (ANewPosition) *ANewPosition = Pos;
    return S_OK;
  }
};

TEST(PlatformDOMStreams, ComponentAndLibraryStreamsAndTransformations) {
  IPtr<IDOMDocument> doc = GetDOM()->createDocument(u"", u"", nullptr);
  IPtr<IDOMPersist> persist = doc.As<IDOMPersist>();
  TTestStream in;
  in.Data = "<a>\xC3\xA9</a>";
  EXPECT_EQ(persist->loadFromStream(IPtr<IStream>(&in)), -1);
  TTestStream out;
  persist->saveToStream(IPtr<IStream>(&out));
  EXPECT_EQ(std::tuple(doc->get_documentElement().As<IDOMNodeEx>()->get_text(), out.Writes, out.Data),
            std::tuple(u"\u00E9", 1, "<a>\xC3\xA9</a>"));

  TTestStream shortRead;
  shortRead.Data = "<b/>";
  shortRead.Short = true;
  ExpectRaises<EVnDomException>([&] { persist->loadFromStream(IPtr<IStream>(&shortRead)); }, cVnDomStreamIncomplete);

  // A library stream is read as UTF-8 and written in the document's encoding.
  TVnStringStream utf8("<c>\xC3\xA9</c>", 65001);
  IPtr<IDOMDocument> other = GetDOM()->createDocument(u"", u"", nullptr);
  other.As<IDOMPersist>()->loadFromStream(utf8);
  other.As<IVnDOMDocument>()->SetEncoding(u"ISO-8859-1");
  TVnStringStream latin1(28591);
  other.As<IDOMPersist>()->saveToStream(latin1);
  EXPECT_EQ(latin1.GetBytesView(), "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><c>\xE9</c>");

  // Transformations into text or into another document.
  IPtr<IDOMDocument> source = VnCreateDOM(u"Ondrel", u"", u"a");
  source->get_documentElement().As<IDOMNodeEx>()->set_text(u"v");
  IPtr<IDOMDocument> xsl = GetDOM()->createDocument(u"", u"", nullptr);
  xsl.As<IDOMPersist>()->loadxml(
      u"<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
      u"<xsl:template match=\"/\"><out><xsl:value-of select=\"/a\"/></out></xsl:template></xsl:stylesheet>");
  WideString text;
  source.As<IDOMNodeEx>()->transformNode(xsl, text);
  EXPECT_NE(U8(text).find("<out>v</out>"), std::string::npos);
  IPtr<IDOMDocument> result = GetDOM()->createDocument(u"", u"", nullptr);
  source.As<IDOMNodeEx>()->transformNode(xsl, result);
  EXPECT_EQ(U8(result->get_documentElement().As<IDOMNodeEx>()->get_xml()), "<out>v</out>");
}

}  // namespace
