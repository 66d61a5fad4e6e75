#include "sample_set.h"

#include "velquor/io/csv_spectra.h"
#include "velquor/io/measurement_io.h"
#include "velquor/io/spectral_grid_mapping.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/thread_pool.h"

namespace velquor::cli {

namespace {

// Samples per chunk of the mapping's split over threads (some 50 microseconds).
constexpr std::size_t kMapChunk = 512;

// Maps every sample straight into its QcSample (as MapMeasurementFile maps, without the
// intermediate curves: a batch may hold a million samples), split over threads.
bool MapSamples(SampleSet& set, std::string& error) {
  SpectralGridMapping mapping;
  MeasurementStatus status = mapping.Build(set.file.wavelengths);
  if (!status) {
    status.error.file = set.file.source;
    status.error.line = set.file.formatLine;
    error = status.error.Message();
    return false;
  }
  set.notes.push_back(set.source + ": " + std::to_string(set.file.samples.size()) + " samples; " +
                      set.file.DescribeScale() + "; " + mapping.Describe());
  for (const MeasurementNote& note : set.file.notes) {
    set.notes.push_back(set.source + ":" + std::to_string(note.line) + ": " + note.text);
  }
  set.samples.resize(set.file.samples.size());
  const double toPercent = set.file.PercentFactor();
  ParallelFor(set.samples.size(), kMapChunk, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      QcSample& sample = set.samples[i];
      sample.name = set.file.SampleLabel(i);
      sample.line = set.file.samples[i].line;
      if (!mapping.Apply(set.file.samples[i].values, toPercent, sample.curve)) sample.curve.Fill(kMissing);
      bool missing = false;
      for (std::size_t k = 0; k < CKSData::kLength; ++k) missing = missing || IsMissing(sample.curve[k]);
      sample.hasMissing = missing;
    }
  });
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
