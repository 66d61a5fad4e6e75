// Small text helpers for names the user types (illuminant codes, index names, options):
// ASCII only, independent of the C locale, so a Turkish or German locale changes nothing.
#pragma once

#include <string_view>

namespace velquor {

constexpr char ToLowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// `text` without leading and trailing blanks and tabs.
constexpr std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

// Equal when the texts differ at most in the case of ASCII letters.
constexpr bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (ToLowerAscii(a[i]) != ToLowerAscii(b[i])) return false;
  }
  return true;
}

}  // namespace velquor
