#include "spectral_csv.h"

#include <charconv>
#include <cmath>
#include <fstream>
#include <system_error>

namespace velquor::weight_tables {
namespace {

constexpr std::string_view kWavelengthHeader = "wavelength_nm";

[[noreturn]] void Fail(const std::string& source, std::size_t line, const std::string& what) {
  throw CieDataError(source + " line " + std::to_string(line) + ": " + what);
}

std::vector<std::string_view> SplitFields(std::string_view line) {
  std::vector<std::string_view> fields;
  std::size_t start = 0;
  while (true) {
    const std::size_t comma = line.find(',', start);
    fields.push_back(
        line.substr(start, comma == std::string_view::npos ? line.npos : comma - start));
    if (comma == std::string_view::npos) return fields;
    start = comma + 1;
  }
}

std::string_view Trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
    s.remove_suffix(1);
  return s;
}

// Whole-field parse; from_chars is locale-independent and rejects trailing junk via ptr check.
template <typename T>
bool ParseNumber(std::string_view field, T& out) {
  if (field.empty()) return false;
  const char* first = field.data();
  if (*first == '+') ++first;  // from_chars does not accept a leading '+'
  const char* last = field.data() + field.size();
  const auto [ptr, ec] = std::from_chars(first, last, out);
  return ec == std::errc() && ptr == last;
}

}  // namespace

Spectrum SpectralCsv::Column(std::string_view name) const {
  for (std::size_t c = 0; c < columns.size(); ++c) {
    if (columns[c] == name) return Spectrum{firstNm, stepNm, values[c]};
  }
  throw CieDataError(source + ": no column '" + std::string(name) + "'");
}

SpectralCsv ParseSpectralCsv(std::istream& in, const std::string& source) {
  SpectralCsv csv;
  csv.source = source;
  std::string raw;
  std::size_t lineNo = 0;
  bool haveHeader = false;
  int previousNm = 0;
  while (std::getline(in, raw)) {
    ++lineNo;
    const std::string_view line = Trim(raw);
    if (line.empty()) continue;
    const std::vector<std::string_view> fields = SplitFields(line);
    if (!haveHeader) {
      if (Trim(fields[0]) != kWavelengthHeader || fields.size() < 2) {
        Fail(source, lineNo, "header must be 'wavelength_nm,<column>,...'");
      }
      for (std::size_t f = 1; f < fields.size(); ++f) {
        const std::string_view name = Trim(fields[f]);
        if (name.empty()) Fail(source, lineNo, "empty column name in header");
        csv.columns.emplace_back(name);
      }
      csv.values.resize(csv.columns.size());
      haveHeader = true;
      continue;
    }
    if (fields.size() != csv.columns.size() + 1) {
      Fail(source, lineNo,
           "expected " + std::to_string(csv.columns.size() + 1) + " fields, found " +
               std::to_string(fields.size()));
    }
    int nm = 0;
    if (!ParseNumber(Trim(fields[0]), nm)) {
      Fail(source, lineNo,
           "wavelength '" + std::string(Trim(fields[0])) + "' is not a whole number");
    }
    const std::size_t rows = csv.values[0].size();
    if (rows == 0) {
      csv.firstNm = nm;
    } else {
      const int step = nm - previousNm;
      if (step <= 0) Fail(source, lineNo, "wavelengths must increase");
      if (rows == 1) csv.stepNm = step;
      if (step != csv.stepNm) {
        Fail(source, lineNo,
             "wavelength step " + std::to_string(step) + " nm differs from " +
                 std::to_string(csv.stepNm) + " nm");
      }
    }
    previousNm = nm;
    for (std::size_t c = 0; c < csv.columns.size(); ++c) {
      const std::string_view field = Trim(fields[c + 1]);
      double value = 0.0;
      if (!ParseNumber(field, value) || !std::isfinite(value)) {
        Fail(source, lineNo,
             "value '" + std::string(field) + "' in column '" + csv.columns[c] +
                 "' is not a finite number");
      }
      csv.values[c].push_back(value);
    }
  }
  if (!haveHeader) throw CieDataError(source + ": empty file");
  if (csv.values[0].size() < 2) throw CieDataError(source + ": fewer than two data rows");
  return csv;
}

SpectralCsv ReadSpectralCsv(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CieDataError(path.string() + ": cannot open file");
  return ParseSpectralCsv(in, path.filename().string());
}

}  // namespace velquor::weight_tables
