// The C interface of the strength subsystem: colour strength with its texts, and the
// one-dimensional searches (bracketing walks, golden-section searches and the bracketed root
// finder) with the caller's C function as the objective.
#include <algorithm>
#include <string>

#include "velquor/c_api/c_api_support.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/frame/resources.h"
#include "velquor/strength/minimisers.h"
#include "velquor/strength/root_finder.h"
#include "velquor/strength/strength.h"
#include "velquor/strength/strength_batch.h"
#include "velquor/strength/strength_labels.h"
#include "velquor/strength/strength_settings.h"

using namespace velquor;
using namespace velquor::capi;

static_assert(VQ_SEARCH_FAILED == kSearchFailed && VQ_SEARCH_FOUND == kSearchFound &&
              VQ_SEARCH_ROOT == kSearchRoot && VQ_SEARCH_ROOT_FAILED == kSearchRootFailed &&
              VQ_SEARCH_ABANDONED == kSearchAbandoned &&
              VQ_SEARCH_FOUND_SLOWLY == kSearchFoundSlowly);

namespace {

constexpr std::size_t kPointCount = 6;

// Runs a search on a copy of the caller's six points and copies them back. The copy is local
// (not per-thread scratch): the objective may itself start a search.
template <class Search>
int RunSearch(vq_objective objective, double* points, Search&& search) {
  if (objective == nullptr || points == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    CValueArray vector;
    vector.SetSize(kPointCount);
    std::copy_n(points, kPointCount, vector.GetData());
    const int result = search(vector);
    std::copy_n(vector.GetData(), kPointCount, points);
    return result;
  });
}

void CopyRoot(const RootResult& from, vq_root_result& to) {
  to.found = from.found ? 1 : 0;
  to.root = from.root;
  to.a = from.interval.a;
  to.b = from.interval.b;
  to.fa = from.interval.fa;
  to.fb = from.interval.fb;
}

CStrengthSettings ToSettings(const vq_strength_settings& from) {
  CStrengthSettings to;
  to.method = from.method;
  to.userWavelength = from.user_wavelength;
  to.targetPercent = from.target_percent;
  to.saundersonOn = from.saunderson_on;
  to.k1 = from.k1;
  to.k2 = from.k2;
  return to;
}

// The methods whose wavelength CalcStrength reports.
bool ReportsWavelength(int method) {
  return method == StrengthMethodCode(StrengthMethod::kChromaticMaxAbsorption) ||
         method == StrengthMethodCode(StrengthMethod::kChromaticUserWavelength) ||
         method == StrengthMethodCode(StrengthMethod::kBaseChromaticMaxAbsorption) ||
         method == StrengthMethodCode(StrengthMethod::kBaseChromaticUserWavelength);
}

void LoadCurve(const double* spectrum, CKSData& curve) {
  std::copy_n(spectrum, CKSData::kLength, curve.GetData());
}

}  // namespace

extern "C" {

int vq_strength(const vq_strength_settings* settings, const double* standard,
                const double* batch, const vq_xyz* standard_xyz, const vq_xyz* batch_xyz,
                int illuminant, int observer, int use_absorbance, double* strength,
                int* wavelength) noexcept {
  if (settings == nullptr || standard == nullptr || batch == nullptr || strength == nullptr) {
    return VQ_ERR_NULL;
  }
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    Scratch& s = ThreadScratch();
    CKSData& standardCurve = s.curve;
    CKSData& batchCurve = s.otherCurve;
    LoadCurve(standard, standardCurve);
    LoadCurve(batch, batchCurve);
    if (standard_xyz != nullptr) {
      ToVector(*standard_xyz, s.xyz);
    } else {
      ComputeXYZ(standardCurve, illuminant, observer, s.xyz);
    }
    if (batch_xyz != nullptr) {
      ToVector(*batch_xyz, s.xyzOut);
    } else {
      ComputeXYZ(batchCurve, illuminant, observer, s.xyzOut);
    }
    int used = 0;
    *strength = CalcStrength(ToSettings(*settings), standardCurve, batchCurve, s.xyz, s.xyzOut,
                             illuminant, observer, use_absorbance != 0, used);
    if (wavelength != nullptr) *wavelength = ReportsWavelength(settings->method) ? used : 0;
    return VQ_OK;
  });
}

int vq_strength_batch(const vq_strength_settings* settings, const double* standard,
                      const vq_xyz* standard_xyz, const double* batches, const vq_xyz* batch_xyz,
                      size_t count, int illuminant, int observer, int use_absorbance,
                      double* strengths, int* wavelength) noexcept {
  if (settings == nullptr || standard == nullptr) return VQ_ERR_NULL;
  if (count > 0 && (batches == nullptr || strengths == nullptr)) return VQ_ERR_NULL;
  if (!IsValidPair(illuminant, observer)) return VQ_ERR_RANGE;
  return Guard([&] {
    Scratch& s = ThreadScratch();
    CKSData& standardCurve = s.curve;
    LoadCurve(standard, standardCurve);
    if (standard_xyz != nullptr) {
      ToVector(*standard_xyz, s.xyz);
    } else {
      ComputeXYZ(standardCurve, illuminant, observer, s.xyz);
    }
    // vq_xyz is three doubles without padding: the records are a table of stride 3.
    static_assert(sizeof(vq_xyz) == 3 * sizeof(double), "vq_xyz is three consecutive doubles");
    const double* colours = batch_xyz != nullptr ? &batch_xyz[0].x : nullptr;
    int used = 0;
    StrengthBatch(ToSettings(*settings), standardCurve, s.xyz, batches, CKSData::kLength, colours,
                  CValueVector3::kLength, count, illuminant, observer, use_absorbance != 0,
                  strengths, used);
    if (wavelength != nullptr) *wavelength = ReportsWavelength(settings->method) ? used : 0;
    return VQ_OK;
  });
}

int vq_strength_method_name(int method, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  if (method < 0 || method >= kStrengthMethodCount) return VQ_ERR_RANGE;
  return Guard([&] {
    return CopyText(LoadStringResource(kStrengthMethodNameBase + static_cast<std::uint32_t>(method)),
                    buffer, size);
  });
}

int vq_strength_label(const vq_strength_settings* settings, char* buffer, size_t size) noexcept {
  if (settings == nullptr || !IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  return Guard([&] { return CopyText(GetStrengthLabel(ToSettings(*settings)), buffer, size); });
}

int vq_strength_adjust_note(const vq_strength_settings* settings, double from_percent,
                            int wavelength, char* buffer, size_t size) noexcept {
  if (settings == nullptr || !IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  return Guard([&] {
    return CopyText(GetStrengthAdjustNote(ToSettings(*settings), from_percent, wavelength),
                    buffer, size);
  });
}

int vq_set_strength_decimal_separator(const char* separator) noexcept {
  if (separator == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    SetStrengthDecimalSeparator(separator);
    return VQ_OK;
  });
}

int vq_bracket_minimum(vq_objective objective, void* context, double points[6]) noexcept {
  return RunSearch(objective, points, [&](CValueArray& vector) {
    return BracketMinimum(context, objective, vector);
  });
}

int vq_bracket_extremum_or_root(vq_objective objective, void* context,
                                double points[6]) noexcept {
  return RunSearch(objective, points, [&](CValueArray& vector) {
    return BracketExtremumOrRoot(context, objective, vector);
  });
}

int vq_golden_section(vq_objective objective, void* context, double points[6],
                      double tolerance) noexcept {
  return RunSearch(objective, points, [&](CValueArray& vector) {
    GoldenSectionSearch(context, objective, vector, tolerance);
    return VQ_SEARCH_FOUND;
  });
}

int vq_golden_section_or_root(vq_objective objective, void* context, double points[6],
                              double tolerance) noexcept {
  return RunSearch(objective, points, [&](CValueArray& vector) {
    return GoldenSectionSearchOrRoot(context, objective, vector, tolerance);
  });
}

int vq_find_root(vq_objective objective, void* context, double a, double b, double tolerance,
                 vq_root_result* result) noexcept {
  if (objective == nullptr || result == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    CopyRoot(FindBracketedRoot(context, objective, a, b, tolerance), *result);
    return VQ_OK;
  });
}

int vq_find_root_bracketed(vq_objective objective, void* context, double a, double b, double fa,
                           double fb, double tolerance, vq_root_result* result) noexcept {
  if (objective == nullptr || result == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    CopyRoot(FindBracketedRoot(context, objective, RootInterval{a, b, fa, fb}, tolerance),
             *result);
    return VQ_OK;
  });
}

}  // extern "C"
