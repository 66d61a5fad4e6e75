// Keeps the library's own module (velquor.dll, libvelquor.so, or the program it is linked
// into) loaded until the process ends, so that an unload request cannot unmap code that the
// library's own threads still run or return into. Used once, when the worker pool starts.
#pragma once

namespace velquor {

// Returns true if the module is now pinned (or, for a program, cannot be unloaded anyway).
bool PinLibraryModule();

}  // namespace velquor
