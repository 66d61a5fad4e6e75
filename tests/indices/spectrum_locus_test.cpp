// The spectrum-locus tables: the table each observer code selects, the stored unit, the
// closing point, and concurrent first use of the cache.
#include "velquor/indices/spectrum_locus.h"

#include <gtest/gtest.h>

#include <latch>
#include <thread>
#include <vector>

namespace velquor {
namespace {

TEST(SpectrumLocus, ObserverCodesUnitAndClosingPoint) {
  // 550 nm: 2 degree (3017, 6922), 10 degree (3474, 6501); 700 nm (7379, 2621), (7202, 2798).
  // The integers are multiplied by 0.0001 (dividing by 10000 differs in the last bit for 36
  // of the 128 entries, 0.0052 among them).
  struct Case {
    int observer, x550, y550, x700, y700;
  };
  for (const Case& c : {Case{0, 3017, 6922, 7379, 2621}, Case{1, 3474, 6501, 7202, 2798},
                        Case{2, 3474, 6501, 7202, 2798}, Case{-1, 3474, 6501, 7202, 2798}}) {
    const SpectrumLocus& locus = GetSpectrumLocus(c.observer);
    EXPECT_EQ(locus[15].x, c.x550 * 0.0001) << c.observer;
    EXPECT_EQ(locus[15].y, c.y550 * 0.0001) << c.observer;
    EXPECT_EQ(locus[30].x, c.x700 * 0.0001) << c.observer;
    EXPECT_EQ(locus[30].y, c.y700 * 0.0001) << c.observer;
    EXPECT_EQ(locus[31].x, locus[0].x);  // the closing point repeats 400 nm
    EXPECT_EQ(locus[31].y, locus[0].y);
  }
  EXPECT_EQ(GetSpectrumLocus(0)[0].y, 52 * 0.0001);
}

TEST(SpectrumLocusCache, ConcurrentFirstUseBuildsEachTableOnce) {
  // A fresh cache, so this is its first use; all threads start together at the latch.
  SpectrumLocusCache cache;
  constexpr int kThreads = 8;
  std::latch start(kThreads);
  std::vector<const SpectrumLocus*> seen(2 * kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      start.arrive_and_wait();
      seen[2 * t] = &cache.Get(t % 3);  // codes 0, 1, 2
      seen[2 * t + 1] = &cache.Get(t % 2 == 0 ? 0 : 5);
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(cache.BuildCount(), 2);
  const SpectrumLocus* two = &cache.Get(0);
  const SpectrumLocus* ten = &cache.Get(1);
  for (int t = 0; t < kThreads; ++t) {
    EXPECT_EQ(seen[2 * t], t % 3 == 0 ? two : ten);
    EXPECT_EQ(seen[2 * t + 1], t % 2 == 0 ? two : ten);
  }
  const SpectrumLocus expected = ConvertSpectrumLocus(1);
  for (std::size_t j = 0; j < kLocusPointCount; ++j) {
    EXPECT_EQ((*ten)[j].x, expected[j].x);
    EXPECT_EQ((*ten)[j].y, expected[j].y);
  }
  EXPECT_EQ(cache.BuildCount(), 2);
}

}  // namespace
}  // namespace velquor
