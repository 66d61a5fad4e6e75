// The store the process uses until another is installed with SetSettingsBackend: one seam per
// platform. On Windows (default_settings_backend_windows.cpp) it is the current user's registry
// (registry_backend.h); elsewhere (default_settings_backend_posix.cpp) the per-user file tree
// of file_settings_backend.h.
#pragma once

#include <memory>

#include "velquor/settings/registry_store.h"

namespace velquor {

std::shared_ptr<SettingsBackend> MakeDefaultSettingsBackend();

}  // namespace velquor
