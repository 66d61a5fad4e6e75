// The built tool against hostile input and hostile output: bad arguments, malformed files,
// full disks, unwritable paths, folders given as files, spectra that overflow the tristimulus
// sums, and sample names that are not valid UTF-8. Each case runs the executable and checks
// exit code, stdout and stderr.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

// Three samples at 400-700 nm; "huge" overflows X, Y and Z, the third name holds the invalid
// bytes FF FE and a truncated three-byte sequence (E2 82).
const char kHostileCgats[] =
    "CGATS.17\nBEGIN_DATA_FORMAT\nSAMPLE_NAME nm400 nm500 nm600 nm700\nEND_DATA_FORMAT\n"
    "BEGIN_DATA\nstd 20 40 60 80\nhuge 1e308 1e308 1e308 1e308\n"
    "bad\xff\xfe-\xe2\x82 20 40 60 81\nEND_DATA\n";
// The CSV name holds a tab, an overlong '/' (C0 AF) and a UTF-16 surrogate (ED A0 80).
const char kHostileCsv[] =
    "name,400,500,600,700\nstd,20,40,60,80\n\"ctl\t\xc0\xaf\xed\xa0\x80\",20,40,60,81\n";
#define U_FFFD "\xef\xbf\xbd"

const std::pair<const char*, std::string_view> kFiles[] = {
    {"h.txt", kHostileCgats},
    {"c.csv", kHostileCsv},
    {"u.txt", "BEGIN_DATA_FORMAT\nSAMPLE_ID nm400 nm500\nEND_DATA_FORMAT\nBEGIN_DATA\n1 1 2\n"},
    {"g.txt", std::string_view("\x7f\x45LF\x01\x00\x00", 7)},
    {"t.csv", "name,400,500,600\na,1,x,3\n"},
};

const char kRepaired[] = "not valid UTF-8";

enum class Check { kNone, kJson, kUtf8 };  // what the output (stdout or `file`) must parse as

struct HostileCase {
  const char* args;  // after the tool's name, as a shell would take them
  int exit;
  const char* out;     // in stdout ("" for nothing to check)
  const char* err;     // in stderr
  const char* absent;  // in neither stream, nor in `file`
  Check check = Check::kNone;
  const char* file = "";  // an output file to check instead of stdout
};

const HostileCase kCases[] = {
    // Arguments and files the tool cannot use: exit 2 and say what.
    {"", 2, "", "usage: velquor", ""},
    {"frobnicate", 2, "", "unknown command 'frobnicate'", ""},
    {"xyz", 2, "", "expected 1 file argument, got 0", ""},
    {"xyz h.txt --bogus", 2, "", "unknown option '--bogus'", ""},
    {"xyz h.txt -i D66", 2, "", "unknown illuminant 'D66'", ""},
    {"xyz h.txt -o 5", 2, "", "unknown observer '5'", ""},
    {"xyz h.txt -i", 2, "", "needs a value", ""},
    {"qc h.txt h.txt -t 0", 2, "", "tolerance '0' is not a positive number", ""},
    {"qc h.txt h.txt -t 0.05", 1, "tolerance 0.05", "", ""},
    {"qc h.txt h.txt -s cmc:2:1:1:1", 2, "", "too many numbers", ""},
    {"qc h.txt h.txt --index 'WI Nonsense'", 2, "", "unknown index 'WI Nonsense'", ""},
    {"strength h.txt h.txt -m apparent@520", 2, "", "takes no wavelength", ""},
    {"index h.txt", 2, "", "--index is required", ""},
    {"xyz absent.txt", 2, "", "velquor: absent.txt", ""},
    {"diff h.txt h.txt -n nobody", 2, "", "no sample named 'nobody'", ""},
    {"xyz u.txt", 2, "", "velquor: u.txt:", ""},
    {"lab g.txt", 2, "", "velquor: g.txt", ""},
    {"xyz t.csv", 2, "", "velquor: t.csv:2", ""},
    // Output that cannot be written: exit 2, and the message names the output and the reason.
    {"xyz h.txt >/dev/full", 2, "", "velquor: standard output: No space left on device", ""},
    {"qc cc.csv cc.csv --json >/dev/full", 2, "", "No space left on device", ""},  // > BUFSIZ
    {"xyz h.txt --json=no/such/x.json", 2, "", "velquor: no/such/x.json: No such file or directory",
     ""},
    {"qc h.txt h.txt --html h.txt/r.html", 2, "", "velquor: h.txt/r.html: Not a directory", ""},
    {"lab h.txt --csv=out.csv --json=no/x.json", 2, "", "velquor: no/x.json: ", ""},
    // A folder given as input.
    {"xyz .", 2, "", "velquor: .: is a directory", "Input/output"},
    {"diff h.txt sub", 2, "", "velquor: sub: is a directory", ""},
    // Overflowing spectra give no XYZ: rejected with a message, never a number.
    {"xyz h.txt", 1, "huge: rejected, tristimulus values not finite", "", "inf"},
    {"lab h.txt -s din99 --json", 1, "\"huge\", \"condition\": \"D65/10°\", \"L99\": null", "",
     "inf", Check::kJson},
    {"diff h.txt h.txt -s cielab", 1, "note: huge: tristimulus values not finite", "", "999.99"},
    {"qc h.txt h.txt -s cielab -t 5", 1, "D65/10°         3     2     0         1  0.07  0.14", "",
     "999.99"},
    {"qc h.txt h.txt -n huge --json", 1, "standard rejected: tristimulus values not finite", "",
     "999.99", Check::kJson},
    {"index h.txt -x 'WI CIE'", 1, "huge: rejected, tristimulus values not finite", "", ""},
    {"strength h.txt h.txt", 1, "huge: rejected, tristimulus values not finite", "", "999.99"},
    {"strength h.txt h.txt -n huge", 1, "std: rejected, standard", "", "999.99"},
    // Invalid UTF-8 in names: every format stays well-formed, with U+FFFD in their place.
    {"xyz h.txt --json", 1, "\"bad" U_FFFD U_FFFD "-" U_FFFD "\"", kRepaired, "\xff", Check::kJson},
    {"qc h.txt h.txt --json=q.json --csv=q.csv", 1, "", kRepaired, "\xff", Check::kJson, "q.json"},
    {"qc h.txt h.txt --html q.html", 1, "", kRepaired, "\xff", Check::kUtf8, "q.html"},
    {"diff c.csv c.csv --csv", 0, "ctl\t" U_FFFD U_FFFD U_FFFD U_FFFD U_FFFD ",", kRepaired, "\xc0",
     Check::kUtf8},
    {"qc c.csv c.csv --json", 0, "\"ctl\\u0009" U_FFFD U_FFFD U_FFFD U_FFFD U_FFFD "\"", kRepaired,
     "", Check::kJson},
    {"lab c.csv", 0, "ctl", kRepaired, "\xc0", Check::kUtf8},
};

void PrintTo(const HostileCase& c, std::ostream* os) {
  *os << c.args;
}

class HostileInputTest : public ::testing::TestWithParam<HostileCase> {
 protected:
  static void SetUpTestSuite() {
    // One folder per process: ctest runs the cases in parallel processes.
    dir_ = fs::temp_directory_path() / ("velquor_cli_hostile_" + std::to_string(::getpid()));
    fs::remove_all(dir_);
    fs::create_directories(dir_ / "sub");
    for (const auto& [name, text] : kFiles) std::ofstream(dir_ / name, std::ios::binary) << text;
    fs::copy_file(VELQUOR_TEST_DATA_DIR "/samples/colorchecker_ohta_380_780_5nm.csv",
                  dir_ / "cc.csv");
  }
  static void TearDownTestSuite() { fs::remove_all(dir_); }

  static std::string Read(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }
  // The shell's exit status of `command`, run in the test folder.
  static int Shell(const std::string& command) {
    const int status = std::system(("cd '" + dir_.string() + "' && " + command).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  static inline fs::path dir_;
};

TEST_P(HostileInputTest, ExitCodeAndMessages) {
  const HostileCase& c = GetParam();
  const std::string args = c.args;
  const std::string stdoutTo = args.find('>') == std::string::npos ? " >out.txt" : "";
  fs::remove(dir_ / "out.txt");
  ASSERT_EQ(Shell(std::string(VELQUOR_TOOL) + " " + args + stdoutTo + " 2>err.txt"), c.exit)
      << Read(dir_ / "err.txt");
  const std::string out = Read(dir_ / "out.txt");
  const std::string err = Read(dir_ / "err.txt");
  EXPECT_THAT(out, HasSubstr(c.out));
  EXPECT_THAT(err, HasSubstr(c.err));
  if (*c.err != '\0') {  // said once, however many outputs
    EXPECT_EQ(err.find(c.err), err.rfind(c.err)) << err;
  }
  const std::string file = *c.file != '\0' ? c.file : "out.txt";
  if (*c.absent != '\0') {
    EXPECT_THAT(out + err + Read(dir_ / file), Not(HasSubstr(c.absent)));
  }
  if (c.check != Check::kNone) {
    const std::string parse = c.check == Check::kJson ? "json.load(f)" : "f.read()";
    EXPECT_EQ(Shell("/usr/bin/python3 -c 'import json; f = open(\"" + file +
                    "\", encoding=\"utf-8\"); " + parse + "'"),
              0)
        << Read(dir_ / file);
    EXPECT_THAT(Read(dir_ / file), HasSubstr(U_FFFD));
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, HostileInputTest, ::testing::ValuesIn(kCases));

}  // namespace
