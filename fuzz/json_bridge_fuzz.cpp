// Fuzz target of the bridges: arbitrary JSON through the SAX bridge into the XML tree and out
// as JSON again. The first byte picks the input's code page; the rest is the text. Oracles:
// the loader's own road and a derived parser's (which hears every event) build the same tree
// and fail alike; a loaded tree saves as XML that loads back, and then stays; its JSON, compact
// and (for shallow trees) formatted, is read by the JSON document alike and loads through the
// bridge again; UTF-8 output of a tree loaded from UTF-8 is the text form's bytes. Any exception but the library's own is a finding.
#include <cstdint>
#include <cstdio>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "vnxml/common/code_page.h"
#include "vnxml/common/exception.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"
#include "vnxml/dom_json_writer.h"
#include "vnxml/dom_parser.h"
#include "vnxml/json_document.h"

namespace {

[[noreturn]] void Finding(const std::string& AWhat) {
  std::fprintf(stderr, "json_bridge_fuzz: %s\n", AWhat.c_str());
  std::abort();
}

class HearingParser : public vn::TVnDOMParser {
 public:
  using TVnDOMParser::TVnDOMParser;
};

// The failure's class and message, empty when the load went through.
template <class Fn>
std::string Failure(Fn&& ALoad) {
  try {
    ALoad();
  } catch (const vn::Exception& e) {
    return vn::UnicodeToUtf8(e.ClassName()) + ": " + e.what();
  }
  return {};
}

// Formatted text grows with the square of the depth: only shallow trees are written so.
size_t Depth(vn::TVnDOMNode* ANode) {
  size_t deepest = 0;
  std::vector<std::pair<vn::TVnDOMNode*, size_t>> stack{{ANode, 1}};
  while (!stack.empty()) {
    auto [n, d] = stack.back();
    stack.pop_back();
    deepest = std::max(deepest, d);
    for (vn::TVnDOMNode* c : n->ChildrenView()) stack.push_back({c, d + 1});
  }
  return deepest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* AData, size_t ASize) {
  if (ASize == 0) return 0;
  static const vn::Word cCodePages[] = {vn::cVnCodePageUTF8, vn::cVnCodePageUTF16LE, 0};
  const vn::Word codePage = cCodePages[AData[0] % 3];
  // A text whose first significant character is "<" loads as XML: the bridge is what is fuzzed
  // here (the XML reader has a target of its own).
  for (size_t i = 1; i < ASize; ++i) {
    const uint8_t c = AData[i];
    if (c <= 0x20) continue;  // blanks, as the loader passes them
    if (c == '<') return 0;
    break;
  }
  std::string bytes = "\n" + std::string(reinterpret_cast<const char*>(AData + 1), ASize - 1);
  if (codePage == vn::cVnCodePageUTF16LE) bytes.insert(1, 1, '\0');

  vn::TVnDOMDocument fast, heard;
  const std::string failFast =
      Failure([&] { fast.LoadFromStream(*std::make_unique<vn::TVnMemoryStream>(bytes.data(), vn::Int64(bytes.size())), codePage); });
  const std::string failHeard = Failure([&] {
    HearingParser parser(&heard);
    parser.Parse(bytes.data(), static_cast<vn::Int64>(bytes.size()), codePage);
  });
  if (failFast != failHeard) Finding("the two roads fail differently: " + failFast + " / " + failHeard);
  // A text that still loads as XML (behind a byte-order mark, say) may give names that XML
  // output refuses: both roads refuse alike then.
  vn::UnicodeString xml, heardXml;
  const std::string failOut = Failure([&] { xml = fast.GetXML(); });
  if (failOut != Failure([&] { heardXml = heard.GetXML(); })) Finding("the two roads write differently");
  if (!failOut.empty()) return 0;
  if (xml != heardXml) Finding("the two roads build different trees");
  vn::TVnDOMElement* root = fast.GetRootNode();
  if (!root) return 0;

  // The XML of a tree from JSON loads back: names and text are well formed. An empty string's
  // text node has no XML of its own, so the text it loads to is the one that stays.
  vn::TVnDOMDocument again, third;
  const std::string failXml = Failure([&] { again.LoadXML(xml); });
  if (!failXml.empty()) Finding("the tree's XML doesn't load: " + failXml);
  third.LoadXML(again.GetXML());
  if (third.GetXML() != again.GetXML()) Finding("the tree's XML loads as another tree");

  // Its JSON is JSON: the document reads compact and formatted text alike, and the bridge
  // takes it again.
  const bool shallow = Depth(root) <= 64;
  vn::UnicodeString read[2];
  for (const bool formatted : {false, true}) {
    if (formatted && !shallow) continue;
    const vn::UnicodeString json = vn::GetJSON(*root, formatted);
    vn::TVnJSONDocument doc;
    const std::string failJson = Failure([&] {
      vn::TVnMemoryStream in(json.data(), static_cast<vn::Int64>(json.size() * 2));
      doc.LoadFromStream(in, vn::cVnCodePageUTF16LE, false);
    });
    if (!failJson.empty()) Finding("the tree's JSON doesn't read: " + failJson);
    read[formatted] = doc.GetAsJSON();
    vn::TVnDOMDocument bridged;
    const std::string failBridge = Failure([&] { bridged.LoadXML(json); });
    if (!failBridge.empty()) Finding("the tree's JSON doesn't load through the bridge: " + failBridge);
  }
  if (shallow && read[0] != read[1]) Finding("compact and formatted JSON read differently");

  // A tree loaded from UTF-8 keeps its values as bytes, and UTF-8 output copies them on their
  // own road: its bytes are those of the text form.
  vn::TVnDOMDocument bytesTree;
  vn::TVnStringStream xmlBytes(vn::UnicodeToUtf8(again.GetXML()), vn::cVnCodePageDefault);
  bytesTree.LoadFromStream(xmlBytes);
  if (vn::TVnDOMElement* r = bytesTree.GetRootNode()) {
    vn::TVnStringStream out(vn::cVnCodePageUTF8);
    vn::SaveToJSONStream(*r, out, vn::cVnCodePageUTF8, false);
    if (std::string(out.GetBytesView()) != vn::UnicodeToUtf8(vn::GetJSON(*r)))
      Finding("UTF-8 JSON output differs from the text form");
  }
  return 0;
}
