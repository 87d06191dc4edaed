// The bare loop that a scan is compared with: popens FILE runs each command of the file (a zero byte behind each)
// with popen, one after the other, and reads what it prints.
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <string>

int main(int count, char** arguments) {
  std::ifstream commands(count == 2 ? arguments[1] : "");
  if (!commands) {
    std::fputs("popens FILE\n", stderr);
    return 2;
  }
  std::size_t total = 0;
  char chunk[65536];
  for (std::string command; std::getline(commands, command, '\0');) {
    std::FILE* stream = popen(command.c_str(), "r");
    if (!stream) return 1;
    for (std::size_t n = 1; (n = std::fread(chunk, 1, sizeof chunk, stream)) > 0;) total += n;
    pclose(stream);
  }
  std::printf("%zu bytes\n", total);
  return 0;
}
