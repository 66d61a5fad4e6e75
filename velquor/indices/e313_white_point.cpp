#include "velquor/indices/e313_white_point.h"

#include "velquor/indices/constants.h"

namespace velquor {

int E313WhitePoint(int illuminant, int observer, double& xn, double& yn) {
  const bool tenDegree = observer != 0;
  switch (illuminant) {
    case kIndexIlluminantC:
      xn = tenDegree ? kE313_10XnC10 : kE313_10XnC2;
      yn = tenDegree ? kE313_10YnC10 : kE313_10YnC2;
      return 1;
    case kIndexIlluminantD65:
      xn = tenDegree ? kE313_10XnD65_10 : kE313_10XnD65_2;
      yn = tenDegree ? kE313_10YnD65_10 : kE313_10YnD65_2;
      return 1;
    case kIndexIlluminantD50:
      xn = tenDegree ? kE313_10XnD50_10 : kE313_10XnD50_2;
      yn = tenDegree ? kE313_10YnD50_10 : kE313_10YnD50_2;
      return 1;
    default:
      return 0;
  }
}

}  // namespace velquor
