// Reads of each file no more than the tree that names the Mac, and keeps no more than its key and the place of its
// newest file in the list.
#include "reader/latest.h"

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
  std::size_t place = 0;  // in the list of the files
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

std::vector<std::string> LatestScans(const std::vector<std::string>& paths, std::size_t limit) {
  std::unordered_map<std::string, Newest> macs;
  std::vector<bool> stays(paths.size(), false);
  for (std::size_t i = 0; i < paths.size(); ++i) {
    const Scan scan = ReadScan(paths[i], limit);
    if (!scan.counts) continue;
    stays[i] = true;
    if (scan.mac.empty()) continue;
    const auto [known, isNew] = macs.try_emplace(scan.mac, Newest{scan.moment, i});
    Newest& newest = known->second;
    if (isNew) continue;
    const bool newer = scan.moment >= newest.moment;
    stays[newer ? newest.place : i] = false;
    if (newer) newest = {scan.moment, i};
  }
  std::vector<std::string> latest;
  for (std::size_t i = 0; i < paths.size(); ++i)
    if (stays[i]) latest.push_back(paths[i]);
  return latest;
}
