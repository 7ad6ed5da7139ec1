// What the walker and the builder need to know of a type's members, worked out once per type:
// the members written, in order, with their names, types and hints; and the members a text can
// name, for lookups by name. Reflection and hints never change after registration, so a plan
// is made on first use and kept for the life of the process.
#pragma once

#include <string_view>
#include <vector>

#include "vnxml/serializer_walker.h"

namespace vn::detail {

/// A-Z folded, no allocation; names of members and of the XML vocabulary are ASCII in practice.
bool SameName(std::u16string_view A, std::u16string_view B) noexcept;

struct PlannedMember {
  TRttiField* Field = nullptr;
  TRttiProperty* Prop = nullptr;
  /// The name written: a property's shoName value, else the member's own name.
  std::u16string_view Name;
  /// The declared type (a TValue member's real type is its content's).
  const TVnTypeInfo* Type = nullptr;
  TVnAttributes Attributes;
  bool IsTValue = false;
  /// A property with an shoSerializerHelper hint.
  const SerializerHint* HelperHint = nullptr;
};

struct NamedMember {
  std::u16string_view Name;
  TRttiField* Field = nullptr;
  TRttiProperty* Prop = nullptr;
  /// The member's declared type, looked up once.
  const TVnTypeInfo* Type = nullptr;
  /// No member before it in its list has its name (ignoring case): found directly, it is the
  /// one a search from the start finds.
  bool FirstOfName = true;
};

struct MemberPlan {
  /// Written by the walker, properties first, each name once.
  std::vector<PlannedMember> Written;
  /// Read by name: fields, then (for classes) properties, then properties by their shoName.
  std::vector<NamedMember> Fields;
  std::vector<NamedMember> Properties;
  std::vector<NamedMember> HintNamed;
  /// The member that takes the element's own text (shoNodeType "NodeValue"), or none.
  NamedMember NodeValue;
};

/// The plan of a record or class type.
const MemberPlan& PlanOf(const TVnTypeInfo* AType);

}  // namespace vn::detail
