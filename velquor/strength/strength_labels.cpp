#include "velquor/strength/strength_labels.h"

#include <array>
#include <charconv>
#include <initializer_list>
#include <mutex>

#include "velquor/frame/numeric.h"
#include "velquor/frame/resources.h"
#include "velquor/settings/locale_format.h"

namespace velquor {

namespace {

// Notes with a wavelength, and the note of method 11.
constexpr std::uint32_t kChromaticNoteId = kStrengthNoteBase + 2;       // methods 1 and 2
constexpr std::uint32_t kBaseChromaticNoteId = kStrengthNoteBase + 14;  // methods 13 and 14
constexpr std::uint32_t kWhenDeltaLZeroNoteId = kStrengthNoteBase + 11;
// Shown for every number of a note whose from-value is missing.
constexpr std::string_view kNotAvailable = "n/a";

bool IsStrengthMethod(std::int32_t method) {
  return method >= 0 && method < kStrengthMethodCount;
}

bool IsMethod(std::int32_t code, StrengthMethod method) {
  return code == StrengthMethodCode(method);
}

// Fills a printf-like format: "%s" and "%d" take the next text of `args` (nothing once they
// run out), "%%" gives "%"; any other character, a lone '%' included, is copied. Translated
// tables may change the formats, so nothing else is interpreted.
std::string FillFormat(std::string_view format, std::initializer_list<std::string_view> args) {
  std::string text;
  text.reserve(format.size() + 16);
  auto next = args.begin();
  for (std::size_t i = 0; i < format.size(); ++i) {
    const char c = format[i];
    if (c == '%' && i + 1 < format.size()) {
      const char conversion = format[i + 1];
      if (conversion == '%') {
        text.push_back('%');
        ++i;
        continue;
      }
      if (conversion == 's' || conversion == 'd') {
        if (next != args.end()) text.append(*next++);
        ++i;
        continue;
      }
    }
    text.push_back(c);
  }
  return text;
}

struct SeparatorState {
  std::mutex mutex;
  std::string installed;  // empty: the user's
};

SeparatorState& Separator() {
  static SeparatorState state;
  return state;
}

}  // namespace

void LoadStrengthMethodNames(std::vector<std::string>& names, std::vector<std::uint8_t>& codes) {
  names.resize(kStrengthMethodCount);
  codes.resize(kStrengthMethodCount);
  for (int i = 0; i < kStrengthMethodCount; ++i) {
    const auto index = static_cast<std::size_t>(i);
    names[index] = LoadStringResource(kStrengthMethodNameBase + static_cast<std::uint32_t>(i));
    codes[index] = static_cast<std::uint8_t>(i);
  }
}

std::string StrengthDecimalSeparator() {
  SeparatorState& state = Separator();
  const std::lock_guard<std::mutex> lock(state.mutex);
  return state.installed.empty() ? UserDecimalSeparator() : state.installed;
}

std::string SetStrengthDecimalSeparator(std::string_view separator) {
  SeparatorState& state = Separator();
  const std::lock_guard<std::mutex> lock(state.mutex);
  std::string previous = state.installed.empty() ? UserDecimalSeparator() : state.installed;
  state.installed.assign(separator);
  return previous;
}

std::string FormatStrengthNumber(double value) {
  // Enough for the 309 integer digits of the largest double, the point and two decimals.
  std::array<char, 400> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                          std::chars_format::fixed, 2);
  const std::string_view digits(
      buffer.data(), error == std::errc() ? static_cast<std::size_t>(end - buffer.data()) : 0);
  const bool hasNonZeroDigit = digits.find_first_of("123456789") != std::string_view::npos;
  const std::string separator = StrengthDecimalSeparator();
  std::string text;
  text.reserve(digits.size() + separator.size());
  for (const char c : digits) {
    if (c == '-' && !hasNonZeroDigit) continue;
    if (c == '.') {
      text += separator;
    } else {
      text.push_back(c);
    }
  }
  return text;
}

std::string GetStrengthLabel(const CStrengthSettings& settings) {
  const std::int32_t method = settings.method;
  const std::string shortName =
      IsStrengthMethod(method)
          ? LoadStringResource(kStrengthShortNameBase + static_cast<std::uint32_t>(method))
          : std::string();
  if (IsMethod(method, StrengthMethod::kWhenDeltaLZero)) return shortName;
  std::string label = FormatStrengthNumber(settings.targetPercent);
  label.push_back(' ');
  if (IsMethod(method, StrengthMethod::kChromaticUserWavelength) ||
      IsMethod(method, StrengthMethod::kBaseChromaticUserWavelength)) {
    label += FillFormat(shortName, {std::to_string(settings.userWavelength)});
  } else {
    label += shortName;
  }
  return label;
}

std::string GetStrengthAdjustNote(const CStrengthSettings& settings, double fromValue,
                                  int wavelength) {
  const std::int32_t method = settings.method;
  if (!IsStrengthMethod(method)) return std::string();
  std::string from(kNotAvailable);
  std::string to(kNotAvailable);
  std::string wavelengthText(kNotAvailable);
  if (!IsMissing(fromValue)) {
    from = FormatStrengthNumber(fromValue);
    to = FormatStrengthNumber(settings.targetPercent);
    wavelengthText = std::to_string(wavelength);
  }
  switch (static_cast<StrengthMethod>(method)) {
    case StrengthMethod::kChromaticMaxAbsorption:
    case StrengthMethod::kChromaticUserWavelength:
      return FillFormat(LoadStringResource(kChromaticNoteId), {from, to, wavelengthText});
    case StrengthMethod::kBaseChromaticMaxAbsorption:
    case StrengthMethod::kBaseChromaticUserWavelength:
      return FillFormat(LoadStringResource(kBaseChromaticNoteId), {from, to, wavelengthText});
    case StrengthMethod::kWhenDeltaLZero:
      return FillFormat(LoadStringResource(kWhenDeltaLZeroNoteId), {from});
    default:
      return FillFormat(LoadStringResource(kStrengthNoteBase + static_cast<std::uint32_t>(method)),
                        {from, to});
  }
}

}  // namespace velquor
