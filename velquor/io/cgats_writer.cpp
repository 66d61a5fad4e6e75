#include "velquor/io/cgats_writer.h"

#include <unordered_set>
#include <vector>

#include "velquor/io/measurement_text_ids.h"
#include "velquor/frame/numeric.h"

namespace velquor {

namespace {

namespace text = measurement_text;

bool IsReservedWord(std::string_view word) {
  return word == "BEGIN_DATA_FORMAT" || word == "END_DATA_FORMAT" || word == "BEGIN_DATA" || word == "END_DATA" ||
         word == "NUMBER_OF_FIELDS" || word == "NUMBER_OF_SETS";
}

// A name as one CGATS token that reads back as the same kind of thing: blanks, quotes, '#'
// and control bytes become '_'; a reserved word, or a text column's name that would read as
// a spectral column, gets the prefix "X_".
std::string TokenName(std::string_view name, bool textColumn = false) {
  std::string token(name);
  if (token.empty()) token = "FIELD";
  for (char& c : token) {
    if (c == ' ' || c == '\t' || c == '"' || c == '\'' || c == '#' || static_cast<unsigned char>(c) < 0x20) c = '_';
  }
  double nm = 0.0;
  if (IsReservedWord(token) || (textColumn && ParseSpectralColumnName(token, false, nm))) token.insert(0, "X_");
  return token;
}

// The names the data format gets, one per column, unique.
std::vector<std::string> FieldNames(const MeasurementFile& file, const CgatsWriteOptions& options) {
  std::vector<std::string> names;
  names.reserve(file.columns.size());
  bool hasSampleName = false;
  bool hasSampleId = false;
  for (const MeasurementColumn& column : file.columns) {
    hasSampleName = hasSampleName || column.name == "SAMPLE_NAME";
    hasSampleId = hasSampleId || column.name == "SAMPLE_ID";
  }
  for (const MeasurementColumn& column : file.columns) {
    std::string name;
    if (column.spectral) {
      name = SpectralColumnName(file, column, options.spectralNames);
      double nm = 0.0;
      if (!ParseSpectralColumnName(name, false, nm)) {
        name = SpectralColumnName(file, column, SpectralColumnNames::kSpectralNm);
      }
    } else if (file.format == MeasurementFormat::kCsv && !hasSampleName &&
               static_cast<std::ptrdiff_t>(column.index) == file.nameField) {
      name = "SAMPLE_NAME";
    } else if (file.format == MeasurementFormat::kCsv && !hasSampleId &&
               static_cast<std::ptrdiff_t>(column.index) == file.idField) {
      name = "SAMPLE_ID";
    } else {
      name = TokenName(column.name, true);
    }
    names.push_back(std::move(name));
  }
  std::unordered_set<std::string> used;
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::string& name = names[i];
    if (used.insert(name).second) continue;
    for (int suffix = 2;; ++suffix) {
      // "nm" + "_2" would read as a spectral column: a text column's new name must not.
      std::string candidate = name;
      candidate.append("_").append(std::to_string(suffix));
      double nm = 0.0;
      if (!file.columns[i].spectral && ParseSpectralColumnName(candidate, false, nm)) candidate.insert(0, "X_");
      if (used.insert(candidate).second) {
        name = std::move(candidate);
        break;
      }
    }
  }
  return names;
}

void AppendTextField(std::string& out, std::string_view field) {
  double number = 0.0;
  if (!field.empty() && ParseMeasurementNumber(field, false, number)) {
    out.append(field);
    return;
  }
  // Quote with " unless the text holds one; a text holding both quotes loses its ".
  const bool hasDouble = field.find('"') != std::string_view::npos;
  const bool hasSingle = field.find('\'') != std::string_view::npos;
  const char quote = hasDouble && !hasSingle ? '\'' : '"';
  out.push_back(quote);
  for (const char c : field) {
    if (c == quote) {
      out.push_back('\'');
    } else if (static_cast<unsigned char>(c) < 0x20 && c != '\t') {
      out.push_back(' ');
    } else {
      out.push_back(c);
    }
  }
  out.push_back(quote);
}

}  // namespace

bool FormatCgats(const MeasurementFile& file, const CgatsWriteOptions& options, std::string& out) noexcept {
  try {
    out.clear();
    out.reserve((file.samples.size() + 8) * (file.columns.size() * 8 + 16));
    out.append(file.identifier.empty() ? std::string("CGATS.17") : TokenName(file.identifier));
    out.push_back('\n');
    for (const CgatsKeyword& keyword : file.keywords) {
      out.append(TokenName(keyword.name));
      if (!keyword.value.empty()) {
        out.push_back('\t');
        for (const char c : keyword.value) out.push_back(c == '\n' || c == '\r' ? ' ' : c);
      }
      out.push_back('\n');
    }
    const std::vector<std::string> names = FieldNames(file, options);
    out.append("NUMBER_OF_FIELDS\t" + std::to_string(names.size()) + "\nBEGIN_DATA_FORMAT\n");
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (i > 0) out.push_back('\t');
      out.append(names[i]);
    }
    out.append("\nEND_DATA_FORMAT\nNUMBER_OF_SETS\t" + std::to_string(file.samples.size()) + "\nBEGIN_DATA\n");
    for (const MeasurementSample& sample : file.samples) {
      for (std::size_t i = 0; i < file.columns.size(); ++i) {
        if (i > 0) out.push_back('\t');
        const MeasurementColumn& column = file.columns[i];
        if (!column.spectral) {
          AppendTextField(out, column.index < sample.fields.size() ? std::string_view(sample.fields[column.index])
                                                                   : std::string_view());
          continue;
        }
        const double value = column.index < sample.values.size() ? sample.values[column.index] : kMissing;
        if (IsMissing(value)) {
          out.append("\"\"");
        } else {
          AppendMeasurementNumber(out, value);
        }
      }
      out.push_back('\n');
    }
    out.append("END_DATA\n");
    return true;
  } catch (...) {
    out.clear();
    return false;
  }
}

MeasurementStatus WriteCgatsFile(const std::string& path, const MeasurementFile& file,
                                 const CgatsWriteOptions& options) noexcept {
  return WriteFormattedFile(
      path, [&](std::string& content) { return FormatCgats(file, options, content); });
}

}  // namespace velquor
