#include "velquor/indices/index_catalogue.h"

#include <algorithm>
#include <initializer_list>

#include "velquor/data/geometry_catalogue.h"
#include "velquor/frame/resources.h"
#include "velquor/settings/clock.h"
#include "velquor/settings/date_time_text.h"

namespace velquor {

namespace {

// Highest identifier a string table holds.
constexpr std::uint64_t kLastStringId = 0xFFFF;

// Masks.
constexpr const char* kDefaultMask = "0000.00";
constexpr const char* kMunsellMask = "10.0/10.0";
constexpr const char* kStatusMask = "CREEMM";
constexpr const char* kSixteenDigitMask = "0000000000000000";
constexpr const char* kFifteenDigitMask = "000000000000000";
constexpr const char* kAphaMask = "-000.00";
constexpr const char* kAmountMask = "00000.00";
// The instants whose texts are the widest date and time: 22 December 1998 (a Tuesday),
// 00:00:00, and 1 January 1998 (a Thursday), 23:59:59, both local time.
constexpr CalendarTime kMaskDate{1998, 12, 2, 22, 0, 0, 0};
constexpr CalendarTime kMaskTime{1998, 1, 4, 1, 23, 59, 59};

bool InRange(std::uint32_t identifier, std::uint32_t first, std::uint32_t last) {
  return identifier >= first && identifier <= last;
}

bool IsOneOf(std::uint32_t identifier, std::initializer_list<std::uint32_t> set) {
  return std::find(set.begin(), set.end(), identifier) != set.end();
}

void LoadIndexText(std::uint32_t identifier, IndexText kind, std::string& text) {
  text.clear();
  if (const auto id = GetIndexStringId(identifier, kind)) LoadStringResource(*id, text);
}

}  // namespace

std::optional<std::uint32_t> GetIndexStringId(std::uint32_t identifier, IndexText text) {
  const bool isDifference = identifier >= kIndexDifferenceOffset;
  std::uint64_t base = 0;
  switch (text) {
    case IndexText::kName:
      base = isDifference ? kIndexDifferenceNameBase : kIndexNameBase;
      break;
    case IndexText::kLongName:
      base = isDifference ? kIndexDifferenceLongNameBase : kIndexLongNameBase;
      break;
    case IndexText::kHeading:
      base = isDifference ? kIndexDifferenceHeadingBase : kIndexHeadingBase;
      break;
  }
  // Computed in 64 bits: a large identifier must not wrap round onto another string.
  const std::uint64_t id =
      base + identifier - (isDifference ? std::uint64_t{kIndexDifferenceOffset} : 0);
  if (id > kLastStringId) return std::nullopt;
  return static_cast<std::uint32_t>(id);
}

void LoadIndexName(std::uint32_t identifier, std::string& text) {
  LoadIndexText(identifier, IndexText::kName, text);
}

void LoadIndexLongName(std::uint32_t identifier, std::string& text) {
  LoadIndexText(identifier, IndexText::kLongName, text);
}

void LoadIndexHeading(std::uint32_t identifier, std::string& text) {
  LoadIndexText(identifier, IndexText::kHeading, text);
}

void GetIndexMask(std::uint32_t identifier, std::string& mask, std::uint32_t parameter) {
  mask.clear();
  switch (identifier) {
    case kIndexMunsell:
      mask = kMunsellMask;
      return;
    case kIndexStatus:
      mask = kStatusMask;
      return;
    case kIndexSensor:
      mask = parameter < kAngleCodeCount ? GetAngleName(static_cast<std::uint8_t>(parameter))
                                         : std::string(kDefaultMask);
      return;
    case kIndexDate:
      FormatShortDate(mask, CurrentClock().FromLocal(kMaskDate));
      return;
    case kIndexTime:
      FormatTimeOfDay(mask, CurrentClock().FromLocal(kMaskTime));
      return;
    case kIndexApha:
    case kIndexApha + kIndexDifferenceOffset:
      mask = kAphaMask;
      return;
    case 105:
    case 106:
    case 108:
      mask = kAmountMask;
      return;
    case 182:
    case 183:
      mask = kFifteenDigitMask;
      return;
    default:
      break;
  }
  if (InRange(identifier, 82, 84) || InRange(identifier, 88, 104)) {
    mask = kSixteenDigitMask;
  } else {
    mask = kDefaultMask;
  }
}

bool IsIndexInfoField(std::uint32_t identifier) {
  return InRange(identifier, 43, 48) || InRange(identifier, 72, 84) ||
         InRange(identifier, 88, 106) || identifier == 108 || identifier == 182 ||
         identifier == 183;
}

bool IndexFlagA(std::uint32_t identifier) {
  return !IsOneOf(identifier, {25, 27, 43, 44, 45, 47, 48, 66, 67, 158, 175, 182, 183});
}

bool IndexFlagB(std::uint32_t identifier) {
  return IndexFlagA(identifier) &&
         !IsOneOf(identifier, {29, 30, 45, 66, 67, 82, 83, 84, 105, 106, 108, 158, 180});
}

bool IndexFlagC(std::uint32_t identifier) {
  return IsOneOf(
      identifier,
      {7,    8,    10,   11,   12,   18,   22,   26,   27,   43,   44,   47,   48,   52,   53,
       55,   56,   57,   59,   61,   66,   67,   70,   175,  176,  177,  182,  183,  186,  1007,
       1008, 1017, 1018, 1022, 1052, 1053, 1055, 1057, 1059, 1061, 1070, 1175, 1176, 1177, 1186});
}

unsigned CountColumnsOfIndex(std::uint32_t identifier) {
  return IsOneOf(identifier, {7, 25, kIndexMunsell, 175, 176}) ? 2u : 1u;
}

}  // namespace velquor
