// The arithmetic indices over many samples: the portable scalar loop and, with Google
// Highway, its vector form across samples with run-time dispatch.
//
// This file is compiled with -ffp-contract=off: every multiply and add keeps its own rounding
// at every level, as in the per-sample functions (whiteness.cpp, tint.cpp, yellowness.cpp,
// filter_values.cpp), whose operation order each form below repeats exactly.

// Target-independent part, compiled once although foreach_target.h re-includes this file.
#ifndef VELQUOR_INDICES_INDEX_KERNEL_ONCE
#define VELQUOR_INDICES_INDEX_KERNEL_ONCE

#include "velquor/indices/index_kernel.h"

#include <cmath>

#include "velquor/frame/numeric.h"
#include "velquor/frame/simd_dispatch.h"
#include "velquor/indices/constants.h"

namespace velquor {
namespace {

// Samples with X + Y + Z below this in magnitude go to the per-sample function for the
// chromaticity forms: twice the library's zero band (IsZero), so that no rounding of the sum
// can move a sample across the band's edge unseen.
constexpr double kChromaticityGuard = 2.0 * kZeroEpsilon;

bool UsesChromaticity(IndexKind kind) {
  return kind == IndexKind::kCieWhiteness || kind == IndexKind::kCieTint ||
         kind == IndexKind::kGanzWhiteness || kind == IndexKind::kGanzTint;
}

// True when the per-sample function must decide the sample: a value in the missing band or not
// finite, or a chromaticity formula near X + Y + Z = 0.
bool NeedsSampleFunction(IndexKind kind, double x, double y, double z) {
  if (IsMissing(x) || IsMissing(y) || IsMissing(z)) return true;
  if (!std::isfinite(x) || !std::isfinite(y) || !std::isfinite(z)) return true;
  return UsesChromaticity(kind) && std::fabs(x + y + z) < kChromaticityGuard;
}

double SampleFunction(const IndexPlan& plan, double x, double y, double z) {
  thread_local CValueVector3 sample;
  sample[0] = x;
  sample[1] = y;
  sample[2] = z;
  return plan.formula != nullptr
             ? plan.formula(plan.illuminant, plan.observer, sample)
             : plan.calibrated(plan.illuminant, plan.observer, sample, plan.coefficients);
}

// One sample by the plan's form, in the per-sample functions' operation order.
double EvaluateOne(const IndexPlan& p, double X, double Y, double Z) {
  const double* k = p.k;
  switch (p.kind) {
    case IndexKind::kZMinusY:
      return k[0] * (k[1] * Z) - k[2] * Y;
    case IndexKind::kBerger:
      return Y + k[0] * (k[1] * Z) - k[2] * (k[3] * X);
    case IndexKind::kTwoCoefficient:
      return 100.0 * (k[0] * (k[1] * X) - k[2] * (k[3] * Z)) / Y;
    case IndexKind::kE313Yellowness:
      return 100.0 * (1.0 - k[0] * (k[1] * Z) / Y);
    case IndexKind::kDcm:
      return kDcmOffset - kDcmScale * Z / (kDcmX * X + Y + kDcmZ * Z);
    case IndexKind::kFilterRz:
      return 100.0 * Z / k[0];
    case IndexKind::kFilterRx:
      return (100.0 * X / k[0] - kFilterBlueShare * (100.0 * Z / k[1])) * kFilterAmberScale;
    default:
      break;
  }
  const double sum = X + Y + Z;
  const double x = X / sum;
  const double y = Y / sum;
  switch (p.kind) {
    case IndexKind::kCieWhiteness:
      return Y + kCieWhitenessX * (k[0] - x) + kCieWhitenessY * (k[1] - y);
    case IndexKind::kCieTint:
      return k[2] * (k[0] - x) - kCieTintY * (k[1] - y);
    case IndexKind::kGanzWhiteness:
      return k[0] * Y + k[1] * x + k[2] * y + k[3];
    default:  // kGanzTint
      return k[0] * x + k[1] * y + k[2];
  }
}

void EvaluateScalar(const IndexPlan& plan, const double* xyz, std::size_t xyzStride, double* out,
                    std::size_t count) {
  for (std::size_t n = 0; n < count; ++n, xyz += xyzStride) {
    const double x = xyz[0], y = xyz[1], z = xyz[2];
    out[n] = NeedsSampleFunction(plan.kind, x, y, z) ? SampleFunction(plan, x, y, z)
                                                     : EvaluateOne(plan, x, y, z);
  }
}

}  // namespace
}  // namespace velquor

#endif  // VELQUOR_INDICES_INDEX_KERNEL_ONCE

#if defined(VELQUOR_HAVE_HWY)

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "velquor/indices/index_kernel.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"
#include "velquor/frame/simd_math-inl.h"

HWY_BEFORE_NAMESPACE();
namespace velquor {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;
constexpr std::size_t kMaxLanes = hn::MaxLanes(D());

// The plan's form on a vector of samples; the same expressions as EvaluateOne.
template <IndexKind kKind>
HWY_INLINE V EvaluateLanes(D d, const V* k, V X, V Y, V Z) {
  const V hundred = hn::Set(d, 100.0);
  if constexpr (kKind == IndexKind::kZMinusY) {
    return hn::Sub(hn::Mul(k[0], hn::Mul(k[1], Z)), hn::Mul(k[2], Y));
  } else if constexpr (kKind == IndexKind::kBerger) {
    return hn::Sub(hn::Add(Y, hn::Mul(k[0], hn::Mul(k[1], Z))), hn::Mul(k[2], hn::Mul(k[3], X)));
  } else if constexpr (kKind == IndexKind::kTwoCoefficient) {
    const V diff = hn::Sub(hn::Mul(k[0], hn::Mul(k[1], X)), hn::Mul(k[2], hn::Mul(k[3], Z)));
    return hn::Div(hn::Mul(hundred, diff), Y);
  } else if constexpr (kKind == IndexKind::kE313Yellowness) {
    const V ratio = hn::Div(hn::Mul(k[0], hn::Mul(k[1], Z)), Y);
    return hn::Mul(hundred, hn::Sub(hn::Set(d, 1.0), ratio));
  } else if constexpr (kKind == IndexKind::kDcm) {
    const V denominator =
        hn::Add(hn::Add(hn::Mul(hn::Set(d, kDcmX), X), Y), hn::Mul(hn::Set(d, kDcmZ), Z));
    return hn::Sub(hn::Set(d, kDcmOffset),
                   hn::Div(hn::Mul(hn::Set(d, kDcmScale), Z), denominator));
  } else if constexpr (kKind == IndexKind::kFilterRz) {
    return hn::Div(hn::Mul(hundred, Z), k[0]);
  } else if constexpr (kKind == IndexKind::kFilterRx) {
    const V rz = hn::Div(hn::Mul(hundred, Z), k[1]);
    const V rx = hn::Div(hn::Mul(hundred, X), k[0]);
    return hn::Mul(hn::Sub(rx, hn::Mul(hn::Set(d, kFilterBlueShare), rz)),
                   hn::Set(d, kFilterAmberScale));
  } else {
    const V sum = hn::Add(hn::Add(X, Y), Z);
    const V x = hn::Div(X, sum);
    const V y = hn::Div(Y, sum);
    if constexpr (kKind == IndexKind::kCieWhiteness) {
      return hn::Add(hn::Add(Y, hn::Mul(hn::Set(d, kCieWhitenessX), hn::Sub(k[0], x))),
                     hn::Mul(hn::Set(d, kCieWhitenessY), hn::Sub(k[1], y)));
    } else if constexpr (kKind == IndexKind::kCieTint) {
      return hn::Sub(hn::Mul(k[2], hn::Sub(k[0], x)),
                     hn::Mul(hn::Set(d, kCieTintY), hn::Sub(k[1], y)));
    } else if constexpr (kKind == IndexKind::kGanzWhiteness) {
      return hn::Add(hn::Add(hn::Add(hn::Mul(k[0], Y), hn::Mul(k[1], x)), hn::Mul(k[2], y)), k[3]);
    } else {
      return hn::Add(hn::Add(hn::Mul(k[0], x), hn::Mul(k[1], y)), k[2]);
    }
  }
}

// Lanes the per-sample function must decide (NeedsSampleFunction).
template <IndexKind kKind>
HWY_INLINE hn::Mask<D> LanesForSampleFunction(D d, V X, V Y, V Z) {
  auto mask = hn::Or(hn::Or(InMissingBand(d, X), InMissingBand(d, Y)), InMissingBand(d, Z));
  mask = hn::Or(mask, hn::Not(hn::And(hn::And(hn::IsFinite(X), hn::IsFinite(Y)), hn::IsFinite(Z))));
  if constexpr (kKind == IndexKind::kCieWhiteness || kKind == IndexKind::kCieTint ||
                kKind == IndexKind::kGanzWhiteness || kKind == IndexKind::kGanzTint) {
    const V sum = hn::Add(hn::Add(X, Y), Z);
    mask = hn::Or(mask, hn::Lt(hn::Abs(sum), hn::Set(d, kChromaticityGuard)));
  }
  return mask;
}

template <IndexKind kKind>
void EvaluateKind(const IndexPlan& plan, const double* xyz, std::size_t xyzStride, double* out,
                  std::size_t count) {
  const D d;
  const std::size_t lanes = hn::Lanes(d);
  V k[4];
  for (std::size_t i = 0; i < 4; ++i) k[i] = hn::Set(d, plan.k[i]);
  // Records of stride 3 (the C interface's, the bindings') are taken apart by
  // LoadInterleaved3; other strides are gathered into columns by plain loads.
  HWY_ALIGN double cx[kMaxLanes], cy[kMaxLanes], cz[kMaxLanes];
  std::size_t n = 0;
  for (; n + lanes <= count; n += lanes) {
    const double* s = xyz + n * xyzStride;
    V X, Y, Z;
    if (xyzStride == 3) {
      hn::LoadInterleaved3(d, s, X, Y, Z);
    } else {
      for (std::size_t j = 0; j < lanes; ++j) {
        cx[j] = s[j * xyzStride];
        cy[j] = s[j * xyzStride + 1];
        cz[j] = s[j * xyzStride + 2];
      }
      X = hn::Load(d, cx);
      Y = hn::Load(d, cy);
      Z = hn::Load(d, cz);
    }
    hn::StoreU(EvaluateLanes<kKind>(d, k, X, Y, Z), d, out + n);
    const auto refine = LanesForSampleFunction<kKind>(d, X, Y, Z);
    if (!hn::AllFalse(d, refine)) {
      const std::uint64_t bits = LaneBits(d, refine);
      for (std::size_t j = 0; j < lanes; ++j) {
        const double* sample = s + j * xyzStride;
        if ((bits >> j) & 1) out[n + j] = SampleFunction(plan, sample[0], sample[1], sample[2]);
      }
    }
  }
  EvaluateScalar(plan, xyz + n * xyzStride, xyzStride, out + n, count - n);
}

void EvaluateVector(const IndexPlan& plan, const double* xyz, std::size_t xyzStride, double* out,
                    std::size_t count) {
  switch (plan.kind) {
    case IndexKind::kZMinusY:
      return EvaluateKind<IndexKind::kZMinusY>(plan, xyz, xyzStride, out, count);
    case IndexKind::kBerger:
      return EvaluateKind<IndexKind::kBerger>(plan, xyz, xyzStride, out, count);
    case IndexKind::kTwoCoefficient:
      return EvaluateKind<IndexKind::kTwoCoefficient>(plan, xyz, xyzStride, out, count);
    case IndexKind::kE313Yellowness:
      return EvaluateKind<IndexKind::kE313Yellowness>(plan, xyz, xyzStride, out, count);
    case IndexKind::kDcm:
      return EvaluateKind<IndexKind::kDcm>(plan, xyz, xyzStride, out, count);
    case IndexKind::kFilterRz:
      return EvaluateKind<IndexKind::kFilterRz>(plan, xyz, xyzStride, out, count);
    case IndexKind::kFilterRx:
      return EvaluateKind<IndexKind::kFilterRx>(plan, xyz, xyzStride, out, count);
    case IndexKind::kCieWhiteness:
      return EvaluateKind<IndexKind::kCieWhiteness>(plan, xyz, xyzStride, out, count);
    case IndexKind::kCieTint:
      return EvaluateKind<IndexKind::kCieTint>(plan, xyz, xyzStride, out, count);
    case IndexKind::kGanzWhiteness:
      return EvaluateKind<IndexKind::kGanzWhiteness>(plan, xyz, xyzStride, out, count);
    case IndexKind::kGanzTint:
      return EvaluateKind<IndexKind::kGanzTint>(plan, xyz, xyzStride, out, count);
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace velquor
HWY_AFTER_NAMESPACE();

#endif  // VELQUOR_HAVE_HWY

#if !defined(VELQUOR_HAVE_HWY) || HWY_ONCE

namespace velquor {

#if defined(VELQUOR_HAVE_HWY)

HWY_EXPORT(EvaluateVector);

void EvaluateIndexPlan(const IndexPlan& plan, const double* xyz, std::size_t xyzStride,
                       double* out, std::size_t count) {
  VELQUOR_SIMD_CALL(EvaluateVector, EvaluateScalar, plan, xyz, xyzStride, out, count);
}

#else  // no Highway: the portable loop only

void EvaluateIndexPlan(const IndexPlan& plan, const double* xyz, std::size_t xyzStride,
                       double* out, std::size_t count) {
  EvaluateScalar(plan, xyz, xyzStride, out, count);
}

#endif  // VELQUOR_HAVE_HWY

}  // namespace velquor

#endif  // !VELQUOR_HAVE_HWY || HWY_ONCE
