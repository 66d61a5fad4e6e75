// Inputs kept from fuzzing the readers (tools/fuzz) and hostile inputs written by hand: every
// one must be read without a crash, and either succeed or fail with a message that names the
// input. Run under the sanitizers (the asan preset) this also checks for memory errors.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "measurement_test_support.h"
#include "scratch_folder.h"
#include "velquor/io/cgats_reader.h"
#include "velquor/io/cgats_writer.h"
#include "velquor/io/csv_spectra.h"
#include "velquor/io/spectral_grid_mapping.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/utf8.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;

// The wavelengths and then every sample's values, each missing value as kMissing.
std::vector<std::vector<double>> Table(const MeasurementFile& file) {
  std::vector<std::vector<double>> table = {file.wavelengths};
  for (const MeasurementSample& sample : file.samples) {
    table.push_back(sample.values);
    for (double& v : table.back()) v = IsMissing(v) ? kMissing : v;
  }
  return table;
}

void CheckOutcome(const MeasurementStatus& status, const MeasurementFile& file, const std::string& name) {
  if (!status.ok) {
    EXPECT_EQ(status.error.file, name);
    EXPECT_FALSE(status.error.text.empty());
    return;
  }
  EXPECT_FALSE(file.samples.empty());
  for (const MeasurementSample& sample : file.samples) {
    EXPECT_EQ(sample.values.size(), file.wavelengths.size());
    for (const std::string& field : sample.fields) EXPECT_TRUE(IsValidUtf8(field));
  }
  for (const MeasurementColumn& column : file.columns) EXPECT_TRUE(IsValidUtf8(column.name));
  std::vector<MappedSample> mapped;
  EXPECT_EQ(MapMeasurementFile(file, mapped).ok ? mapped.size() : file.samples.size(), file.samples.size());
  // What was read writes out and reads back with the same wavelengths and values.
  for (const bool csv : {false, true}) {
    std::string text;
    ASSERT_TRUE(csv ? FormatCsvSpectra(file, {}, text) : FormatCgats(file, {}, text));
    MeasurementFile back;
    const MeasurementStatus reread = test::Parse(csv, text, "rewritten", back);
    ASSERT_TRUE(reread.ok) << reread.error.Message() << "\n" << text;
    EXPECT_EQ(Table(back), Table(file));
  }
}

// Reads `text` as the fuzz target does: `selector` bit 6 delivers the lines from a source in
// blocks of (bits 0-5) + 1 bytes, bit 7 tells the readers the values are percent.
void ReadAsTheFuzzerDoes(std::string_view text, unsigned char selector, const std::string& name) {
  const std::size_t block = (selector & 63u) + 1;
  ReadOptions options;
  options.scale = (selector & 128u) != 0 ? ReflectanceScale::kPercent : ReflectanceScale::kAuto;
  for (const bool csv : {false, true}) {
    std::size_t offset = 0;
    LineReader memory(text);
    LineReader blocks([&](char* buffer, std::size_t capacity) -> long long {
      const std::size_t n = std::min({capacity, block, text.size() - offset});
      std::copy_n(text.data() + offset, n, buffer);
      offset += n;
      return static_cast<long long>(n);
    });
    LineReader& reader = (selector & 64u) != 0 ? blocks : memory;
    MeasurementFile file;
    const MeasurementStatus status =
        csv ? ReadCsvSpectra(reader, name, options, file) : ReadCgats(reader, name, options, file);
    CheckOutcome(status, file, name);
  }
}

// Files found by the fuzzer start with the target's selector byte; hand-written ones do not.
TEST(FuzzRegressions, EveryKeptInputReadsWithoutCrashing) {
  const fs::path folder = fs::path(VELQUOR_TEST_DATA_DIR) / "fuzz_regressions";
  std::vector<fs::path> inputs;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.is_regular_file() && entry.path().filename() != "README.md") inputs.push_back(entry.path());
  }
  std::sort(inputs.begin(), inputs.end());
  ASSERT_FALSE(inputs.empty());
  for (const fs::path& path : inputs) {
    const std::string name = path.filename().string();
    SCOPED_TRACE(name);
    const std::string text = test::ReadFile(path);
    if (name.starts_with("hand_")) {
      ReadAsTheFuzzerDoes(text, 0, name);
    } else if (!text.empty()) {
      ReadAsTheFuzzerDoes(std::string_view(text).substr(1), static_cast<unsigned char>(text[0]), name);
    }
  }
}

}  // namespace
}  // namespace velquor
