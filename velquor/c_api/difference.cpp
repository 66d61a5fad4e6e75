// The C interface of the colour-difference subsystem: samples for a difference system, the
// dispatcher with its batch forms, the systems' captions and labels, and shade descriptors.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "velquor/c_api/c_api_support.h"
#include "velquor/colorimetry/chroma_hue.h"
#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/colorimetry/din99.h"
#include "velquor/colorimetry/hunter_lab.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/colorimetry/luv.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/data/dword_array.h"
#include "velquor/difference/color_difference.h"
#include "velquor/difference/difference_kernel.h"
#include "velquor/difference/sample_for_system.h"
#include "velquor/difference/shade_descriptor.h"
#include "velquor/difference/system_catalogue.h"
#include "velquor/frame/thread_pool.h"

using namespace velquor;
using namespace velquor::capi;

static_assert(VQ_DIFF_CIELAB == kDiffCieLab && VQ_DIFF_CMC == kDiffCmc &&
              VQ_DIFF_HUNTER == kDiffHunterLab && VQ_DIFF_FMC2 == kDiffFmc2 &&
              VQ_DIFF_CIE94 == kDiffCie94 && VQ_DIFF_CIELCH == kDiffCieLch &&
              VQ_DIFF_CIELUV == kDiffCieLuv && VQ_DIFF_XYZ_YXY == kDiffXyzYxy &&
              VQ_DIFF_GE_PQS2 == kDiffGePqs2 && VQ_DIFF_AUDI == kDiffAudi &&
              VQ_DIFF_DIN99 == kDiffDin99 && VQ_DIFF_CIE2000 == kDiffCie2000 &&
              VQ_DIFF_DIN6175 == kDiffDin6175 && VQ_DIFF_CHROMATICITY == kDiffChromaticity);
static_assert(VQ_DIFF_TEXT_CAPTION == static_cast<int>(DifferenceString::kCaption) &&
              VQ_DIFF_TEXT_SECOND_COORDINATE_LABELS ==
                  static_cast<int>(DifferenceString::kSecondCoordinateLabels));

namespace {

// Fills `sample` from its XYZ for `system` (see FillColorSample).
void FillSample(const vq_xyz& xyz, int system, int illuminant, int observer,
                const double* weights, CColorSample& sample, CValueVector3& triple) {
  ToVector(xyz, sample.xyz);
  FillColorSample(sample.xyz, system, illuminant, observer, weights, sample, triple);
}

void FromSample(const CColorSample& from, vq_sample& to) {
  FromVector(from.xyz, to.xyz);
  FromVector(from.coordinates, to.coords);
}

// XYZ of one spectrum for a pair already checked by EnsureWeightTable.
bool SpectrumXYZ(const double* spectrum, int illuminant, int observer, vq_xyz& xyz) {
  return ComputeXYZBatch(spectrum, 1, kSpectrumPoints, illuminant, observer, &xyz.x, 3) != 0;
}

// Trials per chunk of vq_delta_e_batch: a spectrum's XYZ, sample and difference make a chunk
// some 100 microseconds of work; smaller batches stay in the calling thread. The batches of
// samples split by kDifferenceChunk.
constexpr std::size_t kSpectrumChunk = 256;

// The batch layout of samples and results (difference_kernel.h) is the C structures' own.
static_assert(sizeof(vq_sample) == kBatchSampleDoubles * sizeof(double) &&
              offsetof(vq_sample, xyz) == 0 && offsetof(vq_sample, coords) == 3 * sizeof(double));
static_assert(sizeof(vq_diff7) == kBatchDifferenceDoubles * sizeof(double));

const double* SampleData(const vq_sample* samples) {
  return reinterpret_cast<const double*>(samples);
}

double* DifferenceData(vq_diff7* differences) { return reinterpret_cast<double*>(differences); }

bool IsValidObserver(int observer) {
  return observer == VQ_OBSERVER_2 || observer == VQ_OBSERVER_10;
}

}  // namespace

extern "C" {

int vq_sample_from_xyz(const vq_xyz* xyz, int system, int illuminant, int observer,
                       const double weights[3], vq_sample* sample) noexcept {
  if (xyz == nullptr || sample == nullptr) return VQ_ERR_NULL;
  if (!IsValidSystem(system) || !IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    Scratch& s = ThreadScratch();
    FillSample(*xyz, system, illuminant, observer, weights, s.standard, s.triple);
    FromSample(s.standard, *sample);
    return VQ_OK;
  });
}

int vq_sample_from_spectrum(const double* spectrum, int system, int illuminant, int observer,
                            const double weights[3], vq_sample* sample) noexcept {
  if (spectrum == nullptr || sample == nullptr) return VQ_ERR_NULL;
  if (!IsValidSystem(system) || !IsValidObserver(observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    const int result = EnsureWeightTable(illuminant, observer) != 0 ? VQ_OK : VQ_FALLBACK;
    vq_xyz xyz;
    if (!SpectrumXYZ(spectrum, illuminant, observer, xyz)) return VQ_ERR_NOT_FOUND;
    Scratch& s = ThreadScratch();
    FillSample(xyz, system, illuminant, observer, weights, s.standard, s.triple);
    FromSample(s.standard, *sample);
    return result;
  });
}

int vq_color_difference(const vq_sample* standard, const vq_sample* trial, int system,
                        int illuminant, int observer, const double weights[3], double parameter,
                        vq_diff7* difference) noexcept {
  return vq_difference_batch(standard, trial, 1, system, illuminant, observer, weights, parameter,
                             difference);
}

int vq_difference_batch(const vq_sample* standard, const vq_sample* trials, size_t count,
                        int system, int illuminant, int observer, const double weights[3],
                        double parameter, vq_diff7* differences) noexcept {
  if (standard == nullptr || (count > 0 && (trials == nullptr || differences == nullptr))) {
    return VQ_ERR_NULL;
  }
  if (!IsValidSystem(system) || !IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  if (count == 0) return VQ_OK;
  return Guard([&] {
    ComputeDifferencesParallel(SampleData(standard), 0, SampleData(trials), kBatchSampleDoubles,
                               count, {system, illuminant, observer, weights, parameter},
                               DifferenceData(differences), kBatchDifferenceDoubles);
    return VQ_OK;
  });
}

int vq_difference_pairs(const vq_sample* standards, const vq_sample* trials, size_t count,
                        int system, int illuminant, int observer, const double weights[3],
                        double parameter, vq_diff7* differences) noexcept {
  if (count > 0 && (standards == nullptr || trials == nullptr || differences == nullptr)) {
    return VQ_ERR_NULL;
  }
  if (!IsValidSystem(system) || !IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  if (count == 0) return VQ_OK;
  return Guard([&] {
    ComputeDifferencesParallel(SampleData(standards), kBatchSampleDoubles, SampleData(trials),
                               kBatchSampleDoubles, count,
                               {system, illuminant, observer, weights, parameter},
                               DifferenceData(differences), kBatchDifferenceDoubles);
    return VQ_OK;
  });
}

int vq_delta_e_batch(const double* standard, const double* trials, size_t count, int system,
                     int illuminant, int observer, const double weights[3], double parameter,
                     vq_diff7* differences) noexcept {
  if (standard == nullptr || (count > 0 && (trials == nullptr || differences == nullptr))) {
    return VQ_ERR_NULL;
  }
  if (!IsValidSystem(system) || !IsValidObserver(observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    const int result = EnsureWeightTable(illuminant, observer) != 0 ? VQ_OK : VQ_FALLBACK;
    vq_xyz xyz;
    if (!SpectrumXYZ(standard, illuminant, observer, xyz)) return VQ_ERR_NOT_FOUND;
    vq_sample reference;
    {
      Scratch& caller = ThreadScratch();
      FillSample(xyz, system, illuminant, observer, weights, caller.standard, caller.triple);
      FromSample(caller.standard, reference);
    }
    const DifferenceSystemChoice choice{system, illuminant, observer, weights, parameter};
    // Per chunk: the trials' XYZ in one batch pass, their samples one by one (the coordinates
    // depend on the system), then the differences in one batch call, all in the thread's own
    // buffer. The standard is shared read-only.
    ParallelFor(count, kSpectrumChunk, [&](std::size_t begin, std::size_t end) {
      Scratch& s = ThreadScratch();
      vq_sample samples[kSpectrumChunk];
      const std::size_t n = end - begin;
      ComputeXYZBatch(trials + begin * kSpectrumPoints, n, kSpectrumPoints, illuminant, observer,
                      &samples[0].xyz.x, kBatchSampleDoubles);
      for (std::size_t i = 0; i < n; ++i) {
        FillSample(samples[i].xyz, system, illuminant, observer, weights, s.trial, s.triple);
        FromSample(s.trial, samples[i]);
      }
      ComputeDifferences(SampleData(&reference), 0, SampleData(samples), kBatchSampleDoubles, n,
                         choice, DifferenceData(differences + begin), kBatchDifferenceDoubles);
    });
    return result;
  });
}

int vq_difference_text(int system, int offset, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  if (!IsCataloguedDifferenceSystem(system) || offset < 0 ||
      offset >= static_cast<int>(kDifferenceStringsPerSystem)) {
    return VQ_ERR_RANGE;
  }
  return Guard([&] {
    return CopyText(LoadDifferenceString(system, static_cast<DifferenceString>(offset)), buffer,
                    size);
  });
}

int vq_difference_caption(int system, int short_name, const char* const* weights,
                          size_t weight_count, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size) || (weights == nullptr && weight_count > 0)) {
    return VQ_ERR_NULL;
  }
  for (size_t i = 0; i < weight_count; ++i) {
    if (weights[i] == nullptr) return VQ_ERR_NULL;
  }
  if (!IsCataloguedDifferenceSystem(system)) return VQ_ERR_RANGE;
  return Guard([&] {
    const std::vector<std::string> texts(weights, weights + weight_count);
    return CopyText(short_name != 0 ? FormatDifferenceShortName(system, texts)
                                    : FormatDifferenceCaption(system, texts),
                    buffer, size);
  });
}

int vq_difference_weight_count(int system) noexcept { return CountDifferenceWeights(system); }

int vq_difference_total_label(int system, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  if (!IsCataloguedDifferenceSystem(system)) return VQ_ERR_RANGE;
  return Guard([&] { return CopyText(LoadDifferenceTotalLabel(system), buffer, size); });
}

int vq_shade_descriptor(int code, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  return Guard([&] { return CopyText(LoadShadeDescriptor(code), buffer, size); });
}

int vq_describe_shade(const vq_coords5* standard, const vq_diff7* difference, int dark_text,
                      int codes[3], uint32_t colours[3], char* text, size_t size) noexcept {
  if (standard == nullptr || difference == nullptr || !IsValidBuffer(text, size)) {
    return VQ_ERR_NULL;
  }
  return Guard([&] {
    std::string description;
    CDWordArray codeArray;
    CDWordArray colourArray;
    DescribeShade(standard->a, standard->b, difference->slot[0], difference->slot[1],
                  difference->slot[2], description, codeArray, colourArray, dark_text);
    for (std::size_t i = 0; i < 3; ++i) {
      if (codes != nullptr) codes[i] = i < codeArray.GetSize() ? static_cast<int>(codeArray[i]) : 0;
      if (colours != nullptr) colours[i] = i < colourArray.GetSize() ? colourArray[i] : 0;
    }
    return CopyText(description, text, size);
  });
}

}  // extern "C"
