// Module lifecycle and the resource chain.
//
// The library is modelled as an extension module of its host: when it is attached, its
// resources (string table and custom binary resources) join a process-wide resource chain,
// which every string and resource lookup searches, newest link first. Attaching happens on
// the first lookup if the host has not done it explicitly; detaching removes the module's
// links again.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "velquor/frame/resource_table.h"
#include "velquor/frame/string_table.h"

namespace velquor {

// The resources of one module: its string table and its custom binary resources.
class ResourceModule {
 public:
  virtual ~ResourceModule() = default;
  virtual const std::string& Name() const = 0;
  // The bytes of the resource of that type and name, or nothing. They stay valid as long as
  // the module exists (the library's own: the whole process).
  virtual std::optional<std::span<const unsigned char>> FindResource(
      std::string_view type, std::string_view name) const = 0;
  // Copies the text of that identifier into `out`; false when the module has none.
  virtual bool FindString(std::uint32_t id, std::string& out) const = 0;
};

// A module whose resources are compiled-in tables (EmbeddedResource, resource_table.h). The
// string table is parsed from the module's string-table resources on first use.
class EmbeddedResourceModule final : public ResourceModule {
 public:
  EmbeddedResourceModule(std::string name, std::span<const EmbeddedResource> resources);

  const std::string& Name() const override { return name_; }
  std::optional<std::span<const unsigned char>> FindResource(std::string_view type,
                                                             std::string_view name) const override;
  bool FindString(std::uint32_t id, std::string& out) const override;

 private:
  std::string name_;
  std::span<const EmbeddedResource> resources_;
  mutable std::once_flag stringsParsed_;
  mutable StringTable strings_;
};

// The library's own resources: on POSIX systems the tables compiled into it, on Windows the
// resources of the module image (velquor.dll, or the program the static library is linked
// into). Implemented per platform (library_resources_posix.cpp, library_resources_windows.cpp).
const ResourceModule& LibraryResources();

// The extension-module record: which resources a module contributes and whether it is
// initialised.
struct CExtensionModule {
  const ResourceModule* resources = nullptr;
  bool initialized = false;
};

// One link of the resource chain. Creating it joins its module's resources to the chain;
// links are owned by the chain and freed when their module detaches.
class CDynLinkLibrary {
 public:
  explicit CDynLinkLibrary(CExtensionModule& module) : module_(&module) {}
  CDynLinkLibrary(const CDynLinkLibrary&) = delete;
  CDynLinkLibrary& operator=(const CDynLinkLibrary&) = delete;

  CExtensionModule& Module() const { return *module_; }

 private:
  CExtensionModule* module_;
};

// Initialises `module` with `resources` (fails, returning false, when `resources` is null).
bool InitExtensionModule(CExtensionModule& module, const ResourceModule* resources);
// Frees every chain link of `module` and marks it uninitialised.
void TermExtensionModule(CExtensionModule& module);
// Creates a chain link for an initialised module; null if the module is not initialised or
// memory runs out. The chain owns the link.
CDynLinkLibrary* AddResourceLink(CExtensionModule& module);
// Number of links in the chain (all modules).
std::size_t ResourceChainLength();

// The library's own module record.
CExtensionModule& VelquorModule();

// Reason codes of the module entry point.
enum class ModuleReason : std::uint32_t {
  kProcessDetach = 0,
  kProcessAttach = 1,
  kThreadAttach = 2,
  kThreadDetach = 3,
};

// Module entry point. Process attach initialises the library's record and creates its first
// chain link (1 on success, 0 on failure); process detach terminates the record (1); any
// other reason does nothing (1).
int VelquorModuleEntry(ModuleReason reason);

// Attaches the library once if no attach or detach has happened yet; lookups call it.
void EnsureVelquorAttached();

// Creates a further chain link for the library's record, so that another module of the host
// can find the library's strings and resources. Attaches the library first if nothing has
// yet (EnsureVelquorAttached), so a call before any other library call gets a link; null if
// the library has been detached or memory runs out. The chain owns the link; it lives until
// the library detaches.
CDynLinkLibrary* InitVelquorModule();

// Searches the chain, newest link first, for a string (copied into `out`; true if found) or
// a custom resource (nothing if absent). Resource bytes belong to their module and stay valid
// as long as it exists; the library's own live for the whole process.
bool FindStringOnChain(std::uint32_t id, std::string& out);
std::optional<std::span<const unsigned char>> FindResourceOnChain(std::string_view type,
                                                                  std::string_view name);

}  // namespace velquor
