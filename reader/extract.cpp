// Hands out one body byte for byte and makes sure that no INV file is lost to it.
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "reader/commands.h"
#include "reader/files.h"
#include "reader/run.h"
#include "reader/text.h"

namespace {

// True when all of `text` has reached the file.
bool PutIntoFile(const std::string& path, std::string_view text) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  return std::fclose(file) == 0 && written;
}

}  // namespace

std::size_t DefaultSection(const Document& document) {
  for (std::size_t i = 0; i < document.sections.size(); ++i)
    if (IsRaw(document.sections[i])) return i;
  return 0;
}

bool ExtractText(const Document& document, std::size_t section, std::string_view& text, std::string& trouble) {
  if (section >= document.sections.size()) {
    trouble = "there is no section " + std::to_string(section);
    return false;
  }
  const Section& found = document.sections[section];
  if (!found.record.inside || !found.body.whole) {
    trouble = "section " + std::to_string(section) + " is damaged; nothing was extracted";
    return false;
  }
  text = found.body.text;
  return true;
}

bool WriteExtract(std::string_view text, const std::string& path, std::string& trouble) {
  const bool standard = path.empty() || path == "-";
  if (!standard && IsInvFile(path)) {
    trouble = "this is an INV file; it is not written over";
    return false;
  }
  errno = 0;
  if (standard ? WriteData(text) : PutIntoFile(path, text)) return true;
  trouble = std::strerror(errno != 0 ? errno : EIO);
  return false;
}

namespace {

int RunExtract(const Arguments& arguments) {
  std::vector<std::string> paths;
  if (!ListExactly(arguments, "extract", 1, paths)) return kTrouble;
  const auto render = [&arguments](const Document& document, std::string&, std::string& trouble) {
    std::string_view text;
    if (!ExtractText(document, arguments.section.value_or(DefaultSection(document)), text, trouble)) return false;
    if (WriteExtract(text, arguments.output, trouble)) return true;
    trouble = Printable(arguments.output) + ": " + trouble;
    return false;
  };
  return ForEachFileOf(paths, arguments.limit, render, Parts::All);
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
