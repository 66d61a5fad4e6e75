// Bindings of the colorimetric core: weighting tables, white points, tristimulus integration
// and the colour spaces. Every loop runs without the GIL.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <cstddef>

#include "arrays.h"
#include "velquor/colorimetry/chroma_hue.h"
#include "velquor/colorimetry/coordinate_batch.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/data/ks_data.h"
#include "velquor/data/value_vectors.h"

namespace velquor::python {
namespace {

constexpr std::size_t kSpectrum = CKSData::kLength;
constexpr std::size_t kXyz = CValueVector3::kLength;
constexpr std::size_t kCoordinates = CValueVector5::kLength;

// The (3, 40) X, Y, Z weights of a pair, or None when its table cannot be loaded.
py::object WeightTable(int illuminant, int observer) {
  const double* table = GetWeightTable(illuminant, observer);
  if (table == nullptr) return py::none();
  auto out = NewTable(kXyz, kWeightTableBands);
  std::copy(table, table + kXyz * kWeightTableBands, out.mutable_data());
  return out;
}

// The white point Xn, Yn, Zn of a pair, or None when its table cannot be loaded.
py::object WhitePoint(int illuminant, int observer) {
  CValueVector3 white;
  if (GetWhitePoint(illuminant, observer, white) == 0) return py::none();
  py::array_t<double> out(static_cast<py::ssize_t>(kXyz));
  std::copy(white.GetData(), white.GetData() + kXyz, out.mutable_data());
  return out;
}

py::array_t<double> Xyz(const Table& spectra, int illuminant, int observer) {
  const std::size_t count = Rows(spectra, kSpectrum, "spectra");
  auto out = NewTable(count, kXyz);
  const double* in = spectra.data();
  double* xyz = out.mutable_data();
  {
    py::gil_scoped_release release;
    ComputeXYZBatch(in, count, kSpectrum, illuminant, observer, xyz, kXyz);
  }
  return out;
}

// CIELAB with the white of (illuminant, observer), or of an explicit white point when given.
py::array_t<double> Lab(const Table& xyz, int illuminant, int observer, const py::object& white) {
  const std::size_t count = Rows(xyz, kXyz, "xyz");
  auto out = NewTable(count, kCoordinates);
  const double* in = xyz.data();
  double* lab = out.mutable_data();
  if (white.is_none()) {
    py::gil_scoped_release release;
    XYZToLabBatch(illuminant, observer, in, kXyz, lab, kCoordinates, count);
  } else {
    const Table whiteTable = white.cast<Table>();
    if (whiteTable.size() != static_cast<py::ssize_t>(kXyz))
      throw py::value_error("white: expected three values Xn, Yn, Zn");
    const double* w = whiteTable.data();
    py::gil_scoped_release release;
    XYZToLabBatch(w, in, kXyz, lab, kCoordinates, count);
  }
  return out;
}

py::array_t<double> Luv(const Table& xyz, int illuminant, int observer) {
  const std::size_t count = Rows(xyz, kXyz, "xyz");
  auto out = NewTable(count, kCoordinates);
  const double* in = xyz.data();
  double* luv = out.mutable_data();
  py::gil_scoped_release release;
  XYZToLuvBatch(illuminant, observer, in, kXyz, luv, kCoordinates, count);
  return out;
}

py::array_t<double> HunterLab(const Table& xyz, int illuminant, int observer) {
  const std::size_t count = Rows(xyz, kXyz, "xyz");
  auto out = NewTable(count, kXyz);
  const double* in = xyz.data();
  double* hunter = out.mutable_data();
  py::gil_scoped_release release;
  XYZToHunterLabBatch(illuminant, observer, in, kXyz, hunter, kXyz, count);
  return out;
}

py::array_t<double> Din99(const Table& lab, double kCH, double kE) {
  const std::size_t count = Rows(lab, kXyz, "lab");
  auto out = NewTable(count, kCoordinates);
  const double* in = lab.data();
  double* din99 = out.mutable_data();
  py::gil_scoped_release release;
  LabToDin99Batch(in, kXyz, kCH, kE, din99, kCoordinates, count);
  return out;
}

// Chroma and hue of (a, b) pairs: a (n, 2) table in, a (n, 2) table out.
py::array_t<double> ChromaHue(const Table& ab) {
  const std::size_t count = Rows(ab, 2, "ab");
  auto out = NewTable(count, 2);
  const double* in = ab.data();
  double* dst = out.mutable_data();
  py::gil_scoped_release release;
  for (std::size_t n = 0; n < count; ++n)
    ComputeChromaHue(in[2 * n], in[2 * n + 1], dst[2 * n], dst[2 * n + 1]);
  return out;
}

}  // namespace

void BindColorimetry(py::module_& m) {
  m.def("weight_table", &WeightTable, py::arg("illuminant"), py::arg("observer"));
  m.def("white_point", &WhitePoint, py::arg("illuminant"), py::arg("observer"));
  m.def("xyz", &Xyz, py::arg("spectra"), py::arg("illuminant"), py::arg("observer"));
  m.def("lab", &Lab, py::arg("xyz"), py::arg("illuminant"), py::arg("observer"),
        py::arg("white") = py::none());
  m.def("luv", &Luv, py::arg("xyz"), py::arg("illuminant"), py::arg("observer"));
  m.def("hunter_lab", &HunterLab, py::arg("xyz"), py::arg("illuminant"), py::arg("observer"));
  m.def("din99", &Din99, py::arg("lab"), py::arg("kCH"), py::arg("kE"));
  m.def("chroma_hue", &ChromaHue, py::arg("ab"));
}

}  // namespace velquor::python
