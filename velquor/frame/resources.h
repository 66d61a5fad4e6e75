// Resource lookup: strings by numeric identifier and custom binary resources by type and
// name, served from the tables compiled into the library (and into any module a host links
// into the resource chain), with an optional host-loaded translation on top.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace velquor {

// Loads string `id` into `out`: the translation's text if one is loaded for `id`, else the
// first module on the resource chain that has it. Returns 1 if found; otherwise `out` becomes
// empty and the result is 0.
int LoadStringResource(std::uint32_t id, std::string& out);
// The text of string `id`; an absent identifier loads as an empty text.
std::string LoadStringResource(std::uint32_t id);

// The bytes of the custom resource `name` of resource type `type` (e.g. "PWD", "ILL02_10"),
// or nothing. The bytes live as long as the module that holds them (the library's own: the
// whole process) and are aligned to 8 bytes at least (the compiled-in tables of POSIX builds
// to 16).
std::optional<std::span<const unsigned char>> FindCustomResource(std::string_view type,
                                                                 std::string_view name);

// Loads a translated string table (UTF-8 text of identifier/text lines, see string_table.h)
// whose entries replace the library's texts by identifier; identifiers it does not list keep
// their texts. A later translation replaces an earlier one as a whole. Returns 1 on success;
// on failure returns 0, keeps the previous translation and puts the reason (with the file
// name and line) into `error` if given.
int LoadTranslatedStrings(const std::string& path, std::string* error = nullptr);
int LoadTranslatedStringsFromText(std::string_view text, std::string* error = nullptr);
// Drops the translation; the library's own texts apply again.
void ClearTranslatedStrings();

}  // namespace velquor
