#include "commands.h"

#include "velquor/frame/version.h"

namespace velquor::cli {

namespace {

constexpr const char* kUsage =
    "usage: velquor <command> [options] [files]\n"
    "\n"
    "commands:\n"
    "  xyz FILE                  tristimulus values X, Y, Z and chromaticity x, y\n"
    "  lab FILE                  coordinates in Lab, LCh, Luv, Hunter Lab, DIN99, Yxy or RGB\n"
    "  diff STANDARD TRIALS      colour differences in any of thirteen systems\n"
    "  qc STANDARD TRIALS        pass/fail report against a tolerance, several illuminants\n"
    "  index FILE --index LIST   whiteness, yellowness, tint and other indices\n"
    "  strength STANDARD TRIALS  colour strength of each trial against the standard\n"
    "  demo                      the qc report on sample data embedded in the tool\n"
    "\n"
    "FILE, STANDARD and TRIALS are CGATS.17 text files or CSV files (.csv) of spectra.\n"
    "Output: aligned text, or --csv[=FILE], --json[=FILE], --html FILE.\n"
    "'velquor <command> --help' describes a command; 'velquor --version' prints the version.\n";

}  // namespace

int RunVelquor(CommandArgs args, CommandOutput& io) {
  if (args.empty()) {
    io.err += kUsage;
    return kExitUsage;
  }
  const std::string& command = args[0];
  const CommandArgs rest = args.subspan(1);
  if (command == "--version" || command == "version") {
    io.out += std::string("velquor ") + GetVersionString() + "\n";
    return kExitSuccess;
  }
  if (command == "--help" || command == "-h" || command == "help") {
    io.out += kUsage;
    return kExitSuccess;
  }
  struct Entry {
    const char* name;
    int (*run)(CommandArgs, CommandOutput&);
  };
  constexpr Entry kCommands[] = {
      {"xyz", RunXyzCommand},   {"lab", RunLabCommand},     {"diff", RunDiffCommand},
      {"qc", RunQcCommand},     {"index", RunIndexCommand}, {"strength", RunStrengthCommand},
      {"demo", RunDemoCommand},
  };
  for (const Entry& entry : kCommands) {
    if (command == entry.name) return entry.run(rest, io);
  }
  io.err += "velquor: unknown command '" + command + "'\n" + kUsage;
  return kExitUsage;
}

}  // namespace velquor::cli
