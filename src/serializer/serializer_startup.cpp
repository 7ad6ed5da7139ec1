// The start-up table of the serializer registries. Each notation and container unit adds its
// registration function here: naming it from this file is what links it into every host.
#include "serializer/serializer_startup.h"

#include <mutex>

#include "vnxml/serializer.h"
#include "vnxml/serializer_serializable.h"

namespace vn::detail {

namespace {

/// The frame's own persistent classes, findable by name as texts name them.
void RegisterFrameTypes() { VnRegisterType(TVnSerializableComponent::StaticClass()); }

using StartupRegistration = void (*)();
constexpr StartupRegistration kStartup[] = {
    &RegisterFrameTypes,
    &RegisterXMLSerializers,
    &RegisterJSONSerializers,
    // xs-types: the XS value records in both notations
    &RegisterXsSerializers,
};

thread_local bool tRunning = false;

}  // namespace

void EnsureSerializerStartup() {
  static std::once_flag once;
  if (tRunning) return;
  std::call_once(once, [] {
    tRunning = true;
    try {
      for (StartupRegistration registration : kStartup) registration();
    } catch (...) {
      tRunning = false;
      throw;
    }
    tRunning = false;
  });
}

}  // namespace vn::detail
