// What the walker writes: member selection, cycles, components, parameters, nesting.
#include <gtest/gtest.h>

#include "../serial_domain.h"
#include "common/message_of.h"
#include "vnxml/common/classes.h"
#include "vnxml/xml_serializer.h"

namespace walker {

using namespace vn;

class TPicky : public TObject {
  VN_DECLARE_CLASS(TPicky, TObject)
 public:
  Integer Get() const { return 1; }
  Integer FPrivate = 2, FHidden = 3, FRenamed = 4, Same = 5, Plain = 6;
};
VN_REGISTER_TYPE(TPicky, u"uWalker") {
  b.Published(u"Pub", &TPicky::Get)
      .Public(u"PublicBare", &TPicky::Get).Public(u"PublicNamed", &TPicky::Get).Attr<SerializerHint>(shoName, u"x")
      .Published(u"PubHidden", &TPicky::Get).Attr<SerializerHint>(shoName, u"")
      .Public(u"Same", &TPicky::Get).Attr<SerializerHint>(shoDoNotSerialize)
      .Private(u"FPrivate", &TPicky::FPrivate).Public(u"FHidden", &TPicky::FHidden).Attr<SerializerHint>(shoName, u"")
      .Public(u"FRenamed", &TPicky::FRenamed).Attr<SerializerHint>(shoName, u"y")
      .Public(u"Same", &TPicky::Same).Public(u"Plain", &TPicky::Plain);
}

/// A node of a chain: Next is owned, Back and Peer are not.
class TNode : public TObject {
  VN_DECLARE_CLASS(TNode, TObject)
 public:
  TNode() = default;
  TNode(const TNode&) = delete;
  TNode& operator=(const TNode&) = delete;
  ~TNode() override { test::DeleteChain(Next, &TNode::Next); }
  TNode* Next = nullptr;
  TObject* Back = nullptr;
  serialdomain::TAddress* PeerA = nullptr;
  serialdomain::TAddress* PeerB = nullptr;
  TComponent* Part = nullptr;
  TValue Boxed;
};
VN_REGISTER_TYPE(TNode, u"uWalker") { b VN_TEST_PUBLIC(TNode, Next, Back, PeerA, PeerB, Part, Boxed); }

/// Takes part in its own serialization: locked while it is written or read.
class TGuarded : public TVnSerializableObject {
  VN_DECLARE_CLASS(TGuarded, TVnSerializableObject)
 public:
  Integer N = 0;
};
VN_REGISTER_TYPE(TGuarded, u"uWalker") { b.Public(u"N", &TGuarded::N); }

/// The XML of AValue without namespaces, and with AParam "true" too (by default the same again).
std::string BareValue(const TValue& AValue, const char16_t* AParam = u"excludenamespaces") {
  return test::SerializeWith(dsfXML, AValue, {{u"excludenamespaces", u"true"}, {AParam, u"true"}});
}
std::string Bare(TObject* AObject, const char16_t* AParam = u"excludenamespaces") {
  return BareValue(TValue::FromObject(AObject), AParam);
}

TEST(Walker, MembersAreChosenByVisibilityHintsAndFirstName) {
  TPicky picky;
  EXPECT_EQ(Bare(&picky), "<object><Pub>1</Pub><x>1</x><FRenamed>4</FRenamed><Plain>6</Plain></object>");
}

TEST(Walker, CyclesEndAndSharedObjectsAreWrittenTwice) {
  TNode root;
  auto* child = new TNode();
  root.Next = child;
  child->Back = &root;  // back to the grandparent's level: left out
  serialdomain::TAddress shared(u"S");
  child->PeerA = child->PeerB = &shared;
  EXPECT_EQ(Bare(&root), "<object><Next><Next/><PeerA><City>S</City><Zip>0</Zip></PeerA>"
                         "<PeerB><City>S</City><Zip>0</Zip></PeerB><Part></Part></Next>"
                         "<Back/><PeerA/><PeerB/><Part></Part></object>");
}

TEST(Walker, ComponentsOwnedElsewhereAreWrittenByName) {
  TComponent owner;
  owner.SetName(u"Boss");
  TNode node;
  auto* part = new TComponent(&owner);
  part->SetName(u"Wheel");
  node.Part = part;
  node.Boxed = TValue::From<Integer>(7);
  EXPECT_EQ(Bare(&node), "<object><Next/><Back/><PeerA/><PeerB/><Part>Wheel</Part><Boxed>7</Boxed></object>");
  // With type attributes, the boxed integer is written under the integer's type.
  EXPECT_NE(VnSerialize(dsfXML, &node).find("<Boxed xsi:type=\"xsd:int\">7</Boxed>"), std::string::npos);
}

TEST(Walker, ParametersAndRootShapes) {
  serialdomain::TAll all;
  serialdomain::Fill(all, 0);
  const std::string simple = Bare(&all, u"excludechildren");
  EXPECT_EQ(simple.find("<City>"), std::string::npos);
  EXPECT_NE(simple.find("<Places><TAddress></TAddress><TAddress></TAddress></Places>"), std::string::npos);
  EXPECT_EQ(simple.find("<Point>"), std::string::npos);
  EXPECT_EQ(Bare(all.Home, u"excluderoot"), "<City>Rome</City><Zip>100</Zip>");

  struct Case { TValue Value; const char* Text; } cases[] = {
      {TValue::From<Integer>(5), "5"}, {TValue::From<UnicodeString>(u"a<b"), "a&lt;b"},
      {TValue::From(std::vector<Integer>{}), "<array></array>"},
      {TValue::From(std::vector<Integer>{1, 2}), "<array><int>1</int><int>2</int></array>"},
      {TValue::From(serialdomain::TPoint{1, 2, u"p"}), "<record><X>1</X><Y>2</Y><Label>p</Label></record>"},
  };
  for (const Case& c : cases) EXPECT_EQ(BareValue(c.Value), c.Text);
}

TEST(Walker, NamespacesAndNilFollowTheParameters) {
  serialdomain::TAddress address(u"Rome");
  EXPECT_EQ(test::SerializeWith(dsfXML, TValue::FromObject(&address), {{u"xmlns", u"urn:demo"}, {u"xsi-prefix", u"i"}}),
            "<object xmlns:i=\"http://www.w3.org/2001/XMLSchema-instance\" xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\" "
            "i:type=\"xsd:TAddress\" xmlns=\"urn:demo\"><City i:type=\"xsd:string\">Rome</City>"
            "<Zip i:type=\"xsd:int\">0</Zip></object>");
  TNode node;
  EXPECT_NE(VnSerialize(dsfXML, &node).find("<Next xsi:type=\"xsd:TNode\" xsi:nil=\"true\"/>"), std::string::npos);
}

TEST(Walker, DeepChainsEndInAnErrorNotACrash) {
  TNode root;
  TNode* last = &root;
  for (int i = 0; i < cVnMaxNesting + 5; ++i) last = last->Next = new TNode();
  EXPECT_TRUE(test::MessageOf<EVnSerializeException>([&] { VnSerialize(dsfXML, &root); })
                  .ends_with(u"The nesting is too deep!"));
}

TEST(Walker, HostHooksRunAndLocksAreLeftAlsoOnFailure) {
  TGuarded guarded;
  guarded.N = 3;
  EXPECT_EQ(Bare(&guarded), "<object><N>3</N></object>");
  EXPECT_FALSE(guarded.GetSerializing());
  EXPECT_THROW(VnDeserialize(dsfXML, TValue::FromObject(&guarded), "<object><N>x</N></object>"), Exception);
  EXPECT_FALSE(guarded.GetDeserializing());
  VnDeserialize(dsfXML, TValue::FromObject(&guarded), "<object N=\"5\"/>");
  EXPECT_EQ(guarded.N, 5);
}

TEST(Walker, ComponentsNameTheirOwner) {
  TComponent owner;
  owner.SetName(u"Shop");
  auto* part = new TComponent(&owner);
  part->SetName(u"Till");
  EXPECT_EQ(Bare(part), "<object><Owner>Shop</Owner><Name>Till</Name><Tag>0</Tag></object>");
  TComponent copy;
  VnDeserialize(dsfXML, TValue::FromObject(&copy), Bare(part));
  EXPECT_EQ(copy.GetName(), u"Till");
}

}  // namespace walker
