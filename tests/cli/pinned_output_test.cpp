// The tool's output on small files, byte for byte, against outputs recorded before the reading
// and rendering were reworked for large batches (tests/data/cli/README.md): a changed digit,
// a lost missing value or a different rounding of a tie shows here.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "commands.h"
#include "velquor/frame/batch_threads.h"

namespace velquor::cli {
namespace {

struct Pinned {
  std::vector<std::string> args;
  const char* expected;  // file in tests/data/cli
  int exit;
};

std::string ReadText(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

class PinnedOutput : public ::testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    previous_ = std::filesystem::current_path();
    std::filesystem::current_path(VELQUOR_TEST_DATA_DIR "/cli");  // names in the text as recorded
    SetBatchThreads(GetParam());
  }
  void TearDown() override {
    std::filesystem::current_path(previous_);
    SetBatchThreads(0);
  }

 private:
  std::filesystem::path previous_;
};

TEST_P(PinnedOutput, SameBytesAsRecorded) {
  const std::string cc = "../samples/colorchecker_ohta_380_780_5nm.csv";
  const Pinned cases[] = {
      {{"qc", "batch_forms.cgats", "batch_forms.cgats", "--csv"}, "qc_batch_forms.csv", kExitRejected},
      {{"qc", "batch_forms.cgats", "batch_forms.cgats", "-i", "D65/10,A/2", "-x", "WI CIE"},
       "qc_batch_forms.txt",
       kExitRejected},
      {{"lab", "batch_forms.cgats", "--csv", "-s", "lch"}, "lab_batch_forms.csv", kExitRejected},
      {{"xyz", cc, "--csv"}, "xyz_colorchecker.csv", kExitSuccess},
      {{"diff", cc, cc, "-s", "cie2000", "--csv"}, "diff_colorchecker.csv", kExitSuccess},
  };
  for (const Pinned& pinned : cases) {
    SCOPED_TRACE(pinned.expected);
    CommandOutput io;
    EXPECT_EQ(RunVelquor(pinned.args, io), pinned.exit) << io.err;
    EXPECT_EQ(io.out, ReadText(pinned.expected));
  }
}

INSTANTIATE_TEST_SUITE_P(Threads, PinnedOutput, ::testing::Values(1, 8));

}  // namespace
}  // namespace velquor::cli
