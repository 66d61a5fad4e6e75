#include "velquor/indices/dominant_wavelength.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "velquor/colorimetry/chromaticity.h"
#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/colorimetry/reference_white.h"
#include "velquor/frame/numeric.h"
#include "velquor/indices/cubic_spline.h"
#include "velquor/indices/locus_constants.h"

namespace velquor {

namespace {

constexpr ChromaticityPoint kMissingPoint{kMissing, kMissing};

// Largest spline window: five points on each side of the crossing segment's upper end.
constexpr std::size_t kSplineWindow = 2 * kLocusSplineHalfWidth + 1;

// Angle of p about the centre, atan2(dx, dy): x difference first, so the angle runs clockwise
// from the +y direction and grows with wavelength around a white point inside the locus.
double AngleAbout(const ChromaticityPoint& centre, const ChromaticityPoint& p) {
  return std::atan2(p.x - centre.x, p.y - centre.y);
}

double Distance(const ChromaticityPoint& a, const ChromaticityPoint& b) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  return std::sqrt(dx * dx + dy * dy);
}

bool OppositeSigns(double u, double v) {
  return (u < 0.0 && v > 0.0) || (u > 0.0 && v < 0.0);
}

// Sine of the angle between the directions a -> b and a -> c below which c counts as lying on
// the ray from a through b: far above the rounding of chromaticities of order 0.1 to 1
// (about 1e-16), far below the angle between neighbouring locus points seen from a white
// point (above 1e-3).
constexpr double kOnRaySine = 1e-12;

// Whether c lies on the ray from a through b (not behind a), to within kOnRaySine.
bool OnRay(const ChromaticityPoint& a, const ChromaticityPoint& b, const ChromaticityPoint& c) {
  const double dx1 = b.x - a.x, dy1 = b.y - a.y;
  const double dx2 = c.x - a.x, dy2 = c.y - a.y;
  const double cross = dx1 * dy2 - dy1 * dx2;
  const double dot = dx1 * dx2 + dy1 * dy2;
  return dot > 0.0 && std::fabs(cross) <= kOnRaySine * Distance(a, b) * Distance(a, c);
}

// The spectral side whose upper end the ray from W through S passes through when that end is
// a corner of the purple line (400 nm or 700 nm), or 0. Such a ray touches the purple line and
// a spectral side at once; the library reports the spectral colour, so a sample on the locus
// at either end gets that end's wavelength. At 700 nm the side is the one ending at the first
// point of that chromaticity (690 nm in the 10 degree table, which repeats it at 700 nm).
std::size_t CornerSide(const SpectrumLocus& locus, const ChromaticityPoint& w,
                       const ChromaticityPoint& s) {
  if (OnRay(w, s, locus[0])) return 1;
  std::size_t k = kLocusLastSpectral;
  if (!OnRay(w, s, locus[k])) return 0;
  while (k > 1 && locus[k - 1].x == locus[k].x && locus[k - 1].y == locus[k].y) --k;
  return k;
}

double Missing(double& purity) {
  purity = kMissing;
  return kMissing;
}

// The locus point at `wavelength` on the spline through locus points first..last (inclusive),
// x and y interpolated separately against wavelength.
ChromaticityPoint SplineLocusPoint(const SpectrumLocus& locus, int first, int last,
                                   double wavelength) {
  std::array<double, kSplineWindow> knots{}, xs{}, ys{};
  const std::size_t count = static_cast<std::size_t>(last - first + 1);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t j = static_cast<std::size_t>(first) + i;
    knots[i] = kLocusFirstWavelength + kLocusStep * static_cast<double>(j);
    xs[i] = locus[j].x;
    ys[i] = locus[j].y;
  }
  const std::span<const double> at(knots.data(), count);
  return {CubicSplineInterpolate(at, std::span<const double>(xs.data(), count), wavelength),
          CubicSplineInterpolate(at, std::span<const double>(ys.data(), count), wavelength)};
}

}  // namespace

ChromaticityPoint FarPointOnRay(const ChromaticityPoint& from, const ChromaticityPoint& through) {
  const double dx = through.x - from.x;
  const double dy = through.y - from.y;
  if (IsZero(dx)) return {from.x, dy > 0.0 ? kFarCoordinate : kNearCoordinate};
  const double slope = dy / dx;
  const double intercept = from.y - slope * from.x;
  if (std::fabs(slope) <= 1.0) {
    const double x = dx > 0.0 ? kFarCoordinate : kNearCoordinate;
    return {x, slope * x + intercept};
  }
  const double y = dy > 0.0 ? kFarCoordinate : kNearCoordinate;
  return {(y - intercept) / slope, y};
}

ChromaticityPoint LineIntersection(const ChromaticityPoint& p1, const ChromaticityPoint& p2,
                                   const ChromaticityPoint& q1, const ChromaticityPoint& q2) {
  const double pdx = p2.x - p1.x;
  const double qdx = q2.x - q1.x;
  const bool pVertical = IsZero(pdx);
  const bool qVertical = IsZero(qdx);
  if (pVertical && qVertical) return kMissingPoint;
  if (pVertical) {
    const double slope = (q2.y - q1.y) / qdx;
    return {p1.x, slope * p1.x + (q1.y - slope * q1.x)};
  }
  if (qVertical) {
    const double slope = (p2.y - p1.y) / pdx;
    return {q1.x, slope * q1.x + (p1.y - slope * p1.x)};
  }
  const double pSlope = (p2.y - p1.y) / pdx;
  const double qSlope = (q2.y - q1.y) / qdx;
  if (IsEqual(pSlope, qSlope, kZeroEpsilon)) return kMissingPoint;
  const double pIntercept = p1.y - pSlope * p1.x;
  const double qIntercept = q1.y - qSlope * q1.x;
  const double x = (qIntercept - pIntercept) / (pSlope - qSlope);
  return {x, pSlope * x + pIntercept};
}

int Orientation(const ChromaticityPoint& a, const ChromaticityPoint& b,
                const ChromaticityPoint& c) {
  const double dx1 = b.x - a.x, dy1 = b.y - a.y;
  const double dx2 = c.x - a.x, dy2 = c.y - a.y;
  const double cross = dx1 * dy2 - dy1 * dx2;
  if (cross > 0.0) return 1;
  if (cross < 0.0) return -1;
  if (OppositeSigns(dx1, dx2) || OppositeSigns(dy1, dy2)) return -1;  // behind a
  if (dx2 * dx2 + dy2 * dy2 > dx1 * dx1 + dy1 * dy1) return 1;        // beyond b
  return 0;                                                           // between a and b
}

// The walk:
//  1. W, the white point of the illuminant and observer, and S, the sample, in x, y.
//  2. P = FarPointOnRay(W, S). A ray through a corner of the purple line (400 nm, 700 nm)
//     takes the spectral side that ends there (CornerSide). Otherwise walk the locus sides
//     (L[30], L[0]), (L[0], L[1]), ... (L[29], L[30]): a side is crossed when the line W-P
//     separates or touches its ends and its line separates or touches W and P. The first side
//     (700 nm -> 400 nm) is the purple line: the purity then refers to its intersection I with
//     the line W-S, P is replaced by FarPointOnRay(S, W), the far point of the opposite ray,
//     and the walk goes on to find where that ray crosses the spectral sides.
//  3. On the crossed side A = L[k-1], B = L[k], with angles about W taken as atan2(dx, dy):
//     wavelength = 400 + 10 (k - 1) + 10 (a_P - a_A) / (a_B - a_A), linear in angle.
//  4. Outside the purple case the locus point is the not-a-knot spline of the locus points
//     max(k-5, 0) .. max(min(k+5, 29), k) at that wavelength, x and y separately (700 nm is a
//     knot only for the last side, 690-700 nm, whose end it is); then it is put on the
//     ray exactly, keeping its distance r from W: W + r (sin a_P, cos a_P). In the purple case
//     I keeps its distance and lies on the sample's ray, which runs opposite to a_P:
//     W - r (sin a_P, cos a_P).
//  5. Purity = 100 |S - W| / |locus point - W|.
double DominantWavelength(int illuminant, int observer, const CValueVector3& colour, double& purity,
                          ChromaticityPoint* whitePoint, ChromaticityPoint* samplePoint,
                          ChromaticityPoint* locusPoint) {
  if (IsMissingXYZ(colour)) return Missing(purity);

  // The white point of the pair's weighting table, read in place rather than copied.
  const double* white = FindReferenceWhite(illuminant, observer);
  if (white == nullptr) return Missing(purity);
  ChromaticityPoint w;
  TripleToChromaticity(white, w.x, w.y);

  ChromaticityPoint s;
  XYZToChromaticity(colour, s.x, s.y);
  if (IsMissing(s.x) && IsMissing(s.y)) return Missing(purity);  // X + Y + Z is zero

  if (IsEqual(s.x, w.x, kZeroEpsilon) && IsEqual(s.y, w.y, kZeroEpsilon)) {
    purity = 0.0;
    return kMissing;
  }

  ChromaticityPoint far = FarPointOnRay(w, s);
  const SpectrumLocus& locus = GetSpectrumLocus(observer);

  bool purple = false;
  ChromaticityPoint onPurpleLine = kMissingPoint;
  std::size_t crossed = CornerSide(locus, w, s);  // 0: no spectral side crossed yet
  ChromaticityPoint previous = locus[kLocusLastSpectral];
  int previousSide = Orientation(w, far, previous);
  for (std::size_t k = 0; crossed == 0 && k + 1 < kLocusPointCount; ++k) {
    int side = Orientation(w, far, locus[k]);
    if (side * previousSide < 1 &&
        Orientation(previous, locus[k], far) * Orientation(previous, locus[k], w) < 1) {
      if (k > 0) {
        crossed = k;
        break;
      }
      purple = true;
      onPurpleLine = LineIntersection(w, s, previous, locus[0]);
      far = FarPointOnRay(s, w);
      side = Orientation(w, far, locus[0]);
    }
    previous = locus[k];
    previousSide = side;
  }
  // No crossing (a white point outside the locus) or no usable intersection.
  if (crossed == 0 || (purple && IsMissing(onPurpleLine.x) && IsMissing(onPurpleLine.y))) {
    return Missing(purity);
  }

  const ChromaticityPoint& a = locus[crossed - 1];
  const ChromaticityPoint& b = locus[crossed];
  const double angleA = AngleAbout(w, a);
  const double angleB = AngleAbout(w, b);
  const double angleP = AngleAbout(w, far);
  if (IsZero(angleB - angleA)) return Missing(purity);  // a side pointing straight at W
  const double wavelength = kLocusFirstWavelength + kLocusStep * static_cast<double>(crossed - 1) +
                            (angleP - angleA) / (angleB - angleA) * kLocusStep;

  ChromaticityPoint onLocus = onPurpleLine;
  if (!purple) {
    // The window always holds both ends of the crossed side, so the 690-700 nm side takes
    // 700 nm as its last knot rather than extrapolating past 690 nm.
    const int k = static_cast<int>(crossed);
    const int last = std::max(std::min(k + kLocusSplineHalfWidth, kLocusSplineLastPoint), k);
    onLocus = SplineLocusPoint(locus, std::max(k - kLocusSplineHalfWidth, 0), last, wavelength);
  }
  const double r = Distance(w, onLocus);
  const double direction = purple ? -1.0 : 1.0;
  onLocus = {w.x + direction * std::sin(angleP) * r, w.y + direction * std::cos(angleP) * r};

  purity = Distance(w, s) / Distance(w, onLocus) * kPurityPercent;

  if (whitePoint != nullptr) {
    *whitePoint = w;
    if (samplePoint != nullptr) *samplePoint = s;
    if (locusPoint != nullptr) *locusPoint = onLocus;
  }
  return purple ? -wavelength : wavelength;
}

}  // namespace velquor
