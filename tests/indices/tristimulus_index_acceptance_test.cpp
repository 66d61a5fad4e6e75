// Which illuminant/observer pairs each whiteness, tint and yellowness operation accepts, from
// both sides of every rule, and the missing value for refused pairs and unusable samples.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tristimulus_index_test_support.h"
#include "velquor/frame/numeric.h"
#include "velquor/indices/tint.h"
#include "velquor/indices/whiteness.h"
#include "velquor/indices/yellowness.h"

namespace velquor {
namespace {

using namespace tristimulus_index_testing;

using IndexFn = double (*)(int, int, const CValueVector3&);

constexpr double kGanzWhiteness[4] = {1.0, -1868.322, -3695.690, 1809.441};
constexpr double kGanzTint[3] = {-1001.223, 748.366, 68.261};

double GanzWhiteness(int illuminant, int observer, const CValueVector3& xyz) {
  return WhitenessGanz(illuminant, observer, xyz, kGanzWhiteness);
}
double GanzTint(int illuminant, int observer, const CValueVector3& xyz) {
  return TintGanz(illuminant, observer, xyz, kGanzTint);
}

struct Pair {
  int illuminant, observer;
};

struct Rule {
  const char* name;
  IndexFn fn;
  std::vector<Pair> accepted;
  std::vector<Pair> refused;
};

// Observer code 7 stands for "any non-zero code", which all operations but the Ganz/Griesser
// pair treat as the 10 degree observer.
const std::vector<Pair> kC2Accepted = {{kC, 0}};
const std::vector<Pair> kC2Refused = {{kC, 1}, {kC, 7}, {kD65, 0}, {kA, 0}, {kD50, 0}};

std::vector<Rule> PlainRules() {
  return {
      {"WI E313-73", WhitenessE313_73, kC2Accepted, kC2Refused},
      {"Taube", WhitenessTaube, kC2Accepted, kC2Refused},
      {"YI D1925", YellownessD1925, kC2Accepted, kC2Refused},
      {"YI E313-73", YellownessE313_73, kC2Accepted, kC2Refused},
      {"YI DCM Y", YellownessDCMY, kC2Accepted, kC2Refused},
      // D65 only, both observers; C/2 refused although Berger's 2 degree pair was published
      // for it.
      {"Berger", WhitenessBerger, {{kD65, 0}, {kD65, 1}, {kD65, 7}},
       {{kC, 0}, {kC, 1}, {kD50, 0}, {kA, 1}, {kD55, 0}}},
      {"WI CIE", WhitenessCIE, {{kD65, 0}, {kD65, 1}, {kD65, 7}},
       {{kC, 0}, {kC, 1}, {kD50, 1}, {kA, 0}}},
      {"Tint CIE", TintCIE, {{kD65, 0}, {kD65, 1}, {kD65, 7}}, {{kC, 0}, {kD50, 1}, {kA, 0}}},
      // C, D65, D50 with both observers; every other illuminant refused.
      {"WI E313-10", WhitenessE313_10,
       {{kC, 0}, {kC, 1}, {kD65, 0}, {kD65, 1}, {kD50, 0}, {kD50, 7}},
       {{kA, 0}, {kCWF, 0}, {kT84, 1}, {kD55, 0}, {kF4, 0}, {-1, 0}, {17, 0}}},
      {"Tint E313-10", TintE313_10,
       {{kC, 0}, {kC, 1}, {kD65, 0}, {kD65, 1}, {kD50, 0}, {kD50, 7}},
       {{kA, 0}, {kCWF, 0}, {kT84, 1}, {kD55, 0}, {kF4, 0}}},
      // D65 with observer code exactly 1.
      {"WI Griesser", GanzWhiteness, {{kD65, 1}}, {{kD65, 0}, {kD65, 2}, {kD65, 7}, {kC, 1}}},
      {"Tint Griesser", GanzTint, {{kD65, 1}}, {{kD65, 0}, {kD65, 2}, {kD65, 7}, {kC, 1}}},
      // C and D65, both observers.
      {"YI E313-10", YellownessE313_10, {{kC, 0}, {kC, 1}, {kD65, 0}, {kD65, 1}, {kD65, 7}},
       {{kD50, 0}, {kD50, 1}, {kA, 0}, {kD55, 1}}},
      // C/2, D65/2, D65/10; not C/10.
      {"YI DIN 6167", YellownessDIN6167, {{kC, 0}, {kD65, 0}, {kD65, 1}, {kD65, 7}},
       {{kC, 1}, {kC, 7}, {kD50, 0}, {kA, 0}}},
  };
}

// The operations that accept every pair.
const std::vector<std::pair<const char*, IndexFn>> kOpenOperations = {
    {"WI E313-73 (R)", WhitenessE313_73R}, {"Taube (R)", WhitenessTaubeR},
    {"Berger (R)", WhitenessBergerR},      {"WI CIE (R)", WhitenessCIER},
    {"Stensby", WhitenessStensby},         {"Hunter", WhitenessHunter},
    {"Tint CIE (R)", TintCIER},            {"YI D1925 (R)", YellownessD1925R},
    {"YI E313-73 (R)", YellownessE313_73R}, {"YI E313-10 (R)", YellownessE313_10R},
    {"YI DIN 6167 (R)", YellownessDIN6167R},
};

TEST(IndexAcceptance, PlainFlavoursAcceptOnlyTheirPairs) {
  const CValueVector3 s1 = Sample(kS1[0], kS1[1], kS1[2]);
  CValueVector3 empty;
  empty.SetSize(0);
  for (const Rule& rule : PlainRules()) {
    for (const Pair& p : rule.accepted) {
      SCOPED_TRACE(testing::Message() << rule.name << " accepts " << p.illuminant << "/"
                                      << p.observer);
      EXPECT_FALSE(IsMissing(rule.fn(p.illuminant, p.observer, s1)));
    }
    for (const Pair& p : rule.refused) {
      SCOPED_TRACE(testing::Message() << rule.name << " refuses " << p.illuminant << "/"
                                      << p.observer);
      EXPECT_EQ(rule.fn(p.illuminant, p.observer, s1), kMissing);
      EXPECT_EQ(rule.fn(p.illuminant, p.observer, empty), kMissing);
    }
  }
}

TEST(IndexAcceptance, OpenOperationsAcceptEveryPair) {
  const CValueVector3 s2 = Sample(kS2[0], kS2[1], kS2[2]);
  for (const auto& [name, fn] : kOpenOperations) {
    for (int illuminant = 0; illuminant < 17; ++illuminant) {
      for (int observer : {0, 1}) {
        SCOPED_TRACE(testing::Message() << name << " " << illuminant << "/" << observer);
        EXPECT_FALSE(IsMissing(fn(illuminant, observer, s2)));
      }
    }
    // An illuminant without a weighting table takes the D65 white, as the tristimulus
    // values themselves do.
    EXPECT_EQ(fn(40, 1, s2), fn(kD65, 1, s2)) << name;
  }
}

// A sample missing as a whole (all three values 1e-05, or fewer than three values) gives the
// missing value on an accepted pair; one missing value alone does not.
TEST(IndexAcceptance, UnusableSampleGivesMissing) {
  const CValueVector3 missing = Sample(kMissing, kMissing, kMissing);
  CValueVector3 shortSample;
  shortSample.SetSize(2);
  const CValueVector3& shortRef = shortSample;
  std::vector<std::pair<std::string, IndexFn>> all(kOpenOperations.begin(),
                                                   kOpenOperations.end());
  for (const Rule& rule : PlainRules()) all.emplace_back(rule.name, rule.fn);
  for (const auto& [name, fn] : all) {
    for (const CValueVector3* sample : {&missing, &shortRef}) {
      // Every operation accepts D65/1 except the C/2-only ones.
      const bool c2Only = fn == WhitenessE313_73 || fn == WhitenessTaube ||
                          fn == YellownessD1925 || fn == YellownessE313_73 ||
                          fn == YellownessDCMY;
      EXPECT_EQ(fn(c2Only ? kC : kD65, c2Only ? 0 : 1, *sample), kMissing) << name;
    }
  }
  // X alone missing: 3.388 Z - 3 Y does not read X.
  ExpectClose(WhitenessE313_73(kC, 0, Sample(kMissing, 90.0, 108.0)), 95.904);
}

}  // namespace
}  // namespace velquor
