// The sample data of `velquor demo`: a standard and production batches, built from real
// measured spectra embedded in the tool.
//
// The spectra are the 24 ColorChecker Classic patches measured by N. Ohta (The basis of color
// reproduction engineering, Corona-sha, 1997; 380-780 nm at 5 nm, as fractions), as
// distributed by the Munsell Color Science Laboratory and the colour-science data set
// (SDS_COLORCHECKER_N_OHTA); see tests/data/samples/README.md. They are read with the
// library's CSV reader and mapped onto its grid like any user's file.
//
// The standard is the "orange" patch. Each batch is the standard made weaker or stronger with
// the library's strength adjustment (Kubelka-Munk K/S scaled by strength / 100) and given a
// small shade shift: the reflectance multiplied by 1 + h exp(-((λ - λ0) / 30 nm)^2), which
// adds (h > 0) or removes (h < 0) light around λ0, as a slightly different pigment mix does.
// One batch lacks the 500-520 nm readings, as an instrument dropout would leave it, to show how
// a sample with missing values is reported.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qc_report.h"

namespace velquor::cli {

// The embedded CSV text of the ColorChecker spectra.
std::string_view DemoSpectraCsv();

// How one demo batch departs from the standard.
struct DemoBatch {
  const char* name;
  double strength;     // percent of the standard's colour strength
  double shiftHeight;  // h of the shade shift (0: none)
  int shiftCentre;     // λ0 in nm
  bool dropout;        // 500-520 nm missing
};

// The batches, in the order the report lists them.
const std::vector<DemoBatch>& DemoBatches();

// Reads the embedded spectra and builds the standard and the batches. False with a message
// when the embedded data cannot be read (which a working build never shows).
bool BuildDemoSamples(QcSample& standard, std::vector<QcSample>& batches,
                      std::vector<std::string>& notes, std::string& error);

}  // namespace velquor::cli
