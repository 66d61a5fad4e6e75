// Helpers of the SIMD kernels: the missing-value test and mask bits lane by lane, the library's
// cube root, and atan2 on top of Google Highway's contrib math (whose atan, sin, cos, exp and
// log are within 1-3 ulp of the C library). Included by kernel
// files once per Highway target, after hwy/highway.h; the guard toggles like Highway's own
// -inl.h headers.
//
// Accuracy: CubeRootVector gives CubeRoot's bits; Atan2 is within a few ulp of std::atan2, so
// a kernel built on it agrees with the library's scalar formulas to about 1e-15 relative. Kernels still decide
// every branch exactly as the scalar code does (see the kernels' Refine steps).

#if defined(VELQUOR_FRAME_SIMD_MATH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef VELQUOR_FRAME_SIMD_MATH_INL_H_
#undef VELQUOR_FRAME_SIMD_MATH_INL_H_
#else
#define VELQUOR_FRAME_SIMD_MATH_INL_H_
#endif

#include <cstdint>

#include "hwy/contrib/math/math-inl.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/cube_root.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace velquor {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Lanes holding the library's missing value (IsMissing lane by lane: strictly inside the band).
template <class D, class V = hn::Vec<D>>
HWY_INLINE hn::Mask<D> InMissingBand(D d, V x) {
  return hn::And(hn::Lt(hn::Set(d, kMissingLow), x), hn::Lt(x, hn::Set(d, kMissingHigh)));
}

// The lanes of `mask` as bits, lane k in bit k (vectors of up to 64 lanes), for the kernels'
// per-lane fallback loops.
template <class D>
HWY_INLINE std::uint64_t LaneBits(D d, hn::Mask<D> mask) {
  std::uint8_t bytes[8] = {};
  hn::StoreMaskBits(d, mask, bytes);
  std::uint64_t bits = 0;
  for (int i = 7; i >= 0; --i) bits = (bits << 8) | bytes[i];
  return bits;
}

// CubeRoot (cube_root.h) lane by lane: the same operations in the same order, so the same bits.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V CubeRootVector(D d, V x) {
  const hn::RebindToSigned<D> di;
  const hn::RebindToUnsigned<D> du;
  const auto high = hn::BitCast(di, hn::ShiftRight<32>(hn::BitCast(du, x)));
  const auto third = hn::ConvertTo(di, hn::Mul(hn::ConvertTo(d, high), hn::Set(d, 1.0 / 3.0)));
  V y = hn::BitCast(d, hn::ShiftLeft<32>(hn::Add(third, hn::Set(di, kCubeRootBias))));
  const V two = hn::Set(d, 2.0);
  for (int step = 0; step < 3; ++step) {
    const V y3 = hn::Mul(hn::Mul(y, y), y);
    y = hn::Mul(y, hn::Div(hn::Add(y3, hn::Mul(two, x)), hn::Add(hn::Mul(two, y3), x)));
  }
  return y;
}

// atan2(y, x) in (-pi, pi] from Highway's atan over [0, 1]: the octant is chosen from |y|, |x|
// and the signs, and the result carries the sign of y. Both zero gives NaN (callers settle that
// case by the scalar path, as they do every axis case).
template <class D, class V = hn::Vec<D>>
HWY_INLINE V Atan2(D d, V y, V x) {
  const V ax = hn::Abs(x);
  const V ay = hn::Abs(y);
  const auto steep = hn::Gt(ay, ax);
  const V ratio = hn::Div(hn::IfThenElse(steep, ax, ay), hn::IfThenElse(steep, ay, ax));
  V r = hn::Atan(d, ratio);
  r = hn::IfThenElse(steep, hn::Sub(hn::Set(d, 1.5707963267948966), r), r);
  r = hn::IfThenElse(hn::Lt(x, hn::Zero(d)), hn::Sub(hn::Set(d, 3.141592653589793), r), r);
  return hn::CopySign(r, y);
}

}  // namespace HWY_NAMESPACE
}  // namespace velquor
HWY_AFTER_NAMESPACE();

#endif  // VELQUOR_FRAME_SIMD_MATH_INL_H_
