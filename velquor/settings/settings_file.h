// The text form in which the file settings store keeps the values of one key (one file per
// key, named ".values" in the key's folder; see file_settings_backend.h).
//
// The form is line based, and every value line carries its own checksum, so that a damaged
// or truncated file loses only the lines that were hit and the rest still reads:
//
//   # velquor settings values, format 1        <- comment; lines starting with '#' are ignored
//   General 4 02000000 7175b740                <- name SP type SP data SP crc LF
//   PathInfo 1 2f746d702f de72e460             <- the string "/tmp/"
//
//  - name: the value's name, its bytes 0x21..0x7E written as they are except '%', '@' and '#',
//    every other byte as '%' and two upper-case hex digits; the unnamed (default) value is
//    written "@";
//  - type: the value's type code in decimal, 0..4294967295, without leading zeros (1 = string,
//    4 = 32-bit number, as the Windows registry numbers them);
//  - data: the value's bytes as lower-case hex pairs, or "-" when it has none;
//  - crc: CRC-32 (ISO-HDLC, the zlib/PNG checksum) of the bytes from the start of the line up
//    to the blank before the crc, as eight lower-case hex digits;
//  - every line, the last one included, ends in a single line feed.
//
// A line that breaks any of these rules (a missing line feed, a bad escape, a wrong field
// count, a checksum that does not match) is skipped as damaged. When a name occurs twice the
// later line wins. Names compare without regard to ASCII case, as registry value names do.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velquor {

struct SettingsValue {
  std::string name;
  std::uint32_t type = 0;
  std::string data;  // raw bytes
};

struct ParsedSettingsValues {
  std::vector<SettingsValue> values;  // in file order, one per name
  std::size_t damagedLines = 0;       // lines skipped as damaged (comments are not counted)
};

// First line of every file the store writes.
inline constexpr std::string_view kSettingsFileHeader = "# velquor settings values, format 1\n";

// CRC-32 with the reflected polynomial 0xEDB88320, initial value and final xor 0xFFFFFFFF
// (ISO 3309 / ITU-T V.42, as in zlib and PNG). The check value of "123456789" is 0xCBF43926.
std::uint32_t SettingsCrc32(std::string_view bytes);

// Reads the values of `text`, skipping damaged lines.
ParsedSettingsValues ParseSettingsValues(std::string_view text);

// The file text of `values`: the header, then one line per value in the given order.
std::string FormatSettingsValues(const std::vector<SettingsValue>& values);

// Whether two value names are the same name (ASCII letters compare without regard to case).
bool SameSettingsName(std::string_view first, std::string_view second);

}  // namespace velquor
