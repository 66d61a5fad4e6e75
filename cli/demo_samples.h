// Sample reflectance curves for the demo: four patches of the ColorChecker Classic measured by
// N. Ohta (The basis of color reproduction engineering, Corona-sha, 1997; data as distributed
// by the Munsell Color Science Laboratory, via the colour-science 0.4.6 data set,
// SDS_COLORCHECKER_N_OHTA). The measurements run from 380 nm at 5 nm as fractions; here they
// are taken at the library's 10 nm points in percent, and 360 and 370 nm repeat the 380 nm
// value (the CIE practice for bands an instrument did not measure).
#pragma once

#include <array>

namespace velquor::cli {

struct DemoSample {
  const char* name;
  std::array<double, 40> reflectance;  // percent, 360-750 nm at 10 nm
};

inline constexpr std::array<DemoSample, 4> kDemoSamples = {{
    {"dark skin",
     {4.80, 4.80, 4.80, 5.50, 6.50, 6.80, 6.40, 5.90, 5.50, 5.30, 5.20, 5.20, 5.40, 5.70, 6.10, 6.50, 7.00, 7.40, 7.60, 7.90, 8.70, 10.00, 11.50, 12.90, 13.80, 14.60, 15.40, 16.30, 17.30, 18.80, 20.40, 22.20, 24.20, 26.10, 28.20, 30.50, 33.40, 37.20, 40.90, 43.60}},
    {"moderate red",
     {9.60, 9.60, 9.60, 12.30, 14.40, 14.40, 13.80, 13.20, 13.10, 12.90, 12.60, 12.50, 11.90, 10.90, 10.30, 10.00, 9.40, 8.90, 9.20, 10.20, 10.80, 11.20, 15.70, 27.40, 41.50, 51.70, 56.70, 59.10, 60.10, 60.70, 60.70, 60.50, 60.50, 60.50, 60.60, 60.20, 59.90, 59.60, 59.30, 58.40}},
    {"blue",
     {6.90, 6.90, 6.90, 9.60, 13.60, 17.50, 20.80, 24.40, 29.00, 33.50, 33.80, 30.20, 23.90, 17.20, 12.00, 8.60, 6.60, 5.40, 4.80, 4.50, 4.30, 4.10, 4.00, 4.00, 3.90, 4.00, 4.00, 4.10, 4.20, 4.20, 4.30, 4.40, 4.40, 4.50, 4.80, 5.10, 5.60, 6.40, 7.90, 10.40}},
    {"white 9.5 (.05 D)",
     {15.30, 15.30, 15.30, 24.50, 40.90, 67.10, 84.00, 87.80, 88.30, 88.60, 88.70, 88.80, 88.80, 88.80, 88.70, 88.70, 88.70, 88.70, 88.70, 88.60, 88.70, 88.80, 88.70, 88.60, 88.70, 88.90, 89.10, 89.10, 89.00, 88.90, 88.90, 88.80, 88.80, 88.80, 88.80, 88.60, 88.60, 88.50, 88.40, 88.30}},
}};

}  // namespace velquor::cli
