// Runs shell commands and reads what they print.
#include "main/collect/command_runner.h"

#include <algorithm>
#include <cstdio>
#include <memory>

const char kPlatformUuidCommand[] =
    "ioreg -rd1 -c IOPlatformExpertDevice | awk '/IOPlatformUUID/ { split($0, line, \"\\\"\"); "
    "printf(\"%s\", line[4]); }'";

namespace {

constexpr std::size_t kOutputLimit = std::size_t{256} << 20;
constexpr int kFirstReadAttempts = 3;

// Reads up to `size` bytes of the stream into `chunk` and appends them to `output`; the number of bytes read.
std::size_t ReadChunk(std::FILE* stream, char* chunk, std::size_t size, std::string& output) {
  const std::size_t count = std::fread(chunk, 1, size, stream);
  // Growing fourfold copies long outputs less often than doubling; what is reserved and never used takes no memory.
  if (output.capacity() - output.size() < count) output.reserve(output.capacity() * 4 + count);
  output.append(chunk, count);
  return count;
}

}  // namespace

std::string RunCommand(const std::string& command, std::size_t chunkSize) {
  std::string output;
  AppendCommandOutput(command, chunkSize, output);
  return output;
}

void AppendCommandOutput(const std::string& command, std::size_t chunkSize, std::string& output) {
  std::FILE* stream = popen(command.c_str(), "r");
  if (!stream) return;
  const std::size_t start = output.size();
  const std::unique_ptr<char[]> chunk(new char[chunkSize]), buffer(new char[chunkSize]);
  // A stream reads as much at a time as its buffer holds, and each read waits for the tool.
  if (chunkSize > BUFSIZ) std::setvbuf(stream, buffer.get(), _IOFBF, chunkSize);
  std::size_t count = 0;
  for (int attempt = 0; attempt < kFirstReadAttempts && count == 0; ++attempt)
    count = ReadChunk(stream, chunk.get(), chunkSize, output);
  while (count == chunkSize && output.size() - start <= kOutputLimit && !std::feof(stream))
    count = ReadChunk(stream, chunk.get(), chunkSize, output);
  pclose(stream);
  if (output.size() - start > kOutputLimit) output.resize(start);
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
  char chunk[1024];
  while ((size == 0 || text.size() < size) && !std::feof(file) && !std::ferror(file))
    ReadChunk(file, chunk, size ? std::min(size - text.size(), sizeof chunk) : sizeof chunk, text);
  outLength = size ? size : text.size();
  if (size) text.resize(std::min(text.find('\0'), text.size()));
  return text;
}
