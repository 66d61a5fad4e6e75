#include "velquor/io/line_reader.h"

#include <algorithm>
#include <cstring>

namespace velquor {

namespace {

// Bytes asked of a source at a time.
constexpr std::size_t kBlockSize = 64 * 1024;

// The first byte of `line` that marks binary data (a control byte other than TAB or CR),
// or -1.
int FindBinaryByte(std::string_view line) {
  for (const char c : line) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 && byte != '\t' && byte != '\r') return byte;
    if (byte == 0x7F) return byte;
  }
  return -1;
}

}  // namespace

LineReader::LineReader(std::string_view text) : text_(text), fromMemory_(true) {
  bytesRead_ = text.size();
}

LineReader::LineReader(ByteSource source) : source_(std::move(source)) {}

LineReader::LineReader(std::FILE* file)
    : source_([file](char* buffer, std::size_t capacity) -> long long {
        const std::size_t n = std::fread(buffer, 1, capacity, file);
        if (n == 0 && std::ferror(file)) return -1;
        return static_cast<long long>(n);
      }) {}

bool LineReader::Fill() {
  if (sourceDone_) return false;
  if (block_.empty()) block_.resize(kBlockSize);
  const long long n = source_ ? source_(block_.data(), block_.size()) : 0;
  if (n < 0) {
    sticky_ = Status::kReadError;
    sourceDone_ = true;
    return false;
  }
  if (n == 0) {
    sourceDone_ = true;
    return false;
  }
  blockPos_ = 0;
  blockLen_ = std::min(static_cast<std::size_t>(n), block_.size());
  bytesRead_ += blockLen_;
  return true;
}

LineReader::Status LineReader::Finish(std::string_view& line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  if (line.size() > kMaxLineLength) {
    sticky_ = Status::kTooLong;
    line = {};
    return sticky_;
  }
  if (lineNumber_ == 1 && line.starts_with("\xEF\xBB\xBF")) line.remove_prefix(3);
  const int binary = FindBinaryByte(line);
  if (binary >= 0) {
    binaryByte_ = static_cast<unsigned char>(binary);
    sticky_ = Status::kBinary;
    line = {};
    return sticky_;
  }
  return Status::kLine;
}

LineReader::Status LineReader::Next(std::string_view& line) {
  line = {};
  if (sticky_ != Status::kLine) return sticky_;
  // Room for the longest accepted line and its CR.
  constexpr std::size_t kLimit = kMaxLineLength + 1;
  ++lineNumber_;
  if (fromMemory_) {
    if (text_.empty()) {
      --lineNumber_;
      sticky_ = Status::kEnd;
      return sticky_;
    }
    const std::size_t window = std::min(text_.size(), kLimit + 1);
    const std::size_t end = text_.substr(0, window).find('\n');
    if (end == std::string_view::npos) {
      if (text_.size() > kLimit) {
        sticky_ = Status::kTooLong;
        return sticky_;
      }
      line = text_;
      text_ = {};
    } else {
      line = text_.substr(0, end);
      text_.remove_prefix(end + 1);
    }
    return Finish(line);
  }

  line_.clear();
  for (;;) {
    if (blockPos_ == blockLen_ && !Fill()) {
      if (sticky_ == Status::kReadError) return sticky_;
      if (line_.empty()) {
        --lineNumber_;
        sticky_ = Status::kEnd;
        return sticky_;
      }
      line = line_;
      return Finish(line);
    }
    const char* begin = block_.data() + blockPos_;
    const std::size_t available = blockLen_ - blockPos_;
    const void* found = std::memchr(begin, '\n', available);
    const std::size_t chunk =
        found ? static_cast<std::size_t>(static_cast<const char*>(found) - begin) : available;
    if (line_.size() + chunk > kLimit) {
      sticky_ = Status::kTooLong;
      return sticky_;
    }
    if (found && line_.empty()) {
      // The whole line lies in this block: hand it on without copying.
      blockPos_ += chunk + 1;
      line = std::string_view(begin, chunk);
      return Finish(line);
    }
    line_.append(begin, chunk);
    blockPos_ += chunk;
    if (found) {
      ++blockPos_;
      line = line_;
      return Finish(line);
    }
  }
}

}  // namespace velquor
