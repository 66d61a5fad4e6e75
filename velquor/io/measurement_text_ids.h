// Identifiers of the measurement-file messages in the library's string table
// (resources/strings/measurement_files.txt, block 29696-29759).
#pragma once

#include <cstdint>

namespace velquor::measurement_text {

inline constexpr std::uint32_t kCannotOpen = 29696;
inline constexpr std::uint32_t kReadError = 29697;
inline constexpr std::uint32_t kEmptyFile = 29698;
inline constexpr std::uint32_t kLineTooLong = 29699;
inline constexpr std::uint32_t kBinaryData = 29700;
inline constexpr std::uint32_t kUnclosedQuote = 29701;
inline constexpr std::uint32_t kOutOfMemory = 29702;
inline constexpr std::uint32_t kNotCgats = 29703;
inline constexpr std::uint32_t kUnterminatedFormat = 29704;
inline constexpr std::uint32_t kUnterminatedData = 29705;
inline constexpr std::uint32_t kDataBeforeFormat = 29706;
inline constexpr std::uint32_t kEndWithoutBegin = 29707;
inline constexpr std::uint32_t kNotWholeNumber = 29708;
inline constexpr std::uint32_t kFieldCountDeclared = 29709;
inline constexpr std::uint32_t kSetCountDeclared = 29710;
inline constexpr std::uint32_t kRowFieldCount = 29711;
inline constexpr std::uint32_t kNotANumber = 29712;
inline constexpr std::uint32_t kDuplicateWavelengthColumn = 29713;
inline constexpr std::uint32_t kDuplicateColumn = 29714;
inline constexpr std::uint32_t kNoSpectralColumns = 29715;
inline constexpr std::uint32_t kNoSamples = 29716;
inline constexpr std::uint32_t kCsvRowFieldCount = 29717;
inline constexpr std::uint32_t kCsvNoWavelengths = 29718;
inline constexpr std::uint32_t kAppearsTwice = 29719;
inline constexpr std::uint32_t kMissingValues = 29720;
inline constexpr std::uint32_t kTooManyColumns = 29726;
inline constexpr std::uint32_t kAfterEndData = 29721;
inline constexpr std::uint32_t kScaleFractionDetected = 29722;
inline constexpr std::uint32_t kScalePercentDetected = 29723;
inline constexpr std::uint32_t kScaleFractionTold = 29724;
inline constexpr std::uint32_t kScalePercentTold = 29725;
inline constexpr std::uint32_t kTooFewBands = 29727;
inline constexpr std::uint32_t kNotMonotone = 29728;
inline constexpr std::uint32_t kDuplicateWavelength = 29729;
inline constexpr std::uint32_t kNoOverlap = 29730;
inline constexpr std::uint32_t kBadWavelength = 29731;
inline constexpr std::uint32_t kMethodSampled = 29732;
inline constexpr std::uint32_t kMethodSprague = 29733;
inline constexpr std::uint32_t kMethodLagrange = 29734;
inline constexpr std::uint32_t kExtrapolated = 29735;
inline constexpr std::uint32_t kNoneExtrapolated = 29736;
inline constexpr std::uint32_t kLooksLikePercent = 29737;
inline constexpr std::uint32_t kLooksLikeFraction = 29738;
inline constexpr std::uint32_t kInvalidUtf8 = 29739;
inline constexpr std::uint32_t kCannotWrite = 29740;

}  // namespace velquor::measurement_text
