#include "command_support.h"

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "report.h"
#include "sample_names.h"
#include "velquor/frame/utf8.h"
#include "velquor/io/atomic_file.h"

namespace velquor::cli {

std::vector<OptionDefinition> CommonOptions() {
  return {
      {'i', "illuminant", OptionValue::kRequired, "LIST",
       "illuminant(s), e.g. D65 or D65/10,T84/10,A/2 (default D65)"},
      {'o', "observer", OptionValue::kRequired, "DEG",
       "observer 2 or 10 for illuminants given without one (default 10)"},
      {0, "scale", OptionValue::kRequired, "SCALE",
       "spectral values are 'fraction', 'percent' or 'auto' (default auto: detected)"},
      {0, "csv", OptionValue::kOptional, "FILE", "write CSV to standard output, or to FILE"},
      {0, "json", OptionValue::kOptional, "FILE", "write JSON to standard output, or to FILE"},
      {0, "html", OptionValue::kRequired, "FILE", "write a self-contained HTML report to FILE"},
      {'h', "help", OptionValue::kNone, "", "show this help"},
  };
}

bool ParseCommand(CommandArgs args, std::vector<OptionDefinition> own, std::string_view usage,
                  std::string_view description, std::size_t positionalCount, ParsedArguments& out,
                  CommandOutput& io, int& exitCode) {
  static const std::string kIlluminantHelp =
      "illuminant(s), e.g. D65 or D65/10,T84/10,A/2 (default D65); codes: " + IlluminantHelp();
  std::vector<OptionDefinition> definitions = std::move(own);
  for (OptionDefinition option : CommonOptions()) {
    if (option.longName == "illuminant") option.help = kIlluminantHelp;  // with the codes
    definitions.push_back(option);
  }
  std::string error;
  if (!ParseArguments(args, definitions, out, error)) {
    io.err += "velquor: " + error + "\nusage: " + std::string(usage) + "\n";
    exitCode = kExitUsage;
    return false;
  }
  if (out.Has("help")) {
    io.out += "usage: " + std::string(usage) + "\n\n" + std::string(description) +
              "\n\noptions:\n" + FormatOptionHelp(definitions) +
              "\nexit status: 0 success, 1 some sample rejected (qc: or out of tolerance), "
              "2 usage or file error\n";
    exitCode = kExitSuccess;
    return false;
  }
  if (out.positional.size() != positionalCount) {
    io.err += "velquor: expected " + std::to_string(positionalCount) + " file argument" +
              (positionalCount == 1 ? "" : "s") + ", got " + std::to_string(out.positional.size()) +
              "\nusage: " + std::string(usage) + "\n";
    exitCode = kExitUsage;
    return false;
  }
  return true;
}

bool ReadConditions(const ParsedArguments& args, std::vector<Condition>& out, CommandOutput& io,
                    std::string_view fallback) {
  std::string error;
  int observer = 1;
  if (args.Has("observer") && !ParseObserver(args.Get("observer"), observer, error)) {
    io.err += "velquor: " + error + "\n";
    return false;
  }
  if (!ParseConditions(args.Get("illuminant", fallback), observer, out, error)) {
    io.err += "velquor: " + error + "\n";
    return false;
  }
  return true;
}

bool ReadSamples(const ParsedArguments& args, const std::string& path, SampleSet& out,
                 CommandOutput& io, bool keepRows) {
  ReadOptions options;
  if (args.Has("scale") && !ParseScale(args.Get("scale"), options.scale)) {
    io.err +=
        "velquor: unknown scale '" + args.Get("scale") + "' (use fraction, percent or auto)\n";
    return false;
  }
  std::string error;
  std::error_code code;
  if (std::filesystem::is_directory(path, code)) {
    io.err += "velquor: " + path + ": is a directory\n";
    return false;
  }
  if (!LoadSampleSet(path, options, out, error, keepRows)) {
    io.err += "velquor: " + error + "\n";
    return false;
  }
  // The reader has already put U+FFFD in place of the invalid bytes; say so once per file,
  // also when one file serves as standard and trials.
  if (out.file.invalidUtf8Line != 0) {
    const std::string message = "velquor: " + path + ":" +
                                std::to_string(out.file.invalidUtf8Line) +
                                ": names that were not valid UTF-8 were repaired (U+FFFD stands "
                                "for the bytes)\n";
    if (io.err.find(message) == std::string::npos) io.err += message;
  }
  return true;
}

bool PickStandard(const ParsedArguments& args, const SampleSet& set, QcSample& out,
                  CommandOutput& io, std::size_t* index) {
  std::size_t found = 0;
  if (args.Has("standard-name")) {
    const std::string name = args.Get("standard-name");
    std::vector<std::string> names;
    names.reserve(set.samples.size());
    for (const QcSample& sample : set.samples) names.push_back(sample.name);
    found = FindSampleName(names, name);
    if (found == kNoSample) {
      io.err += "velquor: " + set.source + ": no sample named '" + name + "'" +
                MissingNameHelp(names, name) + "\n";
      return false;
    }
  }
  out = set.samples[found];
  if (index != nullptr) *index = found;
  return true;
}

bool WriteTextFile(const std::string& path, const std::string& text, std::string& error) {
  std::string reason;
  if (WriteFileAtomically(path, text, reason)) return true;
  error = path + ": " + reason;
  return false;
}

namespace {

// IsValidUtf8 over a large rendering: runs of ASCII are skipped eight bytes at a time and only
// the runs of other bytes between them are checked (an ASCII byte ends every sequence, so the
// text is valid exactly when each such run is).
bool IsValidUtf8Text(std::string_view text) {
  std::size_t i = 0;
  const std::size_t n = text.size();
  while (i < n) {
    while (i + 8 <= n) {
      std::uint64_t word = 0;
      std::memcpy(&word, text.data() + i, 8);
      if ((word & 0x8080808080808080u) != 0) break;
      i += 8;
    }
    while (i < n && static_cast<unsigned char>(text[i]) < 0x80) ++i;
    const std::size_t start = i;
    while (i < n && static_cast<unsigned char>(text[i]) >= 0x80) ++i;
    if (i > start && !IsValidUtf8(text.substr(start, i - start))) return false;
  }
  return true;
}

template <typename Source>
bool Emit(const ParsedArguments& args, const Source& source, std::string (*text)(const Source&),
          std::string (*csv)(const Source&), std::string (*json)(const Source&),
          std::string (*html)(const Source&), CommandOutput& io) {
  bool toStdout = false;
  struct Format {
    const char* option;
    std::string (*render)(const Source&);
  };
  // Names come from the input files byte for byte: whatever they hold, every output is
  // well-formed UTF-8, and the user is told once that something was replaced.
  bool repaired = false;
  const auto render = [&](std::string (*renderer)(const Source&)) {
    std::string rendered = renderer(source);
    if (IsValidUtf8Text(rendered)) return rendered;
    repaired = true;
    return ReplaceInvalidUtf8(rendered);
  };
  const auto finish = [&](bool ok) {
    if (repaired) {
      io.err += "velquor: some names were not valid UTF-8; U+FFFD stands for the invalid bytes\n";
    }
    return ok;
  };
  const Format formats[] = {{"csv", csv}, {"json", json}, {"html", html}};
  for (const Format& format : formats) {
    if (!args.Has(format.option)) continue;
    const std::string path = args.Get(format.option);
    if (path.empty()) {
      io.out += render(format.render);
      toStdout = true;
      continue;
    }
    std::string error;
    if (!WriteTextFile(path, render(format.render), error)) {
      io.err += "velquor: " + error + "\n";
      return finish(false);
    }
  }
  if (!toStdout) io.out += render(text);
  return finish(true);
}

}  // namespace

bool EmitTable(const ParsedArguments& args, const Table& table, CommandOutput& io) {
  return Emit<Table>(args, table, RenderTableText, RenderTableCsv, RenderTableJson, RenderTableHtml,
                     io);
}

bool EmitQcReport(const ParsedArguments& args, const QcReport& report, CommandOutput& io) {
  return Emit<QcReport>(args, report, RenderQcText, RenderQcCsv, RenderQcJson, RenderQcHtml, io);
}

}  // namespace velquor::cli
