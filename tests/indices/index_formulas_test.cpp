// The identifier -> formula table that the C interface, the Python module and the tool share.
#include "velquor/indices/index_formulas.h"

#include <gtest/gtest.h>

#include <set>

#include "velquor/indices/tint.h"
#include "velquor/indices/whiteness.h"
#include "velquor/indices/yellowness.h"

namespace velquor {
namespace {

TEST(IndexFormulas, EveryListedIdentifierHasExactlyOneFormulaAndIsFoundByName) {
  std::set<std::uint32_t> seen;
  for (const std::uint32_t id : IndexFormulaIdentifiers()) {
    EXPECT_TRUE(seen.insert(id).second) << id;
    const IndexFormula* formula = FindIndexFormula(id);
    ASSERT_NE(formula, nullptr) << id;
    EXPECT_EQ(formula->identifier, id);
    EXPECT_NE(formula->plain == nullptr, formula->calibrated == nullptr) << id;
  }
  // The identifiers of the C interface's constants, and the Ganz/Griesser pair (63, 64).
  for (const std::uint32_t id : {kIndexYellownessE313_73R, kIndexWhitenessCieR,
                                 kIndexDominantWavelength, kIndexExcitationPurity,
                                 kIndexWhitenessCie, 63u, 64u}) {
    EXPECT_EQ(seen.count(id), 1u) << id;
  }
  // The table holds the named formulas: compared by their results on a near-white, as a
  // function's address taken in a program differs from the one inside velquor.dll.
  CValueVector3 xyz;
  xyz[0] = 80.1, xyz[1] = 84.3, xyz[2] = 95.2;
  const double coefficients[6] = {-1.5, 0.02, 180, 0.01, 0.002, -3};
  EXPECT_EQ(FindIndexFormula(kIndexWhitenessCie)->plain(2, 1, xyz), WhitenessCIE(2, 1, xyz));
  EXPECT_EQ(FindIndexFormula(64)->calibrated(2, 1, xyz, coefficients),
            TintGanz(2, 1, xyz, coefficients));
  EXPECT_EQ(FindIndexFormula(kIndexYellownessE313_73R)->plain(2, 1, xyz),
            YellownessE313_73R(2, 1, xyz));
  EXPECT_EQ(FindIndexFormula(1000), nullptr);  // difference variants are not computable from XYZ

  EXPECT_EQ(FindIndexFormulaByName("  wi cie "), kIndexWhitenessCie);
  EXPECT_EQ(FindIndexFormulaByName("WI CIE (R)"), kIndexWhitenessCieR);
  EXPECT_EQ(FindIndexFormulaByName("WI"), kNoIndexFormula);
}

}  // namespace
}  // namespace velquor
