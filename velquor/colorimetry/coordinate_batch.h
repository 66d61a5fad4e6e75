// XYZ -> CIELAB and CIELUV over many samples at once, for measurement series, spectral images
// and formulation loops. Each sample is converted as XYZToLab (XYZToLuv) converts it: L*, a*,
// b* (u*, v*) and the chroma bit for bit, the hue to a few ulp, every branch the same way
// (coordinate_kernel.h); nothing allocates.
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

}  // namespace velquor
