#include "velquor/colorimetry/weight_table_cache.h"

#include <atomic>
#include <bit>
#include <cstdio>
#include <cstring>
#include <mutex>

#include "velquor/colorimetry/illuminants.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/resources.h"

namespace velquor {

namespace {

constexpr const char* kWeightTableType = "PWD";

struct Entry {
  std::uint32_t key;
  const double* table;
};

// Entries live in segments of 64, 128, 256, ... entries that are allocated as the cache grows
// and never moved or freed, so a reader can walk published entries while a loader appends.
// 25 segments hold 64 * (2^25 - 1) entries, more positions than an int can name.
constexpr std::size_t kFirstSegmentSize = 64;
constexpr int kSegmentCount = 25;
constexpr int kCapacity =
    static_cast<int>(kFirstSegmentSize * ((std::size_t{1} << kSegmentCount) - 1));
// Keys below this (every index 0-31 with codes 0-3) also have a direct key -> position slot.
constexpr std::uint32_t kDirectKeys = 128;

// Publication protocol: a loader (holding `loadMutex`) writes the entry, and the segment
// pointer if it starts a segment, then stores the new `size` with release order and then the
// key's direct slot with release order. Readers load `size` or the direct slot with acquire
// order and read only entries below what they saw, so they never see a half-written entry
// and never take the lock for a cached pair. Keys are unique: a loader re-checks the cache
// under the mutex before appending.
struct Cache {
  Cache() {
    for (auto& slot : directPosition) slot.store(-1, std::memory_order_relaxed);
  }
  std::mutex loadMutex;
  std::atomic<int> size{0};
  Entry* segments[kSegmentCount] = {};
  std::atomic<int> directPosition[kDirectKeys];
};

// The cache is created on first use and deliberately never destroyed: table pointers handed
// out must stay valid until the process ends, also during static destruction.
Cache& TheCache() {
  static Cache* const cache = new Cache;
  return *cache;
}

struct Slot {
  int segment;
  std::size_t offset;
};

// Segment s starts at position 64 * (2^s - 1).
Slot SlotOf(int position) {
  const std::size_t block = static_cast<std::size_t>(position) / kFirstSegmentSize + 1;
  const int segment = static_cast<int>(std::bit_width(block)) - 1;
  const std::size_t start = kFirstSegmentSize * ((std::size_t{1} << segment) - 1);
  return {segment, static_cast<std::size_t>(position) - start};
}

const Entry& EntryAt(const Cache& cache, int position) {
  const Slot slot = SlotOf(position);
  return cache.segments[slot.segment][slot.offset];
}

// Position of `key` among the published entries, or -1. Takes no lock.
int Lookup(const Cache& cache, std::uint32_t key) {
  if (key < kDirectKeys) return cache.directPosition[key].load(std::memory_order_acquire);
  const int size = cache.size.load(std::memory_order_acquire);
  for (int position = 0; position < size; ++position) {
    if (EntryAt(cache, position).key == key) return position;
  }
  return -1;
}

// The table's doubles, decoded once from the resource's little-endian bytes into an array of
// our own that lives for the whole process. Copying (rather than reading the embedded bytes
// through a double pointer) keeps clear of type-based aliasing and also serves a big-endian
// host; it costs 984 bytes per cached key.
const double* DecodeTable(const unsigned char* bytes) {
  double* table = new double[kWeightTableLength];
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(table, bytes, kWeightTableBytes);
  } else {
    for (std::size_t i = 0; i < kWeightTableLength; ++i) {
      std::uint64_t bits = 0;
      for (int b = 7; b >= 0; --b) bits = (bits << 8) | bytes[i * sizeof(double) + b];
      table[i] = std::bit_cast<double>(bits);
    }
  }
  return table;
}

// Appends under `loadMutex`. Returns false only when the cache is full.
bool Append(Cache& cache, std::uint32_t key, const double* table) {
  const int position = cache.size.load(std::memory_order_relaxed);
  if (position >= kCapacity) return false;
  const Slot slot = SlotOf(position);
  if (slot.offset == 0) {
    cache.segments[slot.segment] = new Entry[kFirstSegmentSize << slot.segment];
  }
  cache.segments[slot.segment][slot.offset] = Entry{key, table};
  cache.size.store(position + 1, std::memory_order_release);
  if (key < kDirectKeys) cache.directPosition[key].store(position, std::memory_order_release);
  return true;
}

}  // namespace

std::string WeightTableName(int illuminant, int observer) {
  char name[32];
  std::snprintf(name, sizeof name, "ILL%02d_%02d", illuminant, ObserverDegrees(observer));
  return name;
}

int LoadWeightTable(int illuminant, int observer) {
  Cache& cache = TheCache();
  const std::uint32_t key = WeightTableKey(illuminant, observer);
  if (Lookup(cache, key) >= 0) return 1;

  std::lock_guard lock(cache.loadMutex);
  if (Lookup(cache, key) >= 0) return 1;  // another thread loaded it meanwhile
  const auto resource = FindCustomResource(kWeightTableType, WeightTableName(illuminant, observer));
  if (!resource || resource->size() < kWeightTableBytes) return 0;
  return Append(cache, key, DecodeTable(resource->data())) ? 1 : 0;
}

int FindWeightTable(int illuminant, int observer) {
  const Cache& cache = TheCache();
  const std::uint32_t key = WeightTableKey(illuminant, observer);
  const int position = Lookup(cache, key);
  if (position >= 0) return position;
  LoadWeightTable(illuminant, observer);
  return Lookup(cache, key);
}

const double* GetWeightTable(int illuminant, int observer) {
  const int position = FindWeightTable(illuminant, observer);
  return position < 0 ? nullptr : EntryAt(TheCache(), position).table;
}

int GetWhitePoint(int illuminant, int observer, CValueVector3& whitePoint) {
  if (whitePoint.GetSize() < CValueVector3::kLength) whitePoint.SetSize(CValueVector3::kLength);
  const double* table = GetWeightTable(illuminant, observer);
  for (std::size_t i = 0; i < 3; ++i) {
    whitePoint[i] = table != nullptr ? table[kWeightTableWhitePoint + i] : kMissing;
  }
  return table != nullptr ? 1 : 0;
}

int EnsureWeightTable(int& illuminant, int observer) {
  if (LoadWeightTable(illuminant, observer)) return 1;
  illuminant = kIlluminantD65;
  LoadWeightTable(illuminant, observer);
  return 0;
}

int GetWeightTableCacheSize() {
  return TheCache().size.load(std::memory_order_acquire);
}

std::vector<std::uint32_t> GetWeightTableCacheKeys() {
  const Cache& cache = TheCache();
  const int size = cache.size.load(std::memory_order_acquire);
  std::vector<std::uint32_t> keys;
  keys.reserve(static_cast<std::size_t>(size));
  for (int position = 0; position < size; ++position) keys.push_back(EntryAt(cache, position).key);
  return keys;
}

}  // namespace velquor
