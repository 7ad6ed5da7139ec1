// Texts of the JSON tree that the message table of the contract doesn't hold.
#pragma once

namespace vn::detail {
inline constexpr char16_t cJSONInvalidCast[] = u"Invalid class typecast";
inline constexpr char16_t cJSONMembersOnly[] = u"An object holds members only";
// The tree handler's words for events a node cannot take.
inline constexpr char16_t cJSONHandlerOops[] = u"oeps?";
inline constexpr char16_t cJSONInvalidObjectType[] = u"Invalid objecttype";
// A load keeps all its text in the code units of its first piece.
inline constexpr char16_t cJSONLoadTextWidth[] = u"JSON load: text of two widths";
}  // namespace vn::detail
