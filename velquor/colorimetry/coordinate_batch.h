// XYZ -> CIELAB, CIELUV, Hunter Lab and chromaticity, and CIELAB -> DIN99, over many samples at
// once, for measurement series, spectral images and formulation loops, on all cores. Each
// sample is converted as XYZToLab (XYZToLuv) converts it: L*, a*, b* (u*, v*) and the chroma
// bit for bit, the hue to a few ulp, every branch the same way (coordinate_kernel.h). The
// CIELAB, CIELUV and DIN99 batches allocate nothing; the others one record per chunk.
#pragma once

#include <cstddef>

namespace velquor {

// Converts `count` samples. Sample i reads X, Y, Z from xyz[i * xyzStride + 0..2] and writes
// L*, a*, b*, C*ab, hab to lab[i * labStride + 0..4]; strides are in doubles, so records with
// other fields in between can be converted in place. `white` holds Xn, Yn, Zn (Y = 100 scale).
// Each sample is read completely before it is written, so lab == xyz with equal strides (>= 5)
// works; otherwise a sample's output must not overlap another sample's input, since batches of
// more than 4096 samples are split over BatchThreads() threads (velquor/frame/thread_pool.h)
// and converted in no fixed order. Results are the same at any thread count.
// Returns the number of samples converted: `count`, or 0 when xyzStride < 3, labStride < 5 or a
// pointer is null (then nothing is written). Missing samples give missing records.
std::size_t XYZToLabBatch(const double white[3], const double* xyz, std::size_t xyzStride,
                          double* lab, std::size_t labStride, std::size_t count);

// The same with the white of (illuminant, observer) from the weighting-table catalogue, read
// once for the whole batch. An illuminant whose table cannot be loaded gives missing records.
std::size_t XYZToLabBatch(int illuminant, int observer, const double* xyz, std::size_t xyzStride,
                          double* lab, std::size_t labStride, std::size_t count);

// XYZ -> L*, u*, v*, C*uv, huv, with the same arguments, strides and results as XYZToLabBatch.
std::size_t XYZToLuvBatch(const double white[3], const double* xyz, std::size_t xyzStride,
                          double* luv, std::size_t luvStride, std::size_t count);
std::size_t XYZToLuvBatch(int illuminant, int observer, const double* xyz, std::size_t xyzStride,
                          double* luv, std::size_t luvStride, std::size_t count);

// CIELAB -> L99, a99, b99, C99, h99 with the DIN99 weights kCH, kE, as LabToDIN99: L*, a*, b*
// from lab[i * labStride + 0..2] (a five-value CIELAB record serves), results to
// din99[i * din99Stride + 0..4]; the logarithms and the hue's trigonometry agree with the
// scalar function to a few ulp. Returns count, or 0 (nothing written) for a null pointer,
// labStride < 3 or din99Stride < 5.
std::size_t LabToDin99Batch(const double* lab, std::size_t labStride, double kCH, double kE,
                            double* din99, std::size_t din99Stride, std::size_t count);

// Hunter L, a, b of (illuminant, observer), as XYZToHunterLab, bit for bit: X, Y, Z from
// xyz[i * xyzStride + 0..2], L, a, b to hunter[i * hunterStride + 0..2]. Returns count, or 0
// for a null pointer or a stride below 3.
std::size_t XYZToHunterLabBatch(int illuminant, int observer, const double* xyz,
                                std::size_t xyzStride, double* hunter, std::size_t hunterStride,
                                std::size_t count);

// Chromaticity x, y as XYZToChromaticity, bit for bit, to xy[i * xyStride + 0..1]. Returns
// count, or 0 for a null pointer, xyzStride < 3 or xyStride < 2.
std::size_t XYZToChromaticityBatch(const double* xyz, std::size_t xyzStride, double* xy,
                                   std::size_t xyStride, std::size_t count);

}  // namespace velquor
