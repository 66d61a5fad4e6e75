#include "velquor/colorimetry/lab_batch.h"

#include "velquor/colorimetry/lab.h"
#include "velquor/colorimetry/reference_white.h"
#include "velquor/frame/thread_pool.h"

namespace velquor {

namespace {

// Samples per chunk of a batch: one conversion (three cube roots, a hypotenuse and an arc
// tangent) takes some 100 ns, so a chunk is about 100 microseconds of work. Batches of at most
// this many samples run in the calling thread.
constexpr std::size_t kLabChunk = 1024;

// `white` may be null here: XYZToLab then writes missing records.
std::size_t ConvertAll(const double* white, const double* xyz, std::size_t xyzStride, double* lab,
                       std::size_t labStride, std::size_t count) {
  if (count == 0 || xyz == nullptr || lab == nullptr || xyzStride < 3 || labStride < 5) return 0;
  ParallelFor(count, kLabChunk, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      XYZToLab(white, xyz + i * xyzStride, lab + i * labStride);
    }
  });
  return count;
}

}  // namespace

std::size_t XYZToLabBatch(const double white[3], const double* xyz, std::size_t xyzStride,
                          double* lab, std::size_t labStride, std::size_t count) {
  if (white == nullptr) return 0;
  return ConvertAll(white, xyz, xyzStride, lab, labStride, count);
}

std::size_t XYZToLabBatch(int illuminant, int observer, const double* xyz, std::size_t xyzStride,
                          double* lab, std::size_t labStride, std::size_t count) {
  return ConvertAll(FindReferenceWhite(illuminant, observer), xyz, xyzStride, lab, labStride,
                    count);
}

}  // namespace velquor
