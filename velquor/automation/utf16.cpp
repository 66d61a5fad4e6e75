#include "velquor/automation/utf16.h"

#include <cstdint>

#include "velquor/frame/utf8.h"

namespace velquor {
namespace {

struct Decoded {
  char32_t value;      // the scalar value, or U+FFFD
  std::size_t length;  // code units consumed, at least 1
};

Decoded DecodeUtf16(std::u16string_view s, std::size_t i) {
  const char16_t unit = s[i];
  if (unit < 0xD800 || unit > 0xDFFF) return {unit, 1};
  if (unit <= 0xDBFF && i + 1 < s.size() && s[i + 1] >= 0xDC00 && s[i + 1] <= 0xDFFF) {
    return {0x10000 + ((char32_t{unit} - 0xD800) << 10) + (char32_t{s[i + 1]} - 0xDC00), 2};
  }
  return {kReplacementCharacter, 1};  // unpaired surrogate
}

constexpr std::size_t Utf16Units(char32_t value) {
  return value >= 0x10000 ? 2 : 1;
}

constexpr std::size_t Utf8Bytes(char32_t value) {
  return value < 0x80 ? 1 : value < 0x800 ? 2 : value < 0x10000 ? 3 : 4;
}

// Writes the UTF-8 form of `value` (Utf8Bytes(value) bytes) to `out`.
void EncodeUtf8(char32_t value, char* out) {
  auto byte = [](char32_t bits) { return static_cast<char>(static_cast<unsigned char>(bits)); };
  switch (Utf8Bytes(value)) {
    case 1:
      out[0] = byte(value);
      break;
    case 2:
      out[0] = byte(0xC0 | (value >> 6));
      out[1] = byte(0x80 | (value & 0x3F));
      break;
    case 3:
      out[0] = byte(0xE0 | (value >> 12));
      out[1] = byte(0x80 | ((value >> 6) & 0x3F));
      out[2] = byte(0x80 | (value & 0x3F));
      break;
    default:
      out[0] = byte(0xF0 | (value >> 18));
      out[1] = byte(0x80 | ((value >> 12) & 0x3F));
      out[2] = byte(0x80 | ((value >> 6) & 0x3F));
      out[3] = byte(0x80 | (value & 0x3F));
      break;
  }
}

}  // namespace

std::size_t Utf16Length(std::string_view utf8) {
  std::size_t units = 0;
  for (std::size_t i = 0; i < utf8.size();) {
    const Utf8Decoded d = DecodeUtf8(utf8, i);
    units += Utf16Units(d.value);
    i += d.length;
  }
  return units;
}

std::size_t Utf8ToUtf16(std::string_view utf8, std::span<char16_t> out) {
  std::size_t written = 0;
  for (std::size_t i = 0; i < utf8.size();) {
    const Utf8Decoded d = DecodeUtf8(utf8, i);
    if (out.size() - written < Utf16Units(d.value)) break;
    if (d.value >= 0x10000) {
      const char32_t v = d.value - 0x10000;
      out[written++] = static_cast<char16_t>(0xD800 + (v >> 10));
      out[written++] = static_cast<char16_t>(0xDC00 + (v & 0x3FF));
    } else {
      out[written++] = static_cast<char16_t>(d.value);
    }
    i += d.length;
  }
  return written;
}

std::u16string Utf8ToUtf16(std::string_view utf8) {
  std::u16string result(Utf16Length(utf8), u'\0');
  Utf8ToUtf16(utf8, result);
  return result;
}

std::size_t Utf8Length(std::u16string_view utf16) {
  std::size_t bytes = 0;
  for (std::size_t i = 0; i < utf16.size();) {
    const Decoded d = DecodeUtf16(utf16, i);
    bytes += Utf8Bytes(d.value);
    i += d.length;
  }
  return bytes;
}

std::size_t Utf16ToUtf8(std::u16string_view utf16, std::span<char> out) {
  std::size_t written = 0;
  for (std::size_t i = 0; i < utf16.size();) {
    const Decoded d = DecodeUtf16(utf16, i);
    const std::size_t bytes = Utf8Bytes(d.value);
    if (out.size() - written < bytes) break;
    EncodeUtf8(d.value, out.data() + written);
    written += bytes;
    i += d.length;
  }
  return written;
}

std::string Utf16ToUtf8(std::u16string_view utf16) {
  std::string result(Utf8Length(utf16), '\0');
  Utf16ToUtf8(utf16, result);
  return result;
}

}  // namespace velquor
