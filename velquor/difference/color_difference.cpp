#include "velquor/difference/color_difference.h"

#include "velquor/colorimetry/chromaticity.h"
#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/difference/angle_difference.h"
#include "velquor/difference/cie94.h"
#include "velquor/difference/ciede2000.h"
#include "velquor/difference/cmc.h"
#include "velquor/difference/delta_e_ab.h"
#include "velquor/difference/din6175.h"
#include "velquor/difference/fmc2.h"
#include "velquor/difference/ge_pqs2.h"
#include "velquor/difference/hunter_difference.h"
#include "velquor/difference/xyz_yxy.h"

namespace velquor {

namespace {

constexpr double kUnitWeights[3] = {1.0, 1.0, 1.0};

// Number of coordinate elements the system reads; 0 when it reads XYZ only.
std::size_t CoordinatesRead(int systemCode) {
  switch (systemCode) {
    case kDiffChromaticity:
    case kDiffFmc2:
    case kDiffGePqs2:
      return 0;
    case kDiffHunterLab:
      return 3;
    default:
      return CValueVector5::kLength;
  }
}

}  // namespace

void ComputeColorDifference(const CColorSample& standard, const CColorSample& trial, int systemCode,
                            int illuminant, int observer, const double* weights,
                            CColorVector7& result, double parameter) {
  EnsureSize(result, CColorVector7::kLength);
  const std::size_t needed = CoordinatesRead(systemCode);
  if (IsMissingXYZ(standard.xyz) || IsMissingXYZ(trial.xyz) ||
      !HasElements(standard.coordinates, needed) || !HasElements(trial.coordinates, needed)) {
    FillMissing(result, CColorVector7::kLength);
    return;
  }
  const double* w = weights != nullptr ? weights : kUnitWeights;
  const double p = parameter == 0.0 ? 1.0 : parameter;
  const CValueVector5& s = standard.coordinates;
  const CValueVector5& t = trial.coordinates;

  switch (systemCode) {
    case kDiffChromaticity:
      XYZToChromaticity(trial.xyz, result[0], result[1]);
      break;
    case kDiffFmc2:
      ComputeFmc2Difference(standard.xyz, trial.xyz, result);
      break;
    case kDiffGePqs2:
      ComputeGePqs2Difference(standard.xyz, trial.xyz, illuminant, observer, result);
      break;
    case kDiffHunterLab:
      ComputeHunterDifference(s, t, result);
      break;
    case kDiffCieLuv:
      ComputeDeltaEab(s, t, result);
      break;
    case kDiffXyzYxy:
      ComputeDeltaEab(s, t, result);
      ApplyXyzYxyDifference(standard.xyz, trial.xyz, result);
      break;
    default:
      ComputeDeltaEab(s, t, result);
      switch (systemCode) {
        case kDiffCmc:
          ApplyCmcWeighting(s, w[0], w[1], result);
          break;
        case kDiffCie94:
          ApplyCie94Weighting(s, w[0], w[1], w[2], result);
          break;
        case kDiffAudi:
          ComputeAngleDependentDifference(s, result, p);
          break;
        case kDiffDin6175:
          ApplyDin6175Weighting(s, w[0], w[1], w[2], p, result);
          break;
        case kDiffCie2000:
          ApplyCiede2000(s, t, w[0], w[1], w[2], result);
          break;
        default:
          break;  // 0, 5, 10 and unknown codes: Delta E*ab as it stands
      }
      break;
  }
  result.ClampRange();
}

}  // namespace velquor
