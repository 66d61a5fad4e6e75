#include "velquor/io/atomic_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "scratch_folder.h"
#include "velquor/io/atomic_file_platform.h"
#include "velquor/io/cgats_writer.h"
#include "velquor/io/csv_spectra.h"
#include "velquor/io/measurement_io.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;

class AtomicFileTest : public ::testing::Test, public test::ScratchFolder {
 protected:
  std::vector<std::string> Entries() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
};

// An interrupted write (the writer goes away before Commit) leaves the old file whole.
TEST_F(AtomicFileTest, AbandonedWriteLeavesTheOldFileAndNoPartialFile) {
  const fs::path target = folder_ / "report.csv";
  std::ofstream(target, std::ios::binary) << "complete old report\n";
  {
    AtomicFile file(target.string());
    std::string error;
    ASSERT_TRUE(file.Open(error)) << error;
    ASSERT_TRUE(file.Write("half of a new rep"));
    EXPECT_TRUE(fs::exists(file.TemporaryPath()));
    EXPECT_EQ(Entries().size(), 2u);
  }
  EXPECT_EQ(ReadFile(target), "complete old report\n");
  EXPECT_EQ(Entries(), (std::vector<std::string>{"report.csv"}));
}

// A temporary name that is taken is never opened: its file keeps its content, and a new name
// is created empty.
TEST_F(AtomicFileTest, NewFilesAreCreatedOnlyWhereNothingExists) {
  const fs::path taken = folder_ / "taken.tmp", fresh = folder_ / "fresh.tmp";
  std::ofstream(taken, std::ios::binary) << "another writer's bytes";
  int error = 0;
  EXPECT_EQ(atomic_file_platform::CreateNewFile(taken.string(), error), nullptr);
  EXPECT_EQ(error, EEXIST);
  EXPECT_EQ(ReadFile(taken), "another writer's bytes");
  std::FILE* file = atomic_file_platform::CreateNewFile(fresh.string(), error);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(std::fwrite("a\nb", 1, 3, file), 3u);
  std::fclose(file);
  EXPECT_EQ(ReadFile(fresh), "a\nb");  // binary: no CR added
}

// The final rename fails (the target is a folder): the temporary file is removed.
TEST_F(AtomicFileTest, FailedRenameRemovesTheTemporaryFile) {
  fs::create_directories(folder_ / "taken" / "inside");
  std::string error;
  EXPECT_FALSE(WriteFileAtomically((folder_ / "taken").string(), "data", error));
  EXPECT_FALSE(error.empty());
  EXPECT_EQ(Entries(), (std::vector<std::string>{"taken"}));
  EXPECT_TRUE(fs::is_directory(folder_ / "taken" / "inside"));
}

// The writers replace a file whole, leave no temporary file, choose the format by the name and
// report the file they could not write.
TEST_F(AtomicFileTest, WritersReplaceTheTargetAndReportTheFileTheyCouldNotWrite) {
  MeasurementFile file, back;
  ASSERT_TRUE(ParseCsvSpectra("name,400,410,420\na,1,2,3\n", "in.csv", {}, file).ok);
  const std::string missingFolder = (folder_ / "no" / "such" / "out.cgats").string();
  EXPECT_EQ(WriteCgatsFile(missingFolder, file).error.Message(), missingFolder + ": cannot write the file (No such file or directory)");
  const fs::path csv = folder_ / "out.CSV", cgats = folder_ / "out.txt";
  std::ofstream(csv, std::ios::binary) << "an old, longer report\n";
  ASSERT_TRUE(WriteMeasurementFile(csv.string(), file).ok);
  EXPECT_EQ(ReadFile(csv), "name,400,410,420\na,1,2,3\n");
  ASSERT_TRUE(WriteMeasurementFile(cgats.string(), file).ok);
  ASSERT_TRUE(ReadMeasurementFile(cgats.string(), {}, back).ok);
  EXPECT_EQ(back.format, MeasurementFormat::kCgats);
  EXPECT_EQ(back.SampleLabel(0), "a");
  EXPECT_EQ(Entries(), (std::vector<std::string>{"out.CSV", "out.txt"}));
}

}  // namespace
}  // namespace velquor
