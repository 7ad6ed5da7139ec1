// json_contract.h: the event contract of JSON reading (unit uVnJSONInterfaces): the kinds of
// values, the locator, content, error handler and reader interfaces, the exceptions, and the
// message table of every JSON unit with the codes its failures carry.
// Text parameters are views valid for the call only: copy what you keep. Names and values come
// as the source wrote them, escapes not decoded (VnJSONtoStr decodes, json_values.h).
#pragma once

#include <string_view>

#include "vnxml/common/interface.h"
#include "vnxml/common/types.h"
#include "vnxml/common/vn_exception.h"

namespace vn {

class TStream;

// ---- kinds of values ----

/// The kind of a JSON value. Numbers stay text at this level: no integer/float split.
enum TVnJSONDataType : uint8_t { jdtNull, jdtString, jdtNumber, jdtBoolean, jdtObject, jdtArray };
/// The kinds a value event carries: jdtNull to jdtBoolean.
using TVnJSONSimpleDataType = TVnJSONDataType;

// ---- exceptions and messages ----

VN_EXCEPTION(EVnJSONException, EVnException)
/// Every failure inside a parse; GetCode() tells which (cVnJSONErr... below).
VN_EXCEPTION(EVnJSONParseError, EVnJSONException)

inline constexpr Integer cVnJSONErrNotWellFormed = 2;
inline constexpr Integer cVnJSONErrNoContentHandler = 3;
inline constexpr Integer cVnJSONErrNoErrorHandler = 4;
inline constexpr Integer cVnJSONErrNoMember = 5;
inline constexpr Integer cVnJSONErrUnexpectedType = 6;
inline constexpr Integer cVnJSONErrMethodNotSupported = 9;
inline constexpr Integer cVnJSONErrNoRoot = 10;
inline constexpr Integer cVnJSONErrInvalidPathNoNodes = 11;
inline constexpr Integer cVnJSONErrInvalidPath = 13;
inline constexpr Integer cVnJSONErrInvalidCharInPath1 = 14;
inline constexpr Integer cVnJSONErrInvalidCharInPath2 = 15;
inline constexpr Integer cVnJSONErrScriptExprTooComplex = 17;

/// Raised as a plain Exception for UTF-32 and big-endian UTF-16 input.
inline constexpr std::u16string_view _cVnJSONEncodingNotSupported = u"The specified encoding is not supported!";
/// First %s: the character expected (empty when nothing more may follow); second: the one found.
inline constexpr std::u16string_view _cVnJSONNotWellFormed =
    u"The document is not wellformed!\r\n\"%s\" expected, but \"%s\" found!";
inline constexpr std::u16string_view _cVnJSONNoContentHandler = u"No contenthandler has been assigned!";
inline constexpr std::u16string_view _cVnJSONNoErrorHandler = u"No errorhandler has been assigned!";
inline constexpr std::u16string_view _cVnJSONNoMember = u"There is no member with the name \"%s\"!";
inline constexpr std::u16string_view _cVnJSONUnexpectedType = u"Unexptected JSON type!";
inline constexpr std::u16string_view _cVnJSONArrayExpected = u"Array expected. %s found.";
inline constexpr std::u16string_view _cVnJSONObjectExpected = u"Object expected. %s found.";
inline constexpr std::u16string_view _cVnJSONMethodNotSupported = u"Instances of %s do not support the %s method!";
inline constexpr std::u16string_view _cVnJSONNoRoot = u"There is no root value!";
inline constexpr std::u16string_view _cVnJSONInvalidPathNoNodes = u"The specified path returned no nodes!";
inline constexpr std::u16string_view _cVnJSONInvaliPathMultipleNodes = u"The specified path returned more than 1 node!";
inline constexpr std::u16string_view _cVnJSONInvalidPath = u"The specified path is not a valid JSON path.";
inline constexpr std::u16string_view _cVnJSONInvalidCharInPath1 =
    u"The specified path is not a valid JSON path. Character '%s' was expected, however '%s' was found.";
inline constexpr std::u16string_view _cVnJSONInvalidCharInPath2 =
    u"The specified path is not a valid JSON path. A character ('%s') was detected on an invalid position.";
inline constexpr std::u16string_view _cVnJSONNoSupportForScriptExpr = u"Script expressions are not yet supported!";
inline constexpr std::u16string_view _cVnJSONScriptExprTooComplex =
    u"The specified script expression is too complex or not valid!";
/// Goes with a plain read error (EReadError), not with a code.
inline constexpr std::u16string_view _cVnJSONNoFile = u"There is no file \"%s\"";

/// The expected texts of _cVnJSONNotWellFormed where a value or an escape may start.
inline constexpr std::u16string_view cVnJSONValueStartExpected = u"\", t, f, n, 0..9, ., + or -";
inline constexpr std::u16string_view cVnJSONEscapeExpected = u"\", \\, /, b, f, n, r, t or u";

// ---- handlers ----

/// Where the reader stands: 1-based line and column (UTF-16 units) during a parse, -1 outside
/// one and after a failure at an unexpected end of the text.
struct IVnJSONLocator : IInterface {
  static constexpr TGUID IID = TGUID::Parse("e4ca2acf-a89a-40c0-92e6-9d039f25925b");
  virtual Integer GetLineNr() = 0;
  virtual Integer GetColNr() = 0;
  virtual VnJSONString GetPublicID() = 0;

 protected:
  ~IVnJSONLocator() = default;
};

/// Receives a document as calls: StartDocument, a value sequence per top-level value,
/// EndDocument. A value sequence is one Value, or StartArray ... EndArray, or StartObject with
/// members (StartMember, one value sequence, EndMember) and EndObject.
struct IVnJSONContentHandler : IInterface {
  static constexpr TGUID IID = TGUID::Parse("153c84d4-9281-4489-b9c3-6bd021f422ab");
  virtual void SetDocumentLocator(IVnJSONLocator* ALocator) = 0;
  virtual void StartDocument() = 0;
  virtual void StartObject() = 0;
  /// AName: the text between the quotes, escapes not decoded.
  virtual void StartMember(std::u16string_view AName) = 0;
  virtual void StartArray() = 0;
  /// AValue: a string's text between the quotes (escapes not decoded), a number's text, or
  /// the literal as it stands ("true", "false", "null").
  virtual void Value(TVnJSONSimpleDataType AValueType, std::u16string_view AValue) = 0;
  virtual void EndArray() = 0;
  virtual void EndMember() = 0;
  virtual void EndObject() = 0;
  virtual void EndDocument() = 0;

 protected:
  ~IVnJSONContentHandler() = default;
};

struct IVnJSONErrorHandler : IInterface {
  static constexpr TGUID IID = TGUID::Parse("9e920221-37d4-469e-9405-55fd94cad85c");
  virtual void Warning(IVnJSONLocator* ALocator, std::u16string_view AErrMsg) = 0;
  virtual void Error(IVnJSONLocator* ALocator, std::u16string_view AErrMsg) = 0;
  /// Hears every failure of a parse before it is raised; raising here replaces the failure.
  virtual void FatalError(IVnJSONLocator* ALocator, std::u16string_view AErrMsg) = 0;

 protected:
  ~IVnJSONErrorHandler() = default;
};

struct IVnJSONReader : IInterface {
  static constexpr TGUID IID = TGUID::Parse("e13ea94c-8aae-450d-bca6-03fd63522ed8");
  virtual IPtr<IVnJSONContentHandler> GetContentHandler() = 0;
  virtual IPtr<IVnJSONErrorHandler> GetErrorHandler() = 0;
  virtual void SetContentHandler(const IPtr<IVnJSONContentHandler>& AHandler) = 0;
  virtual void SetErrorHandler(const IPtr<IVnJSONErrorHandler>& AHandler) = 0;
  /// Reads the caller's stream from its position to its end, which stays the caller's.
  virtual void ParseStream(TStream* AStream, Word ACodePage, std::u16string_view APublicID) = 0;
  /// Reads a file opened with AMode (fmOpenRead ...); a byte-order mark decides the encoding.
  virtual void ParseFile(std::u16string_view AFileName, Word AMode, std::u16string_view APublicID) = 0;
  /// Reads ASize bytes at ABuffer in place; the buffer stays the caller's.
  virtual void ParseBuffer(const void* ABuffer, Cardinal ASize, Word ACodePage, std::u16string_view APublicID) = 0;
  /// Reads UTF-16 text.
  virtual void Parse(std::u16string_view AText, std::u16string_view APublicID) = 0;
  /// Reads 8-bit text; see TVnJSONTextParser for how ACodePage is taken.
  virtual void Parse(std::string_view AText, Word ACodePage, std::u16string_view APublicID) = 0;

 protected:
  ~IVnJSONReader() = default;
};

}  // namespace vn
