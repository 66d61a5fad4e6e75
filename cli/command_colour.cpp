// velquor xyz FILE, velquor lab FILE: tristimulus values and colour-space coordinates of
// every sample of a measurement file, under one or more illuminant/observer conditions.
#include <cstdint>

#include "command_support.h"
#include "velquor/colorimetry/chromaticity.h"
#include "velquor/colorimetry/din99.h"
#include "velquor/colorimetry/hunter_lab.h"
#include "velquor/colorimetry/illuminants.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/colorimetry/coordinate_batch.h"
#include "velquor/colorimetry/luv.h"
#include "velquor/colorimetry/rgb.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/frame/constants.h"
#include "velquor/io/measurement_io.h"

namespace velquor::cli {

namespace {

struct SpaceColumns {
  ColourSpace space;
  std::vector<std::string> names;   // column headings
  std::vector<std::string> fields;  // CGATS field names for --write
  int decimals;
};

const SpaceColumns& ColumnsOf(ColourSpace space) {
  static const std::vector<SpaceColumns> kColumns = {
      {ColourSpace::kLab, {"L*", "a*", "b*"}, {"LAB_L", "LAB_A", "LAB_B"}, 2},
      {ColourSpace::kLch, {"L*", "C*ab", "hab"}, {"LAB_L", "LAB_C", "LAB_H"}, 2},
      {ColourSpace::kLuv,
       {"L*", "u*", "v*", "C*uv", "huv"},
       {"LUV_L", "LUV_U", "LUV_V", "LUV_C", "LUV_H"},
       2},
      {ColourSpace::kHunter, {"L", "a", "b"}, {"HUNTER_L", "HUNTER_A", "HUNTER_B"}, 2},
      {ColourSpace::kDin99,
       {"L99", "a99", "b99", "C99", "h99"},
       {"DIN99_L", "DIN99_A", "DIN99_B", "DIN99_C", "DIN99_H"},
       2},
      {ColourSpace::kYxy, {"Y", "x", "y"}, {"XYZ_Y", "XYY_X", "XYY_Y"}, 4},
      {ColourSpace::kRgb, {"R", "G", "B"}, {"RGB_R", "RGB_G", "RGB_B"}, 0},
  };
  for (const SpaceColumns& columns : kColumns) {
    if (columns.space == space) return columns;
  }
  return kColumns.front();
}

const SpaceColumns kXyzColumns{
    ColourSpace::kYxy, {"X", "Y", "Z", "x", "y"}, {"XYZ_X", "XYZ_Y", "XYZ_Z", "XYY_X", "XYY_Y"}, 4};

// True for the spaces built on CIELAB, whose L*, a*, b*, C*ab, hab come from XYZToLabBatch.
bool BuiltOnLab(ColourSpace space) {
  return space == ColourSpace::kLab || space == ColourSpace::kLch || space == ColourSpace::kDin99;
}

// The values of one sample from its X, Y, Z in `space` (or XYZ with x, y when `xyzOnly`);
// `lab` holds its CIELAB record for the spaces BuiltOnLab.
std::vector<double> Coordinates(const CValueVector3& xyz, const double* lab, const Condition& c,
                                bool xyzOnly, ColourSpace space) {
  double x = kMissing;
  double y = kMissing;
  if (xyzOnly || space == ColourSpace::kYxy) XYZToChromaticity(xyz, x, y);
  if (xyzOnly) return {xyz[0], xyz[1], xyz[2], x, y};
  CValueVector5 five;
  CValueVector3 three;
  switch (space) {
    case ColourSpace::kLab:
      return {lab[0], lab[1], lab[2]};
    case ColourSpace::kLch:
      return {lab[0], lab[3], lab[4]};
    case ColourSpace::kLuv:
      XYZToLuv(c.illuminant, c.observer, xyz, five);
      return {five[0], five[1], five[2], five[3], five[4]};
    case ColourSpace::kHunter:
      XYZToHunterLab(c.illuminant, c.observer, xyz, three);
      return {three[0], three[1], three[2]};
    case ColourSpace::kDin99:
      LabToDIN99(lab[0], lab[1], lab[2], 1.0, 1.0, five);
      return {five[0], five[1], five[2], five[3], five[4]};
    case ColourSpace::kYxy:
      return {xyz[1], x, y};
    case ColourSpace::kRgb: {
      std::int32_t r = 0, g = 0, b = 0;
      XYZToRGB(c.illuminant, c.observer, xyz, r, g, b);
      return {static_cast<double>(r), static_cast<double>(g), static_cast<double>(b)};
    }
  }
  return {};
}

int RunColour(CommandArgs args, CommandOutput& io, bool xyzOnly) {
  std::vector<OptionDefinition> own;
  if (!xyzOnly) {
    own.push_back({'s', "space", OptionValue::kRequired, "SPACE",
                   "lab (default), lch, luv, hunter, din99, yxy or rgb"});
  }
  own.push_back({'w', "write", OptionValue::kRequired, "FILE",
                 "also write the measurement file with the computed columns added (CGATS, or "
                 "CSV for a .csv name), keeping its other columns"});
  const std::string_view usage =
      xyzOnly ? "velquor xyz [options] FILE" : "velquor lab [options] FILE";
  const std::string_view description =
      xyzOnly
          ? "Tristimulus values X, Y, Z (Y = 100 for the perfect white) and chromaticity x, y of "
            "every sample of a CGATS or CSV measurement file (ASTM E308 10 nm weighting)."
          : "Colour-space coordinates of every sample of a CGATS or CSV measurement file.";
  ParsedArguments parsed;
  int exitCode = kExitSuccess;
  if (!ParseCommand(args, own, usage, description, 1, parsed, io, exitCode)) return exitCode;
  ColourSpace space = ColourSpace::kLab;
  std::string error;
  if (!xyzOnly && parsed.Has("space") && !ParseColourSpace(parsed.Get("space"), space, error)) {
    io.err += "velquor: " + error + "\n";
    return kExitUsage;
  }
  std::vector<Condition> conditions;
  SampleSet set;
  if (!ReadConditions(parsed, conditions, io) ||
      !ReadSamples(parsed, parsed.positional[0], set, io, parsed.Has("write"))) {
    return kExitUsage;
  }
  const SpaceColumns& columns = xyzOnly ? kXyzColumns : ColumnsOf(space);
  Table table;
  table.title = xyzOnly ? "Tristimulus values" : "Coordinates";
  table.headers = {"sample", "condition"};
  for (const std::string& name : columns.names) table.headers.push_back(name);
  table.notes = set.notes;
  std::vector<std::vector<std::string>> written(conditions.size() * columns.names.size());
  int result = kExitSuccess;
  // X, Y, Z (and CIELAB where the space needs it) of every sample under every condition,
  // through the batch functions.
  const std::size_t n = set.samples.size();
  std::vector<std::vector<double>> xyzOf(conditions.size()), labOf(conditions.size());
  std::vector<std::vector<std::string>> whyOf(conditions.size());
  for (std::size_t c = 0; c < conditions.size(); ++c) {
    EnsureWeightTable(conditions[c].illuminant, conditions[c].observer);
    SampleXyzBatch(set.samples, conditions[c], xyzOf[c], whyOf[c]);
    if (xyzOnly || !BuiltOnLab(space)) continue;
    labOf[c].assign(n * 5, kMissing);
    XYZToLabBatch(conditions[c].illuminant, conditions[c].observer, xyzOf[c].data(), 3,
                  labOf[c].data(), 5, n);
  }
  CValueVector3 xyz;
  for (std::size_t s = 0; s < n; ++s) {
    const QcSample& sample = set.samples[s];
    std::string rejected;
    for (std::size_t c = 0; c < conditions.size(); ++c) {
      std::vector<Cell> row{TextCell(sample.name), TextCell(conditions[c].label)};
      const bool usable = whyOf[c][s].empty();
      if (!usable && rejected.empty()) rejected = whyOf[c][s];
      for (std::size_t k = 0; k < 3; ++k) xyz[k] = xyzOf[c][s * 3 + k];
      const double* lab = labOf[c].empty() ? nullptr : labOf[c].data() + s * 5;
      const std::vector<double> values =
          usable ? Coordinates(xyz, lab, conditions[c], xyzOnly, space)
                 : std::vector<double>(columns.names.size(), kMissing);
      for (std::size_t k = 0; k < values.size(); ++k) {
        row.push_back(NumberCell(values[k], columns.decimals));
        written[c * columns.names.size() + k].push_back(row.back().missing ? "" : row.back().text);
      }
      table.rows.push_back(std::move(row));
    }
    if (!rejected.empty()) {
      table.notes.push_back(sample.name + ": rejected, " + rejected);
      result = kExitRejected;
    }
  }
  if (parsed.Has("write")) {
    for (std::size_t c = 0; c < conditions.size(); ++c) {
      for (std::size_t k = 0; k < columns.fields.size(); ++k) {
        std::string name = columns.fields[k];
        if (conditions.size() > 1)
          name = conditions[c].label.substr(0, conditions[c].label.find('/')) + "_" +
                 std::to_string(ObserverDegrees(conditions[c].observer)) + "_" + name;
        AddMeasurementColumn(set.file, name, written[c * columns.fields.size() + k]);
      }
    }
    const MeasurementStatus status = WriteMeasurementFile(parsed.Get("write"), set.file);
    if (!status) {
      io.err += "velquor: " + status.error.Message() + "\n";
      return kExitUsage;
    }
  }
  if (!EmitTable(parsed, table, io)) return kExitUsage;
  return result;
}

}  // namespace

int RunXyzCommand(CommandArgs args, CommandOutput& io) {
  return RunColour(args, io, true);
}
int RunLabCommand(CommandArgs args, CommandOutput& io) {
  return RunColour(args, io, false);
}

}  // namespace velquor::cli
