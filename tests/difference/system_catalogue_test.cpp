#include "velquor/difference/system_catalogue.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "velquor/frame/resources.h"

namespace velquor {
namespace {

struct CatalogueString {
  int system;
  std::uint32_t offset;
  const char* text;
};

// The captions and short names of the thirteen blocks, and the whole CIEDE2000 block (system,
// offset, text); the column lists of every block are checked against each other below.
// clang-format off
constexpr CatalogueString kStrings[] = {
    {0, 0, "CIE L*a*b*"},
    {0, 1, "L*a*b*"},
    {1, 0, "CMC (L:C) = %s : %s, cf = %s"},
    {1, 1, "CMC (%s:%s) cf=%s"},
    {2, 0, "Hunter Lab"},
    {2, 1, "Hunter"},
    {3, 0, "FMC-2"},
    {3, 1, "FMC-2"},
    {4, 0, "CIE94 (KL:KC:KH) = %s : %s : %s"},
    {4, 1, "CIE94 (%s:%s:%s)"},
    {5, 0, "CIE L*C*h"},
    {5, 1, "L*C*h"},
    {6, 0, "CIE L*u*v*"},
    {6, 1, "L*u*v*"},
    {7, 0, "CIE XYZ/Yxy"},
    {7, 1, "XYZ/Yxy"},
    {8, 0, "GE-PQS II"},
    {8, 1, "GE-PQS II"},
    {9, 0, "Audi L*a*b*"},
    {9, 1, "Audi L*a*b*"},
    {10, 0, "DIN99 (KCH:KE) = %s : %s"},
    {10, 1, "DIN99 (%s:%s)"},
    {11, 0, "CIE2000 (KL:KC:KH) = %s : %s : %s"},
    {11, 1, "CIE2000 (%s:%s:%s)"},
    {11, 2, "L*|a*|b*|C*|h°||ΔL*|Δa*|Δb*|ΔL00|ΔC00|ΔH00||ΔE00"},
    {11, 3, "L*|a*|b*|C*|h°"},
    {11, 4, "ΔL*|Δa*|Δb*|ΔL00|ΔC00|ΔH00|ΔE00"},
    {11, 6, "L*|a*|b*"},
    {11, 7, "ΔL*|Δa*|Δb*|ΔE00"},
    {11, 8, "L*|a*|b*"},
    {11, 9, "L00|C00|H00"},
    {11, 10, "L*|a*|b*"},
    {12, 0, "DIN6175 (gL:gC:gH) = %s : %s : %s"},
    {12, 1, "DIN6175 (%s:%s:%s)"},
};
// clang-format on

TEST(DifferenceSystemCatalogue, BlockStringsHaveTheirIdentifiersAndUnusedOffsetsNone) {
  for (const CatalogueString& s : kStrings) {
    const std::uint32_t id = 2368 + 16 * s.system + s.offset;
    const auto offset = static_cast<DifferenceString>(s.offset);
    EXPECT_EQ(GetDifferenceStringId(s.system, offset), id);
    EXPECT_EQ(LoadStringResource(id), s.text) << "string " << id;
    EXPECT_EQ(LoadDifferenceString(s.system, offset), s.text) << "string " << id;
  }
  // Offsets 5 and 11-15 of every block have no string; the other ten all have one.
  for (int system = 0; system < 13; ++system) {
    for (std::uint32_t offset = 0; offset < 16; ++offset) {
      std::string text = "x";
      const bool used = offset != 5 && offset < 11;
      EXPECT_EQ(LoadStringResource(2368 + 16 * system + offset, text), used ? 1 : 0)
          << "system " << system << " offset " << offset;
    }
  }
}

TEST(DifferenceSystemCatalogue, CodesWithoutBlockAndOffsetsBeyondTheBlockLoadNothing) {
  // The chromaticity mode (100) and unknown codes have no block; offset 16 would be the next
  // system's caption.
  for (int system : {-1, 13, 100}) {
    EXPECT_EQ(LoadDifferenceString(system, DifferenceString::kCaption), "") << system;
    EXPECT_EQ(LoadDifferenceTotalLabel(system), "") << system;
  }
  EXPECT_EQ(LoadDifferenceString(0, static_cast<DifferenceString>(16)), "");
}

// The total labels of the thirteen systems, and the count of weight placeholders.
TEST(DifferenceSystemCatalogue, ColumnListsAgreeWithEachOtherAndEndInTheTotal) {
  constexpr const char* kTotals[13] = {"ΔE*ab", "ΔE*cmc", "ΔEab",  "ΔEfmc2",  "ΔE*94",
                                       "ΔE*ab", "ΔE*uv",  "ΔE*ab", "ΔCgepqs", "ΔE*audi",
                                       "ΔE99",  "ΔE00",   "ΔE'p"};
  for (int k = 0; k < 13; ++k) {
    const auto load = [k](DifferenceString o) { return LoadDifferenceString(k, o); };
    const std::string total = kTotals[k];
    EXPECT_EQ(LoadDifferenceTotalLabel(k), total) << k;

    // Full list = values || differences without the total || total.
    const std::vector<std::string> differences =
        SplitColumnLabels(load(DifferenceString::kDifferenceColumns));
    ASSERT_GE(differences.size(), 4u) << k;
    std::string expectedFull = load(DifferenceString::kValueColumns) + "||";
    for (std::size_t i = 0; i + 1 < differences.size(); ++i) {
      expectedFull += differences[i] + (i + 2 < differences.size() ? "|" : "");
    }
    expectedFull += "||" + total;
    EXPECT_EQ(load(DifferenceString::kColumns), expectedFull) << k;

    // Three-column lists have three fields; the short difference list ends in the total.
    for (DifferenceString o :
         {DifferenceString::kThreeValueColumns, DifferenceString::kCoordinateLabels,
          DifferenceString::kComponentLabels, DifferenceString::kSecondCoordinateLabels}) {
      EXPECT_EQ(SplitColumnLabels(load(o)).size(), 3u) << k << " offset " << int(o);
    }
    const std::vector<std::string> three =
        SplitColumnLabels(load(DifferenceString::kThreeDifferenceColumns));
    ASSERT_EQ(three.size(), 4u) << k;
    EXPECT_EQ(three.back(), total) << k;

    // Each "%s" of caption and short name is one weight.
    for (DifferenceString o : {DifferenceString::kCaption, DifferenceString::kShortName}) {
      const std::string text = load(o);
      int placeholders = 0;
      for (std::size_t p = text.find("%s"); p != std::string::npos; p = text.find("%s", p + 2)) {
        ++placeholders;
      }
      EXPECT_EQ(placeholders, CountDifferenceWeights(k)) << k;
    }
  }
}

// Only CMC, CIE94 and CIE2000 show the weighted lightness term of slot 4: their difference
// lists have all seven slots; the others leave slot 4 out.
TEST(DifferenceSystemCatalogue, OnlyWeightedSystemsListSlotFour) {
  for (int k = 0; k < 13; ++k) {
    const std::size_t columns =
        SplitColumnLabels(LoadDifferenceString(k, DifferenceString::kDifferenceColumns)).size();
    if (k == 1 || k == 4 || k == 11) {
      EXPECT_EQ(columns, 7u) << k;
    } else {
      EXPECT_LE(columns, 6u) << k;
    }
  }
}

struct CaptionCase {
  int system;
  std::vector<std::string> weights;
  const char* caption;
  const char* shortName;
};

TEST(DifferenceSystemCatalogue, WeightedCaptionsTakeTheWeightsInOrder) {
  const CaptionCase cases[] = {
      {1, {"2", "1", "1.00"}, "CMC (L:C) = 2 : 1, cf = 1.00", "CMC (2:1) cf=1.00"},
      {4, {"1", "2", "3"}, "CIE94 (KL:KC:KH) = 1 : 2 : 3", "CIE94 (1:2:3)"},
      {10, {"1.5", "0.75"}, "DIN99 (KCH:KE) = 1.5 : 0.75", "DIN99 (1.5:0.75)"},
      {11, {"2", "1", "0.5"}, "CIE2000 (KL:KC:KH) = 2 : 1 : 0.5", "CIE2000 (2:1:0.5)"},
      {12, {"1.1", "1.2", "1.3"}, "DIN6175 (gL:gC:gH) = 1.1 : 1.2 : 1.3", "DIN6175 (1.1:1.2:1.3)"},
      // Systems without weights ignore them.
      {0, {"9", "9", "9"}, "CIE L*a*b*", "L*a*b*"},
      {8, {"9"}, "GE-PQS II", "GE-PQS II"},
      // Missing weights leave their places empty.
      {1, {"2"}, "CMC (L:C) = 2 : , cf = ", "CMC (2:) cf="},
  };
  for (const CaptionCase& c : cases) {
    EXPECT_EQ(FormatDifferenceCaption(c.system, c.weights), c.caption) << c.system;
    EXPECT_EQ(FormatDifferenceShortName(c.system, c.weights), c.shortName) << c.system;
  }
}

TEST(DifferenceSystemCatalogue, FormatFillsOnlyPercentS) {
  const std::array<std::string, 2> weights = {"%s", "5%"};
  // A weight is inserted literally, "%%" is one percent sign, other '%' stay as they are.
  EXPECT_EQ(FormatWithWeights("a %s b %s", weights), "a %s b 5%");
  EXPECT_EQ(FormatWithWeights("100%% %d %", weights), "100% %d %");
  EXPECT_EQ(FormatWithWeights("", weights), "");
}

TEST(DifferenceSystemCatalogue, SplitKeepsEmptyFields) {
  using V = std::vector<std::string>;
  EXPECT_EQ(SplitColumnLabels(""), V{});
  EXPECT_EQ(SplitColumnLabels("L*"), V{"L*"});
  EXPECT_EQ(SplitColumnLabels("a||b"), (V{"a", "", "b"}));
  EXPECT_EQ(SplitColumnLabels("|"), (V{"", ""}));
  EXPECT_EQ(SplitColumnLabels("a|"), (V{"a", ""}));
}

}  // namespace
}  // namespace velquor
