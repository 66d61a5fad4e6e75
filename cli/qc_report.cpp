#include "qc_report.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "tolerance_contour.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/data/dword_array.h"
#include "velquor/difference/color_difference.h"
#include "velquor/difference/difference_kernel.h"
#include "velquor/difference/sample_for_system.h"
#include "velquor/difference/shade_descriptor.h"
#include "velquor/difference/system_catalogue.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/thread_pool.h"
#include "velquor/indices/index_formulas.h"
#include "velquor/strength/strength.h"

namespace velquor::cli {

namespace {

// Everything one sample needs under one condition.
struct Prepared {
  CColorSample sample;
  CValueVector3 triple;
};

// The sample for the difference system and the CIELAB values of `result`, from its X, Y, Z.
void PrepareFromXyz(const Condition& condition, const DifferenceChoice& system, QcResult& result,
                    Prepared& prepared) {
  FillColorSample(result.xyz, system.system, condition.illuminant, condition.observer,
                  system.weights.data(), prepared.sample, prepared.triple);
  if (FillsCieLab(system.system)) {
    result.lab = prepared.sample.coordinates;  // already computed for the system
  } else {
    XYZToLab(condition.illuminant, condition.observer, result.xyz, result.lab);
  }
}

// False (with the reason) when the sample is rejected under `condition`.
bool Prepare(const QcSample& sample, const Condition& condition, const DifferenceChoice& system,
             QcResult& result, Prepared& prepared, std::string& why) {
  if (!SampleXyz(sample, condition, result.xyz, why)) {
    for (std::size_t k = 0; k < 5; ++k) result.lab[k] = kMissing;
    return false;
  }
  PrepareFromXyz(condition, system, result, prepared);
  return true;
}

// Appends a sample in the layout of the difference batch (difference_kernel.h).
void PackSample(const CColorSample& sample, std::vector<double>& samples) {
  samples.insert(samples.end(), sample.xyz.GetData(), sample.xyz.GetData() + 3);
  samples.insert(samples.end(), sample.coordinates.GetData(), sample.coordinates.GetData() + 5);
}

// Trials per chunk of the comparison's split over threads: a trial costs about a microsecond
// (X, Y, Z, the sample, the difference and the shade words), a chunk some 250.
constexpr std::size_t kTrialChunk = 256;

QcSummary Summarise(const std::vector<QcSample>& trials, std::size_t condition) {
  QcSummary summary;
  std::vector<double> totals;
  for (const QcSample& trial : trials) {
    const QcResult& result = trial.results[condition];
    ++summary.trials;
    if (!result.computed) {
      ++summary.rejected;
      continue;
    }
    ++(result.pass ? summary.passed : summary.failed);
    totals.push_back(std::fabs(result.difference[6]));
  }
  if (totals.empty()) return summary;
  std::sort(totals.begin(), totals.end(), std::greater<>());
  double sum = 0.0;
  for (double total : totals) sum += total;
  summary.mean = sum / static_cast<double>(totals.size());
  summary.max = totals.front();
  // The worst tenth, rounded up, at least one trial.
  const std::size_t worst = std::max<std::size_t>(1, (totals.size() + 9) / 10);
  double worstSum = 0.0;
  for (std::size_t i = 0; i < worst; ++i) worstSum += totals[i];
  summary.worst10 = worstSum / static_cast<double>(worst);
  return summary;
}

}  // namespace

std::vector<std::string> DifferenceSlotLabels(int system) {
  const std::array<std::string, 7> own = LoadDifferenceSlotLabels(system);
  std::vector<std::string> labels(own.begin(), own.end());
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (labels[i].empty()) labels[i] = "(slot " + std::to_string(i + 1) + ")";
  }
  return labels;
}

std::string MissingWavelengthText(const CKSData& curve) {
  std::string text;
  for (std::size_t i = 0; i < CKSData::kLength; ++i) {
    if (!IsMissing(curve[i])) continue;
    text += (text.empty() ? "" : ", ") +
            std::to_string(kFirstWavelength + kWavelengthStep * static_cast<int>(i));
  }
  return text.empty() ? text : text + " nm";
}

namespace {

// The rejection rule of SampleXyz, for X, Y, Z already computed (`computed`, read only when the
// sample has no missing point).
bool AcceptXyz(const QcSample& sample, const double* computed, CValueVector3& xyz, std::string& why) {
  if (sample.hasMissing) {
    for (std::size_t k = 0; k < 3; ++k) xyz[k] = kMissing;
    why = "missing values at " + MissingWavelengthText(sample.curve);
    return false;
  }
  for (std::size_t k = 0; k < 3; ++k) xyz[k] = computed[k];
  if (std::isfinite(xyz[0]) && std::isfinite(xyz[1]) && std::isfinite(xyz[2])) return true;
  why = "tristimulus values not finite (spectral values too large)";
  return false;
}

}  // namespace

bool SampleXyz(const QcSample& sample, const Condition& condition, CValueVector3& xyz,
               std::string& why) {
  double computed[3] = {kMissing, kMissing, kMissing};
  if (!sample.hasMissing) {
    ComputeXYZBatch(sample.curve.GetData(), 1, CKSData::kLength, condition.illuminant,
                    condition.observer, computed, 3);
  }
  return AcceptXyz(sample, computed, xyz, why);
}

void SampleXyzBatch(const std::vector<QcSample>& samples, const Condition& condition,
                    std::vector<double>& xyz, std::vector<std::string>& why) {
  xyz.assign(samples.size() * 3, kMissing);
  why.assign(samples.size(), std::string());
  ParallelFor(samples.size(), kTrialChunk, [&](std::size_t begin, std::size_t end) {
    const std::size_t n = end - begin;
    std::vector<double> curves(n * CKSData::kLength, kMissing);
    std::vector<double> computed(n * 3, kMissing);
    for (std::size_t i = 0; i < n; ++i) {
      if (samples[begin + i].hasMissing) continue;
      std::copy_n(samples[begin + i].curve.GetData(), CKSData::kLength,
                  curves.data() + i * CKSData::kLength);
    }
    ComputeXYZBatch(curves.data(), n, CKSData::kLength, condition.illuminant, condition.observer,
                    computed.data(), 3);
    CValueVector3 accepted;
    for (std::size_t i = 0; i < n; ++i) {
      AcceptXyz(samples[begin + i], computed.data() + i * 3, accepted, why[begin + i]);
      for (std::size_t k = 0; k < 3; ++k) xyz[(begin + i) * 3 + k] = accepted[k];
    }
  });
}

bool QcReport::AllPassed() const {
  return std::all_of(summaries.begin(), summaries.end(),
                     [](const QcSummary& s) { return s.failed == 0 && s.rejected == 0; });
}

QcReport ComputeQcReport(const QcSettings& settings, QcSample standard,
                         std::vector<QcSample> trials) {
  QcReport report;
  report.system = settings.system;
  report.tolerance = settings.tolerance;
  report.conditions = settings.conditions;
  report.indices = settings.indices;
  report.withStrength = settings.withStrength;
  report.strength = settings.strength;
  report.columnLabels = DifferenceSlotLabels(settings.system.system);
  report.standard = std::move(standard);
  report.trials = std::move(trials);

  const DifferenceChoice& system = settings.system;
  Prepared standardPrepared;
  QcSample& reference = report.standard;
  for (std::size_t c = 0; c < settings.conditions.size(); ++c) {
    Condition condition = settings.conditions[c];
    EnsureWeightTable(condition.illuminant, condition.observer);
    QcResult& base = reference.results.emplace_back();
    std::string why;
    base.computed = Prepare(reference, condition, system, base, standardPrepared, why);
    if (!base.computed && reference.note.empty()) reference.note = why;
    for (QcSample& trial : report.trials) trial.results.emplace_back();
    // Chunks of trials over threads; in each, X, Y, Z of the whole chunk and the differences
    // of its usable trials through the batch functions (run in the chunk's thread).
    ParallelFor(report.trials.size(), kTrialChunk, [&](std::size_t begin, std::size_t end) {
      const std::size_t n = end - begin;
      std::vector<double> curves(n * CKSData::kLength, kMissing);
      std::vector<double> xyz(n * 3, kMissing);
      for (std::size_t i = 0; i < n; ++i) {
        const QcSample& trial = report.trials[begin + i];
        if (!trial.hasMissing) {
          std::copy_n(trial.curve.GetData(), CKSData::kLength, curves.data() + i * CKSData::kLength);
        }
      }
      ComputeXYZBatch(curves.data(), n, CKSData::kLength, condition.illuminant, condition.observer,
                      xyz.data(), 3);
      Prepared trialPrepared;
      std::vector<double> samples;
      std::vector<std::size_t> compared;  // the trials behind `samples`
      std::string why;
      for (std::size_t i = 0; i < n; ++i) {
        QcSample& trial = report.trials[begin + i];
        QcResult& result = trial.results.back();
        const bool usable = AcceptXyz(trial, xyz.data() + i * 3, result.xyz, why);
        if (usable) {
          PrepareFromXyz(condition, system, result, trialPrepared);
        } else {
          for (std::size_t k = 0; k < 5; ++k) result.lab[k] = kMissing;
        }
        result.computed = base.computed && usable;
        if (!result.computed) {
          if (trial.note.empty()) trial.note = usable ? "standard rejected: " + reference.note : why;
          continue;
        }
        PackSample(trialPrepared.sample, samples);
        compared.push_back(begin + i);
      }
      if (compared.empty()) return;
      std::vector<double> standardSample;
      PackSample(standardPrepared.sample, standardSample);
      std::vector<double> differences(compared.size() * kBatchDifferenceDoubles);
      ComputeDifferences(standardSample.data(), 0, samples.data(), kBatchSampleDoubles,
                         compared.size(),
                         {system.system, condition.illuminant, condition.observer,
                          system.weights.data(), system.parameter},
                         differences.data(), kBatchDifferenceDoubles);
      CDWordArray codes;  // the shade codes and colours, not reported
      CDWordArray colours;
      for (std::size_t j = 0; j < compared.size(); ++j) {
        QcResult& result = report.trials[compared[j]].results.back();
        const double* difference = differences.data() + j * kBatchDifferenceDoubles;
        std::copy(difference, difference + kBatchDifferenceDoubles, result.difference.GetData());
        for (std::size_t k = 0; k < 3; ++k) result.labDelta[k] = result.lab[k] - base.lab[k];
        DescribeShade(base.lab[1], base.lab[2], result.labDelta[0], result.labDelta[1],
                      result.labDelta[2], result.shade, codes, colours, 0);
        result.pass = std::fabs(result.difference[6]) <= settings.tolerance;
      }
    });
    report.summaries.push_back(Summarise(report.trials, c));
  }

  if (!settings.conditions.empty()) {
    const Condition& first = settings.conditions.front();
    const bool standardUsable = reference.results.front().computed;
    if (standardUsable) {
      report.toleranceContour =
          ToleranceContour(reference.results.front().lab, first, system, settings.tolerance);
    }
    // Indices and strength of one sample under the first condition.
    const auto addIndicesAndStrength = [&](QcSample& sample) {
      if (settings.indices.empty() && !settings.withStrength) return;
      CValueVector3 xyz;
      std::string why;
      const bool usable = SampleXyz(sample, first, xyz, why);
      for (const IndexChoice& index : settings.indices) {
        const IndexFormula* formula = FindIndexFormula(index.identifier);
        const bool computable = formula != nullptr && formula->plain != nullptr && usable;
        sample.indices.push_back(computable ? formula->plain(first.illuminant, first.observer, xyz)
                                            : kMissing);
      }
      if (!settings.withStrength) return;
      int wavelength = 0;
      sample.strength =
          !standardUsable || !usable
              ? kMissing
              : CalcStrength(settings.strength.settings, reference.curve, sample.curve,
                             reference.results.front().xyz, xyz, first.illuminant, first.observer,
                             settings.strength.useAbsorbance, wavelength);
    };
    addIndicesAndStrength(reference);
    for (QcSample& trial : report.trials) addIndicesAndStrength(trial);
  }
  return report;
}

std::string ShadeWords(std::string_view shade) {
  std::string words;
  while (!shade.empty()) {
    const std::size_t comma = std::min(shade.find(','), shade.size());
    std::string_view word = shade.substr(0, comma);
    while (!word.empty() && word.front() == ' ') word.remove_prefix(1);
    while (!word.empty() && word.back() == ' ') word.remove_suffix(1);
    if (!word.empty()) words += (words.empty() ? "" : ", ") + std::string(word);
    shade.remove_prefix(comma == shade.size() ? comma : comma + 1);
  }
  return words;
}

}  // namespace velquor::cli
