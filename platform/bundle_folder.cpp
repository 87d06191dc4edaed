// Goes through a folder of bundles and reads their information files, which may be anything.
#include "platform/bundle_folder.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cstdio>

namespace {

// The kind of what is at `path`, links followed; 0 when there is nothing.
mode_t KindOf(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 ? status.st_mode & S_IFMT : 0;
}

}  // namespace

std::vector<std::string> FoldersIn(const std::string& folder) {
  std::vector<std::string> names;
  DIR* stream = opendir(folder.c_str());
  if (!stream) return names;
  while (const dirent* entry = readdir(stream)) {
    const std::string name = entry->d_name;
    if (name != "." && name != ".." && KindOf(folder + "/" + name) == S_IFDIR) names.push_back(name);
  }
  closedir(stream);
  return names;
}

std::vector<std::string> InformationFiles(const std::string& bundle, const std::string& name) {
  const bool hasInside = KindOf(bundle + "/Contents") == S_IFDIR || KindOf(bundle + "/Resources") == S_IFDIR;
  std::vector<std::string> files;
  for (const char* place : {"/Contents", "/Resources", "/Support Files", ""}) {
    const std::string path = bundle + place + "/" + name;
    if ((*place || !hasInside) && KindOf(path)) files.push_back(path);
  }
  return files;
}

std::optional<std::string> ReadInformation(const std::string& path) {
  if (KindOf(path) != S_IFREG) return std::nullopt;  // a pipe would keep the reader waiting
  std::FILE* file = std::fopen(path.c_str(), "r");
  if (!file) return std::nullopt;
  std::string text;
  char chunk[16384];
  for (std::size_t n = 1; n > 0 && text.size() <= kMaxInformationSize;) {
    n = std::fread(chunk, 1, sizeof chunk, file);
    text.append(chunk, n);
  }
  const bool failed = std::ferror(file) != 0;
  std::fclose(file);
  if (failed || text.size() > kMaxInformationSize) return std::nullopt;
  return text;
}
