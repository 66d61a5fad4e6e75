// Bounded line reading for the measurement-file readers.
//
// A reader never holds more than one line, and a line longer than kMaxLineLength bytes is
// refused after at most that many bytes have been read: a hostile file (a 2 GB line, an
// endless stream) costs a bounded amount of memory and time. Lines end in LF; a CR before the
// LF is dropped, a UTF-8 byte-order mark at the start of the first line is dropped, and a last
// line without LF is still a line. A line holding a control byte other than TAB or CR (NUL,
// the bytes of most binary formats) is reported as binary data instead of being handed on.
// Nothing here throws.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>

namespace velquor {

// Longest line the readers accept, in bytes (1 MiB), the line end not counted.
inline constexpr std::size_t kMaxLineLength = 1u << 20;

class LineReader {
 public:
  // Fills `buffer` with up to `capacity` bytes; returns the count, 0 at the end of the data
  // and a negative value on a read error.
  using ByteSource = std::function<long long(char* buffer, std::size_t capacity)>;

  enum class Status { kLine, kEnd, kTooLong, kBinary, kReadError };

  // Lines of text held in memory; `text` must outlive the reader.
  explicit LineReader(std::string_view text);
  // Lines of bytes delivered by `source` in blocks.
  explicit LineReader(ByteSource source);
  // Lines of an open file (not closed by the reader).
  explicit LineReader(std::FILE* file);

  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  // The next line in `line` (valid until the next call). After kTooLong, kBinary or
  // kReadError the reader stays at that status.
  Status Next(std::string_view& line);

  // 1-based number of the line last returned (or refused); 0 before the first call.
  std::size_t LineNumber() const { return lineNumber_; }
  // True when no byte at all was read (an empty input).
  bool Empty() const { return bytesRead_ == 0; }
  // The offending byte after kBinary.
  unsigned char BinaryByte() const { return binaryByte_; }

  // Lines of text held in memory only: the text not yet handed out (empty for a reader of a
  // source, and after kTooLong or kBinary), so that a caller can read many lines at once ...
  std::string_view UnreadText() const { return sticky_ == Status::kLine ? text_ : std::string_view(); }
  // ... and then step over the first `bytes` of it, which hold `lines` whole lines.
  void Skip(std::size_t bytes, std::size_t lines) {
    text_.remove_prefix(std::min(bytes, text_.size()));
    lineNumber_ += lines;
  }

 private:
  bool Fill();
  Status Finish(std::string_view& line);

  std::string_view text_;
  bool fromMemory_ = false;
  ByteSource source_;
  std::string block_;          // bytes read from the source and not yet consumed
  std::size_t blockPos_ = 0;
  std::size_t blockLen_ = 0;
  std::string line_;           // the line being assembled from several blocks
  std::size_t lineNumber_ = 0;
  unsigned long long bytesRead_ = 0;
  bool sourceDone_ = false;
  Status sticky_ = Status::kLine;
  unsigned char binaryByte_ = 0;
};

}  // namespace velquor
