// Lists the host keeps in its application profile (the last index selection of a result
// table, for instance), written as comma-joined decimal strings: "3,5,1003".
//
// The profile is a ProfileStore: by default the library's per-user settings store
// (registry_store.h), where section and entry name the key below the vendor key and the value
// in it; hosts with a profile of their own, and tests, supply another store.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "velquor/indices/index_list.h"

namespace velquor {

// The application profile: named string values grouped in sections.
class ProfileStore {
 public:
  virtual ~ProfileStore() = default;
  // Stores `value` as `entry` of `section`. True on success.
  virtual bool WriteProfileString(std::string_view section, std::string_view entry,
                                  std::string_view value) = 0;
  // The value `entry` of `section`, or `defaultValue` if there is none.
  virtual std::string GetProfileString(std::string_view section, std::string_view entry,
                                       std::string_view defaultValue) const = 0;
};

// The profile kept in the library's settings store: SetRegistryString and GetRegistryString
// of `section` and `entry`. A value longer than the store reads back (260 bytes) reads as the
// default; a list of 20 identifiers takes at most 219.
class SettingsProfileStore final : public ProfileStore {
 public:
  bool WriteProfileString(std::string_view section, std::string_view entry,
                          std::string_view value) override;
  std::string GetProfileString(std::string_view section, std::string_view entry,
                               std::string_view defaultValue) const override;
};

// A profile in memory, for hosts without a persistent one and for tests. Section and entry
// names compare without regard to ASCII case, as in the settings store.
class MemoryProfileStore final : public ProfileStore {
 public:
  bool WriteProfileString(std::string_view section, std::string_view entry,
                          std::string_view value) override;
  std::string GetProfileString(std::string_view section, std::string_view entry,
                               std::string_view defaultValue) const override;

 private:
  std::map<std::pair<std::string, std::string>, std::string> values_;
};

// The process-wide settings-store profile.
ProfileStore& DefaultProfileStore();

// `values` in decimal, joined by commas without blanks; "" for no values.
std::string JoinProfileList(std::span<const std::uint32_t> values);

// Parses a comma-joined list of decimal numbers 0..4294967295 into `values`, setting `count`.
// "" is the empty list. False, with `values` and `count` unchanged, for a list of more than
// values.size() numbers, an empty field, a character other than a digit or comma, or a number
// out of range.
bool ParseProfileList(std::string_view text, std::span<std::uint32_t> values, std::size_t& count);

// Suffix of the entry that holds a selection's parameters; the identifiers go to `entry`
// itself, the parameters to `entry` + kProfileParameterSuffix.
inline constexpr std::string_view kProfileParameterSuffix = "Parameters";

// Writes the used entries of `list`: identifiers as `entry`, parameters as `entry` +
// "Parameters". False (perhaps after writing the identifiers) if the store refuses a value or
// the list holds more than kMaxSelectedIndices entries.
bool WriteIndexListProfile(ProfileStore& profile, std::string_view section, std::string_view entry,
                           const IndexList& list);

// Reads a list written by WriteIndexListProfile. A missing identifier value gives the empty
// list; a missing parameter value gives zero parameters. False, with `list` unchanged, if
// either value does not parse, holds more than kMaxSelectedIndices numbers, or the two differ
// in length.
bool ReadIndexListProfile(const ProfileStore& profile, std::string_view section,
                          std::string_view entry, IndexList& list);

}  // namespace velquor
