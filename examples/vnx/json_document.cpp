// The JSON halves of vnx format and vnx check: the input loads into a JSON document.
#include <cstdio>

#include "commands.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_document.h"
#include "vnxml/json_handler.h"
#include "vnxml/json_reader.h"

namespace vnx {

namespace {

// The tree handler, which also keeps where the reader stood when the text failed.
class PositionHandler : public vn::TVnJSONHandler {
 public:
  using vn::TVnJSONHandler::TVnJSONHandler;
  int Line = -1, Col = -1;
  void FatalError(vn::IVnJSONLocator* ALocator, std::u16string_view) override {
    Line = ALocator->GetLineNr();
    Col = ALocator->GetColNr();
  }
};

}  // namespace

int JsonFormat(vn::TStream& AStream, bool AFormatted, vn::Word ACodePage, bool ABOM) {
  try {
    vn::TVnJSONDocument doc;
    // A byte-order mark decides the encoding; without one the reader's NUL patterns do.
    doc.LoadFromStream(AStream);
    vn::TVnStringStream out(ACodePage);
    doc.SaveToStream(out, AFormatted, ACodePage, ABOM);
    if (AFormatted) out.Add(std::u16string_view(u"\r\n"));
    std::string_view text = out.GetBytesView();
    std::fwrite(text.data(), 1, text.size(), stdout);
  } catch (const vn::Exception& e) {
    std::fprintf(stderr, "%s\n", vn::UnicodeToUtf8(e.Message()).c_str());
    return kExitFailed;
  }
  return kExitOk;
}

int JsonCheck(vn::TStream& AStream, const std::string& APath) {
  vn::TVnJSONDocument doc;
  vn::TVnJSONReader reader;
  vn::IPtr<PositionHandler> handler(new PositionHandler(&reader, &doc));
  reader.SetContentHandler(vn::IPtr<vn::IVnJSONContentHandler>(handler.Get()));
  reader.SetErrorHandler(vn::IPtr<vn::IVnJSONErrorHandler>(handler.Get()));
  try {
    const vn::Word codePage = vn::VnGetCodePage(&AStream);
    reader.ParseStream(&AStream, codePage, vn::Utf8ToUnicode(APath));
  } catch (const vn::Exception& e) {
    std::fprintf(stderr, "%s: Line %d, column %d: %s\n", APath.c_str(), handler->Line, handler->Col,
                 Quoted(e.Message()).c_str());
    return kExitFailed;
  }
  // Count values with an explicit stack: documents may be deep.
  size_t values = 0;
  std::vector<vn::TVnJSONBase*> stack;
  if (doc.GetRootValue()) stack.push_back(doc.GetRootValue());
  while (!stack.empty()) {
    vn::TVnJSONBase* n = stack.back();
    stack.pop_back();
    if (n->NodeClass() != vn::detail::JSONNodeClass::Member) ++values;
    for (vn::Integer i = 0; i < n->ChildCount(); ++i) stack.push_back(n->Child(i));
  }
  std::printf("ok: %zu values\n", values);
  return kExitOk;
}

}  // namespace vnx
