#include "velquor/frame/utf8.h"

namespace velquor {

Utf8Decoded DecodeUtf8(std::string_view text, std::size_t i) {
  const auto* s = reinterpret_cast<const unsigned char*>(text.data());
  const std::size_t n = text.size();
  const unsigned char lead = s[i];
  if (lead < 0x80) return {lead, 1, true};
  // Byte ranges of well-formed UTF-8 (Unicode Standard, table 3-7): the second byte of E0, ED,
  // F0 and F4 sequences is narrowed to exclude overlong forms, surrogates and values above
  // U+10FFFF.
  std::size_t length = 0;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  char32_t value = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
    value = lead & 0x1Fu;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    value = lead & 0x0Fu;
    if (lead == 0xE0) low = 0xA0;   // below: overlong
    if (lead == 0xED) high = 0x9F;  // above: surrogates U+D800..U+DFFF
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    value = lead & 0x07u;
    if (lead == 0xF0) low = 0x90;   // below: overlong
    if (lead == 0xF4) high = 0x8F;  // above: beyond U+10FFFF
  } else {
    return {kReplacementCharacter, 1, false};  // continuation byte, C0, C1 or F5..FF
  }
  for (std::size_t k = 1; k < length; ++k) {
    if (i + k >= n) return {kReplacementCharacter, k, false};  // truncated by the end of the text
    const unsigned char c = s[i + k];
    if (c < (k == 1 ? low : 0x80) || c > (k == 1 ? high : 0xBF)) return {kReplacementCharacter, k, false};
    value = (value << 6) | (c & 0x3Fu);
  }
  return {value, length, true};
}

std::size_t ValidUtf8Prefix(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size()) {
    const Utf8Decoded d = DecodeUtf8(text, i);
    if (!d.valid) return i;
    i += d.length;
  }
  return i;
}

std::string ReplaceInvalidUtf8(std::string_view text) {
  std::string repaired;
  repaired.reserve(text.size() + 8);
  for (std::size_t i = 0; i < text.size();) {
    const Utf8Decoded d = DecodeUtf8(text, i);
    if (d.valid) {
      repaired.append(text.substr(i, d.length));
    } else {
      repaired.append("\xEF\xBF\xBD");  // U+FFFD
    }
    i += d.length;
  }
  return repaired;
}

}  // namespace velquor
