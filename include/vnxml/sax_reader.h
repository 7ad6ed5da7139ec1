// sax_reader.h: the reader frame TVnSAXReader and the XML reader TVnSAXXMLReader (unit uVnSAX).
// A reader is a plain object (reference counting off): its creator frees it. It holds its
// handlers by counted reference and owns its scanner for the length of one parse.
// The XML reader is forgiving: it cuts each construct at its delimiters and checks little else
// (no end-tag matching, no DTD, no reference decoding). Depth costs no stack.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "vnxml/common/text_parser.h"
#include "vnxml/sax_contract.h"
#include "vnxml/sax_xml_parser.h"

namespace vn {

class TVnSAXXMLReader;
namespace detail {
template <class Enc, class Sink>
class XmlReadLoop;
}

/// One namespace declaration in force.
struct TVnSAXNamespace {
  Integer Level = 0;  // depth of the element that declared it
  VnXMLString Prefix;  // empty for the default namespace
  VnXMLString URI;
};
using PVnSAXNamespace = TVnSAXNamespace*;

/// The declarations in force, oldest first; tells the owner's content handler of each change.
class TVnSAXNamespaceList : public TObject {
  VN_DECLARE_CLASS(TVnSAXNamespaceList, TObject)
 public:
  explicit TVnSAXNamespaceList(TVnSAXXMLReader* AOwner = nullptr) : FOwner(AOwner) {}
  /// Appends a declaration, then sends StartPrefixMapping.
  void AddURI(Integer ALevel, std::u16string_view APrefix, std::u16string_view AURI);
  /// The URI of the newest declaration of APrefix (case-insensitive); empty when unbound.
  const VnXMLString& GetURI(std::u16string_view APrefix) const;
  /// The newest declaration of APrefix, or nullptr; valid until the list changes.
  PVnSAXNamespace GetNamespace(std::u16string_view APrefix);
  /// Drops each declaration of ALevel or deeper, newest first, sending EndPrefixMapping for each.
  void RemoveLevel(Integer ALevel);
  /// Drops all declarations without events.
  void Clear();
  Integer Count() const { return static_cast<Integer>(FList.size()); }

 private:
  template <class Enc, class Sink>
  friend class detail::XmlReadLoop;

  /// Index of the newest declaration of APrefix in FList, or -1.
  int64_t Find(std::u16string_view APrefix) const;
  /// Index of the newest declaration of a prefix by the index of all of them, or -1.
  int64_t FindIndexed(std::u16string_view APrefix) const;
  /// The URI of the default namespace in force, nullptr when none is; the reader's quick path.
  const VnXMLString* DefaultURI() const {
    return FDefault < 0 ? nullptr : &FList[static_cast<size_t>(FDefault)].URI;
  }

  TVnSAXXMLReader* FOwner;
  std::vector<TVnSAXNamespace> FList;
  // Index of the newest default declaration, and of the last prefix found, or -1: most names
  // of a document use the same few prefixes, and the list changes seldom.
  int64_t FDefault = -1;
  mutable int64_t FLastFound = -1;
  // Positions in FList per prefix folded as SameText folds it, oldest first: with thousands of
  // declarations in force a lookup stays constant instead of scanning them all.
  std::unordered_map<std::u16string, std::vector<uint32_t>> FByPrefix;
  mutable std::u16string FKey;
};

/// The frame of a reader: the five entry points turn a file, buffer, stream or string into a
/// scanner and run InternalParse over it.
class TVnSAXReader : public TVnObject, public IVnSAXLocator, public IVnSAXXMLReader {
  VN_DECLARE_CLASS(TVnSAXReader, TVnObject)
  VN_VNOBJECT_INTERFACES(TVnObject, IVnSAXLocator, IVnSAXXMLReader)
 public:
  TVnSAXReader();
  ~TVnSAXReader() override;

  // IVnSAXLocator
  Integer GetPosition() override;
  /// The start of the construct in which the text ended after such a failure; else the
  /// scanner's line during a parse; else -1.
  Integer GetLineNr() override;
  Integer GetColNr() override;
  VnXMLString GetPublicID() override { return FPublicID; }

  // IVnSAXXMLReader
  IPtr<IVnSAXLexicalHandler> GetLexicalHandler() override { return FLexicalHandler; }
  IPtr<IVnSAXContentHandler> GetContentHandler() override { return FContentHandler; }
  IPtr<IVnSAXErrorHandler> GetErrorHandler() override { return FErrorHandler; }
  bool GetFeature(std::u16string_view) override { return false; }
  Variant GetProperty(std::u16string_view) override { return Variant::Null(); }
  void SetLexicalHandler(const IPtr<IVnSAXLexicalHandler>& AHandler) override { FLexicalHandler = AHandler; }
  void SetContentHandler(const IPtr<IVnSAXContentHandler>& AHandler) override { FContentHandler = AHandler; }
  void SetErrorHandler(const IPtr<IVnSAXErrorHandler>& AHandler) override { FErrorHandler = AHandler; }
  void SetFeature(std::u16string_view, bool) override {}
  void SetProperty(std::u16string_view, const Variant&) override {}
  void ParseStream(TStream* AStream, Word ACodePage, std::u16string_view APublicID = {}) override;
  void ParseFile(std::u16string_view AFileName, Word AMode, std::u16string_view APublicID = {}) override;
  void ParseBuffer(const void* ABuffer, Int64 ASize, Word ACodePage, std::u16string_view APublicID = {}) override;
  void Parse(std::u16string_view AText, std::u16string_view APublicID = {}) override;
  void Parse(std::string_view AText, Word ACodePage, std::u16string_view APublicID = {}) override;

  /// The scanner of the running parse, nullptr outside one.
  TVnTextParser* GetParser() const { return FParser.get(); }

 protected:
  /// Creates the scanner of one parse; the frame owns and frees it.
  virtual std::unique_ptr<TVnTextParser> CreateParser(TStream* AStream, bool AOwnsStream, bool ADetectBOM,
                                                      Word ACodePage) = 0;
  virtual void InternalParse() = 0;

  /// Remembers where the current construct starts (what FLineNr/FColNr report after an end
  /// of text); the line and column are worked out only when someone asks.
  void MarkConstructStart(Int64 AOffset) { FConstructPos = AOffset; }
  /// Line and column of the construct start.
  void ConstructLineCol(Integer& ALine, Integer& ACol) const;
  /// The failure path of InternalParse: record an end of text, tell FatalError; the caller re-raises.
  void ReportFailure(const std::exception& AError);

  VnXMLString FPublicID;
  Integer FLineNr = -1;
  Integer FColNr = -1;
  bool FUnexpectedEOF = false;
  std::unique_ptr<TVnTextParser> FParser;
  std::unique_ptr<TVnSAXXMAttributes> FEmptyAttributes;
  IPtr<IVnSAXLexicalHandler> FLexicalHandler;
  IPtr<IVnSAXContentHandler> FContentHandler;
  IPtr<IVnSAXErrorHandler> FErrorHandler;

 private:
  void Run(TStream* AStream, bool ADetectBOM, Word ACodePage);
  Int64 FConstructPos = 0;
};

/// The XML reader: prolog, elements, attributes, text, comments, CDATA, processing
/// instructions and the DOCTYPE's extent, as one flat loop.
class TVnSAXXMLReader : public TVnSAXReader {
  VN_DECLARE_CLASS(TVnSAXXMLReader, TVnSAXReader)
 public:
  TVnSAXXMLReader();
  ~TVnSAXXMLReader() override;

  /// True (the default): a second top-level element (code 9) or text after the root (code 12)
  /// fails, and so does text that runs to the end. False reads any number of top-level elements.
  bool GetCheckSingleRootElm() const { return FCheckSingleRootElm; }
  void SetCheckSingleRootElm(bool AValue) { FCheckSingleRootElm = AValue; }
  /// The declarations in force during a parse.
  TVnSAXNamespaceList& GetNamespaceList() { return FNamespaceList; }
  /// The scanner of the running parse by its precise type, nullptr outside one.
  TVnXMLParser* GetXMLParser() const { return static_cast<TVnXMLParser*>(FParser.get()); }

 protected:
  std::unique_ptr<TVnTextParser> CreateParser(TStream* AStream, bool AOwnsStream, bool ADetectBOM,
                                              Word ACodePage) override;
  void InternalParse() override;
  /// Reads the text with the handlers hearing every event. The library's DOM loader reads
  /// through a subclass that builds its nodes straight from the scan; the checks before the
  /// parse and the failure report around it stay the reader's.
  virtual void ReadContent();

 private:
  template <class Enc, class Sink>
  friend class detail::XmlReadLoop;

  bool FCheckSingleRootElm = true;
  TVnSAXNamespaceList FNamespaceList;
  // One attribute set serves every tag that has attributes: cleared, never freed, per tag.
  std::unique_ptr<TVnSAXXMAttributes> FTagAttributes;
};

}  // namespace vn
