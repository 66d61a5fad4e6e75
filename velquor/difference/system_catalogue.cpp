#include "velquor/difference/system_catalogue.h"

#include "velquor/difference/color_difference.h"
#include "velquor/frame/resources.h"

namespace velquor {

std::string LoadDifferenceString(int system, DifferenceString offset) {
  if (!IsCataloguedDifferenceSystem(system)) return {};
  if (static_cast<std::uint32_t>(offset) >= kDifferenceStringsPerSystem) return {};
  return LoadStringResource(GetDifferenceStringId(system, offset));
}

std::string FormatWithWeights(std::string_view format, std::span<const std::string> weights) {
  std::string text;
  text.reserve(format.size());
  std::size_t next = 0;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] == '%' && i + 1 < format.size()) {
      if (format[i + 1] == 's') {
        if (next < weights.size()) text += weights[next];
        ++next;
        ++i;
        continue;
      }
      if (format[i + 1] == '%') {
        text += '%';
        ++i;
        continue;
      }
    }
    text += format[i];
  }
  return text;
}

std::string FormatDifferenceCaption(int system, std::span<const std::string> weights) {
  return FormatWithWeights(LoadDifferenceString(system, DifferenceString::kCaption), weights);
}

std::string FormatDifferenceShortName(int system, std::span<const std::string> weights) {
  return FormatWithWeights(LoadDifferenceString(system, DifferenceString::kShortName), weights);
}

std::vector<std::string> SplitColumnLabels(std::string_view list) {
  std::vector<std::string> fields;
  if (list.empty()) return fields;
  std::size_t start = 0;
  while (true) {
    const std::size_t bar = list.find('|', start);
    if (bar == std::string_view::npos) {
      fields.emplace_back(list.substr(start));
      return fields;
    }
    fields.emplace_back(list.substr(start, bar - start));
    start = bar + 1;
  }
}

std::string LoadDifferenceTotalLabel(int system) {
  const std::string columns = LoadDifferenceString(system, DifferenceString::kDifferenceColumns);
  const std::size_t bar = columns.rfind('|');
  return bar == std::string::npos ? columns : columns.substr(bar + 1);
}

std::array<std::string, 7> LoadDifferenceSlotLabels(int system) {
  std::array<std::string, 7> labels;
  const std::vector<std::string> own =
      SplitColumnLabels(LoadDifferenceString(system, DifferenceString::kDifferenceColumns));
  std::vector<int> slots{0, 1, 2, 6};
  if (own.size() == 7) {
    slots = {0, 1, 2, 3, 4, 5, 6};
  } else if (own.size() == 6) {
    slots = {0, 1, 2, 4, 5, 6};
  } else if (system == kDiffFmc2) {  // no slot 4 or 6
    slots = {0, 1, 2, 4, 6};
  }
  for (std::size_t i = 0; i < own.size() && i < slots.size(); ++i) labels[slots[i]] = own[i];
  return labels;
}

}  // namespace velquor
