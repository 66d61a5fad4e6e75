// velquor: the library's command-line tool (commands.h).
#include <cstdio>
#include <string>
#include <vector>

#include "commands.h"

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  velquor::cli::CommandOutput io;
  const int status = velquor::cli::RunVelquor(args, io);
  std::fwrite(io.out.data(), 1, io.out.size(), stdout);
  std::fwrite(io.err.data(), 1, io.err.size(), stderr);
  return std::fflush(stdout) == 0 ? status : velquor::cli::kExitUsage;
}
