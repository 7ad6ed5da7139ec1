// xml_dom_serializer.h: a DOM document or element as an XML value (unit uVnXMLDOM).
// At the root of a write or read, a document is its own text: written by the document's own
// output, read by its own loader. An element likewise, in its document's code page (UTF-8
// without one); an element is never created by a read, it must be given.
#pragma once

#include "vnxml/xml_serializer.h"

namespace vn {

inline constexpr char16_t cVnNotSupported[] = u"Not supported";
/// Programming fault: one of these classes registered for a type that is no document or element.
inline constexpr char16_t cVnNotADOMInstance[] = u"The instance is no DOM document or element!";

class TVnXMLDocSerializer : public TVnXMLSerializer {
  VN_DECLARE_CLASS(TVnXMLDocSerializer, TVnXMLSerializer)
 public:
  void Serialize(TStream& AStream) override;
  using TVnXMLSerializer::Serialize;
};

class TVnXMLDocDeserializer : public TVnXMLDeserializer {
  VN_DECLARE_CLASS(TVnXMLDocDeserializer, TVnXMLDeserializer)
 public:
  /// A new, empty document.
  TObject* CreateInstance(const TVnTypeInfo*& AType) override;
  void Deserialize(TStream& AStream) override;
  using TVnXMLDeserializer::Deserialize;
};

class TVnDOMElementSerializer : public TVnXMLSerializer {
  VN_DECLARE_CLASS(TVnDOMElementSerializer, TVnXMLSerializer)
 public:
  void Serialize(TStream& AStream) override;
  using TVnXMLSerializer::Serialize;
};

class TVnDOMElementDeserializer : public TVnXMLDeserializer {
  VN_DECLARE_CLASS(TVnDOMElementDeserializer, TVnXMLDeserializer)
 public:
  /// Raises cVnNotSupported: an element needs its document.
  TObject* CreateInstance(const TVnTypeInfo*& AType) override;
  void Deserialize(TStream& AStream) override;
  using TVnXMLDeserializer::Deserialize;
};

}  // namespace vn
