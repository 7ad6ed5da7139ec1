// Fuzz target of the JSON path language. Byte 0 picks the options (bit 0 jsoCreate, bit 1
// jsoCaseInsensitive, bit 2 jsoRaise) and bits 3-4 the node called on; the rest is the path in
// UTF-8, run against a fixed document. The same path run twice gives the same nodes; with
// jsoCreate a second run creates nothing new; the document still saves and reloads to the same
// text (unless creation named a member with a character the writer escapes). A library
// exception is an answer (the second run must give the same one); anything else, or a crash,
// is a finding.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "vnxml/common/utf.h"
#include "vnxml/json_path.h"

namespace {

constexpr char16_t kDocument[] =
    u"{\"store\":{\"book\":[{\"title\":\"A\",\"price\":8.95,\"tags\":[\"x\",\"y\"]},{\"title\":\"B\",\"price\":12},"
    u"{\"title\":\"C\",\"price\":\"na\",\"isbn\":null},{\"Title\":\"d\",\"ok\":true}],\"bicycle\":{\"color\":\"red\","
    u"\"price\":19.95}},\"a.b\":[1,[2,[3,[4]]]],\"0\":\"zero\",\"e\":{},\"f\":[],\"t\":false,\"s\":\"\\u00e9\\\"\"}";

struct Outcome {
  std::vector<vn::TVnJSONBase*> Nodes;
  std::optional<vn::UnicodeString> Failure;  // class and message of a library exception
};

Outcome Run(vn::TVnJSONBase& ANode, std::u16string_view APath, vn::TVnJDOCSelectOptions AOptions) {
  Outcome out;
  try {
    std::unique_ptr<vn::TVnJSONArray> list = ANode.CreateNodeList(APath, AOptions);
    for (vn::Integer i = 0; i < list->ChildCount(); ++i) out.Nodes.push_back(list->Child(i));
  } catch (const vn::Exception& e) {
    out.Failure = e.ClassName() + u": " + e.Message();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "foreign exception: %s\n", e.what());
    std::abort();
  }
  return out;
}

void Check(bool ACondition, const char* AWhat, std::u16string_view APath) {
  if (ACondition) return;
  std::fprintf(stderr, "%s: %s\n", AWhat, vn::UnicodeToUtf8(APath).c_str());
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* AData, size_t ASize) {
  if (ASize < 1 || ASize > 4096) return 0;
  vn::TVnJDOCSelectOptions options;
  if (AData[0] & 1) options.Include(vn::jsoCreate);
  if (AData[0] & 2) options.Include(vn::jsoCaseInsensitive);
  if (AData[0] & 4) options.Include(vn::jsoRaise);
  const std::u16string path =
      vn::Utf8ToUnicode(std::string_view(reinterpret_cast<const char*>(AData + 1), ASize - 1));

  // Unions multiply repeats: a low limit keeps each run small, and the limit's failure is an answer.
  vn::VnSetJSONPathSelectionLimit(1 << 16);
  vn::TVnJSONDocument doc(kDocument);
  vn::TVnJSONBase* contexts[] = {&doc, doc.GetRootValue(), doc.SelectSingleNode(u"$.store.book"),
                                 doc.SelectSingleNode(u"$.store.book[0]")};
  vn::TVnJSONBase& context = *contexts[(AData[0] >> 3) & 3];

  const Outcome first = Run(context, path, options);
  const vn::UnicodeString after = doc.GetAsJSON();
  const Outcome second = Run(context, path, options);
  Check(doc.GetAsJSON() == after, "a second run changed the tree", path);
  Check(second.Failure == first.Failure || options.Contains(vn::jsoCreate), "the runs failed differently", path);
  if (options.Contains(vn::jsoCreate)) {
    // The first run may have made what the second found; from then on runs agree.
    const Outcome third = Run(context, path, options);
    Check(third.Nodes == second.Nodes && third.Failure == second.Failure, "the runs selected differently", path);
  } else {
    Check(second.Nodes == first.Nodes, "the runs selected differently", path);
  }
  // A name is stored raw and encoded on output, so a member that creation named with a
  // character the writer escapes gains a backslash at each save and load: the tree's rule.
  if (options.Contains(vn::jsoCreate))
    for (char16_t c : path)
      if (c < 0x20 || c > 0x7E || c == u'\\' || c == u'"' || c == u'/') return 0;
  vn::TVnJSONDocument reloaded(after);
  Check(reloaded.GetAsJSON() == after, "the tree no longer reloads as saved", path);
  return 0;
}
