#include "velquor/colorimetry/tristimulus.h"

#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/colorimetry/xyz_kernel.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/thread_pool.h"

namespace velquor {

namespace {

// Curves per chunk of a batch: one weighted sum of 3 x 40 products takes some 15-50 ns (the
// vector kernel of xyz_kernel.h from memory, or the portable loop), so a chunk is some 30-100
// microseconds of work, well above the cost of waking a worker. Batches of at most this many
// curves run in the calling thread.
constexpr std::size_t kXYZChunk = 2048;

}  // namespace

void ComputeXYZ(const CKSData& spectrum, int illuminant, int observer, CValueVector3& xyz) {
  if (xyz.GetSize() < CValueVector3::kLength) xyz.SetSize(CValueVector3::kLength);
  double* out = xyz.GetData();
  // A short curve, or a missing first point, gives the missing triple before any table is
  // fetched.
  if (spectrum.GetSize() < CKSData::kLength || IsMissing(spectrum[0])) {
    out[0] = out[1] = out[2] = kMissing;
    return;
  }
  const double* table = GetWeightTable(illuminant, observer);
  if (table == nullptr) {
    out[0] = out[1] = out[2] = kMissing;
    return;
  }
  IntegrateXYZ(table, spectrum.GetData(), 1, CKSData::kLength, out, CValueVector3::kLength);
}

int ComputeXYZBatch(const double* spectra, std::size_t count, std::size_t spectrumStride,
                    int illuminant, int observer, double* xyz, std::size_t xyzStride) {
  if (spectrumStride < kWeightTableBands || xyzStride < 3) return 0;
  if (count > 0 && (spectra == nullptr || xyz == nullptr)) return 0;
  const double* table = GetWeightTable(illuminant, observer);
  if (table == nullptr) {
    for (std::size_t n = 0; n < count; ++n) {
      double* out = xyz + n * xyzStride;
      out[0] = out[1] = out[2] = kMissing;
    }
    return 0;
  }
  ParallelFor(count, kXYZChunk, [&](std::size_t begin, std::size_t end) {
    IntegrateXYZ(table, spectra + begin * spectrumStride, end - begin, spectrumStride,
                 xyz + begin * xyzStride, xyzStride);
  });
  return 1;
}

}  // namespace velquor
