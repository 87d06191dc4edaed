// "OS": the installed system with its release name, version, kernel and uptime.
#include "sections/os.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "sections/items.h"
#include "sections/sections.h"
#include "zxml/value_text.h"

namespace {

constexpr std::array<const char*, 12> kReleaseNames = {
    "Mac OS X v10.0 (Cheetah)",      "Mac OS X v10.1 (Puma)",  "Mac OS X v10.2 (Jaguar)",
    "Mac OS X v10.3 (Panther)",      "Mac OS X v10.4 (Tiger)", "Mac OS X v10.5 (Leopard)",
    "Mac OS X v10.6 (Snow Leopard)", "Mac OS X v10.7 (Lion)",  "OS X v10.8 (Mountain Lion)",
    "OS X v10.9 (Mavericks)",        "OS X v10.10 (Yosemite)", "OS X v10.11 (El Capitan)",
};
constexpr int kFirst64BitRelease = 7;

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

// deliberate: always from the third character on, as if the minor number had one digit
std::string UpdateText(const std::string& tail) {
  const std::size_t blank = std::min(tail.find(' '), tail.size());
  if (tail.empty()) return std::string();
  if (blank == 0) return "Version(build) " + From(tail, 2);
  const std::uint32_t count = static_cast<std::uint32_t>(blank) - 2;  // deliberate: one character gives the whole rest
  const std::string update = From(tail, 2).substr(0, count);
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
  if (weight == 3600) return 86400;
  return weight < 3600 ? weight * 60 : weight;
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

const char* Architecture(const Tag& software, int minor) {
  const bool wide = minor >= kFirst64BitRelease || TextOfKey(software, "64bit_kernel_and_kexts") == "yes";
  return wide ? "64-bit" : "32-bit";
}

}  // namespace

OsRelease ReadOsRelease(const std::string& text) {
  // Positions are 32-bit: a search that fails wraps around when a distance is added (deliberate).
  const auto position = static_cast<std::uint32_t>(text.find("OS X"));
  const std::string tail = From(text, position + std::uint32_t{8});
  OsRelease release;
  release.minor = MinorNumber(tail);
  const bool known = release.minor >= 0 && release.minor < static_cast<int>(kReleaseNames.size());
  release.name = known ? kReleaseNames[static_cast<std::size_t>(release.minor)] : text;
  release.version = From(text, position + std::uint32_t{5});
  release.update = UpdateText(tail);
  return release;
}

std::string FormatUptime(const std::string& text) {
  const std::int64_t total = UptimeSeconds(text);
  char interval[64];
  std::snprintf(interval, sizeof interval, "%08lld%02d%02d%02d.000000:000", static_cast<long long>(total / 86400),
                static_cast<int>(total % 86400 / 3600), static_cast<int>(total % 3600 / 60),
                static_cast<int>(total % 3600 % 60));
  return interval;
}

void BuildOsSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* items = FindItems(rawTree, "SPSoftwareDataType");
  if (!items) return;
  const Tag& software = *items->children.front();
  const OsRelease release = ReadOsRelease(TextOfKey(software, "os_version"));
  Tag* os = SetChildValue(*GetOrAddChild(RootOf(inventoryTree), "OS"), "os:1", MakeTextValue(release.name));
  AddTagProperty(*os, "kind", "mac");
  SetAttribute(*os, "name", MakeTextValue(release.name));
  SetAttribute(*os, "version", MakeTextValue(release.version));
  if (!release.update.empty()) SetAttribute(*os, "update", MakeTextValue(release.update));
  CopyKey(software, *os, {"kernel_version", "kernel"});
  SetAttribute(*os, "manuf", MakeTextValue("Apple Inc."));
  SetAttribute(*os, "uptime", MakeTextValue(FormatUptime(TextOfKey(software, "uptime"))));
  SetAttribute(*os, "architecture", MakeTextValue(Architecture(software, release.minor)));
}
