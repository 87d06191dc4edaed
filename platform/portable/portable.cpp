// The platform outside macOS: property lists are read here and by libplist, time comes from the C library, and what a
// Mac's frameworks would say from the recording named by QUILL_RECORDING, or else from the machine itself.
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <utility>

#include "platform/bundle_folder.h"
#include "platform/platform.h"
#include "platform/plist_limits.h"
#include "platform/portable/plist_binary.h"
#include "platform/portable/plist_xml.h"

namespace {

constexpr double kEpoch2001 = 978307200.0;  // 2001-01-01 00:00 UTC in seconds since 1970
constexpr double kMostSeconds = 3e13;       // about a million years either way

// The recording's folder, null when none is played.
const char* Recording() {
  const char* folder = std::getenv("QUILL_RECORDING");
  return folder && *folder ? folder : nullptr;
}

std::string ReadFile(const std::string& path) {
  std::string text;
  std::FILE* file = std::fopen(path.c_str(), "r");
  if (!file) return text;
  char chunk[16384];
  for (std::size_t n = 1; (n = std::fread(chunk, 1, sizeof chunk, file)) > 0;) text.append(chunk, n);
  std::fclose(file);
  return text;
}

// A number that is not negative in decimal, with leading zeros up to `width`; dates are many, and printf is slow.
std::string Digits(int number, std::size_t width) {
  for (int more = number / 10000; width >= 4 && more > 0; more /= 10) ++width;
  std::string text(width, '0');
  for (std::size_t i = width; i > 0; --i, number /= 10) text[i - 1] = static_cast<char>('0' + number % 10);
  return text;
}

// "<pid> <ppid> <name>", the name being the rest of the line.
bool ParseRecordedProcess(const std::string& line, ProcessRecord& record) {
  int end = 0;
  if (std::sscanf(line.c_str(), "%d %d%n", &record.pid, &record.parentPid, &end) < 2) return false;
  const auto nameAt = static_cast<std::size_t>(end) + 1;
  record.name = nameAt < line.size() ? line.substr(nameAt) : std::string();
  return true;
}

ProcessTable RecordedProcesses(const std::string& recording) {
  ProcessTable table;
  const std::string text = ReadFile(recording + "/processes.txt");
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    ProcessRecord record;
    if (ParseRecordedProcess(text.substr(start, end - start), record)) table.records.push_back(std::move(record));
    start = end + 1;
  }
  return table;
}

// "<pid> (<name>) <state> <ppid> ..."; the name may hold parentheses of its own.
bool ParseProcStat(const std::string& text, ProcessRecord& record) {
  const std::size_t open = text.find('('), close = text.rfind(')');
  if (open == std::string::npos || close == std::string::npos || close < open) return false;
  record.name = text.substr(open + 1, close - open - 1);
  char state = 0;
  return std::sscanf(text.c_str(), "%d", &record.pid) == 1 &&
         std::sscanf(text.c_str() + close + 1, " %c %d", &state, &record.parentPid) == 2;
}

std::optional<ProcessTable> MachineProcesses() {
  ProcessTable table;
  const std::vector<std::string> folders = FoldersIn("/proc");
  if (std::find(folders.begin(), folders.end(), "self") == folders.end()) return std::nullopt;
  for (const std::string& name : folders) {
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    ProcessRecord record;
    if (ParseProcStat(ReadFile("/proc/" + name + "/stat"), record)) table.records.push_back(std::move(record));
  }
  std::sort(table.records.begin(), table.records.end(),
            [](const ProcessRecord& a, const ProcessRecord& b) { return a.pid < b.pid; });
  return table;
}

PropertyList ParseDocument(std::string_view document, std::size_t mostBinaryValues) {
  return IsBinaryPropertyList(document) ? ReadBinaryList(document, mostBinaryValues) : ReadXmlList(document);
}

// What a bundle says of itself, taken off the values that its folder may still have; Null when that is nothing, or more
// than those.
PropertyList InformationOf(const std::string& bundle, std::size_t& valuesLeft) {
  const std::vector<std::string> files = InformationFiles(bundle);
  const std::optional<std::string> document = files.empty() ? std::nullopt : ReadInformation(files.front());
  if (!document) return PropertyList();
  PropertyList information = ParseDocument(*document, valuesLeft);
  if (information.kind != PropertyListKind::Dictionary || information.items.empty()) return PropertyList();
  const std::size_t values = CountValues(information);
  if (values > valuesLeft) return PropertyList();
  valuesLeft -= values;
  return information;
}

}  // namespace

PropertyList ParsePropertyList(std::string_view document) {
  PropertyList list = ParseDocument(document, kMaxBinaryValues);
  return list.kind == PropertyListKind::Array ? std::move(list) : PropertyList();
}

std::string FormatLocalTime(double seconds, DateForm form) {
  const double sinceUnix = std::floor(seconds + kEpoch2001);
  if (!(std::fabs(sinceUnix) < kMostSeconds)) return std::string();
  const auto moment = static_cast<std::time_t>(sinceUnix);
  struct tm local;
  if (!localtime_r(&moment, &local) || local.tm_year + 1900 < 0) return std::string();
  const char* const dash = form == DateForm::Short ? "-" : "";
  std::string text =
      Digits(local.tm_year + 1900, 4) + dash + Digits(local.tm_mon + 1, 2) + dash + Digits(local.tm_mday, 2);
  if (form == DateForm::Short) return text;
  const int offset = static_cast<int>(std::labs(local.tm_gmtoff) / 60);
  text += Digits(local.tm_hour, 2) + Digits(local.tm_min, 2) + Digits(local.tm_sec, 2) + ".000000 ";
  return text + (local.tm_gmtoff < 0 ? '-' : '+') + Digits(offset / 60, 2) + Digits(offset % 60, 2);
}

double CurrentTime() {
  struct timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9 - kEpoch2001;
}

std::string ComputerName() {
  if (const char* recording = Recording()) {
    std::string name = ReadFile(std::string(recording) + "/computer-name.txt");
    if (!name.empty() && name.back() == '\n') name.pop_back();
    return name;
  }
  char name[256] = "";
  if (gethostname(name, sizeof name - 1) != 0) return std::string();
  return name;
}

std::optional<ProcessTable> ReadProcessTable() {
  if (const char* recording = Recording()) return RecordedProcesses(recording);
  return MachineProcesses();
}

void ForEachBundle(const std::string& folder, const std::function<void(const Bundle&)>& take) {
  const char* recording = Recording();
  const std::string place = recording ? recording + folder : folder;
  std::vector<std::string> names = FoldersIn(place);
  std::sort(names.begin(), names.end());
  std::size_t valuesLeft = kMaxInformationValues;
  for (const std::string& name : names)
    take({name, folder + "/" + name, InformationOf(place + "/" + name, valuesLeft)});
}
