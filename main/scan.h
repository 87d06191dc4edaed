// One whole scan of this computer.
#pragma once

#include <string>

#include "main/scan_settings.h"

// Scans the computer and writes the result as one INV file in the working directory; with `debug` the profiler's raw
// output instead of an inventory. `currentIp` overrides the address that is looked up unless it is empty; `login` goes
// to AssetInfo as it is. Every outcome is reported on the console and nowhere else.
void Scan(const ScanSettings& settings, bool silent, bool debug, const std::string& currentIp,
          const std::string& login);
