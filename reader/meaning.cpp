// Two tables, by tag and attribute: units, and codes.
#include "reader/meaning.h"

#include <cstdint>

#include "reader/text.h"

namespace {

constexpr std::string_view kAnyTag;  // the empty name
constexpr std::uint64_t kMost = UINT64_MAX;

struct Unit {
  std::string_view tag, attribute, unit;
};

constexpr Unit kUnits[] = {
    {"Snapshot", "scan-time", "ms"},
    {"Processor", "l2-cache-size", "KB"},
    {"Processor", "l3-cache-size", "KB"},
    {"Processor", "current-clock-speed", "MHz"},
    {"Memory-slot", "capacity", "MB"},
    {"Memory-slot", "speed", "MHz"},
    {"General-info", "physical-memory", "MB"},
    {"max-visible-image-size", "width", "cm"},
    {"max-visible-image-size", "height", "cm"},
    {"max-visible-image-size", "diagonal", "in"},
    {"h-freq", "min", "kHz"},
    {"h-freq", "max", "kHz"},
    {"v-freq", "min", "Hz"},
    {"v-freq", "max", "Hz"},
    {"v-mode", "freq", "Hz"},
    {"HDD", "size", "GB (decimal)"},
    {"Removable", "size", "GB"},
    {"Removable", "bus-power", "mA"},
    {"Removable", "bus-power-used", "mA"},
    {"Device", "device-speed", "Mbit/s"},
    {"Device", "bus-power", "mA"},
    {"Device", "bus-power-used", "mA"},
    {"PowerManagement", "system-sleep-timer", "min"},
    {"PowerManagement", "disk-sleep-timer", "min"},
    {"PowerManagement", "display-sleep-timer", "min"},
    {"Profile", "system-sleep-timer", "min"},
    {"Profile", "disk-sleep-timer", "min"},
    {"Profile", "display-sleep-timer", "min"},
    {"control", "cpu-speed", "MHz"},
    {"control", "phys-memory", "MB"},
    {"control", "video-ram", "MB"},
    {"control", "monitor-diag", "in"},
    {"control", "hdd-capacity", "GB (decimal)"},
};

struct Code {
  std::string_view tag, attribute;
  std::uint64_t first, last;  // the numbers that have that word
  std::string_view word;
};

constexpr Code kCodes[] = {
    {kAnyTag, "system-sleep-timer", 0, 0, "never"},
    {kAnyTag, "disk-sleep-timer", 0, 0, "never"},
    {kAnyTag, "display-sleep-timer", 0, 0, "never"},
    {"Monitor", "video-input", 0, 127, "analogue"},
    {"Monitor", "video-input", 128, 255, "digital"},
    {"Monitor", "synch-input", 0, 127, "analogue"},
    {"Monitor", "synch-input", 128, 255, "digital"},
    {"HDD", "mediatype", 3, 3, "fixed disk"},
    {"Removable", "media-type", 2, 2, "removable disk"},
    {"Removable", "device-speed", 0, 0, "low speed"},
    {"Removable", "device-speed", 1, 1, "full speed"},
    {"Removable", "device-speed", 2, kMost, "high speed or more"},
    {"Firewall", "status", 0, 0, "lets everything in"},
    {"Firewall", "status", 1, 1, "lets in what is listed"},
    {"Firewall", "status", 2, 2, "lets nothing in"},
    {"service", "status", 0, 0, "kept out"},
    {"service", "status", 1, 1, "let in"},
    {"app", "status", 0, 0, "kept out"},
    {"app", "status", 1, 1, "let in"},
    {"control", "fw-status", 5, 5, "the same for every Mac"},
};

constexpr std::string_view kFlags[] = {"used",
                                       "main-monitor",
                                       "sleep-on-power-button",
                                       "auto-restart-on-power-loss",
                                       "wake-on-lan",
                                       "wake-on-ac-change",
                                       "wake-on-clamshell-open",
                                       "reduce-brightness",
                                       "display-sleep-uses-dim",
                                       "is-default",
                                       "is-fax",
                                       "is-system-user",
                                       "app-store",
                                       "64bit-app",
                                       "stealth-mode",
                                       "fw-log",
                                       "static-ip"};

std::string_view FlagWord(std::uint64_t value) {
  if (value > 1) return "";
  return value == 1 ? "yes" : "no";
}

}  // namespace

std::string_view BaseName(std::string_view tagName) { return tagName.substr(0, tagName.find(':')); }

std::string_view UsualUnit(std::string_view tagName, std::string_view attribute) {
  const std::string_view tag = BaseName(tagName);
  for (const Unit& unit : kUnits)
    if (attribute == unit.attribute && tag == unit.tag) return unit.unit;
  return "";
}

std::string_view CodeWord(std::string_view tagName, std::string_view attribute, std::string_view value) {
  const auto number = ParseNumber(value);
  if (!number) return "";
  const std::string_view tag = BaseName(tagName);
  for (const Code& code : kCodes)
    if (attribute == code.attribute && (tag == code.tag || code.tag == kAnyTag) && *number >= code.first &&
        *number <= code.last)
      return code.word;
  for (const std::string_view flag : kFlags)
    if (attribute == flag) return FlagWord(*number);
  return "";
}
