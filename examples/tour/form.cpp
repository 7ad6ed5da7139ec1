// Tour, form posts: form-URL-encoded text read as JSON events through the parser component's
// form flag, written back here as the JSON text those events describe.
#include <cstdio>
#include <string>
#include <vector>

#include "sections.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/utf.h"
#include "vnxml/json_form_reader.h"
#include "vnxml/json_parser.h"
#include "vnxml/json_values.h"

namespace tour {

namespace {

// Binds the component's events to a writer of compact JSON: the values arrive as JSON string
// text already, so they only need their quotes.
std::string ReadForm(vn::TVnJSONParser& AParser, const std::string& AForm) {
  std::string json;
  std::vector<bool> first;  // per open container: no item written yet
  auto item = [&] {
    if (first.empty()) return;
    if (!first.back()) json += ',';
    first.back() = false;
  };
  auto open = [&](char c) {
    item();
    json += c;
    first.push_back(true);
  };
  auto close = [&](char c) {
    json += c;
    first.pop_back();
  };
  AParser.OnStartObject = [&] { open('{'); };
  AParser.OnEndObject = [&] { close('}'); };
  AParser.OnStartArray = [&] { open('['); };
  AParser.OnEndArray = [&] { close(']'); };
  AParser.OnStartMember = [&](std::u16string_view name) {
    item();
    json += '"' + vn::UnicodeToUtf8(vn::VnStrToJSON(name)) + "\":";
    first.push_back(true);  // the member's one value follows without a comma
  };
  AParser.OnEndMember = [&] { first.pop_back(); };
  AParser.OnValue = [&](vn::TVnJSONSimpleDataType, std::u16string_view text) {
    item();
    json += '"' + vn::UnicodeToUtf8(text) + '"';
  };
  AParser.ParseBuffer(AForm.data(), static_cast<vn::Cardinal>(AForm.size()), vn::cVnCodePageUTF8, true);
  return json;
}

}  // namespace

void Form() {
  std::printf("== Form posts\n");
  vn::TVnJSONParser parser;
  // Bracketed keys of consecutive pairs build one structure; "+" is a blank, escapes are UTF-8.
  for (const char* form : {"name=Zo%C3%AB&tags[]=chef&tags[]=p%C3%A2tissi%C3%A8re",
                           "order[0][dish]=cr%C3%A8me+br%C3%BBl%C3%A9e&order[0][qty]=2&order[1][dish]=tea",
                           "q=a%26b%3Dc&_csrf=x1&ignored=after+the+underscore"}) {
    std::printf("  %s\n    -> %s\n", form, ReadForm(parser, form).c_str());
  }
  // A key must go on with "[" or "=": the reader stops there, with its place.
  parser.OnFatalError = [](vn::IVnJSONLocator* at, std::u16string_view message) {
    std::printf("  refused at column %d: %s\n", at->GetColNr(), vn::UnicodeToUtf8(message).c_str());
  };
  try {
    ReadForm(parser, "a=1&b");
  } catch (const vn::Exception&) {
  }
}

}  // namespace tour
