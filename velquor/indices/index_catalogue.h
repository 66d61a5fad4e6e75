// Index catalogue: the texts, display masks and classification of the index identifiers
// under which hosts show indices, statistics and measurement attributes in their result
// tables.
//
// An index identifier is an unsigned 32-bit number. Base identifiers run from 0 to 186; the
// difference (Δ) variant of base identifier i is i + 1000 (only some indices have one). Each
// identifier has three texts in the library's string table (velquor/resources/strings/
// indices.txt), addressed arithmetically:
//
//   text            base identifier i (below 1000)   difference identifier d (1000 and up)
//   short name      20482 + i                         20250 + d  (= 21250 + d - 1000)
//   long name       20738 + i                         20506 + d  (= 21506 + d - 1000)
//   column heading  20994 + i                         20762 + d  (= 21762 + d - 1000)
//
// The rule is applied to every identifier as it stands, so an identifier outside the
// catalogue reads whatever string its arithmetic addresses (usually none, hence empty
// texts); that the blocks are addressed this way is part of the library's interface, which
// translated string tables rely on. A column heading holds its two lines separated by a line
// feed; a heading with an empty first line starts with the line feed ("\n%Haze").
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace velquor {

// The difference variant of base identifier i is i + kIndexDifferenceOffset.
inline constexpr std::uint32_t kIndexDifferenceOffset = 1000;
// Highest base identifier of the catalogue.
inline constexpr std::uint32_t kLastBaseIndex = 186;

// String of base identifier 0 in each block.
inline constexpr std::uint32_t kIndexNameBase = 20482;
inline constexpr std::uint32_t kIndexLongNameBase = 20738;
inline constexpr std::uint32_t kIndexHeadingBase = 20994;
// String of difference identifier 1000 in each block.
inline constexpr std::uint32_t kIndexDifferenceNameBase = 21250;
inline constexpr std::uint32_t kIndexDifferenceLongNameBase = 21506;
inline constexpr std::uint32_t kIndexDifferenceHeadingBase = 21762;

// Identifiers the catalogue treats specially.
inline constexpr std::uint32_t kIndexMunsell = 27;
inline constexpr std::uint32_t kIndexStatus = 43;
inline constexpr std::uint32_t kIndexSensor = 44;
inline constexpr std::uint32_t kIndexDate = 47;
inline constexpr std::uint32_t kIndexTime = 48;
inline constexpr std::uint32_t kIndexApha = 87;

enum class IndexText { kName, kLongName, kHeading };

// The string identifier of one text of `identifier` by the rule above, or nothing when the
// arithmetic leaves the string table's identifier range (0..65535).
std::optional<std::uint32_t> GetIndexStringId(std::uint32_t identifier, IndexText text);

// Empty `text`, then load the short name, the long name or the column heading of
// `identifier`. An identifier without that text leaves `text` empty; nothing is reported.
void LoadIndexName(std::uint32_t identifier, std::string& text);
void LoadIndexLongName(std::uint32_t identifier, std::string& text);
void LoadIndexHeading(std::uint32_t identifier, std::string& text);

// The display mask of `identifier`: a pattern the host sizes and formats the column by.
//   27 Munsell                "10.0/10.0"
//   43 Status                 "CREEMM"
//   44 Sensor                 the name of the angle code `parameter` (the measuring geometry,
//                             specular mode or aperture of the sensor, as GetAngleName gives
//                             it), "0000.00" for a parameter that is no catalogued angle code
//   47 Date                   22 December 1998 in the user's short date format (FormatShortDate)
//   48 Time                   23:59:59 in the user's time format (FormatTimeOfDay), the
//                             widest time of day
//   82-84, 88-104             "0000000000000000" (16 digits)
//   182, 183                  "000000000000000" (15 digits)
//   87, 1087 APHA             "-000.00"
//   105, 106, 108 Cost, VOC   "00000.00"
//   every other identifier    "0000.00"
// Only the identifiers listed match: difference variants other than 1087 take "0000.00". The
// date and time are formatted through the library's clock and locale (date_time_text.h); if
// they cannot be formatted the mask is empty. `parameter` is read only for identifier 44.
void GetIndexMask(std::uint32_t identifier, std::string& mask, std::uint32_t parameter);

// Classification of identifiers for the host's tables, membership tests on the identifier as
// given (difference identifiers match only where listed):
// - IsIndexInfoField: attributes of a measurement rather than colour values: 43-48, 72-84,
//   88-106, 108, 182, 183.
// - IndexFlagA: false for 25, 27, 43, 44, 45, 47, 48, 66, 67, 158, 175, 182, 183; true for
//   every other identifier.
// - IndexFlagB: IndexFlagA, and none of 29, 30, 45, 66, 67, 82, 83, 84, 105, 106, 108, 158,
//   180.
// - IndexFlagC: 7, 8, 10, 11, 12, 18, 22, 26, 27, 43, 44, 47, 48, 52, 53, 55, 56, 57, 59,
//   61, 66, 67, 70, 175, 176, 177, 182, 183, 186 and 1007, 1008, 1017, 1018, 1022, 1052,
//   1053, 1055, 1057, 1059, 1061, 1070, 1175, 1176, 1177, 1186. The set holds 1017 where the
//   pair of 56 would be 1056; the library keeps it so, as hosts depend on it.
bool IsIndexInfoField(std::uint32_t identifier);
bool IndexFlagA(std::uint32_t identifier);
bool IndexFlagB(std::uint32_t identifier);
bool IndexFlagC(std::uint32_t identifier);

// Number of table columns `identifier` takes: 2 for 7, 25, 27, 175 and 176 (the chromatic
// strengths with their wavelength, Munsell notation), 1 for every other identifier, their
// difference variants included.
unsigned CountColumnsOfIndex(std::uint32_t identifier);

}  // namespace velquor
