// Writing spectra as a CGATS.17 text file, keeping the file's other columns and header.
//
// The output is: the file identifier ("CGATS.17" when the file had none), the header
// keywords as read, NUMBER_OF_FIELDS, the data format, NUMBER_OF_SETS and the data, one
// sample per line, fields separated by TABs. Numbers are written in the shortest form that
// reads back exactly; a missing spectral value is written "" (which cgats_reader.h reads as
// missing); text fields are quoted unless they are numbers.
//
// Column names must be single tokens in CGATS: blanks, quotes and '#' in a name become '_',
// and a name that then repeats an earlier one gets "_2", "_3" ... A file read from CSV has its
// name column written as SAMPLE_NAME and its id column as SAMPLE_ID (unless those names are
// taken), so that CGATS tools find them; spectral columns whose names are not CGATS spectral
// names ("380" from a CSV header) are written SPECTRAL_NM<nm>.
#pragma once

#include <string>

#include "velquor/io/csv_spectra.h"
#include "velquor/io/measurement_file.h"

namespace velquor {

struct CgatsWriteOptions {
  SpectralColumnNames spectralNames = SpectralColumnNames::kKeep;
};

// The CGATS text of `file`. Returns false only when memory runs out.
bool FormatCgats(const MeasurementFile& file, const CgatsWriteOptions& options, std::string& out) noexcept;

// Writes `file` as CGATS to `path` atomically (see atomic_file.h).
MeasurementStatus WriteCgatsFile(const std::string& path, const MeasurementFile& file,
                                 const CgatsWriteOptions& options = {}) noexcept;

}  // namespace velquor
