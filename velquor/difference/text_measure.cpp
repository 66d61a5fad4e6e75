#include "velquor/difference/text_measure.h"

namespace velquor {

int CodePointTextMeasurer::GetTextWidth(std::string_view text) const {
  int width = 0;
  for (const char c : text) {
    if ((static_cast<unsigned char>(c) & 0xC0u) != 0x80u) ++width;
  }
  return width;
}

const TextMeasurer& DefaultTextMeasurer() {
  static const CodePointTextMeasurer measurer;
  return measurer;
}

}  // namespace velquor
