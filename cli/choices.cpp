#include "choices.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <span>

#include "velquor/colorimetry/illuminants.h"
#include "velquor/io/measurement_file.h"
#include "velquor/difference/color_difference.h"
#include "velquor/difference/system_catalogue.h"
#include "velquor/frame/ascii_text.h"
#include "velquor/indices/index_catalogue.h"
#include "velquor/indices/index_formulas.h"
#include "velquor/strength/strength_labels.h"

namespace velquor::cli {

namespace {

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (;;) {
    const std::size_t at = text.find(separator);
    parts.push_back(TrimBlanks(text.substr(0, at)));
    if (at == std::string_view::npos) return parts;
    text.remove_prefix(at + 1);
  }
}

bool ParseNumber(std::string_view text, double& value) {
  return ParseMeasurementNumber(text, false, value);
}

// Illuminants also known by their CIE F-series names or other common names.
struct Alias {
  const char* name;
  int illuminant;
};
constexpr Alias kIlluminantAliases[] = {
    {"F2", 3}, {"F11", 4}, {"TL84", 4}, {"F12", 9}, {"WWF", 16}, {"HOR", 14}, {"HORIZON", 14},
};

// The difference systems by the names users type, with their default weights.
struct SystemName {
  const char* name;
  int system;
  int weightCount;  // weights the name takes after ':'
  std::array<double, 3> defaults;
  bool parameter;  // a further number after the weights (audi: angle, din6175: p)
};
constexpr SystemName kSystems[] = {
    {"cielab", kDiffCieLab, 0, {1, 1, 1}, false},
    {"lab", kDiffCieLab, 0, {1, 1, 1}, false},
    {"cmc", kDiffCmc, 2, {2, 1, 1}, false},
    {"hunter", kDiffHunterLab, 0, {1, 1, 1}, false},
    {"fmc2", kDiffFmc2, 0, {1, 1, 1}, false},
    {"cie94", kDiffCie94, 3, {1, 1, 1}, false},
    {"lch", kDiffCieLch, 0, {1, 1, 1}, false},
    {"luv", kDiffCieLuv, 0, {1, 1, 1}, false},
    {"xyz", kDiffXyzYxy, 0, {1, 1, 1}, false},
    {"gepqs2", kDiffGePqs2, 0, {1, 1, 1}, false},
    {"audi", kDiffAudi, 0, {1, 1, 1}, true},
    {"din99", kDiffDin99, 2, {1, 1, 1}, false},
    {"cie2000", kDiffCie2000, 3, {1, 1, 1}, false},
    {"ciede2000", kDiffCie2000, 3, {1, 1, 1}, false},
    {"din6175", kDiffDin6175, 3, {1, 1, 1}, true},
};

// A weight as the captions show it: the shortest text that reads back exactly.
std::string WeightText(double value) {
  return FormatMeasurementNumber(value);
}

struct StrengthName {
  const char* name;
  StrengthMethod method;
};
constexpr StrengthName kStrengthNames[] = {
    {"apparent", StrengthMethod::kApparent},
    {"chromatic-max", StrengthMethod::kChromaticMaxAbsorption},
    {"chromatic", StrengthMethod::kChromaticUserWavelength},
    {"pseudo-tris", StrengthMethod::kPseudoTristimulus},
    {"pseudo-tris-x", StrengthMethod::kPseudoTristimulusX},
    {"pseudo-tris-y", StrengthMethod::kPseudoTristimulusY},
    {"pseudo-tris-z", StrengthMethod::kPseudoTristimulusZ},
    {"tris", StrengthMethod::kTristimulus},
    {"tris-x", StrengthMethod::kTristimulusX},
    {"tris-y", StrengthMethod::kTristimulusY},
    {"tris-z", StrengthMethod::kTristimulusZ},
    {"when-dl0", StrengthMethod::kWhenDeltaLZero},
    {"base-apparent", StrengthMethod::kBaseApparent},
    {"base-chromatic-max", StrengthMethod::kBaseChromaticMaxAbsorption},
    {"base-chromatic", StrengthMethod::kBaseChromaticUserWavelength},
};

}  // namespace

int FindIlluminant(std::string_view code) {
  code = TrimBlanks(code);
  std::string known;
  for (int i = 0; i < kIlluminantCount; ++i) {
    if (LoadIlluminantCode(i, known) != 0 && EqualsIgnoringCase(known, code)) return i;
  }
  for (const Alias& alias : kIlluminantAliases) {
    if (EqualsIgnoringCase(alias.name, code)) return alias.illuminant;
  }
  return -1;
}

bool ParseObserver(std::string_view text, int& observer, std::string& error) {
  text = TrimBlanks(text);
  if (text.ends_with("°")) text.remove_suffix(std::string_view("°").size());
  if (text == "2") {
    observer = kObserver2Degree;
    return true;
  }
  if (text == "10") {
    observer = kObserver10Degree;
    return true;
  }
  error = "unknown observer '" + std::string(text) + "' (use 2 or 10)";
  return false;
}

std::string ConditionLabel(int illuminant, int observer) {
  std::string code;
  std::string degrees;
  LoadIlluminantCode(illuminant, code);
  LoadObserverText(observer, ObserverTextForm::kSlash, degrees);
  return code + degrees;
}

bool ParseCondition(std::string_view text, int defaultObserver, Condition& out,
                    std::string& error) {
  const std::size_t slash = text.find('/');
  const std::string_view code = TrimBlanks(text.substr(0, slash));
  const int illuminant = FindIlluminant(code);
  if (illuminant < 0) {
    error = "unknown illuminant '" + std::string(code) + "' (known: " + IlluminantHelp() + ")";
    return false;
  }
  int observer = defaultObserver;
  if (slash != std::string_view::npos && !ParseObserver(text.substr(slash + 1), observer, error)) {
    return false;
  }
  out.illuminant = illuminant;
  out.observer = observer;
  out.label = ConditionLabel(illuminant, observer);
  return true;
}

bool ParseConditions(std::string_view text, int defaultObserver, std::vector<Condition>& out,
                     std::string& error) {
  std::vector<Condition> conditions;
  for (std::string_view part : Split(text, ',')) {
    Condition condition;
    if (!ParseCondition(part, defaultObserver, condition, error)) return false;
    conditions.push_back(condition);
  }
  out = std::move(conditions);
  return true;
}

std::string IlluminantHelp() {
  std::string text;
  std::string code;
  for (int i = 0; i < kIlluminantCount; ++i) {
    LoadIlluminantCode(i, code);
    text += (i == 0 ? "" : ", ") + code;
  }
  return text;
}

bool ParseDifferenceSystem(std::string_view text, DifferenceChoice& out, std::string& error) {
  const std::vector<std::string_view> parts = Split(text, ':');
  for (const SystemName& known : kSystems) {
    if (!EqualsIgnoringCase(known.name, parts[0])) continue;
    const std::size_t given = parts.size() - 1;
    const std::size_t most =
        static_cast<std::size_t>(known.weightCount) + (known.parameter ? 1 : 0);
    if (given > most) {
      error = "too many numbers after '" + std::string(parts[0]) + "' (see --help)";
      return false;
    }
    DifferenceChoice choice;
    choice.system = known.system;
    choice.weights = known.defaults;
    choice.name = std::string(text);
    for (std::size_t i = 1; i < parts.size(); ++i) {
      double value = 0.0;
      if (!ParseNumber(parts[i], value) || !(value > 0.0)) {
        error = "weight '" + std::string(parts[i]) + "' of '" + std::string(parts[0]) +
                "' is not a positive number";
        return false;
      }
      if (i - 1 < static_cast<std::size_t>(known.weightCount)) {
        choice.weights[i - 1] = value;
      } else {
        choice.parameter = value;
      }
    }
    std::vector<std::string> texts;
    for (int i = 0; i < CountDifferenceWeights(choice.system); ++i) {
      // CMC's third caption field is the commercial factor cf, always 1 here.
      texts.push_back(choice.system == kDiffCmc && i == 2 ? "1" : WeightText(choice.weights[i]));
    }
    choice.caption = FormatDifferenceCaption(choice.system, texts);
    out = std::move(choice);
    return true;
  }
  error = "unknown difference system '" + std::string(parts[0]) + "' (see --help)";
  return false;
}

std::string DifferenceSystemHelp() {
  return "cielab (or lab), cmc:l:c (default 2:1), hunter, fmc2, cie94:kL:kC:kH, lch, luv, "
         "xyz, gepqs2, audi:angle, din99:kCH:kE, cie2000:kL:kC:kH (or ciede2000), "
         "din6175:gL:gC:gH:p; weights default to 1";
}

bool ParseColourSpace(std::string_view text, ColourSpace& out, std::string& error) {
  struct Name {
    const char* name;
    ColourSpace space;
  };
  constexpr Name kNames[] = {{"lab", ColourSpace::kLab},     {"lch", ColourSpace::kLch},
                             {"luv", ColourSpace::kLuv},     {"hunter", ColourSpace::kHunter},
                             {"din99", ColourSpace::kDin99}, {"yxy", ColourSpace::kYxy},
                             {"rgb", ColourSpace::kRgb}};
  for (const Name& name : kNames) {
    if (EqualsIgnoringCase(name.name, TrimBlanks(text))) {
      out = name.space;
      return true;
    }
  }
  error = "unknown colour space '" + std::string(text) +
          "' (use lab, lch, luv, hunter, din99, yxy or rgb)";
  return false;
}

bool ParseIndices(std::string_view text, std::vector<IndexChoice>& out, std::string& error) {
  std::vector<IndexChoice> chosen;
  for (std::string_view name : Split(text, ',')) {
    const std::uint32_t identifier = FindIndexFormulaByName(name);
    if (identifier == kNoIndexFormula) {
      error = "unknown index '" + std::string(name) + "' (see --help for the names)";
      return false;
    }
    if (FindIndexFormula(identifier)->plain == nullptr) {
      error = "index '" + std::string(name) + "' needs the instrument's calibration coefficients";
      return false;
    }
    std::string catalogueName;
    LoadIndexName(identifier, catalogueName);
    chosen.push_back(IndexChoice{identifier, catalogueName});
  }
  out = std::move(chosen);
  return true;
}

std::string IndexHelp() {
  std::string text;
  for (std::uint32_t identifier : IndexFormulaIdentifiers()) {
    if (FindIndexFormula(identifier)->plain == nullptr) continue;
    std::string name;
    LoadIndexName(identifier, name);
    text += (text.empty() ? "" : ", ") + name;
  }
  return text;
}

bool ParseStrengthMethod(std::string_view text, StrengthChoice& out, std::string& error) {
  StrengthChoice choice;
  choice.name = std::string(TrimBlanks(text));
  std::string_view name = TrimBlanks(text);
  if (const std::size_t colon = name.find(':'); colon != std::string_view::npos) {
    if (!EqualsIgnoringCase(TrimBlanks(name.substr(colon + 1)), "absorbance")) {
      error = "unknown strength option '" + std::string(name.substr(colon + 1)) +
              "' (only ':absorbance')";
      return false;
    }
    choice.useAbsorbance = true;
    name = TrimBlanks(name.substr(0, colon));
  }
  int wavelength = -1;
  if (const std::size_t at = name.find('@'); at != std::string_view::npos) {
    const std::string_view digits = TrimBlanks(name.substr(at + 1));
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), wavelength);
    if (parsed.ec != std::errc() || parsed.ptr != digits.data() + digits.size() ||
        wavelength < 360 || wavelength > 750) {
      error = "wavelength '" + std::string(digits) + "' is not a whole number of nm in 360-750";
      return false;
    }
    name = TrimBlanks(name.substr(0, at));
  }
  int code = -1;
  for (const StrengthName& known : kStrengthNames) {
    if (EqualsIgnoringCase(known.name, name)) code = StrengthMethodCode(known.method);
  }
  if (code < 0) {
    int number = -1;
    const auto parsed = std::from_chars(name.data(), name.data() + name.size(), number);
    if (parsed.ec == std::errc() && parsed.ptr == name.data() + name.size() && number >= 0 &&
        number < kStrengthMethodCount) {
      code = number;
    }
  }
  if (code < 0) {
    error = "unknown strength method '" + std::string(name) + "' (see --help)";
    return false;
  }
  const bool takesWavelength =
      code == StrengthMethodCode(StrengthMethod::kChromaticUserWavelength) ||
      code == StrengthMethodCode(StrengthMethod::kBaseChromaticUserWavelength);
  if (wavelength >= 0 && !takesWavelength) {
    error = "strength method '" + std::string(name) + "' takes no wavelength";
    return false;
  }
  choice.settings.method = code;
  if (wavelength >= 0) choice.settings.userWavelength = wavelength;
  out = std::move(choice);
  return true;
}

std::string StrengthMethodHelp() {
  std::string text;
  for (const StrengthName& known : kStrengthNames) {
    text += (text.empty() ? "" : ", ") + std::string(known.name);
  }
  return text +
         " (chromatic and base-chromatic take @nm, e.g. chromatic@520; append "
         ":absorbance to use optical density instead of K/S)";
}

bool ParsePositiveNumber(std::string_view text, double& value) {
  double parsed = 0.0;
  if (!ParseNumber(TrimBlanks(text), parsed) || !(parsed > 0.0)) return false;
  value = parsed;
  return true;
}

}  // namespace velquor::cli
