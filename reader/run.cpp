// Goes through the files of a command, and words what went wrong with them.
#include "reader/run.h"

#include <algorithm>
#include <new>
#include <vector>

#include "reader/files.h"

namespace {

constexpr char kNoMemory[] = "there is not enough memory for this file";

}  // namespace

bool Load(const std::string& path, std::size_t limit, Document& document, Parts parts) {
  std::string bytes;
  std::string trouble;
  if (!ReadFile(path, limit, bytes, trouble)) {
    Complain(path, trouble);
    return false;
  }
  document = ReadDocument(path, bytes, limit, parts);
  return true;
}

bool LoadSound(const std::string& path, std::size_t limit, Document& document, Parts parts) {
  if (!Load(path, limit, document, parts)) return false;
  if (document.faults.empty()) return true;
  const std::size_t more = document.faults.size() - 1;
  const std::string rest = more == 0 ? "" : " (and " + std::to_string(more) + " more: see quillinv check)";
  Complain(path, FaultText(document.faults.front()) + rest);
  return false;
}

int ForEachOf(const std::vector<std::string>& paths, const std::function<int(const std::string& path)>& step) {
  int status = kSound;
  StartProgress(paths.size());
  for (const std::string& path : paths) {
    if (!AllWritten()) break;
    try {
      status = std::max(status, step(path));
    } catch (const std::bad_alloc&) {
      Complain(path, kNoMemory);
      status = kTrouble;
    }
    CountFile();
  }
  EndProgress();
  return status;
}

int ForEachPath(const Arguments& arguments, const std::function<int(const std::string& path)>& step) {
  std::vector<std::string> paths;
  const int listed = ListFiles(arguments, paths) ? kSound : kTrouble;
  return std::max(listed, ForEachOf(paths, step));
}

int ForEachFileOf(const std::vector<std::string>& paths, std::size_t limit, const Render& render, Parts parts) {
  return ForEachOf(paths, [limit, &render, parts](const std::string& path) {
    Document document;
    const int status = LoadSound(path, limit, document, parts) ? kSound : kTrouble;
    if (document.sections.empty() && !document.container.whole) return status;
    std::string out;
    std::string trouble;
    const bool done = render(document, out, trouble);
    WriteData(out);
    if (done) return status;
    Complain(path, trouble);
    return kTrouble;
  });
}

int ForEachFile(const Arguments& arguments, const Render& render, Parts parts) {
  std::vector<std::string> paths;
  const int listed = ListFiles(arguments, paths) ? kSound : kTrouble;
  return std::max(listed, ForEachFileOf(paths, arguments.limit, render, parts));
}
