// UTF-8 decoding (RFC 3629, Unicode Standard section 3.9): the one decoder behind validation,
// repair and the conversion to UTF-16 (automation/utf16.h). Well-formed means no overlong
// forms, no encoded surrogates and nothing above U+10FFFF.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velquor {

// The replacement character U+FFFD.
inline constexpr char32_t kReplacementCharacter = 0xFFFD;

struct Utf8Decoded {
  char32_t value;      // the scalar value, or kReplacementCharacter when !valid
  std::size_t length;  // bytes consumed, at least 1
  bool valid;
};

// Decodes the character that starts at text[i] (i < text.size()), never reading past the end.
// An ill-formed sequence consumes its maximal subpart (Unicode Standard, section 3.9, "U+FFFD
// Substitution of Maximal Subparts"): the longest prefix that could still have begun a
// well-formed sequence, or one byte.
Utf8Decoded DecodeUtf8(std::string_view text, std::size_t i);

// Length in bytes of the valid UTF-8 prefix of `text`; equals text.size() when all is valid.
std::size_t ValidUtf8Prefix(std::string_view text);

inline bool IsValidUtf8(std::string_view text) { return ValidUtf8Prefix(text) == text.size(); }

// `text` with each maximal subpart of an ill-formed sequence replaced by U+FFFD.
std::string ReplaceInvalidUtf8(std::string_view text);

}  // namespace velquor
