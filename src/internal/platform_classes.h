// platform_classes.h: the registration of the platform's classes with the class registry.
#pragma once

namespace vn::detail {

/// Registers TPersistent, TComponent, the lists and TCriticalSection for GetClass; runs once, on
/// the first GetClass, so that it needs no start-up order.
void RegisterPlatformClasses();

}  // namespace vn::detail
