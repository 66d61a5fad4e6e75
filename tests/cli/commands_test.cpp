// The velquor commands end to end: files in, exit code and output out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "commands.h"
#include "reference_table.h"

namespace velquor::cli {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

// Three samples at 400-700 nm in 100 nm steps (percent); `middle` is the second one's value at
// 500 nm ("" for missing).
std::string SmallCgats(const std::string& middle) {
  return "CGATS.17\nBEGIN_DATA_FORMAT\nSAMPLE_NAME nm400 nm500 nm600 nm700\nEND_DATA_FORMAT\n"
         "BEGIN_DATA\nstd 20 40 60 80\ngap 20 " +
         middle + " 60 80\nnear 20.2 40.1 60 80\nEND_DATA\n";
}

std::string Read(const fs::path& path) {
  std::stringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

class CommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    std::ofstream(dir_ / "full.txt") << SmallCgats("40");
    std::ofstream(dir_ / "m.txt") << SmallCgats("\"\"");
    fs::copy_file(VELQUOR_TEST_DATA_DIR "/samples/colorchecker_ohta_380_780_5nm.csv",
                  dir_ / "cc.csv");
  }
  void TearDown() override { fs::remove_all(dir_); }

  // Runs the tool in-process; an argument naming a file of the test folder gets its path.
  int Run(std::vector<std::string> args) {
    for (std::string& arg : args) {
      if (arg.find('.') != std::string::npos && fs::exists(dir_ / arg)) arg = (dir_ / arg).string();
    }
    io_ = {};
    return RunVelquor(args, io_);
  }

  const fs::path dir_ =
      fs::temp_directory_path() /
      ("velquor_cli_" +
       std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
  CommandOutput io_;
};

TEST_F(CommandTest, ExitCodeAndReport) {
  for (const auto& row : test::LoadReferenceTable("reference/cli_commands.csv")) {
    std::vector<std::string> args;
    for (std::istringstream in(row.Text("args")); in >> args.emplace_back();) continue;
    args.pop_back();
    EXPECT_EQ(Run(args), row.Integer("exit")) << row.Where();
    std::istringstream shown(std::regex_replace(row.Text("shown"), std::regex(R"(\\n)"), "\n"));
    for (std::string text; std::getline(shown, text, '|');) {
      EXPECT_THAT(io_.out, HasSubstr(text)) << row.Where();
    }
  }
  EXPECT_EQ(Run({"diff", "m.txt", "m.txt"}), kExitRejected);
  EXPECT_THAT(io_.out, Not(HasSubstr(" \n")));  // a blank last column leaves no blanks
}

TEST_F(CommandTest, OutputFilesAreWrittenWholeOrNotAtAll) {
  ASSERT_EQ(Run({"qc", "full.txt", "full.txt", "--csv=" + (dir_ / "o.csv").string(),
                 "--json=" + (dir_ / "o.json").string(), "--html", (dir_ / "o.html").string(), "-i",
                 "D65/10,A/2"}),
            kExitSuccess);
  EXPECT_THAT(Read(dir_ / "o.html"), HasSubstr("id=\"ab-plot\""));
  EXPECT_THAT(io_.out, HasSubstr("Batch summary"));  // files do not silence the terminal report
  EXPECT_THAT(Read(dir_ / "o.csv"), HasSubstr("near,A/2°"));
  EXPECT_THAT(Read(dir_ / "o.json"), HasSubstr("\"accepted\": true"));
  const fs::path bad = dir_ / "no" / "such" / "out.csv";
  EXPECT_EQ(Run({"qc", "full.txt", "full.txt", "--csv=" + bad.string()}), kExitUsage);
  EXPECT_EQ(std::distance(fs::directory_iterator(dir_), fs::directory_iterator()), 6);
  // -w keeps the input columns, adds the computed ones, and the result reads back.
  ASSERT_EQ(Run({"xyz", "full.txt", "-w", (dir_ / "w.txt").string()}), kExitSuccess);
  EXPECT_THAT(Read(dir_ / "w.txt"), HasSubstr("SAMPLE_NAME"));
  EXPECT_THAT(Read(dir_ / "w.txt"), HasSubstr("XYZ_X"));
  EXPECT_EQ(Run({"lab", "w.txt", "-s", "lab"}), kExitSuccess);
}

}  // namespace
}  // namespace velquor::cli
