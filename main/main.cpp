// The agent's entry point: options, the question before the scan, the scan, the exit status.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "main/console/panic_log.h"
#include "main/options.h"
#include "main/scan.h"

namespace {

constexpr int kStatusWrongAnswer = 1;
constexpr int kStatusPanic = 2;

// A standard stream that the caller closed would lend its number to the next file opened, the result included.
void OpenStandardStreams() {
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd)
    if (fcntl(fd, F_GETFD) == -1 && errno == EBADF) open("/dev/null", O_RDWR);
}

// Neither a reader that goes away nor a limit on the size of files may end the scan: what is written then fails. A
// handler, unlike SIG_IGN, is not handed on to the tools that are run.
void IgnoreSignal(int) {}

int RunAgent(int count, const char* const* arguments) {
  const Options options = ReadOptions(count, arguments);
  if (options.help) {
    PrintHelp();
    return 0;
  }
  if (!options.silent) {
    switch (AskToStart()) {
      case Answer::Yes:
        std::puts("Scan started...");
        std::fflush(stdout);
        break;
      case Answer::No:
        std::puts("Scan canceled.");
        return 0;
      case Answer::Other:
        std::puts("Incorrect input. Application terminated.");
        return kStatusWrongAnswer;
    }
  }
  Scan(options.settings, options.silent, options.debug, options.currentIp, options.login);
  return 0;
}

// Where an exception ends that found no memory for itself.
[[noreturn]] void Terminate() {
  WritePanic("main.cpp", __LINE__, kStatusPanic, errno, nullptr);
  std::_Exit(kStatusPanic);
}

}  // namespace

int main(int count, char** arguments) {
  std::set_terminate(Terminate);
  OpenStandardStreams();
  for (const int failedWrite : {SIGPIPE, SIGXFSZ}) std::signal(failedWrite, IgnoreSignal);
  try {
    return RunAgent(count, arguments);
  } catch (const std::exception& error) {
    WritePanic("main.cpp", __LINE__, kStatusPanic, errno, error.what());
  } catch (...) {
    WritePanic("main.cpp", __LINE__, kStatusPanic, errno, nullptr);
  }
  return kStatusPanic;
}
