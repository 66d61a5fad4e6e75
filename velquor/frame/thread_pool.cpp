#include "velquor/frame/thread_pool.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

#include "velquor/frame/batch_threads.h"
#include "velquor/frame/library_pin.h"

namespace velquor {

namespace {

// True on a pool worker and on a caller while its split batch runs: a batch started there
// runs in that thread rather than queue behind the workers that are busy with the outer one.
thread_local bool tInBatch = false;

// One ParallelFor call, on the caller's stack. Chunks are claimed through `nextChunk`; the
// other fields are guarded by the pool's mutex.
struct Job {
  ChunkFunction function;
  void* context;
  std::size_t count;
  std::size_t chunk;
  std::size_t chunkCount;
  std::atomic<std::size_t> nextChunk{0};
  int helpersWanted = 0;  // workers that may join
  int helpersJoined = 0;
  int helpersActive = 0;  // joined and still running chunks
  std::exception_ptr error;
  Job* next = nullptr;  // the pool's queue
};

class Pool {
 public:
  // Queues `job`, makes sure enough workers exist, runs chunks in the calling thread, and
  // returns once no worker holds the job any more.
  void Run(Job& job) {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      job.helpersWanted = StartWorkers(job.helpersWanted);
      *tail_ = &job;
      tail_ = &job.next;
    }
    for (int i = 0; i < job.helpersWanted; ++i) wake_.notify_one();
    RunClaimedChunks(job);
    std::unique_lock<std::mutex> lock(mutex_);
    Unqueue(job);
    done_.wait(lock, [&] { return job.helpersActive == 0; });
  }

  int WorkerCount() {
    std::lock_guard<std::mutex> lock(mutex_);
    return workers_;
  }

  static void RunClaimedChunks(Job& job) noexcept {
    for (;;) {
      const std::size_t k = job.nextChunk.fetch_add(1, std::memory_order_relaxed);
      if (k >= job.chunkCount) return;
      const std::size_t begin = k * job.chunk;
      try {
        job.function(job.context, begin, std::min(begin + job.chunk, job.count));
      } catch (...) {
        // Keeps the first exception for the caller; the chunk's outputs are whatever it wrote.
        Pool& pool = Instance();
        std::lock_guard<std::mutex> lock(pool.mutex_);
        if (!job.error) job.error = std::current_exception();
      }
    }
  }

  // Created on first use and never destroyed (see thread_pool.h).
  static Pool& Instance() {
    static Pool* const pool = [] {
      PinLibraryModule();
      Pool* created = new Pool;
      created_.store(true, std::memory_order_release);
      return created;
    }();
    return *pool;
  }

  static bool Exists() { return created_.load(std::memory_order_acquire); }

 private:
  // Starts workers until there are `wanted` (capped); returns how many exist. A thread that
  // cannot be started only makes the batch use fewer threads.
  int StartWorkers(int wanted) {
    while (workers_ < wanted) {
      try {
        std::thread(&Pool::WorkerMain, this).detach();
      } catch (const std::system_error&) {
        break;
      }
      ++workers_;
    }
    return std::min(wanted, workers_);
  }

  void WorkerMain() {
    tInBatch = true;
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
      Job* job = head_;
      while (job != nullptr && (job->helpersJoined >= job->helpersWanted ||
                                job->nextChunk.load(std::memory_order_relaxed) >= job->chunkCount)) {
        job = job->next;
      }
      if (job == nullptr) {
        wake_.wait(lock);
        continue;
      }
      ++job->helpersJoined;
      ++job->helpersActive;
      lock.unlock();
      RunClaimedChunks(*job);
      lock.lock();
      if (--job->helpersActive == 0) done_.notify_all();
    }
  }

  void Unqueue(Job& job) {
    for (Job** link = &head_; *link != nullptr; link = &(*link)->next) {
      if (*link != &job) continue;
      *link = job.next;
      if (tail_ == &job.next) tail_ = link;
      return;
    }
  }

  std::mutex mutex_;
  std::condition_variable wake_;  // a job was queued
  std::condition_variable done_;  // a job's last worker left it
  Job* head_ = nullptr;
  Job** tail_ = &head_;
  int workers_ = 0;
  static inline std::atomic<bool> created_{false};
};

}  // namespace

void RunChunks(std::size_t count, std::size_t chunk, ChunkFunction function, void* context) {
  if (count == 0) return;
  chunk = std::max<std::size_t>(chunk, 1);
  Job job;
  job.function = function;
  job.context = context;
  job.count = count;
  job.chunk = chunk;
  job.chunkCount = count / chunk + (count % chunk != 0 ? 1 : 0);
  const int threads = BatchThreads();
  if (job.chunkCount < 2 || threads < 2 || tInBatch) {
    // Small batch, one thread, or nested: the same chunks in order, in this thread.
    for (std::size_t begin = 0; begin < count; begin += chunk) {
      function(context, begin, std::min(begin + chunk, count));
    }
    return;
  }
  job.helpersWanted =
      static_cast<int>(std::min<std::size_t>(static_cast<std::size_t>(threads), job.chunkCount)) -
      1;
  Pool& pool = Pool::Instance();
  tInBatch = true;
  pool.Run(job);
  tInBatch = false;
  if (job.error) std::rethrow_exception(job.error);
}

int BatchPoolWorkerCount() {
  // Asks the pool only once it exists, so that counting does not create it.
  return Pool::Exists() ? Pool::Instance().WorkerCount() : 0;
}

}  // namespace velquor
