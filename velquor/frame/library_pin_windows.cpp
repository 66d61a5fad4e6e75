#include "velquor/frame/library_pin.h"

#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

namespace velquor {

bool PinLibraryModule() {
  // GET_MODULE_HANDLE_EX_FLAG_PIN: the module that holds this function stays loaded until the
  // process ends, whatever FreeLibrary calls follow.
  HMODULE module = nullptr;
  return GetModuleHandleExW(
             GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
             reinterpret_cast<LPCWSTR>(reinterpret_cast<const void*>(&PinLibraryModule)),
             &module) != 0;
}

}  // namespace velquor
