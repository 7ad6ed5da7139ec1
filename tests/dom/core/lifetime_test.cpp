// Lifetimes of the two halves: each case would read freed memory or leak under ASan if a rule broke.
#include <gtest/gtest.h>

#include <tuple>

#include "common/message_of.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"
#include "vnxml/dom_messages.h"

namespace vn {
namespace {

struct ITestExtra : IInterface {
  static constexpr TGUID IID = TGUID::Parse("0b3c8a30-95a1-4d2e-9c0d-6f1d2f3e4a5b");
  virtual int Answer() = 0;

 protected:
  ~ITestExtra() = default;
};

// An element that answers an interface of its own, which its Impl does not know.
struct TExtraElement : TVnDOMElement, ITestExtra {
  int Answer() override { return 42; }
  HRESULT QueryInterface(const TGUID& AIID, void** AObj) override { return TVnDOMElement::QueryInterface(AIID, AObj); }
  int32_t _AddRef() override { return TVnDOMElement::_AddRef(); }
  int32_t _Release() override { return TVnDOMElement::_Release(); }

 protected:
  HRESULT QueryObjectInterface(const TGUID& AIID, void** AObj) override {
    return detail::QueryInterfaces<ITestExtra>(this, AIID, AObj);
  }
};

// A document with a root, the start of most cases.
struct DomRootLifetime : ::testing::Test {
  TVnDOMDocument doc;
  TVnDOMElement* root = doc.CreateRootNode(u"root");
};

TEST(DomLifetime, InterfacesKeepTheParentChainTheLastReleaseFreesADetachedNode) {
  auto doc = std::make_unique<TVnDOMDocument>();
  TVnDOMElement* root = doc->CreateRootNode(u"root");
  TVnDOMElement* child = root->AddElement(u"a")->AddElement(u"b");
  TVnDOMNode* const chain[] = {child, root, doc.get()};
  {
    IPtr<IVnDOMElement> held = child->As<IVnDOMElement>();
    ASSERT_TRUE(held);
    for (TVnDOMNode* n : chain) EXPECT_NE(n->GetDOMImpl(), nullptr) << UnicodeToUtf8(n->GetQualifiedName());
    EXPECT_EQ(TVnDOMObjectImpl::Node(held.Get())->GetDOMDocument(), doc.get());
  }
  // The last release leaves every node in the tree, without an interface half; the document,
  // which no interface ever held directly, stays its creator's.
  for (TVnDOMNode* n : chain) EXPECT_EQ(n->GetDOMImpl(), nullptr) << UnicodeToUtf8(n->GetQualifiedName());
  EXPECT_EQ(root->FirstElement()->FirstElement(), child);

  // The last release of a detached node frees it.
  auto* e = new TVnDOMElement();
  e->SetQualifiedName(u"x");
  e->AddElement(u"child")->AddText(u"t");
  e->As<IVnDOMElement>();  // taken and dropped: frees e and its subtree (LeakSanitizer checks)
  // A node that never had an interface half can't be released.
  TVnDOMElement plain;
  EXPECT_EQ(test::MessageOf([&] { plain._Release(); }), cVnDomNoImpl);
}

TEST_F(DomRootLifetime, RemovedNodeSurvivesWithAnInterfaceAndIsFreedWithout) {
  TVnDOMElement* a = root->AddElement(u"a");
  a->AddElement(u"inner");
  IPtr<IVnDOMElement> held = a->As<IVnDOMElement>();
  root->RemoveChild(a);
  EXPECT_EQ((std::tuple{root->ElementCount(), a->GetDOMDocument(), a->GetParent(), bool(held->ParentNode()),
                        held->ElementCount()}),
            std::tuple(0, nullptr, nullptr, false, 1));
  held = nullptr;  // now a goes

  // Without an interface a removed child is freed.
  for (int i = 0; i < 3; ++i) root->AddElement(u"a")->AddAttribute(u"k");
  root->RemoveChild(root->FirstElement());
  root->Clear();
  EXPECT_FALSE(root->HasChilds());
}

TEST(DomLifetime, FreeingAHeldDocumentRaisesDeletingDetachesObjectsAnswerForTheirImpl) {
  auto* doc = new TVnDOMDocument();
  TVnDOMElement* root = doc->CreateRootNode(u"root");
  IPtr<IVnDOMElement> held = root->AddElement(u"a")->As<IVnDOMElement>();
  EXPECT_EQ(test::MessageOf([&] { doc->Free(); }), Format(cVnDomDestroyedWhileCounted, {u"TVnDOMDocument"}));
  // The refused free left everything in place.
  EXPECT_EQ(held->ParentNode()->GetQualifiedName(), u"root");
  held = nullptr;
  doc->Free();

  // Delete never raises: the held subtree lives on, detached.
  auto deleted = std::make_unique<TVnDOMDocument>();
  held = deleted->CreateRootNode(u"root")->AddElement(u"a")->As<IVnDOMElement>();
  deleted.reset();
  EXPECT_EQ((std::tuple{bool(held->Document()), held->GetQualifiedName()}), std::tuple(false, u"a"));

  // The object answers the interfaces its Impl declines.
  auto* e = new TExtraElement();
  e->SetQualifiedName(u"x");
  IPtr<IVnDOMElement> i = e->As<IVnDOMElement>();
  EXPECT_FALSE(i.As<ITestExtra>());  // the Impl alone does not know it
  IPtr<ITestExtra> extra = e->As<ITestExtra>();
  ASSERT_TRUE(extra);
  EXPECT_EQ((std::tuple{extra->Answer(), TVnDOMObjectImpl::Node(extra.Get())}), std::tuple(42, e));
  i = nullptr;
  extra = nullptr;  // the shared count ends here and frees e
}

TEST_F(DomRootLifetime, ListsOwnedByNodeLiveWithNodeAndCallerListsWithInterface) {
  root->AddElement(u"a");
  EXPECT_EQ(root->As<IVnDOMElement>()->GetElements()->Count(), 1);  // an interface list, released at once
  EXPECT_EQ(root->GetElements()->Count(), 1);  // the node's list is still there
  // A caller's list goes with its last interface.
  EXPECT_EQ(root->As<IVnDOMElement>()->CreateElementList(u"*", true)->Count(), 2);
}

TEST_F(DomRootLifetime, CloneThroughInterfaceBelongsToTheInterface) {
  root->AddElement(u"a")->SetAttribute(u"k", u"v");
  IPtr<IVnDOMNode> clone;
  root->As<IVnDOMNode>()->CloneNode(true, clone);
  EXPECT_EQ((std::tuple{bool(clone->ParentNode()), clone->NodeCount()}), std::tuple(false, 1));
}

TEST(DomLifetime, DeepTreesAreBuiltHeldAndFreedWithoutRecursion) {
  constexpr int kDepth = 100000;
  auto doc = std::make_unique<TVnDOMDocument>();
  TVnDOMElement* e = doc->CreateRootNode(u"r");
  for (int i = 0; i < kDepth; ++i) e = e->AddElement(u"d");
  EXPECT_EQ(e->As<IVnDOMElement>()->GetQualifiedName(), u"d");  // an Impl on every ancestor, released at once
  auto clone = doc->GetRootNode()->CloneNode(true);
  EXPECT_EQ(clone->NodeCount(), 1);
  clone.reset();
  doc.reset();
}

}  // namespace
}  // namespace vn
