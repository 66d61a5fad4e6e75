// A measurement file's samples on the library's grid, ready for the commands: read
// (CGATS or CSV, measurement_io.h), mapped to 360-750 nm at 10 nm, and described.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qc_report.h"
#include "velquor/io/measurement_file.h"

namespace velquor::cli {

struct SampleSet {
  std::string source;              // the file name as given
  MeasurementFile file;            // as read (its rows only when kept, for writing back)
  std::vector<QcSample> samples;   // name, line and curve of each sample
  std::vector<std::string> notes;  // scale, mapping, missing values
};

// Reads and maps `path`. False with a message naming the file (and the line) when the file
// cannot be read or its wavelengths cannot be mapped. Unless `keepRows`, the file's rows are
// released once mapped (file.samples is then empty): large batches need only the curves.
bool LoadSampleSet(const std::string& path, const ReadOptions& options, SampleSet& out,
                   std::string& error, bool keepRows = false);
// The same for CSV text held in memory (the demo's embedded spectra).
bool LoadSampleSetFromCsv(std::string_view text, const std::string& source,
                          const ReadOptions& options, SampleSet& out, std::string& error);

// "fraction", "percent" or "auto" for ReadOptions::scale; false for anything else.
bool ParseScale(std::string_view text, ReflectanceScale& scale);

}  // namespace velquor::cli
