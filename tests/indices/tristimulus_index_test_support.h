// Shared pieces of the index tests: illuminant indices, samples, the index operations by their
// catalogue short names, and one comparison against the hand-calculated reference tables.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string_view>

#include "reference_table.h"
#include "tolerances.h"
#include "velquor/indices/tint.h"
#include "velquor/indices/whiteness.h"
#include "velquor/indices/yellowness.h"

namespace velquor::tristimulus_index_testing {

// Illuminant indices of the library's catalogue.
inline constexpr int kA = 0, kC = 1, kD65 = 2, kCWF = 3, kT84 = 4, kD50 = 5, kD55 = 6, kF4 = 16;

using IndexFn = double (*)(int, int, const CValueVector3&);

inline void ExpectClose(double actual, double expected) {
  const double tolerance = test::kIndependent * std::max(1.0, std::fabs(expected));
  EXPECT_NEAR(actual, expected, tolerance)
      << "error = " << (actual - expected) / tolerance << " x tolerance";
}

inline CValueVector3 Sample(double x, double y, double z) {
  CValueVector3 xyz;
  xyz[0] = x, xyz[1] = y, xyz[2] = z;
  return xyz;
}

// A bluish and a slightly yellow paper white, the samples of the reference tables.
inline constexpr double kS1[3] = {86.0, 90.0, 108.0};
inline constexpr double kS2[3] = {80.0, 82.0, 70.0};
inline CValueVector3 Sample(const double* s) {
  return Sample(s[0], s[1], s[2]);
}

// Ganz/Griesser calibration coefficients of the kind an instrument supplies.
inline constexpr double kGanzWhiteness[4] = {1.0, -1868.322, -3695.690, 1809.441};  // D P Q C
inline constexpr double kGanzTint[3] = {-1001.223, 748.366, 68.261};                // m n k0

struct NamedIndex {
  std::string_view name;
  IndexFn fn;
  bool c2Only;  // defined for C / 2 degree only
};

inline constexpr NamedIndex kIndices[] = {
    {"WI E313-73", WhitenessE313_73, true},
    {"Taube", WhitenessTaube, true},
    {"YI D1925", YellownessD1925, true},
    {"YI E313-73", YellownessE313_73, true},
    {"YI DCM Y", YellownessDCMY, true},
    {"Berger", WhitenessBerger, false},
    {"WI CIE", WhitenessCIE, false},
    {"Tint CIE", TintCIE, false},
    {"WI E313-10", WhitenessE313_10, false},
    {"Tint E313-10", TintE313_10, false},
    {"YI E313-10", YellownessE313_10, false},
    {"YI DIN 6167", YellownessDIN6167, false},
    {"WI Griesser",
     [](int i, int o, const CValueVector3& s) { return WhitenessGanz(i, o, s, kGanzWhiteness); },
     false},
    {"Tint Griesser",
     [](int i, int o, const CValueVector3& s) { return TintGanz(i, o, s, kGanzTint); }, false},
    // The recalculated flavours and the Hunter Lab ones, which accept every pair.
    {"WI E313-73 (R)", WhitenessE313_73R, false},
    {"Taube (R)", WhitenessTaubeR, false},
    {"Berger (R)", WhitenessBergerR, false},
    {"WI CIE (R)", WhitenessCIER, false},
    {"Stensby", WhitenessStensby, false},
    {"Hunter", WhitenessHunter, false},
    {"Tint CIE (R)", TintCIER, false},
    {"YI D1925 (R)", YellownessD1925R, false},
    {"YI E313-73 (R)", YellownessE313_73R, false},
    {"YI E313-10 (R)", YellownessE313_10R, false},
    {"YI DIN 6167 (R)", YellownessDIN6167R, false},
};
// kIndices from here on accept every illuminant and observer.
inline constexpr std::size_t kFirstOpenIndex = 14;

inline IndexFn IndexByName(std::string_view name) {
  for (const NamedIndex& index : kIndices) {
    if (index.name == name) return index.fn;
  }
  ADD_FAILURE() << "no index named " << name;
  return nullptr;
}

// Every row of the table (columns index, illuminant, observer, X, Y, Z, expected).
inline void ExpectReferenceTable(const char* name) {
  for (const test::ReferenceRow& row : test::LoadReferenceTable(name)) {
    SCOPED_TRACE(row.Where());
    const IndexFn fn = IndexByName(row.Text("index"));
    ASSERT_NE(fn, nullptr);
    ExpectClose(fn(row.Integer("illuminant"), row.Integer("observer"),
                   Sample(row.Number("X"), row.Number("Y"), row.Number("Z"))),
                row.Number("expected"));
  }
}

}  // namespace velquor::tristimulus_index_testing
