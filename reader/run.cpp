// Goes through the files of a command, and words what went wrong with them.
#include "reader/run.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "reader/text.h"

namespace {

constexpr unsigned short kUsualRows = 24;  // of a terminal that does not say how many it has

bool WantsProgress(std::size_t total) {
  winsize size = {};
  if (!isatty(STDERR_FILENO) || isatty(STDOUT_FILENO)) return false;
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0) size.ws_row = kUsualRows;
  return total > size.ws_row;
}

}  // namespace

void Complain(const std::string& file, const std::string& words) {
  std::fprintf(stderr, "quillinv: %s: %s\n", Printable(file).c_str(), words.c_str());
}

void Write(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

bool Load(const std::string& path, std::size_t limit, Document& document) {
  std::string bytes;
  std::string trouble;
  if (!ReadFile(path, bytes, trouble)) {
    Complain(path, trouble);
    return false;
  }
  document = ReadDocument(path, bytes, limit);
  return true;
}

bool LoadSound(const std::string& path, std::size_t limit, Document& document) {
  if (!Load(path, limit, document)) return false;
  if (document.faults.empty()) return true;
  const std::size_t more = document.faults.size() - 1;
  const std::string rest = more == 0 ? "" : " (and " + std::to_string(more) + " more: see quillinv check)";
  Complain(path, FaultText(document.faults.front()) + rest);
  return false;
}

int ForEachPath(const Arguments& arguments, const std::function<int(const std::string& path)>& step) {
  const bool progress = WantsProgress(arguments.files.size());
  std::size_t done = 0;
  int status = kSound;
  for (const std::string& path : arguments.files) {
    status = std::max(status, step(path));
    ++done;
    if (progress) std::fprintf(stderr, "\r%zu of %zu files", done, arguments.files.size());
  }
  if (progress) std::fputs("\r\x1B[K", stderr);
  return status;
}

int ForEachFile(const Arguments& arguments, const Render& render) {
  return ForEachPath(arguments, [&arguments, &render](const std::string& path) {
    Document document;
    const int status = LoadSound(path, arguments.limit, document) ? kSound : kTrouble;
    if (document.sections.empty() && !document.container.whole) return status;
    std::string out;
    std::string trouble;
    const bool done = render(document, out, trouble);
    Write(out);
    if (done) return status;
    Complain(path, trouble);
    return kTrouble;
  });
}
