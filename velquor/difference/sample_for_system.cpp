#include "velquor/difference/sample_for_system.h"

#include "velquor/colorimetry/chroma_hue.h"
#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/colorimetry/din99.h"
#include "velquor/colorimetry/hunter_lab.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/colorimetry/luv.h"
#include "velquor/difference/color_difference.h"

namespace velquor {

bool FillsCieLab(int system) {
  switch (system) {
    case kDiffHunterLab:
    case kDiffFmc2:
    case kDiffCieLuv:
    case kDiffGePqs2:
    case kDiffDin99:
    case kDiffChromaticity:
      return false;
    default:
      return true;
  }
}

void FillColorSample(const CValueVector3& xyz, int system, int illuminant, int observer,
                     const double* weights, CColorSample& sample, CValueVector3& triple) {
  if (&sample.xyz != &xyz) sample.xyz = xyz;  // the caller may have filled it in place
  CValueVector5& c = sample.coordinates;
  switch (system) {
    case kDiffFmc2:
    case kDiffGePqs2:
    case kDiffChromaticity:
      FillMissing(c, CValueVector5::kLength);  // these systems read XYZ only
      break;
    case kDiffHunterLab:
      XYZToHunterLab(illuminant, observer, sample.xyz, triple);
      EnsureSize(c, CValueVector5::kLength);
      c[0] = triple[0];
      c[1] = triple[1];
      c[2] = triple[2];
      ComputeChromaHue(c[1], c[2], c[3], c[4]);
      break;
    case kDiffCieLuv:
      XYZToLuv(illuminant, observer, sample.xyz, c);
      break;
    case kDiffDin99:
      XYZToLab(illuminant, observer, sample.xyz, c);
      LabToDIN99(c[0], c[1], c[2], weights != nullptr ? weights[0] : 1.0,
                 weights != nullptr ? weights[1] : 1.0, c);
      break;
    default:
      XYZToLab(illuminant, observer, sample.xyz, c);
      break;
  }
}

}  // namespace velquor
