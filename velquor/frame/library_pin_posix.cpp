#include "velquor/frame/library_pin.h"

#include <dlfcn.h>

namespace velquor {

bool PinLibraryModule() {
  // Reopening the object that holds this function with RTLD_NODELETE marks it never to be
  // unloaded; RTLD_NOLOAD only finds it, it loads nothing new. The extra reference is kept.
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&PinLibraryModule), &info) == 0) return false;
  return dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE) != nullptr;
}

}  // namespace velquor
