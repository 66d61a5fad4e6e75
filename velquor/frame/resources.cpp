#include "velquor/frame/resources.h"

#include <fstream>
#include <shared_mutex>
#include <sstream>

#include "velquor/frame/module.h"
#include "velquor/frame/string_table.h"

namespace velquor {

namespace {

struct Translation {
  std::shared_mutex mutex;
  StringTable strings;
};

Translation& CurrentTranslation() {
  static Translation* translation = new Translation;
  return *translation;
}

}  // namespace

int LoadStringResource(std::uint32_t id, std::string& out) {
  {
    Translation& translation = CurrentTranslation();
    std::shared_lock lock(translation.mutex);
    const auto found = translation.strings.find(id);
    if (found != translation.strings.end()) {
      out = found->second;
      return 1;
    }
  }
  if (FindStringOnChain(id, out)) return 1;
  out.clear();
  return 0;
}

std::string LoadStringResource(std::uint32_t id) {
  std::string text;
  LoadStringResource(id, text);
  return text;
}

std::optional<std::span<const unsigned char>> FindCustomResource(std::string_view type,
                                                                 std::string_view name) {
  return FindResourceOnChain(type, name);
}

int LoadTranslatedStringsFromText(std::string_view text, std::string* error) {
  StringTable strings;
  std::string reason;
  if (!ParseStringTable(text, strings, reason)) {
    if (error != nullptr) *error = reason;
    return 0;
  }
  Translation& translation = CurrentTranslation();
  std::unique_lock lock(translation.mutex);
  translation.strings.swap(strings);
  return 1;
}

int LoadTranslatedStrings(const std::string& path, std::string* error) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    if (error != nullptr) *error = path + ": cannot be opened";
    return 0;
  }
  std::ostringstream content;
  content << file.rdbuf();
  if (file.bad()) {
    if (error != nullptr) *error = path + ": read error";
    return 0;
  }
  std::string reason;
  if (!LoadTranslatedStringsFromText(content.str(), &reason)) {
    if (error != nullptr) *error = path + ": " + reason;
    return 0;
  }
  return 1;
}

void ClearTranslatedStrings() {
  Translation& translation = CurrentTranslation();
  std::unique_lock lock(translation.mutex);
  translation.strings.clear();
}

}  // namespace velquor
