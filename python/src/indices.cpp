// Bindings of the single-number indices of tristimulus values: whiteness, yellowness, tint and
// the tristimulus filter values, each chosen by (kind, name).
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "arrays.h"
#include "velquor/data/value_vectors.h"
#include "velquor/indices/filter_values.h"
#include "velquor/indices/tint.h"
#include "velquor/indices/whiteness.h"
#include "velquor/indices/yellowness.h"

namespace velquor::python {
namespace {

using IndexFunction = double (*)(int, int, const CValueVector3&);

struct IndexEntry {
  const char* kind;
  const char* name;  // as shown; "(R)" marks the recalculated flavour
  IndexFunction function;
};

// The indices that need nothing but a sample's XYZ and the pair (the Ganz/Griesser forms need
// instrument coefficients and are not offered here).
constexpr IndexEntry kIndices[] = {
    {"whiteness", "E313-73", &WhitenessE313_73},
    {"whiteness", "E313-73 (R)", &WhitenessE313_73R},
    {"whiteness", "Taube", &WhitenessTaube},
    {"whiteness", "Taube (R)", &WhitenessTaubeR},
    {"whiteness", "Berger", &WhitenessBerger},
    {"whiteness", "Berger (R)", &WhitenessBergerR},
    {"whiteness", "CIE", &WhitenessCIE},
    {"whiteness", "CIE (R)", &WhitenessCIER},
    {"whiteness", "E313-10", &WhitenessE313_10},
    {"whiteness", "Stensby", &WhitenessStensby},
    {"whiteness", "Hunter", &WhitenessHunter},
    {"yellowness", "D1925", &YellownessD1925},
    {"yellowness", "D1925 (R)", &YellownessD1925R},
    {"yellowness", "E313-73", &YellownessE313_73},
    {"yellowness", "E313-73 (R)", &YellownessE313_73R},
    {"yellowness", "E313-10", &YellownessE313_10},
    {"yellowness", "E313-10 (R)", &YellownessE313_10R},
    {"yellowness", "DIN6167", &YellownessDIN6167},
    {"yellowness", "DIN6167 (R)", &YellownessDIN6167R},
    {"yellowness", "DCM", &YellownessDCMY},
    {"tint", "CIE", &TintCIE},
    {"tint", "CIE (R)", &TintCIER},
    {"tint", "E313-10", &TintE313_10},
    {"filter", "Rx", &FilterValueRx},
    {"filter", "Rz", &FilterValueRz},
};
constexpr std::size_t kIndexCount = std::size(kIndices);

// (kind, name) of every entry, in table order; the position is the entry's number.
py::list IndexTable() {
  py::list entries;
  for (const IndexEntry& entry : kIndices) entries.append(py::make_tuple(entry.kind, entry.name));
  return entries;
}

py::array_t<double> Index(const Table& xyz, std::size_t entry, int illuminant, int observer) {
  if (entry >= kIndexCount) throw py::index_error("no index entry " + std::to_string(entry));
  const std::size_t count = Rows(xyz, CValueVector3::kLength, "xyz");
  py::array_t<double> out(static_cast<py::ssize_t>(count));
  const double* in = xyz.data();
  double* dst = out.mutable_data();
  const IndexFunction function = kIndices[entry].function;
  py::gil_scoped_release release;
  CValueVector3 sample;
  for (std::size_t n = 0; n < count; ++n) {
    std::copy(in + 3 * n, in + 3 * n + 3, sample.GetData());
    dst[n] = function(illuminant, observer, sample);
  }
  return out;
}

}  // namespace

void BindIndices(py::module_& m) {
  m.def("index_table", &IndexTable);
  m.def("index", &Index, py::arg("xyz"), py::arg("entry"), py::arg("illuminant"),
        py::arg("observer"));
}

}  // namespace velquor::python
