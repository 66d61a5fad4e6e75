// Fast reading of the plain decimals that fill measurement files ("0.4512", "-12", "+3.5").
#pragma once

#include <cfloat>
#include <cstdint>
#include <string_view>

namespace velquor {

// At most 15 digits, an optional sign and an optional point with digits on both sides. With m
// the digits as an integer and k the digits after the point, the value is m / 10^k: one
// correctly rounded division of two exactly representable numbers (m < 2^53, 10^k for
// k <= 22), hence the same double as a correctly rounding parser such as std::from_chars gives
// (Clinger's fast path). This needs arithmetic in double precision, not x87's extended one
// (FLT_EVAL_METHOD 0). Every other form for every other form (exponents, ".5",
// "5.", more digits, text) is left to the caller to read the general way.
//
// ScanPlainDecimal reads such a decimal from the start of [first, last) and returns where it
// stops (the caller checks that a separator follows), or nullptr when the text there does not
// start with one; `mantissa` gets the signed m and `divisor` 10^k, so that a caller can do the
// divisions of many numbers together (they vectorise).
inline const char* ScanPlainDecimal(const char* first, const char* last, double& mantissa, double& divisor) {
#if defined(FLT_EVAL_METHOD) && FLT_EVAL_METHOD == 0
  static constexpr double kPowersOfTen[16] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                              1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  const char* p = first;
  bool negative = false;
  if (p < last && (*p == '-' || *p == '+')) negative = *p++ == '-';
  std::uint64_t digitsValue = 0;
  const char* digitsStart = p;
  while (p < last && static_cast<unsigned char>(*p - '0') <= 9) {
    digitsValue = digitsValue * 10 + static_cast<std::uint64_t>(*p++ - '0');
  }
  const auto before = p - digitsStart;
  if (before == 0) return nullptr;
  std::ptrdiff_t after = 0;
  if (p < last && *p == '.') {
    const char* fractionStart = ++p;
    while (p < last && static_cast<unsigned char>(*p - '0') <= 9) {
      digitsValue = digitsValue * 10 + static_cast<std::uint64_t>(*p++ - '0');
    }
    after = p - fractionStart;
    if (after == 0) return nullptr;
  }
  if (before + after > 15) return nullptr;
  const auto magnitude = static_cast<double>(digitsValue);
  mantissa = negative ? -magnitude : magnitude;
  divisor = kPowersOfTen[after];
  return p;
#else
  (void)first;
  (void)last;
  (void)mantissa;
  (void)divisor;
  return nullptr;
#endif
}

// The whole of `text` as a plain decimal.
inline bool ParsePlainDecimal(std::string_view text, double& value) {
  double mantissa = 0.0;
  double divisor = 1.0;
  const char* last = text.data() + text.size();
  if (ScanPlainDecimal(text.data(), last, mantissa, divisor) != last) return false;
  value = mantissa / divisor;
  return true;
}

}  // namespace velquor
