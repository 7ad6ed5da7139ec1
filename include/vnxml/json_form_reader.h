// json_form_reader.h: TVnFormURLEncodedJSONReader, which reads form-URL-encoded text (key and
// value pairs with bracketed key paths) and reports it through the JSON events (unit uVnJSON).
//
// The whole text is one object. A key is a name and any number of segments, each in "[" "]" or
// "%5B" "%5D" (upper case only: "%5b" is a literal bracket). A segment is an array position when
// empty, an index when it starts with a digit, a member name otherwise. Consecutive pairs build
// one structure by comparing their key with the previous pair's, level by level:
//   a[b]=1&a[c]=2        {"a":{"b":"1","c":"2"}}
//   a[]=1&a[]=2          {"a":["1","2"]}          a[0]=1&a[1]=2 likewise
//   a[0][x]=1&a[1][x]=2  {"a":[{"x":"1"},{"x":"2"}]}  an index counts by differing from the last
// Only the previous pair counts: a key that returns to a structure already closed starts a new
// member of the same name. Every value is a string (jdtString) given as JSON string text:
// "+" is a blank, percent escapes are UTF-8, escaped control characters and raw line breaks
// drop out, and a value that begins with "[" or "{" is passed through as it stands. In a key,
// "+", "&" and line breaks are plain characters. A pair whose key begins with "_" behind an
// "&" ends the form: it and everything after it are dropped.
//
// Keys that mix shapes keep to the event grammar as this reader's own rule:
//   - a new index level always opens its array (a[5]=x gives ["x"]); a changed index moves on
//     to the next element of the open array whatever its digits (a[1]=x&a[0]=y gives ["x","y"]);
//   - a member that already holds a value of another shape, or whose structure closed, is
//     given again as a second member of the same name (a[b]=1&a=2 gives {"a":{"b":"1"},"a":"2"});
//   - an array element that holds an object ends when the next key gives the element a plain
//     value or an array (a[][x]=1&a[]=2 gives [{"x":"1"},"2"]).
//
// Failures, each reported to the error handler's FatalError with the reader as locator (its
// place is where the reading stopped) and then raised; no recovery, events already fired stay:
//   - no content handler: EVnJSONException code 3, before any event (no error handler is needed);
//   - a key goes on with anything but an opening mark (an empty text, a bare name): a plain
//     Exception, cVnFormOpeningMarkExpected with the (up to) three characters found;
//   - a lead byte above 0x7F not followed by escapes for its continuation bytes: a plain
//     Exception, cVnFormInvalidUTF8;
//   - escape digits that aren't hexadecimal: EConvertError of the integer conversion;
//   - the text ends inside an escape or right behind a segment's text: EVnTextParserEOF.
// Work is linear in the text: each character is read once, and the nesting of levels is a list,
// not the call stack.
//
// The loop override of TVnJSONReader is not used: form text always goes to the content handler.
#pragma once

#include <string_view>

#include "vnxml/json_reader.h"

namespace vn {

/// Format: the three characters found where an opening mark belongs.
inline constexpr std::u16string_view cVnFormOpeningMarkExpected =
    u"The parser expected to read a \"[\" character, but \"%s\", was read instead!";
inline constexpr std::u16string_view cVnFormInvalidUTF8 = u"Invalid UTF8 Encoding detected";

/// Chosen by the form-URL-encoded flag of TVnJSONParser; the parse operations are those of
/// TVnJSONReader, only the reading of the text differs.
class TVnFormURLEncodedJSONReader : public TVnJSONReader {
  VN_DECLARE_CLASS(TVnFormURLEncodedJSONReader, TVnJSONReader)
 public:
  TVnFormURLEncodedJSONReader() = default;

 protected:
  void InternalParse() override;
};

}  // namespace vn
