// The library's cube root: one fixed sequence of IEEE operations, so that the scalar formulas
// (CIELAB, CIELUV) and their SIMD kernels (CubeRootVector in simd_math-inl.h, the same steps
// lane by lane) give the same bits on every platform and instruction set. It is within 2 ulp of
// the exact root, as close as pow(x, 1/3), whose result varies between C libraries.
#pragma once

#include <bit>
#include <cstdint>

namespace velquor {

// fdlibm's bias for the first guess: the high word of x divided by three, plus this.
inline constexpr std::int64_t kCubeRootBias = 0x2A9F7893;

// Cube root of a positive, normal, finite x (other inputs give unspecified values). The first
// guess halves the high word's exponent thirds (within about 6 %); three Halley steps
// y <- y ((y^3 + 2x) / (2 y^3 + x)) then cube the relative error each: 6e-2, 2e-4, 1e-11, and
// finally rounding alone. The high word is below 2^31, so its conversions are exact.
inline double CubeRoot(double x) {
  const auto high = static_cast<std::int64_t>(std::bit_cast<std::uint64_t>(x) >> 32);
  const auto third = static_cast<std::int64_t>(static_cast<double>(high) * (1.0 / 3.0));
  double y = std::bit_cast<double>(static_cast<std::uint64_t>(third + kCubeRootBias) << 32);
  for (int step = 0; step < 3; ++step) {
    const double y3 = y * y * y;
    y = y * ((y3 + 2.0 * x) / (2.0 * y3 + x));
  }
  return y;
}

}  // namespace velquor
