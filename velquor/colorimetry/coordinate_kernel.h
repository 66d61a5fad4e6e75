// The inner loops of the coordinate batches (coordinate_batch.h): XYZ -> CIELAB and CIELUV, and
// CIELAB -> DIN99, over many samples. Internal to the library.
//
// With Google Highway the samples run side by side in the lanes of a vector at the best
// instruction-set level of the CPU (frame/simd_dispatch.h). Every step but the hue angle is the
// scalar formula's IEEE operation in the scalar order (the cube root is CubeRoot lane by lane),
// so L*, a*, b* (u*, v*) and C* are the scalar functions' bits; the hue's atan2 is within a few
// ulp of std::atan2. Samples whose result hangs on a decision the atan2 could tip (a or b
// within the library's zero band, a hue in degrees within reach of the 360 -> 0 wrap), and
// samples with missing or non-finite values, are recomputed by the scalar function, so every
// branch goes the scalar way and missing inputs give its missing records.
#pragma once

#include <cstddef>

namespace velquor {

enum class CoordinateKind { kLab, kLuv };

// Converts samples 0 .. count-1: X, Y, Z from xyz[i * xyzStride + 0..2], the five-value record
// (L*, a*, b*, C*ab, hab or L*, u*, v*, C*uv, huv) to out[i * outStride + 0..4], as XYZToLab or
// XYZToLuv on plain arrays would, with the white point `white` (may be null or missing: then
// missing records). Each sample's inputs are read before its outputs are written.
void ConvertCoordinates(CoordinateKind kind, const double* white, const double* xyz,
                        std::size_t xyzStride, double* out, std::size_t outStride,
                        std::size_t count);

// CIELAB -> DIN99 (LabToDIN99 on plain arrays) for samples 0 .. count-1: L*, a*, b* from
// lab[i * labStride + 0..2], L99, a99, b99, C99, h99 to out[i * outStride + 0..4]. The
// logarithms, cosine and sine are vector functions within a few ulp of the C library's; e = 0
// exactly (the scalar hue rule), missing and non-finite samples take the scalar function.
void ConvertLabToDin99(const double* lab, std::size_t labStride, double kCH, double kE,
                       double* out, std::size_t outStride, std::size_t count);

}  // namespace velquor
