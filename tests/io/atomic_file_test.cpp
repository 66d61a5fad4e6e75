#include "velquor/io/atomic_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "velquor/io/cgats_writer.h"
#include "velquor/io/csv_spectra.h"
#include "velquor/io/measurement_io.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;

class AtomicFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = fs::temp_directory_path() /
              ("velquor_atomic_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "_" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::vector<std::string> Entries() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
  static std::string Content(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }
  static void Put(const fs::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
  }

  fs::path folder_;
};

TEST_F(AtomicFileTest, ReplacesTheTargetAndLeavesNoTemporaryFile) {
  const fs::path target = folder_ / "report.csv";
  Put(target, "old");
  std::string error;
  ASSERT_TRUE(WriteFileAtomically(target.string(), "new content\n", error)) << error;
  EXPECT_EQ(Content(target), "new content\n");
  EXPECT_EQ(Entries(), (std::vector<std::string>{"report.csv"}));
}

// An interrupted write (the writer goes away before Commit) leaves the old file whole.
TEST_F(AtomicFileTest, AbandonedWriteLeavesTheOldFileAndNoPartialFile) {
  const fs::path target = folder_ / "report.csv";
  Put(target, "complete old report\n");
  {
    AtomicFile file(target.string());
    std::string error;
    ASSERT_TRUE(file.Open(error)) << error;
    ASSERT_TRUE(file.Write("half of a new rep"));
    EXPECT_TRUE(fs::exists(file.TemporaryPath()));
    EXPECT_EQ(Entries().size(), 2u);
  }
  EXPECT_EQ(Content(target), "complete old report\n");
  EXPECT_EQ(Entries(), (std::vector<std::string>{"report.csv"}));
}

// The final rename fails (the target is a folder): the temporary file is removed.
TEST_F(AtomicFileTest, FailedRenameRemovesTheTemporaryFile) {
  const fs::path target = folder_ / "taken";
  fs::create_directories(target / "inside");
  std::string error;
  EXPECT_FALSE(WriteFileAtomically(target.string(), "data", error));
  EXPECT_FALSE(error.empty());
  EXPECT_EQ(Entries(), (std::vector<std::string>{"taken"}));
  EXPECT_TRUE(fs::is_directory(target / "inside"));
}

TEST_F(AtomicFileTest, WritersReportTheFileTheyCouldNotWrite) {
  MeasurementFile file;
  ASSERT_TRUE(ParseCsvSpectra("name,400,410,420\na,1,2,3\n", "in.csv", {}, file).ok);
  const std::string missingFolder = (folder_ / "no" / "such" / "out.cgats").string();
  MeasurementStatus status = WriteCgatsFile(missingFolder, file);
  EXPECT_FALSE(status.ok);
  EXPECT_EQ(status.error.Message(), missingFolder + ": cannot write the file (No such file or directory)");
  // The name chooses the format.
  const std::string target = (folder_ / "out.CSV").string();
  status = WriteMeasurementFile(target, file);
  ASSERT_TRUE(status.ok) << status.error.Message();
  EXPECT_EQ(Content(target), "name,400,410,420\na,1,2,3\n");
  const std::string cgats = (folder_ / "out.txt").string();
  ASSERT_TRUE(WriteMeasurementFile(cgats, file).ok);
  MeasurementFile back;
  ASSERT_TRUE(ReadMeasurementFile(cgats, {}, back).ok);
  EXPECT_EQ(back.format, MeasurementFormat::kCgats);
  EXPECT_EQ(back.SampleLabel(0), "a");
  EXPECT_EQ(Entries(), (std::vector<std::string>{"out.CSV", "out.txt"}));
}

}  // namespace
}  // namespace velquor
