// Brings the scans of two folders together by the keys of their Macs.
#include "reader/diff_fleet.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "reader/diff.h"
#include "reader/files.h"
#include "reader/identity.h"
#include "reader/latest.h"
#include "reader/run.h"
#include "reader/text.h"

namespace {

using Kind = Difference::Kind;

// How much of a kind changed on how many Macs.
struct Count {
  std::size_t differences = 0;
  std::size_t macs = 0;
};

struct Fleet {
  std::size_t both = 0;
  std::size_t changed = 0;
  std::size_t appeared = 0;
  std::size_t vanished = 0;
  std::map<std::string, Count> parts;  // by PartOf
  std::string macs;                    // a line for each that is only in one folder
  std::string texts;                   // the differences of the others
};

// Which part of the inventory a path leads into: "Software", or the root for what stands in it directly.
std::string PartOf(const std::string& path) {
  const std::size_t first = path.find('/');
  const std::string root = path.substr(0, first);
  const std::size_t second = first == std::string::npos ? first : path.find('/', first + 1);
  return root != "Snapshot" || second == std::string::npos ? root : path.substr(first + 1, second - first - 1);
}

void CountParts(Fleet& fleet, const std::vector<Difference>& differences) {
  std::map<std::string, std::size_t> parts;
  for (const Difference& difference : differences) ++parts[PartOf(difference.path)];
  for (const auto& [part, count] : parts) {
    fleet.parts[part].differences += count;
    ++fleet.parts[part].macs;
  }
}

// "serial (name)", as far as both are there.
std::string MacTitle(const Document& document) {
  const Tag* asset = FindRoot(document, "AssetInfo");
  const std::string& name = TextOf(asset != nullptr ? FindAttribute(*asset, "int-name") : nullptr);
  return Printable(MacKeyOf(document).text) + (name.empty() ? "" : " (" + Printable(name) + ")");
}

// Compares two scans of one Mac.
int DiffMac(const Arguments& arguments, const std::string& older, const std::string& newer, Fleet& fleet) {
  Document before, after;
  const bool sound = LoadSound(older, arguments.limit, before, Parts::Trees);
  if (!LoadSound(newer, arguments.limit, after, Parts::Trees) || !sound) return kTrouble;
  ++fleet.both;
  const std::vector<Difference> differences = FindDifferences(before, after, arguments.all);
  if (differences.empty()) return kSound;
  ++fleet.changed;
  CountParts(fleet, differences);
  fleet.texts += arguments.json ? DiffJson(differences, {MacKeyOf(after).text, older, newer})
                                : "\n=== " + MacTitle(after) + "\n--- " + Printable(older) + "\n+++ " +
                                      Printable(newer) + "\n" + DiffText(differences);
  return kDifferent;
}

// Enters a Mac whose scan is in one of the folders only.
int AddLoneMac(const Arguments& arguments, const std::string& path, Kind kind, Fleet& fleet) {
  Document document;
  if (!LoadSound(path, arguments.limit, document, Parts::Asset)) return kTrouble;
  const bool appeared = kind == Kind::Appeared;
  ++(appeared ? fleet.appeared : fleet.vanished);
  const DiffFiles files = {MacKeyOf(document).text, appeared ? "" : path, appeared ? path : ""};
  if (arguments.json)
    fleet.texts += DiffJson({{kind, "", "", ""}}, files);
  else
    fleet.macs += (appeared ? "+ " : "- ") + MacTitle(document) + ": " + Printable(path) + "\n";
  return kDifferent;
}

std::string Counted(std::size_t count, const char* one, const char* more) {
  return std::to_string(count) + " " + (count == 1 ? one : more);
}

std::string Summary(const Fleet& fleet) {
  std::string text = Counted(fleet.both, "Mac", "Macs") + " in both, " + std::to_string(fleet.changed) + " changed; " +
                     std::to_string(fleet.appeared) + " new, " + std::to_string(fleet.vanished) + " gone\n";
  std::size_t width = 0;
  for (const auto& [part, count] : fleet.parts) width = std::max(width, Width(Printable(part)));
  for (const auto& [part, count] : fleet.parts)
    text += "  " + PadRight(Printable(part), width) + "  " + Counted(count.differences, "difference", "differences") +
            " on " + Counted(count.macs, "Mac", "Macs") + "\n";
  return text + (fleet.macs.empty() ? "" : "\n") + fleet.macs + fleet.texts;
}

// The newest scans below one of the folders. False when there is something wrong with it.
bool ListScans(const Arguments& arguments, const std::string& folder, std::vector<MacScan>& scans) {
  Arguments side = arguments;
  side.files = {folder};
  side.latest = false;
  std::vector<std::string> paths;
  const bool sound = ListFiles(side, paths);
  scans = LatestScans(paths, arguments.limit);
  return sound;
}

// For a scan that cannot be brought together with another.
int ComplainNoMac(const Arguments& arguments, const std::string& path) {
  Document document;
  if (LoadSound(path, arguments.limit, document, Parts::Asset)) Complain(path, "does not tell which Mac it is of");
  return kTrouble;
}

// Calls `step` for each of the scans.
int ForEachScan(const std::vector<MacScan>& scans, const std::function<int(const MacScan&)>& step) {
  std::vector<std::string> paths;
  for (const MacScan& scan : scans) paths.push_back(scan.path);
  std::size_t next = 0;
  return ForEachOf(paths, [&scans, &step, &next](const std::string&) { return step(scans[next++]); });
}

}  // namespace

int DiffFleets(const Arguments& arguments) {
  std::vector<MacScan> older, newer;
  const bool sound = ListScans(arguments, arguments.files[0], older);
  if (!ListScans(arguments, arguments.files[1], newer) || !sound) return kTrouble;
  std::map<std::string, std::string> paths;  // of the older scans, by Mac
  for (const MacScan& scan : older) paths.emplace(scan.mac, scan.path);
  Fleet fleet;
  std::set<std::string> met;
  const int status = ForEachScan(newer, [&](const MacScan& scan) {
    if (scan.mac.empty()) return ComplainNoMac(arguments, scan.path);
    const auto known = paths.find(scan.mac);
    if (known == paths.end()) return AddLoneMac(arguments, scan.path, Kind::Appeared, fleet);
    met.insert(scan.mac);
    return DiffMac(arguments, known->second, scan.path, fleet);
  });
  const int goneStatus = ForEachScan(older, [&](const MacScan& scan) {
    if (scan.mac.empty()) return ComplainNoMac(arguments, scan.path);
    return met.count(scan.mac) != 0 ? kSound : AddLoneMac(arguments, scan.path, Kind::Vanished, fleet);
  });
  WriteData(arguments.json ? fleet.texts : Summary(fleet));
  return std::max(status, goneStatus);
}
