// The built tool against hostile input and hostile output: bad arguments, malformed files,
// full disks, unwritable paths, folders given as files, spectra that overflow the tristimulus
// sums, and sample names that are not valid UTF-8; and the commands' reports. Each case of
// cli_hostile_input.csv and cli_commands.csv runs the executable and checks exit code, stdout
// and stderr.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "reference_table.h"
#include "scratch_folder.h"

namespace velquor::test {
void PrintTo(const ReferenceRow& row, std::ostream* os) {
  *os << row.Where();
}
}  // namespace velquor::test

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

// Samples at 400-700 nm in 100 nm steps. h.txt: "huge" overflows X, Y and Z, the third name
// holds the invalid bytes FF FE and a truncated three-byte sequence (E2 82). c.csv: the name
// holds a tab, an overlong '/' (C0 AF) and a UTF-16 surrogate (ED A0 80). m.txt: gap's 500 nm
// value is missing.
#define VELQUOR_CGATS                                                                   \
  "CGATS.17\nBEGIN_DATA_FORMAT\nSAMPLE_NAME nm400 nm500 nm600 nm700\nEND_DATA_FORMAT\n" \
  "BEGIN_DATA\nstd 20 40 60 80\n"
const std::pair<const char*, std::string> kFiles[] = {
    {"h.txt",
     VELQUOR_CGATS "huge 1e308 1e308 1e308 1e308\nbad\xff\xfe-\xe2\x82 20 40 60 81\nEND_DATA\n"},
    {"full.txt", VELQUOR_CGATS "gap 20 40 60 80\nnear 20.2 40.1 60 80\nEND_DATA\n"},
    {"m.txt", VELQUOR_CGATS "gap 20 \"\" 60 80\nnear 20.2 40.1 60 80\nEND_DATA\n"},
    {"c.csv", "name,400,500,600,700\nstd,20,40,60,80\n\"ctl\t\xc0\xaf\xed\xa0\x80\",20,40,60,81\n"},
    {"u.txt", "BEGIN_DATA_FORMAT\nSAMPLE_ID nm400 nm500\nEND_DATA_FORMAT\nBEGIN_DATA\n1 1 2\n"},
    {"g.txt", std::string("\x7f\x45LF\x01\x00\x00", 7)},
    {"t.csv", "name,400,500,600\na,1,x,3\n"},
};

// The table's text with each "\xHH" replaced by the byte HH.
std::string Bytes(const velquor::test::ReferenceRow& row, const char* column) {
  std::string text = row.Text(column);
  for (std::size_t at; (at = text.find("\\x")) != std::string::npos;) {
    text.replace(at, 4, 1, static_cast<char>(std::stoi(text.substr(at + 2, 2), nullptr, 16)));
  }
  return text;
}

using velquor::test::ReadFile;

// The tool's test folder and the tool run in it.
class ToolTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    // One folder per process: ctest runs the cases in parallel processes.
    fs::remove_all(dir_);
    fs::create_directories(dir_ / "sub");
    for (const auto& [name, text] : kFiles) std::ofstream(dir_ / name, std::ios::binary) << text;
    fs::copy_file(VELQUOR_TEST_DATA_DIR "/samples/colorchecker_ohta_380_780_5nm.csv",
                  dir_ / "cc.csv");
  }
  static void TearDownTestSuite() { fs::remove_all(dir_); }

  // The shell's exit status of `command` (with "velquor" for the tool), run in the test folder.
  static int Shell(const std::string& command) {
    const std::string line =
        std::regex_replace(command, std::regex("(^|&& )velquor"), "$1" VELQUOR_TOOL);
    const int status = std::system(("cd '" + dir_.string() + "' && " + line).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  static inline const fs::path dir_ =
      fs::temp_directory_path() / ("velquor_cli_tool_" + std::to_string(::getpid()));
};

class ToolRun : public ToolTest,
                public ::testing::WithParamInterface<velquor::test::ReferenceRow> {};

TEST_P(ToolRun, ExitCodeAndMessages) {
  const auto& row = GetParam();
  const std::string args = row.Text("args"), err = Bytes(row, "err"), absent = Bytes(row, "absent");
  SCOPED_TRACE(row.Where() + ": velquor " + args);
  const std::string stdoutTo = args.find('>') == std::string::npos ? " >out.txt" : "";
  fs::remove(dir_ / "out.txt");
  ASSERT_EQ(Shell("velquor " + args + stdoutTo + " 2>err.txt"), row.Integer("exit"))
      << ReadFile(dir_ / "err.txt");
  const std::string out = ReadFile(dir_ / "out.txt"), errors = ReadFile(dir_ / "err.txt");
  const std::string file = row.Text("file").empty() ? "out.txt" : row.Text("file");
  std::istringstream shown(Bytes(row, "out"));
  for (std::string text; std::getline(shown, text, '|');) {
    EXPECT_THAT(ReadFile(dir_ / file), HasSubstr(text));
  }
  EXPECT_THAT(errors, HasSubstr(err));
  EXPECT_TRUE(err.empty() || errors.find(err) == errors.rfind(err)) << errors;  // said once
  const std::string all = out + errors + ReadFile(dir_ / file);
  EXPECT_TRUE(absent.empty() || all.find(absent) == std::string::npos) << all;
  const std::string parse = row.Text("parse") == "json" ? "json.load(f)" : "f.read()";
  EXPECT_TRUE(row.Text("parse").empty() ||  // well-formed, with U+FFFD
              (Shell("/usr/bin/python3 -c 'import json; f = open(\"" + file +
                     "\", encoding=\"utf-8\"); " + parse + "'") == 0 &&
               ReadFile(dir_ / file).find("\xef\xbf\xbd") != std::string::npos))
      << ReadFile(dir_ / file);
}

#define VELQUOR_RUNS(table)                                             \
  ::testing::ValuesIn(velquor::test::LoadReferenceTable(table).begin(), \
                      velquor::test::LoadReferenceTable(table).end())
INSTANTIATE_TEST_SUITE_P(Hostile, ToolRun, VELQUOR_RUNS("reference/cli_hostile_input.csv"));
INSTANTIATE_TEST_SUITE_P(Commands, ToolRun, VELQUOR_RUNS("reference/cli_commands.csv"));

// A write that fails leaves no partial file or folder behind.
TEST_F(ToolTest, FailedWriteLeavesNothingBehind) {
  const auto files = [] { return std::distance(fs::directory_iterator(dir_), {}); };
  const auto before = files();
  EXPECT_EQ(Shell("velquor qc full.txt full.txt --csv=no/such/o.csv 2>/dev/null"), 2);
  EXPECT_EQ(files(), before);
}

}  // namespace
