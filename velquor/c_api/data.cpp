// The C interface of the measurement data model: reflectance conversions, mapping measured
// spectra onto the grid, angle names and the Angle filter clauses.
#include <algorithm>
#include <cstdint>
#include <span>

#include "velquor/c_api/c_api_support.h"
#include "velquor/data/angle_filter.h"
#include "velquor/data/geometry_catalogue.h"
#include "velquor/data/ks_data.h"
#include "velquor/io/spectral_grid_mapping.h"

using namespace velquor;
using namespace velquor::capi;

extern "C" {

int vq_convert_refl(double* values, size_t count, int conversion) noexcept {
  if (values == nullptr && count > 0) return VQ_ERR_NULL;
  CReflMode mode;
  switch (conversion) {
    case VQ_REFL_NONE:
      mode = CReflMode{0, 0};
      break;
    case VQ_REFL_KS:
      mode = CReflMode{1, 0};
      break;
    case VQ_REFL_DENSITY:
      mode = CReflMode{1, 1};
      break;
    case VQ_REFL_LN:
      mode = CReflMode{2, 0};
      break;
    case VQ_REFL_MINUS_LN:
      mode = CReflMode{3, 0};
      break;
    default:
      return VQ_ERR_RANGE;
  }
  return Guard([&] {
    for (size_t i = 0; i < count; ++i) values[i] = ConvertReflPoint(values[i], mode);
    return VQ_OK;
  });
}

int vq_map_to_grid(const double* wavelengths, size_t band_count, const double* values,
                   size_t count, double to_percent, double* spectra, char* error,
                   size_t error_size) noexcept {
  if ((wavelengths == nullptr && band_count > 0) ||
      (count > 0 && band_count > 0 && values == nullptr) || (count > 0 && spectra == nullptr) ||
      !IsValidBuffer(error, error_size)) {
    return VQ_ERR_NULL;
  }
  return Guard([&] {
    SpectralGridMapping mapping;
    const MeasurementStatus status = mapping.Build(std::span(wavelengths, band_count));
    if (!status) {
      CopyText(status.error.Message(), error, error_size);
      return VQ_ERR_FAILED;
    }
    CopyText("", error, error_size);
    CKSData& curve = ThreadScratch().curve;
    for (size_t k = 0; k < count; ++k) {
      if (!mapping.Apply(std::span(values + k * band_count, band_count), to_percent, curve)) {
        return VQ_ERR_INTERNAL;  // a valid mapping applies to every spectrum of its size
      }
      std::copy_n(curve.GetData(), kSpectrumPoints, spectra + k * kSpectrumPoints);
    }
    return VQ_OK;
  });
}

int vq_angle_name(int code, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  if (code < 0 || code >= static_cast<int>(kAngleCodeCount)) return VQ_ERR_RANGE;
  return Guard([&] { return CopyText(GetAngleName(static_cast<std::uint8_t>(code)), buffer, size); });
}

int vq_angle_filter(int code, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  if (code < -1 || code > 255) return VQ_ERR_RANGE;
  return Guard([&] {
    return CopyText(code < 0 ? BuildStandardAngleFilter()
                             : BuildAngleFilter(static_cast<std::uint8_t>(code)),
                    buffer, size);
  });
}

}  // extern "C"
