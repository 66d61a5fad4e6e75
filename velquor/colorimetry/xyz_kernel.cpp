// Weighted summation of spectra into X, Y, Z: the portable scalar loop and, with Google
// Highway, its vector form across curves with run-time dispatch.
//
// This file is compiled with -ffp-contract=off: a multiply followed by an add must stay two
// roundings, never one fused multiply-add, at every level (the AVX2 and AVX-512 forms are
// compiled for CPUs that have FMA), or the levels would differ from each other in the last bit.
//
// Why Highway rather than SLEEF: the kernel needs only loads, shuffles, multiply, add,
// compare and select, which Highway provides portably together with per-function dispatch over
// the targets compiled into one binary (foreach_target.h, HWY_DYNAMIC_DISPATCH). SLEEF is a
// library of vectorised elementary functions (exp, pow, sin, ...); it has no portable
// arithmetic layer of its own and its dispatch covers only its own functions, so the kernel
// would still have to be written per instruction set by hand. When CIELAB's cube root or the
// hue's atan2 are vectorised, SLEEF (or Highway's contrib math) may join for those.

// Target-independent part, compiled once although foreach_target.h re-includes this file.
#ifndef VELQUOR_COLORIMETRY_XYZ_KERNEL_ONCE
#define VELQUOR_COLORIMETRY_XYZ_KERNEL_ONCE

#include "velquor/colorimetry/xyz_kernel.h"


#include "velquor/colorimetry/tristimulus.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/simd_dispatch.h"

namespace velquor {
namespace {

// One curve, the reference summation that every vector level reproduces lane by lane.
void IntegrateOne(const double* table, const double* reflectance, double* out) {
  if (IsMissing(reflectance[0])) {
    out[0] = out[1] = out[2] = kMissing;
    return;
  }
  for (std::size_t c = 0; c < 3; ++c) {
    const double* weights = table + c * kWeightTableBands;
    double sum = 0.0;
    for (std::size_t i = 0; i < kWeightTableBands; ++i) sum += weights[i] * reflectance[i];
    out[c] = sum * kPercentToFactor;
  }
}

void IntegrateScalar(const double* table, const double* spectra, std::size_t count,
                     std::size_t spectrumStride, double* xyz, std::size_t xyzStride) {
  for (std::size_t n = 0; n < count; ++n) {
    IntegrateOne(table, spectra + n * spectrumStride, xyz + n * xyzStride);
  }
}

}  // namespace
}  // namespace velquor

#endif  // VELQUOR_COLORIMETRY_XYZ_KERNEL_ONCE

#if defined(VELQUOR_HAVE_HWY)

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "velquor/colorimetry/xyz_kernel.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/cache_control.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace velquor {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Lanes are curves: a vector holds one band of up to four consecutive curves. Four lanes
// suffice: the pass is then bound by memory, and wider vectors would read more curves side by
// side (slower, see kPrefetchCurves) and need an 8 x 8 transpose.
using D = hn::CappedTag<double, 4>;
using V = hn::Vec<D>;
constexpr std::size_t kLanes = hn::MaxLanes(D());
static_assert(kWeightTableBands % kLanes == 0, "bands come in whole blocks of kLanes");

// Loads bands b .. b + kLanes - 1 of the kLanes curves at `curve` (stride apart) as columns:
// col[j] holds band b + j of curves 0 .. kLanes - 1. Contiguous loads and shuffles, far
// cheaper than strided gathers; with four lanes, each pair of bands of two curves is one
// 128-bit load into a vector half.
HWY_INLINE void LoadColumns(const double* curve, std::size_t stride, std::size_t b, V* col) {
  const D d;
#if HWY_TARGET == HWY_SCALAR
  (void)stride;
  col[0] = hn::LoadU(d, curve + b);
#else
  if constexpr (kLanes == 4) {
    const hn::Half<D> dh;
    for (std::size_t p = 0; p < 4; p += 2) {
      const double* band = curve + b + p;
      // curve 0 bands p, p + 1 | curve 2 bands p, p + 1; likewise curves 1 and 3
      const V t0 = hn::Combine(d, hn::LoadU(dh, band + 2 * stride), hn::LoadU(dh, band));
      const V t1 = hn::Combine(d, hn::LoadU(dh, band + 3 * stride), hn::LoadU(dh, band + stride));
      col[p] = hn::InterleaveLower(d, t0, t1);
      col[p + 1] = hn::InterleaveUpper(d, t0, t1);
    }
  } else if constexpr (kLanes == 2) {
    const V r0 = hn::LoadU(d, curve + b);
    const V r1 = hn::LoadU(d, curve + stride + b);
    col[0] = hn::InterleaveLower(d, r0, r1);
    col[1] = hn::InterleaveUpper(d, r0, r1);
  } else {
    col[0] = hn::LoadU(d, curve + b);
  }
#endif
}

// `weights` holds each of the 120 weights repeated in kLanes doubles, so that every multiply
// takes its weight straight from memory instead of broadcasting it first.
HWY_INLINE void IntegrateGroup(const double* weights, const double* spectra,
                               std::size_t spectrumStride, double* xyz, std::size_t xyzStride) {
  const D d;
  const double* wy = weights + kWeightTableBands * kLanes;
  const double* wz = weights + 2 * kWeightTableBands * kLanes;
  V sx = hn::Zero(d), sy = hn::Zero(d), sz = hn::Zero(d), first = hn::Zero(d);
  for (std::size_t b = 0; b < kWeightTableBands; b += kLanes) {
    V r[kLanes];
    LoadColumns(spectra, spectrumStride, b, r);
    if (b == 0) first = r[0];
    for (std::size_t j = 0; j < kLanes; ++j) {
      const std::size_t w = (b + j) * kLanes;
      sx = hn::Add(sx, hn::Mul(hn::Load(d, weights + w), r[j]));
      sy = hn::Add(sy, hn::Mul(hn::Load(d, wy + w), r[j]));
      sz = hn::Add(sz, hn::Mul(hn::Load(d, wz + w), r[j]));
    }
  }
  const V factor = hn::Set(d, kPercentToFactor);
  const V missing = hn::Set(d, kMissing);
  const auto isMissing = hn::And(hn::Lt(hn::Set(d, kMissingLow), first),
                                 hn::Lt(first, hn::Set(d, kMissingHigh)));
  HWY_ALIGN double x[kLanes], y[kLanes], z[kLanes];
  hn::Store(hn::IfThenElse(isMissing, missing, hn::Mul(sx, factor)), d, x);
  hn::Store(hn::IfThenElse(isMissing, missing, hn::Mul(sy, factor)), d, y);
  hn::Store(hn::IfThenElse(isMissing, missing, hn::Mul(sz, factor)), d, z);
  for (std::size_t k = 0; k < kLanes; ++k, xyz += xyzStride) {
    xyz[0] = x[k];
    xyz[1] = y[k];
    xyz[2] = z[k];
  }
}

// Curves read ahead of the group being summed. The loads walk kLanes curves side by side, a
// pattern the hardware prefetchers follow poorly (without help the pass ran at half the memory
// speed with eight curves side by side, some 75 % with four), so the lines are requested in
// advance, into L2. Measured on AMD Zen 4: 32 to 48 curves ahead did best; requests into L1
// made the pass slower than none.
constexpr std::size_t kPrefetchCurves = 32;

HWY_INLINE void PrefetchLine(const double* p) {
#if defined(__GNUC__)
  __builtin_prefetch(p, 0, 2);
#else
  hwy::Prefetch(p);
#endif
}

HWY_INLINE void PrefetchCurve(const double* curve) {
  // Every cache line of 40 doubles, whatever their alignment: offsets 0, 64, ... 256 bytes
  // and the last double.
  for (std::size_t i = 0; i < kWeightTableBands; i += 8) PrefetchLine(curve + i);
  PrefetchLine(curve + kWeightTableBands - 1);
}

// Whole groups of kLanes curves, then the leftover curves through IntegrateOne. One group at a
// time: interleaving two gave no faster arithmetic and read memory more slowly.
void IntegrateVector(const double* table, const double* spectra, std::size_t count,
                     std::size_t spectrumStride, double* xyz, std::size_t xyzStride) {
  std::size_t n = 0;
  // Always, except on a scalable target narrower than 4 lanes.
  if (count >= kLanes && hn::Lanes(D()) == kLanes) {
    const D d;
    HWY_ALIGN double weights[3 * kWeightTableBands * kLanes];
    for (std::size_t i = 0; i < 3 * kWeightTableBands; ++i) {
      hn::Store(hn::Set(d, table[i]), d, weights + i * kLanes);
    }
    for (; n + kLanes <= count; n += kLanes) {
      const std::size_t ahead = n + kPrefetchCurves;
      for (std::size_t k = ahead; k < ahead + kLanes && k < count; ++k) {
        PrefetchCurve(spectra + k * spectrumStride);
      }
      IntegrateGroup(weights, spectra + n * spectrumStride, spectrumStride, xyz + n * xyzStride,
                     xyzStride);
    }
  }
  IntegrateScalar(table, spectra + n * spectrumStride, count - n, spectrumStride,
                  xyz + n * xyzStride, xyzStride);
}

}  // namespace HWY_NAMESPACE
}  // namespace velquor
HWY_AFTER_NAMESPACE();

#endif  // VELQUOR_HAVE_HWY

#if !defined(VELQUOR_HAVE_HWY) || HWY_ONCE

namespace velquor {

#if defined(VELQUOR_HAVE_HWY)

HWY_EXPORT(IntegrateVector);

void IntegrateXYZ(const double* table, const double* spectra, std::size_t count,
                  std::size_t spectrumStride, double* xyz, std::size_t xyzStride) {
  VELQUOR_SIMD_CALL(IntegrateVector, IntegrateScalar, table, spectra, count, spectrumStride, xyz,
                    xyzStride);
}

#else  // no Highway: the portable loop only

void IntegrateXYZ(const double* table, const double* spectra, std::size_t count,
                  std::size_t spectrumStride, double* xyz, std::size_t xyzStride) {
  IntegrateScalar(table, spectra, count, spectrumStride, xyz, xyzStride);
}

#endif  // VELQUOR_HAVE_HWY

}  // namespace velquor

#endif  // !VELQUOR_HAVE_HWY || HWY_ONCE
