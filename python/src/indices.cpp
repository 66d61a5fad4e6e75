// Bindings of the single-number indices of tristimulus values: whiteness, yellowness, tint and
// the tristimulus filter values, each chosen by (kind, name).
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <iterator>

#include "arrays.h"
#include "velquor/data/value_vectors.h"
#include "velquor/indices/index_batch.h"
#include "velquor/indices/index_formulas.h"

namespace velquor::python {
namespace {

struct IndexEntry {
  const char* kind;
  const char* name;  // as shown; "(R)" marks the recalculated flavour
  std::uint32_t identifier;  // catalogue identifier (index_formulas.h)
};

// The indices that need nothing but a sample's XYZ and the pair (the Ganz/Griesser forms need
// instrument coefficients and are not offered here), by kind and the binding's short names.
constexpr IndexEntry kIndices[] = {
    {"whiteness", "E313-73", 54},   {"whiteness", "E313-73 (R)", 2},
    {"whiteness", "Taube", 58},     {"whiteness", "Taube (R)", 20},
    {"whiteness", "Berger", 56},    {"whiteness", "Berger (R)", 17},
    {"whiteness", "CIE", 57},       {"whiteness", "CIE (R)", 3},
    {"whiteness", "E313-10", 55},   {"whiteness", "Stensby", 18},
    {"whiteness", "Hunter", 19},    {"yellowness", "D1925", 59},
    {"yellowness", "D1925 (R)", 1}, {"yellowness", "E313-73", 60},
    {"yellowness", "E313-73 (R)", 0}, {"yellowness", "E313-10", 61},
    {"yellowness", "E313-10 (R)", 14}, {"yellowness", "DIN6167", 62},
    {"yellowness", "DIN6167 (R)", 15}, {"yellowness", "DCM", 65},
    {"tint", "CIE", 53},            {"tint", "CIE (R)", 4},
    {"tint", "E313-10", 52},        {"filter", "Rx", 40},
    {"filter", "Rz", 42},
};
constexpr std::size_t kIndexCount = std::size(kIndices);

// (kind, name) of every entry, in table order; the position is the entry's number.
py::list IndexTable() {
  py::list entries;
  for (const IndexEntry& entry : kIndices) entries.append(py::make_tuple(entry.kind, entry.name));
  return entries;
}

py::array_t<double> Evaluate(const Table& xyz, std::uint32_t identifier, int illuminant,
                             int observer) {
  const std::size_t count = Rows(xyz, CValueVector3::kLength, "xyz");
  py::array_t<double> out(static_cast<py::ssize_t>(count));
  const double* in = xyz.data();
  double* dst = out.mutable_data();
  py::gil_scoped_release release;
  ComputeIndexBatch(identifier, illuminant, observer, in, CValueVector3::kLength, nullptr, dst,
                    count);
  return out;
}

py::array_t<double> Index(const Table& xyz, std::size_t entry, int illuminant, int observer) {
  if (entry >= kIndexCount) throw py::index_error("no index entry " + std::to_string(entry));
  return Evaluate(xyz, kIndices[entry].identifier, illuminant, observer);
}

// An index by its catalogue short name ("WI CIE", "YI E313-73 (R)", "Dom. Wav." ...).
py::array_t<double> CatalogueIndex(const Table& xyz, const std::string& name, int illuminant,
                                   int observer) {
  const std::uint32_t identifier = FindIndexFormulaByName(name);
  const IndexFormula* formula = identifier == kNoIndexFormula ? nullptr : FindIndexFormula(identifier);
  if (formula == nullptr || formula->plain == nullptr) {
    throw py::key_error("no index computed from XYZ is named '" + name + "'");
  }
  return Evaluate(xyz, identifier, illuminant, observer);
}

}  // namespace

void BindIndices(py::module_& m) {
  m.def("index_table", &IndexTable);
  m.def("index", &Index, py::arg("xyz"), py::arg("entry"), py::arg("illuminant"),
        py::arg("observer"));
  m.def("catalogue_index", &CatalogueIndex, py::arg("xyz"), py::arg("name"), py::arg("illuminant"),
        py::arg("observer"));
}

}  // namespace velquor::python
