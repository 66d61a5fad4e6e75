#include "velquor/colorimetry/chroma_hue.h"

#include <gtest/gtest.h>

#include "colour_space_references.h"

namespace velquor {

TEST(ComputeChromaHue, AxesQuadrantsAndTheDegreeWrap) {
  for (const auto& row : test::LoadReferenceTable("reference/colorimetry_chroma_hue.csv")) {
    ScopedHueUnit unit(row.Integer("degrees"));
    double chroma = -1, hue = -1;
    ComputeChromaHue(row.Number("a"), row.Number("b"), chroma, hue);
    EXPECT_NEAR(chroma, row.Number("chroma"), 1e-15 * (1 + row.Number("chroma"))) << row.Where();
    EXPECT_NEAR(hue, row.Number("hue"), row.Number("tolerance")) << row.Where();
  }
}

TEST(ComputeChromaHue, MissingAndRecordForms) {
  double c1 = 0, h1 = 0, c2 = 0, h2 = 0;
  ComputeChromaHue(kMissing, 1, c1, h1), ComputeChromaHue(1, kMissing, c2, h2);
  EXPECT_TRUE(IsMissing(c1) && IsMissing(h1) && IsMissing(c2) && IsMissing(h2));
  // The record form fills slots 3 and 4 from 1 and 2 (in degrees (0, -3) is C 3, h 270); a
  // record shorter than three gets them missing.
  for (std::size_t size : {2u, 3u}) {
    CValueVector5 record;
    record.SetSize(size);
    record[0] = 42, record[1] = 0, record[size - 1] = -3;
    ComputeChromaHue(record);
    EXPECT_TRUE(record[0] == 42 && record[size - 1] == -3);
    EXPECT_TRUE(size == 2 ? IsMissing(record[3]) && IsMissing(record[4])
                          : std::abs(record[3] - 3) < 1e-15 && std::abs(record[4] - 270) < 1e-11);
  }
}

}  // namespace velquor
