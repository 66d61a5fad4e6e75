#include "demo_data.h"

#include <cmath>

#include "sample_set.h"
#include "velquor/frame/constants.h"
#include "velquor/strength/adjust_to_strength.h"

namespace velquor::cli {

namespace {

constexpr const char* kStandardName = "orange";
constexpr double kShiftWidth = 30.0;  // nm

// Applies the strength change and the shade shift of `batch` to the standard's curve.
CKSData DeriveBatch(const CKSData& standard, const DemoBatch& batch) {
  CStrengthSettings settings;
  settings.targetPercent = batch.strength;
  CKSData curve;
  AdjustToStrength(settings, standard, false, curve, 100.0);
  for (std::size_t i = 0; i < CKSData::kLength; ++i) {
    const double nm = kFirstWavelength + kWavelengthStep * static_cast<double>(i);
    const double x = (nm - batch.shiftCentre) / kShiftWidth;
    curve[i] *= 1.0 + batch.shiftHeight * std::exp(-x * x);
    if (batch.dropout && nm >= 500 && nm <= 520) curve[i] = kMissing;
  }
  return curve;
}

}  // namespace

const std::vector<DemoBatch>& DemoBatches() {
  static const std::vector<DemoBatch> kBatches = {
      {"B01 on target", 100.4, 0.0, 560, false},
      {"B02 weak", 96.0, 0.0, 560, false},
      {"B03 strong", 103.5, 0.0, 560, false},
      {"B04 redder", 100.0, 0.06, 650, false},
      {"B05 yellower", 99.0, 0.08, 570, false},
      {"B06 weak, greener", 95.0, 0.10, 520, false},
      {"B07 bluer", 101.0, 0.15, 450, false},
      {"B08 strong, less red", 104.5, -0.05, 640, false},
      {"B09 reading incomplete", 100.0, 0.0, 560, true},
  };
  return kBatches;
}

bool BuildDemoSamples(QcSample& standard, std::vector<QcSample>& batches,
                      std::vector<std::string>& notes, std::string& error) {
  SampleSet set;
  if (!LoadSampleSetFromCsv(DemoSpectraCsv(), "colorchecker_ohta_380_780_5nm.csv", ReadOptions{},
                            set, error)) {
    return false;
  }
  const QcSample* found = nullptr;
  for (const QcSample& sample : set.samples) {
    if (sample.name == kStandardName) found = &sample;
  }
  if (found == nullptr) {
    error = "the embedded spectra have no sample named " + std::string(kStandardName);
    return false;
  }
  standard = *found;
  standard.name = "orange (ColorChecker)";
  batches.clear();
  for (const DemoBatch& batch : DemoBatches()) {
    QcSample sample;
    sample.name = batch.name;
    sample.curve = DeriveBatch(found->curve, batch);
    sample.hasMissing = batch.dropout;
    batches.push_back(std::move(sample));
  }
  notes = set.notes;
  return true;
}

}  // namespace velquor::cli
