// The dispatcher: slot layout and hand-calculated records of every system, the limit, missing
// inputs, the chromaticity mode and unknown codes.
#include "velquor/difference/color_difference.h"

#include <gtest/gtest.h>

#include <string>

#include "difference_fixtures.h"
#include "reference_table.h"
#include "tolerances.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using difference_testing::Difference;
using difference_testing::LabSample;
using difference_testing::XyzSample;

double Or(const test::ReferenceRow& row, std::string column, char n, double fallback) {
  if (n != 0) column.push_back(n);
  return row.Text(column).empty() ? fallback : row.Number(column);
}

// Sample `n` of a row: L a b, C h (from LittleCMS unless given), X Y Z (a grey unless given).
CColorSample RowSample(const test::ReferenceRow& row, char n) {
  CColorSample s = LabSample(Or(row, "L", n, 0), Or(row, "a", n, 0), Or(row, "b", n, 0));
  s.coordinates[3] = Or(row, "C", n, s.coordinates[3]);
  s.coordinates[4] = Or(row, "h", n, s.coordinates[4]);
  for (int i = 0; i < 3; ++i) s.xyz[i] = Or(row, std::string(1, "XYZ"[i]), n, 20);
  return s;
}

TEST(ComputeColorDifference, HandCalculatedRecordsOfEverySystem) {
  for (const auto& row : test::LoadReferenceTable("reference/difference_hand_records.csv")) {
    SCOPED_TRACE(row.Where() + " " + row.Text("what"));
    const CColorVector7 r = Difference(RowSample(row, '1'), RowSample(row, '2'), row.Integer("code"),
                                       Or(row, "w", '1', 1), Or(row, "w", '2', 1), Or(row, "w", '3', 1),
                                       Or(row, "p", 0, 0), static_cast<int>(Or(row, "ill", 0, 2)));
    for (int i = 0; i < 7; ++i) {
      const char slot[3] = {'s', static_cast<char>('1' + i), 0};
      if (row.Text(slot) == "m") {
        EXPECT_EQ(r[i], kMissing) << slot;
      } else if (!row.Text(slot).empty()) {
        EXPECT_NEAR(r[i], row.Number(slot), test::kIndependent) << slot;
      }
    }
  }
}

TEST(ComputeColorDifference, PlainSystemsAndUnknownCodesGiveTheDeltaEabRecord) {
  const CColorSample s = LabSample(62, -12, 33), t = LabSample(60.5, -9, 30);
  const CColorVector7 reference = Difference(s, t, kDiffCieLab);
  for (const int code : {kDiffCieLch, kDiffCieLuv, kDiffDin99, -1, 13, 99, 101, 1000}) {
    const CColorVector7 r = Difference(s, t, code);
    for (int i = 0; i < 7; ++i) EXPECT_EQ(r[i], reference[i]) << "code " << code << " slot " << i;
  }
}

TEST(ComputeColorDifference, MissingTristimulusGivesAnAllMissingRecordForEverySystem) {
  CColorSample missing = LabSample(50, 1, 1), empty = LabSample(50, 1, 1);
  for (int i = 0; i < 3; ++i) missing.xyz[i] = kMissing;
  empty.xyz.RemoveAll();
  const CColorSample present = LabSample(50, 2, 2);
  for (const int code : {0, 1, 2, 3, 7, 8, 9, 11, 12, 100}) {
    const CColorSample* const pairs[][2] = {{&missing, &present}, {&present, &empty}};
    for (const auto& pair : pairs) {
      CColorVector7 r;
      for (int i = 0; i < 7; ++i) r[i] = 5000;  // would be limited to 999.99 on any other path
      ComputeColorDifference(*pair[0], *pair[1], code, 2, 0, nullptr, r, 0);
      for (int i = 0; i < 7; ++i) EXPECT_EQ(r[i], kMissing) << "code " << code << " slot " << i;
    }
  }
  // Only one missing component is not a missing sample.
  EXPECT_EQ(Difference(XyzSample(kMissing, 30, 20), XyzSample(40, 30, 20), kDiffXyzYxy)[0],
            10 * (40 - kMissing));
}

TEST(ComputeColorDifference, ChromaticityModeWritesTheTrialsXyAndLeavesTheRestToTheLimit) {
  CColorVector7 r;
  const double before[7] = {7, 7, -3, 0.5, 5000, -5000, 12};
  for (int i = 0; i < 7; ++i) r[i] = before[i];
  ComputeColorDifference(XyzSample(95, 100, 108), XyzSample(20, 30, 50), kDiffChromaticity, 2, 0,
                         nullptr, r, 0);
  const double expected[7] = {0.2, 0.3, -3, 0.5, 999.99, -999.99, 12};
  for (int i = 0; i < 7; ++i) EXPECT_DOUBLE_EQ(r[i], expected[i]) << "slot " << i;
}

}  // namespace
}  // namespace velquor
