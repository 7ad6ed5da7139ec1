// The built-in registrations of serializers and helpers, run once on the first use of either
// registry, so that a host linking the static library needs no initialiser.
#pragma once

namespace vn::detail {

/// Runs every built-in registration once; a registration that itself registers (and so comes
/// back here) goes straight through.
void EnsureSerializerStartup();

/// The XML pair of every type, string lists, components and TValue.
void RegisterXMLSerializers();
/// The JSON notation (json_registration.cpp).
void RegisterJSONSerializers();
/// The XS value records in both notations (xs_registration.cpp).
void RegisterXsSerializers();

}  // namespace vn::detail
