// Fuzz target of the document: any bytes load or fail with the library's own exception. What
// loads must survive its own outputs: the plain text, the UTF-8 and the UTF-16 bytes each load
// again (no exception is allowed there) and give the same plain text. The forgiving reader takes
// nearly anything for a name; the writer refuses a name or text it couldn't read back, and then every
// output must refuse it alike. The formatted text loads
// too and gives the plain text but for white space (indentation beside mixed content becomes
// text); it is checked on trees of bounded depth only, its indentation being quadratic in depth.
// A load that defers its nodes gives the tree of one that makes them all at once: read as it
// is, and after a change that makes the deferred part whole (same failures, same nodes, names,
// namespaces and space handling). Its JSON is the whole load's too, written before any node is
// made (from the load's records) and after the root alone was opened.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "vnxml/common/exception.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "dom/tree_builder.h"
#include "vnxml/dom.h"
#include "vnxml/dom_json_writer.h"

namespace {
constexpr int cFormattedDepth = 64;

// The depth of the tree (the walk is iterative: the trees here can be as deep as the input is long).
int Depth(vn::TVnDOMNode* ARoot) {
  int deepest = 0;
  std::vector<std::pair<vn::TVnDOMNode*, int>> stack{{ARoot, 0}};
  while (!stack.empty()) {
    auto [node, depth] = stack.back();
    stack.pop_back();
    deepest = std::max(deepest, depth);
    for (vn::Integer i = 0; i < node->NodeCount(); ++i) stack.emplace_back(node->ChildAt(i), depth + 1);
  }
  return deepest;
}

vn::UnicodeString WithoutSpace(vn::UnicodeString AText) {
  std::erase_if(AText, [](char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; });
  return AText;
}

// Where two texts part, with some context; fuzzed texts are too long to print whole.
std::string Around(const vn::UnicodeString& AText, size_t AAt) {
  const size_t from = AAt < 40 ? 0 : AAt - 40;
  std::string out;
  for (char16_t c : AText.substr(from, 80)) {
    char hex[8];
    std::snprintf(hex, sizeof hex, c >= 0x20 && c < 0x7F ? "%c" : "\\u%04X", static_cast<unsigned>(c));
    out += hex;
  }
  return out;
}

void Expect(bool AHolds, const char* AWhat, const vn::UnicodeString& AWant, const vn::UnicodeString& AGot) {
  if (AHolds) return;
  size_t at = 0;
  while (at < AWant.size() && at < AGot.size() && AWant[at] == AGot[at]) ++at;
  std::fprintf(stderr, "round trip: %s, at %zu of %zu/%zu\nwant: %s\ngot:  %s\n", AWhat, at, AWant.size(),
               AGot.size(), Around(AWant, at).c_str(), Around(AGot, at).c_str());
  std::abort();
}

// The tree as text: each node's kind, name, namespace, space handling and child count, then the
// document's XML (or the writer's refusal). Reading it makes a deferred tree's nodes.
std::string Dump(vn::TVnDOMDocument& ADoc) {
  std::u16string out;
  std::vector<vn::TVnDOMNode*> stack{&ADoc};
  while (!stack.empty()) {
    vn::TVnDOMNode* n = stack.back();
    stack.pop_back();
    out += vn::IntToStr(static_cast<int>(n->GetNodeType())) + u"|" + n->GetQualifiedName() + u"|";
    try {
      out += n->GetNamespaceURI();
    } catch (const vn::Exception& e) {
      out += u"!" + e.Message();
    }
    out += (n->GetPreserveSpace() ? u"|p|" : u"|-|") + vn::IntToStr(n->NodeCount()) + u"\n";
    for (vn::Integer i = n->NodeCount(); i-- > 0;) stack.push_back(n->ChildAt(i));
  }
  try {
    out += ADoc.GetXML();
  } catch (const vn::Exception& e) {
    out += u"!" + e.Message();
  }
  return vn::UnicodeToUtf8(out);
}

// The document of ABytes loaded with or without deferred nodes, AChange applied; the dump, or
// the failure.
template <class AChange>
std::string LoadAndDump(std::string_view ABytes, bool ADefer, AChange AChangeIt) {
  vn::TVnDOMDocument doc;
  doc.SetDeferChildren(ADefer);
  try {
    vn::TVnStringStream in(ABytes, vn::cVnCodePageDefault);
    doc.LoadFromStream(in);
  } catch (const vn::Exception& e) {
    return "failed: " + vn::UnicodeToUtf8(e.Message()) + "\n" + Dump(doc);
  }
  AChangeIt(doc);
  return Dump(doc);
}

// The document of ABytes as compact JSON in ACodePage (formatted when AFormatted), or the
// failure; with AOpenRoot the root's children are made first.
std::string LoadAsJson(std::string_view ABytes, bool ADefer, bool AOpenRoot, bool AFormatted, vn::Word ACodePage) {
  vn::TVnDOMDocument doc;
  doc.SetDeferChildren(ADefer);
  std::string out;
  try {
    vn::TVnStringStream in(ABytes, vn::cVnCodePageDefault);
    doc.LoadFromStream(in);
  } catch (const vn::Exception& e) {
    out = "failed: " + vn::UnicodeToUtf8(e.Message()) + "\n";
  }
  if (AOpenRoot && doc.GetRootNode()) (void)doc.GetRootNode()->ElementCount();
  vn::TVnStringStream json(ACodePage);
  try {
    vn::SaveToJSONStream(static_cast<const vn::TVnDOMNode&>(doc), json, ACodePage, AFormatted);
  } catch (const vn::Exception& e) {
    out += "failed: " + vn::UnicodeToUtf8(e.Message()) + "\n";
  }
  return out + std::string(json.GetBytesView());
}

void ExpectSameDump(const std::string& AWant, const std::string& AGot, const char* AWhat) {
  if (AWant == AGot) return;
  Expect(false, AWhat, vn::Utf8ToUnicode(AWant), vn::Utf8ToUnicode(AGot));
}

// UTF-8 has no form for a lone surrogate: it comes back as U+FFFD.
vn::UnicodeString PairedOnly(vn::UnicodeString AText) {
  for (size_t i = 0; i < AText.size(); ++i) {
    const bool high = AText[i] >= 0xD800 && AText[i] < 0xDC00, low = AText[i] >= 0xDC00 && AText[i] < 0xE000;
    if (high && i + 1 < AText.size() && AText[i + 1] >= 0xDC00 && AText[i + 1] < 0xE000)
      ++i;
    else if (high || low)
      AText[i] = u'\uFFFD';
  }
  return AText;
}

// The document's bytes in ACodePage, behind a byte-order mark so that loading needs no guess.
vn::UnicodeString ReloadBytes(vn::TVnDOMDocument& ADoc, vn::Word ACodePage) {
  vn::TVnStringStream out(ACodePage);
  ADoc.SaveToStream(out, ACodePage, false, true);
  out.SetPosition(0);
  vn::TVnDOMDocument again;
  again.LoadFromStream(out);
  return again.GetXML();
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* AData, size_t ASize) {
  std::string_view bytes(reinterpret_cast<const char*>(AData), ASize);
  {
    vn::detail::SmallContentBytes = 0;  // fuzzed inputs are small: every level waits for its reader
    auto none = [](vn::TVnDOMDocument&) {};
    ExpectSameDump(LoadAndDump(bytes, false, none), LoadAndDump(bytes, true, none), "deferred nodes as read");
    // A change below the root: the root opens one level, the changed element's part whole.
    auto change = [](vn::TVnDOMDocument& ADoc) {
      vn::TVnDOMElement* root = ADoc.GetRootNode();
      if (!root || !root->ElementCount()) return;
      try {
        root->FirstElement()->SetAttribute(u"fz", u"1");
      } catch (const vn::Exception&) {
      }
    };
    ExpectSameDump(LoadAndDump(bytes, false, change), LoadAndDump(bytes, true, change), "deferred nodes changed");
    // formatted JSON grows with the square of the depth; fuzzed inputs are short
    for (const bool formatted : {false, ASize < 1024}) {
      const std::string whole = LoadAsJson(bytes, false, false, formatted, vn::cVnCodePageUTF8);
      ExpectSameDump(whole, LoadAsJson(bytes, true, false, formatted, vn::cVnCodePageUTF8), "JSON of deferred nodes");
      ExpectSameDump(whole, LoadAsJson(bytes, true, true, formatted, vn::cVnCodePageUTF8),
                     "JSON of deferred nodes, the root open");
    }
    // UTF-16 output decodes the values that UTF-8 output copies
    const std::string wide = LoadAsJson(bytes, false, false, false, vn::cVnCodePageUTF16LE);
    if (wide != LoadAsJson(bytes, true, false, false, vn::cVnCodePageUTF16LE)) {
      std::fprintf(stderr, "round trip: UTF-16 JSON of deferred nodes\n");
      std::abort();
    }
  }
  vn::TVnDOMDocument doc;
  try {
    vn::TVnStringStream in(bytes, vn::cVnCodePageDefault);
    doc.LoadFromStream(in);
  } catch (const vn::Exception&) {
    return 0;  // bad input, told in the library's own way
  }
  vn::UnicodeString plain;
  try {
    plain = doc.GetXML();
  } catch (const vn::EVnDomInvalidCharacter&) {
    // A name or text the writer can't give back: the byte outputs must refuse it too.
    for (vn::Word cp : {vn::cVnCodePageUTF8, vn::cVnCodePageUTF16LE}) {
      try {
        ReloadBytes(doc, cp);
        Expect(false, "a byte output wrote what the text output refused", u"", u"");
      } catch (const vn::EVnDomInvalidCharacter&) {
      }
    }
    return 0;
  }
  const int depth = Depth(&doc);
  {
    vn::TVnDOMDocument again;
    again.LoadXML(plain);
    Expect(again.GetXML() == plain, "the plain text reloads to itself", plain, again.GetXML());
  }
  Expect(ReloadBytes(doc, vn::cVnCodePageUTF8) == PairedOnly(plain), "the UTF-8 bytes reload", PairedOnly(plain),
         ReloadBytes(doc, vn::cVnCodePageUTF8));
  Expect(ReloadBytes(doc, vn::cVnCodePageUTF16LE) == plain, "the UTF-16 bytes reload", plain,
         ReloadBytes(doc, vn::cVnCodePageUTF16LE));
  if (depth <= cFormattedDepth) {
    const vn::UnicodeString formatted = doc.GetFormattedXML();
    vn::TVnDOMDocument again;
    again.LoadXML(formatted);
    Expect(WithoutSpace(again.GetXML()) == WithoutSpace(plain), "the formatted text reloads", plain,
           again.GetXML());
  }
  return 0;
}
