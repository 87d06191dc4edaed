// Reads of each file no more than the tree that names the Mac, and keeps no more than its key and the place of its
// newest file in the list.
#include "reader/latest.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <unordered_map>

#include "reader/document.h"
#include "reader/files.h"
#include "reader/identity.h"

namespace {

struct Newest {
  std::int64_t moment = 0;
  std::size_t place = 0;  // in the list of the scans
};

// What one file is in a fleet: nothing, itself, or a scan of a Mac.
struct Scan {
  bool counts = true;
  std::string mac;  // empty when the file does not tell it
  std::int64_t moment = std::numeric_limits<std::int64_t>::min();
};

Scan ReadScan(const std::string& path, std::size_t limit) try {
  Scan scan;
  std::string bytes;
  std::string trouble;  // is told by whoever reads the file for its contents
  if (!ReadFile(path, limit, bytes, trouble)) return scan;
  const Document document = ReadDocument(path, bytes, limit, Parts::Asset);
  scan.counts = !IsDebugScan(document);
  scan.mac = MacKeyOf(document).text;
  if (const auto moment = ScanMoment(document)) scan.moment = *moment;
  return scan;
} catch (const std::bad_alloc&) {
  return {};  // runs out again when the file is read for its contents
}

}  // namespace

std::vector<MacScan> LatestScans(const std::vector<std::string>& paths, std::size_t limit) {
  std::vector<MacScan> scans;
  std::unordered_map<std::string, Newest> macs;
  for (const std::string& path : paths) {
    const Scan scan = ReadScan(path, limit);
    if (!scan.counts) continue;
    scans.push_back({scan.mac, path});
    if (scan.mac.empty()) continue;
    const auto [known, isNew] = macs.try_emplace(scan.mac, Newest{scan.moment, scans.size() - 1});
    Newest& newest = known->second;
    if (isNew) continue;
    const bool newer = scan.moment >= newest.moment;
    scans[newer ? newest.place : scans.size() - 1].path.clear();
    if (newer) newest = {scan.moment, scans.size() - 1};
  }
  const auto isOld = [](const MacScan& scan) { return scan.path.empty(); };
  scans.erase(std::remove_if(scans.begin(), scans.end(), isOld), scans.end());
  return scans;
}
