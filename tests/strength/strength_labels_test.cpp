#include "velquor/strength/strength_labels.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reference_table.h"
#include "velquor/settings/locale_format.h"

namespace velquor {
namespace {

// Every test puts the process's separator back afterwards.
class StrengthTexts : public ::testing::Test {
 protected:
  void SetUp() override { previous_ = SetStrengthDecimalSeparator("."); }
  void TearDown() override { SetStrengthDecimalSeparator(previous_); }
  std::string previous_;
};

CStrengthSettings Settings(int method, double target, int userWavelength = 520) {
  CStrengthSettings settings;
  settings.method = method;
  settings.targetPercent = target;
  settings.userWavelength = userWavelength;
  return settings;
}

TEST_F(StrengthTexts, NamesNumbersLabelsAndNotes) {
  std::vector<std::string> names = {"stale"};
  std::vector<std::uint8_t> codes(30, 99);
  LoadStrengthMethodNames(names, codes);
  ASSERT_EQ(names.size(), 15u);
  ASSERT_EQ(codes.size(), 15u);
  for (const auto& row : test::LoadReferenceTable("reference/strength_texts.csv")) {
    const std::string& function = row.Text("function");
    if (function == "name") {
      const auto method = static_cast<std::size_t>(row.Integer("method"));
      EXPECT_EQ(names[method], row.Text("expected")) << row.Where();
      EXPECT_EQ(codes[method], method);
      continue;
    }
    SetStrengthDecimalSeparator(row.Text("separator"));
    std::string got;
    if (function == "number") {
      got = FormatStrengthNumber(row.Number("value"));
    } else if (function == "label") {
      got = GetStrengthLabel(
          Settings(row.Integer("method"), row.Number("target"), row.Integer("userWavelength")));
    } else {
      got = GetStrengthAdjustNote(Settings(row.Integer("method"), row.Number("target")),
                                  row.Number("value"), row.Integer("wavelength"));
    }
    EXPECT_EQ(got, row.Text("expected")) << row.Where();
  }
}

TEST_F(StrengthTexts, NoteDefaultsAndTheUsersSeparator) {
  EXPECT_EQ(GetStrengthAdjustNote(Settings(2, 96.0)),
            "(Strength adj. from 100.00% to 96.00% @ 500 nm)");
  EXPECT_EQ(SetStrengthDecimalSeparator(","), ".");
  EXPECT_EQ(SetStrengthDecimalSeparator(""), ",");
  EXPECT_EQ(StrengthDecimalSeparator(), UserDecimalSeparator());  // empty restores the user's
}

}  // namespace
}  // namespace velquor
