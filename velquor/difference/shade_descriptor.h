// Verbal shade description of a colour difference: the short words ("Darker", "Redder",
// "Yellower", ...) that colour reports print beside the numbers, one for each of the three
// CIELAB-type axes, with a display colour for highlighting each word.
//
// Descriptor code c (1 to 10) is named by string 4143 + c (4144 "Darker" .. 4153 "Bluer");
// code 0 means no descriptor and shows as a single blank " ".
#pragma once

#include <cstdint>
#include <string>

#include "velquor/data/dword_array.h"
#include "velquor/data/value_vectors.h"
#include "velquor/difference/text_measure.h"

namespace velquor {

// Descriptor codes, grouped by axis: lightness 1-2, red-green 3-6, yellow-blue 7-10.
inline constexpr int kShadeNone = 0;
inline constexpr int kShadeDarker = 1;
inline constexpr int kShadeLighter = 2;
inline constexpr int kShadeRedder = 3;
inline constexpr int kShadeLessRed = 4;
inline constexpr int kShadeLessGreen = 5;
inline constexpr int kShadeGreener = 6;
inline constexpr int kShadeYellower = 7;
inline constexpr int kShadeLessYellow = 8;
inline constexpr int kShadeLessBlue = 9;
inline constexpr int kShadeBluer = 10;

// String of descriptor code 1; code c is string 4143 + c.
inline constexpr std::uint32_t kShadeDescriptorStringBase = 4144;
// Text of code 0 (no descriptor).
inline constexpr const char* kShadeBlankText = " ";
// Smallest difference that earns a descriptor: |ΔL| >= 0.1 (inclusive) on the lightness axis,
// |Δa| > 0.1 and |Δb| > 0.1 (strict) on the two chromatic axes.
inline constexpr double kShadeThreshold = 0.1;

// Display colours, 0x00BBGGRR.
inline constexpr std::uint32_t kShadeColourBlack = 0x000000;   // Darker, no descriptor
inline constexpr std::uint32_t kShadeColourWhite = 0xFFFFFF;   // Lighter on dark text off
inline constexpr std::uint32_t kShadeColourGreen = 0x008000;   // green side (a* < 0)
inline constexpr std::uint32_t kShadeColourRed = 0x0000FF;     // red side (a* >= 0)
inline constexpr std::uint32_t kShadeColourYellow = 0x00FFFF;  // yellow side (b* >= 0)
inline constexpr std::uint32_t kShadeColourBlue = 0xFF0000;    // blue side (b* < 0)

// String identifier of descriptor `code` (1..10); 0 for code 0 and unknown codes.
constexpr std::uint32_t GetShadeDescriptorStringId(int code) {
  return code >= 1 && code <= 10 ? kShadeDescriptorStringBase - 1 + static_cast<std::uint32_t>(code)
                                 : 0;
}

// Text of descriptor `code`: its string for 1..10, a single blank for 0 and unknown codes.
std::string LoadShadeDescriptor(int code);

// Describes the trial against the standard, axis by axis, from the standard's a*, b* and the
// differences ΔL, Δa, Δb (trial minus standard):
// - lightness: |ΔL| >= 0.1 gives "Lighter" (2) when ΔL > 0, with colour white, or black when
//   `darkText` > 0; otherwise "Darker" (1), black;
// - red-green, only when |Δa| > 0.1: a standard with a* < 0 lies on the green side, where
//   Δa < 0 gives "Greener" (6) and else "Less Green" (5), both green; a* >= 0 (0 included) is
//   the red side: Δa < 0 gives "Less Red" (4), else "Redder" (3), both red;
// - yellow-blue, only when |Δb| > 0.1: b* >= 0 is the yellow side, where Δb < 0 gives
//   "Less Yellow" (8), else "Yellower" (7), both yellow; b* < 0 the blue side: Δb < 0 gives
//   "Bluer" (10), else "Less Blue" (9), both blue.
// An axis without a descriptor gives the blank field " ", code 0 and colour black. So the
// lightness axis counts a difference of exactly 0.1, the chromatic axes do not.
//
// `text` receives the three fields joined by "," (no blank after the comma: "Lighter, ,Bluer"),
// `codes` the three codes and `colours` the three colours, in axis order. All three outputs are
// emptied first and stay empty when an input cannot be obtained: a missing value (IsMissing)
// or NaN among the five.
void DescribeShade(double standardA, double standardB, double deltaL, double deltaA, double deltaB,
                   std::string& text, CDWordArray& codes, CDWordArray& colours, int darkText);

// The same from records: the standard's coordinates (a*, b* in elements 1 and 2) and the
// difference record (ΔL, Δa, Δb in slots 1-3). A record too short to hold them counts as an
// input that cannot be obtained.
void DescribeShade(const CValueVector5& standard, const CColorVector7& difference,
                   std::string& text, CDWordArray& codes, CDWordArray& colours, int darkText);

// Column width for the descriptors of one axis: the largest width among the texts of `group`
// 0 (Darker, Lighter), 1 (Redder .. Greener) or 2 (Yellower .. Bluer), plus the width of "0".
// Another group has no texts and gives the width of "0" alone.
int GetShadeDescriptorWidth(int group, const TextMeasurer& measurer = DefaultTextMeasurer());
// The same over all ten descriptors.
int GetMaxShadeDescriptorWidth(const TextMeasurer& measurer = DefaultTextMeasurer());

}  // namespace velquor
