// "OS": the installed system with its release name, version, kernel and uptime.
#include "sections/os.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

#include "main/collect/modern_keys.h"
#include "main/collect/release_names.h"
#include "sections/inventory_tags.h"
#include "sections/raw_items.h"
#include "sections/sections.h"
#include "zxml/maker.h"
#include "zxml/value_text.h"

namespace {

constexpr int kFirst64BitRelease = 7;                             // Lion
constexpr std::int64_t kMinute = 60, kHour = 3600, kDay = 86400;  // in seconds

// Distances from the "OS X" of a version such as "OS X 10.9.5 (13F34)".
constexpr std::uint32_t kToVersion = 5;      // "10.9.5 (13F34)"
constexpr std::uint32_t kToMinorNumber = 8;  // "9.5 (13F34)"
constexpr std::uint32_t kToUpdate = 2;       // from the minor number, as if it had one digit

std::string From(const std::string& text, std::size_t start) {
  return start < text.size() ? text.substr(start) : std::string();
}

// The number at the start of a text, as atoi reads it.
int WholeNumber(const std::string& text) {
  const long number = std::strtol(text.c_str(), nullptr, 10);
  return static_cast<int>(std::clamp<long>(number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

// `tail` begins with the minor version number, as in "9.5 (13F34)".
int MinorNumber(const std::string& tail) {
  std::size_t end = tail.find('.');
  if (end == std::string::npos) end = tail.find(' ');
  return WholeNumber(tail.substr(0, end));
}

// deliberate: always at the same distance, whatever the minor number
std::string UpdateText(const std::string& tail) {
  const std::size_t blank = std::min(tail.find(' '), tail.size());
  if (tail.empty()) return std::string();
  if (blank == 0) return "Version(build) " + From(tail, kToUpdate);
  const std::uint32_t count = static_cast<std::uint32_t>(blank) - kToUpdate;  // deliberate: wraps at a single digit
  const std::string update = From(tail, kToUpdate).substr(0, count);
  return update.empty() ? std::string() : "Update " + update;
}

std::int64_t AddWithinLimits(std::int64_t a, std::int64_t b) {
  std::int64_t sum = 0;
  return __builtin_add_overflow(a, b, &sum) ? std::numeric_limits<std::int64_t>::max() : sum;
}

std::int64_t MultiplyWithinLimits(std::int64_t a, std::int64_t b) {
  std::int64_t product = 0;
  return __builtin_mul_overflow(a, b, &product) ? std::numeric_limits<std::int64_t>::max() : product;
}

std::int64_t NextWeight(std::int64_t weight) {
  if (weight == kHour) return kDay;
  return weight < kHour ? weight * 60 : weight;
}

// Seconds in a text of colon-separated fields behind a word and a blank, read from its end.
// deliberate: the first character is never read, and reaching it drops the field in hand
std::int64_t UptimeSeconds(const std::string& text) {
  std::int64_t total = 0, weight = 1, field = 0;
  int digit = 0;
  for (std::size_t i = text.size(); i > 1;) {
    const char c = text[--i];
    if (c != ':' && c != ' ') {
      const int value = c >= '0' && c <= '9' ? c - '0' : 0;
      field = AddWithinLimits(TruncateToInt64(value * std::pow(10.0, digit++)), field);
      continue;
    }
    total = AddWithinLimits(total, MultiplyWithinLimits(field, weight));
    if (c == ' ') break;
    weight = NextWeight(weight);
    field = 0;
    digit = 0;
  }
  return total;
}

// By the plain keys of a newer system, where they are there.
OsRelease ReleaseOf(const Tag& software) {
  const Tag* system = FindChild(software, kSystemKey);
  if (!system) return ReadOsRelease(TextOfKey(software, "os_version"));
  OsRelease release;
  release.name = TextOfKey(*system, "name");
  release.version = TextOfKey(*system, "version");
  release.update = TextOfKey(*system, "update");
  return release;
}

const char* Architecture(const Tag& software, int minor) {
  const bool wide = minor >= kFirst64BitRelease || TextOfKey(software, "64bit_kernel_and_kexts") == "yes";
  return wide ? "64-bit" : "32-bit";
}

}  // namespace

OsRelease ReadOsRelease(const std::string& text) {
  // Positions are 32-bit: a search that fails wraps around when a distance is added (deliberate).
  const auto position = static_cast<std::uint32_t>(text.find("OS X"));
  const std::string tail = From(text, position + kToMinorNumber);
  OsRelease release;
  release.minor = MinorNumber(tail);
  const bool known = release.minor >= 0 && release.minor < static_cast<int>(kReleaseNames.size());
  release.name = known ? kReleaseNames[static_cast<std::size_t>(release.minor)] : text;
  release.version = From(text, position + kToVersion);
  release.update = UpdateText(tail);
  return release;
}

std::string FormatUptime(const std::string& text) {
  const std::int64_t total = UptimeSeconds(text);
  char interval[64];
  std::snprintf(interval, sizeof interval, "%08lld%02d%02d%02d.000000:000", static_cast<long long>(total / kDay),
                static_cast<int>(total % kDay / kHour), static_cast<int>(total % kHour / kMinute),
                static_cast<int>(total % kMinute));
  return interval;
}

void BuildOsSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* software = FirstItem(rawTree, "SPSoftwareDataType");
  if (!software) return;
  const OsRelease release = ReleaseOf(*software);
  Tag* os = SetChildValue(*GetOrAddChild(RootOf(inventoryTree), "OS"), "os:1", MakeTextValue(release.name));
  AddTagProperty(*os, "kind", "mac");
  SetText(*os, "name", release.name);
  SetText(*os, "version", release.version);
  if (!release.update.empty()) SetText(*os, "update", release.update);
  CopyKey(*software, *os, {"kernel_version", "kernel"});
  SetText(*os, "manuf", kMaker);
  SetText(*os, "uptime", FormatUptime(TextOfKey(*software, "uptime")));
  SetText(*os, "architecture", Architecture(*software, release.minor));
}
