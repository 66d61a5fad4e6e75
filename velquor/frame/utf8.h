// UTF-8 validation (RFC 3629): no overlong forms, no surrogates, nothing above U+10FFFF.
#pragma once

#include <cstddef>
#include <string_view>

namespace velquor {

// Length in bytes of the valid UTF-8 prefix of `text`; equals text.size() when all is valid.
std::size_t ValidUtf8Prefix(std::string_view text);

inline bool IsValidUtf8(std::string_view text) { return ValidUtf8Prefix(text) == text.size(); }

}  // namespace velquor
