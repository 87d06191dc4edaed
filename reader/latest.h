// Thins a fleet's files out to one for each Mac.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct MacScan {
  std::string mac;  // its key; empty when the file does not tell it or cannot be read
  std::string path;
};

// The newest scan of each Mac among those files, in their order; of equally old ones the last. Debug scans do not
// count. A file that does not tell its Mac, or cannot be read, stays, so that whoever reads it names its trouble.
std::vector<MacScan> LatestScans(const std::vector<std::string>& paths, std::size_t limit);
