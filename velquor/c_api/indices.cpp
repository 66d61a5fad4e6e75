// The C interface of the colour indices: the whiteness, tint, yellowness and filter-value
// indices of one sample's tristimulus values, addressed by their catalogue identifiers.
#include <cstdint>

#include "velquor/c_api/c_api_support.h"
#include "velquor/indices/e313_white_point.h"
#include "velquor/indices/filter_values.h"
#include "velquor/indices/tint.h"
#include "velquor/indices/whiteness.h"
#include "velquor/indices/yellowness.h"

using namespace velquor;
using namespace velquor::capi;

namespace {

using TristimulusIndex = double (*)(int illuminant, int observer, const CValueVector3& xyz);
using CalibratedIndex = double (*)(int illuminant, int observer, const CValueVector3& xyz,
                                   const double* coefficients);

// What the catalogue identifier `identifier` computes. Exactly one of the two is set.
struct IndexEntry {
  std::uint32_t identifier;
  TristimulusIndex plain;
  CalibratedIndex calibrated;  // Ganz/Griesser: needs the instrument's coefficients
};

constexpr IndexEntry kIndices[] = {
    {VQ_INDEX_YI_E313_73_R, YellownessE313_73R, nullptr},
    {VQ_INDEX_YI_D1925_R, YellownessD1925R, nullptr},
    {VQ_INDEX_WI_E313_73_R, WhitenessE313_73R, nullptr},
    {VQ_INDEX_WI_CIE_R, WhitenessCIER, nullptr},
    {VQ_INDEX_TINT_CIE_R, TintCIER, nullptr},
    {VQ_INDEX_YI_E313_10_R, YellownessE313_10R, nullptr},
    {VQ_INDEX_YI_DIN6167_R, YellownessDIN6167R, nullptr},
    {VQ_INDEX_WI_BERGER_R, WhitenessBergerR, nullptr},
    {VQ_INDEX_WI_STENSBY, WhitenessStensby, nullptr},
    {VQ_INDEX_WI_HUNTER, WhitenessHunter, nullptr},
    {VQ_INDEX_WI_TAUBE_R, WhitenessTaubeR, nullptr},
    {VQ_INDEX_FILTER_RX, FilterValueRx, nullptr},
    {VQ_INDEX_FILTER_RZ, FilterValueRz, nullptr},
    {VQ_INDEX_TINT_E313_10, TintE313_10, nullptr},
    {VQ_INDEX_TINT_CIE, TintCIE, nullptr},
    {VQ_INDEX_WI_E313_73, WhitenessE313_73, nullptr},
    {VQ_INDEX_WI_E313_10, WhitenessE313_10, nullptr},
    {VQ_INDEX_WI_BERGER, WhitenessBerger, nullptr},
    {VQ_INDEX_WI_CIE, WhitenessCIE, nullptr},
    {VQ_INDEX_WI_TAUBE, WhitenessTaube, nullptr},
    {VQ_INDEX_YI_D1925, YellownessD1925, nullptr},
    {VQ_INDEX_YI_E313_73, YellownessE313_73, nullptr},
    {VQ_INDEX_YI_E313_10, YellownessE313_10, nullptr},
    {VQ_INDEX_YI_DIN6167, YellownessDIN6167, nullptr},
    {VQ_INDEX_WI_GANZ, nullptr, WhitenessGanz},
    {VQ_INDEX_TINT_GANZ, nullptr, TintGanz},
    {VQ_INDEX_YI_DCM, YellownessDCMY, nullptr},
};

const IndexEntry* FindIndex(std::uint32_t identifier) {
  for (const IndexEntry& entry : kIndices) {
    if (entry.identifier == identifier) return &entry;
  }
  return nullptr;
}

}  // namespace

extern "C" {

int vq_index(uint32_t identifier, int illuminant, int observer, const vq_xyz* xyz,
             const double* coefficients, double* value) noexcept {
  return vq_index_batch(identifier, illuminant, observer, xyz, 1, coefficients, value);
}

int vq_index_batch(uint32_t identifier, int illuminant, int observer, const vq_xyz* xyz,
                   size_t count, const double* coefficients, double* values) noexcept {
  const IndexEntry* entry = FindIndex(identifier);
  if (entry == nullptr) return VQ_ERR_UNSUPPORTED;
  if (count > 0 && (xyz == nullptr || values == nullptr)) return VQ_ERR_NULL;
  if (entry->calibrated != nullptr && coefficients == nullptr) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    CValueVector3& sample = ThreadScratch().xyz;
    for (size_t i = 0; i < count; ++i) {
      ToVector(xyz[i], sample);
      values[i] = entry->plain != nullptr
                      ? entry->plain(illuminant, observer, sample)
                      : entry->calibrated(illuminant, observer, sample, coefficients);
    }
    return VQ_OK;
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
