// Small output helpers that the whole agent shares.
#pragma once

#include <cstdarg>
#include <string>

// Replaces `result` by the formatted text, up to its first zero byte.
void FormatToString(std::string& result, const char* format, ...) __attribute__((format(printf, 2, 3)));

// Characters that a format produces, from values or from a started list (which stays usable).
int MeasureFormat(const char* format, ...) __attribute__((format(printf, 1, 2)));
int MeasureFormatList(const char* format, va_list values) __attribute__((format(printf, 1, 0)));

// Prints to standard output and flushes it, so that a step shows up before its work starts.
void LogLine(const char* format, ...) __attribute__((format(printf, 1, 2)));

// True when a file of that path can be opened for reading; does not wait for the other end of a pipe.
bool FileExists(const std::string& path);
