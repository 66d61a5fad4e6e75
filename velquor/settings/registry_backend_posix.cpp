// Off Windows there is no registry: the registry store is never available.
#include "velquor/settings/registry_backend.h"

#include <utility>

namespace velquor {

RegistryBackend::RegistryBackend(std::string rootPath) : rootPath_(std::move(rootPath)) {}

std::unique_ptr<SettingsKey> RegistryBackend::OpenCurrentUser() {
  return nullptr;
}

}  // namespace velquor
