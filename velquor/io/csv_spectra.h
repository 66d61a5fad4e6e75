// Spectra in CSV files: one sample per row, a header line naming the columns.
//
// Reading:
//  - the first line that is neither blank nor a '#' comment is the header; the delimiter is
//    the one of ',', ';' and TAB that occurs most often in it outside quotes (',' on a tie);
//  - header names that give a wavelength ("380", "380nm", "380 nm", or any CGATS spectral
//    name such as "nm380" or "SPECTRAL_NM_380", see ParseSpectralColumnName) are spectral
//    columns; every other column is kept as text;
//  - the name column is the first column called SAMPLE_NAME, NAME or SAMPLE (without regard
//    to case), the id column the first called SAMPLE_ID or ID; with neither, the first
//    non-spectral column names the samples;
//  - fields may be quoted ("..." with "" for a quote inside) but may not span lines; blanks
//    around fields are dropped; with ';' or TAB as delimiter a decimal comma is accepted;
//  - an empty spectral field (or NA, N/A, NaN, -) is a missing value; blank lines are skipped.
// Errors name the file and line (see cgats_reader.h for the kinds). Nothing throws.
//
// Writing: the header and one row per sample, columns in the file's order, ',' as delimiter,
// numbers in the shortest form that reads back exactly, missing values as empty fields. Text
// holding ',', ';', TAB or a quote is quoted; a text column whose name would read as a
// wavelength gets the prefix "X_", and a row of nothing but empty fields starts with "", so
// that the output reads back as the same table.
#pragma once

#include <string>
#include <string_view>

#include "velquor/io/line_reader.h"
#include "velquor/io/measurement_file.h"

namespace velquor {

MeasurementStatus ReadCsvSpectraFile(const std::string& path, const ReadOptions& options,
                                     MeasurementFile& out) noexcept;
MeasurementStatus ParseCsvSpectra(std::string_view text, const std::string& source,
                                  const ReadOptions& options, MeasurementFile& out) noexcept;
MeasurementStatus ReadCsvSpectra(LineReader& reader, const std::string& source,
                                 const ReadOptions& options, MeasurementFile& out) noexcept;

// How spectral columns are named when written.
enum class SpectralColumnNames {
  kKeep,        // as read (CGATS output: names that are not CGATS spectral names become SPECTRAL_NM<nm>)
  kPlain,       // "380"
  kSpectralNm,  // "SPECTRAL_NM380"
  kNm,          // "nm380"
};

struct CsvWriteOptions {
  SpectralColumnNames spectralNames = SpectralColumnNames::kPlain;
};

// The CSV text of `file`. Returns false only when memory runs out.
bool FormatCsvSpectra(const MeasurementFile& file, const CsvWriteOptions& options, std::string& out) noexcept;

// Writes `file` as CSV to `path` atomically (a temporary file renamed over `path`): an error
// leaves any earlier file at `path` as it was and no partial file behind.
MeasurementStatus WriteCsvSpectraFile(const std::string& path, const MeasurementFile& file,
                                      const CsvWriteOptions& options = {}) noexcept;

// The name of spectral column `column` of `file` in the given style.
std::string SpectralColumnName(const MeasurementFile& file, const MeasurementColumn& column,
                               SpectralColumnNames style);

}  // namespace velquor
