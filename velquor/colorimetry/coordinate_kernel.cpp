// XYZ -> CIELAB / CIELUV and CIELAB -> DIN99: the portable loops and, with Google Highway, their
// vector forms.

// Target-independent part, compiled once although foreach_target.h re-includes this file.
#ifndef VELQUOR_COLORIMETRY_COORDINATE_KERNEL_ONCE
#define VELQUOR_COLORIMETRY_COORDINATE_KERNEL_ONCE

#include "velquor/colorimetry/coordinate_kernel.h"

#include <cmath>
#include <cstdint>

#include "velquor/colorimetry/constants.h"
#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/colorimetry/din99.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/colorimetry/luv.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/options.h"
#include "velquor/frame/simd_dispatch.h"

namespace velquor {
namespace {

// Per-batch values, read once.
struct Setup {
  CoordinateKind kind;
  const double* white;
  double uWhite, vWhite;  // CIELUV's u'n, v'n
  bool degrees;
};

void ConvertOne(CoordinateKind kind, const double* white, const double* xyz, double* out) {
  if (kind == CoordinateKind::kLab) {
    XYZToLab(white, xyz, out);
  } else {
    XYZToLuv(white, xyz, out);
  }
}

void ConvertPortable(CoordinateKind kind, const double* white, const double* xyz,
                     std::size_t xyzStride, double* out, std::size_t outStride,
                     std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    ConvertOne(kind, white, xyz + i * xyzStride, out + i * outStride);
  }
}

// DIN99's per-batch values.
struct Din99Setup {
  double kCH, kE;
  bool degrees;
  double cos16, sin16;  // of the 16 degree rotation, as LabToDIN99 computes them
};

void Din99Portable(const Din99Setup& s, const double* lab, std::size_t labStride, double* out,
                   std::size_t outStride, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    LabToDIN99(lab + i * labStride, s.kCH, s.kE, out + i * outStride);
  }
}

#if defined(VELQUOR_HAVE_HWY)
void ConvertSetup(const Setup& s, const double* xyz, std::size_t xyzStride, double* out,
                  std::size_t outStride, std::size_t count) {
  ConvertPortable(s.kind, s.white, xyz, xyzStride, out, outStride, count);
}
#endif

}  // namespace
}  // namespace velquor

#endif  // VELQUOR_COLORIMETRY_COORDINATE_KERNEL_ONCE

#if defined(VELQUOR_HAVE_HWY)

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "velquor/colorimetry/coordinate_kernel.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"
#include "velquor/frame/simd_math-inl.h"

HWY_BEFORE_NAMESPACE();
namespace velquor {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;
using M = hn::Mask<D>;

HWY_INLINE M IsZeroLane(D d, V x) { return hn::Lt(hn::Abs(x), hn::Set(d, kZeroEpsilon)); }

// Degrees within this of 360 are sent to the scalar path: the wrap to 0 lies at 0.005 and the
// vector hue is within 1e-12 degrees of the scalar one.
constexpr double kWrapGuard = 0.0051;

// ComputeChromaHue for lanes with neither coordinate in the zero band; `refine` gains the
// lanes whose hue needs the scalar decision.
HWY_INLINE void ChromaHue(D d, const Setup& s, V a, V b, V& chroma, V& hue, M& refine) {
  chroma = hn::Sqrt(hn::Add(hn::Mul(a, a), hn::Mul(b, b)));
  V h = Atan2(d, b, a);
  h = hn::IfThenElse(hn::Lt(h, hn::Zero(d)), hn::Add(h, hn::Set(d, kTwoPi)), h);
  refine = hn::Or(refine, hn::Or(IsZeroLane(d, a), IsZeroLane(d, b)));
  refine = hn::Or(refine, hn::Not(hn::IsFinite(chroma)));
  if (s.degrees) {
    h = hn::Mul(h, hn::Set(d, kRadToDeg));
    refine = hn::Or(refine, hn::Lt(hn::Sub(hn::Set(d, 360.0), h), hn::Set(d, kWrapGuard)));
  }
  hue = h;
}

// CIELAB's f(t): the linear branch at and below the breakpoint, the cube root above it.
HWY_INLINE V LabF(D d, V t) {
  const V linear = hn::Add(hn::Mul(hn::Set(d, kLabSlope), t), hn::Set(d, kLabOffset));
  // Lanes of the linear branch get a harmless 1 as the root's argument.
  const M low = hn::Le(t, hn::Set(d, kLabEpsilon));
  const V root = CubeRootVector(d, hn::IfThenElse(low, hn::Set(d, 1.0), t));
  return hn::IfThenElse(low, linear, root);
}

HWY_INLINE void Lab(D d, const Setup& s, V x, V y, V z, V* out, M& refine) {
  const V fX = LabF(d, hn::Div(x, hn::Set(d, s.white[0])));
  const V fY = LabF(d, hn::Div(y, hn::Set(d, s.white[1])));
  const V fZ = LabF(d, hn::Div(z, hn::Set(d, s.white[2])));
  out[1] = hn::Mul(hn::Set(d, 500.0), hn::Sub(fX, fY));
  out[2] = hn::Mul(hn::Set(d, 200.0), hn::Sub(fY, fZ));
  out[0] = hn::Sub(hn::Mul(hn::Set(d, 116.0), fY), hn::Set(d, 16.0));
  ChromaHue(d, s, out[1], out[2], out[3], out[4], refine);
}

HWY_INLINE void Luv(D d, const Setup& s, V x, V y, V z, V* out, M& refine) {
  const V denominator =
      hn::Add(hn::Add(x, hn::Mul(hn::Set(d, 15.0), y)), hn::Mul(hn::Set(d, 3.0), z));
  refine = hn::Or(refine, IsZeroLane(d, denominator));
  const V yr = hn::Div(y, hn::Set(d, s.white[1]));
  const M high = hn::Gt(yr, hn::Set(d, kLabEpsilon));
  const V root = CubeRootVector(d, hn::IfThenElse(high, yr, hn::Set(d, 1.0)));
  const V lStar = hn::IfThenElse(high, hn::Sub(hn::Mul(hn::Set(d, 116.0), root), hn::Set(d, 16.0)),
                                 hn::Mul(hn::Set(d, kLuvKappa), yr));
  const V uPrime = hn::Div(hn::Mul(hn::Set(d, 4.0), x), denominator);
  const V vPrime = hn::Div(hn::Mul(hn::Set(d, 9.0), y), denominator);
  const V scale = hn::Mul(hn::Set(d, 13.0), lStar);
  out[0] = lStar;
  out[1] = hn::Mul(scale, hn::Sub(uPrime, hn::Set(d, s.uWhite)));
  out[2] = hn::Mul(scale, hn::Sub(vPrime, hn::Set(d, s.vWhite)));
  ChromaHue(d, s, out[1], out[2], out[3], out[4], refine);
}

// Runs groups of samples of three values (in[i * inStride + 0..2]) through `vector`, which
// computes five results and the lanes the scalar function must settle, writes the results to
// out[i * outStride + 0..4] and calls scalar(sample, result) for those lanes; the remainder
// goes to scalar one by one. Each sample is read before its results are written.
template <class Vector, class Scalar>
HWY_INLINE void RunGroups(const double* in, std::size_t inStride, double* out,
                          std::size_t outStride, std::size_t count, Vector vector,
                          Scalar scalar) {
  const D d;
  const std::size_t lanes = hn::Lanes(d);
  constexpr std::size_t kMaxLanes = hn::MaxLanes(D());
  HWY_ALIGN double columns[3][kMaxLanes];
  HWY_ALIGN double result[5][kMaxLanes];
  std::size_t n = 0;
  for (; n + lanes <= count; n += lanes) {
    const double* source = in + n * inStride;
    for (std::size_t k = 0; k < lanes; ++k) {
      for (std::size_t c = 0; c < 3; ++c) columns[c][k] = source[k * inStride + c];
    }
    const V v0 = hn::Load(d, columns[0]), v1 = hn::Load(d, columns[1]);
    const V v2 = hn::Load(d, columns[2]);
    M refine = hn::Or(hn::Or(InMissingBand(d, v0), InMissingBand(d, v1)), InMissingBand(d, v2));
    V values[5];
    vector(d, v0, v1, v2, values, refine);
    for (std::size_t c = 0; c < 5; ++c) hn::Store(values[c], d, result[c]);
    double* target = out + n * outStride;
    for (std::size_t k = 0; k < lanes; ++k) {
      for (std::size_t c = 0; c < 5; ++c) target[k * outStride + c] = result[c][k];
    }
    const std::uint64_t bits = hn::AllFalse(d, refine) ? 0 : LaneBits(d, refine);
    for (std::size_t k = 0; k < lanes; ++k) {
      if ((bits >> k) & 1) {
        const double sample[3] = {columns[0][k], columns[1][k], columns[2][k]};
        scalar(sample, target + k * outStride);
      }
    }
  }
  for (; n < count; ++n) scalar(in + n * inStride, out + n * outStride);
}

void ConvertVector(const Setup& s, const double* xyz, std::size_t xyzStride, double* out,
                   std::size_t outStride, std::size_t count) {
  RunGroups(
      xyz, xyzStride, out, outStride, count,
      [&s](D d, V x, V y, V z, V* values, M& refine) {
        if (s.kind == CoordinateKind::kLab) {
          Lab(d, s, x, y, z, values, refine);
        } else {
          Luv(d, s, x, y, z, values, refine);
        }
      },
      [&s](const double* sample, double* result) { ConvertOne(s.kind, s.white, sample, result); });
}

// DIN99 from L*, a*, b*: the rotation, compression and lightness are the scalar IEEE
// operations; the logarithms, the hue's atan2 and its cosine and sine are Highway's (1-3 ulp).
// The scalar path takes the lanes with e exactly 0 (its own hue rule), no logarithm of the
// lightness, missing or non-finite values.
HWY_INLINE void Din99(D d, const Din99Setup& s, V l, V a, V b, V* values, M& refine) {
  const V cos16 = hn::Set(d, s.cos16);
  const V sin16 = hn::Set(d, s.sin16);
  const V lightness = hn::Add(hn::Set(d, 1.0), hn::Mul(hn::Set(d, kDin99LightnessFactor), l));
  const V e = hn::Add(hn::Mul(cos16, a), hn::Mul(sin16, b));
  const V f = hn::Mul(hn::Set(d, kDin99BScale), hn::Sub(hn::Mul(cos16, b), hn::Mul(sin16, a)));
  refine = hn::Or(refine, hn::Eq(e, hn::Zero(d)));
  refine = hn::Or(refine, hn::Not(hn::Gt(lightness, hn::Zero(d))));
  V h = Atan2(d, f, e);
  h = hn::IfThenElse(hn::Lt(h, hn::Zero(d)), hn::Add(h, hn::Set(d, kTwoPi)), h);
  const V g = hn::Sqrt(hn::Add(hn::Mul(e, e), hn::Mul(f, f)));
  refine = hn::Or(refine, hn::Not(hn::IsFinite(hn::Add(g, lightness))));
  // Refined lanes get harmless logarithms of 1.
  const V safeLightness = hn::IfThenElse(refine, hn::Set(d, 1.0), lightness);
  const V safeChroma =
      hn::IfThenElse(refine, hn::Set(d, 1.0),
                     hn::Add(hn::Set(d, 1.0), hn::Mul(hn::Set(d, kDin99ChromaFactor), g)));
  const V c99 = hn::Div(hn::Log(d, safeChroma), hn::Set(d, kDin99ChromaFactor * s.kCH * s.kE));
  values[0] = hn::Div(hn::Mul(hn::Set(d, kDin99LightnessScale), hn::Log(d, safeLightness)),
                      hn::Set(d, s.kE));
  values[1] = hn::Mul(c99, hn::Cos(d, h));
  values[2] = hn::Mul(c99, hn::Sin(d, h));
  values[3] = c99;
  values[4] = s.degrees ? hn::Mul(h, hn::Set(d, kRadToDeg)) : h;
}

void Din99Vector(const Din99Setup& s, const double* lab, std::size_t labStride, double* out,
                 std::size_t outStride, std::size_t count) {
  RunGroups(
      lab, labStride, out, outStride, count,
      [&s](D d, V l, V a, V b, V* values, M& refine) { Din99(d, s, l, a, b, values, refine); },
      [&s](const double* sample, double* result) { LabToDIN99(sample, s.kCH, s.kE, result); });
}

}  // namespace HWY_NAMESPACE
}  // namespace velquor
HWY_AFTER_NAMESPACE();

#endif  // VELQUOR_HAVE_HWY

#if !defined(VELQUOR_HAVE_HWY) || HWY_ONCE

namespace velquor {

#if defined(VELQUOR_HAVE_HWY)

HWY_EXPORT(ConvertVector);
HWY_EXPORT(Din99Vector);

namespace {

// The vector form for a usable white; otherwise (every record missing) the portable loop.
bool MakeSetup(CoordinateKind kind, const double* white, Setup& s) {
  if (IsMissingWhite(white)) return false;
  s = {kind, white, 0.0, 0.0, GetHueInDegrees() != 0};
  if (kind == CoordinateKind::kLuv) {
    const double whiteDenominator = white[0] + 15.0 * white[1] + 3.0 * white[2];
    if (IsZero(whiteDenominator)) return false;
    s.uWhite = 4.0 * white[0] / whiteDenominator;
    s.vWhite = 9.0 * white[1] / whiteDenominator;
  }
  return true;
}

}  // namespace

void ConvertCoordinates(CoordinateKind kind, const double* white, const double* xyz,
                        std::size_t xyzStride, double* out, std::size_t outStride,
                        std::size_t count) {
  Setup s;
  if (!MakeSetup(kind, white, s)) {
    ConvertPortable(kind, white, xyz, xyzStride, out, outStride, count);
    return;
  }
  VELQUOR_SIMD_CALL(ConvertVector, ConvertSetup, s, xyz, xyzStride, out, outStride, count);
}

void ConvertLabToDin99(const double* lab, std::size_t labStride, double kCH, double kE,
                       double* out, std::size_t outStride, std::size_t count) {
  const Din99Setup s{kCH, kE, GetHueInDegrees() != 0, std::cos(kDin99Angle),
                     std::sin(kDin99Angle)};
  if (IsMissing(kCH) || IsMissing(kE) || IsZero(kCH) || IsZero(kE)) {
    Din99Portable(s, lab, labStride, out, outStride, count);
    return;
  }
  VELQUOR_SIMD_CALL(Din99Vector, Din99Portable, s, lab, labStride, out, outStride, count);
}

#else  // no Highway: the portable loop only

void ConvertLabToDin99(const double* lab, std::size_t labStride, double kCH, double kE,
                       double* out, std::size_t outStride, std::size_t count) {
  Din99Portable({kCH, kE, GetHueInDegrees() != 0, 0.0, 0.0}, lab, labStride, out, outStride,
                count);
}

void ConvertCoordinates(CoordinateKind kind, const double* white, const double* xyz,
                        std::size_t xyzStride, double* out, std::size_t outStride,
                        std::size_t count) {
  ConvertPortable(kind, white, xyz, xyzStride, out, outStride, count);
}

#endif  // VELQUOR_HAVE_HWY

}  // namespace velquor

#endif  // !VELQUOR_HAVE_HWY || HWY_ONCE
