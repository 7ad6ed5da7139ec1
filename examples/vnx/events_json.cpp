// vnx events on JSON: one line per event of the JSON reader on standard output; a failure goes
// to standard error as "error <code> at <line>:<column>: <message>" with exit code 1.
#include <cstdio>

#include "commands.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_reader.h"

namespace vnx {

namespace {

using SV = std::u16string_view;

class JsonEventPrinter : public vn::TVnObject, public vn::IVnJSONContentHandler, public vn::IVnJSONErrorHandler {
  VN_VNOBJECT_INTERFACES(vn::TVnObject, vn::IVnJSONContentHandler, vn::IVnJSONErrorHandler)
 public:
  int Line = -1, Col = -1;

  void SetDocumentLocator(vn::IVnJSONLocator*) override { Emit("SetDocumentLocator"); }
  void StartDocument() override { Emit("StartDocument"); }
  void StartObject() override { Emit("StartObject"); }
  void StartMember(SV name) override { Emit("StartMember " + Quoted(name)); }
  void StartArray() override { Emit("StartArray"); }
  void Value(vn::TVnJSONSimpleDataType kind, SV text) override {
    static constexpr const char* kKinds[] = {"null", "string", "number", "boolean"};
    Emit(std::string("Value ") + kKinds[kind] + " " + Quoted(text));
  }
  void EndArray() override { Emit("EndArray"); }
  void EndMember() override { Emit("EndMember"); }
  void EndObject() override { Emit("EndObject"); }
  void EndDocument() override { Emit("EndDocument"); }
  void Warning(vn::IVnJSONLocator*, SV) override {}
  void Error(vn::IVnJSONLocator*, SV) override {}
  // The reader frees its scanner after a failure: the place is taken while it still exists.
  void FatalError(vn::IVnJSONLocator* loc, SV) override {
    Line = loc->GetLineNr();
    Col = loc->GetColNr();
  }

 private:
  static void Emit(const std::string& ALine) {
    std::fwrite(ALine.data(), 1, ALine.size(), stdout);
    std::fputc('\n', stdout);
  }
};

}  // namespace

int JsonEvents(const std::string& ABytes, const std::string& APath) {
  vn::IPtr<JsonEventPrinter> printer(new JsonEventPrinter);
  vn::TVnJSONReader reader;
  reader.SetContentHandler(vn::IPtr<vn::IVnJSONContentHandler>(printer.Get()));
  reader.SetErrorHandler(vn::IPtr<vn::IVnJSONErrorHandler>(printer.Get()));
  try {
    // A byte-order mark decides as ParseFile would; without one the reader's NUL patterns do.
    vn::TVnMemoryStream stream(ABytes.data(), static_cast<vn::Int64>(ABytes.size()));
    const vn::Word codePage = vn::VnGetCodePage(&stream);
    const auto skip = static_cast<size_t>(stream.GetPosition());
    reader.ParseBuffer(ABytes.data() + skip, static_cast<vn::Cardinal>(ABytes.size() - skip), codePage,
                       vn::Utf8ToUnicode(APath));
  } catch (const vn::Exception& e) {
    // The reader's failures carry their code; the end of the text and the encoding failure 0.
    const auto* coded = dynamic_cast<const vn::EVnException*>(&e);
    std::fflush(stdout);
    std::fprintf(stderr, "error %d at %d:%d: %s\n", coded ? coded->GetCode() : 0, printer->Line, printer->Col,
                 Quoted(e.Message()).c_str());
    return kExitFailed;
  }
  return kExitOk;
}

}  // namespace vnx
