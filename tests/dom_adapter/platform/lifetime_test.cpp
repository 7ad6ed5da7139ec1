// Lifetimes through the vendor-neutral interfaces, and the component streams. Each case would
// read freed memory or leak under the sanitizers if a rule broke.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "support/raises.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"
#include "vnxml/dom_adapter.h"
#include "vnxml/dom_messages.h"

namespace {

using namespace vn;
using test::ExpectRaises;
using test::U8;

// A component stream over a string; Short makes every Read deliver one byte less than asked.
class TTestStream final : public IStream {
 public:
  std::string Data;
  size_t Pos = 0;
  bool Short = false;
  int Writes = 0;

  HRESULT QueryInterface(const TGUID& AIID, void** AObj) override {
    *AObj = (AIID == IStream::IID || AIID == IInterface::IID) ? this : nullptr;
    if (!*AObj) return E_NOINTERFACE;
    ++FCount;
    return S_OK;
  }
  int32_t _AddRef() override { return ++FCount; }
  int32_t _Release() override { return --FCount; }  // lives on the test's stack
  HRESULT Read(void* ABuffer, uint32_t ACount, uint32_t* ARead) override {
    size_t n = std::min<size_t>(ACount - (Short && ACount ? 1 : 0), Data.size() - Pos);
    std::memcpy(ABuffer, Data.data() + Pos, n);
    Pos += n;
    if (ARead) *ARead = static_cast<uint32_t>(n);
    return S_OK;
  }
  HRESULT Write(const void* ABuffer, uint32_t ACount, uint32_t* AWritten) override {
    Data.append(static_cast<const char*>(ABuffer), ACount);
    ++Writes;
    if (AWritten) *AWritten = ACount;
    return S_OK;
  }
  HRESULT Seek(Int64 AMove, uint32_t AOrigin, UInt64* ANewPosition) override {
    Pos = static_cast<size_t>((AOrigin == 0 ? 0 : AOrigin == 1 ? Int64(Pos) : Int64(Data.size())) + AMove);
    if (ANewPosition) *ANewPosition = Pos;
    return S_OK;
  }

 private:
  int32_t FCount = 0;
};

TEST(PlatformDOMStreams, ComponentAndLibraryStreams) {
  IPtr<IDOMDocument> doc = GetDOM()->createDocument(u"", u"", nullptr);
  IPtr<IDOMPersist> persist = doc.As<IDOMPersist>();
  TTestStream in;
  in.Data = "<a>\xC3\xA9</a>";
  EXPECT_EQ(persist->loadFromStream(IPtr<IStream>(&in)), -1);
  EXPECT_EQ(doc->get_documentElement().As<IDOMNodeEx>()->get_text(), u"\u00E9");

  TTestStream out;
  persist->saveToStream(IPtr<IStream>(&out));
  EXPECT_EQ(out.Writes, 1);
  EXPECT_EQ(out.Data, "<a>\xC3\xA9</a>");

  TTestStream shortRead;
  shortRead.Data = "<b/>";
  shortRead.Short = true;
  ExpectRaises<EVnDomException>([&] { persist->loadFromStream(IPtr<IStream>(&shortRead)); }, cVnDomStreamIncomplete);

  TVnStringStream utf8("<c>\xC3\xA9</c>", 65001);
  IPtr<IDOMDocument> other = GetDOM()->createDocument(u"", u"", nullptr);
  other.As<IDOMPersist>()->loadFromStream(utf8);
  EXPECT_EQ(other->get_documentElement()->get_firstChild()->get_nodeValue(), u"\u00E9");
}

TEST(PlatformDOMLifetime, ReferencesKeepWhatTheyReach) {
  // A document that only an interface on its root holds lives as long as that interface.
  IPtr<IDOMElement> root = GetDOM()->createDocument(u"", u"r", nullptr)->get_documentElement();
  IPtr<IDOMElement> child = VnAddElement(root, u"c");
  EXPECT_EQ(U8(root->get_ownerDocument().As<IDOMNodeEx>()->get_xml()), "<r><c /></r>");

  // A removed node lives on in its interface and may join another tree.
  root->removeChild(child);
  IPtr<IDOMDocument> other = GetDOM()->createDocument(u"", u"o", nullptr);
  other->get_documentElement()->appendChild(child);
  child = nullptr;
  EXPECT_EQ(U8(other.As<IDOMNodeEx>()->get_xml()), "<o><c /></o>");

  // Nodes made and never attached go with their last interface.
  IPtr<IDOMDocument> doc = root->get_ownerDocument();
  doc->createElement(u"lost")->appendChild(doc->createTextNode(u"t"));
  doc->importNode(root, -1);
  doc->createAttribute(u"a");
  root = nullptr;
  EXPECT_TRUE(doc->get_documentElement());
}

TEST(PlatformDOMLifetime, InterfaceHeldWhenTheTreeIsFreedKeepsItsSubtree) {
  auto doc = TVnDOMDocument::FromXML(u"<r><c/></r>");
  IPtr<IDOMElement> held = doc->GetRootNode()->FirstElement()->As<IDOMElement>();
  ASSERT_TRUE(held);
  VnAddText(held, u"t");
  // The checked free refuses while an interface counts; deleting leaves the held node and its
  // ancestors below the document, detached.
  ExpectRaises<Exception>([&] { doc->Free(); }, Format(cVnDomDestroyedWhileCounted, {u"TVnDOMDocument"}));
  doc.reset();
  EXPECT_FALSE(held->get_parentNode()->get_parentNode());
  EXPECT_FALSE(held->get_ownerDocument());
  EXPECT_EQ(U8(held->get_parentNode().As<IDOMNodeEx>()->get_xml()), "<r><c>t</c></r>");
}

}  // namespace
