#include "velquor/indices/index_batch.h"

#include <algorithm>

#include "velquor/colorimetry/chromaticity.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/data/value_vectors.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/thread_pool.h"
#include "velquor/indices/constants.h"
#include "velquor/indices/e313_white_point.h"
#include "velquor/indices/index_formulas.h"
#include "velquor/indices/index_kernel.h"
#include "velquor/indices/tristimulus_index_support.h"

namespace velquor {

namespace {

// Samples per chunk of the thread split: some 50-100 microseconds of work each (measured: 2 to
// 3 ns per sample in the kernel, 50 ns for Hunter whiteness, more for the dominant wavelength).
constexpr std::size_t kKernelChunk = 32768;
constexpr std::size_t kPerSampleChunk = 256;

enum class Resolution { kKernel, kPerSample, kAllMissing };

struct Resolved {
  Resolution how = Resolution::kAllMissing;
  IndexPlan plan;
};

Resolved Kernel(IndexKind kind, double k0, double k1 = 0.0, double k2 = 0.0, double k3 = 0.0) {
  Resolved r;
  r.how = Resolution::kKernel;
  r.plan.kind = kind;
  r.plan.k[0] = k0;
  r.plan.k[1] = k1;
  r.plan.k[2] = k2;
  r.plan.k[3] = k3;
  return r;
}

Resolved AllMissing() { return Resolved{}; }

// The formula of `identifier` for the pair, its constants worked out as the per-sample
// function works them out for each sample.
Resolved Resolve(std::uint32_t identifier, int illuminant, int observer,
                 const double* coefficients) {
  const bool c2 = IsIlluminantC2(illuminant, observer);
  const bool d65 = illuminant == kIndexIlluminantD65;
  const bool tenDegree = observer != 0;
  // Identifiers that need the computed white read it here; only a pair without even the D65
  // table has none, and every such identifier then gives the missing value.
  const double* white = nullptr;
  const auto needWhite = [&] {
    white = ComputedWhite(illuminant, observer);
    return white != nullptr;
  };
  double xn = 0.0;
  double yn = 0.0;
  switch (identifier) {
    case 54:  // WI E313-73
      return c2 ? Kernel(IndexKind::kZMinusY, kE313_73WhitenessZ, 1.0, kE313_73WhitenessY)
                : AllMissing();
    case 2:  // WI E313-73 (R)
      if (!needWhite()) return AllMissing();
      return Kernel(IndexKind::kZMinusY, kE313_73WhitenessZ, kReferenceZnC2 / white[2],
                    kE313_73WhitenessY);
    case 58:  // Taube
      return c2 ? Kernel(IndexKind::kZMinusY, kTaubeZ, 1.0, kTaubeY) : AllMissing();
    case 20:  // Taube (R)
      if (!needWhite()) return AllMissing();
      return Kernel(IndexKind::kZMinusY, kTaubeZ, kReferenceZnC2 / white[2], kTaubeY);
    case 56:  // Berger
      if (!d65) return AllMissing();
      return Kernel(IndexKind::kBerger, tenDegree ? kBergerZ10 : kBergerZ2, 1.0,
                    tenDegree ? kBergerX10 : kBergerX2, 1.0);
    case 17:  // Berger (R)
      if (!needWhite()) return AllMissing();
      return Kernel(IndexKind::kBerger, kBergerZ2, kReferenceZnD65_2 / white[2], kBergerX2,
                    kReferenceXnD65_2 / white[0]);
    case 57:  // WI CIE
    case 3:   // WI CIE (R)
    case 53:  // Tint CIE
    case 4:   // Tint CIE (R)
      if ((identifier == 57 || identifier == 53) && !d65) return AllMissing();
      if (!needWhite()) return AllMissing();
      TripleToChromaticity(white, xn, yn);  // as the CIE whiteness and tint functions
      if (identifier == 57 || identifier == 3) return Kernel(IndexKind::kCieWhiteness, xn, yn);
      return Kernel(IndexKind::kCieTint, xn, yn, tenDegree ? kCieTintX10 : kCieTintX2);
    case 55:  // WI E313-10
      if (E313WhitePoint(illuminant, observer, xn, yn) == 0) return AllMissing();
      return Kernel(IndexKind::kCieWhiteness, xn, yn);
    case 52:  // Tint E313-10
      if (E313WhitePoint(illuminant, observer, xn, yn) == 0) return AllMissing();
      return Kernel(IndexKind::kCieTint, xn, yn, tenDegree ? kCieTintX10 : kCieTintX2);
    case 63:  // WI Griesser
      if (!d65 || observer != kGanzObserver || coefficients == nullptr) return AllMissing();
      return Kernel(IndexKind::kGanzWhiteness, coefficients[0], coefficients[1], coefficients[2],
                    coefficients[3]);
    case 64:  // Tint Griesser
      if (!d65 || observer != kGanzObserver || coefficients == nullptr) return AllMissing();
      return Kernel(IndexKind::kGanzTint, coefficients[0], coefficients[1], coefficients[2]);
    case 59:  // YI D1925
      return c2 ? Kernel(IndexKind::kTwoCoefficient, kD1925X, 1.0, kD1925Z, 1.0) : AllMissing();
    case 60:  // YI E313-73
      return c2 ? Kernel(IndexKind::kE313Yellowness, kE313_73YellownessZ, 1.0) : AllMissing();
    case 0:  // YI E313-73 (R)
      if (!needWhite()) return AllMissing();
      return Kernel(IndexKind::kE313Yellowness, kE313_73YellownessZ, kReferenceZnC2 / white[2]);
    case 61:  // YI E313-10
      if (illuminant == kIndexIlluminantC) {
        return Kernel(IndexKind::kTwoCoefficient, tenDegree ? kE313_10CxC10 : kE313_10CxC2, 1.0,
                      tenDegree ? kE313_10CzC10 : kE313_10CzC2, 1.0);
      }
      if (!d65) return AllMissing();
      return Kernel(IndexKind::kTwoCoefficient, tenDegree ? kE313_10CxD65_10 : kE313_10CxD65_2,
                    1.0, tenDegree ? kE313_10CzD65_10 : kE313_10CzD65_2, 1.0);
    case 62:  // YI DIN 6167
      if (illuminant == kIndexIlluminantC && !tenDegree) {
        return Kernel(IndexKind::kTwoCoefficient, kDin6167CxC2, 1.0, kDin6167CzC2, 1.0);
      }
      if (!d65) return AllMissing();
      return Kernel(IndexKind::kTwoCoefficient, tenDegree ? kDin6167CxD65_10 : kDin6167CxD65_2,
                    1.0, tenDegree ? kDin6167CzD65_10 : kDin6167CzD65_2, 1.0);
    case 1:   // YI D1925 (R)
    case 14:  // YI E313-10 (R)
    case 15: {  // YI DIN 6167 (R)
      if (!needWhite()) return AllMissing();
      const double cx = identifier == 1 ? kD1925X : identifier == 14 ? kE313_10CxC2 : kDin6167CxC2;
      const double cz = identifier == 1 ? kD1925Z : identifier == 14 ? kE313_10CzC2 : kDin6167CzC2;
      return Kernel(IndexKind::kTwoCoefficient, cx, kReferenceXnC2 / white[0], cz,
                    kReferenceZnC2 / white[2]);
    }
    case 65:  // YI DCM Y
      return c2 ? Kernel(IndexKind::kDcm, 0.0) : AllMissing();
    case 42:  // Rz
      if (!needWhite()) return AllMissing();
      return Kernel(IndexKind::kFilterRz, white[2]);
    case 40:  // Rx
      if (!needWhite()) return AllMissing();
      return Kernel(IndexKind::kFilterRx, white[0], white[2]);
    default: {  // Stensby, Hunter, dominant wavelength, purity
      Resolved r;
      r.how = Resolution::kPerSample;
      return r;
    }
  }
}

}  // namespace

bool ComputeIndexBatch(std::uint32_t identifier, int illuminant, int observer, const double* xyz,
                       std::size_t xyzStride, const double* coefficients, double* out,
                       std::size_t count) {
  const IndexFormula* formula = FindIndexFormula(identifier);
  if (formula == nullptr || xyzStride < CValueVector3::kLength) return false;
  if (count > 0 && (xyz == nullptr || out == nullptr)) return false;
  if (count == 0) return true;

  // The weighting table of the pair is loaded here, in the calling thread, before any sample
  // is split off: the table cache is not made for a first use from two threads at once.
  int usable = illuminant;
  EnsureWeightTable(usable, observer);

  Resolved resolved = Resolve(identifier, illuminant, observer, coefficients);
  IndexPlan& plan = resolved.plan;
  plan.formula = formula->plain;
  plan.calibrated = formula->calibrated;
  plan.illuminant = illuminant;
  plan.observer = observer;
  plan.coefficients = coefficients;

  switch (resolved.how) {
    case Resolution::kAllMissing:
      std::fill(out, out + count, kMissing);
      return true;
    case Resolution::kKernel:
      ParallelFor(count, kKernelChunk, [&](std::size_t begin, std::size_t end) {
        EvaluateIndexPlan(plan, xyz + begin * xyzStride, xyzStride, out + begin, end - begin);
      });
      return true;
    case Resolution::kPerSample:
      break;
  }
  const auto runSamples = [&](std::size_t begin, std::size_t end) {
    CValueVector3 sample;
    for (std::size_t n = begin; n < end; ++n) {
      const double* s = xyz + n * xyzStride;
      sample[0] = s[0];
      sample[1] = s[1];
      sample[2] = s[2];
      out[n] = formula->plain(illuminant, observer, sample);
    }
  };
  // The first sample in the calling thread loads the caches the function keeps (the spectrum
  // locus of the dominant wavelength) before the rest is split over threads.
  runSamples(0, 1);
  ParallelFor(count - 1, kPerSampleChunk,
              [&](std::size_t begin, std::size_t end) { runSamples(begin + 1, end + 1); });
  return true;
}

}  // namespace velquor
