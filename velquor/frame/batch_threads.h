// How many threads the library's batch calls may use: one library-wide setting.
//
// Batch calls (ComputeXYZBatch, XYZToLabBatch and the C interface's *_batch functions) split a
// large input into fixed chunks and run them on the calling thread plus up to n - 1 worker
// threads of the library's pool (thread_pool.h). Every sample is computed by the same code
// whatever the thread count, so results are identical, bit for bit, at any setting.
#pragma once

namespace velquor {

// Upper bound of the setting. A larger request is cut to this: beyond it more threads only
// add start-up cost and memory (each parked worker keeps its stack) on any machine the library
// targets.
inline constexpr int kMaxBatchThreads = 64;

// Sets the thread count of batch calls for the whole process: 0 = one per processor the
// machine reports (the default), 1 = the calling thread only, n > 1 = the caller and n - 1
// workers, at most kMaxBatchThreads. A negative value counts as 1. Safe to call from any thread
// at any time; a batch already running keeps the count it started with.
void SetBatchThreads(int threads);

// The thread count batch calls use now, 1 to kMaxBatchThreads, with 0 resolved to the number
// of processors (1 if the machine does not report it).
int BatchThreads();

}  // namespace velquor
