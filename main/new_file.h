// New files in the working directory: what is written appears whole or not at all, and never by way of something that
// lies there already.
#pragma once

#include <string>

enum class NewFile { Made, Taken, Failed };

// A file whose name begins with ".", so that nobody takes it for a result; it is removed when this goes.
struct HiddenFile {
  HiddenFile() = default;
  HiddenFile(const HiddenFile&) = delete;
  HiddenFile& operator=(const HiddenFile&) = delete;
  ~HiddenFile();

  std::string name;  // empty while there is none
};

// Makes `file` a new hidden file that holds `content` and has reached the disk. False when that fails; nothing of it
// stays then.
bool WriteHiddenFile(const std::string& content, HiddenFile& file);

// Gives the hidden file a second name. Taken when anything has that name, a link included; Failed also where the file
// system has no hard links.
NewFile LinkHiddenFile(const HiddenFile& file, const std::string& name);

// Writes `content` to a new file of that name, for everyone to see while it grows, and on to the disk. Taken when
// anything has that name, a link included; when it fails, nothing of it stays.
NewFile WriteNewFile(const std::string& name, const std::string& content);
