#include "velquor/indices/index_formulas.h"

#include <algorithm>
#include <array>
#include <string>

#include "velquor/frame/ascii_text.h"
#include "velquor/indices/dominant_wavelength.h"
#include "velquor/indices/filter_values.h"
#include "velquor/indices/index_catalogue.h"
#include "velquor/indices/tint.h"
#include "velquor/indices/whiteness.h"
#include "velquor/indices/yellowness.h"

namespace velquor {

namespace {

double DominantWavelengthOnly(int illuminant, int observer, const CValueVector3& xyz) {
  double purity = 0.0;
  return DominantWavelength(illuminant, observer, xyz, purity);
}

double ExcitationPurityOnly(int illuminant, int observer, const CValueVector3& xyz) {
  double purity = 0.0;
  DominantWavelength(illuminant, observer, xyz, purity);
  return purity;
}

constexpr IndexFormula kFormulas[] = {
    {kIndexYellownessE313_73R, YellownessE313_73R, nullptr},
    {1, YellownessD1925R, nullptr},
    {2, WhitenessE313_73R, nullptr},
    {kIndexWhitenessCieR, WhitenessCIER, nullptr},
    {4, TintCIER, nullptr},
    {14, YellownessE313_10R, nullptr},
    {15, YellownessDIN6167R, nullptr},
    {17, WhitenessBergerR, nullptr},
    {18, WhitenessStensby, nullptr},
    {19, WhitenessHunter, nullptr},
    {20, WhitenessTaubeR, nullptr},
    {kIndexDominantWavelength, DominantWavelengthOnly, nullptr},
    {kIndexExcitationPurity, ExcitationPurityOnly, nullptr},
    {40, FilterValueRx, nullptr},
    {42, FilterValueRz, nullptr},
    {52, TintE313_10, nullptr},
    {53, TintCIE, nullptr},
    {54, WhitenessE313_73, nullptr},
    {55, WhitenessE313_10, nullptr},
    {56, WhitenessBerger, nullptr},
    {kIndexWhitenessCie, WhitenessCIE, nullptr},
    {58, WhitenessTaube, nullptr},
    {59, YellownessD1925, nullptr},
    {60, YellownessE313_73, nullptr},
    {61, YellownessE313_10, nullptr},
    {62, YellownessDIN6167, nullptr},
    {63, nullptr, WhitenessGanz},
    {64, nullptr, TintGanz},
    {65, YellownessDCMY, nullptr},
};

constexpr std::array<std::uint32_t, std::size(kFormulas)> MakeIdentifiers() {
  std::array<std::uint32_t, std::size(kFormulas)> identifiers{};
  for (std::size_t i = 0; i < identifiers.size(); ++i) identifiers[i] = kFormulas[i].identifier;
  return identifiers;
}
constexpr auto kIdentifiers = MakeIdentifiers();

}  // namespace

const IndexFormula* FindIndexFormula(std::uint32_t identifier) {
  for (const IndexFormula& formula : kFormulas) {
    if (formula.identifier == identifier) return &formula;
  }
  return nullptr;
}

std::uint32_t FindIndexFormulaByName(std::string_view name) {
  name = TrimBlanks(name);
  std::string known;
  for (const IndexFormula& formula : kFormulas) {
    LoadIndexName(formula.identifier, known);
    if (EqualsIgnoringCase(known, name)) return formula.identifier;
  }
  return kNoIndexFormula;
}

std::span<const std::uint32_t> IndexFormulaIdentifiers() {
  return kIdentifiers;
}

}  // namespace velquor
