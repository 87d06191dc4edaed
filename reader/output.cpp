// Writes without a buffer of its own: what a command has for a file is one text, and few system calls take it.
#include "reader/output.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <utility>
#include <vector>

#include "reader/text.h"

namespace {

constexpr unsigned short kUsualRows = 24;  // of a terminal that does not say how many it has

struct Progress {
  bool shown = false;
  std::size_t total = 0;
  std::size_t done = 0;
  std::vector<std::string> messages;
};

Progress progress;
bool allWritten = true;

bool WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

// The bytes at the front of `text` that go out together: as many whole lines as a pipe takes in one piece, one at
// least.
std::size_t PieceSize(std::string_view text) {
  if (text.size() <= PIPE_BUF) return text.size();
  const std::size_t within = text.rfind('\n', PIPE_BUF - 1);
  const std::size_t end = within != std::string_view::npos ? within : text.find('\n');
  return end != std::string_view::npos ? end + 1 : text.size();
}

}  // namespace

bool Write(std::string_view text) {
  while (allWritten && !text.empty()) {
    const std::size_t size = PieceSize(text);
    allWritten = WriteAll(STDOUT_FILENO, text.substr(0, size));
    text.remove_prefix(size);
  }
  return allWritten;
}

bool WriteData(std::string_view text) {
  static const bool terminal = isatty(STDOUT_FILENO) != 0;
  return Write(terminal ? PrintableLines(text) : std::string(text));
}

bool AllWritten() { return allWritten; }

void WriteError(std::string_view text) { WriteAll(STDERR_FILENO, text); }

void Complain(const std::string& file, const std::string& words) {
  const std::string message = "quillinv: " + Printable(file) + ": " + words + "\n";
  if (progress.shown)
    progress.messages.push_back(message);
  else
    WriteError(message);
}

void StartProgress(std::size_t total) {
  winsize size = {};
  if (isatty(STDERR_FILENO) == 0 || isatty(STDOUT_FILENO) != 0) return;
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0) size.ws_row = kUsualRows;
  progress = {total > size.ws_row, total, 0, std::move(progress.messages)};
}

void CountFile() {
  ++progress.done;
  if (!progress.shown) return;
  const std::string faults =
      progress.messages.empty() ? "" : ", " + std::to_string(progress.messages.size()) + " with faults";
  WriteError("\r" + std::to_string(progress.done) + " of " + std::to_string(progress.total) + " files" + faults);
}

void EndProgress() {
  if (!progress.shown) return;
  WriteError("\r\x1B[K");
  progress.shown = false;
  for (const std::string& message : progress.messages) WriteError(message);
  progress.messages.clear();
}
