// The JSON writers of streams, string lists, components and JSON documents.
#include <algorithm>
#include <vector>

#include "serializer/json_base64.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/string_list.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_document.h"
#include "vnxml/json_serializer.h"
#include "vnxml/json_values.h"

namespace vn {

void TVnJSONStreamSerializer::DoSerialize(TVnSerializer* AParent, std::u16string_view AName,
                                          std::u16string_view APath) {
  TVnJSONSerializer::DoSerialize(AParent, AName, APath);
  TObject* object = static_cast<TObject*>(FInstancePtr);
  auto* stream = dynamic_cast<TStream*>(object);
  VnAssert(stream != nullptr, vn::Format(cVnJSONInstanceNotA, {u"TStream"}));
  const Int64 position = stream->GetPosition();
  stream->SetPosition(0);
  std::string bytes(static_cast<size_t>(stream->GetSize()), '\0');
  stream->ReadBuffer(bytes.data(), static_cast<Int64>(bytes.size()));
  stream->SetPosition(position);
  SerializeName(u"data", smtField, vtkClass, vtkText4);
  Write('"');
  Write(std::string_view(detail::Base64Encode(bytes)));
  Write('"');
  FPrefix = ",";
}

void TVnJSONStreamSerializer::SerializeEndType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) {
  if (AType && AType->Kind() == vtkText4) {
    FPrefix = ",";
    return;
  }
  TVnJSONSerializer::SerializeEndType(AName, AType, AIndex);
}

void TVnJSONStringsSerializer::DoSerialize(TVnSerializer* AParent, std::u16string_view AName,
                                           std::u16string_view APath) {
  TVnJSONSerializer::DoSerialize(AParent, AName, APath);
  auto* strings = dynamic_cast<TStrings*>(static_cast<TObject*>(FInstancePtr));
  VnAssert(strings != nullptr, vn::Format(cVnJSONInstanceNotA, {u"TStrings"}));
  SerializeName(u"items", smtField, vtkClass, vtkDynArray);
  Write('[');
  for (Integer i = 0; i < strings->GetCount(); ++i) {
    if (i > 0) Write(',');
    Write('"');
    Write(VnStrToJSON(strings->GetStrings(i)));
    Write('"');
  }
  Write(']');
  FPrefix = ",";
}

void TVnJSONComponentSerializer::DoSerialize(TVnSerializer* AParent, std::u16string_view AName,
                                             std::u16string_view APath) {
  auto* component = dynamic_cast<TComponent*>(static_cast<TObject*>(FInstancePtr));
  if (component && component->GetOwner()) {
    SerializeName(u"Owner", smtProperty, vtkClass, vtkText4);
    Write('"');
    Write(VnStrToJSON(component->GetOwner()->GetName()));
    Write('"');
    FPrefix = ",";
  }
  TVnJSONSerializer::DoSerialize(AParent, AName, APath);
}

void TVnJSONDocSerializer::Serialize(TStream& AStream) {
  auto* document = dynamic_cast<TVnJSONDocument*>(static_cast<TObject*>(FInstancePtr));
  VnAssert(document != nullptr, vn::Format(cVnJSONInstanceNotA, {u"TVnJSONDocument"}));
  if (!ParamIsTrue(u"excluderoot")) return document->SaveToStream(AStream, false, cVnCodePageUTF8, false);
  // The text of the root value without its first and last byte: the outer brackets.
  TVnStringStream text(cVnCodePageUTF8);
  document->SaveToStream(text, false, cVnCodePageUTF8, false);
  const Int64 size = text.GetSize();
  if (size <= 2) return;
  text.SetPosition(1);
  std::vector<char> buffer(static_cast<size_t>(std::min<Int64>(size - 2, 0x100000)));
  for (Int64 left = size - 2; left > 0;) {
    const Int64 n = std::min<Int64>(left, static_cast<Int64>(buffer.size()));
    text.ReadBuffer(buffer.data(), n);
    AStream.WriteBuffer(buffer.data(), n);
    left -= n;
  }
}

}  // namespace vn
