// The element names and reflected members of the container helpers.
#include "serializer/helpers_common.h"

#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_types.h"
#include "vnxml/serializer_containers.h"

namespace vn::detail {

namespace {

const TRttiType* RuntimeType(const TObject* AObject) { return TRttiContext::GetType(AObject->ClassType()); }

template <class M>
M* Require(M* AMember, const TRttiType* AType, std::u16string_view AName) {
  if (!AMember)
    throw EAssertionFailed(cVnContainerMemberMissing, {AType ? AType->Name() : UnicodeString(u"nil"), UnicodeString(AName)});
  return AMember;
}

}  // namespace

UnicodeString ContainerElementName(std::u16string_view AShortName) {
  const size_t open = AShortName.find(u'<');
  if (open != AShortName.npos && AShortName.size() > open + 1) {
    const std::u16string_view argument = AShortName.substr(open + 1, AShortName.size() - open - 2);
    if (const TVnTypeInfo* type = TVnTypes::GetTypeInfo(argument, tntQualifiedName, true, mtkUnknown))
      return type->SchemaName();
  }
  return TVnTypes::GetTypeInfo(TObject::StaticClass())->SchemaName();
}

TRttiProperty* ContainerProperty(const TObject* AObject, std::u16string_view AName) {
  const TRttiType* type = RuntimeType(AObject);
  return Require(type ? type->GetProperty(AName) : nullptr, type, AName);
}

TRttiIndexedProperty* ContainerIndexed(const TObject* AObject, std::u16string_view AName) {
  const TRttiType* type = RuntimeType(AObject);
  return Require(type ? type->GetIndexedProperty(AName) : nullptr, type, AName);
}

TRttiMethod* ContainerMethod(const TVnTypeInfo* AType, std::u16string_view AName) {
  const TRttiType* type = AType ? AType->RttiType() : nullptr;
  return Require(type ? type->GetMethod(AName) : nullptr, type, AName);
}

}  // namespace vn::detail
