// Shared by the JSON fuzz targets: a handler that records the reader's events as one string and
// checks them against the grammar of the contract as they come, and the rule for when UTF-8 text
// must read the same as UTF-16 text.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "vnxml/common/utf.h"
#include "vnxml/json_reader.h"

namespace fuzzjson {

using SV = std::u16string_view;

[[noreturn]] inline void Finding(const char* AWhat) {
  std::fprintf(stderr, "fuzz finding: %s\n", AWhat);
  std::abort();
}

class Recorder : public vn::TVnObject, public vn::IVnJSONContentHandler, public vn::IVnJSONErrorHandler {
  VN_VNOBJECT_INTERFACES(vn::TVnObject, vn::IVnJSONContentHandler, vn::IVnJSONErrorHandler)
 public:
  // AFormShape: the form reader's shape, one top-level object whose values are all strings.
  explicit Recorder(bool AFormShape = false) : FormShape(AFormShape) { SetAutoDestroy(false); }
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
    if (!Open.empty() || Ended) Finding("EndDocument inside a value");
    if (FormShape && !Root) Finding("EndDocument without the root object");
    Ended = true;
    Trace += u'>';
  }
  void StartObject() override {
    if (FormShape && Open.empty()) {
      if (Root) Finding("a second top-level value");
      Root = true;
    }
    BeginValue('o', u'{');
  }
  void StartArray() override {
    if (FormShape && Open.empty()) Finding("a top-level array");
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
    if (k > vn::jdtBoolean) Finding("Value of a container kind");
    if (FormShape && (k != vn::jdtString || Open.empty())) Finding("a form value that is not a string in the object");
    BeginValue(0, static_cast<char16_t>(u'0' + k));
    Trace.append(v).append(u"|");
  }
  void Warning(vn::IVnJSONLocator*, SV) override {}
  void Error(vn::IVnJSONLocator*, SV) override {}
  void FatalError(vn::IVnJSONLocator* l, SV m) override {
    Failed = true;
    Trace.append(u"!").append(m).append(u"@") +=
        vn::Utf8ToUnicode(std::to_string(l->GetLineNr()) + ":" + std::to_string(l->GetColNr()));
  }

 private:
  bool FormShape;

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

// Text read as UTF-8 must read the same as UTF-16 text when it is valid UTF-8 without NULs and
// without characters beyond the BMP: where the reader steps over "one character", it steps over
// one code unit of UTF-16 text, half of such a character, where UTF-8 text passes it whole.
// Returns the UTF-16 text, or empty when the comparison does not apply.
inline vn::UnicodeString Utf16Twin(const std::string& AText, vn::Word ACodePage, bool AEncodingFailed) {
  const bool supplementary =
      std::any_of(AText.begin(), AText.end(), [](char c) { return static_cast<unsigned char>(c) >= 0xF0; });
  if (ACodePage == 1200 || AEncodingFailed || AText.size() < 4 || AText.find('\0') != std::string::npos ||
      supplementary)
    return {};
  vn::UnicodeString wide = vn::Utf8ToUnicode(AText);
  return vn::UnicodeToUtf8(wide) == AText ? wide : vn::UnicodeString();
}

}  // namespace fuzzjson
