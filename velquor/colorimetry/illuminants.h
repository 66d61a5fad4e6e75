// The illuminant and observer catalogues: index and code numbering and their display texts.
//
// Illuminant index 0-16: A, C, D65, CWF (F2), T84 (F11), D50, D55, D75, U50, U30 (F12), F6, F7,
// F8, F10, H23, HM, F4; the catalogue has slots 17-30 without a weighting table. The text of
// index i is string 384 + i, "short code|long name" (e.g. "D65|Daylight 6500° Kelvin").
// Observer code 0 is the CIE 1931 2° standard observer, 1 the CIE 1964 10° observer; like the
// weighting-table loader, the texts treat every code other than 1 as 2°.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velquor {

// Illuminants that carry a weighting table (indices 0 to 16).
inline constexpr int kIlluminantCount = 17;
// Catalogue slots, 0 to 30; slots 17-30 load as "<n>|None".
inline constexpr int kIlluminantSlots = 31;
// The illuminant that replaces one without a table.
inline constexpr int kIlluminantD65 = 2;

inline constexpr int kObserver2Degree = 0;
inline constexpr int kObserver10Degree = 1;

// String identifiers.
inline constexpr std::uint32_t kIlluminantTextBase = 384;   // + index, 384-414
inline constexpr std::uint32_t kIlluminantOrderText = 415;  // presentation order
inline constexpr std::uint32_t kObserverTextBase = 496;     // "2°", "10°"
inline constexpr std::uint32_t kObserverDashText = 498;     // " - 2°", " - 10°"
inline constexpr std::uint32_t kObserverSlashText = 500;    // "/2°", "/10°"
inline constexpr std::uint32_t kIlluminantWordText = 504;   // "Illuminant "

// The degree number of an observer code: 10 for code 1, 2 for every other code.
constexpr int ObserverDegrees(int observer) {
  return observer == kObserver10Degree ? 10 : 2;
}

// The full text "code|long name" of illuminant `index` (0-30). Returns 1 if loaded; for an
// index outside the catalogue or an absent string, `out` becomes empty and the result is 0.
int LoadIlluminantText(int index, std::string& out);
// Only the short code ("D65") or only the long name ("Daylight 6500° Kelvin"); same results.
int LoadIlluminantCode(int index, std::string& out);
int LoadIlluminantName(int index, std::string& out);

// The part of an illuminant text before the first '|', and the part after it. A text without
// '|' is both its own code and its own name.
std::string_view IlluminantCodeOf(std::string_view text);
std::string_view IlluminantNameOf(std::string_view text);

// The order in which illuminant lists are shown to the user (string 415, a comma-separated
// list of indices, blanks allowed around the numbers). Returns 1 with the indices in `order`;
// if the string is absent or holds anything but integers, `order` is emptied and 0 returned.
int LoadIlluminantOrder(std::vector<int>& order);

// How an observer text is written.
enum class ObserverTextForm {
  kPlain,  // "2°"
  kDash,   // " - 2°", appended to an illuminant text
  kSlash,  // "/2°", appended to an illuminant code
};

// The text of observer `observer` in the given form. Returns 1 if loaded, else 0 and empty.
int LoadObserverText(int observer, ObserverTextForm form, std::string& out);

// "Illuminant ", the word (with its trailing blank) placed before an illuminant name.
int LoadIlluminantWord(std::string& out);

}  // namespace velquor
