// velquor: the library's command-line tool (commands.h).
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "commands.h"
#include "velquor/frame/message.h"

int main(int argc, char** argv) {
  // A command-line tool tells its user on standard error, never in a message box.
  velquor::SetMessageSink(velquor::WriteMessageToStandardError);
  const std::vector<std::string> args(argv + 1, argv + argc);
  velquor::cli::CommandOutput io;
  int status = velquor::cli::RunVelquor(args, io);
  // A full disk or a closed pipe must not pass for success: stdio reports a failed write in
  // the stream's error state, possibly only at the final flush.
  errno = 0;
  const bool written = std::fwrite(io.out.data(), 1, io.out.size(), stdout) == io.out.size();
  const bool flushed = std::fflush(stdout) == 0;
  if (!written || !flushed || std::ferror(stdout)) {
    const int reason = errno != 0 ? errno : EIO;
    io.err += std::string("velquor: standard output: ") + std::strerror(reason) + "\n";
    status = velquor::cli::kExitUsage;
  }
  std::fwrite(io.err.data(), 1, io.err.size(), stderr);
  return status;
}
