#include "velquor/colorimetry/weight_table_cache.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <latch>
#include <set>
#include <thread>
#include <vector>

#include "tolerances.h"
#include "velquor/frame/numeric.h"

// The cache is process-wide and never shrinks, and these tests may run in one process in any
// order. Each test therefore either checks order-independent facts or uses observer codes
// (2, 3, 6, 1000+, 2000+) that no other test passes, so the keys it creates are fresh.

namespace velquor {
namespace {

TEST(WeightTableName, DegreesAreTenOnlyForCodeOne) {
  const struct {
    int illuminant, observer;
    const char* name;
  } cases[] = {
      {0, 0, "ILL00_02"},  {0, 1, "ILL00_10"},  {16, 1, "ILL16_10"}, {5, 7, "ILL05_02"},
      {2, -1, "ILL02_02"}, {2, 10, "ILL02_02"}, {20, 0, "ILL20_02"}, {123, 1, "ILL123_10"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(WeightTableName(c.illuminant, c.observer), c.name);
  }
}

TEST(WeightTableKey, IsFourTimesIndexPlusTheCodeAsPassed) {
  EXPECT_EQ(WeightTableKey(0, 0), 0u);
  EXPECT_EQ(WeightTableKey(0, 1), 1u);
  EXPECT_EQ(WeightTableKey(2, 0), 8u);
  EXPECT_EQ(WeightTableKey(16, 1), 65u);
  EXPECT_EQ(WeightTableKey(2, 5), 13u);
  EXPECT_EQ(WeightTableKey(3, 1), 13u);
  EXPECT_EQ(WeightTableKey(0, -1), 0xFFFFFFFFu);  // unsigned wrap, not undefined overflow
}

TEST(WeightTableCache, CollidingKeysShareTheFirstLoadedTable) {
  // (3, code 1) loads CWF 10° under key 13 (loaded first here so that the real pair keeps its
  // own table for every later test); D65 with code 5 is then served CWF 10° as well.
  const double* cwf = GetWeightTable(3, 1);
  ASSERT_NE(cwf, nullptr);
  EXPECT_NEAR(cwf[kWeightTableWhitePoint], 103.279, test::kThreeDecimals);
  EXPECT_EQ(GetWeightTable(2, 5), cwf);
  EXPECT_EQ(FindWeightTable(2, 5), FindWeightTable(3, 1));

  // Key 6 is made only by codes 2 and 6 here: (0, code 6) loads A 2° (ILL00_02), and C with
  // code 2 then gets A's table, white point Xn 109.85, instead of C's 98.074.
  const double* a = GetWeightTable(0, 6);
  ASSERT_NE(a, nullptr);
  EXPECT_NEAR(a[kWeightTableWhitePoint], 109.85, test::kThreeDecimals);
  EXPECT_EQ(GetWeightTable(1, 2), a);
  const std::vector<std::uint32_t> keys = GetWeightTableCacheKeys();
  EXPECT_EQ(std::count(keys.begin(), keys.end(), 6u), 1);
  EXPECT_EQ(std::count(keys.begin(), keys.end(), 13u), 1);
}

TEST(WeightTableCache, AbsentTablesLeaveTheCacheUnchanged) {
  ASSERT_EQ(LoadWeightTable(2, 0), 1);
  const std::vector<std::uint32_t> before = GetWeightTableCacheKeys();
  // 17 is a catalogue slot without a table; 20 and -1 are outside the catalogue.
  for (int illuminant : {17, 20, -1}) {
    for (int observer : {0, 1}) {
      EXPECT_EQ(FindWeightTable(illuminant, observer), -1);
      EXPECT_EQ(LoadWeightTable(illuminant, observer), 0);
      EXPECT_EQ(GetWeightTable(illuminant, observer), nullptr);
      CValueVector3 white;
      EXPECT_EQ(GetWhitePoint(illuminant, observer, white), 0);
      EXPECT_TRUE(IsMissing(white[0]) && IsMissing(white[1]) && IsMissing(white[2]));
    }
  }
  EXPECT_EQ(GetWeightTableCacheKeys(), before);
  EXPECT_EQ(GetWeightTableCacheSize(), static_cast<int>(before.size()));
}

TEST(WeightTableCache, EnsureFallsBackToD65ForTheSameObserver) {
  const struct {
    int illuminant, observer, result, index;
  } cases[] = {{20, 0, 0, 2}, {20, 1, 0, 2},  {17, 1, 0, 2}, {-3, 0, 0, 2},
               {5, 1, 1, 5},  {16, 0, 1, 16}, {0, 0, 1, 0}};
  for (const auto& c : cases) {
    int index = c.illuminant;
    EXPECT_EQ(EnsureWeightTable(index, c.observer), c.result) << c.illuminant;
    EXPECT_EQ(index, c.index) << c.illuminant;
    // The table now in use is cached without a further load.
    const std::vector<std::uint32_t> keys = GetWeightTableCacheKeys();
    EXPECT_EQ(std::count(keys.begin(), keys.end(), WeightTableKey(c.index, c.observer)), 1);
  }
  int index = 20;
  ASSERT_EQ(EnsureWeightTable(index, 1), 0);
  CValueVector3 white;
  ASSERT_EQ(GetWhitePoint(index, 1, white), 1);
  EXPECT_NEAR(white[0], 94.811, test::kThreeDecimals);  // D65, 10°
  EXPECT_NEAR(white[2], 107.304, test::kThreeDecimals);
}

TEST(WeightTableCache, WhitePointGrowsAShortVector) {
  CValueVector3 white;
  white.SetSize(1);
  ASSERT_EQ(GetWhitePoint(14, 0, white), 1);
  ASSERT_EQ(white.GetSize(), 3u);
  EXPECT_NEAR(white[0], 117.789, test::kThreeDecimals);  // H23, 2°
  EXPECT_EQ(white[1], 100.0);
  EXPECT_NEAR(white[2], 22.889, test::kThreeDecimals);
}

TEST(WeightTableCache, ConcurrentFirstUseAppendsEachKeyOnce) {
  // Fresh pairs: every illuminant with code 3 (keys 4 i + 3, the direct-slot path), with
  // code 1000 + i (keys >= 1000, the scanning path), and 200 codes 2000+ on illuminant 0, so
  // the cache grows past its first segments (64 and 128 entries) while threads read it.
  struct Pair {
    int illuminant, observer;
  };
  std::vector<Pair> pairs;
  for (int i = 0; i < 17; ++i) pairs.push_back({i, 3});
  for (int i = 0; i < 17; ++i) pairs.push_back({i, 1000 + i});
  for (int k = 0; k < 200; ++k) pairs.push_back({0, 2000 + k});
  std::set<std::uint32_t> expectedKeys;
  for (std::uint32_t key : GetWeightTableCacheKeys()) expectedKeys.insert(key);
  for (const Pair& p : pairs) expectedKeys.insert(WeightTableKey(p.illuminant, p.observer));

  constexpr int kThreads = 8;
  std::vector<std::vector<int>> positions(kThreads, std::vector<int>(pairs.size()));
  std::vector<std::vector<const double*>> tables(kThreads,
                                                 std::vector<const double*>(pairs.size()));
  std::latch start(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      start.arrive_and_wait();
      // Each thread walks the pairs from a different starting point, half of them backwards.
      for (std::size_t n = 0; n < pairs.size(); ++n) {
        std::size_t j = (n + static_cast<std::size_t>(t) * 29) % pairs.size();
        if (t % 2 == 1) j = pairs.size() - 1 - j;
        tables[t][j] = GetWeightTable(pairs[j].illuminant, pairs[j].observer);
        positions[t][j] = FindWeightTable(pairs[j].illuminant, pairs[j].observer);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();

  for (int t = 1; t < kThreads; ++t) {
    EXPECT_EQ(positions[t], positions[0]) << "thread " << t;
    EXPECT_EQ(tables[t], tables[0]) << "thread " << t;
  }
  const std::vector<std::uint32_t> keys = GetWeightTableCacheKeys();
  EXPECT_EQ(std::set<std::uint32_t>(keys.begin(), keys.end()).size(), keys.size());
  EXPECT_EQ(keys.size(), expectedKeys.size());
  for (std::size_t j = 0; j < pairs.size(); ++j) {
    ASSERT_NE(tables[0][j], nullptr);
    const int position = positions[0][j];
    ASSERT_GE(position, 0);
    EXPECT_EQ(keys[static_cast<std::size_t>(position)],
              WeightTableKey(pairs[j].illuminant, pairs[j].observer));
  }
  // Codes other than 1 read the 2° tables: D65 2° Xn 95.047, A 2° Xn 109.85.
  EXPECT_NEAR(tables[0][2][kWeightTableWhitePoint], 95.047, test::kThreeDecimals);
  EXPECT_NEAR(tables[0][pairs.size() - 1][kWeightTableWhitePoint], 109.85, test::kThreeDecimals);
}

}  // namespace
}  // namespace velquor
