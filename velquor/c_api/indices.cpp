// The C interface of the colour indices: the whiteness, tint, yellowness and filter-value
// indices of one sample's tristimulus values, addressed by their catalogue identifiers.
#include <cstddef>
#include <cstdint>
#include <string>

#include "velquor/c_api/c_api_support.h"
#include "velquor/indices/dominant_wavelength.h"
#include "velquor/indices/e313_white_point.h"
#include "velquor/indices/fastness_grades.h"
#include "velquor/indices/filter_values.h"
#include "velquor/indices/index_batch.h"
#include "velquor/indices/index_catalogue.h"
#include "velquor/indices/index_formulas.h"
#include "velquor/indices/step_code.h"
#include "velquor/indices/tint.h"
#include "velquor/indices/whiteness.h"
#include "velquor/indices/yellowness.h"

using namespace velquor;
using namespace velquor::capi;

namespace {

constexpr std::size_t kXyzStride = sizeof(vq_xyz) / sizeof(double);
static_assert(sizeof(vq_xyz) == 3 * sizeof(double) && offsetof(vq_xyz, z) == 2 * sizeof(double),
              "vq_xyz is read as three consecutive doubles");

using FastnessIndex = double (*)(int illuminant, int observer, const CValueVector3& reference,
                                 const CValueVector3& specimen);

FastnessIndex FindFastness(std::uint32_t identifier) {
  switch (identifier) {
    case VQ_INDEX_STAIN_A04:
      return StainGradeA04;
    case VQ_INDEX_GREY_SCALE_A05:
      return GreyScaleGradeA05;
    case VQ_INDEX_STAIN_STEP_A04:
      return StainStepA04;
    case VQ_INDEX_GREY_SCALE_STEP_A05:
      return GreyScaleStepA05;
    default:
      return nullptr;
  }
}

}  // namespace

extern "C" {

int vq_index(uint32_t identifier, int illuminant, int observer, const vq_xyz* xyz,
             const double* coefficients, double* value) noexcept {
  return vq_index_batch(identifier, illuminant, observer, xyz, 1, coefficients, value);
}

int vq_index_batch(uint32_t identifier, int illuminant, int observer, const vq_xyz* xyz,
                   size_t count, const double* coefficients, double* values) noexcept {
  const IndexFormula* entry = FindIndexFormula(identifier);
  if (entry == nullptr) return VQ_ERR_UNSUPPORTED;
  if (count > 0 && (xyz == nullptr || values == nullptr)) return VQ_ERR_NULL;
  if (entry->calibrated != nullptr && coefficients == nullptr) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    // vq_xyz is three doubles without padding: the records are a table of stride 3.
    const double* table = count > 0 ? &xyz[0].x : nullptr;
    ComputeIndexBatch(identifier, illuminant, observer, table, kXyzStride, coefficients, values,
                      count);
    return VQ_OK;
  });
}

int vq_dominant_wavelength(int illuminant, int observer, const vq_xyz* xyz, double* wavelength,
                           double* purity) noexcept {
  if (xyz == nullptr || wavelength == nullptr || purity == nullptr) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    CValueVector3& sample = ThreadScratch().xyz;
    ToVector(*xyz, sample);
    *wavelength = DominantWavelength(illuminant, observer, sample, *purity);
    return VQ_OK;
  });
}

int vq_fastness(uint32_t identifier, int illuminant, int observer, const vq_xyz* reference,
                const vq_xyz* specimen, double* value) noexcept {
  const FastnessIndex fastness = FindFastness(identifier);
  if (fastness == nullptr) return VQ_ERR_UNSUPPORTED;
  if (reference == nullptr || specimen == nullptr || value == nullptr) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    Scratch& s = ThreadScratch();
    ToVector(*reference, s.xyz);
    ToVector(*specimen, s.xyzOut);
    *value = fastness(illuminant, observer, s.xyz, s.xyzOut);
    return VQ_OK;
  });
}

int vq_step_code_text(int32_t code, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  return Guard([&] {
    std::string text;
    FormatStepCode(code, text);
    return CopyText(text, buffer, size);
  });
}

int vq_index_text(uint32_t identifier, int which, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  if (which < VQ_INDEX_TEXT_NAME || which > VQ_INDEX_TEXT_HEADING) return VQ_ERR_RANGE;
  return Guard([&] {
    std::string text;
    if (which == VQ_INDEX_TEXT_NAME) {
      LoadIndexName(identifier, text);
    } else if (which == VQ_INDEX_TEXT_LONG_NAME) {
      LoadIndexLongName(identifier, text);
    } else {
      LoadIndexHeading(identifier, text);
    }
    return CopyText(text, buffer, size);
  });
}

int vq_index_mask(uint32_t identifier, uint32_t parameter, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  return Guard([&] {
    std::string mask;
    GetIndexMask(identifier, mask, parameter);
    return CopyText(mask, buffer, size);
  });
}

int vq_e313_white_point(int illuminant, int observer, double* xn, double* yn) noexcept {
  if (xn == nullptr || yn == nullptr) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    return E313WhitePoint(illuminant, observer, *xn, *yn) != 0 ? VQ_OK : VQ_ERR_UNSUPPORTED;
  });
}

}  // extern "C"

static_assert(VQ_INDEX_YI_E313_73_R == kIndexYellownessE313_73R && VQ_INDEX_WI_CIE_R == kIndexWhitenessCieR &&
              VQ_INDEX_DOMINANT_WAVELENGTH == kIndexDominantWavelength &&
              VQ_INDEX_EXCITATION_PURITY == kIndexExcitationPurity && VQ_INDEX_WI_CIE == kIndexWhitenessCie);
