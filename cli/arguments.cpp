#include "arguments.h"

#include <algorithm>

namespace velquor::cli {

namespace {

const OptionDefinition* FindLong(std::span<const OptionDefinition> definitions,
                                 std::string_view name) {
  for (const OptionDefinition& option : definitions) {
    if (option.longName == name) return &option;
  }
  return nullptr;
}

const OptionDefinition* FindShort(std::span<const OptionDefinition> definitions, char name) {
  for (const OptionDefinition& option : definitions) {
    if (option.shortName != 0 && option.shortName == name) return &option;
  }
  return nullptr;
}

}  // namespace

std::string ParsedArguments::Get(std::string_view name, std::string_view fallback) const {
  const auto found = values.find(name);
  return found != values.end() ? found->second : std::string(fallback);
}

bool ParseArguments(std::span<const std::string> args,
                    std::span<const OptionDefinition> definitions, ParsedArguments& out,
                    std::string& error) {
  ParsedArguments parsed;
  bool optionsEnded = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string_view arg = args[i];
    if (optionsEnded || arg.size() < 2 || arg[0] != '-') {
      parsed.positional.emplace_back(arg);
      continue;
    }
    if (arg == "--") {
      optionsEnded = true;
      continue;
    }
    const OptionDefinition* option = nullptr;
    std::string_view inlineValue;
    bool hasInline = false;
    if (arg.starts_with("--")) {
      std::string_view name = arg.substr(2);
      if (const std::size_t eq = name.find('='); eq != std::string_view::npos) {
        inlineValue = name.substr(eq + 1);
        hasInline = true;
        name = name.substr(0, eq);
      }
      option = FindLong(definitions, name);
      if (option == nullptr) {
        error = "unknown option '--" + std::string(name) + "'";
        return false;
      }
    } else {
      option = FindShort(definitions, arg[1]);
      if (option == nullptr) {
        error = "unknown option '" + std::string(arg.substr(0, 2)) + "'";
        return false;
      }
      if (arg.size() > 2) {
        if (option->value != OptionValue::kRequired) {
          error = "option '-" + std::string(1, arg[1]) + "' takes no value";
          return false;
        }
        inlineValue = arg.substr(2);
        hasInline = true;
      }
    }
    const std::string name(option->longName);
    switch (option->value) {
      case OptionValue::kNone:
        if (hasInline) {
          error = "option '--" + name + "' takes no value";
          return false;
        }
        parsed.values[name] = "";
        break;
      case OptionValue::kOptional:
        parsed.values[name] = std::string(inlineValue);
        break;
      case OptionValue::kRequired:
        if (hasInline) {
          parsed.values[name] = std::string(inlineValue);
        } else if (i + 1 < args.size()) {
          parsed.values[name] = args[++i];
        } else {
          error = "option '--" + name + "' needs a value (" + std::string(option->valueName) + ")";
          return false;
        }
        break;
    }
  }
  out = std::move(parsed);
  return true;
}

std::string FormatOptionHelp(std::span<const OptionDefinition> definitions) {
  std::vector<std::string> forms;
  std::size_t width = 0;
  for (const OptionDefinition& option : definitions) {
    std::string form = option.shortName != 0 ? std::string("-") + option.shortName + ", " : "    ";
    form += "--" + std::string(option.longName);
    if (option.value == OptionValue::kRequired) form += " " + std::string(option.valueName);
    if (option.value == OptionValue::kOptional) form += "[=" + std::string(option.valueName) + "]";
    width = std::max(width, form.size());
    forms.push_back(std::move(form));
  }
  std::string out;
  for (std::size_t i = 0; i < definitions.size(); ++i) {
    out += "  " + forms[i] + std::string(width - forms[i].size() + 2, ' ') +
           std::string(definitions[i].help) + "\n";
  }
  return out;
}

}  // namespace velquor::cli
