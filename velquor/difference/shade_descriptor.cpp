#include "velquor/difference/shade_descriptor.h"

#include <algorithm>
#include <cmath>

#include "velquor/frame/numeric.h"
#include "velquor/frame/resources.h"

namespace velquor {

namespace {

struct AxisShade {
  int code;
  std::uint32_t colour;
};

constexpr AxisShade kNoShade{kShadeNone, kShadeColourBlack};

AxisShade LightnessShade(double deltaL, int darkText) {
  if (!(std::fabs(deltaL) >= kShadeThreshold)) return kNoShade;
  if (deltaL > 0.0) return {kShadeLighter, darkText > 0 ? kShadeColourBlack : kShadeColourWhite};
  return {kShadeDarker, kShadeColourBlack};
}

AxisShade RedGreenShade(double standardA, double deltaA) {
  if (!(std::fabs(deltaA) > kShadeThreshold)) return kNoShade;
  if (standardA < 0.0) {
    return {deltaA < 0.0 ? kShadeGreener : kShadeLessGreen, kShadeColourGreen};
  }
  return {deltaA < 0.0 ? kShadeLessRed : kShadeRedder, kShadeColourRed};
}

AxisShade YellowBlueShade(double standardB, double deltaB) {
  if (!(std::fabs(deltaB) > kShadeThreshold)) return kNoShade;
  if (standardB >= 0.0) {
    return {deltaB < 0.0 ? kShadeLessYellow : kShadeYellower, kShadeColourYellow};
  }
  return {deltaB < 0.0 ? kShadeBluer : kShadeLessBlue, kShadeColourBlue};
}

bool CannotUse(double x) {
  return IsMissing(x) || std::isnan(x);
}

// The descriptor codes of each group, as consecutive ranges.
struct CodeRange {
  int first;
  int last;
};
constexpr CodeRange kGroups[] = {
    {kShadeDarker, kShadeLighter}, {kShadeRedder, kShadeGreener}, {kShadeYellower, kShadeBluer}};

int WidestDescriptor(CodeRange range, const TextMeasurer& measurer) {
  int widest = 0;
  for (int code = range.first; code <= range.last; ++code) {
    widest = std::max(widest, measurer.GetTextWidth(LoadShadeDescriptor(code)));
  }
  return widest;
}

}  // namespace

std::string LoadShadeDescriptor(int code) {
  const std::uint32_t id = GetShadeDescriptorStringId(code);
  return id == 0 ? std::string(kShadeBlankText) : LoadStringResource(id);
}

void DescribeShade(double standardA, double standardB, double deltaL, double deltaA, double deltaB,
                   std::string& text, CDWordArray& codes, CDWordArray& colours, int darkText) {
  text.clear();
  codes.RemoveAll();
  colours.RemoveAll();
  if (CannotUse(standardA) || CannotUse(standardB) || CannotUse(deltaL) || CannotUse(deltaA) ||
      CannotUse(deltaB)) {
    return;
  }
  const AxisShade axes[] = {LightnessShade(deltaL, darkText), RedGreenShade(standardA, deltaA),
                            YellowBlueShade(standardB, deltaB)};
  for (const AxisShade& axis : axes) {
    if (codes.GetSize() > 0) text += ',';
    text += LoadShadeDescriptor(axis.code);
    codes.Add(static_cast<std::uint32_t>(axis.code));
    colours.Add(axis.colour);
  }
}

void DescribeShade(const CValueVector5& standard, const CColorVector7& difference,
                   std::string& text, CDWordArray& codes, CDWordArray& colours, int darkText) {
  if (standard.GetSize() < 3 || difference.GetSize() < 3) {
    text.clear();
    codes.RemoveAll();
    colours.RemoveAll();
    return;
  }
  DescribeShade(standard[1], standard[2], difference[0], difference[1], difference[2], text, codes,
                colours, darkText);
}

int GetShadeDescriptorWidth(int group, const TextMeasurer& measurer) {
  const int widest = group >= 0 && group < 3 ? WidestDescriptor(kGroups[group], measurer) : 0;
  return widest + measurer.GetTextWidth("0");
}

int GetMaxShadeDescriptorWidth(const TextMeasurer& measurer) {
  return WidestDescriptor({kShadeDarker, kShadeBluer}, measurer) + measurer.GetTextWidth("0");
}

}  // namespace velquor
