#include "velquor/data/angle_set.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <ostream>
#include <string>
#include <utility>

#include "velquor/data/geometry_catalogue.h"
#include "velquor/frame/archive.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/message.h"

namespace velquor {

VELQUOR_IMPLEMENT_RUNTIME_CLASS(CAngleSet, CObject, 1)

namespace {

// Distance FindNearest starts from: a position farther than this from the value is never taken.
constexpr double kNearestStartDistance = 10000.0;

}  // namespace

bool CAngleSet::SetCodes(std::span<const std::uint8_t> codes) {
  if (codes.size() > kMaxAngles) {
    ShowMessage(MessageKind::kError,
                "CAngleSet::SetCodes: " + std::to_string(codes.size()) +
                    " angle codes given; a set holds at most 256. The set is unchanged.");
    return false;
  }
  // The argument may view the set's own codes (or part of them): copy before replacing.
  if (codes.data() != codes_.data() || codes.size() != codes_.size()) {
    std::vector<std::uint8_t> copy(codes.begin(), codes.end());
    codes_ = std::move(copy);
  }
  Rebuild();
  return true;
}

unsigned CAngleSet::GetCodes(std::vector<std::uint8_t>& out) const {
  out.assign(codes_.begin(), codes_.end());
  return GetCount();
}

// Stable ascending insertion by sort key: each position goes before the first entry whose key
// is strictly greater, so equal keys keep their stored order.
void CAngleSet::Rebuild() {
  const std::size_t count = codes_.size();
  order_.clear();
  order_.reserve(count);
  for (std::size_t p = 0; p < count; ++p) {
    const std::int16_t key = GetAngleKey(codes_[p]);
    auto at = std::find_if(order_.begin(), order_.end(),
                           [&](std::uint8_t q) { return GetAngleKey(codes_[q]) > key; });
    order_.insert(at, static_cast<std::uint8_t>(p));
  }
  rank_.assign(count, 0);
  enabled_.assign(count, 1);
  selected_.assign(count, 1);
  for (std::size_t i = 0; i < count; ++i) rank_[order_[i]] = static_cast<std::uint8_t>(i);
  current_ = 0;
}

unsigned CAngleSet::Resolve(unsigned position) const {
  return position == kCurrentPosition ? current_ : position;
}

void CAngleSet::SetCurrentPosition(unsigned position) {
  if (position < codes_.size()) current_ = position;
}

std::uint8_t CAngleSet::GetCodeAt(unsigned position) const {
  const unsigned p = Resolve(position);
  return p < codes_.size() ? codes_[p] : kNoCode;
}

double CAngleSet::GetAngleDegrees(unsigned position) const {
  const unsigned p = Resolve(position);
  return p < codes_.size() ? GetAngleKeyDegrees(codes_[p]) : kMissing;
}

std::string CAngleSet::NameOfStored(unsigned position) const {
  if (codes_.size() <= 1 || position >= codes_.size()) return std::string();
  return GetAngleName(codes_[position]);
}

std::string CAngleSet::GetName(unsigned position) const {
  return NameOfStored(Resolve(position));
}

std::string CAngleSet::GetSortedName(unsigned index) const {
  if (index == kCurrentPosition) return NameOfStored(current_);
  if (index >= order_.size()) return std::string();
  return NameOfStored(order_[index]);
}

unsigned CAngleSet::GetStoredPosition(unsigned index) const {
  return index < order_.size() ? order_[index] : kCurrentPosition;
}

unsigned CAngleSet::GetSortedIndex(unsigned position) const {
  return position < rank_.size() ? rank_[position] : kCurrentPosition;
}

bool CAngleSet::IsEnabled(unsigned position) const {
  const unsigned p = Resolve(position);
  return p < enabled_.size() && enabled_[p] != 0;
}

void CAngleSet::SetEnabled(unsigned position, bool enabled) {
  const unsigned p = Resolve(position);
  if (p < enabled_.size()) enabled_[p] = enabled ? 1 : 0;
}

bool CAngleSet::IsSelected(unsigned position) const {
  const unsigned p = Resolve(position);
  return p < selected_.size() && selected_[p] != 0;
}

void CAngleSet::SetSelected(unsigned position, bool selected) {
  const unsigned p = Resolve(position);
  if (p < selected_.size()) selected_[p] = selected ? 1 : 0;
}

unsigned CAngleSet::FindNearest(double degrees) const {
  double best = kNearestStartDistance;
  unsigned bestPosition = 0;
  for (std::size_t p = 0; p < codes_.size(); ++p) {
    const double distance = std::fabs(degrees - GetAngleKeyDegrees(codes_[p]));
    if (distance < best) {
      best = distance;
      bestPosition = static_cast<unsigned>(p);
    }
  }
  return bestPosition;
}

unsigned CAngleSet::FindNearestToCode(std::uint8_t code) const {
  return FindNearest(GetAngleKeyDegrees(code));
}

unsigned CAngleSet::MapSortedIndex(unsigned index, const CAngleSet& other) const {
  if (index == kCurrentPosition || codes_.size() <= 1 || index >= other.GetCount()) {
    return kCurrentPosition;
  }
  const std::uint8_t code = other.codes_[other.order_[index]];
  return rank_[FindNearest(GetAngleKeyDegrees(code))];
}

void CAngleSet::Serialize(CArchive& archive) {
  if (archive.IsStoring()) {
    archive.WriteValue(static_cast<std::uint32_t>(codes_.size()));
    archive.WriteElements(codes_.data(), codes_.size());
  } else {
    const auto count = archive.ReadValue<std::uint32_t>();
    if (count > kMaxAngles) {
      throw ArchiveError(ArchiveError::Cause::kBadCount, "angle set holds more than 256 angles");
    }
    std::vector<std::uint8_t> codes;
    archive.ReadElements(codes, count);
    codes_ = std::move(codes);
    Rebuild();
  }
}

void CAngleSet::AssertValid() const {
  CObject::AssertValid();
  const std::size_t count = codes_.size();
  assert(count <= kMaxAngles);
  assert(order_.size() == count && rank_.size() == count);
  assert(enabled_.size() == count && selected_.size() == count);
  assert(count == 0 || current_ < count);
  for (std::size_t i = 0; i < count; ++i) {
    assert(order_[i] < count && rank_[order_[i]] == i);
    assert(i == 0 || GetAngleKey(codes_[order_[i - 1]]) <= GetAngleKey(codes_[order_[i]]));
  }
  (void)count;
}

void CAngleSet::Dump(std::ostream& out) const {
  out << "CAngleSet with " << codes_.size() << " angles, current " << current_ << ":";
  for (std::size_t p = 0; p < codes_.size(); ++p) {
    out << ' ' << static_cast<unsigned>(codes_[p]) << '#' << static_cast<unsigned>(rank_[p]);
  }
  out << '\n';
}

}  // namespace velquor
