// Display texts of the colour-difference systems: captions, short names and the column labels
// under which a comparison's values and differences are shown.
//
// System k (the difference-system code, 0 CIE L*a*b* .. 12 DIN6175) owns the 16 strings
// 2368 + 16k to 2383 + 16k; the offset within the block says what a string is (see
// DifferenceString). Offsets 5 and 11-15 have no string. The chromaticity mode (100) and
// unknown codes have no block.
//
// Column lists separate their fields by '|'. The full list (offset 2) holds three groups
// separated by an empty field: values, differences, total. The difference columns follow the
// slots of the difference record in order, and the last field of every difference list is the
// total (slot 7). Lists of systems whose slot 4 is the plain lightness difference leave slot 4
// out (ΔL*, Δa*, Δb*, ΔC*, ΔH*, ΔE); the weighted systems CMC, CIE94 and CIE2000 keep it.
//
// The weighted systems' captions and short names are formats whose "%s" placeholders receive
// the weights already turned into text, in the caption's order: CMC l, c and the commercial
// factor cf; CIE94 and CIE2000 kL, kC, kH; DIN99 kCH, kE; DIN6175 gL, gC, gH.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velquor {

// String of system 0, offset 0; system k, offset o is string 2368 + 16k + o.
inline constexpr std::uint32_t kDifferenceStringBase = 2368;
inline constexpr std::uint32_t kDifferenceStringsPerSystem = 16;
// Systems with a string block: codes 0 to 12.
inline constexpr int kDifferenceSystemCount = 13;

// Offsets within a system's block.
enum class DifferenceString : std::uint32_t {
  kCaption = 0,                 // "CIE L*a*b*"; weighted: "CMC (L:C) = %s : %s, cf = %s"
  kShortName = 1,               // "L*a*b*"; weighted: "CMC (%s:%s) cf=%s"
  kColumns = 2,                 // values || differences || total
  kValueColumns = 3,            // "L*|a*|b*|C*|h°"
  kDifferenceColumns = 4,       // the differences and the total
  kThreeValueColumns = 6,       // "L*|a*|b*"
  kThreeDifferenceColumns = 7,  // three differences and the total
  kCoordinateLabels = 8,        // three coordinate labels
  kComponentLabels = 9,         // three (weighted) component labels: "L*cmc|C*cmc|H*cmc"
  kSecondCoordinateLabels = 10  // three coordinate labels of a second display
};

constexpr bool IsCataloguedDifferenceSystem(int system) {
  return system >= 0 && system < kDifferenceSystemCount;
}

// String identifier of `offset` in the block of `system`, computed without a range check.
constexpr std::uint32_t GetDifferenceStringId(int system, DifferenceString offset) {
  return kDifferenceStringBase + kDifferenceStringsPerSystem * static_cast<std::uint32_t>(system) +
         static_cast<std::uint32_t>(offset);
}

// Number of "%s" placeholders in the system's caption and short name: 3 for CMC (1), CIE94 (4),
// CIE2000 (11) and DIN6175 (12), 2 for DIN99 (10), 0 for every other code.
constexpr int CountDifferenceWeights(int system) {
  switch (system) {
    case 1:
    case 4:
    case 11:
    case 12:
      return 3;
    case 10:
      return 2;
    default:
      return 0;
  }
}

// The string `offset` of `system`; the empty text for a system outside 0..12, for offsets
// without a string and for offsets outside the block.
std::string LoadDifferenceString(int system, DifferenceString offset);

// The caption (offset 0) and short name (offset 1) of `system` with their placeholders filled
// from `weights` (see FormatWithWeights). Captions without placeholders come back unchanged.
std::string FormatDifferenceCaption(int system, std::span<const std::string> weights);
std::string FormatDifferenceShortName(int system, std::span<const std::string> weights);

// Fills a caption format: each "%s" takes the next text of `weights` in order (the empty text
// once they run out; surplus texts are ignored), "%%" gives one '%', and every other character,
// including a '%' before any other character, is copied as it stands. The weights are inserted
// literally: a '%' inside a weight is not read as a placeholder.
std::string FormatWithWeights(std::string_view format, std::span<const std::string> weights);

// The fields of a '|'-separated column list, empty fields included ("a||b" gives "a", "",
// "b"); the empty list gives no fields.
std::vector<std::string> SplitColumnLabels(std::string_view list);

// The label of the system's total difference ("ΔE*ab", "ΔE*cmc", ...): the last field of its
// difference columns (offset 4); empty for a system without a block.
std::string LoadDifferenceTotalLabel(int system);

// The label of each of the seven slots of a difference record (color_difference.h) in
// `system`: the system's difference columns placed on the slots they describe, the empty text
// on a slot the system leaves unused or shows under another label. Lists of seven cover every
// slot; lists of six leave out slot 4 (the plain lightness difference, equal to slot 1);
// Hunter Lab and GE-PQS II fill slots 1-3 and 7, FMC-2 slots 1-3, 5 and 7. A system without a
// block gives seven empty labels.
std::array<std::string, 7> LoadDifferenceSlotLabels(int system);

}  // namespace velquor
