// velquor index FILE --index LIST: whiteness, tint, yellowness and other indices per sample.
#include "command_support.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/frame/constants.h"
#include "velquor/indices/index_formulas.h"

namespace velquor::cli {

int RunIndexCommand(CommandArgs args, CommandOutput& io) {
  const std::vector<OptionDefinition> own{
      {'x', "index", OptionValue::kRequired, "LIST",
       "indices by catalogue name, comma-separated (required): " + IndexHelp()}};
  ParsedArguments parsed;
  int exitCode = kExitSuccess;
  if (!ParseCommand(args, own, "velquor index [options] --index LIST FILE",
                    "Whiteness, tint, yellowness, filter values and dominant wavelength of every "
                    "sample of a measurement file.",
                    1, parsed, io, exitCode)) {
    return exitCode;
  }
  std::vector<IndexChoice> indices;
  std::string error;
  if (!parsed.Has("index")) {
    io.err += "velquor: --index is required (see velquor index --help)\n";
    return kExitUsage;
  }
  if (!ParseIndices(parsed.Get("index"), indices, error)) {
    io.err += "velquor: " + error + "\n";
    return kExitUsage;
  }
  std::vector<Condition> conditions;
  SampleSet set;
  if (!ReadConditions(parsed, conditions, io) ||
      !ReadSamples(parsed, parsed.positional[0], set, io)) {
    return kExitUsage;
  }
  Table table;
  table.title = "Indices";
  table.headers = {"sample", "condition"};
  for (const IndexChoice& index : indices) table.headers.push_back(index.name);
  table.notes = set.notes;
  int result = kExitSuccess;
  CValueVector3 xyz;
  for (Condition& condition : conditions)
    EnsureWeightTable(condition.illuminant, condition.observer);
  std::string why;
  for (const QcSample& sample : set.samples) {
    std::string rejected;
    for (const Condition& condition : conditions) {
      std::vector<Cell> row{TextCell(sample.name), TextCell(condition.label)};
      const bool usable = SampleXyz(sample, condition, xyz, why);
      if (!usable && rejected.empty()) rejected = why;
      for (const IndexChoice& index : indices) {
        const double value = usable ? FindIndexFormula(index.identifier)
                                          ->plain(condition.illuminant, condition.observer, xyz)
                                    : kMissing;
        row.push_back(NumberCell(value, 2));
        if (row.back().missing) result = kExitRejected;
      }
      table.rows.push_back(std::move(row));
    }
    if (!rejected.empty()) table.notes.push_back(sample.name + ": rejected, " + rejected);
  }
  if (!EmitTable(parsed, table, io)) return kExitUsage;
  return result;
}

}  // namespace velquor::cli
