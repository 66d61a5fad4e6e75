#include "velquor/automation/utf16.h"

#include <gtest/gtest.h>

#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "reference_table.h"
#include "velquor/frame/utf8.h"

namespace velquor {
namespace {

// "61 F1 80" -> the bytes or code units written in hex.
template <class S>
S FromHex(const std::string& hex) {
  S text;
  std::istringstream in(hex);
  for (unsigned value = 0; in >> std::hex >> value;) text.push_back(static_cast<typename S::value_type>(value));
  return text;
}

// Converts from a heap buffer of exactly the input's size, so that the address sanitizer
// catches a read past the end.
std::u16string ConvertExact(const std::string& utf8) {
  const std::vector<char> exact(utf8.begin(), utf8.end());
  return Utf8ToUtf16(std::string_view(exact.data(), exact.size()));
}
std::string ConvertExact(const std::u16string& utf16) {
  const std::vector<char16_t> exact(utf16.begin(), utf16.end());
  return Utf16ToUtf8(std::u16string_view(exact.data(), exact.size()));
}

// The one UTF-8 decoder is seen through its three users: the conversion to UTF-16, the repair
// of narrow text (ReplaceInvalidUtf8) and validation (ValidUtf8Prefix).
TEST(Utf16, ConversionsAndTheirReplacements) {
  for (const auto& row : test::LoadReferenceTable("reference/automation_utf16_conversions.csv")) {
    SCOPED_TRACE(row.Where() + " " + row.Text("what"));
    const auto utf8 = FromHex<std::string>(row.Text("utf8"));
    const auto utf16 = FromHex<std::u16string>(row.Text("utf16"));
    EXPECT_EQ(ValidUtf8Prefix(utf8), static_cast<std::size_t>(row.Integer("valid_prefix")));
    EXPECT_EQ(ReplaceInvalidUtf8(utf8), Utf16ToUtf8(utf16));
    if (row.Text("kind") != "utf16_ill_formed") {
      EXPECT_EQ(ConvertExact(utf8), utf16);
      EXPECT_EQ(Utf16Length(utf8), utf16.size());
    }
    if (row.Text("kind") != "utf8_ill_formed") {
      EXPECT_EQ(ConvertExact(utf16), utf8);
      EXPECT_EQ(Utf8Length(utf16), utf8.size());
    }
  }
}

TEST(Utf16, EveryScalarValueRoundTrips) {
  std::u16string all;
  for (char32_t c = 0; c <= 0x10FFFF; ++c) {
    if (c < 0x10000 && (c < 0xD800 || c > 0xDFFF)) all.push_back(static_cast<char16_t>(c));
    if (c >= 0x10000) all.append({char16_t(0xD800 + ((c - 0x10000) >> 10)), char16_t(0xDC00 + ((c - 0x10000) & 0x3FF))});
  }
  const std::string utf8 = Utf16ToUtf8(all);
  // 128 one-byte, 1,920 two-byte, 61,440 three-byte (65,536 - 2,048 - 2,048 surrogates) and
  // 1,048,576 four-byte characters.
  EXPECT_EQ(utf8.size(), 128u + 1920u * 2 + 61440u * 3 + 1048576u * 4);
  EXPECT_TRUE(IsValidUtf8(utf8));
  EXPECT_EQ(Utf16Length(utf8), all.size());
  EXPECT_TRUE(Utf8ToUtf16(utf8) == all);
}

TEST(Utf16, BoundedConversionNeverSplitsACharacter) {
  const std::string text = "a\xF0\x9F\x98\x80" "b";  // a U+1F600 b
  char16_t units[4] = {u'-', u'-', u'-', u'-'};
  EXPECT_EQ(Utf8ToUtf16(text, std::span<char16_t>(units, 2)), 1u);
  EXPECT_EQ(units[1], u'-');
  EXPECT_EQ(Utf8ToUtf16(text, std::span<char16_t>(units, 3)), 3u);
  EXPECT_EQ(std::u16string(units + 1, 2), u"\U0001F600");
  char bytes[5] = {};
  EXPECT_EQ(Utf16ToUtf8(u"\u00E9\u20AC", std::span<char>(bytes, 4)), 2u);  // the euro sign needs 3
  EXPECT_EQ(Utf16ToUtf8(u"\u00E9\u20AC", std::span<char>(bytes, 5)), 5u);
}

}  // namespace
}  // namespace velquor
