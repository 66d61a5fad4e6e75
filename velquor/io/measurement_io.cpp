#include "velquor/io/measurement_io.h"

#include "velquor/io/cgats_reader.h"
#include "velquor/io/cgats_writer.h"
#include "velquor/io/csv_spectra.h"

namespace velquor {

MeasurementFormat MeasurementFormatOfPath(std::string_view path) {
  if (path.size() < 4) return MeasurementFormat::kCgats;
  const std::string_view ending = path.substr(path.size() - 4);
  std::string lower(ending);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower == ".csv" ? MeasurementFormat::kCsv : MeasurementFormat::kCgats;
}

MeasurementStatus ReadMeasurementFile(const std::string& path, const ReadOptions& options,
                                      MeasurementFile& out) noexcept {
  return MeasurementFormatOfPath(path) == MeasurementFormat::kCsv ? ReadCsvSpectraFile(path, options, out)
                                                                  : ReadCgatsFile(path, options, out);
}

MeasurementStatus WriteMeasurementFile(const std::string& path, const MeasurementFile& file) noexcept {
  return MeasurementFormatOfPath(path) == MeasurementFormat::kCsv ? WriteCsvSpectraFile(path, file)
                                                                  : WriteCgatsFile(path, file);
}

}  // namespace velquor
