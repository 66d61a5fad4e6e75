#include "tolerance_contour.h"

#include <cmath>
#include <numbers>

#include "velquor/colorimetry/lab.h"
#include "velquor/difference/color_difference.h"
#include "velquor/difference/sample_for_system.h"
#include "velquor/frame/numeric.h"

namespace velquor::cli {

namespace {

constexpr double kLargestRadius = 200.0;
constexpr int kBisections = 48;

class TotalDifference {
 public:
  TotalDifference(const CValueVector5& standardLab, const Condition& condition,
                  const DifferenceChoice& system)
      : lab_(standardLab), condition_(condition), system_(system) {
    CValueVector3 xyz;
    LabToXYZ(condition.illuminant, condition.observer, lab_[0], lab_[1], lab_[2], xyz);
    FillColorSample(xyz, system.system, condition.illuminant, condition.observer,
                    system.weights.data(), standard_, triple_);
  }

  // The total difference of the colour at (Δa*, Δb*) from the standard.
  double At(double da, double db) {
    LabToXYZ(condition_.illuminant, condition_.observer, lab_[0], lab_[1] + da, lab_[2] + db, xyz_);
    FillColorSample(xyz_, system_.system, condition_.illuminant, condition_.observer,
                    system_.weights.data(), trial_, triple_);
    ComputeColorDifference(standard_, trial_, system_.system, condition_.illuminant,
                           condition_.observer, system_.weights.data(), result_, system_.parameter);
    return std::fabs(result_[6]);
  }

 private:
  const CValueVector5& lab_;
  const Condition& condition_;
  const DifferenceChoice& system_;
  CColorSample standard_;
  CColorSample trial_;
  CValueVector3 xyz_;
  CValueVector3 triple_;
  CColorVector7 result_;
};

}  // namespace

std::vector<std::array<double, 2>> ToleranceContour(const CValueVector5& standardLab,
                                                    const Condition& condition,
                                                    const DifferenceChoice& system,
                                                    double tolerance) {
  std::vector<std::array<double, 2>> contour;
  for (std::size_t i = 0; i < 3; ++i) {
    if (standardLab.GetSize() < 3 || IsMissing(standardLab[i]) || std::isnan(standardLab[i])) {
      return contour;
    }
  }
  TotalDifference total(standardLab, condition, system);
  contour.reserve(kContourPoints);
  for (int k = 0; k < kContourPoints; ++k) {
    const double angle = 2.0 * std::numbers::pi * k / kContourPoints;
    const double ca = std::cos(angle);
    const double sa = std::sin(angle);
    double inside = 0.0;
    double outside = tolerance;
    while (outside < kLargestRadius && total.At(outside * ca, outside * sa) < tolerance) {
      inside = outside;
      outside *= 2.0;
    }
    if (outside >= kLargestRadius) {
      outside = kLargestRadius;
      if (total.At(outside * ca, outside * sa) < tolerance) inside = outside;
    }
    for (int n = 0; n < kBisections && outside - inside > 1e-9; ++n) {
      const double middle = 0.5 * (inside + outside);
      (total.At(middle * ca, middle * sa) < tolerance ? inside : outside) = middle;
    }
    const double radius = 0.5 * (inside + outside);
    contour.push_back({radius * ca, radius * sa});
  }
  return contour;
}

}  // namespace velquor::cli
