// Helpers shared by the measurement-file tests.
#pragma once

#include <string>

#include "velquor/io/cgats_reader.h"
#include "velquor/io/csv_spectra.h"

namespace velquor::test {

// Undoes the escapes of the io_ reference tables: \n, \t, \\, \xHH (one byte) and \{N} (the
// character before, N more times).
inline std::string Unescape(const std::string& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i] == '\\' && i + 1 < text.size() ? text[++i] : '\0';
    if (c == '\0') out += text[i];
    if (c == 'n' || c == 't' || c == '\\') out += c == 'n' ? '\n' : c == 't' ? '\t' : '\\';
    if (c == 'x') out += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16)), i += 2;
    if (c == '{') {
      const std::size_t end = text.find('}', i);
      out.append(std::stoul(text.substr(i + 1, end - i - 1)), out.back());
      i = end;
    }
  }
  return out;
}

// Reads `text` as a CGATS or a CSV file.
inline MeasurementStatus Parse(bool csv, const std::string& text, const std::string& name, MeasurementFile& file,
                               const ReadOptions& options = {}) {
  return csv ? ParseCsvSpectra(text, name, options, file) : ParseCgats(text, name, options, file);
}

}  // namespace velquor::test
