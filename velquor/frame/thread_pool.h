// The library's pool of worker threads and ParallelFor, which splits a batch over it.
//
// ParallelFor(count, chunk, body) cuts [0, count) into the fixed chunks [k * chunk,
// min((k + 1) * chunk, count)), k = 0, 1, ..., and calls body(begin, end) once per chunk. The
// boundaries depend only on count and chunk, never on the thread count, and each sample is
// computed by the same code on whichever thread runs its chunk, so results are bit-identical
// at any thread count. Chunks are claimed in ascending order by the calling thread and up to
// BatchThreads() - 1 workers; the call returns when every chunk is done.
//
// No thread is involved, and the pool is not even created, when the batch is a single chunk
// (count <= chunk), when BatchThreads() is 1, or when the call comes from a chunk of a batch
// that is itself split over threads (such a nested batch runs in the thread that makes it). Callers choose `chunk` so
// that one chunk is some 50-100 microseconds of work: waking a parked worker costs a few
// microseconds up to tens on a busy machine, which a smaller batch would not win back.
//
// The pool is created on first use (thread-safe, also when several host threads start their
// first batch at once) and grows to the largest thread count requested so far, never above
// kMaxBatchThreads - 1 workers. Several host threads may run batches at the same time; their
// jobs share the workers. Handing a batch to the workers allocates nothing: the job lives on
// the caller's stack and is queued by pointer. Only starting a worker allocates (its thread).
//
// Lifetime: the pool is never destroyed. Its workers park on a condition variable between
// batches and are left parked at process exit, where the operating system ends them; joining
// them during static destruction or in DllMain (under the loader lock) could deadlock. So that
// parked workers never return into unmapped code, creating the pool keeps the library's module
// loaded until the process ends (library_pin.h): FreeLibrary or dlclose then leaves it mapped.
//
// A body should not throw (the library's calculations never do); if one does, the remaining
// chunks still run and ParallelFor rethrows the first exception in the calling thread after
// all of them have finished.
#pragma once

#include <cstddef>
#include <type_traits>

namespace velquor {

using ChunkFunction = void (*)(void* context, std::size_t begin, std::size_t end);

// The untyped form of ParallelFor.
void RunChunks(std::size_t count, std::size_t chunk, ChunkFunction function, void* context);

template <class Body>
void ParallelFor(std::size_t count, std::size_t chunk, Body&& body) {
  using BodyType = std::remove_reference_t<Body>;
  RunChunks(
      count, chunk,
      [](void* context, std::size_t begin, std::size_t end) {
        (*static_cast<BodyType*>(context))(begin, end);
      },
      const_cast<void*>(static_cast<const void*>(&body)));
}

// Diagnostics: the number of worker threads the pool has started (0 before its first use).
int BatchPoolWorkerCount();

}  // namespace velquor
