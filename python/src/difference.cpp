// Bindings of the colour-difference dispatcher: ComputeColorDifference over many pairs, one
// standard against many trials or pair by pair.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

#include "arrays.h"
#include "velquor/colorimetry/chroma_hue.h"
#include "velquor/data/value_vectors.h"
#include "velquor/difference/color_difference.h"
#include "velquor/difference/color_sample.h"
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

// Fills `sample` with pair n of `side`. Three coordinates are completed with chroma and hue
// (ComputeChromaHue). Without tristimulus values the sample's XYZ is a neutral placeholder
// (0, 0, 0) that the coordinate-based systems do not read, or the missing triple when any of
// the three coordinates is missing, so that a missing sample still gives a missing record.
void LoadSample(const Side& side, std::size_t n, CColorSample& sample) {
  if (side.coordinates != nullptr) {
    const double* row = side.coordinates + n * side.coordinateStride;
    std::copy(row, row + side.coordinateWidth, sample.coordinates.GetData());
    if (side.coordinateWidth == 3) ComputeChromaHue(sample.coordinates);
  }
  if (side.xyz != nullptr) {
    const double* row = side.xyz + n * side.xyzStride;
    std::copy(row, row + kXyz, sample.xyz.GetData());
  } else {
    const double* c = sample.coordinates.GetData();
    const bool missing = side.coordinates != nullptr &&
                         (IsMissing(c[0]) || IsMissing(c[1]) || IsMissing(c[2]));
    std::fill(sample.xyz.GetData(), sample.xyz.GetData() + kXyz, missing ? kMissing : 0.0);
  }
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

  const std::size_t width = totalOnly ? 1 : kRecord;
  auto out = totalOnly ? py::array_t<double>(static_cast<py::ssize_t>(count))
                       : NewTable(count, kRecord);
  double* dst = out.mutable_data();
  {
    py::gil_scoped_release release;
    CColorSample s;
    CColorSample t;
    CColorVector7 record;
    for (std::size_t n = 0; n < count; ++n) {
      // The chromaticity mode leaves slots 3-7 as they were; start every pair from zeros.
      std::fill(record.GetData(), record.GetData() + kRecord, 0.0);
      LoadSample(standard, n, s);
      LoadSample(trial, n, t);
      ComputeColorDifference(s, t, system, illuminant, observer, weights.data(), record,
                             parameter);
      if (totalOnly)
        dst[n] = record[kRecord - 1];
      else
        std::copy(record.GetData(), record.GetData() + width, dst + n * width);
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
