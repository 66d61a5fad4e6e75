// Half-grade steps of the ISO 105 grey scales. A step is an integer code: 1, 2, 3, 4, 5 for
// the whole grades and 12, 23, 34, 45 for the half grades 1-2, 2-3, 3-4 and 4-5; 6 marks a
// value below the whole scale.
#pragma once

#include <span>
#include <string>

#include "velquor/indices/fastness_constants.h"

namespace velquor {

// Code of a value that reaches none of the thresholds (below the last one, or NaN).
inline constexpr int kStepCodeBelowScale = 6;

// The step of `value` on a table of nine thresholds in falling order: k is the first position
// 0 to 8 whose threshold the value reaches (value >= threshold, so a value exactly on a
// threshold takes the coarser step). With h = (k + 1) / 2 in integer division the code is
// 11 h + 1 for odd k and h + 1 for even k, so positions 0 to 8 give 1, 12, 2, 23, 3, 34, 4,
// 45, 5; a value that reaches none gives 6. The value is a plain number: 1e-05 is looked up
// like any other (callers test for missing inputs first).
int StepCodeFromValue(double value, std::span<const double, kStepThresholdCount> thresholds);

// Display text of a step code. Codes above 9 are written "%ld-%ld" with code / 10 and
// code % 10 (45 gives "4-5"); any other code is written " %ld ", one blank on each side, so
// that whole grades line up with the three-character half grades in a column.
void FormatStepCode(long code, std::string& text);

}  // namespace velquor
