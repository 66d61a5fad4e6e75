// The library's resources on POSIX systems: the tables compiled into it at build time.
#include "velquor/frame/module.h"

namespace velquor {

const ResourceModule& LibraryResources() {
  // Never destroyed, so lookups from other static destructors stay safe.
  static const ResourceModule* resources =
      new EmbeddedResourceModule("velquor", EmbeddedResourceTable());
  return *resources;
}

}  // namespace velquor
