// Runs shell commands and reads what they print.
#include "main/collect/command_runner.h"

#include <algorithm>
#include <cstdio>

const char kPlatformUuidCommand[] =
    "ioreg -rd1 -c IOPlatformExpertDevice | awk '/IOPlatformUUID/ { split($0, line, \"\\\"\"); "
    "printf(\"%s\", line[4]); }'";

namespace {

constexpr std::size_t kOutputLimit = std::size_t{256} << 20;
constexpr int kFirstReadAttempts = 3;

// Appends up to `chunkSize` bytes of the stream to `output`; the number of bytes read.
std::size_t ReadChunk(std::FILE* stream, std::size_t chunkSize, std::string& output) {
  const std::size_t before = output.size();
  output.resize(before + chunkSize);
  const std::size_t count = std::fread(&output[before], 1, chunkSize, stream);
  output.resize(before + count);
  return count;
}

}  // namespace

std::string RunCommand(const std::string& command, std::size_t chunkSize) {
  std::FILE* stream = popen(command.c_str(), "r");
  std::string output;
  if (!stream) return output;
  std::size_t count = 0;
  for (int attempt = 0; attempt < kFirstReadAttempts && count == 0; ++attempt)
    count = ReadChunk(stream, chunkSize, output);
  while (count == chunkSize && output.size() <= kOutputLimit && !std::feof(stream))
    count = ReadChunk(stream, chunkSize, output);
  pclose(stream);
  if (output.size() > kOutputLimit) output.clear();
  return output;
}

std::string ReadWholeFile(const std::string& path, std::size_t& outLength) {
  outLength = 0;
  std::FILE* file = std::fopen(path.c_str(), "r");  // deliberate: stays open
  std::string text;
  if (!file) return text;
  std::fseek(file, 0, SEEK_END);
  const long end = std::ftell(file);
  std::fseek(file, 0, SEEK_SET);
  const std::size_t size = end > 0 ? static_cast<std::size_t>(end) : 0;
  while ((size == 0 || text.size() < size) && !std::feof(file) && !std::ferror(file))
    ReadChunk(file, size ? std::min<std::size_t>(size - text.size(), 65536) : 1024, text);
  outLength = size ? size : text.size();
  if (size) text.resize(std::min(text.find('\0'), text.size()));
  return text;
}
