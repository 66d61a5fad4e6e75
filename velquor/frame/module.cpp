#include "velquor/frame/module.h"

#include <algorithm>
#include <memory>
#include <new>
#include <shared_mutex>
#include <vector>

#include "velquor/frame/message.h"

namespace velquor {

namespace {

struct ResourceChain {
  std::shared_mutex mutex;
  std::vector<std::unique_ptr<CDynLinkLibrary>> links;  // oldest first
};

// Never destroyed, so lookups from other static destructors stay safe.
ResourceChain& Chain() {
  static ResourceChain* chain = new ResourceChain;
  return *chain;
}

std::once_flag firstAttach;
bool lifecycleTouched = false;  // guarded by the chain mutex

}  // namespace

EmbeddedResourceModule::EmbeddedResourceModule(std::string name,
                                               std::span<const EmbeddedResource> resources)
    : name_(std::move(name)), resources_(resources) {}

std::optional<std::span<const unsigned char>> EmbeddedResourceModule::FindResource(
    std::string_view type, std::string_view name) const {
  for (const EmbeddedResource& resource : resources_) {
    if (type == resource.type && name == resource.name) {
      return std::span<const unsigned char>(resource.data, resource.size);
    }
  }
  return std::nullopt;
}

bool EmbeddedResourceModule::FindString(std::uint32_t id, std::string& out) const {
  std::call_once(stringsParsed_, [this] {
    // A module may split its string table over several resources of the string-table type;
    // together they form one table, so an identifier may appear in only one of them.
    for (const EmbeddedResource& resource : resources_) {
      if (std::string_view(resource.type) != kStringTableType) continue;
      StringTable part;
      std::string error;
      const std::string_view text(reinterpret_cast<const char*>(resource.data), resource.size);
      if (!ParseStringTable(text, part, error)) {
        ShowMessage(MessageKind::kError,
                    "string table " + name_ + "/" + resource.name + ": " + error);
        continue;
      }
      for (auto& [id, value] : part) {
        if (!strings_.emplace(id, std::move(value)).second) {
          ShowMessage(MessageKind::kError, "string table " + name_ + "/" + resource.name +
                                               ": identifier " + std::to_string(id) +
                                               " is defined twice");
        }
      }
    }
  });
  const auto found = strings_.find(id);
  if (found == strings_.end()) return false;
  out = found->second;
  return true;
}

bool InitExtensionModule(CExtensionModule& module, const ResourceModule* resources) {
  if (resources == nullptr) return false;
  std::unique_lock lock(Chain().mutex);
  module.resources = resources;
  module.initialized = true;
  return true;
}

void TermExtensionModule(CExtensionModule& module) {
  std::unique_lock lock(Chain().mutex);
  auto& links = Chain().links;
  std::erase_if(links, [&](const auto& link) { return &link->Module() == &module; });
  module.initialized = false;
}

CDynLinkLibrary* AddResourceLink(CExtensionModule& module) {
  std::unique_lock lock(Chain().mutex);
  if (!module.initialized) return nullptr;
  auto link = std::unique_ptr<CDynLinkLibrary>(new (std::nothrow) CDynLinkLibrary(module));
  if (!link) return nullptr;
  try {
    Chain().links.push_back(std::move(link));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  return Chain().links.back().get();
}

std::size_t ResourceChainLength() {
  std::shared_lock lock(Chain().mutex);
  return Chain().links.size();
}

CExtensionModule& VelquorModule() {
  static CExtensionModule module;
  return module;
}

namespace {

void MarkLifecycleTouched() {
  std::unique_lock lock(Chain().mutex);
  lifecycleTouched = true;
}

}  // namespace

int VelquorModuleEntry(ModuleReason reason) {
  switch (reason) {
    case ModuleReason::kProcessAttach:
      MarkLifecycleTouched();
      if (!InitExtensionModule(VelquorModule(), &LibraryResources())) return 0;
      return AddResourceLink(VelquorModule()) != nullptr ? 1 : 0;
    case ModuleReason::kProcessDetach:
      MarkLifecycleTouched();
      TermExtensionModule(VelquorModule());
      return 1;
    case ModuleReason::kThreadAttach:
    case ModuleReason::kThreadDetach:
      return 1;
  }
  return 1;
}

void EnsureVelquorAttached() {
  std::call_once(firstAttach, [] {
    bool touched = false;
    {
      std::shared_lock lock(Chain().mutex);
      touched = lifecycleTouched;
    }
    if (!touched) VelquorModuleEntry(ModuleReason::kProcessAttach);
  });
}

CDynLinkLibrary* InitVelquorModule() {
  // A module may call this before any other library call: attach first, as a lookup would.
  EnsureVelquorAttached();
  return AddResourceLink(VelquorModule());
}

bool FindStringOnChain(std::uint32_t id, std::string& out) {
  EnsureVelquorAttached();
  std::shared_lock lock(Chain().mutex);
  const auto& links = Chain().links;
  for (auto link = links.rbegin(); link != links.rend(); ++link) {
    if ((*link)->Module().resources->FindString(id, out)) return true;
  }
  return false;
}

std::optional<std::span<const unsigned char>> FindResourceOnChain(std::string_view type,
                                                                  std::string_view name) {
  EnsureVelquorAttached();
  std::shared_lock lock(Chain().mutex);
  const auto& links = Chain().links;
  for (auto link = links.rbegin(); link != links.rend(); ++link) {
    if (auto found = (*link)->Module().resources->FindResource(type, name)) return found;
  }
  return std::nullopt;
}

}  // namespace velquor
