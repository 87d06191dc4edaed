// quillinv fleet: many Macs as a page of HTML that stands alone in one file.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "reader/alarm.h"
#include "reader/document.h"

// The columns of the list of Macs; those from kMemoryColumn on hold numbers.
enum FleetColumn {
  kNameColumn,
  kModelColumn,
  kSystemColumn,
  kUserColumn,
  kSerialColumn,
  kMemoryColumn,
  kFreeColumn,
  kScannedColumn,
  kAlarmsColumn,
  kFleetColumns
};
// What the fleet is counted by. A Mac is in one group of each.
enum FleetCount { kBySystem, kByModel, kByAge, kByFree, kByMemory, kByFirewall, kFleetCounts };

struct FleetCell {
  std::string text;
  std::int64_t key = 0;  // what a number is sorted by
};

struct FleetVolume {
  std::string text;
  int usedPercent = 0;
  bool low = false;  // less than a tenth is free
};

// One Mac, as much of it as the page tells.
struct FleetMac {
  std::string key;                     // what tells it from others; empty when the file does not say
  bool inventory = false;              // the scan is no debug scan
  std::optional<std::int64_t> moment;  // of the scan, in seconds since 1970
  std::vector<std::string> addresses;  // MAC addresses
  std::array<FleetCell, kFleetColumns> cells;
  std::array<std::string, kFleetCounts> groups;  // such as "OS X 10.11.6"
  std::vector<std::vector<std::string>> facts;   // one for each of FleetFactNames
  std::vector<FleetVolume> volumes;
  std::vector<Alarm> alarms;
  std::vector<std::uint32_t> software;  // numbers of Fleet::titles, each once
};

// Name and version of an application with a zero byte between them, and its number.
using FleetTitles = std::map<std::string, std::uint32_t>;

struct Fleet {
  std::vector<FleetMac> macs;                 // the newest scan of each
  std::map<std::string, std::size_t> places;  // of the Macs that have a key
  FleetTitles titles;
  std::size_t files = 0;
};

const std::vector<std::string>& FleetFactNames();

// What the file tells of its Mac. Adds its applications to `titles`.
FleetMac MakeFleetMac(const Document& document, std::int64_t now, FleetTitles& titles);

// Adds a file. Of two scans of one Mac the newer one stays, and a debug scan only where there is nothing else.
void AddToFleet(const Document& document, std::int64_t now, Fleet& fleet);

using FleetGroup = std::pair<std::string, std::size_t>;  // its name, and the number of Macs in it

struct FleetGroups {
  std::vector<FleetGroup> groups;    // the last one may stand for all smaller ones
  std::vector<std::size_t> groupOf;  // of each Mac
};

struct FleetTitle {
  std::string name;
  std::size_t macs = 0;              // that have any version of it
  std::vector<FleetGroup> versions;  // the most common one first
};

// The applications of the fleet, the most common one first.
std::vector<FleetTitle> TitlesOf(const Fleet& fleet);
// The first of them as a card of bars; nothing when there are none.
std::string TitlesHtml(const std::vector<FleetTitle>& titles);

FleetGroups GroupsOf(const Fleet& fleet, FleetCount count);

// The counts as cards of bars.
std::string FleetCountsHtml(const Fleet& fleet, const std::vector<FleetGroups>& counts,
                            const std::vector<FleetTitle>& titles);
// What the script makes the lists from; fleet_json.cpp describes its shape.
std::string FleetJson(const Fleet& fleet, const std::vector<FleetGroups>& counts,
                      const std::vector<FleetTitle>& titles);

// The list of the Macs, of the alarms and of the software, empty until the script fills them; for a browser without
// scripts the Macs as a plain table.
std::string MacsHtml(const Fleet& fleet);
std::string AlarmListHtml();
std::string SoftwareListHtml();
// Serial numbers and MAC addresses that several Macs have; `rows` is how many.
std::string DuplicatesHtml(const Fleet& fleet, std::size_t& rows);

// The page; puts the Macs in the order of their names.
std::string FleetPage(Fleet& fleet, std::int64_t now);
