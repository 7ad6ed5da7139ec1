// Fuzz target of the form reader. The first byte picks the code page; the rest is the text.
// Oracle: the buffer, 8-bit text and the parser component with its form flag give the same
// events and the same ending; valid UTF-8 read as UTF-16 text gives them too; the events follow
// the grammar of the contract, the root is one object and every value a string. Any exception
// but the reader's own failures is a finding. The document's form load ends as the reader did, or
// fails converting a value.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "json_event_recorder.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_document.h"
#include "vnxml/json_form_reader.h"
#include "vnxml/json_parser.h"

namespace {

using fuzzjson::Finding;
using fuzzjson::Recorder;
using fuzzjson::SV;

bool IsOwnFailure(const vn::Exception& AError) {
  if (dynamic_cast<const vn::EVnTextParserEOF*>(&AError) || dynamic_cast<const vn::EConvertError*>(&AError)) return true;
  const vn::UnicodeString& m = AError.Message();
  static const vn::UnicodeString kMarkHead(vn::cVnFormOpeningMarkExpected.substr(0, 40));
  return m == vn::cVnFormInvalidUTF8 || m.starts_with(kMarkHead);
}

// AParse runs one parse with the recorder as both handlers.
template <class F>
std::u16string Run(F&& AParse) {
  Recorder rec(/*AFormShape=*/true);
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
  if (cp == vn::cVnCodePageUTF8 && !text.empty()) {
    // The document's form load ends as the reader did: whole, or with the reader's own failure,
    // or with the conversion failure of a value (the reader hands a value on raw; the document
    // decodes it when it stores it, and a bad \u escape fails there). What it loads saves as
    // JSON that loads again. (An empty stream loads nothing at all.)
    const bool readerEnded = !whole.empty() && whole.back() == u'>';
    vn::TVnJSONDocument doc;
    vn::TVnStringStream in(std::string_view(text), vn::cVnCodePageUTF8);
    bool loaded = false;
    try {
      doc.LoadFromStream(in, cp, true);
      loaded = true;
    } catch (const vn::EConvertError&) {
    } catch (const vn::Exception& e) {
      if (readerEnded) Finding("the document refused a form the reader read");
      if (!IsOwnFailure(e)) Finding("foreign exception from the document's form load");
    }
    if (loaded) {
      if (!readerEnded) Finding("the document loaded a form the reader refused");
      try {
        vn::TVnJSONDocument again;
        again.SetAsJSON(doc.GetAsJSON());
      } catch (const vn::Exception&) {
        Finding("a loaded form saves as JSON that does not load again");
      }
    }
  }
  const vn::UnicodeString wide = fuzzjson::Utf16Twin(text, cp, whole == u"(encoding)");
  if (!wide.empty()) same(RunReader([&](vn::TVnJSONReader& r) { r.Parse(wide, u""); }), "UTF-16 text differs");
  return 0;
}
