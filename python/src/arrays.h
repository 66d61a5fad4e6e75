// Shared helpers of the Python bindings: row-major float64 tables with the component axis last.
//
// The compiled functions take two-dimensional tables (rows, components); the Python layer
// (velquor/__init__.py) reshapes arrays of any batch shape to that form and broadcasts. An
// input with one row against an output with many is read with a row stride of 0, so one
// standard serves every trial without being copied.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>
#include <string>

namespace velquor::python {

namespace py = pybind11;

// A C-contiguous float64 array; anything else is converted (copied) on the way in.
using Table = py::array_t<double, py::array::c_style | py::array::forcecast>;

// The rows of a two-dimensional table whose rows hold at least `components` doubles.
// Raises ValueError (through py::value_error) on any other shape.
inline std::size_t Rows(const Table& table, std::size_t components, const char* name) {
  if (table.ndim() != 2 || static_cast<std::size_t>(table.shape(1)) != components)
    throw py::value_error(std::string(name) + ": expected a table of shape (n, " +
                          std::to_string(components) + ")");
  return static_cast<std::size_t>(table.shape(0));
}

// The stride in doubles between consecutive rows of an input read against `count` output
// rows: 0 for a single row (broadcast), the row length when the row counts agree.
inline std::size_t RowStride(std::size_t rows, std::size_t count, std::size_t components,
                             const char* name) {
  if (rows == count) return components;
  if (rows == 1) return 0;
  throw py::value_error(std::string(name) + ": " + std::to_string(rows) +
                        " rows cannot be paired with " + std::to_string(count));
}

// A fresh (rows, components) output table.
inline py::array_t<double> NewTable(std::size_t rows, std::size_t components) {
  return py::array_t<double>({static_cast<py::ssize_t>(rows), static_cast<py::ssize_t>(components)});
}

void BindColorimetry(py::module_& m);
void BindDifference(py::module_& m);
void BindIndices(py::module_& m);
void BindStrength(py::module_& m);
void BindMeasurement(py::module_& m);

}  // namespace velquor::python
