// Bindings of colour strength: CalcStrength of batches against standards, from spectra.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <cstddef>
#include <optional>

#include "arrays.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/data/ks_data.h"
#include "velquor/data/value_vectors.h"
#include "velquor/frame/thread_pool.h"
#include "velquor/strength/strength.h"
#include "velquor/strength/strength_batch.h"
#include "velquor/strength/strength_settings.h"

namespace velquor::python {
namespace {

constexpr std::size_t kSpectrum = CKSData::kLength;
// Pairs per chunk of the thread split when every batch has its own standard: some 50
// microseconds of work.
constexpr std::size_t kPairChunk = 128;

// Strength in percent of every batch against its standard (one standard may serve all, and is
// then prepared once: StrengthBatch), with the wavelength the method used; the tristimulus
// values the colour methods read are integrated from the same spectra (ComputeXYZ) for the
// chosen pair. The batches are split over the library's threads, without the GIL.
py::tuple Strength(const Table& standards, const Table& batches, int method, int illuminant,
                   int observer, bool useAbsorbance, std::optional<double> k1,
                   std::optional<double> k2, int userWavelength) {
  const std::size_t standardRows = Rows(standards, kSpectrum, "standard");
  const std::size_t count = std::max(standardRows, Rows(batches, kSpectrum, "batch"));
  const std::size_t standardStride = RowStride(standardRows, count, kSpectrum, "standard");
  const std::size_t batchStride =
      RowStride(static_cast<std::size_t>(batches.shape(0)), count, kSpectrum, "batch");

  CStrengthSettings settings;
  settings.method = method;
  settings.userWavelength = userWavelength;
  settings.saundersonOn = (k1 || k2) ? 1 : 0;
  settings.k1 = k1.value_or(0.0);
  settings.k2 = k2.value_or(0.0);

  py::array_t<double> strength(static_cast<py::ssize_t>(count));
  py::array_t<int> wavelengths(static_cast<py::ssize_t>(count));
  const double* s = standards.data();
  const double* b = batches.data();
  double* out = strength.mutable_data();
  int* used = wavelengths.mutable_data();
  {
    py::gil_scoped_release release;
    // The weighting table of the pair is loaded before the work is split over threads.
    int usable = illuminant;
    EnsureWeightTable(usable, observer);
    if (standardStride == 0) {
      // One standard for more than one batch: its part is worked out once.
      CKSData standard;
      CValueVector3 standardXyz;
      std::copy(s, s + kSpectrum, standard.GetData());
      ComputeXYZ(standard, illuminant, observer, standardXyz);
      int wavelength = 0;
      StrengthBatch(settings, standard, standardXyz, b, batchStride, nullptr, 0, count, illuminant,
                    observer, useAbsorbance, out, wavelength);
      std::fill(used, used + count, wavelength);
    } else {
      ParallelFor(count, kPairChunk, [&](std::size_t begin, std::size_t end) {
        CKSData standard;
        CKSData batch;
        CValueVector3 standardXyz;
        CValueVector3 batchXyz;
        for (std::size_t n = begin; n < end; ++n) {
          std::copy(s + n * standardStride, s + n * standardStride + kSpectrum,
                    standard.GetData());
          std::copy(b + n * batchStride, b + n * batchStride + kSpectrum, batch.GetData());
          ComputeXYZ(standard, illuminant, observer, standardXyz);
          ComputeXYZ(batch, illuminant, observer, batchXyz);
          int wavelength = 0;
          out[n] = CalcStrength(settings, standard, batch, standardXyz, batchXyz, illuminant,
                                observer, useAbsorbance, wavelength);
          used[n] = wavelength;
        }
      });
    }
  }
  return py::make_tuple(strength, wavelengths);
}

}  // namespace

void BindStrength(py::module_& m) {
  m.def("strength", &Strength, py::arg("standard"), py::arg("batch"), py::arg("method"),
        py::arg("illuminant"), py::arg("observer"), py::arg("absorbance"), py::arg("k1"),
        py::arg("k2"), py::arg("wavelength"));
}

}  // namespace velquor::python
