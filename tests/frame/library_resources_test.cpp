// The library's own resources as the build compiled them (constant tables on POSIX systems, a
// STRINGTABLE and "PWD" resources in velquor.dll on Windows) hold exactly the source texts and
// tables.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "scratch_folder.h"
#include "velquor/frame/resources.h"
#include "velquor/frame/string_table.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;
const fs::path kResources = fs::path(VELQUOR_SOURCE_DIR) / "velquor" / "resources";

using test::ReadFile;

// Every text of every source file, byte for byte (UTF-8, escapes resolved). A STRINGTABLE
// cannot hold an empty text, so an empty one reads as absent on Windows: both give "".
TEST(LibraryResources, EveryStringOfTheSourceTablesLoadsByIdentifier) {
  int strings = 0;
  for (const auto& entry : fs::directory_iterator(kResources / "strings")) {
    StringTable table;
    std::string error;
    ASSERT_TRUE(ParseStringTable(ReadFile(entry.path()), table, error)) << error;
    for (const auto& [id, text] : table) {
      std::string loaded = "stale";
      const int found = LoadStringResource(id, loaded);
      EXPECT_EQ(loaded, text) << entry.path().filename() << " " << id;
      EXPECT_EQ(found, text.empty() ? found : 1) << id;
      ++strings;
    }
  }
  EXPECT_GT(strings, 1000);
  EXPECT_EQ(LoadStringResource(65535), "");
  // Identifiers are 16-bit: 65536 + 384 is not 384 (a STRINGTABLE lookup would wrap to it).
  std::string beyond = "stale";
  EXPECT_EQ(LoadStringResource(65536 + 384, beyond), 0);
  EXPECT_EQ(beyond, "");
}

TEST(LibraryResources, EveryWeightingTableIsACustomResourceOfItsName) {
  int tables = 0;
  for (const auto& entry : fs::directory_iterator(kResources / "weights")) {
    const std::string name = entry.path().filename().string();
    if (name.rfind("ILL", 0) != 0) continue;
    const auto bytes = FindCustomResource("PWD", name);
    ASSERT_TRUE(bytes.has_value()) << name;
    EXPECT_EQ(std::string(bytes->begin(), bytes->end()), ReadFile(entry.path())) << name;
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes->data()) % 8, 0u) << name;
    ++tables;
  }
  EXPECT_EQ(tables, 34);
  EXPECT_FALSE(FindCustomResource("PWD", "ILL17_02").has_value());
  EXPECT_FALSE(FindCustomResource("XYZ", "ILL02_10").has_value());
}

}  // namespace
}  // namespace velquor
