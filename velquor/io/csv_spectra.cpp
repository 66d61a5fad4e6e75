#include "velquor/io/csv_spectra.h"

#include <array>
#include <charconv>
#include <deque>
#include <unordered_map>
#include <vector>

#include "velquor/io/measurement_text_ids.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/numeric.h"

namespace velquor {

namespace {

namespace text = measurement_text;

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view Trim(std::string_view s, char delimiter) {
  // A TAB delimiter is never trimmed away.
  auto blank = [delimiter](char c) { return IsBlank(c) && c != delimiter; };
  while (!s.empty() && blank(s.front())) s.remove_prefix(1);
  while (!s.empty() && blank(s.back())) s.remove_suffix(1);
  return s;
}

bool IsBlankLine(std::string_view line) {
  for (const char c : line) {
    if (!IsBlank(c)) return false;
  }
  return true;
}

// The delimiter of a header line: the most frequent of ',', ';' and TAB outside quotes.
char DetectDelimiter(std::string_view header) {
  std::size_t commas = 0, semicolons = 0, tabs = 0;
  bool quoted = false;
  for (const char c : header) {
    if (c == '"') quoted = !quoted;
    if (quoted) continue;
    if (c == ',') ++commas;
    if (c == ';') ++semicolons;
    if (c == '\t') ++tabs;
  }
  if (semicolons > commas && semicolons >= tabs) return ';';
  if (tabs > commas && tabs > semicolons) return '\t';
  return ',';
}

// Splits one CSV line into fields, keeping at most `limit` of them (the rest are only
// counted in `count`). Unescaped quoted fields are kept in `store`, whose elements do not move
// while fields point into them. Returns false on an unclosed quote.
bool SplitCsvLine(std::string_view line, char delimiter, std::size_t limit, std::vector<std::string_view>& fields,
                  std::deque<std::string>& store, std::size_t& count) {
  fields.clear();
  store.clear();
  count = 0;
  auto keep = [&](std::string_view field) {
    ++count;
    if (fields.size() < limit) fields.push_back(field);
  };
  std::size_t i = 0;
  const std::size_t n = line.size();
  for (;;) {
    std::size_t start = i;
    while (start < n && IsBlank(line[start]) && line[start] != delimiter) ++start;
    if (start < n && line[start] == '"') {
      std::string value;
      std::size_t j = start + 1;
      bool closed = false;
      while (j < n) {
        const std::size_t quote = line.find('"', j);
        if (quote == std::string_view::npos) break;
        value.append(line.substr(j, quote - j));
        if (quote + 1 < n && line[quote + 1] == '"') {
          value.push_back('"');
          j = quote + 2;
          continue;
        }
        j = quote + 1;
        closed = true;
        break;
      }
      if (!closed) return false;
      // Text between the closing quote and the delimiter is kept, as spreadsheets do.
      const std::size_t next = line.find(delimiter, j);
      const std::string_view tail = Trim(line.substr(j, next == std::string_view::npos ? n - j : next - j), delimiter);
      value.append(tail);
      if (fields.size() < limit) {
        store.push_back(std::move(value));
        keep(store.back());
      } else {
        keep({});
      }
      if (next == std::string_view::npos) return true;
      i = next + 1;
      continue;
    }
    const std::size_t next = line.find(delimiter, i);
    if (next == std::string_view::npos) {
      keep(Trim(line.substr(i), delimiter));
      return true;
    }
    keep(Trim(line.substr(i, next - i), delimiter));
    i = next + 1;
  }
}

bool IsOneOfNoCase(std::string_view name, std::initializer_list<std::string_view> uppers) {
  for (const std::string_view upper : uppers) {
    if (name.size() != upper.size()) continue;
    bool same = true;
    for (std::size_t i = 0; i < name.size() && same; ++i) {
      char c = name[i];
      if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
      same = c == upper[i];
    }
    if (same) return true;
  }
  return false;
}

class CsvParser {
 public:
  CsvParser(LineReader& reader, const std::string& source, MeasurementFile& out)
      : reader_(reader), source_(source), out_(out) {}

  MeasurementStatus Run(const ReadOptions& options);

 private:
  MeasurementStatus Fail(std::size_t line, std::string message) const {
    return MeasurementStatus::Failure(source_, line, std::move(message));
  }
  MeasurementStatus Header(std::string_view line);
  MeasurementStatus Row(std::string_view line);

  LineReader& reader_;
  const std::string& source_;
  MeasurementFile& out_;
  std::string repaired_;  // the current line when it needed RepairUtf8Line
  char delimiter_ = ',';
  std::vector<std::string_view> fields_;
  std::deque<std::string> store_;
};

MeasurementStatus CsvParser::Header(std::string_view line) {
  const std::size_t lineNumber = reader_.LineNumber();
  out_.formatLine = lineNumber;
  delimiter_ = DetectDelimiter(line);
  std::size_t count = 0;
  if (!SplitCsvLine(line, delimiter_, kMaxColumns + 1, fields_, store_, count)) {
    return Fail(lineNumber, FormatMeasurementText(text::kUnclosedQuote));
  }
  if (count > kMaxColumns) {
    return Fail(lineNumber, FormatMeasurementText(text::kTooManyColumns, {std::to_string(kMaxColumns)}));
  }
  std::unordered_map<double, std::size_t> wavelengthColumns;
  for (const std::string_view name : fields_) {
    const MeasurementStatus added = AddReadColumn(out_, std::string(name), true, lineNumber, wavelengthColumns);
    if (!added) return added;
    const MeasurementColumn& column = out_.columns.back();
    if (column.spectral) continue;
    const auto field = static_cast<std::ptrdiff_t>(column.index);
    if (out_.nameField < 0 && IsOneOfNoCase(column.name, {"SAMPLE_NAME", "NAME", "SAMPLE"})) out_.nameField = field;
    if (out_.idField < 0 && IsOneOfNoCase(column.name, {"SAMPLE_ID", "ID"})) out_.idField = field;
  }
  if (out_.wavelengths.empty()) return Fail(lineNumber, FormatMeasurementText(text::kCsvNoWavelengths));
  if (out_.nameField < 0 && out_.idField < 0 && out_.fieldCount > 0) out_.nameField = 0;
  return {};
}

MeasurementStatus CsvParser::Row(std::string_view line) {
  const std::size_t lineNumber = reader_.LineNumber();
  std::size_t count = 0;
  if (!SplitCsvLine(line, delimiter_, out_.columns.size() + 1, fields_, store_, count)) {
    return Fail(lineNumber, FormatMeasurementText(text::kUnclosedQuote));
  }
  if (count != out_.columns.size()) {
    return Fail(lineNumber, FormatMeasurementText(text::kCsvRowFieldCount,
                                                  {std::to_string(count), std::to_string(out_.columns.size())}));
  }
  return AddReadSample(out_, lineNumber, delimiter_ != ',', [this](std::size_t i) { return fields_[i]; });
}

MeasurementStatus CsvParser::Run(const ReadOptions& options) {
  std::string_view line;
  bool haveHeader = false;
  for (;;) {
    const LineReader::Status status = reader_.Next(line);
    if (status == LineReader::Status::kEnd) break;
    if (status != LineReader::Status::kLine) return LineReaderFailure(reader_, status, source_);
    line = RepairUtf8Line(line, reader_.LineNumber(), repaired_, out_);
    if (IsBlankLine(line)) continue;
    MeasurementStatus result;
    if (!haveHeader) {
      if (line.front() == '#') continue;
      result = Header(line);
      haveHeader = true;
    } else {
      result = Row(line);
    }
    if (!result) return result;
  }
  if (reader_.Empty()) return Fail(0, FormatMeasurementText(text::kEmptyFile));
  if (!haveHeader) return Fail(0, FormatMeasurementText(text::kCsvNoWavelengths));
  if (out_.samples.empty()) return Fail(out_.formatLine, FormatMeasurementText(text::kNoSamples));
  FinishMeasurementFile(out_, options.scale);
  return {};
}

void AppendCsvField(std::string& out, std::string_view field) {
  bool quote = !field.empty() && (IsBlank(field.front()) || IsBlank(field.back()) || field.front() == '#');
  for (const char c : field) {
    // ';' and TAB too: unquoted, they could outnumber the commas and be taken for the delimiter.
    if (c == ',' || c == '"' || c == '\n' || c == '\r' || c == ';' || c == '\t') quote = true;
  }
  if (!quote) {
    out.append(field);
    return;
  }
  out.push_back('"');
  for (const char c : field) {
    if (c == '"') out.push_back('"');
    out.push_back(c == '\n' || c == '\r' ? ' ' : c);
  }
  out.push_back('"');
}

}  // namespace

std::string SpectralColumnName(const MeasurementFile& file, const MeasurementColumn& column,
                               SpectralColumnNames style) {
  // Fixed notation: "SPECTRAL_NM0.00001", never "SPECTRAL_NM1e-05", which would not read back.
  std::array<char, 64> buffer{};
  const auto [end, ec] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), file.wavelengths[column.index],
                                       std::chars_format::fixed);
  const std::string nm = ec == std::errc() ? std::string(buffer.data(), end) : std::string("0");
  switch (style) {
    case SpectralColumnNames::kKeep:
      return column.name;
    case SpectralColumnNames::kPlain:
      return nm;
    case SpectralColumnNames::kSpectralNm:
      return "SPECTRAL_NM" + nm;
    case SpectralColumnNames::kNm:
      return "nm" + nm;
  }
  return column.name;
}

MeasurementStatus ReadCsvSpectra(LineReader& reader, const std::string& source, const ReadOptions& options,
                                 MeasurementFile& out) noexcept {
  return ReadIntoMeasurementFile(source, MeasurementFormat::kCsv, out,
                                 [&]() { return CsvParser(reader, source, out).Run(options); });
}

MeasurementStatus ParseCsvSpectra(std::string_view text, const std::string& source, const ReadOptions& options,
                                  MeasurementFile& out) noexcept {
  return ParseMeasurementText(&ReadCsvSpectra, text, source, options, out);
}

MeasurementStatus ReadCsvSpectraFile(const std::string& path, const ReadOptions& options,
                                     MeasurementFile& out) noexcept {
  return ReadMeasurementFileWith(&ReadCsvSpectra, path, options, out);
}

bool FormatCsvSpectra(const MeasurementFile& file, const CsvWriteOptions& options, std::string& out) noexcept {
  try {
    out.clear();
    out.reserve((file.samples.size() + 1) * (file.columns.size() * 8 + 16));
    for (std::size_t i = 0; i < file.columns.size(); ++i) {
      if (i > 0) out.push_back(',');
      const MeasurementColumn& column = file.columns[i];
      if (column.spectral) {
        AppendCsvField(out, SpectralColumnName(file, column, options.spectralNames));
        continue;
      }
      // A text column whose name reads as a wavelength ("380" from a CGATS file, or "410\rnm",
      // whose CR is written as a blank) is renamed, so that it stays a text column.
      std::string name = column.name;
      for (char& c : name) {
        if (c == '\n' || c == '\r') c = ' ';
      }
      double nm = 0.0;
      if (ParseSpectralColumnName(name, true, nm)) name.insert(0, "X_");
      AppendCsvField(out, name);
    }
    out.push_back('\n');
    for (const MeasurementSample& sample : file.samples) {
      const std::size_t rowStart = out.size();
      for (std::size_t i = 0; i < file.columns.size(); ++i) {
        if (i > 0) out.push_back(',');
        const MeasurementColumn& column = file.columns[i];
        if (!column.spectral) {
          if (column.index < sample.fields.size()) AppendCsvField(out, sample.fields[column.index]);
          continue;
        }
        const double value = column.index < sample.values.size() ? sample.values[column.index] : kMissing;
        if (!IsMissing(value)) AppendMeasurementNumber(out, value);
      }
      // A row of empty fields would be a blank line, which readers skip: quote its first field.
      if (out.find_first_not_of(',', rowStart) == std::string::npos) out.insert(rowStart, "\"\"");
      out.push_back('\n');
    }
    return true;
  } catch (...) {
    out.clear();
    return false;
  }
}

MeasurementStatus WriteCsvSpectraFile(const std::string& path, const MeasurementFile& file,
                                      const CsvWriteOptions& options) noexcept {
  return WriteFormattedFile(
      path, [&](std::string& content) { return FormatCsvSpectra(file, options, content); });
}

}  // namespace velquor
