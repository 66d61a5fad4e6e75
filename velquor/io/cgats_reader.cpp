#include "velquor/io/cgats_reader.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "velquor/io/measurement_text_ids.h"
#include "velquor/io/plain_decimal.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/thread_pool.h"

namespace velquor {

namespace {

namespace text = measurement_text;

struct Token {
  std::string_view text;  // without quotes
  std::size_t begin = 0;  // offset in the line, quotes included
  std::size_t end = 0;
  bool quoted = false;
};

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

constexpr std::size_t npos = std::string_view::npos;

// Splits a CGATS line into tokens, keeping at most `limit` of them (the rest are only
// counted, so that a hostile line costs no memory beyond the columns a row can have).
// Returns false on an unclosed quote; `count` is the number of tokens and `lastEnd` the end
// of the last one (quotes included).
bool Tokenize(std::string_view line, std::size_t limit, std::vector<Token>& tokens, std::size_t& count,
              std::size_t& lastEnd) {
  tokens.clear();
  count = 0;
  lastEnd = 0;
  std::size_t i = 0;
  const std::size_t n = line.size();
  while (i < n) {
    while (i < n && IsBlank(line[i])) ++i;
    if (i == n || line[i] == '#') break;
    Token token;
    token.begin = i;
    if (line[i] == '"' || line[i] == '\'') {
      const char quote = line[i];
      const std::size_t close = line.find(quote, i + 1);
      if (close == std::string_view::npos) return false;
      token.text = line.substr(i + 1, close - i - 1);
      token.quoted = true;
      i = close + 1;
    } else {
      const std::size_t start = i;
      while (i < n && !IsBlank(line[i])) ++i;
      token.text = line.substr(start, i - start);
    }
    token.end = i;
    lastEnd = i;
    ++count;
    if (tokens.size() < limit) tokens.push_back(token);
  }
  return true;
}

// Bytes of data rows per block read on one thread: a block of 1 MiB is some 15,000 numbers,
// about a millisecond of work. Blocks end at line ends found from fixed offsets, so the split
// depends on the text alone, never on the thread count.
constexpr std::size_t kDataBlockBytes = std::size_t{1} << 20;

// True when `line` holds only printable ASCII, blanks and CR: nothing that the line-by-line
// path would report (binary data) or repair (invalid UTF-8).
bool IsPlainAsciiLine(std::string_view line) {
  unsigned char odd = 0;
  for (const char c : line) {
    const auto byte = static_cast<unsigned char>(c);
    odd |= static_cast<unsigned char>((byte < 0x20 && byte != '\t' && byte != '\r') || byte >= 0x7F);
  }
  return odd == 0;
}

// The data rows of one block, read on their own.
struct DataBlock {
  std::size_t begin = 0;  // byte range in the data text, whole lines
  std::size_t end = 0;
  std::vector<MeasurementSample> samples;  // `line` counts from 0 at the block's first line
  std::size_t lines = 0;                   // lines read, the END_DATA line not counted
  std::size_t bytes = 0;                   // bytes of those lines, line ends included
  bool endData = false;                    // stopped at the END_DATA line
  bool stopped = false;  // stopped at a line the line-by-line path must read (an odd byte, an
                         // unclosed quote, a wrong field count, a value that is not a number)
};

// The common row in one pass over the line starting at `pos`: printable ASCII, exactly one
// unquoted token per column, every spectral one a number, no comment. Returns the end of the
// line (its LF, or `end`), or npos (nothing added) for any other line, which then goes
// through the general checks and Tokenize. `divisors` is scratch space of one per wavelength.
std::size_t ReadPlainRow(std::string_view text, std::size_t pos, std::size_t end, const MeasurementFile& file,
                         DataBlock& block, std::vector<double>& divisors) {
  MeasurementSample sample;
  sample.line = block.lines;
  sample.fields.resize(file.fieldCount);
  sample.values.resize(file.wavelengths.size());
  const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
  std::size_t i = pos;
  for (const MeasurementColumn& column : file.columns) {
    while (i < end && isBlank(text[i])) ++i;
    if (i == end || text[i] == '\n' || text[i] == '"' || text[i] == '\'' || text[i] == '#') return npos;
    const std::size_t start = i;
    if (column.spectral) {
      double& mantissa = sample.values[column.index];
      const char* stop = ScanPlainDecimal(text.data() + i, text.data() + end, mantissa, divisors[column.index]);
      if (stop != nullptr) {
        i = static_cast<std::size_t>(stop - text.data());
        if (i == end || isBlank(text[i]) || text[i] == '\n') continue;
      }
    }
    // Printable ASCII other than the space: anything else ends the fast path.
    while (i < end && text[i] > ' ' && text[i] < 0x7F) ++i;
    if (i < end && !isBlank(text[i]) && text[i] != '\n') return npos;
    const std::string_view cell = text.substr(start, i - start);
    if (&column == &file.columns.front() && cell == "END_DATA") return npos;  // the end, not a row
    if (!column.spectral) {
      sample.fields[column.index] = std::string(cell);
    } else {
      divisors[column.index] = 1.0;  // x / 1 is x
      if (!ParseMeasurementNumber(cell, false, sample.values[column.index])) return npos;
    }
  }
  for (std::size_t j = 0; j < sample.values.size(); ++j) sample.values[j] /= divisors[j];
  while (i < end && isBlank(text[i])) ++i;
  if (i < end && text[i] != '\n') return npos;
  std::size_t length = i - pos;
  if (length > 0 && text[i - 1] == '\r') --length;
  if (length > kMaxLineLength) return npos;
  block.samples.push_back(std::move(sample));
  return i;
}

// Reads the rows of `block` into samples of `file`'s columns, as CgatsParser::DataRow with
// AddReadSample would, up to the END_DATA line or the first line it leaves to them.
void ReadDataBlock(std::string_view text, const MeasurementFile& file, DataBlock& block) {
  std::vector<Token> tokens;
  std::size_t count = 0;
  std::size_t lastEnd = 0;
  std::vector<double> divisors(file.wavelengths.size(), 1.0);
  std::size_t pos = block.begin;
  while (pos < block.end) {
    const std::size_t plainEnd = ReadPlainRow(text, pos, block.end, file, block, divisors);
    if (plainEnd != npos) {
      pos = plainEnd == block.end ? block.end : plainEnd + 1;
      ++block.lines;
      block.bytes = pos - block.begin;
      continue;
    }
    const std::size_t newline = text.find('\n', pos);
    const std::size_t lineEnd = newline == std::string_view::npos || newline >= block.end ? block.end : newline;
    const std::size_t next = lineEnd == block.end ? block.end : lineEnd + 1;
    std::string_view line = text.substr(pos, lineEnd - pos);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.size() > kMaxLineLength || !IsPlainAsciiLine(line)) {
      block.stopped = true;
      return;
    }
    if (!Tokenize(line, file.columns.size() + 1, tokens, count, lastEnd)) {
      block.stopped = true;
      return;
    }
    if (!tokens.empty()) {
      if (!tokens.front().quoted && tokens.front().text == "END_DATA") {
        block.endData = true;
        return;
      }
      if (count != file.columns.size()) {
        block.stopped = true;
        return;
      }
      MeasurementSample sample;
      sample.line = block.lines;
      sample.fields.resize(file.fieldCount);
      sample.values.resize(file.wavelengths.size());
      for (std::size_t i = 0; i < file.columns.size(); ++i) {
        const MeasurementColumn& column = file.columns[i];
        const std::string_view cell = tokens[i].text;
        if (!column.spectral) {
          sample.fields[column.index] = std::string(cell);
        } else if (!ParseMeasurementNumber(cell, false, sample.values[column.index])) {
          if (!IsMissingValueText(cell)) {
            block.stopped = true;
            return;
          }
          sample.values[column.index] = kMissing;
        }
      }
      block.samples.push_back(std::move(sample));
    }
    ++block.lines;
    block.bytes = next - block.begin;
    pos = next;
  }
}

bool ParseCount(std::string_view digits, std::size_t& value) {
  if (digits.empty() || digits.size() > 9) return false;
  const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return ec == std::errc() && end == digits.data() + digits.size();
}

class CgatsParser {
 public:
  CgatsParser(LineReader& reader, const std::string& source, MeasurementFile& out)
      : reader_(reader), source_(source), out_(out) {}

  MeasurementStatus Run(const ReadOptions& options);

 private:
  enum class State { kHeader, kFormat, kData, kAfter };

  MeasurementStatus Fail(std::size_t line, std::string message) const {
    return MeasurementStatus::Failure(source_, line, std::move(message));
  }
  MeasurementStatus HeaderLine(std::string_view line);
  MeasurementStatus FinishFormat();
  MeasurementStatus DataRow();
  void ReadDataBlocks();
  MeasurementStatus CheckColumnCount() const {
    if (fieldNames_.size() <= kMaxColumns) return {};
    return Fail(reader_.LineNumber(), FormatMeasurementText(text::kTooManyColumns, {std::to_string(kMaxColumns)}));
  }
  void AddFieldName(std::string_view name) {
    fieldNames_.emplace_back(name);
    fieldLines_.push_back(reader_.LineNumber());
  }

  LineReader& reader_;
  const std::string& source_;
  MeasurementFile& out_;
  std::string repaired_;  // the current line when it needed RepairUtf8Line
  std::vector<Token> tokens_;
  std::size_t tokenCount_ = 0;
  std::size_t lastEnd_ = 0;
  State state_ = State::kHeader;
  bool sawSignificantLine_ = false;
  bool sawFormat_ = false;
  std::size_t formatBegin_ = 0;
  std::size_t dataBegin_ = 0;
  std::size_t declaredFields_ = 0;
  bool hasDeclaredFields_ = false;
  std::size_t declaredSets_ = 0;
  bool hasDeclaredSets_ = false;
  std::vector<std::string> fieldNames_;
  std::vector<std::size_t> fieldLines_;  // the line of each field name
};

MeasurementStatus CgatsParser::HeaderLine(std::string_view line) {
  const std::size_t lineNumber = reader_.LineNumber();
  const std::string_view word = tokens_.front().text;
  const bool first = !sawSignificantLine_;
  sawSignificantLine_ = true;
  if (!tokens_.front().quoted) {
    if (word == "BEGIN_DATA_FORMAT") {
      if (sawFormat_) return Fail(lineNumber, FormatMeasurementText(text::kAppearsTwice, {word}));
      sawFormat_ = true;
      state_ = State::kFormat;
      formatBegin_ = lineNumber;
      out_.formatLine = lineNumber;
      for (std::size_t i = 1; i < tokens_.size(); ++i) AddFieldName(tokens_[i].text);
      return CheckColumnCount();
    }
    if (word == "BEGIN_DATA") {
      if (!sawFormat_) return Fail(lineNumber, FormatMeasurementText(text::kDataBeforeFormat));
      state_ = State::kData;
      dataBegin_ = lineNumber;
      ReadDataBlocks();
      return {};
    }
    if (word == "END_DATA_FORMAT") {
      return Fail(lineNumber, FormatMeasurementText(text::kEndWithoutBegin, {word, "BEGIN_DATA_FORMAT"}));
    }
    if (word == "END_DATA") {
      return Fail(lineNumber, FormatMeasurementText(text::kEndWithoutBegin, {word, "BEGIN_DATA"}));
    }
    if (word == "NUMBER_OF_FIELDS" || word == "NUMBER_OF_SETS") {
      std::size_t count = 0;
      const std::string_view value = tokenCount_ == 2 ? tokens_[1].text : std::string_view();
      if (tokenCount_ != 2 || !ParseCount(value, count)) {
        const std::string_view rest =
            tokenCount_ > 1 ? line.substr(tokens_[1].begin, lastEnd_ - tokens_[1].begin) : std::string_view();
        return Fail(lineNumber, FormatMeasurementText(text::kNotWholeNumber, {word, ShortenForMessage(rest)}));
      }
      if (word == "NUMBER_OF_FIELDS") {
        declaredFields_ = count;
        hasDeclaredFields_ = true;
      } else {
        declaredSets_ = count;
        hasDeclaredSets_ = true;
      }
      return {};
    }
    if (first && tokenCount_ == 1) {
      out_.identifier = std::string(word);
      return {};
    }
  }
  CgatsKeyword keyword;
  keyword.name = std::string(word);
  if (tokenCount_ > 1) keyword.value = std::string(line.substr(tokens_[1].begin, lastEnd_ - tokens_[1].begin));
  out_.keywords.push_back(std::move(keyword));
  return {};
}

MeasurementStatus CgatsParser::FinishFormat() {
  const std::size_t lineNumber = reader_.LineNumber();
  if (hasDeclaredFields_ && declaredFields_ != fieldNames_.size()) {
    return Fail(lineNumber, FormatMeasurementText(text::kFieldCountDeclared,
                                                  {std::to_string(declaredFields_), std::to_string(fieldNames_.size())}));
  }
  // Hash lookups keep the checks linear in the number of columns.
  std::unordered_set<std::string_view> names;
  std::unordered_map<double, std::size_t> wavelengthColumns;
  for (std::size_t i = 0; i < fieldNames_.size(); ++i) {
    const std::string& name = fieldNames_[i];
    if (!names.insert(name).second) {
      return Fail(fieldLines_[i], FormatMeasurementText(text::kDuplicateColumn, {name}));
    }
    const MeasurementStatus added = AddReadColumn(out_, name, false, fieldLines_[i], wavelengthColumns);
    if (!added) return added;
    const MeasurementColumn& column = out_.columns.back();
    if (column.spectral) continue;
    if (name == "SAMPLE_ID") out_.idField = static_cast<std::ptrdiff_t>(column.index);
    if (name == "SAMPLE_NAME") out_.nameField = static_cast<std::ptrdiff_t>(column.index);
  }
  if (out_.wavelengths.empty()) return Fail(out_.formatLine, FormatMeasurementText(text::kNoSpectralColumns));
  state_ = State::kHeader;
  return {};
}

MeasurementStatus CgatsParser::DataRow() {
  const std::size_t lineNumber = reader_.LineNumber();
  if (tokenCount_ != out_.columns.size()) {
    return Fail(lineNumber, FormatMeasurementText(text::kRowFieldCount,
                                                  {std::to_string(tokenCount_), std::to_string(out_.columns.size())}));
  }
  return AddReadSample(out_, lineNumber, false, [this](std::size_t i) { return tokens_[i].text; });
}

// The data rows of a file held in memory, split in blocks read in parallel. Takes the rows up
// to END_DATA, or up to the first block that stops, and leaves the reader before the first
// line not taken: the line-by-line loop goes on from there with the same state as if it had
// read those rows itself (the rows taken add no note and no error).
void CgatsParser::ReadDataBlocks() {
  const std::string_view text = reader_.UnreadText();
  if (text.size() < 2 * kDataBlockBytes) return;  // not worth the threads
  std::vector<DataBlock> blocks;
  for (std::size_t begin = 0; begin < text.size();) {
    std::size_t end = begin + kDataBlockBytes;
    if (end >= text.size()) {
      end = text.size();
    } else {
      const std::size_t newline = text.find('\n', end);
      end = newline == std::string_view::npos ? text.size() : newline + 1;
    }
    DataBlock& block = blocks.emplace_back();
    block.begin = begin;
    block.end = end;
    begin = end;
  }
  ParallelFor(blocks.size(), 1, [&](std::size_t first, std::size_t last) {
    for (std::size_t b = first; b < last; ++b) ReadDataBlock(text, out_, blocks[b]);
  });
  std::size_t taken = 0;
  std::size_t sampleCount = out_.samples.size();
  while (taken < blocks.size()) {
    const DataBlock& block = blocks[taken++];
    sampleCount += block.samples.size();
    if (block.endData || block.stopped) break;
  }
  out_.samples.reserve(sampleCount);
  std::size_t lines = 0;
  std::size_t bytes = 0;
  const std::size_t firstLine = reader_.LineNumber() + 1;
  for (std::size_t b = 0; b < taken; ++b) {
    for (MeasurementSample& sample : blocks[b].samples) {
      sample.line += firstLine + lines;
      out_.samples.push_back(std::move(sample));
    }
    lines += blocks[b].lines;
    bytes += blocks[b].bytes;
  }
  reader_.Skip(bytes, lines);
}

MeasurementStatus CgatsParser::Run(const ReadOptions& options) {
  std::string_view line;
  for (;;) {
    const LineReader::Status status = reader_.Next(line);
    if (status == LineReader::Status::kEnd) break;
    if (status != LineReader::Status::kLine) return LineReaderFailure(reader_, status, source_);
    line = RepairUtf8Line(line, reader_.LineNumber(), repaired_, out_);
    const std::size_t limit = state_ == State::kData ? out_.columns.size() + 1 : kMaxColumns + 2;
    if (!Tokenize(line, limit, tokens_, tokenCount_, lastEnd_)) {
      return Fail(reader_.LineNumber(), FormatMeasurementText(text::kUnclosedQuote));
    }
    if (tokens_.empty()) continue;
    const bool keyword = !tokens_.front().quoted;
    const std::string_view word = tokens_.front().text;
    MeasurementStatus result;
    switch (state_) {
      case State::kHeader:
        result = HeaderLine(line);
        break;
      case State::kFormat:
        for (std::size_t i = 0; i < tokens_.size(); ++i) {
          if (!tokens_[i].quoted && tokens_[i].text == "END_DATA_FORMAT") {
            result = FinishFormat();
            break;
          }
          AddFieldName(tokens_[i].text);
        }
        if (result && state_ == State::kFormat) result = CheckColumnCount();
        break;
      case State::kData:
        if (keyword && word == "END_DATA") {
          if (out_.samples.empty()) return Fail(dataBegin_, FormatMeasurementText(text::kNoSamples));
          if (hasDeclaredSets_ && declaredSets_ != out_.samples.size()) {
            return Fail(reader_.LineNumber(),
                        FormatMeasurementText(text::kSetCountDeclared, {std::to_string(declaredSets_),
                                                                        std::to_string(out_.samples.size())}));
          }
          state_ = State::kAfter;
        } else {
          result = DataRow();
        }
        break;
      case State::kAfter:
        out_.notes.push_back({reader_.LineNumber(), FormatMeasurementText(text::kAfterEndData)});
        FinishMeasurementFile(out_, options.scale);
        return {};
    }
    if (!result) return result;
  }
  if (reader_.Empty()) return Fail(0, FormatMeasurementText(text::kEmptyFile));
  switch (state_) {
    case State::kFormat:
      return Fail(formatBegin_, FormatMeasurementText(text::kUnterminatedFormat, {std::to_string(formatBegin_)}));
    case State::kData:
      return Fail(dataBegin_, FormatMeasurementText(text::kUnterminatedData, {std::to_string(dataBegin_)}));
    case State::kHeader:
      if (!sawFormat_) return Fail(0, FormatMeasurementText(text::kNotCgats));
      return Fail(0, FormatMeasurementText(text::kNoSamples));
    case State::kAfter:
      break;
  }
  FinishMeasurementFile(out_, options.scale);
  return {};
}

}  // namespace

MeasurementStatus ReadCgats(LineReader& reader, const std::string& source, const ReadOptions& options,
                            MeasurementFile& out) noexcept {
  return ReadIntoMeasurementFile(source, MeasurementFormat::kCgats, out,
                                 [&]() { return CgatsParser(reader, source, out).Run(options); });
}

MeasurementStatus ParseCgats(std::string_view text, const std::string& source, const ReadOptions& options,
                             MeasurementFile& out) noexcept {
  return ParseMeasurementText(&ReadCgats, text, source, options, out);
}

MeasurementStatus ReadCgatsFile(const std::string& path, const ReadOptions& options, MeasurementFile& out) noexcept {
  return ReadMeasurementFileWith(&ReadCgats, path, options, out);
}

}  // namespace velquor
