// A large CGATS table is read in blocks of rows on several threads; whatever the rows hold
// and wherever the block boundaries fall, the result must be the one the line-by-line reading
// of the same text gives (a reader of a byte source never splits), at any thread count.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "tests/sanitizer.h"
#include "velquor/frame/batch_threads.h"
#include "velquor/io/cgats_reader.h"

namespace velquor {
namespace {

// Rows of every form the reader must take, cycled: a table of some 4 MiB, so that several
// block boundaries fall among them.
const char* const kRowForms[] = {
    "S%d 0.1234 0.5 12",
    "S%d 1.5e-1 2E+0 -3.25e0",
    "S%d +0.5 -0.25 -0",
    "S%d .5 5. 0005.500",
    "S%d 0.12345678901234567 1234567890123456 123456789012345",
    "S%d 0.25 0.5 0.75\r",
    "S%d 0.25 0.5 0.75 \t ",
    "# a comment line",
    "",
    "\"S %d\" 0.3 0.2 0.1",
    "S%d NA - \"\"",
    "S%d 0.1 0.2 0.3 # a trailing comment",
    "\tS%d\t0.9\t0.8\t0.7",
};
constexpr std::size_t kRows = 120000;

std::string Header(std::size_t sets) {
  return std::string("CGATS.17\nNUMBER_OF_FIELDS 4\nBEGIN_DATA_FORMAT\nSAMPLE_ID nm400 nm410 nm420\n")
      .append("END_DATA_FORMAT\nNUMBER_OF_SETS ")
      .append(std::to_string(sets))
      .append("\nBEGIN_DATA\n");
}

// The data rows; row `replaced` (when < kRows) is `replacement` instead.
std::string Rows(std::size_t replaced = kRows, const std::string& replacement = "") {
  std::string rows;
  char line[128];
  for (std::size_t i = 0; i < kRows; ++i) {
    if (i == replaced) {
      rows += replacement + "\n";
      continue;
    }
    std::snprintf(line, sizeof line, kRowForms[i % std::size(kRowForms)], static_cast<int>(i));
    rows += line;
    rows += '\n';
  }
  return rows;
}

std::size_t SampleRows() {
  std::size_t n = 0;
  for (std::size_t i = 0; i < kRows; ++i) n += kRowForms[i % std::size(kRowForms)][0] == 'S' ||
                                                kRowForms[i % std::size(kRowForms)][0] == '"' ||
                                                kRowForms[i % std::size(kRowForms)][0] == '\t';
  return n;
}

// Everything a reading produces, values by their bits (the sign of -0 included).
std::vector<std::string> Outcome(const MeasurementStatus& status, const MeasurementFile& file) {
  std::vector<std::string> items{status.ok ? "ok" : status.error.Message()};
  for (const MeasurementNote& note : file.notes) items.push_back(std::to_string(note.line).append(": ").append(note.text));
  if (!status.ok) return items;
  items.push_back(file.DescribeScale());
  for (const MeasurementSample& sample : file.samples) {
    std::string row = std::to_string(sample.line);
    for (const std::string& field : sample.fields) row.append(" [").append(field).append("]");
    for (const double v : sample.values) {
      std::uint64_t bits = 0;
      std::memcpy(&bits, &v, sizeof bits);
      row.append(" ").append(std::to_string(bits));
    }
    items.push_back(row);
  }
  return items;
}

std::vector<std::string> ReadInBlocks(const std::string& text) {
  MeasurementFile file;
  const MeasurementStatus status = ParseCgats(text, "big.cgats", {}, file);
  return Outcome(status, file);
}

std::vector<std::string> ReadLineByLine(const std::string& text) {
  std::size_t offset = 0;
  LineReader reader([&](char* buffer, std::size_t capacity) -> long long {
    const std::size_t n = std::min(capacity, text.size() - offset);
    std::memcpy(buffer, text.data() + offset, n);
    offset += n;
    return static_cast<long long>(n);
  });
  MeasurementFile file;
  const MeasurementStatus status = ReadCgats(reader, "big.cgats", {}, file);
  return Outcome(status, file);
}

class CgatsBlocks : public ::testing::TestWithParam<int> {
 protected:
  void SetUp() override { SetBatchThreads(GetParam()); }
  void TearDown() override { SetBatchThreads(0); }
};

TEST_P(CgatsBlocks, EveryRowFormReadsAsLineByLine) {
  const std::string text = Header(SampleRows()) + Rows() + "END_DATA\nafter the table\n";
  const std::vector<std::string> blocks = ReadInBlocks(text);
  ASSERT_EQ(blocks.front(), "ok");
  EXPECT_GT(blocks.size(), SampleRows());  // status, notes, scale, then one item per sample
  EXPECT_EQ(blocks, ReadLineByLine(text));
}

// A row that stops the block reading, late in the table (in the fourth block or so): the
// same error or note, at the same line, as line by line.
TEST_P(CgatsBlocks, OddRowLateInTheTableGivesTheSameMessage) {
  struct Case {
    const char* what;
    const char* row;
  };
  const Case cases[] = {
      {"not a number", "S1 0.1 0.2x 0.3"},
      {"a field short", "S1 0.1 0.2"},
      {"a field too many", "S1 0.1 0.2 0.3 0.4"},
      {"unclosed quote", "\"S1 0.1 0.2 0.3"},
      {"binary byte", "S1 0.1\x01 0.2 0.3"},
      {"invalid UTF-8 in a name (a note)", "S\xff 0.1 0.2 0.3"},
      {"END_DATA early (set count differs)", "END_DATA"},
      {"END_DATA as a quoted sample name", "\"END_DATA\" 0.1 0.2 0.3"},
      {"END_DATA unquoted where a name goes: the end", "END_DATA 0.1 0.2 0.3"},
      {"infinity", "S1 1e400 0.2 0.3"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string text = Header(SampleRows()) + Rows(100003, c.row) + "END_DATA\n";
    EXPECT_EQ(ReadInBlocks(text), ReadLineByLine(text));
  }
  // No END_DATA at all, the last line without its line end.
  std::string open = Header(SampleRows()) + Rows();
  open.pop_back();
  EXPECT_EQ(ReadInBlocks(open), ReadLineByLine(open));
  EXPECT_EQ(ReadInBlocks(open).front(), "big.cgats:7: BEGIN_DATA of line 7 has no END_DATA");
}

#if defined(VELQUOR_TEST_SANITIZED)
// Each case reads some 4 MB twice; under the sanitizers one split over threads is enough.
INSTANTIATE_TEST_SUITE_P(Threads, CgatsBlocks, ::testing::Values(2));
#else
INSTANTIATE_TEST_SUITE_P(Threads, CgatsBlocks, ::testing::Values(1, 2, 8));
#endif

}  // namespace
}  // namespace velquor
