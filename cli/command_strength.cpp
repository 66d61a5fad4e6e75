// velquor strength STANDARD TRIALS --method METHOD: colour strength of each trial.
#include "command_support.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/frame/constants.h"
#include "velquor/strength/strength.h"
#include "velquor/strength/strength_labels.h"

namespace velquor::cli {

int RunStrengthCommand(CommandArgs args, CommandOutput& io) {
  const std::vector<OptionDefinition> own{
      {'m', "method", OptionValue::kRequired, "METHOD",
       "strength method (default apparent): " + StrengthMethodHelp()},
      {'n', "standard-name", OptionValue::kRequired, "NAME",
       "the standard is the sample NAME of STANDARD (default: its first)"}};
  ParsedArguments parsed;
  int exitCode = kExitSuccess;
  if (!ParseCommand(args, own, "velquor strength [options] STANDARD TRIALS",
                    "Colour strength of every sample of TRIALS against the standard, in percent "
                    "(100 = as strong as the standard), from Kubelka-Munk K/S or optical density.",
                    2, parsed, io, exitCode)) {
    return exitCode;
  }
  StrengthChoice method;
  std::string error;
  if (!ParseStrengthMethod(parsed.Get("method", "apparent"), method, error)) {
    io.err += "velquor: " + error + "\n";
    return kExitUsage;
  }
  std::vector<Condition> conditions;
  SampleSet standards;
  SampleSet trials;
  QcSample standard;
  if (!ReadConditions(parsed, conditions, io) ||
      !ReadSamples(parsed, parsed.positional[0], standards, io) ||
      !PickStandard(parsed, standards, standard, io) ||
      !ReadSamples(parsed, parsed.positional[1], trials, io)) {
    return kExitUsage;
  }
  Condition condition = conditions.front();
  EnsureWeightTable(condition.illuminant, condition.observer);
  CValueVector3 standardXyz;
  CValueVector3 trialXyz;
  std::string standardWhy;
  const bool standardUsable = SampleXyz(standard, condition, standardXyz, standardWhy);
  Table table;
  table.title =
      "Colour strength against " + standard.name + " (" + GetStrengthLabel(method.settings) +
      (method.useAbsorbance ? ", optical density" : ", K/S") + ", " + condition.label + ")";
  table.headers = {"trial", "strength %", "wavelength nm"};
  table.notes = standards.notes;
  table.notes.insert(table.notes.end(), trials.notes.begin(), trials.notes.end());
  int result = kExitSuccess;
  for (const QcSample& trial : trials.samples) {
    int wavelength = 0;
    double strength = kMissing;
    std::string why;
    const bool usable = SampleXyz(trial, condition, trialXyz, why);
    if (standardUsable && usable) {
      strength =
          CalcStrength(method.settings, standard.curve, trial.curve, standardXyz, trialXyz,
                       condition.illuminant, condition.observer, method.useAbsorbance, wavelength);
    }
    const int m = method.settings.method;
    const bool atWavelength = m == 1 || m == 2 || m == 13 || m == 14;
    std::vector<Cell> row{TextCell(trial.name), NumberCell(strength, 2),
                          atWavelength ? NumberCell(wavelength, 0) : TextCell("")};
    if (row[1].missing) {
      result = kExitRejected;
      table.notes.push_back(trial.name + ": rejected, " +
                            (usable ? "standard " + standard.name + ": " + standardWhy : why));
    }
    table.rows.push_back(std::move(row));
  }
  if (!EmitTable(parsed, table, io)) return kExitUsage;
  return result;
}

}  // namespace velquor::cli
