#include "sample_set.h"

#include "velquor/io/csv_spectra.h"
#include "velquor/io/measurement_io.h"
#include "velquor/io/spectral_grid_mapping.h"

namespace velquor::cli {

namespace {

bool MapSamples(SampleSet& set, std::string& error) {
  std::vector<MappedSample> mapped;
  SpectralGridMapping mapping;
  const MeasurementStatus status = MapMeasurementFile(set.file, mapped, &mapping);
  if (!status) {
    error = status.error.Message();
    return false;
  }
  set.notes.push_back(set.source + ": " + std::to_string(set.file.samples.size()) + " samples; " +
                      set.file.DescribeScale() + "; " + mapping.Describe());
  for (const MeasurementNote& note : set.file.notes) {
    set.notes.push_back(set.source + ":" + std::to_string(note.line) + ": " + note.text);
  }
  set.samples.resize(mapped.size());
  for (std::size_t i = 0; i < mapped.size(); ++i) {
    QcSample& sample = set.samples[i];
    sample.name = set.file.SampleLabel(i);
    sample.line = set.file.samples[i].line;
    sample.curve = mapped[i].curve;
    sample.hasMissing = mapped[i].hasMissing;
  }
  return true;
}

}  // namespace

bool LoadSampleSet(const std::string& path, const ReadOptions& options, SampleSet& out,
                   std::string& error, bool keepRows) {
  SampleSet set;
  set.source = path;
  const MeasurementStatus status = ReadMeasurementFile(path, options, set.file);
  if (!status) {
    error = status.error.Message();
    return false;
  }
  if (!MapSamples(set, error)) return false;
  if (!keepRows) std::vector<MeasurementSample>().swap(set.file.samples);
  out = std::move(set);
  return true;
}

bool LoadSampleSetFromCsv(std::string_view text, const std::string& source,
                          const ReadOptions& options, SampleSet& out, std::string& error) {
  SampleSet set;
  set.source = source;
  const MeasurementStatus status = ParseCsvSpectra(text, source, options, set.file);
  if (!status) {
    error = status.error.Message();
    return false;
  }
  if (!MapSamples(set, error)) return false;
  out = std::move(set);
  return true;
}

bool ParseScale(std::string_view text, ReflectanceScale& scale) {
  if (text == "fraction" || text == "fractions") {
    scale = ReflectanceScale::kFraction;
  } else if (text == "percent") {
    scale = ReflectanceScale::kPercent;
  } else if (text == "auto") {
    scale = ReflectanceScale::kAuto;
  } else {
    return false;
  }
  return true;
}

}  // namespace velquor::cli
