// Runs of names, values and text in UTF-8 are read sixteen bytes at a time; UTF-16 text goes
// unit by unit. Both must give the same trace for every run length around the block size, with
// a multi-byte character at every place, and with the text cut off at every place (the buffer
// is exactly as long as the text, so a read past its end shows under the address sanitizer).
// Attribute records and namespace lookups are reused between tags; the last tests pin that down.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "support/sax_handlers.h"
#include "vnxml/common/sysutils.h"

using vn::test::RecordingReader;

namespace {

using Trace = std::vector<std::string>;

// The events, then the local names of elements and attributes, which the events don't show.
Trace WithLocalNames(RecordingReader& AReader) {
  Trace t = AReader.Events();
  t.insert(t.end(), AReader.Rec->LocalNames.begin(), AReader.Rec->LocalNames.end());
  return t;
}

Trace ReadUtf8(std::string_view AXml, bool ACheck) {
  RecordingReader r(true, ACheck);
  std::unique_ptr<char[]> exact(new char[AXml.size()]);
  if (!AXml.empty()) std::memcpy(exact.get(), AXml.data(), AXml.size());
  try { r.Reader.ParseBuffer(exact.get(), vn::Int64(AXml.size()), 65001, u""); } catch (const vn::Exception&) {}
  return WithLocalNames(r);
}

Trace ReadUtf16(std::string_view AXml, bool ACheck) {
  RecordingReader r(true, ACheck);
  try { r.Reader.Parse(vn::Utf8ToUnicode(AXml), u""); } catch (const vn::Exception&) {}
  return WithLocalNames(r);
}

void ExpectSameTrace(std::string_view AXml, bool ACheck = true) {
  EXPECT_EQ(ReadUtf8(AXml, ACheck), ReadUtf16(AXml, ACheck)) << AXml;
}

// ALength ASCII letters with AChar standing in for the one at APlace (none when out of range).
std::string RunOf(size_t ALength, size_t APlace, std::string_view AChar, char AFirst = 'a') {
  std::string s;
  for (size_t i = 0; i < ALength; ++i) s += i == APlace ? std::string(AChar) : std::string(1, char(AFirst + i % 26));
  return s;
}

const std::string_view kWide[] = {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"};

}  // namespace

TEST(SaxReaderRuns, EveryLengthAndPlaceAlsoInPrefixedNames) {
  for (size_t len = 0; len <= 34; ++len) {
    for (std::string_view wide : kWide) {
      for (size_t at = 0; at <= len; ++at) {  // at == len: plain ASCII
        std::string run = RunOf(len, at, wide);
        // A name must start with a letter; what follows it isn't looked at.
        std::string name = "n" + run;
        std::string white(len, ' ');
        if (len > 2) white[len / 2] = '\n';
        ExpectSameTrace("<" + name + " q:" + name + "=\"" + run + "\" " + name + "='" + run + "'>" + run + "<x>" +
                        white + "</x>" + run + "</p:" + name + ">" + white + "<!--" + run + "-->");
      }
    }
  }

  // Names with prefixes and white space.
  for (size_t len = 1; len <= 20; ++len) {
    for (size_t at = 0; at <= len; ++at) {
      std::string run = RunOf(len, at, "\xC3\xA9");
      ExpectSameTrace("<p:" + run + " xmlns:p='u'\n  " + run + " : " + run + " = '1' a::" + run + "='2'/>");
      ExpectSameTrace("<" + run.substr(0, 1) + "a:b:" + run + "\t/>");
    }
  }
  // A name that ends where the text does, and the failures inside names.
  for (const char* xml : {"<abcdefghijklmnopqrstuvwxyz", "<abcdefghijklmnop:qrstuvwxyz",
                           "<r abcdefghijklmnopqrstuvwxyz", "<r abcdefghijklmnop:qrstuvwxyz='v",
                           "<abcdefghijklmnopq<rstuvwxyz/>", "<abcdefghijklmnopq:1rstuvwxyz/>",
                           "<r abcdefghijklmnopq:rstu>vwxyz='1'/>"})
    ExpectSameTrace(xml);
}

TEST(SaxReaderRuns, CutAtEveryPlace) {
  const std::string xml =
      "<?xml version='1.0'?><catalog xmlns='urn:c' xmlns:inv=\"urn:i\"><item id=\"p0000081\" "
      "name='Z\xC3\xBCrich lamp deluxe edition'>\n    <description>caf\xC3\xA9 \xE6\x9D\xB1\xE4\xBA\xAC "
      "router \xF0\x9F\x98\x80 velvet classic victor alpha uniform</description>\n    <inv:stock qty=\"122\"/>"
      "<![CDATA[some <b>raw</b> text that is long enough]]></item>\n</catalog>\n";
  for (size_t cut = 0; cut <= xml.size(); ++cut) {
    std::string_view part(xml.data(), cut);
    ExpectSameTrace(part, true);
    ExpectSameTrace(part, false);
  }
}

TEST(SaxReaderRuns, AttributeRecordsAreReusedNamespaceLookupsFollowTheScopes) {
  // Each tag's attributes land in the records of the tag before: names of the same length but
  // other letters, fewer and more attributes, and URIs of the same length must all show.
  RecordingReader r;
  r.Reader.Parse(uR"(<r xmlns:p="u1" xmlns:q="u2"><a ab="1" cd="2"/><b cd="3" ab="4" ef="5"/><c ab="6"/>)"
                 uR"(<d p:x="7"/><d q:x="8"/><d x="9"/><e/></r>)", u"");
  EXPECT_EQ(r.Events(),
            (Trace{"startDocument", "startPrefix(p=u1)", "startPrefix(q=u2)", "start(r xmlns:p=u1 xmlns:q=u2)",
                   "start(a ab=1 cd=2)", "end(a)", "start(b cd=3 ab=4 ef=5)", "end(b)", "start(c ab=6)", "end(c)",
                   "start(d {u1}p:x=7)", "end(d)", "start(d {u2}q:x=8)", "end(d)", "start(d x=9)", "end(d)",
                   "start(e)", "end(e)", "end(r)", "endPrefix(q)", "endPrefix(p)", "endDocument"}));
  EXPECT_EQ(r.Rec->LocalNames, (std::vector<std::string>{"r", "@p", "@q", "a", "@ab", "@cd", "b", "@cd", "@ab", "@ef",
                                                         "c", "@ab", "d", "@x", "d", "@x", "d", "@x", "e"}));

  // The default namespace redeclared, undeclared and restored as levels close.
  RecordingReader d;
  d.Reader.Parse(uR"(<a xmlns="1"><b xmlns="2"><c/><e xmlns=""><f/></e><g/></b><h/></a>)", u"");
  EXPECT_EQ(d.Events(),
            (Trace{"startDocument", "startPrefix(=1)", "start({1}a xmlns=1)", "startPrefix(=2)", "start({2}b xmlns=2)",
                   "start({2}c)", "end({2}c)", "startPrefix(=)", "start(e xmlns=)", "start(f)", "end(f)", "end(e)",
                   "endPrefix()", "start({2}g)", "end({2}g)", "end({2}b)", "endPrefix()", "start({1}h)", "end({1}h)",
                   "end({1}a)", "endPrefix()", "endDocument"}));

  // A prefix found once, then hidden by a declaration in another case, then back in force.
  RecordingReader p;
  p.Reader.Parse(uR"(<p:a xmlns:p="1"><p:b/><c xmlns:P="2"><p:d/></c><p:e/></p:a>)", u"");
  EXPECT_EQ(p.Events(), (Trace{"startDocument", "startPrefix(p=1)", "start({1}p:a xmlns:p=1)", "start({1}p:b)",
                               "end({1}p:b)", "startPrefix(P=2)", "start(c xmlns:P=2)", "start({2}p:d)", "end({2}p:d)",
                               "end(c)", "endPrefix(P)", "start({1}p:e)", "end({1}p:e)", "end({1}p:a)", "endPrefix(p)",
                               "endDocument"}));

  // More declarations than a scan covers, one of them redeclared below.
  std::u16string decls;
  for (int i = 0; i < 12; ++i) decls += u" xmlns:p" + vn::IntToStr(i) + u"='u" + vn::IntToStr(i) + u"'";
  RecordingReader m;
  m.Reader.Parse(u"<r" + decls + u"><p3:a xmlns:p3='v'><p3:b p7:x='1'/></p3:a><p3:c/><p11:d/><q:e/></r>", u"");
  const Trace& ev = m.Events();
  for (const char* e : {"start({v}p3:b {u7}p7:x=1)", "start({u3}p3:c)", "start({u11}p11:d)", "start(q:e)"})
    EXPECT_NE(std::find(ev.begin(), ev.end(), e), ev.end()) << e;
}
