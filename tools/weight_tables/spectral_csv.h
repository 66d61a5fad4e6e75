// Reading of spectral CSV files for the weighting-table generator.
//
// Format: one header line "wavelength_nm,<name>,<name>,...", then one row per wavelength on a
// regular grid of whole nanometres (strictly increasing, constant step), every row with one
// number per header column. Blank lines and a trailing '\r' are ignored. Numbers are parsed
// locale-independently. Anything else is reported as a CieDataError naming the file, the line
// and what is wrong; the generator must never build a table from half-read data.
#ifndef VELQUOR_TOOLS_WEIGHT_TABLES_SPECTRAL_CSV_H
#define VELQUOR_TOOLS_WEIGHT_TABLES_SPECTRAL_CSV_H

#include <filesystem>
#include <istream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace velquor::weight_tables {

// Missing, unreadable or malformed source data.
class CieDataError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// One column of a spectral CSV: values at firstNm, firstNm + stepNm, ...
struct Spectrum {
  int firstNm = 0;
  int stepNm = 1;
  std::vector<double> values;

  int LastNm() const { return firstNm + stepNm * (static_cast<int>(values.size()) - 1); }
};

struct SpectralCsv {
  std::string source;                // file name, for messages
  std::vector<std::string> columns;  // value columns, header order
  int firstNm = 0;
  int stepNm = 0;
  std::vector<std::vector<double>> values;  // values[column][row]

  // The named column; throws CieDataError if the file has no such column.
  Spectrum Column(std::string_view name) const;
};

// Parses CSV text; `source` names it in error messages.
SpectralCsv ParseSpectralCsv(std::istream& in, const std::string& source);

// Reads and parses a file; a missing or unreadable file is a CieDataError.
SpectralCsv ReadSpectralCsv(const std::filesystem::path& path);

}  // namespace velquor::weight_tables

#endif  // VELQUOR_TOOLS_WEIGHT_TABLES_SPECTRAL_CSV_H
