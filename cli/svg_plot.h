// Inline SVG plots for the HTML QC report: the a*b* difference plot with the tolerance shape,
// the ΔL* bars and the spectral reflectance curves. Each function returns one <svg> element
// sized by its viewBox (it scales with the page), with every text HTML-escaped and every number
// written in the C locale.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "velquor/data/ks_data.h"

namespace velquor::cli {

// `value` with `decimals` digits after the point, independent of the C++ and C locales;
// "-0.00" is written "0.00". NaN and infinities give "nan" / "inf" / "-inf".
std::string FormatFixed(double value, int decimals);

// A step of 1, 2 or 5 times a power of ten such that `span` holds about `count` steps
// ("nice numbers" for axis ticks). A span that is not positive gives 1.
double NiceStep(double span, int count);

// Colour of the i-th trial curve and legend entry, cycling through ten distinguishable hues.
const char* TrialColour(std::size_t i);

// One trial in the a*b* plane, relative to the standard.
struct AbMarker {
  double da = 0.0;
  double db = 0.0;
  std::string label;  // short text beside the marker (the trial's number)
  std::string title;  // tooltip: name and values
  bool pass = false;
};

// The a*b* plot (id "ab-plot"): the standard at the centre, axes Δa* and Δb* on one scale
// with ticks, the tolerance shape as a closed polygon (class "tolerance") and one marker
// (class "trial pass" / "trial fail") per trial. The scale is symmetric and fits every marker
// and contour point.
std::string RenderAbPlot(const std::vector<AbMarker>& markers,
                         const std::vector<std::array<double, 2>>& contour);

// One bar of the ΔL* plot; a trial that was not computed is drawn as a grey cross on the zero
// line.
struct DeltaBar {
  double value = 0.0;
  bool computed = false;
  bool pass = false;
  std::string label;
  std::string title;
};

// The ΔL* bars (id "dl-bars"): one bar per trial from the zero line, coloured by pass/fail.
std::string RenderDeltaLBars(const std::vector<DeltaBar>& bars);

struct SpectrumLine {
  const CKSData* curve = nullptr;  // percent at 360 + 10 i nm
  std::string name;
  std::string colour;
  bool standard = false;  // drawn thick and first in the legend
  bool rejected = false;  // drawn dashed
};

// The spectral reflectance curves (id "spectra"), wavelength 360-750 nm against percent
// reflectance, with a legend. Missing points break a curve instead of being drawn.
std::string RenderSpectra(const std::vector<SpectrumLine>& lines);

}  // namespace velquor::cli
