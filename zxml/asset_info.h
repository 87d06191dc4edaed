// The AssetInfo tree: the scanned computer as one asset, with the summary that the central console shows without
// opening the snapshot.
#pragma once

#include <string>

#include "main/collect/asset_summary.h"
#include "main/scan_settings.h"
#include "zxml/INVfile.h"
#include "zxml/tag.h"

// Who the computer is; empty where it is not known.
struct AssetIdentity {
  std::string workgroup;
  std::string computerName;
  std::string netBiosName;
  std::string macAddress;
  std::string serialNumber;
  std::string currentIp;
  std::string login;
  bool manual = false;  // the address was configured by hand
};

// The tree of a normal scan. What depends on a section that the inventory tree lacks is left out.
TagTree BuildAssetInfo(const ScanSettings& settings, const TagTree& inventoryTree, const std::string& timestamp,
                       const AssetSummary& summary, const AssetIdentity& identity);

// Adds the two sections of a debug scan to the container: an AssetInfo tree that names the computer `name`, and the
// profiler's raw output, deflated.
void AddDebugSections(InvFile& inv, const std::string& name, const std::string& currentIp,
                      const std::string& macAddress, bool manual, const std::string& rawOutput,
                      const std::string& timestamp);
