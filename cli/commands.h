// The commands of the `velquor` tool. Each takes its arguments (after the command name),
// writes what it shows into `io` and returns the exit code: 0 success, 1 some sample was
// rejected (or, for qc, some trial failed), 2 a usage or file error.
#pragma once

#include <span>
#include <string>

namespace velquor::cli {

inline constexpr int kExitSuccess = 0;
inline constexpr int kExitRejected = 1;
inline constexpr int kExitUsage = 2;

struct CommandOutput {
  std::string out;  // standard output
  std::string err;  // standard error
};

using CommandArgs = std::span<const std::string>;

int RunXyzCommand(CommandArgs args, CommandOutput& io);
int RunLabCommand(CommandArgs args, CommandOutput& io);
int RunDiffCommand(CommandArgs args, CommandOutput& io);
int RunQcCommand(CommandArgs args, CommandOutput& io);
int RunIndexCommand(CommandArgs args, CommandOutput& io);
int RunStrengthCommand(CommandArgs args, CommandOutput& io);
int RunDemoCommand(CommandArgs args, CommandOutput& io);

// The whole tool: `args` starts with the command name ("qc", "--help", "--version" ...).
int RunVelquor(CommandArgs args, CommandOutput& io);

}  // namespace velquor::cli
