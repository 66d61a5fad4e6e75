// The quality-control comparison behind `velquor qc` and `velquor demo`: every trial of a
// batch file against one standard, under one or more illuminant/observer conditions, in one
// difference system with a tolerance on its total difference. The report is computed once
// and then rendered as text, CSV, JSON or HTML (report_*.h).
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "choices.h"
#include "velquor/data/ks_data.h"
#include "velquor/data/value_vectors.h"

namespace velquor::cli {

// One trial (or the standard) under one condition.
struct QcResult {
  bool computed = false;             // false: a value the comparison needs is missing
  CValueVector3 xyz;                 // the sample's X, Y, Z
  CValueVector5 lab;                 // CIELAB L*, a*, b*, C*ab, hab (for the plots)
  CColorVector7 difference;          // the system's seven slots (trial minus standard)
  std::array<double, 3> labDelta{};  // CIELAB ΔL*, Δa*, Δb* (for the plots)
  std::string shade;                 // shade description, e.g. "Darker,Redder, "
  bool pass = false;                 // computed and total difference <= tolerance
};

struct QcSample {
  std::string name;
  std::size_t line = 0;           // line in its file
  CKSData curve;                  // reflectance in percent on the library's grid
  bool hasMissing = false;        // some grid point is missing
  std::string note;               // why it was rejected, or empty
  std::vector<QcResult> results;  // one per condition (the standard's: differences zero)
  std::vector<double> indices;    // one per chosen index, first condition
  double strength = 0.0;          // percent against the standard (when chosen)
};

// The batch statistics of the total difference under one condition, over computed trials.
struct QcSummary {
  std::size_t trials = 0;
  std::size_t passed = 0;
  std::size_t failed = 0;    // computed, above the tolerance
  std::size_t rejected = 0;  // not computed (missing values)
  double mean = 0.0;
  double max = 0.0;
  double worst10 = 0.0;  // mean of the worst 10 % (at least one trial)
};

struct QcReport {
  std::string standardSource;  // file names (or "embedded sample data")
  std::string trialsSource;
  DifferenceChoice system;
  double tolerance = 1.0;
  std::vector<Condition> conditions;
  std::vector<IndexChoice> indices;
  bool withStrength = false;
  StrengthChoice strength;
  std::vector<std::string> columnLabels;  // the system's seven slot labels
  QcSample standard;
  std::vector<QcSample> trials;
  std::vector<QcSummary> summaries;  // one per condition
  // Tolerance shape of the first condition in the a*b* plane around the standard: points
  // (Δa*, Δb*) where the system's total difference equals the tolerance at ΔL* = 0.
  std::vector<std::array<double, 2>> toleranceContour;
  std::vector<std::string> notes;  // how the files were read and mapped

  bool AllPassed() const;
};

// What the comparison needs besides the samples.
struct QcSettings {
  DifferenceChoice system;
  double tolerance = 1.0;
  std::vector<Condition> conditions;
  std::vector<IndexChoice> indices;
  bool withStrength = false;
  StrengthChoice strength;
};

// Compares every trial with the standard. Samples with missing grid points are kept and
// reported (computed = false) when a result cannot be obtained.
QcReport ComputeQcReport(const QcSettings& settings, QcSample standard,
                         std::vector<QcSample> trials);

}  // namespace velquor::cli

namespace velquor::cli {

// The labels of the seven slots of a difference record in `system`: the system's own column
// labels on the slots they describe; a slot the system leaves unused is labelled "(slot n)".
std::vector<std::string> DifferenceSlotLabels(int system);

// The grid wavelengths (nm) at which `curve` is missing, e.g. "500, 510 nm"; empty if none.
std::string MissingWavelengthText(const CKSData& curve);

// X, Y, Z of `sample` under `condition`, or false with the reason in `why` when the sample is
// rejected: a grid point is missing, or the weighted sums overflow (spectral values such as
// 1e308 give an infinite X, Y or Z, and every colour built on it would be meaningless). Every
// command rejects a sample by this one rule.
bool SampleXyz(const QcSample& sample, const Condition& condition, CValueVector3& xyz,
               std::string& why);

// SampleXyz over many samples, in chunks over threads through ComputeXYZBatch: X, Y, Z of
// samples[i] in xyz[3 i .. 3 i + 2] (missing values where rejected), and the reason a sample is
// rejected in why[i] (empty for a usable one).
void SampleXyzBatch(const std::vector<QcSample>& samples, const Condition& condition,
                    std::vector<double>& xyz, std::vector<std::string>& why);

}  // namespace velquor::cli

namespace velquor::cli {

// The shade description as words for reports: the library's three comma-separated fields
// with the blank ones left out, joined by ", " ("Darker,Redder, " gives "Darker, Redder").
std::string ShadeWords(std::string_view shade);

}  // namespace velquor::cli
