// Formatting into a string, a log line that shows at once, and the question whether a file exists.
#include "main/console/console_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

void FormatToString(std::string& result, const char* format, ...) {
  va_list values, again;
  va_start(values, format);
  va_copy(again, values);
  const int size = MeasureFormatList(format, values);
  std::string text(size > 0 ? static_cast<std::size_t>(size) + 1 : 1, '\0');
  if (size > 0) std::vsnprintf(text.data(), text.size(), format, again);
  va_end(again);
  va_end(values);
  text.resize(text.find('\0'));
  result = std::move(text);
}

int MeasureFormat(const char* format, ...) {
  va_list values;
  va_start(values, format);
  const int size = MeasureFormatList(format, values);
  va_end(values);
  return size;
}

int MeasureFormatList(const char* format, va_list values) {
  va_list again;
  va_copy(again, values);
  const int size = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  return size;
}

void LogLine(const char* format, ...) {
  va_list values;
  va_start(values, format);
  std::vprintf(format, values);
  va_end(values);
  std::fflush(stdout);
}

bool FileExists(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
  if (file >= 0) close(file);
  return file >= 0;
}
