// Command-line options in the usual form: "-t 1.0", "-t1.0", "--tolerance 1.0",
// "--tolerance=1.0", flags ("--help"), options whose value may only follow '='
// ("--csv" or "--csv=FILE"), and "--" ending the options.
#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velquor::cli {

enum class OptionValue {
  kNone,      // a flag
  kRequired,  // takes the next argument (or "=value", or the rest of a short option)
  kOptional,  // takes a value only as "--name=value"
};

struct OptionDefinition {
  char shortName;  // 0: long form only
  std::string_view longName;
  OptionValue value;
  std::string_view valueName;  // for help, e.g. "FILE"
  std::string help;
};

struct ParsedArguments {
  std::map<std::string, std::string, std::less<>> values;  // long name -> value ("" for flags)
  std::vector<std::string> positional;

  bool Has(std::string_view name) const { return values.find(name) != values.end(); }
  // The value of `name`, or `fallback` when it was not given.
  std::string Get(std::string_view name, std::string_view fallback = {}) const;
};

// Parses `args` (without the program and command names). False with a message for an
// unknown option, a missing value or a value given to a flag. A repeated option keeps its
// last value.
bool ParseArguments(std::span<const std::string> args,
                    std::span<const OptionDefinition> definitions, ParsedArguments& out,
                    std::string& error);

// The option lines of a command's help text, aligned.
std::string FormatOptionHelp(std::span<const OptionDefinition> definitions);

}  // namespace velquor::cli
