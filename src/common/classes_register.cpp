// Makes the platform's classes findable by name (GetClass("TStringList")).
#include "internal/platform_classes.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/sync_objs.h"

namespace vn::detail {

void RegisterPlatformClasses() {
  for (TClass c : {TPersistent::StaticClass(), TComponent::StaticClass(), TList::StaticClass(),
                   TObjectList::StaticClass(), TStrings::StaticClass(), TStringList::StaticClass(),
                   TCriticalSection::StaticClass()})
    RegisterClass(c);
}

}  // namespace vn::detail
