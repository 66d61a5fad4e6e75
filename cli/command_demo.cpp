// velquor demo: the qc report on the sample data embedded in the tool (demo_data.h), so that
// the tool shows what it does on a machine without measurement files.
#include "command_support.h"
#include "demo_data.h"

namespace velquor::cli {

int RunDemoCommand(CommandArgs args, CommandOutput& io) {
  const std::vector<OptionDefinition> own{
      {'s', "system", OptionValue::kRequired, "SYSTEM",
       "difference system (default cmc:2:1): " + DifferenceSystemHelp()},
      {'t', "tolerance", OptionValue::kRequired, "DE", "tolerance (default 1.0)"}};
  ParsedArguments parsed;
  int exitCode = kExitSuccess;
  if (!ParseCommand(args, own, "velquor demo [options]",
                    "The qc report on embedded sample data: the ColorChecker orange patch "
                    "(measured by N. Ohta) as the standard and nine production batches derived "
                    "from it with the library's strength adjustment and small shade shifts. "
                    "Shown under D65/10°, A/10° and TL84/10° unless -i says otherwise. Exits 0 "
                    "when the report was shown, whatever the batches' verdicts.",
                    0, parsed, io, exitCode)) {
    return exitCode;
  }
  QcSettings settings;
  std::string error;
  if (!ParseDifferenceSystem(parsed.Get("system", "cmc:2:1"), settings.system, error) ||
      (parsed.Has("tolerance") &&
       !ParsePositiveNumber(parsed.Get("tolerance"), settings.tolerance))) {
    io.err +=
        "velquor: " +
        (error.empty() ? "tolerance '" + parsed.Get("tolerance") + "' is not a positive number"
                       : error) +
        "\n";
    return kExitUsage;
  }
  if (!ReadConditions(parsed, settings.conditions, io, "D65/10,A/10,T84/10")) return kExitUsage;
  ParseIndices("Dom. Wav.,Purity", settings.indices, error);
  settings.withStrength = ParseStrengthMethod("apparent", settings.strength, error);

  QcSample standard;
  std::vector<QcSample> batches;
  std::vector<std::string> notes;
  if (!BuildDemoSamples(standard, batches, notes, error)) {
    io.err += "velquor: " + error + "\n";
    return kExitUsage;
  }
  QcReport report = ComputeQcReport(settings, std::move(standard), std::move(batches));
  report.standardSource = "embedded sample data (ColorChecker orange, N. Ohta 1997)";
  report.trialsSource = "production batches derived from the standard";
  report.notes = std::move(notes);
  report.notes.push_back(
      "batches: the standard rescaled in K/S to the stated strength, with small "
      "shade shifts; B09 lacks its 500-520 nm readings");
  return EmitQcReport(parsed, report, io) ? kExitSuccess : kExitUsage;
}

}  // namespace velquor::cli
