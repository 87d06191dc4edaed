// What the AssetInfo tree says of the computer beyond its identity. Every field is text; a field whose source is
// missing stays empty.
#pragma once

#include <string>

struct AssetSummary {
  std::string localHostName;
  std::string userName;  // the short account name
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
