// Hands out one body byte for byte and makes sure that no INV file is lost to it.
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "reader/commands.h"
#include "reader/run.h"

namespace {

// True for a regular file that ends like an INV file.
bool IsInvFile(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (!file) return false;
  char end[4] = {};
  const bool read = std::fseek(file, -4, SEEK_END) == 0 && std::fread(end, 1, sizeof end, file) == sizeof end;
  std::fclose(file);
  return read && std::memcmp(end, "INV!", sizeof end) == 0;
}

}  // namespace

std::size_t DefaultSection(const Document& document) {
  for (std::size_t i = 0; i < document.sections.size(); ++i)
    if (IsRaw(document.sections[i])) return i;
  return 0;
}

std::optional<std::string> ExtractText(const Document& document, std::size_t section, std::string& trouble) {
  if (section >= document.sections.size()) {
    trouble = "there is no section " + std::to_string(section);
    return std::nullopt;
  }
  const Section& found = document.sections[section];
  if (!found.record.inside || !found.body.whole) {
    trouble = "section " + std::to_string(section) + " is damaged; nothing was extracted";
    return std::nullopt;
  }
  return found.body.text;
}

bool WriteExtract(const std::string& text, const std::string& path, std::string& trouble) {
  const bool standard = path.empty() || path == "-";
  trouble = "this is an INV file; it is not written over";
  if (!standard && IsInvFile(path)) return false;
  errno = 0;
  std::FILE* file = standard ? stdout : std::fopen(path.c_str(), "wb");
  bool whole = file && std::fwrite(text.data(), 1, text.size(), file) == text.size();
  whole = file && std::fflush(file) == 0 && whole;
  if (file && !standard) whole = std::fclose(file) == 0 && whole;
  trouble = whole ? "" : std::strerror(errno ? errno : EIO);
  return whole;
}

namespace {

int RunExtract(const Arguments& arguments) {
  return ForEachFile(arguments, [&arguments](const Document& document, std::string&, std::string& trouble) {
    const auto text = ExtractText(document, arguments.section.value_or(DefaultSection(document)), trouble);
    if (!text) return false;
    if (WriteExtract(*text, arguments.output, trouble)) return true;
    trouble = arguments.output + ": " + trouble;
    return false;
  });
}

}  // namespace

const Command kExtractCommand = {
    "extract",
    RunExtract,
    1,
    "Write one section's body, inflated: the raw document of a debug scan, else section 0.",
    "Examples:\n  quillinv extract DEBUG_001EC2AABBCC.inv -o profiler.plist\n"
    "  quillinv extract --section 1 MYMAC_001EC2AABBCC.inv",
    {{"--section", &Arguments::section, "Number of the section"},
     {"-o,--output", &Arguments::output, "File to write; standard output when missing"}}};
