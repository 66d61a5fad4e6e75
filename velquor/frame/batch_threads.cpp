#include "velquor/frame/batch_threads.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace velquor {

namespace {

std::atomic<int> gBatchThreads{0};

int ProcessorCount() {
  static const int count = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  return count;
}

}  // namespace

void SetBatchThreads(int threads) {
  gBatchThreads.store(threads < 0 ? 1 : std::min(threads, kMaxBatchThreads),
                      std::memory_order_relaxed);
}

int BatchThreads() {
  const int threads = gBatchThreads.load(std::memory_order_relaxed);
  return threads == 0 ? std::min(ProcessorCount(), kMaxBatchThreads) : threads;
}

}  // namespace velquor
