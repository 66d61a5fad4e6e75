#include "velquor/settings/default_settings_backend.h"

#include "velquor/settings/registry_backend.h"

namespace velquor {

std::shared_ptr<SettingsBackend> MakeDefaultSettingsBackend() {
  return std::make_shared<RegistryBackend>();
}

}  // namespace velquor
