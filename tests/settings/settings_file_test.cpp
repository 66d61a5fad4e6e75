#include "velquor/settings/settings_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "velquor/settings/file_settings_backend.h"

namespace velquor {
namespace {

TEST(SettingsValuesForm, ChecksumAndLinesAreTheDocumentedOnes) {
  // Check value of CRC-32/ISO-HDLC in the CRC catalogue (reveng); the two lines' checksums were
  // computed independently with Python's zlib.crc32.
  EXPECT_EQ(SettingsCrc32("123456789"), 0xCBF43926u);
  EXPECT_EQ(FormatSettingsValues(
                {{"General", 4, std::string("\x02\0\0\0", 4)}, {"PathInfo", 1, "/tmp/"}}),
            std::string(kSettingsFileHeader) +
                "General 4 02000000 7175b740\nPathInfo 1 2f746d702f de72e460\n");
}

TEST(SettingsValuesForm, AwkwardNamesAndDataRoundTrip) {
  std::string allBytes;
  for (int c = 0; c < 256; ++c) allBytes += static_cast<char>(c);
  const std::vector<SettingsValue> values = {
      {"", 1, "unnamed"}, {"%@# \t\n\x7f\xff", 3, allBytes}, {"Empty", 0xFFFFFFFFu, ""}};
  const ParsedSettingsValues parsed = ParseSettingsValues(FormatSettingsValues(values));
  EXPECT_EQ(parsed.damagedLines, 0u);
  ASSERT_EQ(parsed.values.size(), values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_EQ(parsed.values[i].name, values[i].name);
    EXPECT_EQ(parsed.values[i].type, values[i].type);
    EXPECT_EQ(parsed.values[i].data, values[i].data);
  }
}

// A line with a correct checksum, so that only the rule a case breaks can reject it.
std::string Line(const std::string& body) {
  char crc[9];
  std::snprintf(crc, sizeof crc, "%08x", SettingsCrc32(body));
  return body + " " + crc + "\n";
}

TEST(SettingsValuesForm, DamagedLinesAreSkippedAndTheRestRead) {
  std::string wrongCrc = Line("General 4 01000000");
  wrongCrc[wrongCrc.size() - 2] ^= 1;
  const std::string damaged[] = {
      wrongCrc,
      Line("General 4 01000000").substr(0, 27),  // no line feed
      Line("General 4 01000000 extra"),          // five fields
      Line("General  4 01000000"),               // two blanks
      Line("Gen%2 4 01000000"),                  // escape cut short
      Line("Gen%2e 4 01000000"),                 // escape in lower case
      Line("Gen%41 4 01000000"),                 // 'A' escaped: not the canonical form
      Line("General 04 01000000"),               // leading zero in the type
      Line("General 4294967296 01"),             // type above 32 bits
      Line("General 4 0100000"),                 // odd number of hex digits
      Line("General 4 01000A00"),                // upper-case data digit
  };
  const std::string good = Line("Good 4 2a000000");
  for (const std::string& line : damaged) {
    const ParsedSettingsValues parsed = ParseSettingsValues(good + line);
    EXPECT_EQ(parsed.damagedLines, 1u) << line;
    EXPECT_EQ(parsed.values.size(), 1u) << line;
  }
  // The valid side of the same rules; a later line wins, names ignore ASCII case only.
  const ParsedSettingsValues valid =
      ParseSettingsValues(Line("@ 0 -") + Line("%25%40%23%20 4294967295 00") + "# comment\n" +
                          Line("AT 1 78") + Line("at 1 79"));
  EXPECT_EQ(valid.damagedLines, 0u);
  ASSERT_EQ(valid.values.size(), 3u);
  EXPECT_EQ(valid.values[1].name, "%@# ");
  EXPECT_EQ(valid.values[2].data, "y");
  EXPECT_FALSE(SameSettingsName("\xC4", "\xE4"));
  EXPECT_FALSE(SameSettingsName("[", "{"));  // differ by 0x20 like letters, but are none
}

// A values file over the store's size limit cannot be read, so a write to its key must not
// replace it by the one new value: the 20 values it holds stay.
TEST(SettingsValuesFile, AWriteNeverDropsTheValuesOfAnOversizedFile) {
  const auto root = std::filesystem::path(testing::TempDir()) / "velquor_oversized";
  std::filesystem::remove_all(root);
  std::unique_ptr<SettingsKey> key =
      FileSettingsBackend(root, false).OpenCurrentUser()->CreateSubKey("Oversized", 0);
  ASSERT_NE(key, nullptr);
  const unsigned char data[4] = {1, 0, 0, 0};
  for (char name = 'a'; name < 'a' + 20; ++name) key->SetValue(std::string(1, name), 4, data);
  std::filesystem::path file;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    if (entry.path().filename() == ".values") file = entry.path();
  }
  std::ofstream(file, std::ios::app) << "# " << std::string(kMaxSettingsFileSize, 'x') << "\n";

  EXPECT_FALSE(key->SetValue("New", 4, data));
  std::ifstream in(file, std::ios::binary);
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_EQ(ParseSettingsValues(text).values.size(), 20u);
  std::filesystem::remove_all(root);
}

}  // namespace
}  // namespace velquor
