// velquor diff STANDARD TRIALS and velquor qc STANDARD TRIALS: every trial against the
// standard in a difference system; qc adds the tolerance, several conditions, the batch
// summary, indices and strength.
#include <cstddef>
#include <filesystem>
#include <limits>
#include <system_error>

#include "command_support.h"
#include "report.h"

namespace velquor::cli {

namespace {

bool SameFile(const std::string& a, const std::string& b) {
  std::error_code error;
  return a == b || std::filesystem::equivalent(a, b, error);
}

const OptionDefinition kStandardName{
    'n', "standard-name", OptionValue::kRequired, "NAME",
    "the standard is the sample NAME of STANDARD (default: its first; case is ignored when no "
    "name matches exactly). When STANDARD and TRIALS are one file, the standard is not one of "
    "the trials"};

// Reads both files and the options diff and qc share into `settings`.
bool PrepareComparison(const ParsedArguments& parsed, const std::string& defaultSystem,
                       QcSettings& settings, QcSample& standard, SampleSet& trials,
                       std::vector<std::string>& notes, CommandOutput& io) {
  std::string error;
  if (!ParseDifferenceSystem(parsed.Get("system", defaultSystem), settings.system, error)) {
    io.err += "velquor: " + error + "\n";
    return false;
  }
  SampleSet standards;
  std::size_t standardIndex = 0;
  if (!ReadConditions(parsed, settings.conditions, io) ||
      !ReadSamples(parsed, parsed.positional[0], standards, io) ||
      !PickStandard(parsed, standards, standard, io, &standardIndex) ||
      !ReadSamples(parsed, parsed.positional[1], trials, io)) {
    return false;
  }
  // One file for both (the usual instrument export): the standard is not its own trial.
  if (SameFile(parsed.positional[0], parsed.positional[1]) &&
      standardIndex < trials.samples.size()) {
    trials.samples.erase(trials.samples.begin() + static_cast<std::ptrdiff_t>(standardIndex));
  }
  notes = standards.notes;
  notes.insert(notes.end(), trials.notes.begin(), trials.notes.end());
  return true;
}

}  // namespace

int RunDiffCommand(CommandArgs args, CommandOutput& io) {
  const std::vector<OptionDefinition> own{
      {'s', "system", OptionValue::kRequired, "SYSTEM",
       "difference system (default cielab): " + DifferenceSystemHelp()},
      kStandardName};
  ParsedArguments parsed;
  int exitCode = kExitSuccess;
  if (!ParseCommand(args, own, "velquor diff [options] STANDARD TRIALS",
                    "Colour difference of every sample of TRIALS from the standard (the first "
                    "sample of STANDARD): the system's seven values, with its own column labels, "
                    "and the shade description. With several illuminants, one row per illuminant.",
                    2, parsed, io, exitCode)) {
    return exitCode;
  }
  QcSettings settings;
  settings.tolerance = std::numeric_limits<double>::infinity();
  QcSample standard;
  SampleSet trials;
  std::vector<std::string> notes;
  if (!PrepareComparison(parsed, "cielab", settings, standard, trials, notes, io))
    return kExitUsage;
  const QcReport report = ComputeQcReport(settings, std::move(standard), std::move(trials.samples));
  Table table = QcResultTable(report);
  table.title = "Standard " + report.standard.name + " — " + report.system.caption;
  // diff has no tolerance: drop the verdict column.
  const std::size_t verdict = 2 + 7 + 1;
  table.headers.erase(table.headers.begin() + verdict);
  for (auto& row : table.rows) {
    row.erase(row.begin() + verdict);
    for (Cell& cell : row) cell.fail = false;
  }
  table.notes.insert(table.notes.begin(), notes.begin(), notes.end());
  if (!EmitTable(parsed, table, io)) return kExitUsage;
  return report.summaries.empty() || report.summaries.front().rejected == 0 ? kExitSuccess
                                                                            : kExitRejected;
}

int RunQcCommand(CommandArgs args, CommandOutput& io) {
  const std::vector<OptionDefinition> own{
      {'s', "system", OptionValue::kRequired, "SYSTEM",
       "difference system (default cmc:2:1): " + DifferenceSystemHelp()},
      {'t', "tolerance", OptionValue::kRequired, "DE",
       "largest total difference a trial may have to pass (default 1.0)"},
      {'x', "index", OptionValue::kRequired, "LIST",
       "indices to show, by catalogue name, comma-separated: " + IndexHelp()},
      {'m', "strength", OptionValue::kRequired, "METHOD",
       "show colour strength by METHOD: " + StrengthMethodHelp()},
      kStandardName};
  ParsedArguments parsed;
  int exitCode = kExitSuccess;
  if (!ParseCommand(args, own, "velquor qc [options] STANDARD TRIALS",
                    "Colour quality control: every trial of TRIALS against the standard (the "
                    "first sample of STANDARD) under each illuminant, pass or fail against the "
                    "tolerance, with the shade description, the batch summary (mean, max, "
                    "worst 10 %) and the chosen indices and strength.",
                    2, parsed, io, exitCode)) {
    return exitCode;
  }
  QcSettings settings;
  std::string error;
  if (parsed.Has("tolerance") &&
      !ParsePositiveNumber(parsed.Get("tolerance"), settings.tolerance)) {
    io.err += "velquor: tolerance '" + parsed.Get("tolerance") + "' is not a positive number\n";
    return kExitUsage;
  }
  if (parsed.Has("index") && !ParseIndices(parsed.Get("index"), settings.indices, error)) {
    io.err += "velquor: " + error + "\n";
    return kExitUsage;
  }
  if (parsed.Has("strength")) {
    settings.withStrength = true;
    if (!ParseStrengthMethod(parsed.Get("strength"), settings.strength, error)) {
      io.err += "velquor: " + error + "\n";
      return kExitUsage;
    }
  }
  QcSample standard;
  SampleSet trials;
  std::vector<std::string> notes;
  if (!PrepareComparison(parsed, "cmc:2:1", settings, standard, trials, notes, io))
    return kExitUsage;
  QcReport report = ComputeQcReport(settings, std::move(standard), std::move(trials.samples));
  report.standardSource = parsed.positional[0];
  report.trialsSource = parsed.positional[1];
  report.notes = std::move(notes);
  if (!EmitQcReport(parsed, report, io)) return kExitUsage;
  return report.AllPassed() ? kExitSuccess : kExitRejected;
}

}  // namespace velquor::cli
