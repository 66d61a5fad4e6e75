// The C interface of the colorimetric core: catalogue texts, weighting tables, tristimulus
// values and the colour-space conversions. Each function checks its arguments and calls the
// library's own operation; no formula is repeated here.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "velquor/c_api/c_api_support.h"
#include "velquor/colorimetry/chroma_hue.h"
#include "velquor/colorimetry/chromaticity.h"
#include "velquor/colorimetry/din99.h"
#include "velquor/colorimetry/hunter_lab.h"
#include "velquor/colorimetry/illuminants.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/colorimetry/coordinate_batch.h"
#include "velquor/colorimetry/luv.h"
#include "velquor/colorimetry/reference_white.h"
#include "velquor/colorimetry/rgb.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/frame/thread_pool.h"

using namespace velquor;
using namespace velquor::capi;

static_assert(VQ_SPECTRUM_POINTS == kSpectrumPoints);
static_assert(VQ_FIRST_WAVELENGTH == kFirstWavelength && VQ_WAVELENGTH_STEP == kWavelengthStep);
static_assert(VQ_ILLUMINANT_COUNT == kIlluminantCount);
static_assert(VQ_ILLUMINANT_SLOTS == kIlluminantSlots);
static_assert(VQ_WEIGHT_TABLE_LENGTH == kWeightTableLength);
// The records are read and written as arrays of doubles.
static_assert(sizeof(vq_xyz) == 3 * sizeof(double));
static_assert(sizeof(vq_coords5) == 5 * sizeof(double));
static_assert(sizeof(vq_diff7) == 7 * sizeof(double));

namespace {

constexpr std::size_t kXYZStride = 3;
constexpr std::size_t kCoordinatesStride = 5;
// XYZ records kept on the stack by vq_lab_batch when the caller wants none back: each step
// converts this many spectra to XYZ and then to CIELAB while they are still in cache.
constexpr std::size_t kLabBatchStep = 64;
// Spectra per chunk of vq_lab_batch's split over threads: a spectrum to CIELAB takes some
// 150 ns, so a chunk is about 100 microseconds of work; smaller batches stay in the caller.
constexpr std::size_t kLabBatchChunk = 512;

// EnsureWeightTable's fallback as a result code: D65 replaces an illuminant without a table.
int EnsureTable(int& illuminant, int observer) {
  return EnsureWeightTable(illuminant, observer) != 0 ? VQ_OK : VQ_FALLBACK;
}

}  // namespace

extern "C" {

int vq_illuminant_text(int index, int part, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  if (index < 0 || index >= kIlluminantSlots) return VQ_ERR_RANGE;
  if (part < VQ_ILLUMINANT_TEXT || part > VQ_ILLUMINANT_NAME) return VQ_ERR_RANGE;
  return Guard([&] {
    std::string text;
    const int loaded = part == VQ_ILLUMINANT_TEXT   ? LoadIlluminantText(index, text)
                       : part == VQ_ILLUMINANT_CODE ? LoadIlluminantCode(index, text)
                                                    : LoadIlluminantName(index, text);
    if (loaded == 0) {
      CopyText("", buffer, size);
      return VQ_ERR_NOT_FOUND;
    }
    return CopyText(text, buffer, size);
  });
}

int vq_observer_text(int observer, int form, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  if (observer != VQ_OBSERVER_2 && observer != VQ_OBSERVER_10) return VQ_ERR_RANGE;
  if (form < VQ_OBSERVER_PLAIN || form > VQ_OBSERVER_SLASH) return VQ_ERR_RANGE;
  return Guard([&] {
    std::string text;
    const ObserverTextForm forms[] = {ObserverTextForm::kPlain, ObserverTextForm::kDash,
                                      ObserverTextForm::kSlash};
    if (LoadObserverText(observer, forms[form], text) == 0) {
      CopyText("", buffer, size);
      return VQ_ERR_NOT_FOUND;
    }
    return CopyText(text, buffer, size);
  });
}

int vq_weight_table(int illuminant, int observer, double* table, size_t count) noexcept {
  if (table == nullptr && count > 0) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    const double* weights = GetWeightTable(illuminant, observer);
    if (weights == nullptr) return VQ_ERR_NOT_FOUND;
    std::copy_n(weights, std::min(count, kWeightTableLength), table);
    return static_cast<int>(kWeightTableLength);
  });
}

int vq_white_point(int illuminant, int observer, vq_xyz* white) noexcept {
  if (white == nullptr) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    const double* found = FindReferenceWhite(illuminant, observer);
    if (found == nullptr) return VQ_ERR_NOT_FOUND;
    *white = vq_xyz{found[0], found[1], found[2]};
    return VQ_OK;
  });
}

int vq_compute_xyz(const double* spectrum, int illuminant, int observer, vq_xyz* xyz) noexcept {
  return vq_xyz_batch(spectrum, 1, illuminant, observer, xyz);
}

int vq_xyz_batch(const double* spectra, size_t count, int illuminant, int observer,
                 vq_xyz* xyz) noexcept {
  if (count > 0 && (spectra == nullptr || xyz == nullptr)) return VQ_ERR_NULL;
  if (observer != VQ_OBSERVER_2 && observer != VQ_OBSERVER_10) return VQ_ERR_RANGE;
  return Guard([&] {
    const int result = EnsureTable(illuminant, observer);
    if (count == 0) return result;
    if (ComputeXYZBatch(spectra, count, kSpectrumPoints, illuminant, observer, Values(*xyz),
                        kXYZStride) == 0) {
      return VQ_ERR_NOT_FOUND;  // not even the D65 table could be loaded
    }
    return result;
  });
}

int vq_xyz_to_lab(int illuminant, int observer, const vq_xyz* xyz, vq_coords5* lab) noexcept {
  if (xyz == nullptr || lab == nullptr) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    XYZToLab(FindReferenceWhite(illuminant, observer), Values(*xyz), Values(*lab));
    return VQ_OK;
  });
}

int vq_xyz_to_lab_white(const vq_xyz* white, const vq_xyz* xyz, vq_coords5* lab) noexcept {
  if (white == nullptr || xyz == nullptr || lab == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    XYZToLab(Values(*white), Values(*xyz), Values(*lab));
    return VQ_OK;
  });
}

int vq_lab_to_xyz(int illuminant, int observer, const vq_coords5* lab, vq_xyz* xyz) noexcept {
  if (lab == nullptr || xyz == nullptr) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    Scratch& s = ThreadScratch();
    LabToXYZ(illuminant, observer, lab->l, lab->a, lab->b, s.xyzOut);
    FromVector(s.xyzOut, *xyz);
    return VQ_OK;
  });
}

int vq_xyz_to_lab_batch(int illuminant, int observer, const vq_xyz* xyz, size_t count,
                        vq_coords5* lab) noexcept {
  if (count > 0 && (xyz == nullptr || lab == nullptr)) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  if (count == 0) return VQ_OK;
  return Guard([&] {
    XYZToLabBatch(illuminant, observer, Values(*xyz), kXYZStride, Values(*lab),
                  kCoordinatesStride, count);
    return VQ_OK;
  });
}

int vq_xyz_to_luv_batch(int illuminant, int observer, const vq_xyz* xyz, size_t count,
                        vq_coords5* luv) noexcept {
  if (count > 0 && (xyz == nullptr || luv == nullptr)) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  if (count == 0) return VQ_OK;
  return Guard([&] {
    XYZToLuvBatch(illuminant, observer, Values(*xyz), kXYZStride, Values(*luv),
                  kCoordinatesStride, count);
    return VQ_OK;
  });
}

int vq_lab_batch(const double* spectra, size_t count, int illuminant, int observer,
                 vq_coords5* lab, vq_xyz* xyz) noexcept {
  if (count > 0 && (spectra == nullptr || lab == nullptr)) return VQ_ERR_NULL;
  if (observer != VQ_OBSERVER_2 && observer != VQ_OBSERVER_10) return VQ_ERR_RANGE;
  return Guard([&] {
    const int result = EnsureTable(illuminant, observer);
    if (count > 0 && GetWeightTable(illuminant, observer) == nullptr) {
      // Not even the D65 table could be loaded: a caller's XYZ array gets missing triples.
      if (xyz != nullptr) {
        ComputeXYZBatch(spectra, count, kSpectrumPoints, illuminant, observer, Values(*xyz),
                        kXYZStride);
      }
      return VQ_ERR_NOT_FOUND;
    }
    // The nested batch calls below run in the thread that runs the chunk; the white is looked
    // up once for all of them.
    const double* white = FindReferenceWhite(illuminant, observer);
    ParallelFor(count, kLabBatchChunk, [&](std::size_t begin, std::size_t end) {
      vq_xyz step[kLabBatchStep];
      for (std::size_t first = begin; first < end; first += kLabBatchStep) {
        const std::size_t n = std::min(kLabBatchStep, end - first);
        vq_xyz* target = xyz != nullptr ? xyz + first : step;
        ComputeXYZBatch(spectra + first * kSpectrumPoints, n, kSpectrumPoints, illuminant,
                        observer, Values(*target), kXYZStride);
        XYZToLabBatch(white, Values(*target), kXYZStride, Values(lab[first]), kCoordinatesStride,
                      n);
      }
    });
    return result;
  });
}

int vq_xyz_to_luv(int illuminant, int observer, const vq_xyz* xyz, vq_coords5* luv) noexcept {
  if (xyz == nullptr || luv == nullptr) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    Scratch& s = ThreadScratch();
    ToVector(*xyz, s.xyz);
    XYZToLuv(illuminant, observer, s.xyz, s.coordinates);
    FromVector(s.coordinates, *luv);
    return VQ_OK;
  });
}

int vq_luv_to_xyz(int illuminant, int observer, const vq_coords5* luv, vq_xyz* xyz) noexcept {
  if (luv == nullptr || xyz == nullptr) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    Scratch& s = ThreadScratch();
    LuvToXYZ(illuminant, observer, luv->l, luv->a, luv->b, s.xyzOut);
    FromVector(s.xyzOut, *xyz);
    return VQ_OK;
  });
}

int vq_xyz_to_hunter_lab(int illuminant, int observer, const vq_xyz* xyz,
                         vq_coords5* hunter) noexcept {
  if (xyz == nullptr || hunter == nullptr) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    Scratch& s = ThreadScratch();
    ToVector(*xyz, s.xyz);
    XYZToHunterLab(illuminant, observer, s.xyz, s.triple);
    vq_coords5 out{s.triple[0], s.triple[1], s.triple[2], 0.0, 0.0};
    ComputeChromaHue(out.a, out.b, out.c, out.h);
    *hunter = out;
    return VQ_OK;
  });
}

int vq_hunter_lab_to_xyz(int illuminant, int observer, const vq_coords5* hunter,
                         vq_xyz* xyz) noexcept {
  if (hunter == nullptr || xyz == nullptr) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    Scratch& s = ThreadScratch();
    s.triple.SetSize(3);
    s.triple[0] = hunter->l;
    s.triple[1] = hunter->a;
    s.triple[2] = hunter->b;
    HunterLabToXYZ(illuminant, observer, s.triple, s.xyzOut);
    FromVector(s.xyzOut, *xyz);
    return VQ_OK;
  });
}

int vq_lab_to_din99(const vq_coords5* lab, double kch, double ke, vq_coords5* din99) noexcept {
  if (lab == nullptr || din99 == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    Scratch& s = ThreadScratch();
    LabToDIN99(lab->l, lab->a, lab->b, kch, ke, s.coordinates);
    FromVector(s.coordinates, *din99);
    return VQ_OK;
  });
}

int vq_lab_to_din99_batch(const vq_coords5* lab, size_t count, double kch, double ke,
                          vq_coords5* din99) noexcept {
  if (count > 0 && (lab == nullptr || din99 == nullptr)) return VQ_ERR_NULL;
  if (count == 0) return VQ_OK;
  return Guard([&] {
    LabToDin99Batch(Values(*lab), kCoordinatesStride, kch, ke, Values(*din99),
                    kCoordinatesStride, count);
    return VQ_OK;
  });
}

int vq_xyz_to_xy(const vq_xyz* xyz, double* x, double* y) noexcept {
  if (xyz == nullptr || x == nullptr || y == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    Scratch& s = ThreadScratch();
    ToVector(*xyz, s.xyz);
    XYZToChromaticity(s.xyz, *x, *y);
    return VQ_OK;
  });
}

int vq_xyz_to_rgb(int illuminant, int observer, const vq_xyz* xyz, int32_t rgb[3]) noexcept {
  if (xyz == nullptr || rgb == nullptr) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    Scratch& s = ThreadScratch();
    ToVector(*xyz, s.xyz);
    XYZToRGB(illuminant, observer, s.xyz, rgb[0], rgb[1], rgb[2]);
    return VQ_OK;
  });
}

int vq_chroma_hue(double a, double b, double* chroma, double* hue) noexcept {
  if (chroma == nullptr || hue == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    ComputeChromaHue(a, b, *chroma, *hue);
    return VQ_OK;
  });
}

}  // extern "C"
