// Weighted summation of spectra into X, Y, Z: the portable scalar loop and, with Google
// Highway, its vector form across curves with run-time dispatch.
//
// This file is compiled with -ffp-contract=off: a multiply followed by an add must stay two
// roundings, never one fused multiply-add, at every level (the AVX2 and AVX-512 forms are
// compiled for CPUs that have FMA), or the levels would differ from each other in the last bit.
//
// Why Highway rather than SLEEF: the kernel needs only multiply, add, compare, select and
// strided loads, which Highway provides portably together with per-function dispatch over
// the targets compiled into one binary (foreach_target.h, HWY_DYNAMIC_DISPATCH). SLEEF is a
// library of vectorised elementary functions (exp, pow, sin, ...); it has no portable
// arithmetic layer of its own and its dispatch covers only its own functions, so the kernel
// would still have to be written per instruction set by hand. When CIELAB's cube root or the
// hue's atan2 are vectorised, SLEEF (or Highway's contrib math) may join for those.

// Target-independent part, compiled once although foreach_target.h re-includes this file.
#ifndef VELQUOR_COLORIMETRY_XYZ_KERNEL_ONCE
#define VELQUOR_COLORIMETRY_XYZ_KERNEL_ONCE

#include "velquor/colorimetry/xyz_kernel.h"

#include <atomic>
#include <cstdint>
#include <vector>

#include "velquor/colorimetry/tristimulus.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/frame/numeric.h"

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
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace velquor {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Lanes are curves: one vector holds band i of Lanes(d) consecutive curves (a strided
// gather), and the three sums run in ascending band order exactly as in IntegrateOne. The
// curves left over after the last full vector go through IntegrateOne.
void IntegrateVector(const double* table, const double* spectra, std::size_t count,
                     std::size_t spectrumStride, double* xyz, std::size_t xyzStride) {
  const hn::ScalableTag<double> d;
  const hn::RebindToSigned<decltype(d)> di;
  const std::size_t lanes = hn::Lanes(d);
  constexpr std::size_t kMaxLanes = HWY_MAX_BYTES / sizeof(double);

  HWY_ALIGN std::int64_t offsets[kMaxLanes];
  for (std::size_t k = 0; k < lanes; ++k) {
    offsets[k] = static_cast<std::int64_t>(k * spectrumStride);
  }
  const auto offset = hn::Load(di, offsets);
  const auto factor = hn::Set(d, kPercentToFactor);
  const auto missing = hn::Set(d, kMissing);
  const auto missingLow = hn::Set(d, kMissingLow);
  const auto missingHigh = hn::Set(d, kMissingHigh);
  const double* wx = table;
  const double* wy = table + kWeightTableBands;
  const double* wz = table + 2 * kWeightTableBands;

  HWY_ALIGN double x[kMaxLanes];
  HWY_ALIGN double y[kMaxLanes];
  HWY_ALIGN double z[kMaxLanes];
  std::size_t n = 0;
  for (; n + lanes <= count; n += lanes) {
    const double* group = spectra + n * spectrumStride;
    const auto first = hn::GatherIndex(d, group, offset);
    auto sx = hn::Add(hn::Zero(d), hn::Mul(hn::Set(d, wx[0]), first));
    auto sy = hn::Add(hn::Zero(d), hn::Mul(hn::Set(d, wy[0]), first));
    auto sz = hn::Add(hn::Zero(d), hn::Mul(hn::Set(d, wz[0]), first));
    for (std::size_t i = 1; i < kWeightTableBands; ++i) {
      const auto r = hn::GatherIndex(d, group + i, offset);
      sx = hn::Add(sx, hn::Mul(hn::Set(d, wx[i]), r));
      sy = hn::Add(sy, hn::Mul(hn::Set(d, wy[i]), r));
      sz = hn::Add(sz, hn::Mul(hn::Set(d, wz[i]), r));
    }
    const auto isMissing = hn::And(hn::Lt(missingLow, first), hn::Lt(first, missingHigh));
    hn::Store(hn::IfThenElse(isMissing, missing, hn::Mul(sx, factor)), d, x);
    hn::Store(hn::IfThenElse(isMissing, missing, hn::Mul(sy, factor)), d, y);
    hn::Store(hn::IfThenElse(isMissing, missing, hn::Mul(sz, factor)), d, z);
    double* out = xyz + n * xyzStride;
    for (std::size_t k = 0; k < lanes; ++k, out += xyzStride) {
      out[0] = x[k];
      out[1] = y[k];
      out[2] = z[k];
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

namespace {

// 0: the best level (Highway's own choice); -1: the scalar loop; otherwise one Highway target.
std::atomic<std::int64_t> forcedTarget{0};

// Level 0 is the scalar loop; levels 1.. are the targets compiled here that the CPU has,
// worst first.
std::vector<std::int64_t> Targets() {
  std::vector<std::int64_t> targets = hwy::SupportedAndGeneratedTargets();  // best first
  return {targets.rbegin(), targets.rend()};
}

}  // namespace

void IntegrateXYZ(const double* table, const double* spectra, std::size_t count,
                  std::size_t spectrumStride, double* xyz, std::size_t xyzStride) {
  const std::int64_t forced = forcedTarget.load(std::memory_order_relaxed);
  if (forced == 0) {
    HWY_DYNAMIC_DISPATCH(IntegrateVector)(table, spectra, count, spectrumStride, xyz, xyzStride);
  } else if (forced < 0) {
    IntegrateScalar(table, spectra, count, spectrumStride, xyz, xyzStride);
  } else {
    // The table entry of one target, without touching Highway's process-wide choice.
    hwy::ChosenTarget chosen;
    chosen.Update(forced);
    HWY_DISPATCH_TABLE(IntegrateVector)[chosen.GetIndex()](table, spectra, count,
                                                           spectrumStride, xyz, xyzStride);
  }
}

int SimdLevelCount() { return 1 + static_cast<int>(Targets().size()); }

const char* SimdLevelName(int level) {
  if (level == 0) return "portable";
  const std::vector<std::int64_t> targets = Targets();
  if (level < 0 || static_cast<std::size_t>(level) > targets.size()) return "";
  return hwy::TargetName(targets[static_cast<std::size_t>(level) - 1]);
}

void SetSimdLevelForTesting(int level) {
  if (level == -1) {
    forcedTarget.store(0);
  } else if (level == 0) {
    forcedTarget.store(-1);
  } else if (level > 0 && level < SimdLevelCount()) {
    forcedTarget.store(Targets()[static_cast<std::size_t>(level) - 1]);
  }
}

const char* ActiveSimdLevelName() {
  const std::int64_t forced = forcedTarget.load();
  if (forced < 0) return "portable";
  return hwy::TargetName(forced != 0 ? forced : hwy::SupportedAndGeneratedTargets().front());
}

#else  // no Highway: the portable loop only

void IntegrateXYZ(const double* table, const double* spectra, std::size_t count,
                  std::size_t spectrumStride, double* xyz, std::size_t xyzStride) {
  IntegrateScalar(table, spectra, count, spectrumStride, xyz, xyzStride);
}

int SimdLevelCount() { return 1; }

const char* SimdLevelName(int level) { return level == 0 ? "portable" : ""; }

void SetSimdLevelForTesting(int /*level*/) {}

const char* ActiveSimdLevelName() { return "portable"; }

#endif  // VELQUOR_HAVE_HWY

}  // namespace velquor

#endif  // !VELQUOR_HAVE_HWY || HWY_ONCE
