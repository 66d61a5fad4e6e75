#include "velquor/automation/safe_array.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include "archive_test_support.h"
#include "velquor/data/dword_array.h"
#include "velquor/data/string_array.h"
#include "velquor/frame/archive.h"

namespace velquor {
namespace {

TEST(Automation, ResultCodesHaveTheirStandardValues) {
  for (const auto& [code, bits] : {std::pair(E_INVALIDARG, 0x80070057u), std::pair(E_POINTER, 0x80004003u),
                                   std::pair(E_FAIL, 0x80004005u), std::pair(DISP_E_BADINDEX, 0x8002000Bu)})
    EXPECT_TRUE(static_cast<std::uint32_t>(code) == bits && Failed(code) && Succeeded(S_OK));
}

// The layout that automation clients rely on: the byte length in the 4 bytes before the text
// (embedded NULs counted), then a terminating NUL that is not counted.
TEST(Automation, BstrCarriesItsByteLengthBeforeTheText) {
  BSTR bstr = ole::AllocBstr(std::u16string_view(u"ab\0c", 4));
  std::uint32_t prefix = 0;
  std::memcpy(&prefix, reinterpret_cast<const char*>(bstr) - sizeof prefix, sizeof prefix);
  EXPECT_EQ(prefix, 8u);
  EXPECT_EQ(ole::SysStringLen(bstr), 4u);
  EXPECT_EQ(ole::SysStringByteLen(bstr), 8u);
  EXPECT_EQ(bstr[4], OLECHAR{0});
  EXPECT_EQ(ole::BstrText(bstr), std::u16string(u"ab\0c", 4));
  ole::SysFreeString(bstr);
  EXPECT_EQ(ole::SysStringLen(nullptr), 0u);
  EXPECT_EQ(ole::SysAllocString(nullptr), nullptr);
  EXPECT_EQ(ole::BstrText(nullptr), u"");
}

using test::Load;
using test::Stored;

// The framework's string length prefixes: one byte below 255, then 0xFF and a 16-bit length
// below 0xFFFF, then 0xFF 0xFFFF and a 32-bit length; after a 2-byte element count.
TEST(RecordArrays, ArchiveFormsOfStringAndWordArrays) {
  using namespace std::string_literals;
  const std::pair<std::size_t, std::string> cases[] = {{0, "\x00"s}, {254, "\xFE"s}, {255, "\xFF\xFF\x00"s},
                                                       {0xFFFD, "\xFF\xFD\xFF"s}, {0xFFFE, "\xFF\xFF\xFF\xFE\xFF\x00\x00"s}};
  for (const auto& [length, prefix] : cases) {
    CStringArray array, back;
    array.Add(std::string(length, 'a'));
    back.Add("stale");
    EXPECT_EQ(Stored(array), "\x01\x00"s + prefix + array[0]) << length;
    Load(back, Stored(array));
    EXPECT_TRUE(back.GetSize() == 1 && back[0] == array[0]) << length;
  }
  CStringArray kept;
  kept.Add("kept");
  EXPECT_THROW(Load(kept, "\x01\x00\x05" "abc"s), ArchiveError);  // cut inside the text: no partial result
  EXPECT_EQ(kept[0], "kept");
  CDWordArray words;
  CUIntArray back;
  words.Add(0x01020304u);
  EXPECT_EQ(Stored(words), "\x01\x00\x04\x03\x02\x01"s);
  Load(back, Stored(words));
  EXPECT_TRUE(back.GetSize() == 1 && back[0] == 0x01020304u);
}

}  // namespace
}  // namespace velquor
