// The library's resources on Windows: the module resources of the image that holds this code
// (velquor.dll, or a program linked with the static library and its velquor.rc). Custom
// resources are found with FindResourceA, LoadResource and LockResource; strings are the
// image's STRINGTABLE, loaded by identifier and converted from UTF-16 to UTF-8.
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>
#undef FindResource  // the ANSI/Unicode macro would rename ResourceModule::FindResource

#include <string>

#include "velquor/frame/module.h"

namespace velquor {
namespace {

// The module that contains this function's code.
HMODULE ImageOfThisCode() {
  HMODULE image = nullptr;
  const auto address = reinterpret_cast<LPCSTR>(&ImageOfThisCode);
  if (!GetModuleHandleExA(
          GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
          address, &image)) {
    return nullptr;
  }
  return image;
}

class ImageResourceModule final : public ResourceModule {
 public:
  ImageResourceModule(std::string name, HMODULE image) : name_(std::move(name)), image_(image) {}

  const std::string& Name() const override { return name_; }

  std::optional<std::span<const unsigned char>> FindResource(
      std::string_view type, std::string_view name) const override {
    if (image_ == nullptr) return std::nullopt;
    const std::string typeText(type);
    const std::string nameText(name);
    HRSRC found = ::FindResourceA(image_, nameText.c_str(), typeText.c_str());
    if (found == nullptr) return std::nullopt;
    HGLOBAL loaded = LoadResource(image_, found);
    const DWORD size = SizeofResource(image_, found);
    const void* bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (bytes == nullptr) return std::nullopt;
    return std::span<const unsigned char>(static_cast<const unsigned char*>(bytes), size);
  }

  // A STRINGTABLE cannot tell an empty text from an absent one: both read as absent.
  bool FindString(std::uint32_t id, std::string& out) const override {
    if (image_ == nullptr || id > 0xFFFF) return false;
    const wchar_t* text = nullptr;
    // With a zero buffer size LoadStringW gives a pointer to the resource text itself.
    const int length = LoadStringW(image_, id, reinterpret_cast<LPWSTR>(&text), 0);
    if (length <= 0 || text == nullptr) return false;
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    if (bytes <= 0) return false;
    out.resize(static_cast<std::size_t>(bytes));
    WideCharToMultiByte(CP_UTF8, 0, text, length, out.data(), bytes, nullptr, nullptr);
    return true;
  }

 private:
  std::string name_;
  HMODULE image_;
};

}  // namespace

const ResourceModule& LibraryResources() {
  // Never destroyed, so lookups from other static destructors stay safe.
  static const ResourceModule* resources = new ImageResourceModule("velquor", ImageOfThisCode());
  return *resources;
}

}  // namespace velquor
