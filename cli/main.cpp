// velquor: the library's command-line tool (commands.h).
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "commands.h"
#include "velquor/frame/message.h"

int main(int argc, char** argv) {
#if defined(__GLIBC__)
  // A large batch allocates and frees its file text and per-sample buffers in turn: keep
  // freed memory in the heap for the next allocation instead of handing it back to the
  // system and faulting fresh pages in again (a third of the time of reading 100,000 spectra).
  mallopt(M_MMAP_THRESHOLD, 256 * 1024 * 1024);
  mallopt(M_TRIM_THRESHOLD, 512 * 1024 * 1024);
#endif
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
