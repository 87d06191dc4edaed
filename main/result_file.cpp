// Names the result file after the computer, saves the container and reports it.
#include "main/result_file.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "main/console/console_log.h"
#include "main/new_file.h"
#include "zxml/value_text.h"

namespace {

constexpr std::size_t kNameLimit = 255;  // bytes of a file's name on most disks
constexpr std::size_t kStemLimit = kNameLimit - (sizeof "(12345678).inv" - 1);

// A working directory that cannot be named counts as ".".
std::string WorkingDirectory() {
  char* name = getcwd(nullptr, 0);
  std::string directory = name ? name : ".";
  std::free(name);
  return directory;
}

// How many bytes at `text[at]` are a control character, in ASCII or as U+0080 to U+009F; 0 for none.
std::size_t ControlSize(const std::string& text, std::size_t at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte < 0x20 || byte == 0x7F) return 1;
  const auto next = static_cast<unsigned char>(at + 1 < text.size() ? text[at + 1] : 0);
  return byte == 0xC2 && next >= 0x80 && next <= 0x9F ? 2 : 0;
}

bool ContinuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// The text as a part of a file's name: "/" and control characters become "_", and what `limit` bytes do not hold is
// cut off, at a character.
std::string FileNamePart(const std::string& text, std::size_t limit) {
  std::string part;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t control = text[at] == '/' ? 1 : ControlSize(text, at);
    part += control > 0 ? '_' : text[at];
    at += std::max<std::size_t>(control, 1);
  }
  if (part.size() <= limit) return part;
  constexpr std::size_t kMostContinuations = 3;
  const std::size_t least = limit - std::min(limit, kMostContinuations);
  while (limit > least && ContinuesCharacter(part[limit])) --limit;
  return part.substr(0, limit);
}

std::string Stem(const AssetIdentity& identity) {
  std::string address = identity.macAddress;
  address.erase(std::remove(address.begin(), address.end(), '-'), address.end());
  address = "_" + FileNamePart(address, kStemLimit - 1);
  return FileNamePart(UpperCase(NameOf(identity)), kStemLimit - address.size()) + address;
}

// Moves the number on until the attempt does not find its name taken.
template <typename Attempt>
NewFile AtFreeName(ResultPath& path, Attempt attempt) {
  NewFile outcome = attempt(FileName(path));
  while (outcome == NewFile::Taken) {
    ++path.number;
    outcome = attempt(FileName(path));
  }
  return outcome;
}

bool Save(const std::string& content, ResultPath& path) {
  {
    HiddenFile hidden;
    if (!WriteHiddenFile(content, hidden)) return false;
    const auto link = [&hidden](const std::string& name) { return LinkHiddenFile(hidden, name); };
    if (AtFreeName(path, link) == NewFile::Made) return true;
  }
  // A file system without hard links: the name is taken at once, and the file grows under it.
  const auto write = [&content](const std::string& name) { return WriteNewFile(name, content); };
  return AtFreeName(path, write) == NewFile::Made;
}

}  // namespace

std::string FileName(const ResultPath& path) {
  std::string name = path.stem;
  if (path.number > 0) name += "(" + std::to_string(path.number) + ")";
  return name += ".inv";
}

ResultPath ChooseResultPath(const AssetIdentity& identity) {
  ResultPath path;
  path.stem = Stem(identity);
  path.directory = WorkingDirectory();
  while (FileExists(FileName(path))) ++path.number;
  return path;
}

void SaveResult(InvFile& inv, ResultPath path, bool silent) {
  const bool saved = Save(BuildInvBuffer(inv, true), path);
  const std::string name = FileName(path);
  const std::string full = path.directory + "/" + name;
  if (!saved)
    std::fprintf(stderr, "Cannot create file :%s\n", full.c_str());
  else if (silent)
    LogLine(">>>%s\n", name.c_str());
  else
    LogLine("\nScan finished. Results saved to file \"%s\"\n", full.c_str());
}
