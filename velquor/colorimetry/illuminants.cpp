#include "velquor/colorimetry/illuminants.h"

#include <charconv>

#include "velquor/frame/ascii_text.h"
#include "velquor/frame/resources.h"

namespace velquor {

namespace {

// Loads the whole text of `index` and keeps the part `pick` selects.
int LoadIlluminantPart(int index, std::string& out, std::string_view (*pick)(std::string_view)) {
  std::string text;
  if (!LoadIlluminantText(index, text)) {
    out.clear();
    return 0;
  }
  out = std::string(pick(text));
  return 1;
}

}  // namespace

int LoadIlluminantText(int index, std::string& out) {
  if (index < 0 || index >= kIlluminantSlots) {
    out.clear();
    return 0;
  }
  return LoadStringResource(kIlluminantTextBase + static_cast<std::uint32_t>(index), out);
}

int LoadIlluminantCode(int index, std::string& out) {
  return LoadIlluminantPart(index, out, IlluminantCodeOf);
}

int LoadIlluminantName(int index, std::string& out) {
  return LoadIlluminantPart(index, out, IlluminantNameOf);
}

std::string_view IlluminantCodeOf(std::string_view text) {
  const std::size_t bar = text.find('|');
  return bar == std::string_view::npos ? text : text.substr(0, bar);
}

std::string_view IlluminantNameOf(std::string_view text) {
  const std::size_t bar = text.find('|');
  return bar == std::string_view::npos ? text : text.substr(bar + 1);
}

int LoadIlluminantOrder(std::vector<int>& order) {
  order.clear();
  std::string text;
  if (!LoadStringResource(kIlluminantOrderText, text)) return 0;
  std::string_view rest = text;
  while (true) {
    const std::size_t comma = rest.find(',');
    const std::string_view item = TrimBlanks(rest.substr(0, comma));
    int index = 0;
    const auto [end, error] = std::from_chars(item.data(), item.data() + item.size(), index);
    if (item.empty() || error != std::errc() || end != item.data() + item.size()) {
      order.clear();
      return 0;
    }
    order.push_back(index);
    if (comma == std::string_view::npos) break;
    rest.remove_prefix(comma + 1);
  }
  return 1;
}

int LoadObserverText(int observer, ObserverTextForm form, std::string& out) {
  std::uint32_t base = kObserverTextBase;
  if (form == ObserverTextForm::kDash) base = kObserverDashText;
  if (form == ObserverTextForm::kSlash) base = kObserverSlashText;
  return LoadStringResource(base + (ObserverDegrees(observer) == 10 ? 1u : 0u), out);
}

int LoadIlluminantWord(std::string& out) {
  return LoadStringResource(kIlluminantWordText, out);
}

}  // namespace velquor
