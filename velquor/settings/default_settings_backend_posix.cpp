#include "velquor/settings/default_settings_backend.h"

#include "velquor/settings/file_settings_backend.h"

namespace velquor {

std::shared_ptr<SettingsBackend> MakeDefaultSettingsBackend() {
  return std::make_shared<FileSettingsBackend>();
}

}  // namespace velquor
