// Archive: stores objects to, and loads them from, a byte stream in the compact binary form
// of the host framework's archives, so files written by either side read on the other.
//  - counts: below 0xFFFF a 16-bit little-endian count; otherwise 0xFFFF followed by a 32-bit
//    little-endian count;
//  - elements: their raw little-endian images (doubles as 8-byte IEEE-754).
// Failures (end of stream, a count the stream cannot hold, a write error) throw ArchiveError;
// callers catch it at the archive boundary. Loading never allocates for a stored count up
// front: a seekable stream's count is checked against the bytes left, and every loader grows
// its elements in bounded chunks as their bytes arrive, so a one-way stream that claims more
// than it holds costs at most one chunk beyond what it delivered before ArchiveError.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

namespace velquor {

class ArchiveError : public std::runtime_error {
 public:
  enum class Cause {
    kEndOfFile,    // the stream ended inside a value
    kBadCount,     // a count larger than the stream can hold, or than the format allows
    kWriteFailed,  // the underlying stream refused the bytes
    kWrongMode,    // a load on a storing archive or a store on a loading one
  };
  ArchiveError(Cause cause, const char* what) : std::runtime_error(what), cause_(cause) {}
  Cause cause() const { return cause_; }

 private:
  Cause cause_;
};

class CArchive {
 public:
  // Largest count the compact form can carry.
  static constexpr std::uint64_t kMaxCount = 0xFFFFFFFFu;

  // A loading archive over `in`. If the stream can seek, the bytes left are known and every
  // count is checked against them before anything is allocated.
  explicit CArchive(std::istream& in);
  // A storing archive over `out`.
  explicit CArchive(std::ostream& out);

  CArchive(const CArchive&) = delete;
  CArchive& operator=(const CArchive&) = delete;

  bool IsLoading() const { return in_ != nullptr; }
  bool IsStoring() const { return out_ != nullptr; }

  void Write(const void* data, std::size_t size);
  void Read(void* data, std::size_t size);

  void WriteCount(std::uint64_t count);
  std::uint32_t ReadCount();

  // Bytes still to come, when the stream can tell.
  std::optional<std::uint64_t> RemainingBytes() const { return remaining_; }
  // Throws kBadCount when the stream is known to hold fewer than `size` more bytes.
  void RequireAvailable(std::uint64_t size) const;

  template <class T>
    requires std::is_arithmetic_v<T>
  void WriteValue(T value) {
    ToLittleEndian(&value);
    Write(&value, sizeof value);
  }

  template <class T>
    requires std::is_arithmetic_v<T>
  T ReadValue() {
    T value;
    Read(&value, sizeof value);
    ToLittleEndian(&value);
    return value;
  }

  // Stores `count` elements as their raw little-endian images.
  template <class T>
    requires std::is_arithmetic_v<T>
  void WriteElements(const T* data, std::size_t count) {
    if constexpr (std::endian::native == std::endian::little) {
      Write(data, count * sizeof(T));
    } else {
      for (std::size_t i = 0; i < count; ++i) WriteValue(data[i]);
    }
  }

  // Replaces `out` by `count` elements read from the archive. Reads in bounded chunks, so a
  // hostile count costs at most one chunk of memory before the stream runs out.
  template <class T>
    requires std::is_arithmetic_v<T>
  void ReadElements(std::vector<T>& out, std::uint64_t count) {
    RequireAvailable(count * sizeof(T));
    constexpr std::uint64_t kChunk = 8192;
    std::vector<T> result;
    while (result.size() < count) {
      const std::size_t have = result.size();
      const std::size_t take = static_cast<std::size_t>(std::min<std::uint64_t>(kChunk, count - have));
      result.resize(have + take);
      Read(result.data() + have, take * sizeof(T));
      if constexpr (std::endian::native != std::endian::little) {
        for (std::size_t i = have; i < have + take; ++i) ToLittleEndian(&result[i]);
      }
    }
    out = std::move(result);
  }

 private:
  template <class T>
  static void ToLittleEndian(T* value) {
    if constexpr (std::endian::native != std::endian::little && sizeof(T) > 1) {
      auto* bytes = reinterpret_cast<unsigned char*>(value);
      for (std::size_t i = 0; i < sizeof(T) / 2; ++i) std::swap(bytes[i], bytes[sizeof(T) - 1 - i]);
    }
  }

  std::istream* in_ = nullptr;
  std::ostream* out_ = nullptr;
  std::optional<std::uint64_t> remaining_;
};

template <class T>
  requires std::is_arithmetic_v<T>
CArchive& operator<<(CArchive& archive, T value) {
  archive.WriteValue(value);
  return archive;
}

template <class T>
  requires std::is_arithmetic_v<T>
CArchive& operator>>(CArchive& archive, T& value) {
  value = archive.ReadValue<T>();
  return archive;
}

}  // namespace velquor
