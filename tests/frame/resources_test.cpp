#include "velquor/frame/resources.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "velquor/frame/module.h"
#include "velquor/frame/string_table.h"

namespace velquor {
namespace {

// Malformed text fails naming the line and leaves the table empty.
TEST(StringTableText, ParsesEscapesCommentsAndLineEndsAndRejectsMalformedLines) {
  StringTable table;
  std::string error;
  const char* text =
      "\xEF\xBB\xBF# comment\n384\tA|Tungsten\r\n\n498\t - 2\xC2\xB0\n"
      "500\ttab\\there\\nand a backslash \\\\\n65535\t\n7\tno line feed";
  ASSERT_TRUE(ParseStringTable(text, table, error)) << error;
  EXPECT_EQ(table, (StringTable{{384, "A|Tungsten"},
                                {498, " - 2\xC2\xB0"},
                                {65535, ""},
                                {500, "tab\there\nand a backslash \\"},
                                {7, "no line feed"}}));
  const std::pair<const char*, const char*> cases[] = {
      {"1\tok\n2 no tab\n", "line 2: no tab"},
      {"x1\tbad\n", "line 1: identifier"},
      {"65536\tbig\n", "line 1: identifier"},
      {"1x\tbad\n", "line 1: identifier"},
      {"1\ta\n# c\n1\tb\n", "line 3: identifier appears"},
      {"1\tbad \\q escape\n", "line 1: bad escape"},
      {"1\ttrailing\\\n", "line 1: bad escape"},
      {"1\t\xC3\x28\n", "line 1: not valid UTF-8"},
      {"1\t\xED\xA0\x80\n", "line 1: not valid UTF-8"}};
  for (const auto& [text, message] : cases) {
    table = {{9, "stale"}};
    EXPECT_FALSE(ParseStringTable(text, table, error)) << text;
    EXPECT_TRUE(table.empty()) << text;
    EXPECT_EQ(error.rfind(message, 0), 0u) << "got: " << error;
  }
}

// A text that does not parse, or a file that cannot be opened, keeps the previous translation.
TEST(Translation, ReplacesEntriesByIdentifierAndKeepsOnFailure) {
  std::string out = "previous", error;
  EXPECT_EQ(LoadStringResource(60001, out), 0);
  EXPECT_EQ(out, "");
  ASSERT_EQ(LoadTranslatedStringsFromText("60001\tFarbabstand\n60002\t\n"), 1);
  EXPECT_EQ(LoadStringResource(60002, out), 1);  // translated to an empty text: found
  EXPECT_EQ(LoadTranslatedStringsFromText("60001\tneu\nbroken\n", &error), 0);
  EXPECT_EQ(error, "line 2: no tab after the identifier");
  EXPECT_EQ(LoadStringResource(60001), "Farbabstand");

  const std::string path = ::testing::TempDir() + "velquor_translation_test.txt";
  std::ofstream(path, std::ios::binary) << "60003\tNuance\r\n";
  ASSERT_EQ(LoadTranslatedStrings(path), 1);
  std::remove(path.c_str());
  EXPECT_EQ(LoadTranslatedStrings(path, &error), 0);
  EXPECT_EQ(error, path + ": cannot be opened");
  EXPECT_EQ(LoadStringResource(60003), "Nuance");
  ClearTranslatedStrings();
  EXPECT_EQ(LoadStringResource(60001), "");
}

// A second module with its own resources, linked into the chain like a host extension.
alignas(16) constexpr unsigned char kStrings[] = "60010\tfrom the test module\n60012\tfirst\n";
alignas(16) constexpr unsigned char kMoreStrings[] = "60011\tsecond part\n60012\tagain\n";
alignas(16) constexpr unsigned char kBlob[] = {1, 2, 3};
constexpr EmbeddedResource kTestResources[] = {
    {kStringTableType, "one", kStrings, sizeof kStrings - 1},
    {"PWD", "TEST01", kBlob, sizeof kBlob},
    {kStringTableType, "two", kMoreStrings, sizeof kMoreStrings - 1}};

TEST(ResourceChain, FindsResourcesOfEveryLinkedModuleUntilItDetaches) {
  const EmbeddedResourceModule resources("test", kTestResources);
  CExtensionModule module;
  EXPECT_EQ(AddResourceLink(module), nullptr);  // not initialised yet
  ASSERT_TRUE(InitExtensionModule(module, &resources));
  EXPECT_FALSE(FindCustomResource("PWD", "TEST01").has_value());
  const std::size_t before = ResourceChainLength();
  ASSERT_NE(AddResourceLink(module), nullptr);
  EXPECT_EQ(ResourceChainLength(), before + 1);

  const auto blob = FindCustomResource("PWD", "TEST01");
  ASSERT_TRUE(blob.has_value());
  EXPECT_EQ(std::string(blob->begin(), blob->end()), "\1\2\3");
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(blob->data()) % 16, 0u);
  EXPECT_FALSE(FindCustomResource("PWD", "TEST02").has_value());
  EXPECT_FALSE(FindCustomResource("XYZ", "TEST01").has_value());
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(LoadStringResource(60010), "from the test module");
  EXPECT_EQ(LoadStringResource(60011), "second part");  // parts form one table
  EXPECT_EQ(LoadStringResource(60012), "first");        // a duplicate is reported, not taken
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "velquor error: string table test/two: identifier 60012 is defined twice\n");

  TermExtensionModule(module);
  EXPECT_EQ(ResourceChainLength(), before);
  EXPECT_FALSE(FindCustomResource("PWD", "TEST01").has_value());
}

TEST(ModuleLifecycle, AttachDetachAndFurtherLinks) {
  EnsureVelquorAttached();
  const std::size_t attached = ResourceChainLength();
  EXPECT_EQ(VelquorModuleEntry(ModuleReason::kThreadAttach), 1);
  EXPECT_EQ(ResourceChainLength(), attached);
  ASSERT_NE(InitVelquorModule(), nullptr);
  EXPECT_EQ(ResourceChainLength(), attached + 1);

  EXPECT_EQ(VelquorModuleEntry(ModuleReason::kProcessDetach), 1);
  EXPECT_EQ(ResourceChainLength(), attached - 1);  // both of the library's links are gone
  EXPECT_EQ(InitVelquorModule(), nullptr);
  EXPECT_FALSE(FindCustomResource("PWD", "ILL02_10").has_value());
  EXPECT_EQ(VelquorModuleEntry(ModuleReason::kProcessAttach), 1);
  EXPECT_TRUE(FindCustomResource("PWD", "ILL02_10").has_value());
}

// InitVelquorModule as a module's first library call attaches the library first; a fresh
// process is one where nothing has attached it yet.
TEST(ModuleLifecycle, InitVelquorModuleAsTheFirstCallAttaches) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(std::exit(InitVelquorModule() != nullptr && ResourceChainLength() == 2 ? 0 : 1),
              testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace velquor
