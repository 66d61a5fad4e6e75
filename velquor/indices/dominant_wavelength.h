// Dominant wavelength and excitation purity (CIE 15:2004, 9.1; ASTM E308, 7.4), and the plane
// geometry they are built on.
//
// The dominant wavelength is the wavelength of the spectral colour on the ray from the white
// point of the illuminant and observer through the sample in the chromaticity diagram; the
// excitation purity is the sample's distance from the white point as a percentage of that
// spectral colour's distance. When the ray leaves the diagram through the purple line (the
// straight line from 700 nm back to 400 nm), the wavelength is the complementary one, found on
// the opposite ray and returned as a negative number, and the purity refers to the point on
// the purple line.
//
// The wavelength is located on the library's 32-point spectrum-locus polygon (see
// spectrum_locus.h) by the angle of the ray about the white point, interpolated linearly in
// angle between the two locus points of the crossed side; the locus point that the purity
// refers to is interpolated at that wavelength with a not-a-knot cubic spline in wavelength
// (cubic_spline.h) over up to five locus points on each side of the crossed side's upper end,
// 400 nm to 690 nm, and always both ends of the crossed side (so 700 nm is the last knot of
// the 690-700 nm side).
//
// End conditions: the spline interpolates, so a sample exactly on a tabulated locus point gets
// that point's wavelength and purity 100 (to rounding), ends included: the spline is never
// evaluated beyond its knots, and a ray through a corner of the purple line (400 nm or
// 700 nm) is taken as reaching the spectral side that ends there, not the purple line. The
// 10 degree table repeats its 690 nm point at 700 nm; a sample at that chromaticity gets
// 690 nm, the first wavelength that has it.
#pragma once

#include "velquor/data/value_vectors.h"
#include "velquor/indices/spectrum_locus.h"

namespace velquor {

// A point on the ray from `from` through `through` that lies beyond the chromaticity diagram.
// With dx, dy = through - from: if dx is zero (IsZero) the point is (from.x, 10000) for
// dy > 0 and (from.x, 0) otherwise. Else, with slope m = dy / dx and intercept
// c = from.y - m from.x: for |m| <= 1, x = 10000 if dx > 0 and 0 otherwise, y = m x + c; for
// |m| > 1, y = 10000 if dy > 0 and 0 otherwise, x = (y - c) / m. The low side stops at the
// axis, not beyond: every chromaticity is positive, so the axis already lies outside the
// diagram. Equal points (dx = dy = 0) give (from.x, 0).
ChromaticityPoint FarPointOnRay(const ChromaticityPoint& from, const ChromaticityPoint& through);

// Intersection of the line through p1, p2 with the line through q1, q2, in slope-intercept
// form; a vertical line (dx zero by IsZero) contributes its x and the other line gives y.
// Parallel lines (both vertical, or slopes equal within 2.220446049250313e-16) give the missing
// point (1e-05, 1e-05). Two equal points count as a vertical line through them.
ChromaticityPoint LineIntersection(const ChromaticityPoint& p1, const ChromaticityPoint& p2,
                                   const ChromaticityPoint& q1, const ChromaticityPoint& q2);

// Side of c with respect to the directed line a -> b: +1 if c lies to the left (cross product
// (b - a) x (c - a) > 0), -1 if to the right. For collinear points: -1 if c lies behind a (a
// component of c - a has the sign opposite to the same component of b - a), +1 if c lies
// beyond b (|c - a|^2 > |b - a|^2), 0 if c lies between a and b, ends included. Exact; no
// tolerance.
int Orientation(const ChromaticityPoint& a, const ChromaticityPoint& b, const ChromaticityPoint& c);

// Dominant wavelength in nm of the tristimulus sample `colour` (X, Y, Z on any common scale)
// under the illuminant (index 0-16) and observer (code 0 = 2 degree, otherwise 10 degree);
// negative for a complementary wavelength (purple-line samples). Writes the excitation purity
// in percent to `purity`.
//   - A sample missing as a whole (fewer than three values, or all three missing) or with a
//     zero sum, an illuminant and observer whose white point cannot be loaded, or a white point
//     outside the locus (no side crossed): wavelength and purity are the missing value 1e-05.
//   - A sample at the white point (x and y each within 2.220446049250313e-16): purity 0 and
//     wavelength 1e-05.
//   - Otherwise the walk described in dominant_wavelength.cpp: |wavelength| in [400, 700] nm,
//     purity in (0, 100] inside the locus and above 100 outside it. A ray through a corner of
//     the purple line (400 nm, 700 nm; within a sine of 1e-12) gives the spectral wavelength
//     of that corner, never the complementary one.
// whitePoint, samplePoint and locusPoint are optional chromaticity outputs. When whitePoint is
// given, the white point, the sample and the point on the locus or on the purple line that the
// purity refers to are written, to each of the three that is given. They are written only when
// a wavelength is computed (not in the missing and white-point cases above).
// The spectrum-locus tables come from a process-wide cache that is safe under concurrent first
// use; nothing throws and nothing allocates.
double DominantWavelength(int illuminant, int observer, const CValueVector3& colour, double& purity,
                          ChromaticityPoint* whitePoint = nullptr,
                          ChromaticityPoint* samplePoint = nullptr,
                          ChromaticityPoint* locusPoint = nullptr);

}  // namespace velquor
