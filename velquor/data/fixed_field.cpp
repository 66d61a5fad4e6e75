#include "velquor/data/fixed_field.h"

#include "velquor/frame/constants.h"

namespace velquor {

double ParseFixedField(const char* buffer, std::size_t length) {
  if (buffer == nullptr || length == 0) return kMissing;
  const char last = buffer[length - 1];
  if (last == ' ' || last == '-') return kMissing;
  double value = 0.0;
  double divisor = 1.0;
  bool decimalSeen = false;
  for (std::size_t i = 0; i < length; ++i) {
    const char c = buffer[i];
    if (c >= '0' && c <= '9') {
      value = value * 10.0 + (c - '0');
      if (decimalSeen) divisor *= 10.0;
    } else if (c == '.') {
      decimalSeen = true;
    } else if (c == '-') {
      divisor = -1.0;
    } else if (c == '+') {
      divisor = 1.0;
    }
  }
  return value / divisor;
}

}  // namespace velquor
