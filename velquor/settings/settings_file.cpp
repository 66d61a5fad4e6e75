#include "velquor/settings/settings_file.h"

#include <array>
#include <optional>
#include <unordered_map>
#include <utility>

namespace velquor {

namespace {

constexpr std::array<std::uint32_t, 256> MakeCrcTable() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t c = i;
    for (int bit = 0; bit < 8; ++bit) {
      c = (c & 1u) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
    }
    table[i] = c;
  }
  return table;
}

constexpr std::array<std::uint32_t, 256> kCrcTable = MakeCrcTable();

constexpr char kLowerHex[] = "0123456789abcdef";
constexpr char kUpperHex[] = "0123456789ABCDEF";

// Value of a hex digit; `upper` selects which letter case is accepted.
int HexDigit(char c, bool upper) {
  if (c >= '0' && c <= '9') return c - '0';
  if (upper && c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (!upper && c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

bool PassesUnescaped(unsigned char c) {
  return c >= 0x21 && c <= 0x7E && c != '%' && c != '@' && c != '#';
}

void AppendName(std::string& out, std::string_view name) {
  if (name.empty()) {
    out += '@';
    return;
  }
  for (const char ch : name) {
    const auto c = static_cast<unsigned char>(ch);
    if (PassesUnescaped(c)) {
      out += ch;
    } else {
      out += '%';
      out += kUpperHex[c >> 4];
      out += kUpperHex[c & 15];
    }
  }
}

std::optional<std::string> DecodeName(std::string_view field) {
  if (field == "@") return std::string();
  if (field.empty()) return std::nullopt;
  std::string name;
  for (std::size_t i = 0; i < field.size(); ++i) {
    const auto c = static_cast<unsigned char>(field[i]);
    if (c == '%') {
      if (i + 2 >= field.size()) return std::nullopt;
      const int high = HexDigit(field[i + 1], true);
      const int low = HexDigit(field[i + 2], true);
      if (high < 0 || low < 0) return std::nullopt;
      const auto byte = static_cast<unsigned char>(high * 16 + low);
      if (PassesUnescaped(byte)) return std::nullopt;  // not the canonical form
      name += static_cast<char>(byte);
      i += 2;
    } else if (PassesUnescaped(c)) {
      name += static_cast<char>(c);
    } else {
      return std::nullopt;
    }
  }
  return name;
}

std::optional<std::uint32_t> DecodeType(std::string_view field) {
  if (field.empty() || field.size() > 10 || (field.size() > 1 && field[0] == '0')) {
    return std::nullopt;
  }
  std::uint64_t value = 0;
  for (const char c : field) {
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + static_cast<std::uint64_t>(c - '0');
  }
  if (value > 0xFFFFFFFFu) return std::nullopt;
  return static_cast<std::uint32_t>(value);
}

std::optional<std::string> DecodeData(std::string_view field) {
  if (field == "-") return std::string();
  if (field.empty() || field.size() % 2 != 0) return std::nullopt;
  std::string data;
  data.reserve(field.size() / 2);
  for (std::size_t i = 0; i < field.size(); i += 2) {
    const int high = HexDigit(field[i], false);
    const int low = HexDigit(field[i + 1], false);
    if (high < 0 || low < 0) return std::nullopt;
    data += static_cast<char>(high * 16 + low);
  }
  return data;
}

std::optional<std::uint32_t> DecodeCrc(std::string_view field) {
  if (field.size() != 8) return std::nullopt;
  std::uint32_t value = 0;
  for (const char c : field) {
    const int digit = HexDigit(c, false);
    if (digit < 0) return std::nullopt;
    value = value << 4 | static_cast<std::uint32_t>(digit);
  }
  return value;
}

// One value line without its line feed; nothing if it is damaged.
std::optional<SettingsValue> ParseLine(std::string_view line) {
  const std::size_t crcBlank = line.rfind(' ');
  if (crcBlank == std::string_view::npos) return std::nullopt;
  const std::string_view body = line.substr(0, crcBlank);
  const std::optional<std::uint32_t> crc = DecodeCrc(line.substr(crcBlank + 1));
  if (!crc || *crc != SettingsCrc32(body)) return std::nullopt;

  const std::size_t first = body.find(' ');
  if (first == std::string_view::npos) return std::nullopt;
  const std::size_t second = body.find(' ', first + 1);
  if (second == std::string_view::npos || body.find(' ', second + 1) != std::string_view::npos) {
    return std::nullopt;
  }
  std::optional<std::string> name = DecodeName(body.substr(0, first));
  const std::optional<std::uint32_t> type = DecodeType(body.substr(first + 1, second - first - 1));
  std::optional<std::string> data = DecodeData(body.substr(second + 1));
  if (!name || !type || !data) return std::nullopt;
  return SettingsValue{std::move(*name), *type, std::move(*data)};
}

// `name` with ASCII upper-case letters made lower-case.
std::string FoldedName(std::string_view name) {
  std::string folded(name);
  for (char& c : folded) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return folded;
}

}  // namespace

std::uint32_t SettingsCrc32(std::string_view bytes) {
  std::uint32_t crc = 0xFFFFFFFFu;
  for (const char c : bytes) {
    crc = kCrcTable[(crc ^ static_cast<unsigned char>(c)) & 0xFFu] ^ (crc >> 8);
  }
  return crc ^ 0xFFFFFFFFu;
}

bool SameSettingsName(std::string_view first, std::string_view second) {
  if (first.size() != second.size()) return false;
  for (std::size_t i = 0; i < first.size(); ++i) {
    char a = first[i];
    char b = second[i];
    if (a >= 'A' && a <= 'Z') a = static_cast<char>(a - 'A' + 'a');
    if (b >= 'A' && b <= 'Z') b = static_cast<char>(b - 'A' + 'a');
    if (a != b) return false;
  }
  return true;
}

ParsedSettingsValues ParseSettingsValues(std::string_view text) {
  ParsedSettingsValues parsed;
  std::unordered_map<std::string, std::size_t> positions;  // folded name -> index in values
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) {  // cut short: the last line has no line feed
      ++parsed.damagedLines;
      break;
    }
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 1);
    if (!line.empty() && line[0] == '#') continue;
    std::optional<SettingsValue> value = ParseLine(line);
    if (!value) {
      ++parsed.damagedLines;
      continue;
    }
    const auto [at, added] = positions.try_emplace(FoldedName(value->name), parsed.values.size());
    if (added) {
      parsed.values.push_back(std::move(*value));
    } else {
      parsed.values[at->second] = std::move(*value);
    }
  }
  return parsed;
}

std::string FormatSettingsValues(const std::vector<SettingsValue>& values) {
  std::string text(kSettingsFileHeader);
  std::string line;
  for (const SettingsValue& value : values) {
    line.clear();
    AppendName(line, value.name);
    line += ' ';
    line += std::to_string(value.type);
    line += ' ';
    if (value.data.empty()) {
      line += '-';
    } else {
      for (const char ch : value.data) {
        const auto c = static_cast<unsigned char>(ch);
        line += kLowerHex[c >> 4];
        line += kLowerHex[c & 15];
      }
    }
    const std::uint32_t crc = SettingsCrc32(line);
    line += ' ';
    for (int shift = 28; shift >= 0; shift -= 4) line += kLowerHex[(crc >> shift) & 15u];
    line += '\n';
    text += line;
  }
  return text;
}

}  // namespace velquor
