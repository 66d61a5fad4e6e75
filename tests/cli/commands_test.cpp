// The velquor commands end to end: files in, exit code and output out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

// Three samples at 400-700 nm in 100 nm steps (percent); `middle` is the second one's value at
// 500 nm ("" for missing).
std::string SmallCgats(const std::string& middle) {
  return "CGATS.17\nBEGIN_DATA_FORMAT\nSAMPLE_NAME nm400 nm500 nm600 nm700\nEND_DATA_FORMAT\n"
         "BEGIN_DATA\nstd 20 40 60 80\ngap 20 " +
         middle + " 60 80\nnear 20.2 40.1 60 80\nEND_DATA\n";
}

class CommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() /
           ("velquor_cli_" +
            std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    full_ = Write("full.txt", SmallCgats("40"));
  }
  void TearDown() override { fs::remove_all(dir_); }

  std::string Write(const std::string& name, const std::string& text) {
    const std::string path = (dir_ / name).string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  static std::string Read(const std::string& path) {
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
  }
  int Run(std::vector<std::string> args) {
    io_ = {};
    return RunVelquor(args, io_);
  }

  fs::path dir_;
  std::string full_;  // SmallCgats without a missing value
  CommandOutput io_;
};

TEST_F(CommandTest, EveryCommandHasHelp) {
  for (const char* command : {"xyz", "lab", "diff", "qc", "index", "strength", "demo"}) {
    EXPECT_EQ(Run({command, "--help"}), kExitSuccess) << command;
    EXPECT_THAT(io_.out, HasSubstr(std::string("usage: velquor ") + command));
    EXPECT_THAT(io_.out, HasSubstr("--illuminant"));
  }
}

TEST_F(CommandTest, MissingValueRejectsOneSampleAndKeepsTheOthers) {
  const std::string file = Write("m.txt", SmallCgats("\"\""));
  EXPECT_EQ(Run({"xyz", file}), kExitRejected);
  // At 100 nm spacing every grid point interpolated from 500 nm is lost with it.
  EXPECT_THAT(io_.out, HasSubstr("gap: rejected, missing values at 410, "));
  EXPECT_THAT(io_.out, HasSubstr("sample gap has no value at 500 nm"));
  EXPECT_THAT(io_.out,
              HasSubstr("near    D65/10°    49.9782  50.2690  32.8805   0.3754   0.3776\n"));
  EXPECT_EQ(Run({"qc", file, file, "-s", "cielab", "-t", "5"}), kExitRejected);
  EXPECT_THAT(io_.out, HasSubstr("rejected"));
  EXPECT_EQ(Run({"diff", file, file}), kExitRejected);
  EXPECT_THAT(io_.out, Not(HasSubstr(" \n")));  // a blank last column leaves no blanks
  EXPECT_EQ(Run({"qc", file, file, "--json"}), kExitRejected);
  EXPECT_THAT(io_.out, HasSubstr("\"computed\": false"));
}

TEST_F(CommandTest, QcExitCodeFollowsTheTolerance) {
  ASSERT_EQ(Run({"diff", full_, full_, "-s", "cielab", "--csv"}), kExitSuccess);
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
  EXPECT_EQ(Run({"qc", full_, full_, "-s", "cielab", "-t", std::to_string(largest + 0.01)}),
            kExitSuccess);
  EXPECT_EQ(Run({"qc", full_, full_, "-s", "cielab", "-t", std::to_string(largest - 0.01)}),
            kExitRejected);
  EXPECT_THAT(io_.out, HasSubstr("fail"));
}

TEST_F(CommandTest, OutputFilesAreWrittenWholeOrNotAtAll) {
  const std::string csv = (dir_ / "out.csv").string();
  const std::string json = (dir_ / "out.json").string();
  const std::string html = (dir_ / "out.html").string();
  ASSERT_EQ(Run({"qc", full_, full_, "--csv=" + csv, "--json=" + json, "--html", html, "-i",
                 "D65/10,A/2"}),
            kExitSuccess);
  EXPECT_THAT(Read(html), HasSubstr("id=\"ab-plot\""));
  EXPECT_THAT(io_.out, HasSubstr("Batch summary"));  // files do not silence the terminal report
  EXPECT_THAT(Read(csv), HasSubstr("near,A/2°"));
  EXPECT_THAT(Read(json), HasSubstr("\"accepted\": true"));
  // A folder that does not exist: an error, and no partial file anywhere.
  const std::string bad = (dir_ / "no" / "such" / "out.csv").string();
  EXPECT_EQ(Run({"qc", full_, full_, "--csv=" + bad}), kExitUsage);
  EXPECT_FALSE(fs::exists(bad));
  EXPECT_EQ(std::distance(fs::directory_iterator(dir_), fs::directory_iterator()), 4);
}

TEST_F(CommandTest, WriteKeepsTheInputColumnsAndAddsTheComputedOnes) {
  const std::string out = (dir_ / "w_out.txt").string();
  ASSERT_EQ(Run({"xyz", full_, "-w", out}), kExitSuccess);
  EXPECT_THAT(Read(out), HasSubstr("SAMPLE_NAME"));
  EXPECT_THAT(Read(out), HasSubstr("XYZ_X"));
  ASSERT_EQ(Run({"lab", out, "-s", "lab"}), kExitSuccess);  // the result reads back
}

TEST_F(CommandTest, ColourSpacesOfTheColorChecker) {
  for (const auto& [space, columns] : {std::pair{"lab", "L*,a*,b*\n"},
                                       {"lch", "L*,C*ab,hab\n"},
                                       {"luv", "L*,u*,v*,C*uv,huv\n"},
                                       {"hunter", "L,a,b\n"},
                                       {"din99", "L99,a99,b99,C99,h99\n"},
                                       {"yxy", "Y,x,y\n"},
                                       {"rgb", "R,G,B\n"}}) {
    EXPECT_EQ(Run({"lab", kColorChecker, "-s", space, "--csv"}), kExitSuccess) << space;
    EXPECT_THAT(io_.out, HasSubstr(std::string("sample,condition,") + columns));
  }
}

TEST_F(CommandTest, DemoShowsTheReportAndExitsZero) {
  ASSERT_EQ(Run({"demo"}), kExitSuccess);
  for (const char* shown : {"orange", "B09 reading incomplete: missing values at 500, 510, 520 nm",
                            "pass", "fail", "Batch not accepted"}) {
    EXPECT_THAT(io_.out, HasSubstr(shown));
  }
}

}  // namespace
}  // namespace velquor::cli
