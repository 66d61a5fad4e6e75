// The entry point of velquor.dll. Process attach joins the library's resources to the
// resource chain (and reports failure to the loader if that fails); process detach removes
// them; thread attach and detach do nothing. Linked only into the DLL: a program using the
// static library attaches on its first lookup instead.
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include "velquor/frame/module.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID /*reserved*/) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      return velquor::VelquorModuleEntry(velquor::ModuleReason::kProcessAttach) != 0;
    case DLL_PROCESS_DETACH:
      return velquor::VelquorModuleEntry(velquor::ModuleReason::kProcessDetach) != 0;
    default:
      return TRUE;
  }
}
