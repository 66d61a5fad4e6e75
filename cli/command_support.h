// What the commands share: the common options, reading the conditions and input files, and
// emitting a result as text, CSV, JSON or HTML (to standard output or to a file written
// atomically).
#pragma once

#include <string>
#include <vector>

#include "arguments.h"
#include "choices.h"
#include "commands.h"
#include "qc_report.h"
#include "sample_set.h"
#include "table.h"

namespace velquor::cli {

// -i, -o, --scale, --csv, --json, --html, -h: every command takes them.
std::vector<OptionDefinition> CommonOptions();

// Parses `args` with the command's own options plus the common ones. On --help writes
// `usage`, `description` and the options to io.out and returns kExitSuccess in `exitCode`;
// on an error writes it with the usage line to io.err and sets kExitUsage. Returns true when
// the command should go on.
bool ParseCommand(CommandArgs args, std::vector<OptionDefinition> own, std::string_view usage,
                  std::string_view description, std::size_t positionalCount, ParsedArguments& out,
                  CommandOutput& io, int& exitCode);

// The conditions of -i and -o (without -i, `fallback`; the observer defaults to 10°). False
// after writing the error to io.err.
bool ReadConditions(const ParsedArguments& args, std::vector<Condition>& out, CommandOutput& io,
                    std::string_view fallback = "D65");

// Reads a measurement file with --scale applied (see LoadSampleSet for `keepRows`). False
// after writing the error to io.err (a folder is refused by name, before any read).
bool ReadSamples(const ParsedArguments& args, const std::string& path, SampleSet& out,
                 CommandOutput& io, bool keepRows = false);

// Picks the standard: the sample named by --standard-name (exactly, else ignoring ASCII case;
// a miss names the closest sample and lists them), else the first sample. Its position in the
// set goes to `index` when given.
bool PickStandard(const ParsedArguments& args, const SampleSet& set, QcSample& out,
                  CommandOutput& io, std::size_t* index = nullptr);

// Writes `table` in the formats the options ask for: text to io.out unless --csv or --json
// go there; files for --csv=FILE, --json=FILE and --html FILE. False (after writing the
// error to io.err) when a file cannot be written.
bool EmitTable(const ParsedArguments& args, const Table& table, CommandOutput& io);

// The same for a QC report.
bool EmitQcReport(const ParsedArguments& args, const QcReport& report, CommandOutput& io);

// Writes `text` to `path` atomically. False with "PATH: reason" in `error`.
bool WriteTextFile(const std::string& path, const std::string& text, std::string& error);

}  // namespace velquor::cli
