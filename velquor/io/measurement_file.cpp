#include "velquor/io/measurement_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <system_error>

#include "velquor/io/atomic_file.h"
#include "velquor/io/measurement_text_ids.h"
#include "velquor/io/plain_decimal.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/resources.h"
#include "velquor/frame/thread_pool.h"
#include "velquor/frame/utf8.h"

namespace velquor {

namespace {

char ToUpperAscii(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (std::size_t i = 0; i < prefix.size(); ++i) {
    if (ToUpperAscii(text[i]) != prefix[i]) return false;
  }
  return true;
}

bool EqualsNoCase(std::string_view text, std::string_view upper) {
  return text.size() == upper.size() && StartsWithNoCase(text, upper);
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// "380" or "382.5": digits, optionally a point and more digits; (0, 100000) nm.
bool ParseWavelengthDigits(std::string_view text, double& nanometres) {
  std::size_t i = 0;
  while (i < text.size() && IsDigit(text[i])) ++i;
  if (i == 0) return false;
  if (i < text.size()) {
    if (text[i] != '.') return false;
    const std::size_t fractionStart = ++i;
    while (i < text.size() && IsDigit(text[i])) ++i;
    if (i == fractionStart || i != text.size()) return false;
  }
  double value = 0.0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size()) return false;
  if (!(value > 0.0 && value < 100000.0)) return false;
  nanometres = value;
  return true;
}

std::string FormatWavelength(double nanometres) { return FormatMeasurementNumber(nanometres); }

// Samples per chunk of FinishMeasurementFile's split over threads (some 50 microseconds).
constexpr std::size_t kFinishChunk = 1024;

// Largest file read whole into memory (ReadLinesOfFile); larger ones are read in blocks.
constexpr std::uintmax_t kWholeFileLimit = std::uintmax_t{1} << 30;

}  // namespace

std::string MeasurementError::Message() const {
  std::string message;
  if (!file.empty()) {
    message = file;
    if (line > 0) {
      message.push_back(':');
      message.append(std::to_string(line));
    }
    message += ": ";
  } else if (line > 0) {
    message = "line ";
    message.append(std::to_string(line));
    message.append(": ");
  }
  message += text;
  return message;
}

MeasurementStatus MeasurementStatus::Failure(std::string file, std::size_t line, std::string text) {
  MeasurementStatus status;
  status.ok = false;
  status.error.file = std::move(file);
  status.error.line = line;
  status.error.text = std::move(text);
  return status;
}

bool ParseSpectralColumnName(std::string_view name, bool allowPlain, double& nanometres) {
  // Longer prefixes first, so that "SPECTRAL_NM_380" is not read as "SPECTRAL_" + "NM_380".
  static constexpr std::array<std::string_view, 7> kPrefixes = {
      "SPECTRAL_NM_", "SPECTRAL_NM", "SPECTRAL_", "SPEC_", "NM_", "NM", "R_"};
  for (const std::string_view prefix : kPrefixes) {
    if (StartsWithNoCase(name, prefix) && ParseWavelengthDigits(name.substr(prefix.size()), nanometres)) {
      return true;
    }
  }
  if (!allowPlain) return false;
  std::string_view number = name;
  if (number.size() >= 2 && EqualsNoCase(number.substr(number.size() - 2), "NM")) {
    number.remove_suffix(2);
    if (number.ends_with(' ')) number.remove_suffix(1);
  }
  return ParseWavelengthDigits(number, nanometres);
}

bool ParseMeasurementNumber(std::string_view text, bool decimalComma, double& value) {
  if (ParsePlainDecimal(text, value)) return true;
  if (text.empty()) return false;
  if (text.front() == '+') {
    text.remove_prefix(1);
    if (text.empty() || text.front() == '-' || text.front() == '+') return false;
  }
  // Only decimal digits, a sign, the decimal separator and an exponent may appear: this keeps
  // out "inf", "nan" and hexadecimal forms, which from_chars would otherwise take.
  std::array<char, 64> buffer{};
  if (text.size() >= buffer.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (decimalComma && c == ',') c = '.';
    else if (c == ',') return false;
    if (!(IsDigit(c) || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E')) return false;
    buffer[i] = c;
  }
  double parsed = 0.0;
  const char* end = buffer.data() + text.size();
  const auto [stop, ec] = std::from_chars(buffer.data(), end, parsed, std::chars_format::general);
  if (ec != std::errc() || stop != end || !std::isfinite(parsed)) return false;
  value = parsed;
  return true;
}

bool IsMissingValueText(std::string_view text) {
  return text.empty() || EqualsNoCase(text, "NA") || EqualsNoCase(text, "N/A") ||
         EqualsNoCase(text, "NAN") || text == "-";
}

std::string FormatMeasurementNumber(double value) {
  std::array<char, 32> buffer{};
  const auto [end, ec] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  if (ec != std::errc()) return "0";
  return std::string(buffer.data(), end);
}

void AppendMeasurementNumber(std::string& out, double value) {
  std::array<char, 32> buffer{};
  const auto [end, ec] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  if (ec != std::errc()) {
    out.push_back('0');
    return;
  }
  out.append(buffer.data(), end);
}

std::string FormatMeasurementText(std::uint32_t id, std::initializer_list<std::string_view> args) {
  std::string pattern;
  LoadStringResource(id, pattern);
  std::string text;
  text.reserve(pattern.size() + 32);
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char c = pattern[i];
    if (c == '%' && i + 1 < pattern.size()) {
      const char next = pattern[i + 1];
      if (next == '%') {
        text.push_back('%');
        ++i;
        continue;
      }
      if (next >= '1' && next <= '9') {
        const auto arg = static_cast<std::size_t>(next - '1');
        if (arg < args.size()) text.append(*(args.begin() + arg));
        ++i;
        continue;
      }
    }
    text.push_back(c);
  }
  return text;
}

std::string MeasurementFile::SampleLabel(std::size_t sample) const {
  const MeasurementSample& s = samples[sample];
  if (nameField >= 0 && static_cast<std::size_t>(nameField) < s.fields.size() &&
      !s.fields[static_cast<std::size_t>(nameField)].empty()) {
    return s.fields[static_cast<std::size_t>(nameField)];
  }
  if (idField >= 0 && static_cast<std::size_t>(idField) < s.fields.size() &&
      !s.fields[static_cast<std::size_t>(idField)].empty()) {
    return s.fields[static_cast<std::size_t>(idField)];
  }
  std::string label = "#";
  label.append(std::to_string(sample + 1));
  return label;
}

std::vector<double> MeasurementFile::MissingWavelengths(std::size_t sample) const {
  std::vector<double> missing;
  const std::vector<double>& values = samples[sample].values;
  for (std::size_t i = 0; i < values.size() && i < wavelengths.size(); ++i) {
    if (IsMissing(values[i])) missing.push_back(wavelengths[i]);
  }
  return missing;
}

double MeasurementFile::PercentFactor() const { return scale == ReflectanceScale::kPercent ? 1.0 : 100.0; }

std::string MeasurementFile::DescribeScale() const {
  const bool percent = scale == ReflectanceScale::kPercent;
  std::uint32_t id = 0;
  if (scaleDetected) {
    id = percent ? measurement_text::kScalePercentDetected : measurement_text::kScaleFractionDetected;
  } else {
    id = percent ? measurement_text::kScalePercentTold : measurement_text::kScaleFractionTold;
  }
  return FormatMeasurementText(id, {FormatMeasurementNumber(largestValue)});
}

namespace {

// The scale read: the detection rule of kPercentDetectionQuantile over `count` values of which
// `atMostThreshold` are <= kPercentDetectionThreshold. The value of nearest rank r is above
// the threshold exactly when fewer than r values are at or below it, so counting is enough.
ReflectanceScale DetectScale(std::size_t count, std::size_t atMostThreshold) {
  if (count == 0) return ReflectanceScale::kFraction;
  const auto rank = static_cast<std::size_t>(std::ceil(kPercentDetectionQuantile * static_cast<double>(count)));
  return atMostThreshold < std::max<std::size_t>(rank, 1) ? ReflectanceScale::kPercent : ReflectanceScale::kFraction;
}

// A note naming the first sample whose largest value looks like the other scale, when the
// samples do not all look alike; `largest` holds each sample's largest value (missing: none).
void NoteScaleDisagreement(MeasurementFile& file, const std::vector<double>& largest) {
  const bool percent = file.scale == ReflectanceScale::kPercent;
  std::size_t looksPercent = 0, looksFraction = 0, first = largest.size(), disagreeing = 0;
  for (std::size_t s = 0; s < largest.size(); ++s) {
    if (IsMissing(largest[s])) continue;
    const bool samplePercent = largest[s] > kPercentDetectionThreshold;
    ++(samplePercent ? looksPercent : looksFraction);
    if (samplePercent == percent) continue;
    if (disagreeing++ == 0) first = s;
  }
  if (looksPercent == 0 || looksFraction == 0) return;
  const std::uint32_t id = percent ? measurement_text::kLooksLikeFraction : measurement_text::kLooksLikePercent;
  file.notes.push_back({file.samples[first].line,
                        FormatMeasurementText(id, {file.SampleLabel(first), FormatMeasurementNumber(largest[first]),
                                                   std::to_string(disagreeing), std::to_string(largest.size())})});
}

}  // namespace

void FinishMeasurementFile(MeasurementFile& file, ReflectanceScale requested) {
  // Per sample (split over threads: a large batch holds millions of values): its largest
  // value, how many values it has and how many of them are at most the detection threshold.
  struct SampleStats {
    double largest = kMissing;
    std::size_t count = 0;
    std::size_t atMostThreshold = 0;
    bool anyMissing = false;
  };
  std::vector<SampleStats> stats(file.samples.size());
  ParallelFor(file.samples.size(), kFinishChunk, [&](std::size_t begin, std::size_t end) {
    for (std::size_t s = begin; s < end; ++s) {
      SampleStats& st = stats[s];
      for (const double v : file.samples[s].values) {
        if (IsMissing(v)) {
          st.anyMissing = true;
          continue;
        }
        if (IsMissing(st.largest) || v > st.largest) st.largest = v;
        ++st.count;
        st.atMostThreshold += v <= kPercentDetectionThreshold ? 1 : 0;
      }
    }
  });
  std::size_t count = 0;
  std::size_t atMostThreshold = 0;
  double largest = kMissing;
  std::vector<double> largestOfSample(file.samples.size(), kMissing);
  for (std::size_t s = 0; s < file.samples.size(); ++s) {
    const SampleStats& st = stats[s];
    count += st.count;
    atMostThreshold += st.atMostThreshold;
    largestOfSample[s] = st.largest;
    if (!IsMissing(st.largest) && (IsMissing(largest) || st.largest > largest)) largest = st.largest;
    if (!st.anyMissing) continue;
    std::string missing;
    for (std::size_t i = 0; i < file.samples[s].values.size(); ++i) {
      if (!IsMissing(file.samples[s].values[i])) continue;
      if (!missing.empty()) missing += ", ";
      missing += FormatWavelength(file.wavelengths[i]);
    }
    file.notes.push_back(
        {file.samples[s].line, FormatMeasurementText(measurement_text::kMissingValues, {file.SampleLabel(s), missing})});
  }
  file.largestValue = count == 0 ? 0.0 : largest;
  file.scaleDetected = requested == ReflectanceScale::kAuto;
  file.scale = file.scaleDetected ? DetectScale(count, atMostThreshold) : requested;
  NoteScaleDisagreement(file, largestOfSample);
}

void AddMeasurementColumn(MeasurementFile& file, std::string name, const std::vector<std::string>& values) {
  const std::size_t index = file.fieldCount++;
  file.columns.push_back({std::move(name), false, index});
  for (std::size_t s = 0; s < file.samples.size(); ++s) {
    file.samples[s].fields.resize(index + 1);
    if (s < values.size()) file.samples[s].fields[index] = values[s];
  }
}

MeasurementStatus LineReaderFailure(const LineReader& reader, LineReader::Status status,
                                    const std::string& source) {
  const std::size_t line = reader.LineNumber();
  switch (status) {
    case LineReader::Status::kTooLong:
      return MeasurementStatus::Failure(
          source, line, FormatMeasurementText(measurement_text::kLineTooLong, {std::to_string(kMaxLineLength)}));
    case LineReader::Status::kBinary: {
      static constexpr char kHex[] = "0123456789ABCDEF";
      const unsigned char byte = reader.BinaryByte();
      const char hex[2] = {kHex[byte >> 4], kHex[byte & 15]};
      return MeasurementStatus::Failure(
          source, line, FormatMeasurementText(measurement_text::kBinaryData, {std::string_view(hex, 2)}));
    }
    case LineReader::Status::kReadError:
      return MeasurementStatus::Failure(source, line,
                                        FormatMeasurementText(measurement_text::kReadError, {std::strerror(EIO)}));
    case LineReader::Status::kEnd:
    case LineReader::Status::kLine:
      break;
  }
  return MeasurementStatus::Failure(source, 0, FormatMeasurementText(measurement_text::kEmptyFile));
}

std::string_view RepairUtf8Line(std::string_view line, std::size_t lineNumber, std::string& buffer,
                                MeasurementFile& file) {
  if (IsValidUtf8(line)) return line;
  buffer = ReplaceInvalidUtf8(line);
  if (file.invalidUtf8Line == 0) {
    file.invalidUtf8Line = lineNumber;
    file.notes.push_back(
        {lineNumber, FormatMeasurementText(measurement_text::kInvalidUtf8, {file.source, std::to_string(lineNumber)})});
  }
  return buffer;
}

MeasurementStatus ReadLinesOfFile(const std::string& path,
                                  const std::function<MeasurementStatus(LineReader&)>& read) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) {
    const int error = errno;
    return MeasurementStatus::Failure(path, 0,
                                      FormatMeasurementText(measurement_text::kCannotOpen, {std::strerror(error)}));
  }
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> closer(file, &std::fclose);
  // A regular file of reasonable size is read in one go, so that its lines can be handed out
  // without copying and the readers can split the data rows over threads; anything else
  // (a pipe, a device, a huge file) is read block by block with bounded memory.
  std::error_code code;
  const std::filesystem::path fsPath(path);
  if (std::filesystem::is_regular_file(fsPath, code)) {
    const std::uintmax_t size = std::filesystem::file_size(fsPath, code);
    if (!code && size <= kWholeFileLimit) {
      const auto length = static_cast<std::size_t>(size);
      const std::unique_ptr<char[]> text = std::make_unique_for_overwrite<char[]>(length + 1);
      const std::size_t got = length == 0 ? 0 : std::fread(text.get(), 1, length, file);
      if (!std::ferror(file) && got == length && std::fgetc(file) == EOF && !std::ferror(file)) {
        LineReader reader{std::string_view(text.get(), length)};
        return read(reader);
      }
      // The file changed size while read, or a read failed: start again block by block.
      std::clearerr(file);
      if (std::fseek(file, 0, SEEK_SET) != 0) {
        return MeasurementStatus::Failure(path, 0, FormatMeasurementText(measurement_text::kReadError,
                                                                         {std::strerror(EIO)}));
      }
    }
  }
  LineReader reader(file);
  return read(reader);
}

std::string ShortenForMessage(std::string_view value) {
  constexpr std::size_t kLimit = 40;
  if (value.size() <= kLimit) return std::string(value);
  std::size_t cut = kLimit;
  while (cut > 0 && (static_cast<unsigned char>(value[cut]) & 0xC0) == 0x80) --cut;  // a continuation byte
  return std::string(value.substr(0, cut)) + "...";
}

MeasurementStatus AddReadColumn(MeasurementFile& file, std::string name, bool allowPlain, std::size_t line,
                                std::unordered_map<double, std::size_t>& wavelengthColumns) {
  MeasurementColumn column;
  column.name = std::move(name);
  double nm = 0.0;
  if (ParseSpectralColumnName(column.name, allowPlain, nm)) {
    const auto [at, added] = wavelengthColumns.emplace(nm, file.columns.size());
    if (!added) {
      return MeasurementStatus::Failure(
          file.source, line,
          FormatMeasurementText(measurement_text::kDuplicateWavelengthColumn,
                                {FormatMeasurementNumber(nm), file.columns[at->second].name, column.name}));
    }
    column.spectral = true;
    column.index = file.wavelengths.size();
    file.wavelengths.push_back(nm);
  } else {
    column.index = file.fieldCount++;
  }
  file.columns.push_back(std::move(column));
  return {};
}

MeasurementStatus AddReadSample(MeasurementFile& file, std::size_t line, bool decimalComma,
                                const std::function<std::string_view(std::size_t)>& cell) {
  MeasurementSample sample;
  sample.line = line;
  sample.fields.resize(file.fieldCount);
  sample.values.resize(file.wavelengths.size());
  for (std::size_t i = 0; i < file.columns.size(); ++i) {
    const MeasurementColumn& column = file.columns[i];
    const std::string_view text = cell(i);
    if (!column.spectral) {
      sample.fields[column.index] = std::string(text);
      continue;
    }
    double value = 0.0;
    if (IsMissingValueText(text)) {
      value = kMissing;
    } else if (!ParseMeasurementNumber(text, decimalComma, value)) {
      return MeasurementStatus::Failure(
          file.source, line,
          FormatMeasurementText(measurement_text::kNotANumber, {column.name, ShortenForMessage(text)}));
    }
    sample.values[column.index] = value;
  }
  file.samples.push_back(std::move(sample));
  return {};
}

MeasurementStatus ParseMeasurementText(MeasurementLineReader read, std::string_view text, const std::string& source,
                                       const ReadOptions& options, MeasurementFile& out) noexcept {
  LineReader reader(text);
  return read(reader, source, options, out);
}

MeasurementStatus ReadMeasurementFileWith(MeasurementLineReader read, const std::string& path,
                                          const ReadOptions& options, MeasurementFile& out) noexcept {
  return ReadWithoutThrowing(path, [&]() {
    return ReadLinesOfFile(path, [&](LineReader& reader) { return read(reader, path, options, out); });
  });
}

MeasurementStatus ReadIntoMeasurementFile(const std::string& source, MeasurementFormat format, MeasurementFile& out,
                                          const std::function<MeasurementStatus()>& parse) noexcept {
  return ReadWithoutThrowing(source, [&]() {
    out = MeasurementFile();
    out.source = source;
    out.format = format;
    return parse();
  });
}

MeasurementStatus ReadWithoutThrowing(const std::string& source,
                                      const std::function<MeasurementStatus()>& read) noexcept {
  try {
    return read();
  } catch (...) {
    // Only allocation can throw here (std::bad_alloc, std::length_error).
  }
  MeasurementStatus status;
  status.ok = false;
  try {
    status.error.file = source;
    status.error.text = FormatMeasurementText(measurement_text::kOutOfMemory);
  } catch (...) {
  }
  return status;
}

MeasurementStatus WriteFormattedFile(const std::string& path,
                                     const std::function<bool(std::string&)>& format) noexcept {
  return ReadWithoutThrowing(path, [&]() {
    std::string content;
    if (!format(content)) {
      return MeasurementStatus::Failure(path, 0,
                                        FormatMeasurementText(measurement_text::kOutOfMemory));
    }
    std::string reason;
    if (!WriteFileAtomically(path, content, reason)) {
      return MeasurementStatus::Failure(
          path, 0, FormatMeasurementText(measurement_text::kCannotWrite, {reason}));
    }
    return MeasurementStatus();
  });
}

}  // namespace velquor
