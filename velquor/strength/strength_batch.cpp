#include "velquor/strength/strength_batch.h"

#include <algorithm>

#include "velquor/colorimetry/tristimulus.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/thread_pool.h"
#include "velquor/strength/constants.h"
#include "velquor/strength/spectral_index.h"
#include "velquor/strength/strength_kernel.h"
#include "velquor/strength/strength_paths.h"

namespace velquor {

namespace {

// Batches per chunk of the thread split: some 50-100 microseconds of work (a spectral sum over
// 27 points takes some 150 ns, a colour from its spectrum some 100 ns more).
constexpr std::size_t kStrengthChunk = 512;

enum class Path { kSpectra, kWeighted, kTristimulus, kMissing };

// The method's path and what the standard contributes to it, resolved once.
struct Plan {
  Path path = Path::kMissing;
  bool exchanged = false;  // base methods 12-14: standard and batch change places
  int first = kStrengthFirstIndex;
  int last = kStrengthLastIndex;
  int column = kStrengthColumnSum;
  double weights[kWeightTableBands] = {};
  double standardSum = 0.0;
  double k1 = 0.0;
  double k2 = 0.0;
  bool useAbsorbance = false;
};

double SpectrumSum(const Plan& plan, const double* spectrum, bool weighted) {
  double sum = 0.0;
  for (int i = plan.first; i <= plan.last; ++i) {
    const double term =
        StrengthAbsorption(PrepareStrengthPoint(spectrum[i], plan.k1, plan.k2), plan.useAbsorbance);
    sum += weighted ? term * plan.weights[i] : term;
  }
  return sum;
}

// What CalcStrength does for the method, without the batch; `index` receives the spectral
// index it stores in its wavelength argument (unchanged for the other methods).
Plan Resolve(const CStrengthSettings& settings, const CKSData& standard,
             const CValueVector3& standardColour, int illuminant, int observer,
             bool useAbsorbance, int& index) {
  Plan plan;
  plan.k1 = settings.EffectiveK1();
  plan.k2 = settings.EffectiveK2();
  plan.useAbsorbance = useAbsorbance;
  const int method = settings.method;
  switch (static_cast<StrengthMethod>(method)) {
    case StrengthMethod::kChromaticMaxAbsorption:
    case StrengthMethod::kBaseChromaticMaxAbsorption:
      index = FindMaxAbsorptionIndex(standard, kStrengthFirstIndex, kStrengthLastIndex);
      plan.first = plan.last = index;
      break;
    case StrengthMethod::kChromaticUserWavelength:
    case StrengthMethod::kBaseChromaticUserWavelength:
      index = IndexFromWavelength(settings.userWavelength);
      plan.first = plan.last = index;
      break;
    case StrengthMethod::kPseudoTristimulus:
    case StrengthMethod::kPseudoTristimulusX:
    case StrengthMethod::kPseudoTristimulusY:
    case StrengthMethod::kPseudoTristimulusZ: {
      plan.column = method == StrengthMethodCode(StrengthMethod::kPseudoTristimulus)
                        ? kStrengthColumnSum
                        : method - StrengthMethodCode(StrengthMethod::kPseudoTristimulusX);
      int usable = illuminant;
      EnsureWeightTable(usable, observer);
      const double* table = GetWeightTable(usable, observer);
      if (table == nullptr || standard.GetSize() <= static_cast<std::size_t>(kStrengthLastIndex)) {
        return plan;
      }
      const double* x = table;
      const double* y = table + kWeightTableBands;
      const double* z = table + 2 * kWeightTableBands;
      for (std::size_t i = 0; i < kWeightTableBands; ++i) {
        plan.weights[i] = plan.column == kStrengthColumnSum
                              ? x[i] + y[i] + z[i]
                              : table[static_cast<std::size_t>(plan.column) * kWeightTableBands + i];
      }
      plan.standardSum = SpectrumSum(plan, standard.GetData(), true);
      plan.path = Path::kWeighted;
      return plan;
    }
    case StrengthMethod::kTristimulus:
    case StrengthMethod::kTristimulusX:
    case StrengthMethod::kTristimulusY:
    case StrengthMethod::kTristimulusZ:
      plan.column = method == StrengthMethodCode(StrengthMethod::kTristimulus)
                        ? kStrengthColumnSum
                        : method - StrengthMethodCode(StrengthMethod::kTristimulusX);
      if (standardColour.GetSize() < CValueVector3::kLength ||
          !StrengthTristimulusSum(plan.column, standardColour, plan.k1, plan.k2,
                                  plan.standardSum)) {
        return plan;
      }
      plan.path = Path::kTristimulus;
      return plan;
    default:  // 0, 11, 12 and codes outside 1..14: the broad band
      break;
  }
  plan.exchanged = method == StrengthMethodCode(StrengthMethod::kBaseApparent) ||
                   method == StrengthMethodCode(StrengthMethod::kBaseChromaticMaxAbsorption) ||
                   method == StrengthMethodCode(StrengthMethod::kBaseChromaticUserWavelength);
  // A range outside the curves gives the missing value, as StrengthFromSpectra; an empty one
  // cannot occur here (first == last or 6..32).
  if (plan.first < 0 || plan.last >= static_cast<int>(standard.GetSize()) ||
      plan.last >= static_cast<int>(CKSData::kLength)) {
    return plan;
  }
  plan.standardSum = SpectrumSum(plan, standard.GetData(), false);
  plan.path = Path::kSpectra;
  return plan;
}

}  // namespace

bool StrengthBatch(const CStrengthSettings& settings, const CKSData& standardSpectrum,
                   const CValueVector3& standardColour, const double* batchSpectra,
                   std::size_t spectrumStride, const double* batchColours,
                   std::size_t colourStride, std::size_t count, int illuminant, int observer,
                   bool useAbsorbance, double* out, int& wavelength) {
  if (spectrumStride < CKSData::kLength) return false;
  if (batchColours != nullptr && colourStride < CValueVector3::kLength) return false;
  if (count > 0 && (batchSpectra == nullptr || out == nullptr)) return false;

  int index = wavelength;
  const Plan plan = Resolve(settings, standardSpectrum, standardColour, illuminant, observer,
                            useAbsorbance, index);
  wavelength = WavelengthFromIndex(index);
  if (plan.path == Path::kMissing) {
    std::fill(out, out + count, kMissing);
    return true;
  }
  // The colours are integrated with the weighting table, which is loaded here in the calling
  // thread: the table cache is not made for a first use from two threads at once.
  const bool integrate = plan.path == Path::kTristimulus && batchColours == nullptr;
  if (integrate) {
    int usable = illuminant;
    EnsureWeightTable(usable, observer);
  }
  // The K/S sums of the spectral and weighted paths come from the vector kernel, written into
  // `out` and turned into strengths in place.
  const bool kubelkaMunk = !useAbsorbance && plan.path != Path::kTristimulus;
  ParallelFor(count, kStrengthChunk, [&](std::size_t begin, std::size_t end) {
    if (kubelkaMunk) {
      const bool weighted = plan.path == Path::kWeighted;
      KubelkaMunkSums(batchSpectra + begin * spectrumStride, spectrumStride, end - begin,
                      plan.first, plan.last, weighted ? plan.weights : nullptr, plan.k1, plan.k2,
                      out + begin);
      for (std::size_t n = begin; n < end; ++n) {
        out[n] = weighted           ? StrengthRatio(plan.standardSum, out[n])
                 : plan.exchanged ? StrengthFromSums(out[n], plan.standardSum)
                                  : StrengthFromSums(plan.standardSum, out[n]);
      }
      return;
    }
    CKSData curve;
    CValueVector3 colour;
    for (std::size_t n = begin; n < end; ++n) {
      const double* spectrum = batchSpectra + n * spectrumStride;
      switch (plan.path) {
        case Path::kSpectra: {
          const double sum = SpectrumSum(plan, spectrum, false);
          out[n] = plan.exchanged ? StrengthFromSums(sum, plan.standardSum)
                                  : StrengthFromSums(plan.standardSum, sum);
          break;
        }
        case Path::kWeighted:
          out[n] = StrengthRatio(plan.standardSum, SpectrumSum(plan, spectrum, true));
          break;
        default: {  // kTristimulus
          if (integrate) {
            std::copy(spectrum, spectrum + CKSData::kLength, curve.GetData());
            ComputeXYZ(curve, illuminant, observer, colour);
          } else {
            std::copy(batchColours + n * colourStride, batchColours + n * colourStride + 3,
                      colour.GetData());
          }
          double sum = 0.0;
          out[n] = StrengthTristimulusSum(plan.column, colour, plan.k1, plan.k2, sum)
                       ? StrengthRatio(sum, plan.standardSum)
                       : kMissing;
          break;
        }
      }
    }
  });
  return true;
}

}  // namespace velquor
