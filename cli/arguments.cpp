#include "arguments.h"

#include <algorithm>

namespace velquor::cli {

namespace {

const OptionSpec* FindLong(std::span<const OptionSpec> specs, std::string_view name) {
  for (const OptionSpec& spec : specs) {
    if (spec.longName == name) return &spec;
  }
  return nullptr;
}

const OptionSpec* FindShort(std::span<const OptionSpec> specs, char name) {
  for (const OptionSpec& spec : specs) {
    if (spec.shortName != 0 && spec.shortName == name) return &spec;
  }
  return nullptr;
}

}  // namespace

std::string ParsedArguments::Get(std::string_view name, std::string_view fallback) const {
  const auto found = values.find(name);
  return found != values.end() ? found->second : std::string(fallback);
}

bool ParseArguments(std::span<const std::string> args, std::span<const OptionSpec> specs,
                    ParsedArguments& out, std::string& error) {
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
    const OptionSpec* spec = nullptr;
    std::string_view inlineValue;
    bool hasInline = false;
    if (arg.starts_with("--")) {
      std::string_view name = arg.substr(2);
      if (const std::size_t eq = name.find('='); eq != std::string_view::npos) {
        inlineValue = name.substr(eq + 1);
        hasInline = true;
        name = name.substr(0, eq);
      }
      spec = FindLong(specs, name);
      if (spec == nullptr) {
        error = "unknown option '--" + std::string(name) + "'";
        return false;
      }
    } else {
      spec = FindShort(specs, arg[1]);
      if (spec == nullptr) {
        error = "unknown option '" + std::string(arg.substr(0, 2)) + "'";
        return false;
      }
      if (arg.size() > 2) {
        if (spec->value != OptionValue::kRequired) {
          error = "option '-" + std::string(1, arg[1]) + "' takes no value";
          return false;
        }
        inlineValue = arg.substr(2);
        hasInline = true;
      }
    }
    const std::string name(spec->longName);
    switch (spec->value) {
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
          error = "option '--" + name + "' needs a value (" + std::string(spec->valueName) + ")";
          return false;
        }
        break;
    }
  }
  out = std::move(parsed);
  return true;
}

std::string FormatOptionHelp(std::span<const OptionSpec> specs) {
  std::vector<std::string> forms;
  std::size_t width = 0;
  for (const OptionSpec& spec : specs) {
    std::string form = spec.shortName != 0 ? std::string("-") + spec.shortName + ", " : "    ";
    form += "--" + std::string(spec.longName);
    if (spec.value == OptionValue::kRequired) form += " " + std::string(spec.valueName);
    if (spec.value == OptionValue::kOptional) form += "[=" + std::string(spec.valueName) + "]";
    width = std::max(width, form.size());
    forms.push_back(std::move(form));
  }
  std::string out;
  for (std::size_t i = 0; i < specs.size(); ++i) {
    out += "  " + forms[i] + std::string(width - forms[i].size() + 2, ' ') +
           std::string(specs[i].help) + "\n";
  }
  return out;
}

}  // namespace velquor::cli
