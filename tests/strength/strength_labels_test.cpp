#include "velquor/strength/strength_labels.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "velquor/frame/constants.h"

namespace velquor {
namespace {

// Every test runs with "." and puts the process's separator back afterwards.
class StrengthTexts : public ::testing::Test {
 protected:
  void SetUp() override { previous_ = SetStrengthDecimalSeparator("."); }
  void TearDown() override { SetStrengthDecimalSeparator(previous_); }

  static CStrengthSettings Settings(int method, double target = 100.0, int userWavelength = 520) {
    CStrengthSettings settings;
    settings.method = method;
    settings.targetPercent = target;
    settings.userWavelength = userWavelength;
    return settings;
  }

 private:
  std::string previous_;
};

TEST_F(StrengthTexts, MethodNamesAndCodes) {
  const std::vector<std::string> expected = {"Apparent",
                                             "Chromatic at Max Absorption",
                                             "Chromatic at User Wavelength",
                                             "Pseudo Tristimulus",
                                             "Pseudo Tristimulus X",
                                             "Pseudo Tristimulus Y",
                                             "Pseudo Tristimulus Z",
                                             "Tristimulus",
                                             "Tristimulus X",
                                             "Tristimulus Y",
                                             "Tristimulus Z",
                                             "when ΔL=0",
                                             "Base Apparent",
                                             "Base Chromatic at Max Absorption",
                                             "Base Chromatic at User Wavelength"};
  std::vector<std::string> names = {"stale"};
  std::vector<std::uint8_t> codes(30, 99);
  LoadStrengthMethodNames(names, codes);
  EXPECT_EQ(names, expected);
  ASSERT_EQ(codes.size(), 15u);
  for (std::uint8_t i = 0; i < 15; ++i) EXPECT_EQ(codes[i], i);
}

TEST_F(StrengthTexts, NumbersHaveTwoDecimalsAndNoMinusZero) {
  const struct {
    double value;
    const char* text;
  } cases[] = {{100.0, "100.00"},  {95.5, "95.50"},
               {0.004, "0.00"},    {0.006, "0.01"},
               {-0.0, "0.00"},     {-0.004, "0.00"},
               {-0.006, "-0.01"},  {-12.5, "-12.50"},
               {999.99, "999.99"}, {1234567.891, "1234567.89"}};
  for (const auto& c : cases) EXPECT_EQ(FormatStrengthNumber(c.value), c.text) << c.value;
  SetStrengthDecimalSeparator(",");
  EXPECT_EQ(StrengthDecimalSeparator(), ",");
  EXPECT_EQ(FormatStrengthNumber(-95.5), "-95,50");
  EXPECT_EQ(FormatStrengthNumber(-0.001), "0,00");
}

TEST_F(StrengthTexts, Labels) {
  EXPECT_EQ(GetStrengthLabel(Settings(0)), "100.00 Apparent");
  EXPECT_EQ(GetStrengthLabel(Settings(1, 97.256)), "97.26 Chromatic");
  EXPECT_EQ(GetStrengthLabel(Settings(2, 95.0, 520)), "95.00 Chromatic @ 520 nm");
  EXPECT_EQ(GetStrengthLabel(Settings(14, 95.0, 430)), "95.00 Base Chromatic @ 430 nm");
  EXPECT_EQ(GetStrengthLabel(Settings(6)), "100.00 Pseudo Tris Z");
  EXPECT_EQ(GetStrengthLabel(Settings(10)), "100.00 Tris Z");
  EXPECT_EQ(GetStrengthLabel(Settings(11, 95.0)), "when ΔL=0");  // no number
  EXPECT_EQ(GetStrengthLabel(Settings(12, -0.001)), "0.00 Base Apparent");
  SetStrengthDecimalSeparator(",");
  EXPECT_EQ(GetStrengthLabel(Settings(13, 102.5)), "102,50 Base Chromatic");
}

TEST_F(StrengthTexts, AdjustNotesByMethod) {
  const char* const expected[15] = {"(Apparent Strength adj. from 95.50% to 101.00%)",
                                    "(Strength adj. from 95.50% to 101.00% @ 540 nm)",
                                    "(Strength adj. from 95.50% to 101.00% @ 540 nm)",
                                    "(Pseudo Tris Strength adj. from 95.50% to 101.00%)",
                                    "(Pseudo Tris X Strength adj. from 95.50% to 101.00%)",
                                    "(Pseudo Tris Y Strength adj. from 95.50% to 101.00%)",
                                    "(Pseudo Tris Z Strength adj. from 95.50% to 101.00%)",
                                    "(Tris Strength adj. from 95.50% to 101.00%)",
                                    "(Tris X Strength adj. from 95.50% to 101.00%)",
                                    "(Tris Y Strength adj. from 95.50% to 101.00%)",
                                    "(Tris Z Strength adj. from 95.50% to 101.00%)",
                                    "(Strength when dL=0: 95.50%)",
                                    "(Base Apparent Strength adj. from 95.50% to 101.00%)",
                                    "(Base Strength adj. from 95.50% to 101.00% @ 540 nm)",
                                    "(Base Strength adj. from 95.50% to 101.00% @ 540 nm)"};
  for (int method = 0; method < 15; ++method) {
    EXPECT_EQ(GetStrengthAdjustNote(Settings(method, 101.0), 95.5, 540), expected[method]);
  }
}

TEST_F(StrengthTexts, AdjustNoteDefaultsMissingValueAndSeparator) {
  EXPECT_EQ(GetStrengthAdjustNote(Settings(2, 96.0)),
            "(Strength adj. from 100.00% to 96.00% @ 500 nm)");
  EXPECT_EQ(GetStrengthAdjustNote(Settings(14, 96.0), kMissing, 540),
            "(Base Strength adj. from n/a% to n/a% @ n/a nm)");
  EXPECT_EQ(GetStrengthAdjustNote(Settings(0, 96.0), kMissing),
            "(Apparent Strength adj. from n/a% to n/a%)");
  EXPECT_EQ(GetStrengthAdjustNote(Settings(11), kMissing), "(Strength when dL=0: n/a%)");
  // A value just outside the missing band is a number.
  EXPECT_EQ(GetStrengthAdjustNote(Settings(11), 1.002e-05), "(Strength when dL=0: 0.00%)");
  SetStrengthDecimalSeparator(",");
  EXPECT_EQ(GetStrengthAdjustNote(Settings(7, 100.0), -0.0001),
            "(Tris Strength adj. from 0,00% to 100,00%)");
}

}  // namespace
}  // namespace velquor
