// External tools: one shell command in, everything that it wrote to standard output out.
#pragma once

#include <cstddef>
#include <string>

// The command's standard output, which may hold any bytes, read `chunkSize` bytes at a time; waits until the command
// ends. Empty when it cannot be started, prints nothing, or prints more than 256 MiB. Its exit status is not looked at.
std::string RunCommand(const std::string& command, std::size_t chunkSize);
// The same, appended to `output`: for a tool whose output is long and only a part of something longer.
void AppendCommandOutput(const std::string& command, std::size_t chunkSize, std::string& output);

// The text of a file up to its first zero byte, empty when it cannot be opened; `outLength` is the size of the whole
// file, or the bytes read from one that does not know its size.
std::string ReadWholeFile(const std::string& path, std::size_t& outLength);

// Prints the UUID of the platform, without a line break.
extern const char kPlatformUuidCommand[];
constexpr std::size_t kPlatformUuidChunk = 40;
