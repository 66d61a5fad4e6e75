// String tables: captions, names and messages addressed by numeric identifier.
//
// Text form (UTF-8, one entry per line):   <identifier><TAB><text>
//  - identifier: decimal 0..65535; each identifier at most once per table;
//  - text: the rest of the line; "\n", "\t" and "\\" stand for a line feed, a tab and a
//    backslash; it may be empty;
//  - empty lines and lines starting with '#' are ignored; CR LF line ends and a leading
//    byte-order mark are accepted.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace velquor {

using StringTable = std::unordered_map<std::uint32_t, std::string>;

// Parses `text` into `table` (replacing its content). On a malformed line returns false,
// leaves `table` empty and describes the first fault with its line number in `error`.
bool ParseStringTable(std::string_view text, StringTable& table, std::string& error);

}  // namespace velquor
