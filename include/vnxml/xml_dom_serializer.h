// xml_dom_serializer.h: a DOM document or element as an XML value (unit uVnXMLDOM).
// At the root of a write or read, a document is its own text: written by the document's own
// output, read by its own loader. An element likewise, in its document's code page (UTF-8
// without one); an element is never created by a read, it must be given.
// Below the root, as a member or array element, the value's element holds the markup itself:
// a document's root element (the declaration, and comments or instructions outside the root,
// stay out), or the element itself. Reading replaces the document's content; a given element
// takes the name, attributes and content of the element in the text. Comments and processing
// instructions inside are not kept by the object reader. Markup that does not load raises
// EVnSerializeException cVnDOMMemberFailure with the member's path and the loader's message.
// In JSON (TVnXMLDocJSONSerializer, written only) a document is its JSON form (the DOM's own
// JSON writer): at the root as that writer gives it, the bare "name": value pair of its root;
// below the root wrapped in braces, {"name": value}, or {} for a document with no root, so
// that the object's text stays JSON.
#pragma once

#include <memory>

#include "vnxml/json_serializer.h"
#include "vnxml/xml_serializer.h"

namespace vn {

inline constexpr char16_t cVnNotSupported[] = u"Not supported";
/// Programming fault: one of these classes registered for a type that is no document or element.
inline constexpr char16_t cVnNotADOMInstance[] = u"The instance is no DOM document or element!";
/// The member's path, the loader's message.
inline constexpr char16_t cVnDOMMemberFailure[] = u"Deserialization failure at \"%s\"\r\n%s";

namespace detail {
/// The markup inside a DOM member's element, collected from the reader's events.
struct DOMMemberText;
}  // namespace detail

class TVnXMLDocSerializer : public TVnXMLSerializer {
  VN_DECLARE_CLASS(TVnXMLDocSerializer, TVnXMLSerializer)
 public:
  void Serialize(TStream& AStream) override;
  using TVnXMLSerializer::Serialize;
  /// Below the root: the root element's markup.
  void DoSerialize(TVnSerializer* AParent, std::u16string_view AName, std::u16string_view APath) override;
};

/// Collects the markup inside a DOM member's element; the subclasses load it at its end.
class TVnXMLDOMMemberDeserializer : public TVnXMLDeserializer {
  VN_DECLARE_CLASS(TVnXMLDOMMemberDeserializer, TVnXMLDeserializer)
 public:
  TVnXMLDOMMemberDeserializer();
  ~TVnXMLDOMMemberDeserializer() override;
  void DoStartElement(std::u16string_view AURI, std::u16string_view ALocalName, std::u16string_view AQName,
                      IVnSAXAttributes* AAttributes) override;
  void DoCharacters(std::u16string_view AText) override;
  void DoEndElement(std::u16string_view AURI, std::u16string_view ALocalName, std::u16string_view AQName) override;

 protected:
  /// Gives the collected markup to the instance.
  virtual void Load(const detail::DOMMemberText& AText);

 private:
  std::unique_ptr<detail::DOMMemberText> FMarkup;
};

class TVnXMLDocDeserializer : public TVnXMLDOMMemberDeserializer {
  VN_DECLARE_CLASS(TVnXMLDocDeserializer, TVnXMLDOMMemberDeserializer)
 public:
  /// A new, empty document.
  TObject* CreateInstance(const TVnTypeInfo*& AType) override;
  void Deserialize(TStream& AStream) override;
  using TVnXMLDeserializer::Deserialize;

 protected:
  void Load(const detail::DOMMemberText& AText) override;
};

class TVnDOMElementSerializer : public TVnXMLSerializer {
  VN_DECLARE_CLASS(TVnDOMElementSerializer, TVnXMLSerializer)
 public:
  void Serialize(TStream& AStream) override;
  using TVnXMLSerializer::Serialize;
  /// Below the root: the element's markup.
  void DoSerialize(TVnSerializer* AParent, std::u16string_view AName, std::u16string_view APath) override;
};

class TVnDOMElementDeserializer : public TVnXMLDOMMemberDeserializer {
  VN_DECLARE_CLASS(TVnDOMElementDeserializer, TVnXMLDOMMemberDeserializer)
 public:
  /// Raises cVnNotSupported: an element needs its document.
  TObject* CreateInstance(const TVnTypeInfo*& AType) override;
  void Deserialize(TStream& AStream) override;
  using TVnXMLDeserializer::Deserialize;

 protected:
  void Load(const detail::DOMMemberText& AText) override;
};

/// A DOM document as JSON, through the DOM's JSON writer; registered for dsfJSON, with no reader.
class TVnXMLDocJSONSerializer : public TVnJSONSerializer {
  VN_DECLARE_CLASS(TVnXMLDocJSONSerializer, TVnJSONSerializer)
 public:
  void Serialize(TStream& AStream) override;
  using TVnJSONSerializer::Serialize;
  void SerializeStartType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) override;
  void SerializeEndType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) override;
  void DoSerialize(TVnSerializer* AParent, std::u16string_view AName, std::u16string_view APath) override;
};

}  // namespace vn
