// The velquor commands end to end: files in, exit code and output out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "commands.h"

namespace velquor::cli {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

const std::string kColorChecker =
    VELQUOR_TEST_DATA_DIR "/samples/colorchecker_ohta_380_780_5nm.csv";

class CommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() /
           ("velquor_cli_" +
            std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }

  std::string Write(const std::string& name, const std::string& text) {
    const std::string path = (dir_ / name).string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  static std::string Read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }
  int Run(std::vector<std::string> args) {
    io_ = {};
    return RunVelquor(args, io_);
  }

  fs::path dir_;
  CommandOutput io_;
};

// A CGATS file of three samples at 400-700 nm in 100 nm steps (percent), the second with a
// missing value at 500 nm.
std::string SmallCgats(const std::string& middle = "\"\"") {
  return "CGATS.17\nNUMBER_OF_FIELDS 5\nBEGIN_DATA_FORMAT\nSAMPLE_NAME nm400 nm500 nm600 nm700\n"
         "END_DATA_FORMAT\nNUMBER_OF_SETS 3\nBEGIN_DATA\n"
         "std 20 40 60 80\n"
         "gap 20 " +
         middle +
         " 60 80\n"
         "near 20.2 40.1 60 80\n"
         "END_DATA\n";
}

TEST_F(CommandTest, UsageErrorsExitWithTwoAndSayWhat) {
  const std::string file = Write("a.txt", SmallCgats("40"));
  const struct {
    std::vector<std::string> args;
    const char* message;
  } kCases[] = {
      {{}, "usage: velquor"},
      {{"frobnicate"}, "unknown command 'frobnicate'"},
      {{"xyz"}, "expected 1 file argument, got 0"},
      {{"xyz", file, "--bogus"}, "unknown option '--bogus'"},
      {{"xyz", file, "-i", "D66"}, "unknown illuminant 'D66'"},
      {{"xyz", file, "-o", "5"}, "unknown observer '5'"},
      {{"xyz", file, "-i"}, "needs a value"},
      {{"qc", file, file, "-t", "-1"}, "tolerance '-1' is not a positive number"},
      {{"qc", file, file, "-s", "cmc:2:1:1:1"}, "too many numbers"},
      {{"qc", file, file, "-s", "cmc:0:1"}, "is not a positive number"},
      {{"qc", file, file, "--index", "WI Nonsense"}, "unknown index 'WI Nonsense'"},
      {{"qc", file, file, "--index", "Ganz"}, "unknown index"},
      {{"strength", file, file, "-m", "apparent@520"}, "takes no wavelength"},
      {{"index", file}, "--index is required"},
      {{"xyz", (dir_ / "absent.txt").string()}, "absent.txt"},
      {{"diff", file, file, "-n", "nobody"}, "no sample named 'nobody'"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(Run(c.args), kExitUsage) << c.message;
    EXPECT_THAT(io_.err, HasSubstr(c.message));
  }
}

TEST_F(CommandTest, EveryCommandHasHelp) {
  for (const char* command : {"xyz", "lab", "diff", "qc", "index", "strength", "demo"}) {
    EXPECT_EQ(Run({command, "--help"}), kExitSuccess) << command;
    EXPECT_THAT(io_.out, HasSubstr(std::string("usage: velquor ") + command)) << command;
    EXPECT_THAT(io_.out, HasSubstr("--illuminant")) << command;
  }
}

TEST_F(CommandTest, MalformedFilesNameFileAndLine) {
  const std::string unterminated = Write("u.txt",
                                         "BEGIN_DATA_FORMAT\nSAMPLE_ID nm400 nm500 nm600\n"
                                         "END_DATA_FORMAT\nBEGIN_DATA\n1 1 2 3\n");
  EXPECT_EQ(Run({"xyz", unterminated}), kExitUsage);
  EXPECT_THAT(io_.err, HasSubstr("u.txt:"));
  const std::string garbage = Write("g.txt", std::string("\x7f"
                                                         "ELF\x01\x00\x00",
                                                         7));
  EXPECT_EQ(Run({"lab", garbage}), kExitUsage);
  EXPECT_THAT(io_.err, HasSubstr("g.txt"));
  const std::string text = Write("t.csv", "name,400,500,600\na,1,x,3\n");
  EXPECT_EQ(Run({"xyz", text}), kExitUsage);
  EXPECT_THAT(io_.err, HasSubstr("t.csv:2"));
}

TEST_F(CommandTest, MissingValueRejectsOneSampleAndKeepsTheOthers) {
  const std::string file = Write("m.txt", SmallCgats());
  EXPECT_EQ(Run({"xyz", file}), kExitRejected);
  // At 100 nm spacing every grid point interpolated from 500 nm is lost with it.
  EXPECT_THAT(io_.out, HasSubstr("gap: rejected, missing values at 410, "));
  EXPECT_THAT(io_.out, HasSubstr("sample gap has no value at 500 nm"));
  EXPECT_THAT(io_.out, HasSubstr("near    D65/10°    49.9782"));
  EXPECT_EQ(Run({"qc", file, file, "-s", "cielab", "-t", "5"}), kExitRejected);
  EXPECT_THAT(io_.out, HasSubstr("rejected"));
  EXPECT_EQ(Run({"qc", file, file, "--json"}), kExitRejected);
  EXPECT_THAT(io_.out, HasSubstr("\"computed\": false"));
}

TEST_F(CommandTest, QcExitCodeFollowsTheTolerance) {
  const std::string file = Write("q.txt", SmallCgats("40"));
  ASSERT_EQ(Run({"diff", file, file, "-s", "cielab", "--csv"}), kExitSuccess);
  // The largest ΔE*ab in the file decides: just above it passes, just below fails.
  double largest = 0;
  std::istringstream rows(io_.out);
  std::string line;
  std::getline(rows, line);
  EXPECT_THAT(line, HasSubstr("ΔE*ab"));
  while (std::getline(rows, line)) {
    const std::size_t shade = line.rfind(',');
    const std::size_t total = line.rfind(',', shade - 1);
    largest = std::max(largest, std::stod(line.substr(total + 1, shade - total - 1)));
  }
  ASSERT_GT(largest, 0.05);
  EXPECT_EQ(Run({"qc", file, file, "-s", "cielab", "-t", std::to_string(largest + 0.01)}),
            kExitSuccess);
  EXPECT_EQ(Run({"qc", file, file, "-s", "cielab", "-t", std::to_string(largest - 0.01)}),
            kExitRejected);
  EXPECT_THAT(io_.out, HasSubstr("fail"));
}

TEST_F(CommandTest, OutputFilesAreWrittenWholeOrNotAtAll) {
  const std::string file = Write("o.txt", SmallCgats("40"));
  const std::string csv = (dir_ / "out.csv").string();
  const std::string json = (dir_ / "out.json").string();
  const std::string html = (dir_ / "out.html").string();
  ASSERT_EQ(
      Run({"qc", file, file, "--csv=" + csv, "--json=" + json, "--html", html, "-i", "D65/10,A/2"}),
      kExitSuccess);
  EXPECT_THAT(Read(html), HasSubstr("id=\"ab-plot\""));
  EXPECT_THAT(io_.out, HasSubstr("Batch summary"));  // files do not silence the terminal report
  EXPECT_THAT(Read(csv), HasSubstr("near,A/2°"));
  EXPECT_THAT(Read(json), HasSubstr("\"accepted\": true"));
  // A folder that does not exist: an error, and no partial file anywhere.
  const std::string bad = (dir_ / "no" / "such" / "out.csv").string();
  EXPECT_EQ(Run({"qc", file, file, "--csv=" + bad}), kExitUsage);
  EXPECT_FALSE(fs::exists(bad));
  std::size_t entries = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(dir_)) ++entries;
  EXPECT_EQ(entries, 4u);
}

TEST_F(CommandTest, WriteKeepsTheInputColumnsAndAddsTheComputedOnes) {
  const std::string file = Write("w.txt", SmallCgats("40"));
  const std::string out = (dir_ / "w_out.txt").string();
  ASSERT_EQ(Run({"xyz", file, "-w", out}), kExitSuccess);
  const std::string written = Read(out);
  EXPECT_THAT(written, HasSubstr("SAMPLE_NAME"));
  EXPECT_THAT(written, HasSubstr("XYZ_X"));
  ASSERT_EQ(Run({"lab", out, "-s", "lab"}), kExitSuccess);  // the result reads back
}

TEST_F(CommandTest, ColourSpacesOfTheColorChecker) {
  // White patch 19 ("white 9.5 (.05 D)"): near L* 96, neutral, and R = G = B near 255 in RGB.
  ASSERT_EQ(Run({"lab", kColorChecker, "-s", "lab", "--csv"}), kExitSuccess);
  EXPECT_THAT(io_.out, HasSubstr("L*,a*,b*"));
  for (const char* space : {"lch", "luv", "hunter", "din99", "yxy", "rgb"}) {
    EXPECT_EQ(Run({"lab", kColorChecker, "-s", space}), kExitSuccess) << space;
  }
  ASSERT_EQ(Run({"lab", kColorChecker, "-s", "rgb", "--json"}), kExitSuccess);
  EXPECT_THAT(io_.out, HasSubstr("\"R\": "));
}

TEST_F(CommandTest, DemoShowsTheReportAndExitsZero) {
  ASSERT_EQ(Run({"demo"}), kExitSuccess);
  EXPECT_THAT(io_.out, HasSubstr("orange"));
  EXPECT_THAT(io_.out, HasSubstr("B09 reading incomplete: missing values at 500, 510, 520 nm"));
  EXPECT_THAT(io_.out, HasSubstr("pass"));
  EXPECT_THAT(io_.out, HasSubstr("fail"));
  EXPECT_THAT(io_.out, HasSubstr("Batch not accepted"));
}

}  // namespace
}  // namespace velquor::cli
