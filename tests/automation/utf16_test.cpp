#include "velquor/automation/utf16.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "velquor/frame/utf8.h"

namespace velquor {
namespace {

std::string Bytes(std::initializer_list<unsigned> bytes) {
  std::string text;
  for (unsigned b : bytes) text.push_back(static_cast<char>(b));
  return text;
}

// UTF-16 form of one scalar value (RFC 2781, section 2.1).
void AppendUtf16(std::u16string& text, char32_t c) {
  if (c < 0x10000) {
    text.push_back(static_cast<char16_t>(c));
  } else {
    text.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
    text.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
  }
}

// Converts from a heap buffer of exactly the input's size, so that reading past the end is
// caught by the address sanitizer.
std::u16string ConvertExact(const std::string& utf8) {
  const auto buffer = std::make_unique<char[]>(utf8.size() + (utf8.empty() ? 1 : 0));
  std::copy(utf8.begin(), utf8.end(), buffer.get());
  return Utf8ToUtf16(std::string_view(buffer.get(), utf8.size()));
}

std::string ConvertExact(const std::u16string& utf16) {
  const auto buffer = std::make_unique<char16_t[]>(utf16.size() + (utf16.empty() ? 1 : 0));
  std::copy(utf16.begin(), utf16.end(), buffer.get());
  return Utf16ToUtf8(std::u16string_view(buffer.get(), utf16.size()));
}

TEST(Utf16, KnownEncodingsAtTheLengthBoundaries) {
  struct Case {
    char32_t scalar;
    std::string utf8;      // RFC 3629 table of byte forms
    std::u16string utf16;  // RFC 2781
  };
  const Case cases[] = {
      {0x0000, Bytes({0x00}), {0x0000}},
      {0x007F, Bytes({0x7F}), {0x007F}},
      {0x0080, Bytes({0xC2, 0x80}), {0x0080}},
      {0x07FF, Bytes({0xDF, 0xBF}), {0x07FF}},
      {0x0800, Bytes({0xE0, 0xA0, 0x80}), {0x0800}},
      {0xD7FF, Bytes({0xED, 0x9F, 0xBF}), {0xD7FF}},
      {0xE000, Bytes({0xEE, 0x80, 0x80}), {0xE000}},
      {0xFFFD, Bytes({0xEF, 0xBF, 0xBD}), {0xFFFD}},
      {0xFFFF, Bytes({0xEF, 0xBF, 0xBF}), {0xFFFF}},
      {0x10000, Bytes({0xF0, 0x90, 0x80, 0x80}), {0xD800, 0xDC00}},
      {0x10302, Bytes({0xF0, 0x90, 0x8C, 0x82}), {0xD800, 0xDF02}},  // RFC 2781 example
      {0x233B4, Bytes({0xF0, 0xA3, 0x8E, 0xB4}), {0xD84C, 0xDFB4}},  // RFC 3629 example
      {0x10FFFF, Bytes({0xF4, 0x8F, 0xBF, 0xBF}), {0xDBFF, 0xDFFF}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Utf8ToUtf16(c.utf8), c.utf16) << std::hex << static_cast<unsigned long>(c.scalar);
    EXPECT_EQ(Utf16ToUtf8(c.utf16), c.utf8) << std::hex << static_cast<unsigned long>(c.scalar);
    EXPECT_EQ(Utf16Length(c.utf8), c.utf16.size());
    EXPECT_EQ(Utf8Length(c.utf16), c.utf8.size());
  }
}

TEST(Utf16, EveryScalarValueRoundTrips) {
  std::u16string all;
  all.reserve(0x110000 * 2);
  for (char32_t c = 0; c <= 0x10FFFF; ++c) {
    if (c >= 0xD800 && c <= 0xDFFF) continue;
    AppendUtf16(all, c);
  }
  const std::string utf8 = Utf16ToUtf8(all);
  // 128 one-byte, 1,920 two-byte, 61,440 three-byte (65,536 - 2,048 - 2,048 surrogates) and
  // 1,048,576 four-byte characters.
  EXPECT_EQ(utf8.size(), 128u + 1920u * 2 + 61440u * 3 + 1048576u * 4);
  EXPECT_TRUE(IsValidUtf8(utf8));
  EXPECT_EQ(Utf16Length(utf8), all.size());
  EXPECT_TRUE(Utf8ToUtf16(utf8) == all);
}

// The one UTF-8 decoder on ill-formed input, seen through its three users: the conversion to
// UTF-16, the repair of narrow text (ReplaceInvalidUtf8) and validation (ValidUtf8Prefix).
TEST(Utf8Decoder, IllFormedInputIsOneReplacementPerMaximalSubpart) {
  constexpr char16_t R = 0xFFFD;
  struct Case {
    const char* what;
    std::string utf8;
    std::u16string utf16;
    std::size_t validPrefix;
  };
  const Case cases[] = {
      // The Unicode Standard, section 3.9, tables 3-8 to 3-11.
      {"table 3-8", Bytes({0x61, 0xF1, 0x80, 0x80, 0xE1, 0x80, 0xC2, 0x62, 0x80, 0x63, 0x80, 0xBF, 0x64}),
       {u'a', R, R, R, u'b', R, u'c', R, R, u'd'}, 1},
      {"overlong", Bytes({0xC0, 0xAF, 0xE0, 0x80, 0xBF, 0xF0, 0x81, 0x82, 0x41}), {R, R, R, R, R, R, R, R, u'A'}, 0},
      {"surrogates", Bytes({0xED, 0xA0, 0x80, 0xED, 0xBF, 0xBF, 0xED, 0xAF, 0x41}), {R, R, R, R, R, R, R, R, u'A'}, 0},
      {"above U+10FFFF, FF, stray continuations", Bytes({0xF4, 0x91, 0x92, 0x93, 0xFF, 0x41, 0x80, 0xBF, 0x42}),
       {R, R, R, R, R, u'A', R, R, u'B'}, 0},
      {"truncated", Bytes({0xE1, 0x80, 0xE2, 0xF0, 0x91, 0x92, 0xF1, 0xBF, 0x41}), {R, R, R, R, u'A'}, 0},
      // Cut by the end of an exactly sized buffer (ConvertExact): 2-, 3- and 4-byte sequences.
      {"C3 at the end", Bytes({0x78, 0xC3}), {u'x', R}, 1},
      {"E2 82 at the end", Bytes({0xE2, 0x82}), {R}, 0},
      {"F0 9F 98 at the end", Bytes({0x78, 0xF0, 0x9F, 0x98}), {u'x', R}, 1},
      {"empty", "", {}, 0},
      {"C1 overlong", Bytes({0xC1, 0xBF}), {R, R}, 0},
      {"F5 lead", Bytes({0xF5, 0x80, 0x80, 0x80}), {R, R, R, R}, 0},
      {"E0 A0 is the first valid", Bytes({0xE0, 0x9F, 0xBF, 0xE0, 0xA0, 0x80}), {R, R, R, 0x0800}, 0},
      {"ED 9F is the last valid", Bytes({0xED, 0x9F, 0xBF, 0xED, 0xA0, 0x80}), {0xD7FF, R, R, R}, 3},
      {"F4 8F is the last valid", Bytes({0xF4, 0x8F, 0xBF, 0xBF, 0xF4, 0x90, 0x80, 0x80}),
       {0xDBFF, 0xDFFF, R, R, R, R}, 4},
      {"F0 90 is the first valid", Bytes({0xF0, 0x8F, 0xBF, 0xBF, 0xF0, 0x90, 0x80, 0x80}),
       {R, R, R, R, 0xD800, 0xDC00}, 0},
      {"NUL inside", Bytes({0x41, 0x00, 0x42}), {u'A', 0, u'B'}, 3},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ConvertExact(c.utf8), c.utf16) << c.what;
    EXPECT_EQ(Utf16Length(c.utf8), c.utf16.size()) << c.what;
    EXPECT_EQ(ReplaceInvalidUtf8(c.utf8), Utf16ToUtf8(c.utf16)) << c.what;
    EXPECT_EQ(ValidUtf8Prefix(c.utf8), c.validPrefix) << c.what;
  }
}

TEST(Utf16, UnpairedSurrogatesBecomeReplacements) {
  const std::string R = Bytes({0xEF, 0xBF, 0xBD});
  struct Case {
    std::u16string utf16;
    std::string utf8;
  };
  const Case cases[] = {
      {{0xD800}, R},
      {{0xDFFF}, R},
      {{0xD7FF}, Bytes({0xED, 0x9F, 0xBF})},  // just below the surrogates
      {{0xE000}, Bytes({0xEE, 0x80, 0x80})},  // just above
      {{0xDC00, 0xD800}, R + R},              // trail before lead
      {{0xD800, 0x0041}, R + "A"},
      {{0xD800, 0xD800, 0xDC00}, R + Bytes({0xF0, 0x90, 0x80, 0x80})},
      {{0x0041, 0xDBFF}, std::string("A").append(R)},  // lead at the very end
      {{0xDBFF, 0xE000}, R + Bytes({0xEE, 0x80, 0x80})},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ConvertExact(c.utf16), c.utf8);
    EXPECT_EQ(Utf8Length(c.utf16), c.utf8.size());
  }
}

TEST(Utf16, BoundedConversionNeverSplitsACharacter) {
  const std::string text = Bytes({0x61, 0xF0, 0x9F, 0x98, 0x80, 0x62});  // a U+1F600 b
  char16_t units[4] = {u'-', u'-', u'-', u'-'};
  EXPECT_EQ(Utf8ToUtf16(text, std::span<char16_t>(units, 2)), 1u);
  EXPECT_EQ(units[1], u'-');
  EXPECT_EQ(Utf8ToUtf16(text, std::span<char16_t>(units, 3)), 3u);
  EXPECT_EQ(units[1], 0xD83D);
  EXPECT_EQ(units[2], 0xDE00);

  const std::u16string wide = u"\u00E9\u20AC";
  char bytes[5] = {};
  EXPECT_EQ(Utf16ToUtf8(wide, std::span<char>(bytes, 4)), 2u);  // the euro sign needs 3
  EXPECT_EQ(Utf16ToUtf8(wide, std::span<char>(bytes, 5)), 5u);
}

}  // namespace
}  // namespace velquor
