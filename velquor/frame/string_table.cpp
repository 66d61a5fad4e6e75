#include "velquor/frame/string_table.h"

#include <charconv>

#include "velquor/frame/utf8.h"

namespace velquor {

namespace {

constexpr std::uint32_t kMaxIdentifier = 65535;

bool Unescape(std::string_view raw, std::string& out) {
  out.clear();
  out.reserve(raw.size());
  for (std::size_t i = 0; i < raw.size(); ++i) {
    if (raw[i] != '\\') {
      out.push_back(raw[i]);
      continue;
    }
    if (++i == raw.size()) return false;
    switch (raw[i]) {
      case 'n':
        out.push_back('\n');
        break;
      case 't':
        out.push_back('\t');
        break;
      case '\\':
        out.push_back('\\');
        break;
      default:
        return false;
    }
  }
  return true;
}

bool Fail(std::size_t lineNumber, const char* what, StringTable& table, std::string& error) {
  table.clear();
  error = "line " + std::to_string(lineNumber) + ": " + what;
  return false;
}

}  // namespace

bool ParseStringTable(std::string_view text, StringTable& table, std::string& error) {
  table.clear();
  error.clear();
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  std::size_t lineNumber = 0;
  while (!text.empty()) {
    ++lineNumber;
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty() || line.front() == '#') continue;
    if (!IsValidUtf8(line)) return Fail(lineNumber, "not valid UTF-8", table, error);

    const std::size_t tab = line.find('\t');
    if (tab == std::string_view::npos) return Fail(lineNumber, "no tab after the identifier", table, error);
    std::uint32_t id = 0;
    const char* first = line.data();
    const char* last = line.data() + tab;
    const auto [ptr, ec] = std::from_chars(first, last, id);
    if (ec != std::errc() || ptr != last || tab == 0 || id > kMaxIdentifier) {
      return Fail(lineNumber, "identifier is not a number from 0 to 65535", table, error);
    }
    std::string value;
    if (!Unescape(line.substr(tab + 1), value)) {
      return Fail(lineNumber, "bad escape (only \\n, \\t and \\\\ are known)", table, error);
    }
    if (!table.emplace(id, std::move(value)).second) {
      return Fail(lineNumber, "identifier appears twice", table, error);
    }
  }
  return true;
}

}  // namespace velquor
