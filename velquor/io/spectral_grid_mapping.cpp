#include "velquor/io/spectral_grid_mapping.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "velquor/io/measurement_text_ids.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/thread_pool.h"

namespace velquor {

namespace {

namespace text = measurement_text;

// Two wavelengths closer than this (nm) are the same wavelength; steps that differ by less
// are the same step.
constexpr double kWavelengthTolerance = 1e-6;

// Sprague interpolation, CIE 167:2005 (after Sprague 1880). On the interval from band i to
// band i + 1, at the fraction t of the interval, the value is sum_p a_p t^p with
// a_p = sum_m kSprague[p][m] r(i - 2 + m) / 24, m = 0..5.
constexpr double kSprague[6][6] = {
    {0, 0, 24, 0, 0, 0},
    {2, -16, 0, 16, -2, 0},
    {-1, 16, -30, 16, -1, 0},
    {-9, 39, -70, 66, -33, 7},
    {13, -64, 126, -124, 61, -12},
    {-5, 25, -50, 50, -25, 5},
};
constexpr double kSpragueDivisor = 24.0;

// The two neighbours missing before the first band, from the first six bands (CIE 167:2005):
// r(-2) = kBoundary[0] . r(0..5) / 209, r(-1) = kBoundary[1] . r(0..5) / 209. After the last
// band the same rows apply to the last six bands in reverse order.
constexpr double kBoundary[2][6] = {
    {884, -1960, 3033, -2648, 1080, -180},
    {508, -540, 488, -367, 144, -24},
};
constexpr double kBoundaryDivisor = 209.0;

// Bands Sprague needs: the interval's two ends and two neighbours on each side, and six bands
// for the boundary formulas.
constexpr std::size_t kSpragueMinBands = 6;
constexpr std::size_t kMinBands = 3;

// Adds `weight` times virtual band m (which may lie up to two bands outside 0..n-1) to
// `dense`, a weight per ascending band.
void AddVirtualBand(std::ptrdiff_t m, double weight, std::vector<double>& dense) {
  const auto n = static_cast<std::ptrdiff_t>(dense.size());
  if (m >= 0 && m < n) {
    dense[static_cast<std::size_t>(m)] += weight;
    return;
  }
  if (m < 0) {
    const double* row = kBoundary[m == -2 ? 0 : 1];
    for (std::size_t k = 0; k < 6; ++k) dense[k] += weight * row[k] / kBoundaryDivisor;
    return;
  }
  const double* row = kBoundary[m == n + 1 ? 0 : 1];
  for (std::size_t k = 0; k < 6; ++k) dense[static_cast<std::size_t>(n - 1) - k] += weight * row[k] / kBoundaryDivisor;
}

}  // namespace

MeasurementStatus SpectralGridMapping::Build(std::span<const double> wavelengths) noexcept {
  valid_ = false;
  method_ = GridMappingMethod::kSampled;
  inputCount_ = wavelengths.size();
  extrapolated_.fill(false);
  for (Point& point : points_) point.count = 0;
  try {
    auto fail = [](std::string message) { return MeasurementStatus::Failure("", 0, std::move(message)); };
    for (const double w : wavelengths) {
      if (!std::isfinite(w) || w <= 0.0) {
        return fail(FormatMeasurementText(text::kBadWavelength, {FormatMeasurementNumber(w)}));
      }
    }
    const std::size_t n = wavelengths.size();
    if (n < kMinBands) return fail(FormatMeasurementText(text::kTooFewBands, {std::to_string(n)}));
    std::vector<double> sorted(wavelengths.begin(), wavelengths.end());
    std::sort(sorted.begin(), sorted.end());
    for (std::size_t k = 1; k < n; ++k) {
      if (sorted[k] - sorted[k - 1] <= kWavelengthTolerance) {
        return fail(FormatMeasurementText(text::kDuplicateWavelength, {FormatMeasurementNumber(sorted[k])}));
      }
    }
    const bool ascending = wavelengths[1] > wavelengths[0];
    for (std::size_t k = 1; k < n; ++k) {
      if ((wavelengths[k] > wavelengths[k - 1]) != ascending) {
        return fail(FormatMeasurementText(
            text::kNotMonotone, {FormatMeasurementNumber(wavelengths[k]), FormatMeasurementNumber(wavelengths[k - 1])}));
      }
    }
    // Band k in ascending order is input order[k].
    std::vector<std::size_t> order(n);
    std::iota(order.begin(), order.end(), std::size_t{0});
    if (!ascending) std::reverse(order.begin(), order.end());
    const std::vector<double>& x = sorted;
    const double gridFirst = kFirstWavelength;
    const double gridLast = kFirstWavelength + kWavelengthStep * static_cast<double>(kSpectrumPoints - 1);
    if (x.back() < gridFirst - kWavelengthTolerance || x.front() > gridLast + kWavelengthTolerance) {
      return fail(FormatMeasurementText(text::kNoOverlap,
                                        {FormatMeasurementNumber(x.front()), FormatMeasurementNumber(x.back())}));
    }
    const double step = x[1] - x[0];
    bool regular = true;
    for (std::size_t k = 1; k + 1 < n && regular; ++k) {
      regular = std::fabs((x[k + 1] - x[k]) - step) <= kWavelengthTolerance;
    }
    const bool sprague = regular && n >= kSpragueMinBands;

    std::vector<double> dense(n);
    for (std::size_t i = 0; i < kSpectrumPoints; ++i) {
      const double g = kFirstWavelength + kWavelengthStep * static_cast<double>(i);
      Point& point = points_[i];
      if (g < x.front() - kWavelengthTolerance || g > x.back() + kWavelengthTolerance) {
        extrapolated_[i] = true;
        point.terms[0] = {order[g < x.front() ? 0 : n - 1], 1.0};
        point.count = 1;
        continue;
      }
      // The interval [x[j], x[j + 1]] that holds g, or the band at g.
      std::size_t j = static_cast<std::size_t>(std::upper_bound(x.begin(), x.end(), g) - x.begin());
      j = j == 0 ? 0 : j - 1;
      if (j + 1 < n && std::fabs(x[j + 1] - g) <= kWavelengthTolerance) ++j;
      if (std::fabs(x[j] - g) <= kWavelengthTolerance) {
        point.terms[0] = {order[j], 1.0};
        point.count = 1;
        continue;
      }
      std::fill(dense.begin(), dense.end(), 0.0);
      if (sprague) {
        method_ = GridMappingMethod::kSprague;
        const double t = (g - x[j]) / step;
        for (std::size_t m = 0; m < 6; ++m) {
          double c = 0.0;
          double power = 1.0;
          for (std::size_t p = 0; p < 6; ++p) {
            c += kSprague[p][m] * power;
            power *= t;
          }
          AddVirtualBand(static_cast<std::ptrdiff_t>(j) - 2 + static_cast<std::ptrdiff_t>(m), c / kSpragueDivisor,
                         dense);
        }
      } else {
        method_ = GridMappingMethod::kLagrange;
        const std::size_t count = std::min<std::size_t>(4, n);
        const std::size_t first = std::min(j > 0 ? j - 1 : 0, n - count);
        for (std::size_t k = first; k < first + count; ++k) {
          double weight = 1.0;
          for (std::size_t l = first; l < first + count; ++l) {
            if (l != k) weight *= (g - x[l]) / (x[k] - x[l]);
          }
          dense[k] += weight;
        }
      }
      for (std::size_t k = 0; k < n; ++k) {
        if (dense[k] == 0.0) continue;
        if (point.count == kMaxTerms) return fail(FormatMeasurementText(text::kOutOfMemory));
        point.terms[point.count++] = {order[k], dense[k]};
      }
    }
    valid_ = true;
    return {};
  } catch (...) {
    return MeasurementStatus::Failure("", 0, "out of memory");
  }
}

std::vector<int> SpectralGridMapping::ExtrapolatedWavelengths() const {
  std::vector<int> wavelengths;
  for (std::size_t i = 0; i < kSpectrumPoints; ++i) {
    if (extrapolated_[i]) wavelengths.push_back(kFirstWavelength + kWavelengthStep * static_cast<int>(i));
  }
  return wavelengths;
}

std::string SpectralGridMapping::Describe() const {
  std::uint32_t method = text::kMethodSampled;
  if (method_ == GridMappingMethod::kSprague) method = text::kMethodSprague;
  if (method_ == GridMappingMethod::kLagrange) method = text::kMethodLagrange;
  std::string description = FormatMeasurementText(method);
  description += "; ";
  const std::vector<int> extrapolated = ExtrapolatedWavelengths();
  if (extrapolated.empty()) {
    description += FormatMeasurementText(text::kNoneExtrapolated);
  } else {
    std::string list;
    for (const int w : extrapolated) {
      if (!list.empty()) list += ", ";
      list += std::to_string(w);
    }
    description += FormatMeasurementText(text::kExtrapolated, {list});
  }
  return description;
}

bool SpectralGridMapping::Apply(std::span<const double> values, double toPercent, CKSData& out) const noexcept {
  if (!valid_ || values.size() != inputCount_) return false;
  if (out.GetSize() != kSpectrumPoints) {
    try {
      out.SetSize(kSpectrumPoints);
    } catch (...) {
      return false;
    }
  }
  for (std::size_t i = 0; i < kSpectrumPoints; ++i) {
    const Point& point = points_[i];
    double sum = 0.0;
    bool missing = false;
    for (std::size_t k = 0; k < point.count; ++k) {
      const double v = values[point.terms[k].input];
      missing = missing || IsMissing(v);
      sum += point.terms[k].weight * v;
    }
    out[i] = missing ? kMissing : sum * toPercent;
  }
  return true;
}

MeasurementStatus MapMeasurementFile(const MeasurementFile& file, std::vector<MappedSample>& out,
                                     SpectralGridMapping* mapping) noexcept {
  return ReadWithoutThrowing(file.source, [&]() {
    out.clear();
    SpectralGridMapping local;
    SpectralGridMapping& map = mapping != nullptr ? *mapping : local;
    MeasurementStatus status = map.Build(file.wavelengths);
    if (!status) {
      status.error.file = file.source;
      status.error.line = file.formatLine;
      return status;
    }
    out.resize(file.samples.size());
    const double toPercent = file.PercentFactor();
    // Each sample on its own: a large batch is split over threads, some 50 microseconds a chunk.
    ParallelFor(file.samples.size(), 512, [&](std::size_t begin, std::size_t end) {
      for (std::size_t s = begin; s < end; ++s) {
        if (!map.Apply(file.samples[s].values, toPercent, out[s].curve)) {
          out[s].curve.Fill(kMissing);
        }
        bool missing = false;
        for (std::size_t i = 0; i < kSpectrumPoints; ++i) missing = missing || IsMissing(out[s].curve[i]);
        out[s].hasMissing = missing;
      }
    });
    return MeasurementStatus();
  });
}

}  // namespace velquor
