// Keeping the tool's output well-formed UTF-8 whatever bytes the input files hold.
#pragma once

#include <string>

namespace velquor::cli {

// Replaces, in place, every byte sequence of `text` that is not well-formed UTF-8 (RFC 3629:
// no overlong forms, no surrogates, nothing above U+10FFFF) by U+FFFD, one per maximal
// invalid subpart as the Unicode Standard (section 3.9) recommends. Bytes below 0x80 are
// never consumed by a repair, so JSON, HTML and CSV syntax around the text is kept. Returns
// true when something was replaced.
bool RepairUtf8(std::string& text);

}  // namespace velquor::cli
