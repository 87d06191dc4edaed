// The AssetInfo tree: the scanned computer as one asset, with the summary that the central console shows without
// opening the snapshot.
#pragma once

#include <string>

#include "zxml/tag.h"

// What the tree says of the computer beyond its identity. Every field is text; a field whose source is missing stays
// empty.
struct AssetSummary {
  std::string localHostName;
  std::string unused1, unused2;  // nothing fills these two
  std::string userName;          // the short account name
  std::string platformUuid;
  std::string osName;
  std::string osUpdate;
  std::string osVersion;
  std::string packages;           // processor packages
  std::string logicalProcessors;  // processors times packages
  std::string processorSpeed;     // MHz, a whole number of GHz
  std::string processorType;
  std::string processorMaker;
  std::string machineModel;
  std::string systemMaker;
  std::string physicalMemory;     // MB
  std::string videoMemory;        // MB
  std::string displayResolution;  // of the main display
  std::string displayDiagonal;    // of the main display, inches
  std::string diskCapacity;       // decimal GB, each disk rounded down
  std::string volumeCapacity;     // binary GB
  std::string volumeFree;         // binary GB
};

// Who the computer is; empty where it is not known.
struct AssetIdentity {
  std::string workgroup;     // in capitals
  std::string computerName;  // the system's name for it
  std::string netBiosName;   // its name on the Windows network
  std::string macAddress;    // "00-1E-C2-AA-BB-CC"
  std::string serialNumber;
  std::string currentIp;
  std::string login;
  bool manual = false;  // the address was configured by hand
};

// The name that the computer goes by: its NetBIOS name, or its computer name when it has none.
const std::string& NameOf(const AssetIdentity& identity);

// The tree of a normal scan. What depends on a section that the inventory tree lacks is left out.
TagTree BuildAssetInfo(bool saveFlag, const TagTree& inventoryTree, const std::string& timestamp,
                       const AssetSummary& summary, const AssetIdentity& identity);

// The tree of a debug scan, which has no inventory to summarise.
TagTree BuildDebugAssetInfo(bool saveFlag, const std::string& timestamp, const AssetIdentity& identity);
