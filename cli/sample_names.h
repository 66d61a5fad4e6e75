// Finding a sample by the name a user typed: exact first, then ignoring ASCII case, and on a
// miss a suggestion and the names there are.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace velquor::cli {

inline constexpr std::size_t kNoSample = static_cast<std::size_t>(-1);

// The index of the sample called `name`: the exact name if one sample has it, else the only
// sample whose name equals it ignoring ASCII case. kNoSample when there is none, or when
// several match ignoring case and none exactly (then the name is ambiguous).
std::size_t FindSampleName(const std::vector<std::string>& names, const std::string& name);

// The message for a name FindSampleName did not find, after "no sample named 'NAME'":
// ". Did you mean 'X'?" for the closest name (edit distance ignoring ASCII case, at most a
// third of the name's length, at least 2), then ". The samples are: a, b, c" (the first 20,
// then "and N more"); ". Several samples match ignoring case: ..." when it is ambiguous.
std::string MissingNameHelp(const std::vector<std::string>& names, const std::string& name);

}  // namespace velquor::cli
