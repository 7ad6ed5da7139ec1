// sax_contract.h: the event contract of XML reading (unit uVnSAX): handler interfaces, the
// attribute set of a start tag, the exceptions and the message table with its codes.
// Text parameters are views valid for the call only; IVnSAXAttributes too lives for one event.
#pragma once

#include <string_view>

#include "vnxml/common/interface.h"
#include "vnxml/common/types.h"
#include "vnxml/common/variant.h"
#include "vnxml/common/vn_exception.h"
#include "vnxml/common/vn_object.h"

namespace vn {

class TStream;

// ---- exceptions and messages ----

VN_EXCEPTION(EVnXMLException, EVnException)
/// Every failure of a parse; GetCode() tells which (cVnXMLErr... below).
VN_EXCEPTION(EVnXMLParseError, EVnXMLException)
/// For handlers and other readers that do not know or do not support a feature or property;
/// the library's own readers never raise these.
VN_EXCEPTION(EVnSAXException, EVnException)
VN_EXCEPTION(EVnSAXNotRecognizedException, EVnSAXException)
VN_EXCEPTION(EVnSAXNotSupportedException, EVnSAXException)

inline constexpr Integer cVnXMLErrNotWellFormed = 2;
inline constexpr Integer cVnXMLErrInvalidNameStartChar = 3;
inline constexpr Integer cVnXMLErrListIndexOutOfBounds = 4;
inline constexpr Integer cVnXMLErrDOCTypeExpected = 5;
inline constexpr Integer cVnXMLErrCDATAExpected = 6;
inline constexpr Integer cVnXMLErrMissingAttribute = 7;
inline constexpr Integer cVnXMLErrELMNotClosed = 8;
inline constexpr Integer cVnXMLErrMultipleRoot = 9;
inline constexpr Integer cVnXMLErrNoContentHandler = 10;
inline constexpr Integer cVnXMLErrNoErrorHandler = 11;
inline constexpr Integer cVnXMLErrInvalidTextAtRoot = 12;

inline constexpr std::u16string_view _cVnXMLNotWellFormed =
    u"The document is not wellformed!\r\n\"%s\" expected, but \"%s\" found!";
inline constexpr std::u16string_view _cVnXMLInvalidNameStartchar1 =
    u"The current character \"%s\" is only a valid NameStartChar when NameSpaces are not supported!";
inline constexpr std::u16string_view _cVnXMLInvalidNameStartchar2 =
    u"The current character \"%s\" is not a valid NameStartChar!";
inline constexpr std::u16string_view _cVnXMLListIndexOutOfBounds1 = u"List index (%d) out of bounds!";
inline constexpr std::u16string_view _cVnXMLListIndexOutOfBounds2 = u"List index (%s) out of bounds!";
inline constexpr std::u16string_view _cVnXMLListIndexOutOfBounds3 = u"List index (%s-%s) out of bounds!";
inline constexpr std::u16string_view _cVnXMLDOCTypeExpected = u"\"DOCTYPE\" expected, but \"%s\" found";
inline constexpr std::u16string_view _cVnXMLCDATAExpected = u"![CDATA[ expected, but \"%s\" found";
inline constexpr std::u16string_view _cVnXMLMissingAttribute =
    u"The document is not wellformed!\r\nMissing attribute value.";
inline constexpr std::u16string_view _cVnXMLELMNotClosed =
    u"The document is not wellformed!\r\nAn element was not closed correctly (Row: %d, Col: %d).";
inline constexpr std::u16string_view _cVnXMLMultipleRoot =
    u"The document is not wellformed!\r\nA XML document may not contain multiple root elements.";
inline constexpr std::u16string_view _cVnXMLNoContentHandler = u"No contenthandler has been assigned!";
inline constexpr std::u16string_view _cVnXMLNoErrorHandler = u"No errorhandler has been assigned!";
inline constexpr std::u16string_view _cVnXMLInvalidTextAtRoot =
    u"The document is not wellformed!\r\nAn invalid token was detected at the root level of the document.";
/// An assertion: InternalParse runs only inside an entry point, which makes the scanner.
inline constexpr char16_t cVnXMLNoParser[] = u"TVnSAXXMLReader.InternalParse: no parser";
/// Declared with the others; no path of the XML reader raises it.
inline constexpr std::u16string_view _cVnXMLEncodingNotSupported = u"The specified encoding is not supported!";

// ---- attributes ----

enum class TVnSAXAttributeType : uint8_t { CDATA, ID, IDREF, IDREFS, NMTOKEN, NMTOKENS, ENTITY, ENTITIES, NOTATION };

/// One attribute of a start tag, a node of a doubly linked list in document order.
struct TVnSAXXMAttribute {
  TVnSAXXMAttribute* Prev = nullptr;
  Integer Idx = 0;
  VnXMLString LocalName;
  VnXMLString QName;
  VnXMLString URI;
  TVnSAXAttributeType AttrType = TVnSAXAttributeType::CDATA;
  VnXMLString Value;
  TVnSAXXMAttribute* Next = nullptr;
};
using PVnSAXXMAttribute = TVnSAXXMAttribute*;

/// The attributes of one start tag. Names compare case-insensitively (A-Z folded).
/// Index forms raise EVnXMLParseError code 4 for an index no attribute has; GetIndex gives -1
/// for an absent name; the other name forms raise code 4 when nothing matches.
struct IVnSAXAttributes : IInterface {
  static constexpr TGUID IID = TGUID::Parse("e9326675-b42c-4d52-83fd-15e7b8c33e04");
  virtual Integer Count() = 0;
  /// The first record, nullptr when there is none; walk on with Next.
  virtual PVnSAXXMAttribute FirstAttribute() = 0;
  virtual PVnSAXXMAttribute GetAttribute(Integer AIndex) = 0;
  virtual const VnXMLString& GetLocalName(Integer AIndex) = 0;
  virtual const VnXMLString& GetQName(Integer AIndex) = 0;
  virtual const VnXMLString& GetURI(Integer AIndex) = 0;
  virtual Integer GetIndex(std::u16string_view AQName) = 0;
  virtual Integer GetIndex(std::u16string_view AURI, std::u16string_view ALocalName) = 0;
  virtual TVnSAXAttributeType GetType(Integer AIndex) = 0;
  virtual TVnSAXAttributeType GetType(std::u16string_view AQName) = 0;
  virtual TVnSAXAttributeType GetType(std::u16string_view AURI, std::u16string_view ALocalName) = 0;
  virtual const VnXMLString& GetValue(Integer AIndex) = 0;
  virtual const VnXMLString& GetValue(std::u16string_view AQName) = 0;
  /// AURI "*" matches any namespace.
  virtual const VnXMLString& GetValue(std::u16string_view AURI, std::u16string_view ALocalName) = 0;

 protected:
  ~IVnSAXAttributes() = default;
};

// ---- handlers ----

/// Where the reader stands; meaningful during a parse (and after one that failed).
struct IVnSAXLocator : IInterface {
  static constexpr TGUID IID = TGUID::Parse("6207c53e-4713-4557-aa43-e07c68f32ec8");
  /// 1-based place of the scanner, in UTF-16 units; -1 outside a parse.
  virtual Integer GetPosition() = 0;
  virtual Integer GetLineNr() = 0;
  virtual Integer GetColNr() = 0;
  virtual VnXMLString GetPublicID() = 0;

 protected:
  ~IVnSAXLocator() = default;
};

struct IVnSAXLexicalHandler : IInterface {
  static constexpr TGUID IID = TGUID::Parse("2cd97dbe-bd9f-4c6c-a01d-ca4c5fdd7b3c");
  virtual void Comment(std::u16string_view AComment) = 0;
  virtual void StartCDATA() = 0;
  virtual void StartDTD() = 0;
  virtual void StartEntity(std::u16string_view AName) = 0;
  virtual void EndCDATA() = 0;
  virtual void EndDTD() = 0;
  virtual void EndEntity(std::u16string_view AName) = 0;

 protected:
  ~IVnSAXLexicalHandler() = default;
};

struct IVnSAXContentHandler : IInterface {
  static constexpr TGUID IID = TGUID::Parse("153c84d4-9281-4489-b9c3-6bd021f422ab");
  virtual void SetDocumentLocator(IVnSAXLocator* ALocator) = 0;
  virtual void Characters(std::u16string_view AText) = 0;
  virtual void EndDocument() = 0;
  virtual void EndElement(std::u16string_view ANamespaceURI, std::u16string_view ALocalName,
                          std::u16string_view AQName) = 0;
  virtual void EndPrefixMapping(std::u16string_view APrefix) = 0;
  virtual void IgnorableWhitespace(std::u16string_view AWhiteSpace) = 0;
  virtual void ProcessingInstruction(std::u16string_view ATarget, std::u16string_view AData) = 0;
  virtual void SkippedEntity(std::u16string_view AName) = 0;
  virtual void StartDocument() = 0;
  /// AAttributes is valid during the call only (copy what you keep); never nullptr.
  virtual void StartElement(std::u16string_view ANamespaceURI, std::u16string_view ALocalName,
                            std::u16string_view AQName, IVnSAXAttributes* AAttributes) = 0;
  virtual void StartPrefixMapping(std::u16string_view APrefix, std::u16string_view AURI) = 0;

 protected:
  ~IVnSAXContentHandler() = default;
};

struct IVnSAXErrorHandler : IInterface {
  static constexpr TGUID IID = TGUID::Parse("9e920221-37d4-469e-9405-55fd94cad85c");
  virtual void Warning(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) = 0;
  virtual void Error(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) = 0;
  /// Hears every failure of a parse before it is raised; raising here replaces the failure.
  virtual void FatalError(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) = 0;

 protected:
  ~IVnSAXErrorHandler() = default;
};

struct IVnSAXXMLReader : IInterface {
  static constexpr TGUID IID = TGUID::Parse("e13ea94c-8aae-450d-bca6-03fd63522ed8");
  virtual IPtr<IVnSAXLexicalHandler> GetLexicalHandler() = 0;
  virtual IPtr<IVnSAXContentHandler> GetContentHandler() = 0;
  virtual IPtr<IVnSAXErrorHandler> GetErrorHandler() = 0;
  /// Always false.
  virtual bool GetFeature(std::u16string_view AName) = 0;
  /// Always Null.
  virtual Variant GetProperty(std::u16string_view AName) = 0;
  virtual void SetLexicalHandler(const IPtr<IVnSAXLexicalHandler>& AHandler) = 0;
  virtual void SetContentHandler(const IPtr<IVnSAXContentHandler>& AHandler) = 0;
  virtual void SetErrorHandler(const IPtr<IVnSAXErrorHandler>& AHandler) = 0;
  /// Does nothing.
  virtual void SetFeature(std::u16string_view AName, bool AValue) = 0;
  /// Does nothing.
  virtual void SetProperty(std::u16string_view AName, const Variant& AValue) = 0;
  /// Reads the caller's stream from its position; no byte-order mark is looked for.
  virtual void ParseStream(TStream* AStream, Word ACodePage, std::u16string_view APublicID) = 0;
  /// Reads a file opened with AMode (fmOpenRead ...); a byte-order mark decides the encoding.
  virtual void ParseFile(std::u16string_view AFileName, Word AMode, std::u16string_view APublicID) = 0;
  /// Reads ASize bytes at ABuffer in place; the buffer stays the caller's.
  virtual void ParseBuffer(const void* ABuffer, Int64 ASize, Word ACodePage, std::u16string_view APublicID) = 0;
  /// Reads UTF-16 text.
  virtual void Parse(std::u16string_view AText, std::u16string_view APublicID) = 0;
  /// Reads 8-bit text in ACodePage (0: decided by the text's declaration, else UTF-8).
  virtual void Parse(std::string_view AText, Word ACodePage, std::u16string_view APublicID) = 0;

 protected:
  ~IVnSAXXMLReader() = default;
};

/// The attribute set of one start tag. Reference counting is off: the reader frees it, so an
/// interface held by a handler keeps nothing alive. Records are kept for reuse after Clear.
class TVnSAXXMAttributes : public TVnObject, public IVnSAXAttributes {
  VN_DECLARE_CLASS(TVnSAXXMAttributes, TVnObject)
  VN_VNOBJECT_INTERFACES(TVnObject, IVnSAXAttributes)
 public:
  TVnSAXXMAttributes();
  ~TVnSAXXMAttributes() override;

  /// Appends an attribute in document order.
  void Add(std::u16string_view ALocalName, std::u16string_view AQName, std::u16string_view AURI,
           std::u16string_view AValue, TVnSAXAttributeType AAttrType);
  /// Forgets every attribute; the count becomes 0.
  void Clear();

  Integer Count() override { return FCount; }
  PVnSAXXMAttribute FirstAttribute() override { return FFirst; }
  PVnSAXXMAttribute GetAttribute(Integer AIndex) override;
  const VnXMLString& GetLocalName(Integer AIndex) override { return GetAttribute(AIndex)->LocalName; }
  const VnXMLString& GetQName(Integer AIndex) override { return GetAttribute(AIndex)->QName; }
  const VnXMLString& GetURI(Integer AIndex) override { return GetAttribute(AIndex)->URI; }
  Integer GetIndex(std::u16string_view AQName) override;
  Integer GetIndex(std::u16string_view AURI, std::u16string_view ALocalName) override;
  TVnSAXAttributeType GetType(Integer AIndex) override { return GetAttribute(AIndex)->AttrType; }
  TVnSAXAttributeType GetType(std::u16string_view AQName) override;
  TVnSAXAttributeType GetType(std::u16string_view AURI, std::u16string_view ALocalName) override;
  const VnXMLString& GetValue(Integer AIndex) override { return GetAttribute(AIndex)->Value; }
  const VnXMLString& GetValue(std::u16string_view AQName) override;
  const VnXMLString& GetValue(std::u16string_view AURI, std::u16string_view ALocalName) override;

 private:
  PVnSAXXMAttribute FindQName(std::u16string_view AQName);
  PVnSAXXMAttribute FindName(std::u16string_view AURI, std::u16string_view ALocalName, bool AWildcard);

  PVnSAXXMAttribute FFirst = nullptr;
  PVnSAXXMAttribute FLast = nullptr;
  PVnSAXXMAttribute FCurrent = nullptr;  // walking position of the last lookup
  Integer FCount = 0;
  PVnSAXXMAttribute FSpare = nullptr;  // cleared records, reused by Add (linked by Next)
};

}  // namespace vn
