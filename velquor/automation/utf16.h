// Conversion between the library's narrow strings (UTF-8) and UTF-16, the text form of the
// automation interface.
//
// Both directions round-trip every Unicode scalar value (U+0000..U+D7FF, U+E000..U+10FFFF);
// characters above U+FFFF become surrogate pairs. Ill-formed input never stops a conversion
// and is never read past its end:
//  - UTF-8 (decoded by DecodeUtf8 of frame/utf8.h): each maximal subpart of an ill-formed sequence (Unicode Standard, section 3.9,
//    "U+FFFD Substitution of Maximal Subparts") becomes one U+FFFD: a truncated sequence, an
//    overlong form, an encoded surrogate, a value above U+10FFFF or a stray continuation byte;
//  - UTF-16: each unpaired surrogate becomes one U+FFFD.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "velquor/frame/utf8.h"  // kReplacementCharacter

namespace velquor {

// Number of UTF-16 code units that `utf8` converts to.
std::size_t Utf16Length(std::string_view utf8);
// Converts `utf8` into `out`, writing at most out.size() units and never half a surrogate
// pair; returns the number of units written.
std::size_t Utf8ToUtf16(std::string_view utf8, std::span<char16_t> out);
std::u16string Utf8ToUtf16(std::string_view utf8);

// Number of UTF-8 bytes that `utf16` converts to.
std::size_t Utf8Length(std::u16string_view utf16);
// Converts `utf16` into `out`, writing at most out.size() bytes and never part of a
// character; returns the number of bytes written.
std::size_t Utf16ToUtf8(std::u16string_view utf16, std::span<char> out);
std::string Utf16ToUtf8(std::u16string_view utf16);

}  // namespace velquor
