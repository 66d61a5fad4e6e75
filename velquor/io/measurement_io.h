// Reading and writing a measurement file in the format its name says: ".csv" (any case) is
// CSV (csv_spectra.h), every other name (".cgats", ".txt", ".ti3", ".it8" ...) is CGATS.17
// (cgats_reader.h, cgats_writer.h). Nothing throws.
#pragma once

#include <string>
#include <string_view>

#include "velquor/io/measurement_file.h"

namespace velquor {

// The format a file name stands for.
MeasurementFormat MeasurementFormatOfPath(std::string_view path);

MeasurementStatus ReadMeasurementFile(const std::string& path, const ReadOptions& options,
                                      MeasurementFile& out) noexcept;

// Writes atomically (see atomic_file.h), with each writer's default options.
MeasurementStatus WriteMeasurementFile(const std::string& path, const MeasurementFile& file) noexcept;

}  // namespace velquor
