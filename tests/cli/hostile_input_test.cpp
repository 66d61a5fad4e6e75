// The built tool against hostile input and hostile output: bad arguments, malformed files,
// full disks, unwritable paths, folders given as files, spectra that overflow the tristimulus
// sums, and sample names that are not valid UTF-8. Each case of cli_hostile_input.csv runs the
// executable and checks exit code, stdout and stderr.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "reference_table.h"

namespace velquor::test {
void PrintTo(const ReferenceRow& row, std::ostream* os) {
  *os << row.Where();
}
}  // namespace velquor::test

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

// Three samples at 400-700 nm; "huge" overflows X, Y and Z, the third name holds the invalid
// bytes FF FE and a truncated three-byte sequence (E2 82).
const char kHostileCgats[] =
    "CGATS.17\nBEGIN_DATA_FORMAT\nSAMPLE_NAME nm400 nm500 nm600 nm700\nEND_DATA_FORMAT\n"
    "BEGIN_DATA\nstd 20 40 60 80\nhuge 1e308 1e308 1e308 1e308\n"
    "bad\xff\xfe-\xe2\x82 20 40 60 81\nEND_DATA\n";
// The CSV name holds a tab, an overlong '/' (C0 AF) and a UTF-16 surrogate (ED A0 80).
const char kHostileCsv[] =
    "name,400,500,600,700\nstd,20,40,60,80\n\"ctl\t\xc0\xaf\xed\xa0\x80\",20,40,60,81\n";

const std::pair<const char*, std::string_view> kFiles[] = {
    {"h.txt", kHostileCgats},
    {"c.csv", kHostileCsv},
    {"u.txt", "BEGIN_DATA_FORMAT\nSAMPLE_ID nm400 nm500\nEND_DATA_FORMAT\nBEGIN_DATA\n1 1 2\n"},
    {"g.txt", std::string_view("\x7f\x45LF\x01\x00\x00", 7)},
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

std::string Read(const fs::path& path) {
  std::stringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

class HostileInputTest : public ::testing::TestWithParam<velquor::test::ReferenceRow> {
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

  // The shell's exit status of `command`, run in the test folder.
  static int Shell(const std::string& command) {
    const int status = std::system(("cd '" + dir_.string() + "' && " + command).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  static inline const fs::path dir_ =
      fs::temp_directory_path() / ("velquor_cli_hostile_" + std::to_string(::getpid()));
};

TEST_P(HostileInputTest, ExitCodeAndMessages) {
  const auto& row = GetParam();
  const std::string args = row.Text("args"), err = Bytes(row, "err"), absent = Bytes(row, "absent");
  SCOPED_TRACE(row.Where() + ": velquor " + args);
  const std::string stdoutTo = args.find('>') == std::string::npos ? " >out.txt" : "";
  fs::remove(dir_ / "out.txt");
  ASSERT_EQ(Shell(std::string(VELQUOR_TOOL) + " " + args + stdoutTo + " 2>err.txt"),
            row.Integer("exit"))
      << Read(dir_ / "err.txt");
  const std::string out = Read(dir_ / "out.txt"), errors = Read(dir_ / "err.txt");
  EXPECT_THAT(out, HasSubstr(Bytes(row, "out")));
  EXPECT_THAT(errors, HasSubstr(err));
  EXPECT_TRUE(err.empty() || errors.find(err) == errors.rfind(err)) << errors;  // said once
  const std::string file = row.Text("file").empty() ? "out.txt" : row.Text("file");
  const std::string all = out + errors + Read(dir_ / file);
  EXPECT_TRUE(absent.empty() || all.find(absent) == std::string::npos) << all;
  if (!row.Text("parse").empty()) {
    const std::string parse = row.Text("parse") == "json" ? "json.load(f)" : "f.read()";
    EXPECT_EQ(Shell("/usr/bin/python3 -c 'import json; f = open(\"" + file +
                    "\", encoding=\"utf-8\"); " + parse + "'"),
              0)
        << Read(dir_ / file);
    EXPECT_THAT(Read(dir_ / file), HasSubstr("\xef\xbf\xbd"));  // U+FFFD
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, HostileInputTest,
    ::testing::ValuesIn(
        velquor::test::LoadReferenceTable("reference/cli_hostile_input.csv").begin(),
        velquor::test::LoadReferenceTable("reference/cli_hostile_input.csv").end()));

}  // namespace
