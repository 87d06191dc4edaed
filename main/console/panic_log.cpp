// Writes one panic record to "panic.log" and to standard error.
#include "main/console/panic_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <ctime>

namespace {

// The log, opened for appending; null when something else has its name: a link could lead to a file that is no log.
std::FILE* OpenLog() {
  const int file = open("panic.log", O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0666);
  if (file < 0) return nullptr;
  struct stat status;
  const bool own = fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1;
  std::FILE* const log = own ? fdopen(file, "a") : nullptr;
  if (!log) close(file);
  return log;
}

}  // namespace

void WritePanic(const char* file, unsigned long line, int code, int errorNumber, const char* message) {
  const char* const text = message ? message : "";
  if (std::FILE* log = OpenLog()) {
    std::fprintf(log,
                 "PANIC EXIT. Application: %s, Time: %lu, File: %s, Line: %lu, Code: #%i, Error: #%i (%s), "
                 "Message: \"%s\"\n",
                 "quillagent", static_cast<unsigned long>(std::time(nullptr)), file, line, code, errorNumber,
                 std::strerror(errorNumber), text);
    std::fclose(log);
  }
  std::fprintf(stderr, "Error at Line: %ld;\nErrnum: %d;\nFile name: %s;\nMessage: %s;\n Code: %d;\n",
               static_cast<long>(line), errorNumber, file, text, code);
}
