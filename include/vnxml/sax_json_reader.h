// sax_json_reader.h: TVnSAXJSONReader, JSON read as XML events (unit uVnSAX), so that any
// IVnSAXContentHandler, the DOM loader included, takes a JSON text as if it were a document.
//
// The mapping: the root element is "object" or "array" by the first bracket and declares the
// xmlns:xsi and xmlns:xsd namespaces; a member becomes an element of its name, made a valid
// XML name ("first name" -> first_name, "1a" -> _1a, "" -> _, "a:b" -> a_b); an array member
// "a" becomes the element aArray (local name "aArr" on the start event) around one element "a"
// per item, and an array inside an array the element aArray again; a string, number, boolean
// or null becomes an element with one attribute xsd:type="string" / "decimal" / "boolean", or
// xsi:nil="true", holding the value's text ("null" for null). Several top-level objects and
// arrays go into the one root.
//
// Text: the characters of a string keep their JSON escapes (a consumer decodes them with
// VnJSONtoStr). Character data reaches the handler in its XML form, as every reader's does:
// "&", "<" and ">" in a value come as "&amp;", "&lt;" and "&gt;", so a tree loaded from JSON
// holds the value unchanged and saves as well-formed XML.
//
// Grammar: the forgiving one of TVnJSONReader, with these differences: anything before the
// first "{" or "[" is passed over, white space may follow the root, and a top-level string,
// number, boolean or null is refused (EVnJSONParseError code 2 with an empty expected text,
// as is a text without any bracket). Depth costs no call stack.
// The DOM loader reads a text as JSON when it has a significant character and that isn't "<"
// (an empty or blank text stays with the XML reader). A document that loads a stream without
// byte-order mark reads JSON as UTF-8, or as UTF-16 little endian where its NUL bytes say so.
// Failures: every one inside a parse goes to the error handler's FatalError with the reader as
// locator, then on to the caller; after an early end of the text the locator tells where the
// text ended. The handler checks (EVnJSONException codes 3 and 4) are raised before, unheard.
#pragma once

#include <memory>

#include "vnxml/json_reader.h"
#include "vnxml/sax_reader.h"

namespace vn {

/// The scanner of the JSON reader, as the SAX frame holds it; it adds nothing of its own.
class TVnJSONTextParserEx : public TVnJSONTextParser {
  VN_DECLARE_CLASS(TVnJSONTextParserEx, TVnJSONTextParser)
 public:
  using TVnJSONTextParser::TVnJSONTextParser;
};

class TVnSAXJSONReader : public TVnSAXReader {
  VN_DECLARE_CLASS(TVnSAXJSONReader, TVnSAXReader)
 public:
  TVnSAXJSONReader();
  ~TVnSAXJSONReader() override;

  /// The scanner of the running parse, nullptr outside one.
  TVnJSONTextParserEx* GetJSONParser() const { return static_cast<TVnJSONTextParserEx*>(FParser.get()); }

 protected:
  /// A TVnJSONTextParserEx over AStream; ADetectBOM plays no part (the JSON scanner decides).
  std::unique_ptr<TVnTextParser> CreateParser(TStream* AStream, bool AOwnsStream, bool ADetectBOM,
                                              Word ACodePage) override;
  void InternalParse() override;
  /// Reads the text with the content handler hearing every event. The library's DOM loader
  /// reads through a subclass that builds its nodes straight from the scan; the checks before
  /// the parse and the failure report around it stay the reader's.
  virtual void ReadContent();

 private:
  // The attribute sets of the root and of the four kinds of simple value: made once per
  // reader, as the handler copies what it keeps before StartElement returns.
  std::unique_ptr<TVnSAXXMAttributes> FRootAttributes;
  std::unique_ptr<TVnSAXXMAttributes> FValueAttributes[4];
};

}  // namespace vn
