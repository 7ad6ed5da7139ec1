// Fuzz target of the form reader. The first byte picks the code page; the rest is the text.
// Oracle: the buffer, 8-bit text and the parser component with its form flag give the same
// events and the same ending; valid UTF-8 read as UTF-16 text gives them too; the events follow
// the grammar of the contract, the root is one object and every value a string. Any exception
// but the reader's own failures is a finding.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "vnxml/common/utf.h"
#include "vnxml/json_form_reader.h"
#include "vnxml/json_parser.h"

namespace {

using SV = std::u16string_view;

[[noreturn]] void Finding(const char* AWhat) {
  std::fprintf(stderr, "json_form_reader_fuzz: %s\n", AWhat);
  std::abort();
}

// Records the events and checks them against the grammar as they come.
class Recorder : public vn::TVnObject, public vn::IVnJSONContentHandler, public vn::IVnJSONErrorHandler {
  VN_VNOBJECT_INTERFACES(vn::TVnObject, vn::IVnJSONContentHandler, vn::IVnJSONErrorHandler)
 public:
  Recorder() { SetAutoDestroy(false); }
  std::u16string Trace;
  // Open constructs: 'a' array, 'o' object, 'm' member before its value, 'v' member after it.
  std::string Open;
  bool Started = false, Ended = false, Failed = false, Root = false;

  void SetDocumentLocator(vn::IVnJSONLocator*) override { Finding("SetDocumentLocator"); }
  void StartDocument() override {
    if (Started) Finding("two StartDocument");
    Started = true;
    Trace += u'<';
  }
  void EndDocument() override {
    if (!Open.empty() || Ended || !Root) Finding("EndDocument inside a value or without the root");
    Ended = true;
    Trace += u'>';
  }
  void StartObject() override {
    if (Open.empty()) {
      if (Root) Finding("a second top-level value");
      Root = true;
    }
    BeginValue('o', u'{');
  }
  void StartArray() override {
    if (Open.empty()) Finding("a top-level array");
    BeginValue('a', u'[');
  }
  void EndObject() override { End('o', u'}'); }
  void EndArray() override { End('a', u']'); }
  void StartMember(SV n) override {
    if (Open.empty() || Open.back() != 'o') Finding("StartMember outside an object");
    Open += 'm';
    Trace.append(u"m:").append(n).append(u"|");
  }
  void EndMember() override {
    if (Open.empty() || Open.back() != 'v') Finding("EndMember without one value");
    Open.pop_back();
    Trace += u'/';
  }
  void Value(vn::TVnJSONSimpleDataType k, SV v) override {
    if (k != vn::jdtString) Finding("a value that is not a string");
    if (Open.empty()) Finding("a top-level value");
    BeginValue(0, u's');
    Trace.append(v).append(u"|");
  }
  void Warning(vn::IVnJSONLocator*, SV) override {}
  void Error(vn::IVnJSONLocator*, SV) override {}
  void FatalError(vn::IVnJSONLocator* l, SV m) override {
    Failed = true;
    Trace.append(u"!").append(m).append(u"@") += vn::Utf8ToUnicode(std::to_string(l->GetLineNr()) + ":" +
                                                                std::to_string(l->GetColNr()));
  }

 private:
  void BeginValue(char AKind, char16_t AToken) {
    if (!Started || Ended) Finding("event outside the document");
    if (!Open.empty()) {
      if (Open.back() == 'm') Open.back() = 'v';
      else if (Open.back() != 'a') Finding("value where a member is due");
    }
    if (AKind) Open += AKind;
    Trace += AToken;
  }
  void End(char AKind, char16_t AToken) {
    if (Open.empty() || Open.back() != AKind) Finding("end without its start");
    Open.pop_back();
    Trace += AToken;
  }
};

bool IsOwnFailure(const vn::Exception& AError) {
  if (dynamic_cast<const vn::EVnTextParserEOF*>(&AError) || dynamic_cast<const vn::EConvertError*>(&AError)) return true;
  const vn::UnicodeString& m = AError.Message();
  static const vn::UnicodeString kMarkHead(vn::cVnFormOpeningMarkExpected.substr(0, 40));
  return m == vn::cVnFormInvalidUTF8 || m.starts_with(kMarkHead);
}

// AParse runs one parse with the recorder as both handlers.
template <class F>
std::u16string Run(F&& AParse) {
  Recorder rec;
  try {
    AParse(rec);
    if (!rec.Ended || !rec.Open.empty()) Finding("a parse ended without EndDocument");
  } catch (const vn::Exception& e) {
    // The encoding failure comes before any event.
    if (e.Message() == vn::_cVnJSONEncodingNotSupported && rec.Trace.empty()) return u"(encoding)";
    if (!IsOwnFailure(e)) Finding("foreign exception");
    if (!rec.Failed) Finding("a failure the error handler did not hear of");
  }
  if (rec.Ended && rec.Failed) Finding("EndDocument after a failure");
  return rec.Trace;
}

template <class F>
std::u16string RunReader(F&& AParse) {
  return Run([&](Recorder& rec) {
    vn::TVnFormURLEncodedJSONReader reader;
    reader.SetContentHandler(vn::IPtr<vn::IVnJSONContentHandler>(&rec));
    reader.SetErrorHandler(vn::IPtr<vn::IVnJSONErrorHandler>(&rec));
    AParse(reader);
  });
}

const vn::Word kCodePages[] = {0, 65001, 1252, 1200};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  const vn::Word cp = kCodePages[data[0] & 3];

  const std::u16string whole = RunReader([&](vn::TVnJSONReader& r) {
    r.ParseBuffer(text.data(), static_cast<vn::Cardinal>(text.size()), cp, u"");
  });
  const auto same = [&](const std::u16string& AOther, const char* AWhat) {
    if (AOther != whole) Finding(AWhat);
  };
  same(RunReader([&](vn::TVnJSONReader& r) { r.Parse(std::string_view(text), cp, u""); }), "8-bit text differs");
  same(Run([&](Recorder& rec) {
         vn::TVnJSONParser parser;
         parser.OnStartDocument = [&] { rec.StartDocument(); };
         parser.OnEndDocument = [&] { rec.EndDocument(); };
         parser.OnStartObject = [&] { rec.StartObject(); };
         parser.OnEndObject = [&] { rec.EndObject(); };
         parser.OnStartArray = [&] { rec.StartArray(); };
         parser.OnEndArray = [&] { rec.EndArray(); };
         parser.OnStartMember = [&](SV n) { rec.StartMember(n); };
         parser.OnEndMember = [&] { rec.EndMember(); };
         parser.OnValue = [&](vn::TVnJSONSimpleDataType k, SV v) { rec.Value(k, v); };
         parser.OnFatalError = [&](vn::IVnJSONLocator* l, SV m) { rec.FatalError(l, m); };
         parser.ParseBuffer(text.data(), static_cast<vn::Cardinal>(text.size()), cp, true);
       }),
       "parser component differs");
  const bool supplementary = std::any_of(text.begin(), text.end(), [](char c) { return static_cast<uint8_t>(c) >= 0xF0; });
  if (cp != 1200 && whole != u"(encoding)" && text.size() >= 4 && text.find('\0') == std::string::npos &&
      !supplementary) {
    // Text that is read as UTF-8 reads the same as UTF-16 text when it is valid. Not with characters
    // beyond the BMP: the two characters after "%" are two code units of UTF-16 text, half of such a
    // character, where UTF-8 text reads it whole.
    const vn::UnicodeString wide = vn::Utf8ToUnicode(text);
    if (vn::UnicodeToUtf8(wide) == text) same(RunReader([&](vn::TVnJSONReader& r) { r.Parse(wide, u""); }), "UTF-16 text differs");
  }
  return 0;
}
