#include "velquor/colorimetry/coordinate_batch.h"

#include "velquor/colorimetry/chromaticity.h"
#include "velquor/colorimetry/coordinate_kernel.h"
#include "velquor/colorimetry/hunter_lab.h"
#include "velquor/colorimetry/reference_white.h"
#include "velquor/frame/thread_pool.h"

namespace velquor {

namespace {

// Samples per chunk of a batch: a conversion takes some 10 to 30 ns in the vector kernel
// (100 ns in the portable loop), so a chunk is 50 to 100 microseconds of work. Batches of at
// most this many samples run in the calling thread.
constexpr std::size_t kCoordinateChunk = 4096;

// `white` may be null here: the records are then missing.
std::size_t ConvertAll(CoordinateKind kind, const double* white, const double* xyz,
                       std::size_t xyzStride, double* out, std::size_t outStride,
                       std::size_t count) {
  if (count == 0 || xyz == nullptr || out == nullptr || xyzStride < 3 || outStride < 5) return 0;
  ParallelFor(count, kCoordinateChunk, [&](std::size_t begin, std::size_t end) {
    ConvertCoordinates(kind, white, xyz + begin * xyzStride, xyzStride, out + begin * outStride,
                       outStride, end - begin);
  });
  return count;
}

}  // namespace

std::size_t XYZToLabBatch(const double white[3], const double* xyz, std::size_t xyzStride,
                          double* lab, std::size_t labStride, std::size_t count) {
  if (white == nullptr) return 0;
  return ConvertAll(CoordinateKind::kLab, white, xyz, xyzStride, lab, labStride, count);
}

std::size_t XYZToLabBatch(int illuminant, int observer, const double* xyz, std::size_t xyzStride,
                          double* lab, std::size_t labStride, std::size_t count) {
  return ConvertAll(CoordinateKind::kLab, FindReferenceWhite(illuminant, observer), xyz,
                    xyzStride, lab, labStride, count);
}

std::size_t XYZToLuvBatch(const double white[3], const double* xyz, std::size_t xyzStride,
                          double* luv, std::size_t luvStride, std::size_t count) {
  if (white == nullptr) return 0;
  return ConvertAll(CoordinateKind::kLuv, white, xyz, xyzStride, luv, luvStride, count);
}

std::size_t XYZToLuvBatch(int illuminant, int observer, const double* xyz, std::size_t xyzStride,
                          double* luv, std::size_t luvStride, std::size_t count) {
  return ConvertAll(CoordinateKind::kLuv, FindReferenceWhite(illuminant, observer), xyz,
                    xyzStride, luv, luvStride, count);
}

std::size_t LabToDin99Batch(const double* lab, std::size_t labStride, double kCH, double kE,
                            double* din99, std::size_t din99Stride, std::size_t count) {
  if (count == 0 || lab == nullptr || din99 == nullptr || labStride < 3 || din99Stride < 5) {
    return 0;
  }
  ParallelFor(count, kCoordinateChunk, [&](std::size_t begin, std::size_t end) {
    ConvertLabToDin99(lab + begin * labStride, labStride, kCH, kE, din99 + begin * din99Stride,
                      din99Stride, end - begin);
  });
  return count;
}

std::size_t XYZToHunterLabBatch(int illuminant, int observer, const double* xyz,
                                std::size_t xyzStride, double* hunter, std::size_t hunterStride,
                                std::size_t count) {
  if (count == 0 || xyz == nullptr || hunter == nullptr || xyzStride < 3 || hunterStride < 3) {
    return 0;
  }
  // A square root and two divisions a sample: the scalar function, on all cores.
  ParallelFor(count, kCoordinateChunk, [&](std::size_t begin, std::size_t end) {
    CValueVector3 sample, result;
    for (std::size_t i = begin; i < end; ++i) {
      const double* in = xyz + i * xyzStride;
      sample[0] = in[0];
      sample[1] = in[1];
      sample[2] = in[2];
      XYZToHunterLab(illuminant, observer, sample, result);
      double* out = hunter + i * hunterStride;
      out[0] = result[0];
      out[1] = result[1];
      out[2] = result[2];
    }
  });
  return count;
}

std::size_t XYZToChromaticityBatch(const double* xyz, std::size_t xyzStride, double* xy,
                                   std::size_t xyStride, std::size_t count) {
  if (count == 0 || xyz == nullptr || xy == nullptr || xyzStride < 3 || xyStride < 2) return 0;
  ParallelFor(count, kCoordinateChunk, [&](std::size_t begin, std::size_t end) {
    CValueVector3 sample;
    for (std::size_t i = begin; i < end; ++i) {
      const double* in = xyz + i * xyzStride;
      sample[0] = in[0];
      sample[1] = in[1];
      sample[2] = in[2];
      XYZToChromaticity(sample, xy[i * xyStride], xy[i * xyStride + 1]);
    }
  });
  return count;
}

}  // namespace velquor
