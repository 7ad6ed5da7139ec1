// Node paths: name matching, step forms, indexes, alternatives, groups, option rules, soCreate,
// and paths that must fail in order rather than crash.
#include "xpath/path/select_helpers.h"
#include <tuple>

#include "vnxml/common/utf.h"

namespace vn {
namespace {

using test::ExpectError;
using test::LoadDoc;
using test::Sel;

constexpr char16_t cShop[] =
    u"<root>"
    u"<a id='a1'><b id='b1'/><b id='b2'/></a>"
    u"<a id='a2'><b id='b3'/></a>"
    u"<c id='c1'>text<!--note--><![CDATA[raw]]><?pi x?><d id='d1'/></c>"
    u"</root>";

/// Each path from AContext selects the nodes of the signatures given, in order.
void ExpectSel(TVnDOMNode* AContext, std::initializer_list<std::pair<const char16_t*, const char16_t*>> ARows,
               TVnDOMSelectOptions AOptions = {}) {
  for (const auto& [path, signatures] : ARows)
    EXPECT_EQ(Sel(AContext, path, AOptions), signatures) << UnicodeToUtf8(path);
}

TEST(PathNames, DefaultDocumentIgnoresAsciiCasePrefixesMatchAsText) {
  auto doc = LoadDoc(u"<root><child id='k'/></root>");
  TVnDOMElement* root = doc->GetRootNode();
  EXPECT_EQ(test::Signature(SelectSingleNode(doc.get(), u"ROOT/Child")), u"k");
  EXPECT_EQ(SelectSingleNode(doc.get(), u"ROOT/Child", {soCaseSensitive}), nullptr);
  doc->SetCaseSensitive(true);
  doc->SetCollation(TVnXPathCollationCodepoint::Class());
  EXPECT_EQ(SelectSingleNode(root, u"CHILD"), nullptr);
  EXPECT_EQ(Sel(root, u"CHILD", {soCaseInsensitive}), u"k");

  // Prefixes match as text, not by namespace.
  doc = LoadDoc(u"<r xmlns:x='urn:1' xmlns:y='urn:1'><x:a id='xa'/><y:a id='ya'/><a id='pa'/></r>");
  TVnDOMElement* r = doc->GetRootNode();
  ExpectSel(r, {{u"x:a", u"xa"}, {u"a", u"pa"}, {u"*:a", u"xa ya pa"},
                {u"child::a", u""}});  // no axes: prefix "child", local name ":a"
  // With both options soLocalName wins.
  for (const auto& [options, ids] : {std::pair{TVnDOMSelectOptions{soQualifiedName}, u"pa"},
                                     {{soLocalName}, u"xa ya pa"}, {{soLocalName, soQualifiedName}, u"xa ya pa"}})
    EXPECT_EQ(Sel(r, u"a", options), ids);
}

TEST(PathSteps, KindsSlashDotParentAndAttributes) {
  auto doc = LoadDoc(cShop);
  TVnDOMElement* root = doc->GetRootNode();
  ExpectSel(root, {{u"c/*", u"d1"}, {u"c/node()", u"#text #comment #cdata-section pi d1"},
                   {u"c/text()", u"#text #cdata-section"},
                   {u"c/Node()", u""},       // the first letter must be lower-case
                   {u"c/comment()", u""}});  // not part of the language: a name
  ExpectSel(doc.get(), {{u"*", u"root"}, {u"..", u""}});  // no parent: nothing, and no failure later
  ExpectSel(root->FindElement(u"a"),  // the last "a"
            {{u"/", u"a2"},           // the context node, not the document
             {u"/root/c", u"c1"}, {u"b", u"b3"}, {u".", u"a2"},
             {u"./.", u""},  // a "." behind a "." selects nothing
             {u"../c", u"c1"}, {u"b/../../a", u"a1 a2"}});

  auto attrs = LoadDoc(u"<r xmlns='urn:d' xmlns:p='urn:p' a='1' p:b='2'/>");
  ExpectSel(attrs->GetRootNode(), {{u"@*", u"@a @p:b"}, {u"@b", u""},  // needs an empty prefix
                                   {u"@p:b", u"@p:b"}, {u"@p:*", u"@p:b"}});
  EXPECT_EQ(Sel(attrs.get(), u"@a"), u"@a");  // a document answers with its root's attributes
  EXPECT_EQ(Sel(attrs->GetRootNode(), u"@*", {soLocalName}), u"@xmlns @xmlns:p @a @p:b");
}

TEST(PathSteps, DeepSearchesWalkDepthFirstListingEachNodesMatchesBeforeItsSubtrees) {
  auto doc = LoadDoc(u"<r id='r'><b id='1'><b id='2'/></b><x><b id='3'/></x></r>");
  ExpectSel(doc->GetRootNode()->FindElement(u"x"), {{u"//b", u"1 2 3"},  // from the document
                                                    {u".//b", u"3"}});    // from the context node
  ExpectSel(doc->GetRootNode(), {{u"b//", u"2"}, {u"//b//b", u"2"}});
  EXPECT_EQ(Sel(doc.get(), u"//@id"), u"@id @id @id @id");

  doc = LoadDoc(u"<r>t1<a>t2<b>t3</b><!--c--></a>t4</r>");
  TVnDOMElement* r = doc->GetRootNode();
  std::unique_ptr<TVnDOMNodeList> texts = CreateNodeList(r, u"//text()");
  UnicodeString values;
  for (TVnDOMNode* t : *texts) values += t->GetNodeValue();
  // The matches at a node come before those in its subtrees.
  EXPECT_EQ(values, u"t1t4t2t3");
  EXPECT_EQ(Sel(r, u".//node()"), u"#text a #text #text b #comment #text");
}

TEST(PathIndexes, FiltersCountFromZeroPerContextNode) {
  auto doc = LoadDoc(cShop);
  ExpectSel(doc->GetRootNode(),
            {{u"a[0]", u"a1"}, {u"a[1]", u"a2"}, {u"a/b[0]", u"b1 b3"}, {u"(a/b)[0]", u"b1"},
             {u"(a/b)[last()]", u"b3"}, {u"a/b[position() = 1]", u"b1 b3"},
             {u"a[b][1]/b", u"b3"},  // each filter sees what the previous one left
             {u"a[@id = \"a2\"]/b", u"b3"}, {u"a[b/c]", u""}, {u"a/b[5]", u""}, {u"a/b[ 1 ]", u"b2"},
             {u"a/b[01]", u"b2"}, {u"a/b[1][0]", u"b2"}, {u"a/b[0][1]", u""},
             {u"a/b[last()]", u"b2 b3"},  // the same filter on the candidates of each context node
             // last() is a test, not a number: compared with a position it is the Variant True (-1).
             {u"a/b[position() = last()]", u""}});
}

TEST(PathAlternatives, ResultsStayUniqueInOrderOfDiscoverySingleStopsAtFirstHit) {
  UnicodeString xml = u"<r>";
  for (int i = 0; i < 40; ++i) xml += u"<b id='" + IntToStr(i) + u"'/>";
  xml += u"</r>";
  auto doc = LoadDoc(xml);
  std::unique_ptr<TVnDOMNodeList> list = CreateNodeList(doc->GetRootNode(), u"b[39] | //b | b");
  ASSERT_EQ(list->Count(), 40);
  EXPECT_EQ(test::Signature(list->GetItem(0)) + u" " + test::Signature(list->GetItem(39)), u"39 38");

  // A list gives each node once; a single selection stops at the first hit.
  doc = LoadDoc(cShop);
  TVnDOMElement* root = doc->GetRootNode();
  ExpectSel(root, {{u"c|a", u"c1 a1 a2"}, {u"a | a[1] | c", u"a1 a2 c1"}});
  EXPECT_EQ(test::Signature(SelectSingleNode(root, u"x|a|c")), u"a1");
  EXPECT_EQ(test::Signature(SelectSingleNode(root, u"c/d|a")), u"d1");
  // Cut without regard to brackets: "[@id = 'x' | 'y']" breaks into two halves.
  EXPECT_THROW(Sel(root, u"a[@id = \"a|b\"]"), Exception);
}

TEST(PathErrors, MalformedPathsAndRaisingFormsRaiseTheirMessages) {
  auto doc = LoadDoc(cShop);
  TVnDOMElement* root = doc->GetRootNode();
  const std::pair<const char16_t*, UnicodeString> syntax[] = {
      {u"", cVnPathInvalid}, {u"a/", cVnPathNoDomNode}, {u"a///b", cVnPathStartsWithSlash},
      {u"///a", cVnPathStartsWithSlash}, {u"a/*x", Format(cVnPathAfterStar, {u"*x"})},
      {u"a/.x", Format(cVnPathAfterDots, {u".x"})}, {u"//..", Format(cVnPathDeepParent, {u".."})},
      {u"a||c", cVnPathInvalid}};  // the empty alternative
  for (const auto& [path, message] : syntax) ExpectError<EVnDomSyntax>([&] { Sel(root, path); }, message);
  ExpectError<Exception>([&] { Sel(root, u"a", {soCaseSensitive, soCaseInsensitive}); }, cVnDomBothCaseOptions);
  ExpectError<Exception>([&] { Sel(root, u"a", {soRaise, soCreate}); }, cVnPathBothRaiseCreate);
  // A step that never runs never fails.
  EXPECT_EQ(Sel(root, u"zz/*x"), u"");

  // The raise messages of the list, single and document forms.
  ExpectError<EVnDomNotFound>([&] { CreateNodeList(root, u"zz", {soRaise}); }, Format(cVnPathNoNodes, {u"zz"}));
  ExpectError<EVnDomNotFound>([&] { SelectSingleNode(root, u"zz", {soRaise}); }, Format(cVnPathNoNode, {u"zz"}));
  ExpectError<EVnDomNotFound>([&] { CreateElementList(root, u"zz", {soRaise}); },
                              Format(cVnPathNoElements, {u"zz"}));
  EXPECT_THROW(SelectSingleElement(root, u"c/text()"), EInvalidCast);
  EXPECT_EQ(SelectSingleElement(root, u"c/d")->GetQualifiedName(), u"d");

  // The document's forms delegate to the root.
  EXPECT_EQ(SelectSingleElement(doc.get(), u"a[1]")->GetAttribute(u"id"), u"a2");
  ExpectError<EVnDomNotFound>([&] { SelectSingleElement(doc.get(), u""); }, cVnPathEmpty);
  TVnDOMDocument empty;
  EXPECT_EQ((std::tuple{CreateElementList(&empty, u"a", {})->Count(), SelectSingleElement(&empty, u"a")}),
            std::tuple(0, nullptr));
  ExpectError<EVnDomNotFound>([&] { SelectSingleElement(&empty, u"a", {soRaise}); },
                              Format(cVnPathNoRootRaise, {u"a"}));
  ExpectError<EVnDomNotFound>([&] { CreateElementList(&empty, u"a", {soCreate}); }, cVnPathNoRootCreate);
}

TEST(PathCreate, CreatesMissingElementsOnceRefusesComplexPathsInterfacesAndMembersForward) {
  auto doc = LoadDoc(u"<r><a/></r>");
  TVnDOMElement* r = doc->GetRootNode();
  TVnDOMNode* c = SelectSingleNode(r, u"a/b/c", {soCreate});
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(SelectSingleNode(r, u"a/b/c", {soCreate}), c);  // found the second time
  EXPECT_EQ(r->GetXML(), u"<r><a><b><c /></b></a></r>");
  EXPECT_EQ(SelectSingleNode(r, u"x:n[0]", {soCreate})->GetQualifiedName(), u"x:n");

  for (const char16_t* path : {u"q[2]", u"a/@id"})
    ExpectError<EVnDomNotFound>([&] { SelectSingleNode(r, path, {soCreate}); }, Format(cVnPathTooComplex, {path}));
  ExpectError<Exception>([&] { SelectSingleNode(r, u"//zz", {soCreate}); }, cVnPathCreateDeep);
  EXPECT_EQ(SelectSingleNode(r, u"q"), nullptr);  // nothing was left behind by the failures
  // A path from the document creates nothing at its first step.
  ExpectError<EVnDomNotFound>([&] { SelectSingleNode(doc.get(), u"other", {soCreate}); },
                              Format(cVnPathTooComplex, {u"other"}));

  // Interface forms and members forward; lists belong to the caller.
  doc = LoadDoc(cShop);
  IPtr<IVnDOMNode> node = doc->GetRootNode()->As<IVnDOMNode>();
  IPtr<IVnDOMNodeList> list = node->CreateNodeList(u"a/b", {});
  EXPECT_EQ((std::tuple{list->Count(), bool(node->SelectSingleNode(u"zz", {}))}), std::tuple(3, false));
  IPtr<IVnDOMElement> element = doc->GetRootNode()->As<IVnDOMElement>();
  EXPECT_TRUE(element->SelectSingleElement(u"c/d", {}));
  EXPECT_EQ(element->CreateElementList(u"a", TVnDOMSelectOptions{})->Count(), 2);
  // The element list's path form creates through the path engine.
  TVnDOMElement* made = doc->GetRootNode()->GetElements()->GetItemEx(std::u16string_view(u"n/m"), coCreate);
  ASSERT_NE(made, nullptr);

  // Hosts call the members; they must give what the engine gives, on nodes, elements and documents.
  TVnDOMElement* root = doc->GetRootNode();
  EXPECT_EQ(test::Signature(root->SelectSingleNode(u"a/b")), u"b1");
  EXPECT_EQ(root->CreateNodeList(u"a/b")->Count(), 3);
  EXPECT_EQ(root->CreateElementList(u"a", TVnDOMSelectOptions{})->Count(), 2);
  EXPECT_EQ(test::Signature(root->SelectSingleElement(u"c/d")), u"d1");
  EXPECT_EQ(test::Signature(doc->SelectSingleElement(u"a[1]/b")), u"b3");
  EXPECT_EQ(doc->CreateElementList(u"a/b", {})->Count(), 3);
  EXPECT_THROW(root->SelectSingleNode(u"zz", {soRaise}), EVnDomNotFound);
  EXPECT_NE(root->SelectSingleElement(u"new/leaf", {soCreate}), nullptr);
  EXPECT_EQ(root->CreateNodeList(u"new/leaf")->Count(), 1);
}

TEST(PathLimits, DeepTreesAndLongPathsEndInOrder) {
  TVnDOMDocument doc;
  TVnDOMElement* e = doc.CreateRootNode(u"n");
  for (int i = 0; i < 100000; ++i) e = e->AddElement(u"n");
  e->AddElement(u"leaf");
  EXPECT_EQ(Sel(&doc, u"//leaf"), u"leaf");

  UnicodeString longPath = u"n";
  for (int i = 0; i < 5000; ++i) longPath += u"/n";
  EXPECT_THROW(Sel(&doc, longPath), EVnDomSyntax);
  UnicodeString nested = u"n";
  for (int i = 0; i < 2000; ++i) nested += u"[n";
  EXPECT_THROW(Sel(&doc, nested), Exception);
}

}  // namespace
}  // namespace vn
