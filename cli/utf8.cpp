#include "utf8.h"

namespace velquor::cli {

namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";  // U+FFFD REPLACEMENT CHARACTER

// The length of the well-formed sequence at `at` (1 to 4), or 0 with `invalid` set to the
// length of its maximal invalid subpart.
std::size_t SequenceLength(const std::string& text, std::size_t at, std::size_t& invalid) {
  const auto byte = [&](std::size_t i) {
    return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0u;
  };
  const unsigned lead = byte(0);
  invalid = 1;
  if (lead < 0x80) return 1;
  std::size_t length = 0;
  unsigned low = 0x80;  // the range of the second byte (Unicode Table 3-7)
  unsigned high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;   // no overlong forms
    if (lead == 0xED) high = 0x9F;  // no surrogates
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;   // no overlong forms
    if (lead == 0xF4) high = 0x8F;  // nothing above U+10FFFF
  } else {
    return 0;
  }
  for (std::size_t i = 1; i < length; ++i) {
    const unsigned b = byte(i);
    if (b < (i == 1 ? low : 0x80u) || b > (i == 1 ? high : 0xBFu)) {
      invalid = i;
      return 0;
    }
  }
  return length;
}

}  // namespace

bool RepairUtf8(std::string& text) {
  std::size_t at = 0;
  std::size_t invalid = 0;
  std::size_t length = 0;
  while (at < text.size() && (length = SequenceLength(text, at, invalid)) != 0) at += length;
  if (at == text.size()) return false;  // the usual case: nothing copied
  std::string repaired(text, 0, at);
  while (at < text.size()) {
    length = SequenceLength(text, at, invalid);
    if (length == 0) {
      repaired += kReplacement;
      at += invalid;
    } else {
      repaired.append(text, at, length);
      at += length;
    }
  }
  text = std::move(repaired);
  return true;
}

}  // namespace velquor::cli
