// Whiteness, tint and yellowness against hand calculations from the published formulas, the
// illuminant/observer pairs each flavour accepts, and the results of unusable samples.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string_view>

#include "reference_table.h"
#include "tristimulus_index_test_support.h"
#include "velquor/frame/numeric.h"
#include "velquor/indices/tint.h"
#include "velquor/indices/whiteness.h"
#include "velquor/indices/yellowness.h"

namespace velquor {
namespace {

using namespace tristimulus_index_testing;
using IndexFn = double (*)(int, int, const CValueVector3&);

// Ganz/Griesser calibration coefficients of the kind an instrument supplies.
constexpr double kGanzWhiteness[4] = {1.0, -1868.322, -3695.690, 1809.441};  // D P Q C
constexpr double kGanzTint[3] = {-1001.223, 748.366, 68.261};                // m n k0

struct NamedIndex {
  std::string_view name;
  IndexFn fn;
};

// From "WI E313-73 (R)" on, every operation accepts every pair.
constexpr std::size_t kFirstOpenIndex = 14;
constexpr NamedIndex kIndices[] = {
    {"WI E313-73", WhitenessE313_73},
    {"Taube", WhitenessTaube},
    {"YI D1925", YellownessD1925},
    {"YI E313-73", YellownessE313_73},
    {"YI DCM Y", YellownessDCMY},
    {"Berger", WhitenessBerger},
    {"WI CIE", WhitenessCIE},
    {"Tint CIE", TintCIE},
    {"WI E313-10", WhitenessE313_10},
    {"Tint E313-10", TintE313_10},
    {"YI E313-10", YellownessE313_10},
    {"YI DIN 6167", YellownessDIN6167},
    {"WI Griesser",
     [](int i, int o, const CValueVector3& s) { return WhitenessGanz(i, o, s, kGanzWhiteness); }},
    {"Tint Griesser",
     [](int i, int o, const CValueVector3& s) { return TintGanz(i, o, s, kGanzTint); }},
    {"WI E313-73 (R)", WhitenessE313_73R},
    {"Taube (R)", WhitenessTaubeR},
    {"Berger (R)", WhitenessBergerR},
    {"WI CIE (R)", WhitenessCIER},
    {"Stensby", WhitenessStensby},
    {"Hunter", WhitenessHunter},
    {"Tint CIE (R)", TintCIER},
    {"YI D1925 (R)", YellownessD1925R},
    {"YI E313-73 (R)", YellownessE313_73R},
    {"YI E313-10 (R)", YellownessE313_10R},
    {"YI DIN 6167 (R)", YellownessDIN6167R}};

IndexFn IndexByName(std::string_view name) {
  for (const NamedIndex& index : kIndices) {
    if (index.name == name) return index.fn;
  }
  ADD_FAILURE() << "no index named " << name;
  return [](int, int, const CValueVector3&) { return 0.0; };
}

TEST(TristimulusIndex, MatchesHandCalculations) {
  for (const char* table : {"reference/whiteness_tint.csv", "reference/yellowness.csv"}) {
    for (const test::ReferenceRow& row : test::LoadReferenceTable(table)) {
      SCOPED_TRACE(row.Where());
      ExpectClose(
          IndexByName(row.Text("index"))(row.Integer("illuminant"), row.Integer("observer"),
                                         Sample(row.Number("X"), row.Number("Y"), row.Number("Z"))),
          row.Number("expected"));
    }
  }
}

// Hunter a, b and the yellowness quotients divide by (the root of) Y unguarded: at Y = 0 the
// floating-point infinity or NaN (0 / 0) comes back, never the missing value. Stensby and
// Hunter in their classic (C/2) and white-point (D65/2) forms.
TEST(TristimulusIndex, ZeroYGivesTheFloatingPointResult) {
  for (IndexFn fn : {WhitenessStensby, WhitenessHunter}) {
    for (int illuminant : {kC, kD65}) {
      EXPECT_EQ(fn(illuminant, 0, Sample(10, 0, 20)), INFINITY) << illuminant;
      EXPECT_TRUE(std::isnan(fn(illuminant, 0, Sample(0, 0, 0)))) << illuminant;
    }
  }
  EXPECT_EQ(YellownessD1925(kC, 0, Sample(1.0, 0.0, 1.0)), INFINITY);  // 100 x 0.22 / 0
  EXPECT_EQ(YellownessE313_73(kC, 0, Sample(1.0, 0.0, 1.0)), -INFINITY);
  EXPECT_TRUE(std::isnan(YellownessD1925(kC, 0, Sample(1.06, 0.0, 1.28))));
  EXPECT_EQ(YellownessDIN6167R(kD65, 1, Sample(1.0, 0.0, 0.0)), INFINITY);
  EXPECT_EQ(WhitenessGanz(kD65, 1, Sample(86, 90, 108), nullptr), kMissing);
  EXPECT_EQ(TintGanz(kD65, 1, Sample(86, 90, 108), nullptr), kMissing);
}

// Every rule from both sides: an accepted pair gives a value, a refused one the missing value.
// A sample missing as a whole (all three values 1e-05, or fewer than three values) gives the
// missing value on every pair. From "WI E313-73 (R)" on, every operation accepts every pair, and
// an illuminant without a weighting table (40) takes the D65 white as the tristimulus values do.
TEST(TristimulusIndex, AcceptedPairsAndUnusableSamples) {
  const CValueVector3 s1 = Sample(kS1[0], kS1[1], kS1[2]),
                      allMissing = Sample(kMissing, kMissing, kMissing);
  CValueVector3 shortSample;
  shortSample.SetSize(2);
  const auto expect = [&](IndexFn fn, int illuminant, int observer, bool accepted) {
    SCOPED_TRACE(testing::Message() << illuminant << "/" << observer);
    EXPECT_EQ(IsMissing(fn(illuminant, observer, s1)), !accepted);
    EXPECT_EQ(fn(illuminant, observer, shortSample), kMissing);
    EXPECT_EQ(fn(illuminant, observer, allMissing), kMissing);
  };
  for (const test::ReferenceRow& row : test::LoadReferenceTable("reference/index_acceptance.csv")) {
    SCOPED_TRACE(row.Where());
    for (const char* column : {"accepted", "refused"}) {
      std::istringstream pairs(row.Text(column));
      int illuminant = 0, observer = 0;
      char slash = 0;
      while (pairs >> illuminant >> slash >> observer) {
        expect(IndexByName(row.Text("index")), illuminant, observer, column[0] == 'a');
      }
    }
  }
  for (std::size_t i = kFirstOpenIndex; i < std::size(kIndices); ++i) {
    SCOPED_TRACE(kIndices[i].name);
    for (int illuminant = 0; illuminant < 17; ++illuminant) {
      for (int observer : {0, 1}) expect(kIndices[i].fn, illuminant, observer, true);
    }
    EXPECT_EQ(kIndices[i].fn(40, 1, s1), kIndices[i].fn(kD65, 1, s1));
  }
}

}  // namespace
}  // namespace velquor
