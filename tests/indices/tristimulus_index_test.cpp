// Which illuminant/observer pairs each whiteness, tint and yellowness operation accepts, from
// both sides of every rule, and the missing value for refused pairs and unusable samples.
#include <gtest/gtest.h>

#include <vector>

#include "tristimulus_index_test_support.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using namespace tristimulus_index_testing;

struct Pair {
  int illuminant, observer;
};

struct Rule {
  const char* name;
  std::vector<Pair> accepted, refused;
};

// Observer code 7 stands for "any non-zero code", which all operations but the Ganz/Griesser
// pair treat as the 10 degree observer.
const std::vector<Pair> kC2Accepted = {{kC, 0}};
const std::vector<Pair> kC2Refused = {{kC, 1}, {kC, 7}, {kD65, 0}, {kA, 0}, {kD50, 0}};
const std::vector<Pair> kD65Accepted = {{kD65, 0}, {kD65, 1}, {kD65, 7}};
const std::vector<Pair> kE313_10Accepted = {{kC, 0},   {kC, 1},   {kD65, 0},
                                            {kD65, 1}, {kD50, 0}, {kD50, 7}};
const std::vector<Pair> kGanzRefused = {{kD65, 0}, {kD65, 2}, {kD65, 7}, {kC, 1}};

const Rule kRules[] = {
    {"WI E313-73", kC2Accepted, kC2Refused},
    {"Taube", kC2Accepted, kC2Refused},
    {"YI D1925", kC2Accepted, kC2Refused},
    {"YI E313-73", kC2Accepted, kC2Refused},
    {"YI DCM Y", kC2Accepted, kC2Refused},
    // D65 only; C/2 refused although Berger's 2 degree pair was published for it.
    {"Berger", kD65Accepted, {{kC, 0}, {kC, 1}, {kD50, 0}, {kA, 1}, {kD55, 0}}},
    {"WI CIE", kD65Accepted, {{kC, 0}, {kC, 1}, {kD50, 1}, {kA, 0}}},
    {"Tint CIE", kD65Accepted, {{kC, 0}, {kD50, 1}, {kA, 0}}},
    {"WI E313-10",
     kE313_10Accepted,
     {{kA, 0}, {kCWF, 0}, {kT84, 1}, {kD55, 0}, {kF4, 0}, {-1, 0}, {17, 0}}},
    {"Tint E313-10", kE313_10Accepted, {{kA, 0}, {kCWF, 0}, {kT84, 1}, {kD55, 0}, {kF4, 0}}},
    {"WI Griesser", {{kD65, 1}}, kGanzRefused},  // observer code exactly 1
    {"Tint Griesser", {{kD65, 1}}, kGanzRefused},
    {"YI E313-10",
     {{kC, 0}, {kC, 1}, {kD65, 0}, {kD65, 1}, {kD65, 7}},
     {{kD50, 0}, {kD50, 1}, {kA, 0}, {kD55, 1}}},
    {"YI DIN 6167",
     {{kC, 0}, {kD65, 0}, {kD65, 1}, {kD65, 7}},  // not C/10
     {{kC, 1}, {kC, 7}, {kD50, 0}, {kA, 0}}},
};

TEST(IndexAcceptance, PlainFlavoursAcceptOnlyTheirPairs) {
  const CValueVector3 s1 = Sample(kS1);
  CValueVector3 empty;
  empty.SetSize(0);
  for (const Rule& rule : kRules) {
    const IndexFn fn = IndexByName(rule.name);
    for (const Pair& p : rule.accepted) {
      EXPECT_FALSE(IsMissing(fn(p.illuminant, p.observer, s1)))
          << rule.name << " accepts " << p.illuminant << "/" << p.observer;
    }
    for (const Pair& p : rule.refused) {
      EXPECT_EQ(fn(p.illuminant, p.observer, s1), kMissing)
          << rule.name << " refuses " << p.illuminant << "/" << p.observer;
      EXPECT_EQ(fn(p.illuminant, p.observer, empty), kMissing) << rule.name;
    }
  }
}

TEST(IndexAcceptance, OpenOperationsAcceptEveryPair) {
  const CValueVector3 s2 = Sample(kS2);
  for (std::size_t i = kFirstOpenIndex; i < std::size(kIndices); ++i) {
    const NamedIndex& index = kIndices[i];
    for (int illuminant = 0; illuminant < 17; ++illuminant) {
      for (int observer : {0, 1}) {
        EXPECT_FALSE(IsMissing(index.fn(illuminant, observer, s2)))
            << index.name << " " << illuminant << "/" << observer;
      }
    }
    // An illuminant without a weighting table takes the D65 white, as the tristimulus
    // values themselves do.
    EXPECT_EQ(index.fn(40, 1, s2), index.fn(kD65, 1, s2)) << index.name;
  }
}

// A sample missing as a whole (all three values 1e-05, or fewer than three values) gives the
// missing value on an accepted pair; one missing value alone does not.
TEST(IndexAcceptance, UnusableSampleGivesMissing) {
  CValueVector3 shortSample;
  shortSample.SetSize(2);
  for (const NamedIndex& index : kIndices) {
    const int illuminant = index.c2Only ? kC : kD65, observer = index.c2Only ? 0 : 1;
    EXPECT_EQ(index.fn(illuminant, observer, Sample(kMissing, kMissing, kMissing)), kMissing)
        << index.name;
    EXPECT_EQ(index.fn(illuminant, observer, shortSample), kMissing) << index.name;
  }
  // X alone missing: 3.388 Z - 3 Y does not read X.
  ExpectClose(WhitenessE313_73(kC, 0, Sample(kMissing, 90.0, 108.0)), 95.904);
}

}  // namespace
}  // namespace velquor
