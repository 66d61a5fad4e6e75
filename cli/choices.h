// The user's choices on the command line, parsed from their written forms:
//   conditions  "D65/10,T84/10,A/2" (illuminant short code, optional "/observer")
//   systems     "cmc:2:1", "cie2000:1:1:1", "din99:1:1" (name, then weights)
//   spaces      "lab", "lch", "luv", "hunter", "din99", "yxy", "rgb"
//   indices     "WI CIE,YI E313-73 (R)" (catalogue short names)
//   strength    "apparent", "chromatic-max", ... or a method code 0-14
// Every parser returns false with a message naming what was not understood.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velquor/strength/strength_settings.h"

namespace velquor::cli {

struct Condition {
  int illuminant = 2;  // catalogue index (2 = D65)
  int observer = 1;    // 0 = 2°, 1 = 10°
  std::string label;   // "D65/10°"
};

struct DifferenceChoice {
  int system = 0;                          // difference-system code 0-12
  std::array<double, 3> weights{1, 1, 1};  // l:c, kL:kC:kH, kCH:kE, gL:gC:gH
  double parameter = 1.0;                  // viewing angle (audi) or p (din6175)
  std::string name;                        // as written by the user
  std::string caption;                     // the library's caption with the weights filled
};

enum class ColourSpace { kLab, kLch, kLuv, kHunter, kDin99, kYxy, kRgb };

struct IndexChoice {
  std::uint32_t identifier = 0;
  std::string name;  // catalogue short name
};

struct StrengthChoice {
  CStrengthSettings settings;
  bool useAbsorbance = false;
  std::string name;
};

// The illuminant index of a short code ("D65", "CWF", "TL84", "F11" ...), without regard to
// case; -1 when unknown.
int FindIlluminant(std::string_view code);

// "D65" or "D65/10"; a condition without an observer takes `defaultObserver` (0 or 1).
bool ParseCondition(std::string_view text, int defaultObserver, Condition& out, std::string& error);
// A comma-separated list of conditions.
bool ParseConditions(std::string_view text, int defaultObserver, std::vector<Condition>& out,
                     std::string& error);
// "2" or "10" (also "2°", "10°").
bool ParseObserver(std::string_view text, int& observer, std::string& error);
// "D65/10°" for the condition's illuminant and observer.
std::string ConditionLabel(int illuminant, int observer);
// The illuminant short codes, for messages and --help.
std::string IlluminantHelp();

bool ParseDifferenceSystem(std::string_view text, DifferenceChoice& out, std::string& error);
// The names ParseDifferenceSystem accepts, with their weights, for --help.
std::string DifferenceSystemHelp();

bool ParseColourSpace(std::string_view text, ColourSpace& out, std::string& error);

// A comma-separated list of index names. A name that itself holds a comma cannot be given.
bool ParseIndices(std::string_view text, std::vector<IndexChoice>& out, std::string& error);
// The index names ParseIndices accepts, for --help.
std::string IndexHelp();

// "apparent", "chromatic-max", "chromatic@520", "pseudo-tris", "pseudo-tris-x" ..., "tris",
// "tris-x" ..., "base-apparent", "base-chromatic-max", "base-chromatic@520", or a code 0-14;
// a suffix ":absorbance" uses optical density in place of K/S.
bool ParseStrengthMethod(std::string_view text, StrengthChoice& out, std::string& error);
std::string StrengthMethodHelp();

// A positive number such as a tolerance; false for anything else.
bool ParsePositiveNumber(std::string_view text, double& value);

}  // namespace velquor::cli
