// Writes one panic record to "panic.log" and to standard error.
#include "main/console/panic_log.h"

#include <cstdio>
#include <cstring>
#include <ctime>

void WritePanic(const char* file, unsigned long line, int code, int errorNumber, const char* message) {
  const char* const text = message ? message : "";
  if (std::FILE* log = std::fopen("panic.log", "a+")) {
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
