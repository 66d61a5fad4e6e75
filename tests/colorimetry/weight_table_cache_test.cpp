#include "velquor/colorimetry/weight_table_cache.h"

#include <gtest/gtest.h>

#include <latch>
#include <set>
#include <thread>
#include <vector>

#include "tolerances.h"
#include "velquor/frame/numeric.h"

// The cache is process-wide and never shrinks, and these tests may run in one process in any
// order. Each test checks order-independent facts or uses observer codes (2, 3, 6, 1000+,
// 2000+, 5000) that no other test passes, so the keys it creates are fresh. The last one also finds
// a key appended twice by an earlier one.

namespace velquor {

TEST(WeightTableCache, NamesKeysAndCollidingKeys) {
  // Degrees are 10 only for observer code 1; the key is 4 x index + code, wrapping unsigned.
  EXPECT_EQ(WeightTableName(0, 0) + WeightTableName(16, 1), "ILL00_02ILL16_10");
  EXPECT_EQ(WeightTableName(5, 7) + WeightTableName(123, 1), "ILL05_02ILL123_10");
  EXPECT_EQ(WeightTableKey(0, -1), 0xFFFFFFFFu);
  // (3, code 1) loads CWF 10° under key 13 first; D65 with code 5 is then served CWF 10°.
  // Key 6: (0, code 6) loads A 2°, and C with code 2 then gets A's Xn 109.85, not 98.074.
  const double* cwf = GetWeightTable(3, 1);
  const double* a = GetWeightTable(0, 6);
  EXPECT_NEAR(cwf[kWeightTableWhitePoint], 103.279, test::kThreeDecimals);
  EXPECT_NEAR(a[kWeightTableWhitePoint], 109.85, test::kThreeDecimals);
  EXPECT_EQ(GetWeightTable(2, 5), cwf);
  EXPECT_EQ(FindWeightTable(2, 5), FindWeightTable(3, 1));
  EXPECT_EQ(GetWeightTable(1, 2), a);
}

TEST(WeightTableCache, AbsentTablesLeaveTheCacheUnchangedAndEnsureFallsBackToD65) {
  ASSERT_EQ(LoadWeightTable(2, 0) + LoadWeightTable(2, 1) + LoadWeightTable(0, 5000), 3);
  const std::vector<std::uint32_t> before = GetWeightTableCacheKeys();
  // 17 is a catalogue slot without a table; 20 and -1 are outside the catalogue.
  for (int illuminant : {17, 20, -1}) {
    for (int observer : {0, 1}) {
      CValueVector3 white;
      int index = illuminant;
      EXPECT_TRUE(FindWeightTable(illuminant, observer) == -1 &&
                  !LoadWeightTable(illuminant, observer) &&
                  !GetWhitePoint(illuminant, observer, white));
      EXPECT_TRUE(IsMissing(white[0]) && IsMissing(white[1]) && IsMissing(white[2]));
      EXPECT_TRUE(EnsureWeightTable(index, observer) == 0 && index == 2);
    }
  }
  EXPECT_EQ(GetWeightTableCacheKeys(), before);
  int index = 16;
  EXPECT_TRUE(EnsureWeightTable(index, 0) == 1 && index == 16);
  CValueVector3 white;  // a short vector grows: H23, 2°, Zn 22.889
  white.SetSize(1);
  ASSERT_TRUE(GetWhitePoint(14, 0, white) == 1 && white.GetSize() == 3);
  EXPECT_NEAR(white[2], 22.889, test::kThreeDecimals);
}

TEST(WeightTableCache, ConcurrentFirstUseAppendsEachKeyOnce) {
  // Fresh pairs: every illuminant with code 3 (keys 4 i + 3, the direct-slot path), with code
  // 1000 + i (the scanning path), and 200 codes 2000+ on illuminant 0, so the cache grows past
  // its first segments (64 and 128 entries) while eight threads, each from its own starting
  // point, half of them backwards, read it. Codes other than 1 read the 2° table of (i, 0).
  std::vector<std::pair<int, int>> pairs;
  for (int i = 0; i < 17; ++i) pairs.insert(pairs.end(), {{i, 3}, {i, 1000 + i}});
  for (int k = 0; k < 200; ++k) pairs.push_back({0, 2000 + k});
  std::vector<std::vector<int>> positions(8, std::vector<int>(pairs.size()));
  std::latch start(8);
  std::vector<std::jthread> threads;
  for (std::size_t t = 0; t < 8; ++t) {
    threads.emplace_back([&, t] {
      start.arrive_and_wait();
      for (std::size_t n = 0; n < pairs.size(); ++n) {
        const std::size_t m = (n + t * 29) % pairs.size(), j = t % 2 ? pairs.size() - 1 - m : m;
        const auto [i, o] = pairs[j];
        const double* table = GetWeightTable(i, o);
        const bool same =
            table && table[kWeightTableWhitePoint] == GetWeightTable(i, 0)[kWeightTableWhitePoint];
        positions[t][j] = same ? FindWeightTable(i, o) : -2;
      }
    });
  }
  threads.clear();  // joins
  const std::vector<std::uint32_t> keys = GetWeightTableCacheKeys();
  EXPECT_EQ(std::set<std::uint32_t>(keys.begin(), keys.end()).size(), keys.size());
  for (const auto& row : positions) {
    for (std::size_t j = 0; j < pairs.size(); ++j) {
      ASSERT_GE(row[j], 0) << j;
      EXPECT_EQ(keys[static_cast<std::size_t>(row[j])],
                WeightTableKey(pairs[j].first, pairs[j].second));
    }
  }
}

}  // namespace velquor
