// Text measuring seam. The library sizes display columns (for example the shade descriptors)
// in the units of whatever draws them; the host implements TextMeasurer for its font and
// device, and the library only compares and adds the widths it returns.
#pragma once

#include <string_view>

namespace velquor {

class TextMeasurer {
 public:
  virtual ~TextMeasurer() = default;
  // Width of `text` (UTF-8) in the host's drawing units; 0 for the empty text.
  virtual int GetTextWidth(std::string_view text) const = 0;
};

// The measurer used when the host supplies none: every character is one unit wide, so the
// width of a text is its number of Unicode code points. It counts the bytes of `text` that are
// not UTF-8 continuation bytes (10xxxxxx): exact for valid UTF-8; in invalid text every lead
// or stray single byte counts one and stray continuation bytes count nothing.
class CodePointTextMeasurer final : public TextMeasurer {
 public:
  int GetTextWidth(std::string_view text) const override;
};

// A process-wide CodePointTextMeasurer (stateless, safe from any thread).
const TextMeasurer& DefaultTextMeasurer();

}  // namespace velquor
