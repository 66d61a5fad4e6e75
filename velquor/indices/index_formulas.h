// The indices that can be computed from one sample's tristimulus values, addressed by their
// catalogue identifiers (index_catalogue.h): whiteness, tint, yellowness, filter values and
// dominant wavelength. The C interface, the Python module and the command-line tool all find
// their formulas here.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "velquor/data/value_vectors.h"

namespace velquor {

using TristimulusIndexFormula = double (*)(int illuminant, int observer, const CValueVector3& xyz);
// Ganz/Griesser indices, which need the instrument's calibration coefficients.
using CalibratedIndexFormula = double (*)(int illuminant, int observer, const CValueVector3& xyz,
                                          const double* coefficients);

// What an identifier computes: exactly one of the two is set.
struct IndexFormula {
  std::uint32_t identifier = 0;
  TristimulusIndexFormula plain = nullptr;
  CalibratedIndexFormula calibrated = nullptr;
};

// Catalogue identifiers of the computable indices (the values of the C interface's
// VQ_INDEX_* constants).
inline constexpr std::uint32_t kIndexYellownessE313_73R = 0;
inline constexpr std::uint32_t kIndexWhitenessCieR = 3;
inline constexpr std::uint32_t kIndexDominantWavelength = 23;
inline constexpr std::uint32_t kIndexExcitationPurity = 24;
inline constexpr std::uint32_t kIndexWhitenessCie = 57;

// Returned by FindIndexFormulaByName for an unknown name.
inline constexpr std::uint32_t kNoIndexFormula = 0xFFFFFFFFu;

// The formula of `identifier`, or null when the identifier is not computable from XYZ.
const IndexFormula* FindIndexFormula(std::uint32_t identifier);
// The identifier whose catalogue short name is `name` (compared without regard to ASCII case
// and surrounding blanks), among the computable indices; kNoIndexFormula when none.
std::uint32_t FindIndexFormulaByName(std::string_view name);
// Every computable identifier, in catalogue order of the table.
std::span<const std::uint32_t> IndexFormulaIdentifiers();

}  // namespace velquor
