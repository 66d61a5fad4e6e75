// The spectrum-locus tables: the table each observer code selects, every stored point in its
// unit, the closing point, and concurrent first use of the cache.
#include "velquor/indices/spectrum_locus.h"

#include <gtest/gtest.h>

#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "reference_table.h"

namespace velquor {
namespace {

// The integers are multiplied by 0.0001 (dividing by 10000 differs in the last bit for 36 of
// the 128 entries, 0.0052 among them). Code 0 is 2 degree, every other code 10 degree.
TEST(SpectrumLocus, EveryPointOfTheTableTheObserverCodeSelects) {
  for (const int observer : {0, 1, 2, -1}) {
    const SpectrumLocus& locus = GetSpectrumLocus(observer);
    const std::string x = observer == 0 ? "x2" : "x10", y = observer == 0 ? "y2" : "y10";
    std::size_t j = 0;
    for (const test::ReferenceRow& row : test::LoadReferenceTable("reference/spectrum_locus.csv")) {
      EXPECT_EQ(locus[j].x, row.Integer(x) * 0.0001) << row.Where() << " code " << observer;
      EXPECT_EQ(locus[j++].y, row.Integer(y) * 0.0001) << row.Where() << " code " << observer;
    }
    EXPECT_EQ(locus[31].x, locus[0].x);  // the closing point repeats 400 nm
    EXPECT_EQ(locus[31].y, locus[0].y);
  }
}

// A fresh cache, so this is its first use; all threads start together at the latch.
TEST(SpectrumLocusCache, ConcurrentFirstUseBuildsEachTableOnce) {
  SpectrumLocusCache cache;
  constexpr int kThreads = 8;
  std::latch start(kThreads);
  std::vector<const SpectrumLocus*> seen(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      start.arrive_and_wait();
      seen[t] = &cache.Get(t % 3);  // codes 0, 1, 2
    });
  }
  for (auto& thread : threads) thread.join();
  for (int t = 0; t < kThreads; ++t) EXPECT_EQ(seen[t], &cache.Get(t % 3 == 0 ? 0 : 5)) << t;
  EXPECT_EQ(cache.BuildCount(), 2);
}

}  // namespace
}  // namespace velquor
