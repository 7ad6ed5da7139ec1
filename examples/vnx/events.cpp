// vnx events: one line per event of the XML reader (JSON input: events_json.cpp), on standard
// output; a failure goes to standard error as "error <code> at <line>:<column>: <message>" with
// exit code 1.
#include <cstdio>

#include "commands.h"
#include "input_kind.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/sax.h"

namespace vnx {

namespace {

using SV = std::u16string_view;

class EventPrinter : public vn::TVnObject,
                     public vn::IVnSAXContentHandler,
                     public vn::IVnSAXLexicalHandler,
                     public vn::IVnSAXErrorHandler {
  VN_VNOBJECT_INTERFACES(vn::TVnObject, vn::IVnSAXContentHandler, vn::IVnSAXLexicalHandler, vn::IVnSAXErrorHandler)
 public:
  int Line = -1, Col = -1;

  void SetDocumentLocator(vn::IVnSAXLocator*) override { Put("SetDocumentLocator"); }
  void Characters(SV t) override { Put("Characters", {t}); }
  void EndDocument() override { Put("EndDocument"); }
  void EndElement(SV uri, SV local, SV qname) override { Put("EndElement", {uri, local, qname}); }
  void EndPrefixMapping(SV prefix) override { Put("EndPrefixMapping", {prefix}); }
  void IgnorableWhitespace(SV t) override { Put("IgnorableWhitespace", {t}); }
  void ProcessingInstruction(SV target, SV data) override { Put("ProcessingInstruction", {target, data}); }
  void SkippedEntity(SV name) override { Put("SkippedEntity", {name}); }
  void StartDocument() override { Put("StartDocument"); }
  void StartElement(SV uri, SV local, SV qname, vn::IVnSAXAttributes* attrs) override {
    std::string line = "StartElement " + Quoted(uri) + " " + Quoted(local) + " " + Quoted(qname);
    for (auto* a = attrs->FirstAttribute(); a; a = a->Next)
      line += " (" + Quoted(a->QName) + " " + Quoted(a->LocalName) + " " + Quoted(a->URI) + " " + Quoted(a->Value) + ")";
    Emit(line);
  }
  void StartPrefixMapping(SV prefix, SV uri) override { Put("StartPrefixMapping", {prefix, uri}); }

  void Comment(SV t) override { Put("Comment", {t}); }
  void StartCDATA() override { Put("StartCDATA"); }
  void StartDTD() override { Put("StartDTD"); }
  void StartEntity(SV name) override { Put("StartEntity", {name}); }
  void EndCDATA() override { Put("EndCDATA"); }
  void EndDTD() override { Put("EndDTD"); }
  void EndEntity(SV name) override { Put("EndEntity", {name}); }

  void Warning(vn::IVnSAXLocator*, SV) override {}
  void Error(vn::IVnSAXLocator*, SV) override {}
  // The reader frees its scanner after a failure: the place is taken while it still exists.
  void FatalError(vn::IVnSAXLocator* loc, SV) override {
    Line = loc->GetLineNr();
    Col = loc->GetColNr();
  }

 private:
  void Put(const char* AName, std::initializer_list<SV> AArgs = {}) {
    std::string line = AName;
    for (SV arg : AArgs) line += " " + Quoted(arg);
    Emit(line);
  }
  static void Emit(const std::string& ALine) {
    std::fwrite(ALine.data(), 1, ALine.size(), stdout);
    std::fputc('\n', stdout);
  }
};

}  // namespace

std::string Quoted(std::u16string_view AText) {
  std::string out = "\"";
  static const char kHex[] = "0123456789ABCDEF";
  for (size_t i = 0; i < AText.size(); ++i) {
    char16_t c = AText[i];
    switch (c) {
      case u'\\': out += "\\\\"; continue;
      case u'"': out += "\\\""; continue;
      case u'\n': out += "\\n"; continue;
      case u'\r': out += "\\r"; continue;
      case u'\t': out += "\\t"; continue;
      default: break;
    }
    if (c < 0x20 || c == 0x7F) {
      out += {'\\', 'x', kHex[c >> 4], kHex[c & 15]};
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      bool pair = c < 0xDC00 && i + 1 < AText.size() && AText[i + 1] >= 0xDC00 && AText[i + 1] <= 0xDFFF;
      if (pair) {
        out += vn::UnicodeToUtf8(AText.substr(i, 2));
        ++i;
      } else {
        out += {'\\', 'u', kHex[c >> 12], kHex[(c >> 8) & 15], kHex[(c >> 4) & 15], kHex[c & 15]};
      }
    } else {
      out += vn::UnicodeToUtf8(AText.substr(i, 1));
    }
  }
  return out + "\"";
}

int Events(const std::vector<std::string>& AArgs) {
  bool multiRoot = false;
  std::string path;
  std::vector<std::string> args = AArgs;
  const std::optional<InputKind> forced = TakeInputKindOption(args);
  for (const std::string& arg : args) {
    if (arg == "--multi-root")
      multiRoot = true;
    else if (path.empty())
      path = arg;
    else
      path.clear();
  }
  if (path.empty()) {
    std::fprintf(stderr, "usage: vnx events [--json|--xml] [--multi-root] FILE|-\n");
    return kExitUsage;
  }
  Input input;
  if (!input.Open(path)) {
    std::fprintf(stderr, "vnx: cannot read %s\n", path.c_str());
    return kExitUsage;
  }
  if (ChooseInputKind(forced, bytes) == InputKind::Json) return JsonEvents(bytes, path);
  vn::IPtr<EventPrinter> printer(new EventPrinter);
  vn::TVnSAXXMLReader reader;
  reader.SetContentHandler(vn::IPtr<vn::IVnSAXContentHandler>(printer.Get()));
  reader.SetLexicalHandler(vn::IPtr<vn::IVnSAXLexicalHandler>(printer.Get()));
  reader.SetErrorHandler(vn::IPtr<vn::IVnSAXErrorHandler>(printer.Get()));
  reader.SetCheckSingleRootElm(!multiRoot);
  try {
    // A byte-order mark decides as ParseFile would; the scanner reads the rest once.
    vn::Word codePage = vn::VnGetCodePage(&input.Stream());
    reader.ParseStream(&input.Stream(), codePage, vn::Utf8ToUnicode(path));
  } catch (const vn::EVnException& e) {
    std::fflush(stdout);
    std::fprintf(stderr, "error %d at %d:%d: %s\n", e.GetCode(), printer->Line, printer->Col,
                 Quoted(e.Message()).c_str());
    return kExitFailed;
  }
  return kExitOk;
}

}  // namespace vnx
