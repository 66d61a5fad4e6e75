// Inputs kept from fuzzing the readers (tools/fuzz) and hostile inputs written by hand: every
// one must be read without a crash, and either succeed or fail with a message that names the
// input. Run under the sanitizers (the asan preset) this also checks for memory errors.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "velquor/data/cgats_reader.h"
#include "velquor/data/cgats_writer.h"
#include "velquor/data/csv_spectra.h"
#include "velquor/data/spectral_grid_mapping.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;

void CheckOutcome(const MeasurementStatus& status, const MeasurementFile& file, const std::string& name) {
  if (!status.ok) {
    EXPECT_EQ(status.error.file, name);
    EXPECT_FALSE(status.error.text.empty());
    return;
  }
  EXPECT_FALSE(file.samples.empty());
  for (const MeasurementSample& sample : file.samples) EXPECT_EQ(sample.values.size(), file.wavelengths.size());
  std::vector<MappedSample> mapped;
  const MeasurementStatus mapping = MapMeasurementFile(file, mapped);
  if (mapping.ok) {
    EXPECT_EQ(mapped.size(), file.samples.size());
  }
  // What was read writes and reads back.
  std::string text;
  ASSERT_TRUE(FormatCgats(file, {}, text));
  MeasurementFile again;
  const MeasurementStatus reread = ParseCgats(text, "rewritten", {}, again);
  EXPECT_TRUE(reread.ok) << reread.error.Message() << "\n" << text;
  EXPECT_EQ(again.samples.size(), file.samples.size());
}

TEST(FuzzRegressions, EveryKeptInputReadsWithoutCrashing) {
  const fs::path folder = fs::path(VELQUOR_TEST_DATA_DIR) / "fuzz_regressions";
  std::vector<fs::path> inputs;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.is_regular_file() && entry.path().filename() != "README.md") inputs.push_back(entry.path());
  }
  std::sort(inputs.begin(), inputs.end());
  ASSERT_FALSE(inputs.empty());
  for (const fs::path& path : inputs) {
    SCOPED_TRACE(path.filename().string());
    std::ifstream in(path, std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    const std::string text = bytes.str();
    const std::string name = path.filename().string();
    MeasurementFile cgats;
    CheckOutcome(ParseCgats(text, name, {}, cgats), cgats, name);
    MeasurementFile csv;
    CheckOutcome(ParseCsvSpectra(text, name, {}, csv), csv, name);
  }
}

}  // namespace
}  // namespace velquor
