// The sink of the JSON reading loop: what the loop calls, directly and without virtual calls,
// for each event. The reader's own sink turns the calls into IVnJSONContentHandler calls; the
// document's loader builds its tree from them.
//
// A sink has, for U = uint8_t (one-byte text) and U = char16_t (UTF-16 text); member
// templates over U serve both:
//   void StartDocument();  void EndDocument();
//   void StartObject();    void EndObject();
//   void StartArray();     void EndArray();
//   void StartMember(std::basic_string_view<U> AName);   void EndMember();
//   void Value(TVnJSONSimpleDataType AKind, std::basic_string_view<U> AText);
//
// Spans: the input's own code units, as the source wrote them (a name or string without its
// quotes, escapes not decoded; a number's text; a literal's letters). They point into the
// scanner's buffer and stay valid until the parse ends; a sink copies what it keeps beyond.
// One-byte spans are UTF-8, except when the scanner's character set is csAnsi (a multi-byte
// code page the caller named): SpanToString and SpanView decode every kind alike.
//
// Positions: the scanner's cursor is brought up to date before every call, so the reader's
// locator and TVnTextParser::GetLineNr/GetColNr tell where the loop stands, inside a sink and
// in a failure it raises: at the opening bracket for a start, at the closing one (or the end of
// the text) for an end, at the closing quote for a name or string, right after the text of a
// number or literal, and after the member's value for EndMember.
//
// Failures: the loop raises EVnJSONParseError (code 2, _cVnJSONNotWellFormed) and the scanner's
// EVnTextParserEOF with the cursor at the failure; a sink may raise anything. Either way
// TVnJSONReader::InternalParse reports it to FatalError, then re-raises: both roads into a
// tree fail alike. EndDocument is not called after a failure.
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>

#include "vnxml/json_reader.h"

namespace vn::detail {

template <class S, class U>
concept JSONReadSink = requires(S& s, std::basic_string_view<U> v, TVnJSONSimpleDataType k) {
  s.StartDocument();
  s.EndDocument();
  s.StartObject();
  s.EndObject();
  s.StartArray();
  s.EndArray();
  s.StartMember(v);
  s.EndMember();
  s.Value(k, v);
};

/// A span decoded to UTF-16: a view into the text itself for UTF-16, else into ABuffer.
/// Valid until ABuffer changes (and for UTF-16 until the parse ends).
inline std::u16string_view SpanView(const TVnTextParser&, std::u16string_view ASpan, std::u16string&) {
  return ASpan;
}
inline std::u16string_view SpanView(const TVnTextParser& AParser, std::basic_string_view<uint8_t> ASpan,
                                    std::u16string& ABuffer) {
  return AParser.DecodeSpanView(ASpan.data(), ASpan.data() + ASpan.size(), ABuffer);
}
/// A span decoded to a string of its own.
template <class U>
UnicodeString SpanToString(const TVnTextParser& AParser, std::basic_string_view<U> ASpan) {
  std::u16string buffer;
  return UnicodeString(SpanView(AParser, ASpan, buffer));
}

/// Runs the reading loop over the scanner of AReader's running parse with ASink; call it from
/// a JSONReadLoopOverride. Defined in json_read_loop.h.
template <class Sink>
void RunJSONReadLoop(TVnJSONReader& AReader, Sink& ASink);

}  // namespace vn::detail
