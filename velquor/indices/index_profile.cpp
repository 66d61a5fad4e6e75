#include "velquor/indices/index_profile.h"

#include <initializer_list>
#include <limits>

#include "velquor/settings/registry_store.h"

namespace velquor {

namespace {

std::string FoldCase(std::string_view name) {
  std::string folded(name);
  for (char& c : folded) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return folded;
}

}  // namespace

bool SettingsProfileStore::WriteProfileString(std::string_view section, std::string_view entry,
                                              std::string_view value) {
  return SetRegistryString(section, entry, value);
}

std::string SettingsProfileStore::GetProfileString(std::string_view section, std::string_view entry,
                                                   std::string_view defaultValue) const {
  return GetRegistryString(section, entry, defaultValue);
}

bool MemoryProfileStore::WriteProfileString(std::string_view section, std::string_view entry,
                                            std::string_view value) {
  values_[{FoldCase(section), FoldCase(entry)}] = std::string(value);
  return true;
}

std::string MemoryProfileStore::GetProfileString(std::string_view section, std::string_view entry,
                                                 std::string_view defaultValue) const {
  const auto found = values_.find({FoldCase(section), FoldCase(entry)});
  return found == values_.end() ? std::string(defaultValue) : found->second;
}

ProfileStore& DefaultProfileStore() {
  static SettingsProfileStore store;
  return store;
}

std::string JoinProfileList(std::span<const std::uint32_t> values) {
  std::string text;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) text.push_back(',');
    text += std::to_string(values[i]);
  }
  return text;
}

bool ParseProfileList(std::string_view text, std::span<std::uint32_t> values, std::size_t& count) {
  if (text.empty()) {
    count = 0;
    return true;
  }
  // First pass checks the text and counts its fields; the second stores them, so a refused
  // list leaves `values` as it was.
  for (const bool store : {false, true}) {
    std::size_t n = 0;
    std::size_t pos = 0;
    while (true) {
      if (n == values.size()) return false;  // a field more than fits
      std::uint64_t value = 0;
      const std::size_t start = pos;
      while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') {
        value = value * 10 + static_cast<std::uint64_t>(text[pos] - '0');
        if (value > std::numeric_limits<std::uint32_t>::max()) return false;
        ++pos;
      }
      if (pos == start) return false;  // an empty field or a stray character
      if (store) values[n] = static_cast<std::uint32_t>(value);
      ++n;
      if (pos == text.size()) break;
      if (text[pos] != ',') return false;
      ++pos;
    }
    if (store) count = n;
  }
  return true;
}

bool WriteIndexListProfile(ProfileStore& profile, std::string_view section, std::string_view entry,
                           const IndexList& list) {
  if (list.count > kMaxSelectedIndices) return false;
  const std::span<const std::uint32_t> identifiers(list.identifiers.data(), list.count);
  const std::span<const std::uint32_t> parameters(list.parameters.data(), list.count);
  const std::string parameterEntry = std::string(entry) + std::string(kProfileParameterSuffix);
  return profile.WriteProfileString(section, entry, JoinProfileList(identifiers)) &&
         profile.WriteProfileString(section, parameterEntry, JoinProfileList(parameters));
}

bool ReadIndexListProfile(const ProfileStore& profile, std::string_view section,
                          std::string_view entry, IndexList& list) {
  IndexList loaded;
  std::size_t identifierCount = 0;
  std::size_t parameterCount = 0;
  const std::string parameterEntry = std::string(entry) + std::string(kProfileParameterSuffix);
  const std::string identifiers = profile.GetProfileString(section, entry, "");
  const std::string parameters = profile.GetProfileString(section, parameterEntry, "");
  if (!ParseProfileList(identifiers, loaded.identifiers, identifierCount) ||
      !ParseProfileList(parameters, loaded.parameters, parameterCount)) {
    return false;
  }
  if (parameterCount != identifierCount && parameterCount != 0) return false;
  loaded.count = static_cast<std::uint32_t>(identifierCount);
  list = loaded;
  return true;
}

}  // namespace velquor
