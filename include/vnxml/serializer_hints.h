// serializer_hints.h: SerializerHint, the declarative steering of a type or member (unit uVnSerializer).
// A host puts hints beside its type in the reflection registration, one line each:
//   .Attr<SerializerHint>(shoName, u"items")           // on the member just added
//   .TypeAttr<SerializerHint>(shoEnumPrefix, u"fr")     // on the type
// The walker and builder read them through GetSerializerHint.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "vnxml/common/rtti.h"

namespace vn {

/// Programming faults of a helper hint: a name no registered class has, or a class of the wrong base.
inline constexpr char16_t cVnHelperClassNotRegistered[] =
    u"Check if you registered the helperclass and/or used the QualifiedName in the hint?";
inline constexpr char16_t cVnNotASerializerHelper[] =
    u"The specified helperclass is not a descendant of TVnSerializerHelper!";
inline constexpr char16_t cVnNotADeserializerHelper[] =
    u"The specified helperclass is not a descendant of TVnDeserializerHelper!";

/// The kinds of hint; what each value means stands beside it.
enum TSerializerHintOption : uint8_t {
  shoName,                ///< the member's name in the text; empty hides it (see the walker)
  shoRequired,            ///< informative only
  shoSerializerHelper,    ///< qualified name of a TVnSerializerHelper class for the property
  shoDeserializerHelper,  ///< qualified name of a TVnDeserializerHelper class for the property
  shoNodeType,            ///< "NodeValue": the member takes the element's own text
  shoEnumPrefix,          ///< prefix of an enumeration's value names, dropped in the text
  shoDoNotSerialize,      ///< not written; still read
  shoTimezoneFormat       ///< name of a TVnTimeZoneFormat value for a date or time member
};

/// How a serializer reached a member.
enum TVnSerializerMemberType : uint8_t { smtProperty, smtField };

/// The answer to whether a member can be read.
enum TVnCanDeserialize : uint8_t {
  desYes,    ///< the member exists; its text goes to DeserializeValue
  desNo,     ///< not handled here; the normal member lookup runs
  desIgnore  ///< the element and all below it are passed over
};

/// One hint on a type or member; a type or member may carry several.
class SerializerHint : public TCustomAttribute {
  VN_DECLARE_CLASS(SerializerHint, TCustomAttribute)
 public:
  SerializerHint() = default;
  SerializerHint(TSerializerHintOption AOption, std::u16string_view AValue = {}) : FOption(AOption), FValue(AValue) {}

  TSerializerHintOption GetOption() const noexcept { return FOption; }
  const UnicodeString& GetValue() const noexcept { return FValue; }

  /// The class the value names, by qualified name; a name no registered class has is an
  /// EAssertionFailed (cVnHelperClassNotRegistered), a class of another base an Exception
  /// (cVnNotASerializerHelper). Nothing is created.
  TClass GetSerializerHelperClass() const;
  /// The same for a TVnDeserializerHelper (cVnNotADeserializerHelper).
  TClass GetDeserializerHelperClass() const;

  TSerializerHintOption FOption = shoName;
  UnicodeString FValue;
};

/// The first hint of AOption in AAttributes, in declared order; false and AHint nullptr when none.
bool GetSerializerHint(std::span<TCustomAttribute* const> AAttributes, TSerializerHintOption AOption,
                       SerializerHint*& AHint);
/// The same over the attributes of a type or member; a nullptr AObject has none.
bool GetSerializerHint(const TRttiObject* AObject, TSerializerHintOption AOption, SerializerHint*& AHint);

}  // namespace vn
