#include "velquor/frame/utf8.h"

namespace velquor {

std::size_t ValidUtf8Prefix(std::string_view text) {
  const auto* s = reinterpret_cast<const unsigned char*>(text.data());
  const std::size_t n = text.size();
  std::size_t i = 0;
  while (i < n) {
    const unsigned char lead = s[i];
    std::size_t length = 0;
    unsigned char low = 0x80;  // allowed range of the second byte
    unsigned char high = 0xBF;
    if (lead < 0x80) {
      length = 1;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
      length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      length = 3;
      if (lead == 0xE0) low = 0xA0;   // overlong
      if (lead == 0xED) high = 0x9F;  // surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      length = 4;
      if (lead == 0xF0) low = 0x90;   // overlong
      if (lead == 0xF4) high = 0x8F;  // above U+10FFFF
    } else {
      return i;
    }
    if (n - i < length) return i;
    for (std::size_t k = 1; k < length; ++k) {
      const unsigned char c = s[i + k];
      const unsigned char lo = k == 1 ? low : 0x80;
      const unsigned char hi = k == 1 ? high : 0xBF;
      if (c < lo || c > hi) return i;
    }
    i += length;
  }
  return n;
}

}  // namespace velquor
