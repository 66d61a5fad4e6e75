// Bindings of the colour-difference dispatcher: the batch of ComputeColorDifference
// (difference_kernel.h) over many pairs, one standard against many trials or pair by pair.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "arrays.h"
#include "velquor/colorimetry/chroma_hue.h"
#include "velquor/data/value_vectors.h"
#include "velquor/difference/color_difference.h"
#include "velquor/difference/difference_kernel.h"
#include "velquor/frame/numeric.h"

namespace velquor::python {
namespace {

constexpr std::size_t kXyz = CValueVector3::kLength;
constexpr std::size_t kCoordinates = CValueVector5::kLength;
constexpr std::size_t kRecord = CColorVector7::kLength;

// One side of the comparison as the Python layer hands it over: coordinates (rows of 3 or 5)
// and tristimulus values (rows of 3), each optional, each with one row or one per pair.
struct Side {
  const double* coordinates = nullptr;
  std::size_t coordinateWidth = 0;
  std::size_t coordinateStride = 0;
  const double* xyz = nullptr;
  std::size_t xyzStride = 0;
};

std::size_t CoordinateWidth(const Table& table, const char* name) {
  if (table.ndim() == 2 && (table.shape(1) == 3 || table.shape(1) == 5))
    return static_cast<std::size_t>(table.shape(1));
  throw py::value_error(std::string(name) + ": expected coordinates of shape (n, 3) or (n, 5)");
}

// Writes pair n of `side` in the batch layout (X, Y, Z, L, a, b, C, h). Three coordinates are
// completed with chroma and hue (ComputeChromaHue); no coordinates give zeros. Without
// tristimulus values the sample's XYZ is a neutral placeholder (0, 0, 0) that the
// coordinate-based systems do not read, or the missing triple when any of the three
// coordinates is missing, so that a missing sample still gives a missing record.
void PackSample(const Side& side, std::size_t n, double* sample) {
  double* xyz = sample;
  double* c = sample + kXyz;
  std::fill(c, c + kCoordinates, 0.0);
  if (side.coordinates != nullptr) {
    const double* row = side.coordinates + n * side.coordinateStride;
    std::copy(row, row + side.coordinateWidth, c);
    if (side.coordinateWidth == 3) ComputeChromaHue(c[1], c[2], c[3], c[4]);
  }
  if (side.xyz != nullptr) {
    const double* row = side.xyz + n * side.xyzStride;
    std::copy(row, row + kXyz, xyz);
  } else {
    const bool missing = side.coordinates != nullptr &&
                         (IsMissing(c[0]) || IsMissing(c[1]) || IsMissing(c[2]));
    std::fill(xyz, xyz + kXyz, missing ? kMissing : 0.0);
  }
}

// The side's samples in the batch layout: one when every table of the side has a single row
// (returned stride 0), else one per pair.
std::size_t PackSide(const Side& side, std::size_t count, std::vector<double>& packed) {
  const bool single = side.coordinateStride == 0 && side.xyzStride == 0;
  const std::size_t samples = single ? 1 : count;
  packed.resize(samples * kBatchSampleDoubles);
  for (std::size_t n = 0; n < samples; ++n) PackSample(side, n, &packed[n * kBatchSampleDoubles]);
  return single ? 0 : kBatchSampleDoubles;
}

py::array_t<double> Difference(const std::optional<Table>& standardCoordinates,
                               const std::optional<Table>& trialCoordinates,
                               const std::optional<Table>& standardXyz,
                               const std::optional<Table>& trialXyz, int system, int illuminant,
                               int observer, std::array<double, 3> weights, double parameter,
                               bool totalOnly) {
  if (standardCoordinates.has_value() != trialCoordinates.has_value() ||
      standardXyz.has_value() != trialXyz.has_value())
    throw py::value_error("standard and trial must be given in the same form");
  if (!standardCoordinates && !standardXyz)
    throw py::value_error("no coordinates and no tristimulus values given");

  std::size_t count = 0;
  for (const auto* table : {&standardCoordinates, &trialCoordinates, &standardXyz, &trialXyz}) {
    if (!table->has_value()) continue;
    if ((*table)->ndim() != 2) throw py::value_error("expected two-dimensional tables");
    count = std::max(count, static_cast<std::size_t>((*table)->shape(0)));
  }

  Side standard;
  Side trial;
  if (standardCoordinates) {
    standard.coordinateWidth = CoordinateWidth(*standardCoordinates, "standard");
    trial.coordinateWidth = CoordinateWidth(*trialCoordinates, "trial");
    standard.coordinates = standardCoordinates->data();
    trial.coordinates = trialCoordinates->data();
    standard.coordinateStride =
        RowStride(standardCoordinates->shape(0), count, standard.coordinateWidth, "standard");
    trial.coordinateStride =
        RowStride(trialCoordinates->shape(0), count, trial.coordinateWidth, "trial");
  }
  if (standardXyz) {
    standard.xyz = standardXyz->data();
    trial.xyz = trialXyz->data();
    standard.xyzStride = RowStride(Rows(*standardXyz, kXyz, "standard xyz"), count, kXyz,
                                   "standard xyz");
    trial.xyzStride = RowStride(Rows(*trialXyz, kXyz, "trial xyz"), count, kXyz, "trial xyz");
  }

  auto out = totalOnly ? py::array_t<double>(static_cast<py::ssize_t>(count))
                       : NewTable(count, kRecord);
  double* dst = out.mutable_data();
  if (count == 0) return out;
  {
    // Packing and the batch (vector lanes, batch threads) run without the GIL.
    py::gil_scoped_release release;
    std::vector<double> standards, trials;
    const std::size_t standardStride = PackSide(standard, count, standards);
    const std::size_t trialStride = PackSide(trial, count, trials);
    const DifferenceSystemChoice choice{system, illuminant, observer, weights.data(), parameter};
    if (totalOnly) {
      std::vector<double> records(count * kRecord);
      ComputeDifferencesParallel(standards.data(), standardStride, trials.data(), trialStride,
                                 count, choice, records.data(), kRecord);
      for (std::size_t n = 0; n < count; ++n) dst[n] = records[n * kRecord + kRecord - 1];
    } else {
      ComputeDifferencesParallel(standards.data(), standardStride, trials.data(), trialStride,
                                 count, choice, dst, kRecord);
    }
  }
  return out;
}

}  // namespace

void BindDifference(py::module_& m) {
  m.def("difference", &Difference, py::arg("standard"), py::arg("trial"),
        py::arg("standard_xyz"), py::arg("trial_xyz"), py::arg("system"), py::arg("illuminant"),
        py::arg("observer"), py::arg("weights"), py::arg("parameter"), py::arg("total_only"));
}

}  // namespace velquor::python
