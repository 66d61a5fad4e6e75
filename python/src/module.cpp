// The extension module `_velquor`: the compiled half of the Python package `velquor`.
// Names, defaults, broadcasting and error texts live in velquor/__init__.py; this half checks
// table shapes, releases the GIL and runs the library's loops.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cstdint>
#include <optional>
#include <string>

#include "arrays.h"
#include "velquor/colorimetry/illuminants.h"
#include "velquor/frame/batch_threads.h"
#include "velquor/frame/resources.h"
#include "velquor/frame/version.h"

namespace velquor::python {
namespace {

// String `id` of the library's string table, or None when the table has no such string.
std::optional<std::string> LoadString(std::uint32_t id) {
  std::string text;
  if (LoadStringResource(id, text) == 0) return std::nullopt;
  return text;
}

// The short codes ("A", "C", "D65", ...) of the illuminants that carry a weighting table, in
// index order.
py::list IlluminantCodes() {
  py::list codes;
  for (int index = 0; index < kIlluminantCount; ++index) {
    std::string code;
    LoadIlluminantCode(index, code);
    codes.append(code);
  }
  return codes;
}

// The long names ("Daylight 6500° Kelvin", ...) in index order.
py::list IlluminantNames() {
  py::list names;
  for (int index = 0; index < kIlluminantCount; ++index) {
    std::string name;
    LoadIlluminantName(index, name);
    names.append(name);
  }
  return names;
}

}  // namespace
}  // namespace velquor::python

PYBIND11_MODULE(_velquor, m) {
  namespace vp = velquor::python;
  namespace py = pybind11;
  m.doc() = "Compiled core of the velquor package; use the functions of `velquor` instead.";
  m.def("version", [] { return std::string(velquor::GetVersionString()); },
        "The running library's version, \"major.minor.patch\".");
  m.def("string", &vp::LoadString, py::arg("id"),
        "Text of string `id` of the library's string table, or None.");
  m.def("set_batch_threads", &velquor::SetBatchThreads, py::arg("threads"));
  m.def("batch_threads", &velquor::BatchThreads);
  m.def("illuminant_codes", &vp::IlluminantCodes);
  m.def("illuminant_names", &vp::IlluminantNames);
  vp::BindColorimetry(m);
  vp::BindDifference(m);
  vp::BindIndices(m);
  vp::BindStrength(m);
  vp::BindMeasurement(m);
}
