// json_recorder.h: a handler that writes one token per event, for comparing whole traces.
// Tokens: < > (document), [ ] { } (containers), m:name (member) /m (its end), s:text n:text
// b:text z:text (string, number, boolean, null values), and !line:col:message for FatalError.
#pragma once

#include <string>

#include "vnxml/common/utf.h"
#include "vnxml/json_reader.h"

namespace vntest {

class JsonRecorder : public vn::TVnObject, public vn::IVnJSONContentHandler, public vn::IVnJSONErrorHandler {
  VN_VNOBJECT_INTERFACES(vn::TVnObject, vn::IVnJSONContentHandler, vn::IVnJSONErrorHandler)
 public:
  std::string Trace;
  vn::UnicodeString FatalMessage;

  JsonRecorder() { SetAutoDestroy(false); }

  void SetDocumentLocator(vn::IVnJSONLocator*) override { Add("locator"); }
  void StartDocument() override { Add("<"); }
  void StartObject() override { Add("{"); }
  void StartMember(std::u16string_view n) override { Add("m:" + vn::UnicodeToUtf8(n)); }
  void StartArray() override { Add("["); }
  void Value(vn::TVnJSONSimpleDataType k, std::u16string_view v) override {
    static constexpr const char* kTag[] = {"z:", "s:", "n:", "b:"};
    Add(kTag[k] + vn::UnicodeToUtf8(v));
  }
  void EndArray() override { Add("]"); }
  void EndMember() override { Add("/m"); }
  void EndObject() override { Add("}"); }
  void EndDocument() override { Add(">"); }
  void Warning(vn::IVnJSONLocator*, std::u16string_view) override {}
  void Error(vn::IVnJSONLocator*, std::u16string_view) override {}
  void FatalError(vn::IVnJSONLocator* loc, std::u16string_view msg) override {
    FatalMessage = vn::UnicodeString(msg);
    Add("!" + std::to_string(loc->GetLineNr()) + ":" + std::to_string(loc->GetColNr()));
  }

 private:
  void Add(const std::string& t) { Trace += Trace.empty() ? t : " " + t; }
};

/// Counts containers and values instead of recording them: for very deep input.
struct JsonCounter : JsonRecorder {
  size_t Opened = 0, Closed = 0, Values = 0;
  void StartArray() override { ++Opened; }
  void StartObject() override { ++Opened; }
  void EndArray() override { ++Closed; }
  void EndObject() override { ++Closed; }
  void StartMember(std::u16string_view) override {}
  void EndMember() override {}
  void Value(vn::TVnJSONSimpleDataType, std::u16string_view) override { ++Values; }
};

/// A reader of class R wired to a handler H; Read gives the trace and swallows the reader's own
/// failures (with AAny, any of the library's), keeping the message in Failure.
template <class R = vn::TVnJSONReader, bool AAny = false, class H = JsonRecorder>
struct RecordingReader {
  H Rec;  // outlives the reader, which holds it
  R Reader;
  vn::UnicodeString Failure;
  RecordingReader() {
    Reader.SetContentHandler(vn::IPtr<vn::IVnJSONContentHandler>(&Rec));
    Reader.SetErrorHandler(vn::IPtr<vn::IVnJSONErrorHandler>(&Rec));
  }
  template <class F>
  std::string Run(F&& AParse) {
    Rec.Trace.clear();
    Failure.clear();
    try {
      AParse(Reader);
    } catch (const vn::Exception& e) {
      if (!AAny && !dynamic_cast<const vn::EVnJSONException*>(&e) && !dynamic_cast<const vn::EVnTextParserEOF*>(&e))
        throw;
      Failure = e.Message();
    }
    return Rec.Trace;
  }
  std::string Read(std::string_view AText, vn::Word ACodePage = 65001) {
    return Run([&](vn::TVnJSONReader& r) { r.Parse(AText, ACodePage, u"t"); });
  }
};
using RecordingJsonReader = RecordingReader<>;

}  // namespace vntest
