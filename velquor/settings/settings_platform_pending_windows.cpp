// PLACEHOLDER so that the Windows build links while the Win32 settings-file and locale
// functions are written: every call fails. Delete this file when
// settings_files_platform_windows.cpp and locale_platform_windows.cpp are added.
#include "velquor/settings/locale_platform.h"
#include "velquor/settings/settings_files_platform.h"

namespace velquor {

std::filesystem::path PlatformSettingsRoot() { return {}; }
bool IsSettingsFolder(const std::string&) { return false; }
MakeFolderResult MakeSettingsFolder(const std::string&) { return MakeFolderResult::kFailed; }
bool MakeSettingsFolders(const std::string&) { return false; }
bool VisitFolderEntries(const std::string&, const std::function<bool(std::string_view)>&) {
  return false;
}
FileReadStatus ReadWholeFile(const std::string&, std::size_t, std::string&) {
  return FileReadStatus::kFailed;
}
bool WriteNewFile(const std::string&, std::string_view, bool) { return false; }
bool RenameOver(const std::string&, const std::string&) { return false; }
void RemoveSettingsFile(const std::string&) {}
bool FlushFolder(const std::string&) { return false; }
ExclusiveFileLock::ExclusiveFileLock(const std::string&) {}
ExclusiveFileLock::~ExclusiveFileLock() = default;

std::optional<LocaleDescription> DescribePlatformLocale(const char*) { return std::nullopt; }
std::string ReadUserDecimalSeparator() { return {}; }
bool ToLocalTimeParts(std::time_t time, std::tm& parts) { return localtime_s(&parts, &time) == 0; }

}  // namespace velquor
