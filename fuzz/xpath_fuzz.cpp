// Fuzz target of the path language. Byte 0 picks the options (case, name match, soCreate,
// soRaise) and the context; bytes 1-3 shape the document (depth or a long chain, width, and the
// seed of names, attributes and text); the rest is the path in UTF-8. The single form must give
// the first node of the list form, and without soCreate both forms leave the same tree. A
// library exception is an answer; anything else, or a crash, is a finding.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "vnxml/common/utf.h"
#include "vnxml/dom.h"
#include "vnxml/dom_path.h"

namespace {

// A small deterministic generator: the same bytes build the same document.
struct Shape {
  uint32_t State;
  size_t Nodes = 0;
  uint32_t Next(uint32_t AMod) {
    State = State * 1103515245u + 12345u;
    return (State >> 16) % AMod;
  }
};

constexpr const char* cNames[] = {"item", "name", "tag", "x:item", "x:tag", "deep", "Item", "a"};
constexpr size_t cMaxNodes = 1000;

void Element(std::string& AOut, Shape& AShape, int ADepth, int AWidth, bool AChain) {
  const char* name = cNames[AShape.Next(8)];
  ++AShape.Nodes;
  AOut += '<';
  AOut += name;
  const uint32_t attrs = AShape.Next(4);
  if (attrs & 1) AOut += " id='" + std::to_string(AShape.Next(5)) + "'";
  if (attrs & 2) AOut += " price='" + std::to_string(AShape.Next(20)) + ".5'";
  if (AShape.Next(6) == 0) AOut += " x:b='Two'";
  AOut += '>';
  switch (AShape.Next(5)) {
    case 0: AOut += "One"; break;
    case 1: AOut += "<!--c-->"; break;
    case 2: AOut += "<![CDATA[raw]]>"; break;
    case 3: AOut += "<?pi data?>"; break;
    default: break;
  }
  if (ADepth > 0) {
    const int children = AChain ? 1 : 1 + static_cast<int>(AShape.Next(static_cast<uint32_t>(AWidth)));
    for (int i = 0; i < children && AShape.Nodes < cMaxNodes; ++i) Element(AOut, AShape, ADepth - 1, AWidth, AChain);
  }
  AOut += "</";
  AOut += name;
  AOut += '>';
}

std::u16string Document(uint8_t ADepth, uint8_t AWidth, uint8_t ASeed) {
  Shape shape{ASeed};
  const bool chain = (ADepth & 0x80) != 0;
  const int depth = chain ? 64 + (ADepth & 0x7F) * 4 : ADepth % 8;
  std::string xml = "<?xml version='1.0'?><root xmlns:x='urn:x' a='1'";
  if (ASeed & 1) xml += " xmlns='urn:d'";
  xml += '>';
  Element(xml, shape, depth, 1 + AWidth % 6, chain);
  if (!chain) Element(xml, shape, depth / 2, 1 + AWidth % 6, false);
  xml += "<empty/></root>";
  return vn::Utf8ToUnicode(xml);
}

// The node's place as child positions from the document down (attributes are children too).
std::u16string Place(const vn::TVnDOMNode* ANode) {
  std::string place;
  for (const vn::TVnDOMNode* n = ANode; n->ParentNode(); n = n->ParentNode()) {
    const vn::TVnDOMNode* parent = n->ParentNode();
    vn::Integer i = 0;
    while (i < parent->NodeCount() && parent->ChildAt(i) != n) ++i;
    place = "/" + std::to_string(i) + place;
  }
  return vn::Utf8ToUnicode(place);
}

struct Answer {
  bool Raised = false;
  std::u16string Message;
  vn::TVnDOMNode* First = nullptr;
  std::u16string Tree;
};

template <class SelectFn>
Answer Ask(const std::u16string& AXml, bool AFromElement, SelectFn ASelect) {
  vn::TVnDOMDocument doc;
  doc.LoadXML(AXml);
  vn::TVnDOMNode* context = AFromElement ? static_cast<vn::TVnDOMNode*>(doc.GetRootNode()) : &doc;
  Answer answer;
  try {
    answer.First = ASelect(context);
  } catch (const vn::Exception& e) {
    answer.Raised = true;
    answer.Message = e.Message();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "unexpected exception: %s\n", e.what());
    std::abort();
  }
  // Nodes die with their document: keep what identifies the answer instead.
  if (answer.First) answer.Tree = Place(answer.First);
  try {
    answer.Tree += u"\n" + doc.GetXML();
  } catch (const vn::EVnDomInvalidCharacter& e) {
    answer.Tree += u"\n" + e.Message();  // soCreate made a name the writer won't write
  }
  answer.First = nullptr;
  return answer;
}

void Disagree(const char* AWhat, const Answer& AList, const Answer& ASingle) {
  std::fprintf(stderr, "single and list forms disagree: %s\nlist: %s %s\nsingle: %s %s\n", AWhat,
               vn::UnicodeToUtf8(AList.Message).c_str(), vn::UnicodeToUtf8(AList.Tree).c_str(),
               vn::UnicodeToUtf8(ASingle.Message).c_str(), vn::UnicodeToUtf8(ASingle.Tree).c_str());
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* AData, size_t ASize) {
  if (ASize < 4) return 0;
  const uint8_t mode = AData[0];
  const std::u16string xml = Document(AData[1], AData[2], AData[3]);
  const vn::UnicodeString path = vn::Utf8ToUnicode(std::string_view(reinterpret_cast<const char*>(AData + 4), ASize - 4));
  vn::TVnDOMSelectOptions options;
  if (mode & 1) options = options + vn::TVnDOMSelectOptions{vn::soCaseSensitive};
  if (mode & 2) options = options + vn::TVnDOMSelectOptions{vn::soLocalName};
  if (mode & 4) options = options + vn::TVnDOMSelectOptions{vn::soCreate};
  if (mode & 8) options = options + vn::TVnDOMSelectOptions{vn::soRaise};
  const bool fromElement = (mode & 16) != 0;

  const Answer list = Ask(xml, fromElement, [&](vn::TVnDOMNode* AContext) -> vn::TVnDOMNode* {
    auto nodes = vn::CreateNodeList(AContext, path, options);
    vn::TVnDOMNode* first = nullptr;
    for (vn::TVnDOMNode* n : *nodes) {
      (void)n->GetNodeValue();
      if (!first) first = n;
    }
    return first;
  });
  const Answer single = Ask(xml, fromElement, [&](vn::TVnDOMNode* AContext) -> vn::TVnDOMNode* {
    vn::TVnDOMNode* node = vn::SelectSingleNode(AContext, path, options);
    if (node) (void)node->GetNodeValue();
    return node;
  });
  // The single form may stop at its first find, before a later candidate fails: a failed list
  // says nothing of the single form. Otherwise both tell the same story.
  if (list.Raised) return 0;
  if (single.Raised) Disagree("only the single form raised", list, single);
  // With soCreate the single form may stop creating once its first alternative gives a node,
  // so only the first node is compared there.
  auto first = [](const Answer& A) { return A.Tree.substr(0, A.Tree.find(u'\n')); };
  const bool creates = (mode & 4) != 0;
  if (creates ? first(list) != first(single) : list.Tree != single.Tree)
    Disagree("another node or another tree", list, single);
  return 0;
}
