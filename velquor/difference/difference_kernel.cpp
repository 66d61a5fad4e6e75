// Colour differences of many pairs: the portable per-pair loop over ComputeColorDifference and,
// with Google Highway, its vector form across trials with run-time dispatch.
//
// This file is compiled with -ffp-contract=off: a multiply followed by an add stays two
// roundings, as in the scalar formulas, so that the systems without transcendental functions
// give the scalar code's bits at every level.

// Target-independent part, compiled once although foreach_target.h re-includes this file.
#ifndef VELQUOR_DIFFERENCE_DIFFERENCE_KERNEL_ONCE
#define VELQUOR_DIFFERENCE_DIFFERENCE_KERNEL_ONCE

#include "velquor/difference/difference_kernel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/difference/color_difference.h"
#include "velquor/difference/color_sample.h"
#include "velquor/difference/constants.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/options.h"
#include "velquor/frame/simd_dispatch.h"
#include "velquor/frame/thread_pool.h"

namespace velquor {
namespace {

// One call's inputs, as the per-target functions take them.
struct BatchArgs {
  const double* standards;
  std::size_t standardStride;
  const double* trials;
  std::size_t trialStride;
  std::size_t count;
  int system;
  int illuminant;
  int observer;
  double weights[3];
  double parameter;  // as given; ComputeColorDifference and the vector path both read 0 as 1
  bool hueInDegrees;
  double* differences;
  std::size_t differenceStride;
};

// The reference for one pair: ComputeColorDifference on samples loaded from the batch layout.
// Its records are allocated once per batch call, not per pair.
class PairReference {
 public:
  void Compute(const BatchArgs& args, std::size_t n) {
    Load(args.standards + n * args.standardStride, standard_);
    Load(args.trials + n * args.trialStride, trial_);
    double* out = args.differences + n * args.differenceStride;
    // The chromaticity mode writes slots 1-2 only; every pair starts from a fresh record's
    // zeros, so that its other slots depend neither on the pair before nor on the caller.
    if (args.system == kDiffChromaticity) {
      std::fill(result_.GetData(), result_.GetData() + kBatchDifferenceDoubles, 0.0);
    }
    ComputeColorDifference(standard_, trial_, args.system, args.illuminant, args.observer,
                           args.weights, result_, args.parameter);
    std::copy(result_.GetData(), result_.GetData() + kBatchDifferenceDoubles, out);
  }

 private:
  static void Load(const double* sample, CColorSample& to) {
    std::copy(sample, sample + CValueVector3::kLength, to.xyz.GetData());
    std::copy(sample + CValueVector3::kLength, sample + kBatchSampleDoubles,
              to.coordinates.GetData());
  }

  CColorSample standard_;
  CColorSample trial_;
  CColorVector7 result_;
};

void ComputeRange(const BatchArgs& args, std::size_t begin, std::size_t end) {
  PairReference reference;
  for (std::size_t n = begin; n < end; ++n) reference.Compute(args, n);
}

// Level 0: every pair through ComputeColorDifference.
void ComputePortable(const BatchArgs& args) { ComputeRange(args, 0, args.count); }

}  // namespace
}  // namespace velquor

#endif  // VELQUOR_DIFFERENCE_DIFFERENCE_KERNEL_ONCE

#if defined(VELQUOR_HAVE_HWY)

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "velquor/difference/difference_kernel.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"
#include "velquor/frame/simd_math-inl.h"

HWY_BEFORE_NAMESPACE();
namespace velquor {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Lanes are trials, as many as the target's full vector holds.
using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;
using M = hn::Mask<D>;
constexpr std::size_t kMaxLanes = hn::MaxLanes(D());

// Bands around the thresholds of CIEDE2000 within which a lane is recomputed by the scalar
// function. The vector hue angles differ from the scalar ones by about 1e-13 degrees (a few
// ulp of atan2 times the degree factor), so these bands are wide by six orders of magnitude
// and still catch only some 1e-8 of measured pairs.
constexpr double kHueBand = 1e-6;        // degrees, around 0, 360, a span of 180 and a sum of 360
constexpr double kAxisBand = 1e-9;       // |a'| and |b| both below: the origin case of the hue
constexpr double kNeutralBand = 1e-6;    // C's C't below: the neutral case (IsZero) and nearby
constexpr double kRadicandBand = 1e-9;   // total's radicand below this share of its squares

// The eight values of a group of samples, one vector each.
struct Samples {
  V x, y, z, l, a, b, c, h;
};

// `valid` samples (stride apart) as columns, the last one repeated in the lanes beyond; a
// stride of 0 repeats one sample.
HWY_INLINE Samples LoadSamples(D d, const double* first, std::size_t stride, std::size_t valid) {
  HWY_ALIGN double column[kBatchSampleDoubles][kMaxLanes];
  const std::size_t lanes = hn::Lanes(d);
  for (std::size_t k = 0; k < lanes; ++k) {
    const double* sample = first + std::min(k, valid - 1) * stride;
    for (std::size_t f = 0; f < kBatchSampleDoubles; ++f) column[f][k] = sample[f];
  }
  return {hn::Load(d, column[0]), hn::Load(d, column[1]), hn::Load(d, column[2]),
          hn::Load(d, column[3]), hn::Load(d, column[4]), hn::Load(d, column[5]),
          hn::Load(d, column[6]), hn::Load(d, column[7])};
}

// Lanes the vector formulas do not settle: an XYZ element in the missing band (a superset of a
// missing sample), or a coordinate the formulas read that is not finite.
HWY_INLINE M Unusual(D d, const Samples& s) {
  const M missing = hn::Or(hn::Or(InMissingBand(d, s.x), InMissingBand(d, s.y)),
                           InMissingBand(d, s.z));
  const M finite = hn::And(hn::And(hn::IsFinite(s.l), hn::IsFinite(s.a)),
                           hn::And(hn::IsFinite(s.b), hn::And(hn::IsFinite(s.c), hn::IsFinite(s.h))));
  return hn::Or(missing, hn::Not(finite));
}

// CColorVector7::ClampRange: at or above 999.99 gives 999.99; at or below -999.99, and NaN,
// give -999.99.
HWY_INLINE V Clamp(D d, V v) {
  const V high = hn::Set(d, CColorVector7::kLimit);
  const V low = hn::Set(d, -CColorVector7::kLimit);
  const V r = hn::IfThenElse(hn::Ge(v, high), high, v);
  return hn::IfThenElse(hn::Not(hn::Gt(v, low)), low, r);
}

HWY_INLINE V CosDeg(D d, V degrees) { return hn::Cos(d, hn::Mul(degrees, hn::Set(d, kDegToRad))); }

HWY_INLINE V SinDeg(D d, V degrees) { return hn::Sin(d, hn::Mul(degrees, hn::Set(d, kDegToRad))); }

// Delta E*ab (ComputeDeltaEab), operation for operation: slots 1-7 in r[0..6].
HWY_INLINE void DeltaEab(D d, const Samples& s, const Samples& t, V* r) {
  const V dL = hn::Sub(t.l, s.l);
  const V da = hn::Sub(t.a, s.a);
  const V db = hn::Sub(t.b, s.b);
  const V dC = hn::Sub(t.c, s.c);
  const V dE = hn::Sqrt(hn::Add(hn::Add(hn::Mul(dL, dL), hn::Mul(da, da)), hn::Mul(db, db)));
  const V q = hn::Sub(hn::Sub(hn::Mul(dE, dE), hn::Mul(dL, dL)), hn::Mul(dC, dC));
  const V zero = hn::Zero(d);
  const V magnitude = hn::IfThenElse(hn::Gt(q, zero), hn::Sqrt(q), zero);
  // Clockwise trials (bs at - as bt > 0) get the negative hue difference.
  const V cross = hn::Sub(hn::Mul(s.b, t.a), hn::Mul(s.a, t.b));
  r[0] = dL;
  r[1] = da;
  r[2] = db;
  r[3] = dL;
  r[4] = dC;
  r[5] = hn::IfThenElse(hn::Gt(cross, zero), hn::Neg(magnitude), magnitude);
  r[6] = dE;
}

HWY_INLINE V Root3(V x, V y, V z) {
  return hn::Sqrt(hn::Add(hn::Add(hn::Mul(x, x), hn::Mul(y, y)), hn::Mul(z, z)));
}

// The divisors of a weighted system, from the standard alone: slot 4 = dL / lightness, ...
struct Weighting {
  V lightness, chroma, hue;
};

// CMC (l:c) (ApplyCmcWeighting): l SL, c SC and SH.
HWY_INLINE Weighting CmcWeighting(D d, const Samples& s, const BatchArgs& args) {
  const V one = hn::Set(d, 1.0);
  const V lightness = s.l;
  const V chroma = s.c;
  const V hue = args.hueInDegrees ? s.h : hn::Mul(s.h, hn::Set(d, kRadToDeg));
  const V sl = hn::IfThenElse(
      hn::Ge(lightness, hn::Set(d, kCmcLightnessBreak)),
      hn::Div(hn::Mul(hn::Set(d, kCmcSlScale), lightness),
              hn::Add(one, hn::Mul(hn::Set(d, kCmcSlDenominator), lightness))),
      hn::Set(d, kCmcSlDark));
  const V sc = hn::Add(hn::Div(hn::Mul(hn::Set(d, kCmcScScale), chroma),
                               hn::Add(one, hn::Mul(hn::Set(d, kCmcScDenominator), chroma))),
                       hn::Set(d, kCmcScOffset));
  const V chroma4 = hn::Mul(hn::Mul(hn::Mul(chroma, chroma), chroma), chroma);
  const V f = hn::Sqrt(hn::Div(chroma4, hn::Add(chroma4, hn::Set(d, kCmcF))));
  const M inside = hn::And(hn::Ge(hue, hn::Set(d, kCmcHueLow)), hn::Le(hue, hn::Set(d, kCmcHueHigh)));
  const V tInside = hn::Add(
      hn::Set(d, kCmcTInside),
      hn::Abs(hn::Mul(hn::Set(d, kCmcTInsideAmplitude),
                      CosDeg(d, hn::Add(hue, hn::Set(d, kCmcTInsidePhase))))));
  const V tOutside = hn::Add(
      hn::Set(d, kCmcTOutside),
      hn::Abs(hn::Mul(hn::Set(d, kCmcTOutsideAmplitude),
                      CosDeg(d, hn::Add(hue, hn::Set(d, kCmcTOutsidePhase))))));
  const V t = hn::IfThenElse(inside, tInside, tOutside);
  const V sh = hn::Mul(sc, hn::Sub(hn::Add(hn::Mul(f, t), one), f));
  return {hn::Mul(hn::Set(d, args.weights[0]), sl), hn::Mul(hn::Set(d, args.weights[1]), sc), sh};
}

// CIE94 (ApplyCie94Weighting): kL (SL = 1), kC SC and kH SH.
HWY_INLINE Weighting Cie94Weighting(D d, const Samples& s, const BatchArgs& args) {
  const V one = hn::Set(d, 1.0);
  const V sc = hn::Add(one, hn::Mul(hn::Set(d, kCie94Chroma), s.c));
  const V sh = hn::Add(one, hn::Mul(hn::Set(d, kCie94Hue), s.c));
  return {hn::Set(d, args.weights[0]), hn::Mul(hn::Set(d, args.weights[1]), sc),
          hn::Mul(hn::Set(d, args.weights[2]), sh)};
}

// Slots 4-7 of CMC and CIE94 from the Delta E*ab record.
HWY_INLINE void ApplyWeighting(const Weighting& w, V* r) {
  r[3] = hn::Div(r[3], w.lightness);
  r[4] = hn::Div(r[4], w.chroma);
  r[5] = hn::Div(r[5], w.hue);
  r[6] = Root3(r[3], r[4], r[5]);
}

// DIN 6175-2 (ApplyDin6175Weighting): slot 7 only.
HWY_INLINE void Din6175(D d, const Samples& s, const BatchArgs& args, V* r) {
  const V p = hn::Set(d, args.parameter == 0.0 ? 1.0 : args.parameter);
  const V gL = hn::Set(d, args.weights[0]);
  const V gC = hn::Set(d, args.weights[1]);
  const V gH = hn::Set(d, args.weights[2]);
  const V minimum = hn::Set(d, kDinMinimumWeight);
  const V rootL = hn::Sqrt(s.l);
  const V sl = hn::Add(hn::Mul(hn::Set(d, kDinSlRoot), rootL), hn::Div(hn::Set(d, kDinSlParameter), p));
  const V tL = hn::Div(r[0], hn::Mul(gL, sl));
  // Near-neutral standards weight da and db by 0.7; the hue angle is compared with 27.
  const M nearNeutral =
      hn::And(hn::Lt(s.c, hn::Set(d, kDinChromaHigh)),
              hn::Or(hn::Lt(s.c, hn::Set(d, kDinChromaLow)), hn::Ge(s.h, hn::Set(d, kDinHueBreak))));
  const V rootC = hn::Sqrt(s.c);
  const V sc = hn::Add(hn::Sub(hn::Mul(hn::Set(d, kDinScChroma), rootC),
                               hn::Mul(hn::Set(d, kDinScLightness), rootL)),
                       hn::Div(hn::Set(d, kDinScParameter), p));
  const V sh = hn::Add(hn::Sub(hn::Add(hn::Mul(hn::Set(d, kDinShChroma), rootC), hn::Set(d, kDinShOffset)),
                               hn::Mul(hn::Set(d, kDinShLightness), rootL)),
                       hn::Div(hn::Set(d, kDinShParameter), p));
  // std::max(x, 0.7) keeps a NaN x, as IfThenElse on x < 0.7 does.
  const V scFloor = hn::IfThenElse(hn::Lt(sc, minimum), minimum, sc);
  const V shFloor = hn::IfThenElse(hn::Lt(sh, minimum), minimum, sh);
  const V t1 = hn::IfThenElse(nearNeutral, hn::Div(r[1], hn::Mul(gC, minimum)),
                              hn::Div(r[4], hn::Mul(gC, scFloor)));
  const V t2 = hn::IfThenElse(nearNeutral, hn::Div(r[2], hn::Mul(gH, minimum)),
                              hn::Div(r[5], hn::Mul(gH, shFloor)));
  r[6] = Root3(tL, t1, t2);
}

// C^7 / (C^7 + 25^7).
HWY_INLINE V ChromaSaturation(D d, V chroma) {
  const V c2 = hn::Mul(chroma, chroma);
  const V c7 = hn::Mul(hn::Mul(hn::Mul(c2, c2), c2), chroma);
  return hn::Div(c7, hn::Add(c7, hn::Set(d, kDe2000TwentyFiveToSeventh)));
}

HWY_INLINE M Near(D d, V x, double threshold, double band) {
  return hn::Lt(hn::Abs(hn::Sub(x, hn::Set(d, threshold))), hn::Set(d, band));
}

// CIEDE2000 (ApplyCiede2000): slots 4-7; returns the lanes near one of its thresholds.
HWY_INLINE M Ciede2000(D d, const Samples& s, const Samples& t, const BatchArgs& args, V* r) {
  const V one = hn::Set(d, 1.0);
  const V half = hn::Set(d, 0.5);
  const V full = hn::Set(d, 360.0);
  const V halfTurn = hn::Set(d, 180.0);
  const V zero = hn::Zero(d);
  const V degrees = hn::Set(d, kRadToDeg);

  const V g = hn::Mul(half, hn::Sub(one, hn::Sqrt(ChromaSaturation(d, hn::Mul(hn::Add(s.c, t.c), half)))));
  const V aPrimeS = hn::Mul(hn::Add(one, g), s.a);
  const V aPrimeT = hn::Mul(hn::Add(one, g), t.a);
  const V cPrimeS = hn::Sqrt(hn::Add(hn::Mul(aPrimeS, aPrimeS), hn::Mul(s.b, s.b)));
  const V cPrimeT = hn::Sqrt(hn::Add(hn::Mul(aPrimeT, aPrimeT), hn::Mul(t.b, t.b)));
  V hPrimeS = hn::Mul(Atan2(d, s.b, aPrimeS), degrees);
  V hPrimeT = hn::Mul(Atan2(d, t.b, aPrimeT), degrees);
  hPrimeS = hn::IfThenElse(hn::Lt(hPrimeS, zero), hn::Add(hPrimeS, full), hPrimeS);
  hPrimeT = hn::IfThenElse(hn::Lt(hPrimeT, zero), hn::Add(hPrimeT, full), hPrimeT);

  const V meanL = hn::Mul(hn::Add(s.l, t.l), half);
  const V meanC = hn::Mul(hn::Add(cPrimeS, cPrimeT), half);
  const V product = hn::Mul(cPrimeS, cPrimeT);
  const V hueSum = hn::Add(hPrimeS, hPrimeT);
  const V hueSpan = hn::Abs(hn::Sub(hPrimeT, hPrimeS));
  // Lanes near a threshold are recomputed, so plain comparisons decide the others.
  const V meanH = hn::IfThenElse(
      hn::Lt(hueSpan, halfTurn), hn::Mul(hueSum, half),
      hn::Mul(hn::IfThenElse(hn::Ge(hueSum, full), hn::Sub(hueSum, full), hn::Add(hueSum, full)), half));

  const V lOffset = hn::Sub(meanL, hn::Set(d, 50.0));
  const V lOffset2 = hn::Mul(lOffset, lOffset);
  const V sl = hn::Add(one, hn::Div(hn::Mul(hn::Set(d, kDe2000SlScale), lOffset2),
                                    hn::Sqrt(hn::Add(hn::Set(d, kDe2000SlOffset), lOffset2))));
  const V sc = hn::Add(one, hn::Mul(hn::Set(d, kDe2000Sc), meanC));
  V tt = hn::Sub(one, hn::Mul(hn::Set(d, 0.17), CosDeg(d, hn::Sub(meanH, hn::Set(d, 30.0)))));
  tt = hn::Add(tt, hn::Mul(hn::Set(d, 0.24), CosDeg(d, hn::Mul(hn::Set(d, 2.0), meanH))));
  tt = hn::Add(tt, hn::Mul(hn::Set(d, 0.32),
                           CosDeg(d, hn::Add(hn::Mul(hn::Set(d, 3.0), meanH), hn::Set(d, 6.0)))));
  tt = hn::Sub(tt, hn::Mul(hn::Set(d, 0.2),
                           CosDeg(d, hn::Sub(hn::Mul(hn::Set(d, 4.0), meanH), hn::Set(d, 63.0)))));
  const V sh = hn::Add(one, hn::Mul(hn::Mul(hn::Set(d, kDe2000Sh), meanC), tt));

  const V thetaArg = hn::Mul(hn::Sub(meanH, hn::Set(d, kDe2000ThetaCentre)), hn::Set(d, kDe2000ThetaWidth));
  const V deltaTheta = hn::Mul(hn::Set(d, kDe2000ThetaPeak), hn::Exp(d, hn::Neg(hn::Mul(thetaArg, thetaArg))));
  const V rc = hn::Mul(hn::Set(d, 2.0), hn::Sqrt(ChromaSaturation(d, meanC)));
  const V rt = hn::Mul(hn::Neg(SinDeg(d, hn::Mul(hn::Set(d, 2.0), deltaTheta))), rc);

  V dh = hn::Sub(hPrimeT, hPrimeS);
  dh = hn::IfThenElse(hn::Gt(dh, halfTurn), hn::Sub(dh, full),
                      hn::IfThenElse(hn::Lt(dh, hn::Neg(halfTurn)), hn::Add(dh, full), dh));
  const V dL = hn::Sub(t.l, s.l);
  const V dC = hn::Sub(cPrimeT, cPrimeS);
  const V dH = hn::Mul(hn::Mul(hn::Set(d, 2.0), hn::Sqrt(product)), SinDeg(d, hn::Mul(dh, half)));

  const V wL = hn::Div(dL, hn::Mul(hn::Set(d, args.weights[0]), sl));
  const V wC = hn::Div(dC, hn::Mul(hn::Set(d, args.weights[1]), sc));
  const V wH = hn::Div(dH, hn::Mul(hn::Set(d, args.weights[2]), sh));
  const V squares = hn::Add(hn::Add(hn::Mul(wL, wL), hn::Mul(wC, wC)), hn::Mul(wH, wH));
  const V radicand = hn::Add(squares, hn::Mul(hn::Mul(rt, wC), wH));
  r[3] = wL;
  r[4] = wC;
  r[5] = wH;
  r[6] = hn::Sqrt(radicand);

  const V axis = hn::Set(d, kAxisBand);
  const M originS = hn::And(hn::Lt(hn::Abs(aPrimeS), axis), hn::Lt(hn::Abs(s.b), axis));
  const M originT = hn::And(hn::Lt(hn::Abs(aPrimeT), axis), hn::Lt(hn::Abs(t.b), axis));
  const V hueLow = hn::Set(d, kHueBand);
  const V hueHigh = hn::Set(d, 360.0 - kHueBand);
  const M turnS = hn::Or(hn::Lt(hPrimeS, hueLow), hn::Gt(hPrimeS, hueHigh));
  const M turnT = hn::Or(hn::Lt(hPrimeT, hueLow), hn::Gt(hPrimeT, hueHigh));
  M refine = hn::Or(hn::Or(originS, originT), hn::Or(turnS, turnT));
  refine = hn::Or(refine, hn::Lt(product, hn::Set(d, kNeutralBand)));
  refine = hn::Or(refine, hn::Or(Near(d, hueSpan, 180.0, kHueBand), Near(d, hueSum, 360.0, kHueBand)));
  refine = hn::Or(refine, hn::Not(hn::Gt(radicand, hn::Mul(squares, hn::Set(d, kRadicandBand)))));
  return refine;
}

// One group of lanes: results of pairs n .. n + lanes - 1, and the lanes to recompute.
template <int kSystem>
HWY_INLINE M ComputeGroup(D d, const Samples& s, const Samples& t, const Weighting& w,
                          const BatchArgs& args, V* r) {
  M refine = hn::Or(Unusual(d, s), Unusual(d, t));
  DeltaEab(d, s, t, r);
  if constexpr (kSystem == kDiffCmc || kSystem == kDiffCie94) {
    ApplyWeighting(w, r);
  } else if constexpr (kSystem == kDiffDin6175) {
    Din6175(d, s, args, r);
  } else if constexpr (kSystem == kDiffCie2000) {
    refine = hn::Or(refine, Ciede2000(d, s, t, args, r));
  }
  for (int k = 0; k < 7; ++k) {
    refine = hn::Or(refine, hn::Not(hn::IsFinite(r[k])));
    r[k] = Clamp(d, r[k]);
  }
  return refine;
}

template <int kSystem>
HWY_INLINE Weighting WeightingFor(D d, const Samples& s, const BatchArgs& args) {
  if constexpr (kSystem == kDiffCmc) return CmcWeighting(d, s, args);
  if constexpr (kSystem == kDiffCie94) return Cie94Weighting(d, s, args);
  const V one = hn::Set(d, 1.0);
  return {one, one, one};
}

// Groups of lanes; the last group is filled up with copies of its last pair, so that every pair
// takes the same path whatever its place in the batch, and a single pair gives the bits it
// gives in a large batch.
template <int kSystem>
void ComputeSystem(const BatchArgs& args) {
  const D d;
  const std::size_t lanes = hn::Lanes(d);
  const bool oneStandard = args.standardStride == 0;
  const Samples standard = LoadSamples(d, args.standards, 0, 1);
  // One standard: its weighting is computed once for the whole batch.
  const Weighting standardWeighting = WeightingFor<kSystem>(d, standard, args);
  PairReference reference;
  HWY_ALIGN double slots[kBatchDifferenceDoubles][kMaxLanes];
  for (std::size_t n = 0; n < args.count; n += lanes) {
    const std::size_t valid = std::min(lanes, args.count - n);
    const Samples s = oneStandard ? standard
                                  : LoadSamples(d, args.standards + n * args.standardStride,
                                                args.standardStride, valid);
    const Samples t = LoadSamples(d, args.trials + n * args.trialStride, args.trialStride, valid);
    const Weighting w = oneStandard ? standardWeighting : WeightingFor<kSystem>(d, s, args);
    V r[kBatchDifferenceDoubles];
    const M refine = ComputeGroup<kSystem>(d, s, t, w, args, r);
    for (std::size_t k = 0; k < kBatchDifferenceDoubles; ++k) hn::Store(r[k], d, slots[k]);
    const std::uint64_t refineBits = hn::AllFalse(d, refine) ? 0 : LaneBits(d, refine);
    for (std::size_t k = 0; k < valid; ++k) {
      if (((refineBits >> k) & 1) != 0) {
        reference.Compute(args, n + k);
        continue;
      }
      double* out = args.differences + (n + k) * args.differenceStride;
      for (std::size_t j = 0; j < kBatchDifferenceDoubles; ++j) out[j] = slots[j][k];
    }
  }
}

void ComputeVector(const BatchArgs& args) {
  switch (args.system) {
    case kDiffCieLab:
    case kDiffCieLch:
    case kDiffCieLuv:
    case kDiffDin99:
      return ComputeSystem<kDiffCieLab>(args);
    case kDiffCmc:
      return ComputeSystem<kDiffCmc>(args);
    case kDiffCie94:
      return ComputeSystem<kDiffCie94>(args);
    case kDiffCie2000:
      return ComputeSystem<kDiffCie2000>(args);
    case kDiffDin6175:
      return ComputeSystem<kDiffDin6175>(args);
    default:
      return ComputePortable(args);
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace velquor
HWY_AFTER_NAMESPACE();

#endif  // VELQUOR_HAVE_HWY

#if !defined(VELQUOR_HAVE_HWY) || HWY_ONCE

namespace velquor {

#if defined(VELQUOR_HAVE_HWY)
HWY_EXPORT(ComputeVector);
#endif

namespace {

void Run(const BatchArgs& args) {
  if (args.count == 0) return;
#if defined(VELQUOR_HAVE_HWY)
  if (IsVectorDifferenceSystem(args.system)) {
    VELQUOR_SIMD_CALL(ComputeVector, ComputePortable, args);
    return;
  }
#endif
  ComputePortable(args);
}

BatchArgs MakeArgs(const double* standards, std::size_t standardStride, const double* trials,
                   std::size_t trialStride, std::size_t count, const DifferenceSystemChoice& choice,
                   double* differences, std::size_t differenceStride) {
  BatchArgs args{standards, standardStride, trials, trialStride, count, choice.system,
                 choice.illuminant, choice.observer, {1.0, 1.0, 1.0}, choice.parameter,
                 GetHueInDegrees() != 0, differences, differenceStride};
  if (choice.weights != nullptr) std::copy(choice.weights, choice.weights + 3, args.weights);
  return args;
}

}  // namespace

bool IsVectorDifferenceSystem(int system) {
  switch (system) {
    case kDiffCieLab:
    case kDiffCmc:
    case kDiffCie94:
    case kDiffCieLch:
    case kDiffCieLuv:
    case kDiffDin99:
    case kDiffCie2000:
    case kDiffDin6175:
      return true;
    default:
      return false;
  }
}

void ComputeDifferences(const double* standards, std::size_t standardStride, const double* trials,
                        std::size_t trialStride, std::size_t count,
                        const DifferenceSystemChoice& choice, double* differences,
                        std::size_t differenceStride) {
  Run(MakeArgs(standards, standardStride, trials, trialStride, count, choice, differences,
               differenceStride));
}

void ComputeDifferencesParallel(const double* standards, std::size_t standardStride,
                                const double* trials, std::size_t trialStride, std::size_t count,
                                const DifferenceSystemChoice& choice, double* differences,
                                std::size_t differenceStride) {
  const BatchArgs args = MakeArgs(standards, standardStride, trials, trialStride, count, choice,
                                  differences, differenceStride);
  ParallelFor(count, kDifferenceChunk, [&](std::size_t begin, std::size_t end) {
    BatchArgs chunk = args;
    chunk.standards += begin * args.standardStride;
    chunk.trials += begin * args.trialStride;
    chunk.differences += begin * args.differenceStride;
    chunk.count = end - begin;
    Run(chunk);
  });
}

}  // namespace velquor

#endif  // !VELQUOR_HAVE_HWY || HWY_ONCE
