// CAngleSet: the angle codes of one multi-angle measurement, in the order in which they were
// stored (the measurement order), together with their order by ascending sort key, the inverse
// of that order, and an enabled and a selected flag per angle.
//
// Positions name angles in stored order; sorted indexes name them in sort-key order (sorted
// index i is stored position order[i]). The value 100 (kCurrentPosition) given as a position or
// a sorted index stands for the current position, so in a set of more than 100 angles the
// angle stored at position 100 cannot be addressed directly (the library's interface).
// Every array holds one byte per angle, so a set holds at most 256 angles.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "velquor/frame/object.h"

namespace velquor {

class CAngleSet : public CObject {
  VELQUOR_DECLARE_RUNTIME_CLASS(CAngleSet);

 public:
  // Largest number of angles a set holds.
  static constexpr std::size_t kMaxAngles = 256;
  // Position or sorted index that stands for the current position.
  static constexpr unsigned kCurrentPosition = 100;
  // Result of GetCodeAt for a position the set does not hold.
  static constexpr std::uint8_t kNoCode = 0xFF;

  CAngleSet() = default;
  CAngleSet(const CAngleSet&) = default;
  // Copies the five arrays and the current position; self-assignment changes nothing.
  CAngleSet& operator=(const CAngleSet&) = default;

  // Replaces the codes by `codes` (stored order) and rebuilds the sort order, the inverse
  // order and the flags (all 1); the current position becomes 0. Passing the set's own codes
  // just rebuilds. More than 256 codes are refused: the set is left unchanged, an error goes
  // to ShowMessage and the result is false.
  bool SetCodes(std::span<const std::uint8_t> codes);
  // Copies the codes out in stored order and returns their number.
  unsigned GetCodes(std::vector<std::uint8_t>& out) const;
  const std::vector<std::uint8_t>& GetCodes() const { return codes_; }
  unsigned GetCount() const { return static_cast<unsigned>(codes_.size()); }

  unsigned GetCurrentPosition() const { return current_; }
  // Positions the set does not hold are ignored.
  void SetCurrentPosition(unsigned position);

  // The code at `position` (100: the current position); kNoCode when there is none.
  std::uint8_t GetCodeAt(unsigned position) const;
  // The angle at `position` (100: the current position) in degrees: its sort key x 0.1.
  // The missing value when there is none.
  double GetAngleDegrees(unsigned position) const;
  // Display name of the code at `position` (100: the current position). A set of one angle
  // or none names nothing; neither does a position the set lacks.
  std::string GetName(unsigned position) const;
  // As GetName for sorted index `index` (100: the current position); empty past the end.
  std::string GetSortedName(unsigned index) const;

  // Stored position of sorted index `index`, and sorted index of stored position `position`;
  // kCurrentPosition's value is not special here. Out of range: kCurrentPosition.
  unsigned GetStoredPosition(unsigned index) const;
  unsigned GetSortedIndex(unsigned position) const;

  // Enabled and selected flags per position (100: the current position). Positions the set
  // does not hold read as false and are ignored when set.
  bool IsEnabled(unsigned position) const;
  void SetEnabled(unsigned position, bool enabled);
  bool IsSelected(unsigned position) const;
  void SetSelected(unsigned position, bool selected);

  // The stored position whose angle is nearest to `degrees`: the first (in stored order) whose
  // distance is strictly below the best so far, starting from distance 10000 and position 0.
  // Ties keep the earlier position; an empty set, NaN, or a value more than 10000° from every
  // angle gives 0.
  unsigned FindNearest(double degrees) const;
  // FindNearest of the angle of `code` (its sort key x 0.1).
  unsigned FindNearestToCode(std::uint8_t code) const;
  // Translates sorted index `index` of `other` into the sorted index of this set's angle
  // nearest to it. Gives 100 (the current position) when `index` is 100, when this set holds
  // exactly one angle or none, or when `index` is not below other's count.
  unsigned MapSortedIndex(unsigned index, const CAngleSet& other) const;

  // Archive form: the count as a plain 4-byte little-endian unsigned value (not the compact
  // count form), then one byte per code in stored order. Loading rebuilds order, inverse order
  // and flags (they are never stored). A count above 256, or one the archive cannot hold,
  // throws ArchiveError (kBadCount) before anything is read into the set; an archive that ends
  // early throws kEndOfFile. On a throw the set is unchanged.
  void Serialize(CArchive& archive) override;
  void AssertValid() const override;
  void Dump(std::ostream& out) const override;

 private:
  // `position`, with 100 read as the current position.
  unsigned Resolve(unsigned position) const;
  std::string NameOfStored(unsigned position) const;
  void Rebuild();

  std::uint32_t current_ = 0;           // current stored position
  std::vector<std::uint8_t> codes_;     // angle codes, stored order
  std::vector<std::uint8_t> order_;     // stored positions by ascending sort key
  std::vector<std::uint8_t> rank_;      // inverse of order_: stored position -> sorted index
  std::vector<std::uint8_t> enabled_;   // one flag per angle
  std::vector<std::uint8_t> selected_;  // one flag per angle
};

}  // namespace velquor
