// K/S sums of many spectra: the portable scalar loop and, with Google Highway, its vector form
// across spectra with run-time dispatch.
//
// This file is compiled with -ffp-contract=off: a multiply followed by an add or subtract keeps
// two roundings at every level, as in SaundersonToInternal and the Kubelka-Munk conversion.

// Target-independent part, compiled once although foreach_target.h re-includes this file.
#ifndef VELQUOR_STRENGTH_STRENGTH_KERNEL_ONCE
#define VELQUOR_STRENGTH_STRENGTH_KERNEL_ONCE

#include "velquor/strength/strength_kernel.h"

#include "velquor/data/ks_data.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/simd_dispatch.h"
#include "velquor/strength/constants.h"
#include "velquor/strength/strength_paths.h"

namespace velquor {
namespace {

void SumsScalar(const double* spectra, std::size_t stride, std::size_t count, int first,
                int last, const double* weights, double k1, double k2, double* sums) {
  for (std::size_t n = 0; n < count; ++n, spectra += stride) {
    double sum = 0.0;
    for (int i = first; i <= last; ++i) {
      const double ks = StrengthAbsorption(PrepareStrengthPoint(spectra[i], k1, k2), false);
      sum += weights != nullptr ? ks * weights[i] : ks;
    }
    sums[n] = sum;
  }
}

}  // namespace
}  // namespace velquor

#endif  // VELQUOR_STRENGTH_STRENGTH_KERNEL_ONCE

#if defined(VELQUOR_HAVE_HWY)

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "velquor/strength/strength_kernel.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace velquor {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;
constexpr std::size_t kMaxLanes = hn::MaxLanes(D());

// K/S of the prepared point of R on every lane, in the operation order of
// PrepareStrengthPoint, SaundersonToInternal and the Kubelka-Munk branch of ConvertReflPoint.
HWY_INLINE V KubelkaMunkLanes(D d, V R, V k1, V k2) {
  const V one = hn::Set(d, 1.0);
  const V r = hn::Mul(R, hn::Set(d, kStrengthPercentToFraction));
  V divisor = hn::Sub(hn::Sub(one, k1), hn::Mul(hn::Sub(one, r), k2));
  const V floor = hn::Set(d, kSaundersonDivisorFloor);
  divisor = hn::IfThenElse(hn::Lt(divisor, floor), floor, divisor);  // std::max(divisor, floor)
  V p = hn::Mul(hn::Div(hn::Sub(r, k1), divisor), hn::Set(d, kStrengthFractionToPercent));
  const auto missing =
      hn::And(hn::Lt(hn::Set(d, kMissingLow), R), hn::Lt(R, hn::Set(d, kMissingHigh)));
  p = hn::IfThenElse(missing, R, p);
  const V f = hn::Mul(p, hn::Set(d, 0.01));
  const V complement = hn::Sub(one, f);
  const V ks = hn::Div(hn::Mul(complement, complement), hn::Mul(hn::Set(d, 2.0), f));
  return hn::IfThenElse(hn::Ge(p, hn::Set(d, kMinReflectance)), ks, hn::Set(d, kBlackKS));
}

void SumsVector(const double* spectra, std::size_t stride, std::size_t count, int first, int last,
                const double* weights, double k1, double k2, double* sums) {
  const D d;
  const std::size_t lanes = hn::Lanes(d);
  const V vk1 = hn::Set(d, k1);
  const V vk2 = hn::Set(d, k2);
  HWY_ALIGN double column[kMaxLanes];
  std::size_t n = 0;
  for (; n + lanes <= count; n += lanes) {
    const double* group = spectra + n * stride;
    V sum = hn::Zero(d);
    for (int i = first; i <= last; ++i) {
      const double* point = group + i;
      for (std::size_t j = 0; j < lanes; ++j) column[j] = point[j * stride];
      V term = KubelkaMunkLanes(d, hn::Load(d, column), vk1, vk2);
      if (weights != nullptr) term = hn::Mul(term, hn::Set(d, weights[i]));
      sum = hn::Add(sum, term);
    }
    hn::StoreU(sum, d, sums + n);
  }
  SumsScalar(spectra + n * stride, stride, count - n, first, last, weights, k1, k2, sums + n);
}

}  // namespace HWY_NAMESPACE
}  // namespace velquor
HWY_AFTER_NAMESPACE();

#endif  // VELQUOR_HAVE_HWY

#if !defined(VELQUOR_HAVE_HWY) || HWY_ONCE

namespace velquor {

#if defined(VELQUOR_HAVE_HWY)

HWY_EXPORT(SumsVector);

void KubelkaMunkSums(const double* spectra, std::size_t stride, std::size_t count, int first,
                     int last, const double* weights, double k1, double k2, double* sums) {
  VELQUOR_SIMD_CALL(SumsVector, SumsScalar, spectra, stride, count, first, last, weights, k1, k2,
                    sums);
}

#else  // no Highway: the portable loop only

void KubelkaMunkSums(const double* spectra, std::size_t stride, std::size_t count, int first,
                     int last, const double* weights, double k1, double k2, double* sums) {
  SumsScalar(spectra, stride, count, first, last, weights, k1, k2, sums);
}

#endif  // VELQUOR_HAVE_HWY

}  // namespace velquor

#endif  // !VELQUOR_HAVE_HWY || HWY_ONCE
