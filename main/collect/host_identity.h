// Facts about the computer itself, read straight from the profiler's property list, the clock and one command.
#pragma once

#include <string>

#include "main/collect/asset_summary.h"
#include "platform/platform.h"

// What the network services and locations say. Everything but the flag is empty when it is not found.
struct NetworkIdentity {
  std::string workgroup;   // in capitals
  std::string macAddress;  // "00-1E-C2-AA-BB-CC"; only when a service of the active location has it
  std::string netBiosName;
  bool manual = false;  // the address was configured by hand
};

// The identity behind `currentIp`; when that is empty it is filled with the address of the first "en" interface that
// has one.
NetworkIdentity LookupNetworkIdentity(const PropertyList& list, std::string& currentIp);

// The serial number of the hardware data; empty when there is none.
std::string ReadSerialNumber(const PropertyList& list);

// The time now, by FormatDate.
std::string MakeTimestamp(DateForm form);

// Fills the summary; runs the platform UUID command.
void CollectAssetSummary(const PropertyList& list, AssetSummary& summary);

// The first data type of that name. When there is none, the last element of the list, whatever it is; null for an empty
// list.
const PropertyList* FindDataType(const PropertyList& list, const char* name);
// The "_items" of that data type; null when it has none.
const PropertyList* FindItems(const PropertyList& list, const char* name);
