// Measured spectra as read from (and written to) an instrument's export file: CGATS.17 text
// (cgats_reader.h, cgats_writer.h) or CSV (csv_spectra.h). The readers fill a MeasurementFile;
// spectral_grid_mapping.h brings its spectra onto the library's 360-750 nm grid.
//
// A file's columns are of two kinds:
//  - spectral columns, one per wavelength, recognised by name (see ParseSpectralColumnName);
//    their values are numbers, held as read (fractions or percent, see ReflectanceScale);
//  - every other column (SAMPLE_ID, SAMPLE_NAME, colorimetric values, dates ...), held as
//    text and written back unchanged.
//
// Errors are returned, never thrown: a reader returns a MeasurementStatus whose error names
// the file and the line. A value left empty (or written NA, N/A, NaN or -) is a missing value:
// it is stored as the library's missing marker kMissing, the file still reads, and a note
// names the sample and the wavelengths it lacks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "velquor/io/line_reader.h"

namespace velquor {

// How spectral values are written in a file.
enum class ReflectanceScale {
  kAuto,      // decide from the values (reading only): see kPercentDetectionThreshold
  kFraction,  // 0..1
  kPercent,   // 0..100
};

// Detection of the scale (ReflectanceScale::kAuto). A value above kPercentDetectionThreshold
// looks like percent. The file reads as percent when its kPercentDetectionQuantile quantile
// (nearest rank, over every spectral value read, missing values left out) is above the
// threshold, otherwise as fractions; so a slip or two ("25" typed for "0.21") among many
// fraction values does not turn the file into percent, as judging by the largest value would.
// Fluorescent samples rarely exceed 2 as a fraction, and percent data mostly at or below 2 %
// (a set of deep blacks) is rare; either can be told to the reader with ReadOptions::scale.
// Whatever decides the scale, a sample whose largest value looks like the other scale, in a
// file whose other samples agree with the scale read, is named in a note.
inline constexpr double kPercentDetectionThreshold = 2.0;
inline constexpr double kPercentDetectionQuantile = 0.9;

// Most columns a file may have. Real exports have a few hundred (1 nm from 300 to 1100 nm is
// 801); the limit keeps a hostile header from costing memory and time per row.
inline constexpr std::size_t kMaxColumns = 4096;

enum class MeasurementFormat { kCgats, kCsv };

// Where and what: "<file>:<line>: <text>", or "<file>: <text>" when no line applies.
struct MeasurementError {
  std::string file;
  std::size_t line = 0;  // 1-based; 0 = the file as a whole (or no file)
  std::string text;

  std::string Message() const;
};

// The outcome of reading, mapping or writing: ok, or the first error.
struct MeasurementStatus {
  bool ok = true;
  MeasurementError error;

  explicit operator bool() const { return ok; }
  static MeasurementStatus Failure(std::string file, std::size_t line, std::string text);
};

// How a reader interprets a file.
struct ReadOptions {
  ReflectanceScale scale = ReflectanceScale::kAuto;
};

// A header line of a CGATS file other than the ones the writer makes itself
// (NUMBER_OF_FIELDS, NUMBER_OF_SETS and the data blocks): KEYWORD declarations, ORIGINATOR,
// DESCRIPTOR, CREATED, instrument settings ... `value` is the rest of the line as written
// (quotes kept), so that it is written back unchanged.
struct CgatsKeyword {
  std::string name;
  std::string value;
};

struct MeasurementColumn {
  std::string name;
  bool spectral = false;
  // Spectral: index into MeasurementFile::wavelengths and MeasurementSample::values;
  // otherwise: index into MeasurementSample::fields.
  std::size_t index = 0;
};

struct MeasurementSample {
  std::size_t line = 0;             // the line of its row
  std::vector<std::string> fields;  // the non-spectral fields, unquoted
  std::vector<double> values;       // one per wavelength, as read; kMissing where missing
};

// Something worth telling that did not stop the reading (a missing value, ignored content).
struct MeasurementNote {
  std::size_t line = 0;
  std::string text;
};

struct MeasurementFile {
  std::string source;  // file name for messages
  MeasurementFormat format = MeasurementFormat::kCgats;
  std::string identifier;              // CGATS: the file identifier, e.g. "CGATS.17"
  std::vector<CgatsKeyword> keywords;  // CGATS header, in file order
  std::vector<MeasurementColumn> columns;  // every column, in file order
  std::vector<double> wavelengths;         // nm, in column order
  std::size_t fieldCount = 0;              // number of non-spectral columns
  std::ptrdiff_t idField = -1;    // index into fields of SAMPLE_ID, or -1
  std::ptrdiff_t nameField = -1;  // index into fields of SAMPLE_NAME (CSV: the name column)
  std::size_t formatLine = 0;     // line of the column names
  ReflectanceScale scale = ReflectanceScale::kFraction;  // never kAuto after reading
  bool scaleDetected = false;  // true when `scale` was decided from the values
  double largestValue = 0.0;   // largest spectral value read (missing values left out)
  std::vector<MeasurementSample> samples;
  std::vector<MeasurementNote> notes;
  std::size_t invalidUtf8Line = 0;  // first line with invalid UTF-8 (replaced by U+FFFD), or 0

  // The name a user knows a sample by: its SAMPLE_NAME, else SAMPLE_ID, else "#<n>".
  std::string SampleLabel(std::size_t sample) const;
  // The wavelengths at which `sample` has no value.
  std::vector<double> MissingWavelengths(std::size_t sample) const;
  // Factor that turns the file's values into percent (100 for fractions, 1 for percent).
  double PercentFactor() const;
  // One sentence saying how the values were read, e.g.
  // "spectral values read as fractions (largest value 0.955, detected)".
  std::string DescribeScale() const;
};

// The wavelength named by a spectral column, in nm. Recognised, without regard to case:
// "nm380", "NM_380", "SPECTRAL_NM_380", "SPECTRAL_NM380", "SPEC_380", "R_380",
// "SPECTRAL_380", with a whole or decimal number (e.g. "SPECTRAL_NM_382.5"). With
// `allowPlain` (CSV headers) also "380", "380nm" and "380 nm". The wavelength must lie in
// (0, 100000) nm.
bool ParseSpectralColumnName(std::string_view name, bool allowPlain, double& nanometres);

// Parses a number written in the C locale (optional sign, digits, optional fraction and
// exponent; with `decimalComma` a ',' instead of the '.'). The whole text must be the number
// and it must be finite.
bool ParseMeasurementNumber(std::string_view text, bool decimalComma, double& value);

// True for the texts that stand for a missing value: empty, "NA", "N/A", "NaN", "-"
// (without regard to case).
bool IsMissingValueText(std::string_view text);

// Shortest text that reads back as exactly `value` ("0.048", "12.5", "1e-05").
std::string FormatMeasurementNumber(double value);
// The same, appended to `out` (no temporary string: the writers call it per value).
void AppendMeasurementNumber(std::string& out, double value);

// Decides the scale after reading (`requested` kAuto: see kPercentDetectionQuantile), adds a
// note for every sample with missing values and one when the samples disagree on the scale.
void FinishMeasurementFile(MeasurementFile& file, ReflectanceScale requested);

// The library text `id` (see resources/strings/measurement_files.txt) with "%1" ... "%9"
// replaced by `args`; "%%" is a percent sign.
std::string FormatMeasurementText(std::uint32_t id, std::initializer_list<std::string_view> args = {});

// Appends a non-spectral column with one text per sample (an empty text where `values` is
// short), e.g. computed XYZ or CIELAB beside the spectra.
void AddMeasurementColumn(MeasurementFile& file, std::string name, const std::vector<std::string>& values);

// For the readers: the error for a line reader that stopped with `status` (too long a line,
// binary data, a read error, or kEnd on an empty input).
MeasurementStatus LineReaderFailure(const LineReader& reader, LineReader::Status status,
                                    const std::string& source);

// For the readers: `line` (line `lineNumber`) with each invalid UTF-8 sequence replaced by
// U+FFFD, so that every text read is valid UTF-8; a repaired line is kept in `buffer`. The
// first repaired line of `file` adds a note naming the file and the line.
std::string_view RepairUtf8Line(std::string_view line, std::size_t lineNumber, std::string& buffer,
                                MeasurementFile& file);

// For the readers: opens `path`, hands its lines to `read` and closes it; a file that cannot
// be opened is an error naming the file and the system's reason. A regular file of up to
// 1 GiB is read whole first (the reader then hands out lines of text held in memory, see
// LineReader::UnreadText); anything else is read in blocks.
MeasurementStatus ReadLinesOfFile(const std::string& path,
                                  const std::function<MeasurementStatus(LineReader&)>& read);

// For the readers: `value` as quoted back in a message, cut after 40 bytes (never inside a
// UTF-8 character) with "..." appended.
std::string ShortenForMessage(std::string_view value);

// For the readers: appends the column `name` of the header at `line` to `file`, a spectral one
// when ParseSpectralColumnName (with `allowPlain`) reads a wavelength in it. A second column of
// the same wavelength is an error; `wavelengthColumns` maps the wavelengths met so far to
// their column.
MeasurementStatus AddReadColumn(MeasurementFile& file, std::string name, bool allowPlain, std::size_t line,
                                std::unordered_map<double, std::size_t>& wavelengthColumns);

// For the readers: appends the sample of the row at `line`, whose cell of column i is
// `cell(i)` (one per column): text cells as read, spectral ones as numbers (a missing-value
// text gives kMissing; `decimalComma` as in ParseMeasurementNumber). A spectral cell that is
// not a number is an error.
MeasurementStatus AddReadSample(MeasurementFile& file, std::size_t line, bool decimalComma,
                                const std::function<std::string_view(std::size_t)>& cell);

// A reader of lines into a measurement file, as ReadCgats and ReadCsvSpectra.
using MeasurementLineReader = MeasurementStatus (*)(LineReader& reader, const std::string& source,
                                                    const ReadOptions& options, MeasurementFile& out) noexcept;

// For the readers: `read` over text held in memory, and over the file at `path`.
MeasurementStatus ParseMeasurementText(MeasurementLineReader read, std::string_view text, const std::string& source,
                                       const ReadOptions& options, MeasurementFile& out) noexcept;
MeasurementStatus ReadMeasurementFileWith(MeasurementLineReader read, const std::string& path,
                                          const ReadOptions& options, MeasurementFile& out) noexcept;

// For the readers: empties `out`, names it after `source` and `format` and runs `parse` on
// it, turning an exception (only memory exhaustion can raise one) into an error status.
MeasurementStatus ReadIntoMeasurementFile(const std::string& source, MeasurementFormat format, MeasurementFile& out,
                                          const std::function<MeasurementStatus()>& parse) noexcept;

// For the readers: runs `read`, turning an exception (only memory exhaustion can raise one)
// into an error status for `source`.
MeasurementStatus ReadWithoutThrowing(const std::string& source,
                                      const std::function<MeasurementStatus()>& read) noexcept;

// For the writers: builds the file's text with `format` (false when memory runs out) and
// writes it to `path` atomically, so an interrupted run never leaves half a file.
MeasurementStatus WriteFormattedFile(const std::string& path,
                                     const std::function<bool(std::string&)>& format) noexcept;

}  // namespace velquor
