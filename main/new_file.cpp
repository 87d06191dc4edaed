// Writes new files: opened exclusively, flushed, removed again when something fails on the way.
#include "main/new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace {

constexpr mode_t kUsualMode = 0666;  // less what the umask takes away

bool WriteAll(int file, const std::string& content) {
  std::size_t done = 0;
  while (done < content.size()) {
    const ssize_t written = write(file, content.data() + done, content.size() - done);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    done += static_cast<std::size_t>(written);
  }
  return true;
}

// Some file systems have nothing to flush and say so.
bool Flush(int file) { return fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP; }

std::string HiddenName(int attempt) {
  return ".quillagent-" + std::to_string(getpid()) + "-" + std::to_string(attempt);
}

}  // namespace

NewFile WriteNewFile(const std::string& name, const std::string& content) {
  const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL, kUsualMode);
  if (file < 0) return errno == EEXIST ? NewFile::Taken : NewFile::Failed;
  const bool written = WriteAll(file, content) && Flush(file);
  const bool whole = close(file) == 0 && written;
  if (!whole) unlink(name.c_str());
  return whole ? NewFile::Made : NewFile::Failed;
}

HiddenFile::~HiddenFile() {
  if (!name.empty()) unlink(name.c_str());
}

bool WriteHiddenFile(const std::string& content, HiddenFile& file) {
  std::string name = HiddenName(0);
  NewFile outcome = WriteNewFile(name, content);
  for (int attempt = 1; outcome == NewFile::Taken; ++attempt) {
    name = HiddenName(attempt);
    outcome = WriteNewFile(name, content);
  }
  if (outcome == NewFile::Made) file.name = std::move(name);
  return outcome == NewFile::Made;
}

NewFile LinkHiddenFile(const HiddenFile& file, const std::string& name) {
  if (link(file.name.c_str(), name.c_str()) == 0) return NewFile::Made;
  return errno == EEXIST ? NewFile::Taken : NewFile::Failed;
}
