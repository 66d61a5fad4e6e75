// Numbers in fixed-width text fields, as instruments and legacy data files write them.
#pragma once

#include <cstddef>
#include <string_view>

namespace velquor {

// Value of a fixed-width field of `length` characters:
//  - a field whose last character is a blank or '-' (an empty or negative-marked field), and
//    an empty field, give the missing value 1e-05;
//  - otherwise digits accumulate into the value, '.' marks the decimal point, '-' and '+' set
//    the sign (dropping any decimal scaling gathered so far, so a sign belongs before the
//    digits), and every other character is skipped: " 12.34" is 12.34, "1,234" is 1234.
double ParseFixedField(const char* buffer, std::size_t length);
inline double ParseFixedField(std::string_view field) {
  return ParseFixedField(field.data(), field.size());
}

}  // namespace velquor
