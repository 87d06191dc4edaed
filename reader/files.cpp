// Goes through folders without following the links in them, so that it comes to an end, and reads files in one go.
#include "reader/files.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

#include "reader/latest.h"
#include "reader/output.h"
#include "reader/text.h"
#include "zxml/inv_format.h"

namespace {

constexpr std::size_t kChunk = 65536;
constexpr std::string_view kSuffix = ".inv";
constexpr char kStandardInput[] = "-";

struct CloseFile {
  void operator()(std::FILE* file) const {
    if (file != stdin) std::fclose(file);
  }
};
struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};
using OpenFile = std::unique_ptr<std::FILE, CloseFile>;

std::string SystemWords() { return std::strerror(errno != 0 ? errno : EIO); }

OpenFile Open(const std::string& path) {
  errno = 0;
  return OpenFile(path == kStandardInput ? stdin : std::fopen(path.c_str(), "rb"));
}

bool IsFolder(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool IsInvName(std::string_view name) {
  return name.size() > kSuffix.size() && name.substr(name.size() - kSuffix.size()) == kSuffix;
}

// Adds the INV files of one folder to `paths` and its folders to `folders`. False when it cannot be read.
bool ReadFolder(const std::string& folder, std::vector<std::string>& paths, std::vector<std::string>& folders) {
  const std::unique_ptr<DIR, CloseFolder> open(opendir(folder.c_str()));
  if (!open) return false;
  while (const dirent* entry = readdir(open.get())) {
    const std::string name = entry->d_name;
    if (name == "." || name == "..") continue;
    const std::string path = folder + (folder.back() == '/' ? "" : "/") + name;
    struct stat status;
    if (lstat(path.c_str(), &status) != 0) continue;
    if (S_ISDIR(status.st_mode))
      folders.push_back(path);
    else if (IsInvName(name))
      paths.push_back(path);
  }
  return true;
}

// The rest of an open file. False, and plain words, when it cannot be read or has more than `limit` bytes.
bool ReadRest(std::FILE* file, std::size_t limit, std::string& bytes, std::string& trouble) {
  std::size_t got = kChunk;
  while (got == kChunk) {
    const std::size_t size = bytes.size();
    if (size > limit) {
      trouble = "gives more than the " + Bytes(limit) + " allowed (see --limit)";
      return false;
    }
    bytes.resize(size + kChunk);
    errno = 0;
    got = std::fread(&bytes[size], 1, kChunk, file);
    bytes.resize(size + got);
  }
  if (std::ferror(file) == 0) return true;
  trouble = SystemWords();
  return false;
}

bool AddFolder(const std::string& folder, std::vector<std::string>& paths) {
  bool sound = true;
  std::vector<std::string> found;
  std::vector<std::string> folders = {folder};
  while (!folders.empty()) {
    const std::string next = std::move(folders.back());
    folders.pop_back();
    errno = 0;
    if (ReadFolder(next, found, folders)) continue;
    Complain(next, SystemWords());
    sound = false;
  }
  if (found.empty() && sound) Complain(folder, "this folder holds no *.inv file");
  sound = sound && !found.empty();
  std::sort(found.begin(), found.end());
  std::move(found.begin(), found.end(), std::back_inserter(paths));
  return sound;
}

// The names in the list at `path`: one a line or, when it holds a zero byte, one up to each of those.
bool AddList(const std::string& path, std::size_t limit, std::vector<std::string>& names) {
  std::string list;
  std::string trouble;
  const OpenFile file = Open(path);
  if (!file) trouble = SystemWords();
  if (!file || !ReadRest(file.get(), limit, list, trouble)) {
    Complain(path, trouble);
    return false;
  }
  const char end = list.find('\0') == std::string::npos ? '\n' : '\0';
  for (std::size_t at = 0; at < list.size();) {
    const std::size_t next = std::min(list.find(end, at), list.size());
    if (next > at) names.push_back(list.substr(at, next - at));
    at = next + 1;
  }
  return true;
}

}  // namespace

bool ListFiles(const Arguments& arguments, std::vector<std::string>& paths) {
  std::vector<std::string> names = arguments.files;
  bool sound = arguments.filesFrom.empty() || AddList(arguments.filesFrom, arguments.limit, names);
  for (const std::string& name : names) {
    if (!IsFolder(name))
      paths.push_back(name);
    else
      sound = AddFolder(name, paths) && sound;
  }
  if (!arguments.latest) return sound;
  std::vector<std::string> latest;
  for (MacScan& scan : LatestScans(paths, arguments.limit)) latest.push_back(std::move(scan.path));
  paths = std::move(latest);
  return sound;
}

bool ListExactly(const Arguments& arguments, const char* command, std::size_t count, std::vector<std::string>& paths) {
  const bool listed = ListFiles(arguments, paths);
  if (paths.size() == count) return listed;
  Complain(command, "takes " + std::to_string(count) + (count == 1 ? " file" : " files") + ", not " +
                        std::to_string(paths.size()));
  return false;
}

bool IsInvFile(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  const OpenFile file = Open(path);
  char end[kInvMagic.size()] = {};
  return file && fseeko(file.get(), -static_cast<off_t>(sizeof end), SEEK_END) == 0 &&
         std::fread(end, 1, sizeof end, file.get()) == sizeof end && std::string_view(end, sizeof end) == kInvMagic;
}

bool ReadFile(const std::string& path, std::size_t limit, std::string& bytes, std::string& trouble) {
  bytes.clear();
  const OpenFile file = Open(path);
  struct stat status;
  if (!file || fstat(fileno(file.get()), &status) != 0) {
    trouble = SystemWords();
    return false;
  }
  const auto size = static_cast<std::uint64_t>(status.st_size);
  if (!S_ISREG(status.st_mode)) return ReadRest(file.get(), limit, bytes, trouble);
  if (size <= limit) {
    bytes.reserve(static_cast<std::size_t>(size) + kChunk);
    return ReadRest(file.get(), limit, bytes, trouble);
  }
  trouble = IsInvFile(path) ? "has " + Bytes(size) + ", more than the " + Bytes(limit) + " allowed (see --limit)"
                            : "has " + Bytes(size) + " and does not end like an INV file";
  return false;
}
