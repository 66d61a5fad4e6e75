// Bindings of the measurement files (CGATS.17 and CSV spectra) and of the mapping of measured
// spectra onto the library's 360-750 nm grid.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "arrays.h"
#include "velquor/io/cgats_reader.h"
#include "velquor/io/csv_spectra.h"
#include "velquor/data/ks_data.h"
#include "velquor/io/measurement_file.h"
#include "velquor/io/spectral_grid_mapping.h"

namespace velquor::python {
namespace {

constexpr std::size_t kSpectrum = CKSData::kLength;

ReflectanceScale ScaleFromName(const std::string& scale) {
  if (scale == "auto") return ReflectanceScale::kAuto;
  if (scale == "fraction") return ReflectanceScale::kFraction;
  if (scale == "percent") return ReflectanceScale::kPercent;
  throw py::value_error("scale must be \"auto\", \"fraction\" or \"percent\", not \"" + scale +
                        "\"");
}

// Reads a measurement file (from `path`, or from `text` when given) and maps its spectra onto
// the grid. Returns a dict; a file the readers or the mapping refuse raises ValueError with
// their message ("<file>:<line>: <text>").
py::dict ReadSpectra(const std::string& path, const std::string& format, const std::string& scale,
                     const std::optional<std::string>& text) {
  ReadOptions options;
  options.scale = ScaleFromName(scale);
  MeasurementFile file;
  MeasurementStatus status;
  const bool csv = format == "csv";
  if (!csv && format != "cgats") throw py::value_error("format must be \"cgats\" or \"csv\"");
  std::vector<MappedSample> mapped;
  SpectralGridMapping mapping;
  {
    py::gil_scoped_release release;
    if (text) {
      status = csv ? ParseCsvSpectra(*text, path, options, file)
                   : ParseCgats(*text, path, options, file);
    } else {
      status = csv ? ReadCsvSpectraFile(path, options, file)
                   : ReadCgatsFile(path, options, file);
    }
    if (status) status = MapMeasurementFile(file, mapped, &mapping);
  }
  if (!status) throw py::value_error(status.error.Message());

  const std::size_t count = file.samples.size();
  const std::size_t bands = file.wavelengths.size();
  auto spectra = NewTable(count, kSpectrum);
  auto values = NewTable(count, bands);
  py::list labels;
  py::list fields;
  for (std::size_t n = 0; n < count; ++n) {
    std::copy(mapped[n].curve.GetData(), mapped[n].curve.GetData() + kSpectrum,
              spectra.mutable_data() + n * kSpectrum);
    std::copy(file.samples[n].values.begin(), file.samples[n].values.end(),
              values.mutable_data() + n * bands);
    labels.append(file.SampleLabel(n));
    fields.append(file.samples[n].fields);
  }
  py::list fieldNames;
  for (const MeasurementColumn& column : file.columns)
    if (!column.spectral) fieldNames.append(column.name);
  py::list notes;
  for (const MeasurementNote& note : file.notes) notes.append(py::make_tuple(note.line, note.text));

  py::dict out;
  out["spectra"] = spectra;
  out["labels"] = labels;
  out["wavelengths"] = py::array_t<double>(static_cast<py::ssize_t>(bands),
                                           file.wavelengths.data());
  out["values"] = values;
  out["field_names"] = fieldNames;
  out["fields"] = fields;
  out["percent_factor"] = file.PercentFactor();
  out["scale"] = file.DescribeScale();
  out["mapping"] = mapping.Describe();
  out["notes"] = notes;
  return out;
}

// Maps rows measured at `wavelengths` onto the grid, each value multiplied by `toPercent`.
py::array_t<double> MapToGrid(const std::vector<double>& wavelengths, const Table& values,
                              double toPercent) {
  SpectralGridMapping mapping;
  const MeasurementStatus status = mapping.Build(wavelengths);
  if (!status) throw py::value_error(status.error.Message());
  const std::size_t bands = wavelengths.size();
  const std::size_t count = Rows(values, bands, "values");
  auto out = NewTable(count, kSpectrum);
  const double* in = values.data();
  double* dst = out.mutable_data();
  {
    py::gil_scoped_release release;
    CKSData curve;
    for (std::size_t n = 0; n < count; ++n) {
      mapping.Apply(std::span<const double>(in + n * bands, bands), toPercent, curve);
      std::copy(curve.GetData(), curve.GetData() + kSpectrum, dst + n * kSpectrum);
    }
  }
  return out;
}

}  // namespace

void BindMeasurement(py::module_& m) {
  m.def("read_spectra", &ReadSpectra, py::arg("path"), py::arg("format"), py::arg("scale"),
        py::arg("text") = py::none());
  m.def("map_to_grid", &MapToGrid, py::arg("wavelengths"), py::arg("values"),
        py::arg("to_percent"));
}

}  // namespace velquor::python
