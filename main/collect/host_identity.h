// Facts about the computer itself, read straight from the profiler's property list, the clock and one command.
#pragma once

#include <string>

#include "platform/platform.h"
#include "zxml/asset_info.h"

// Fills in what the network services and locations say of the computer whose address is `identity.currentIp`: the
// workgroup, the NetBIOS name, whether the address was configured by hand, and the MAC address, which only a service of
// the active location has. An empty address is filled with that of the first "en" interface that has one.
void LookupNetworkIdentity(const PropertyList& list, AssetIdentity& identity);

// The serial number of the hardware data; empty when there is none.
std::string ReadSerialNumber(const PropertyList& list);

// The time now, by FormatDate.
std::string MakeTimestamp(DateForm form);

// The first data type of that name. When there is none, the last element of the list, whatever it is; null for an empty
// list.
const PropertyList* FindDataType(const PropertyList& list, const char* name);
// The "_items" of that data type; null when it has none.
const PropertyList* FindItemArray(const PropertyList& list, const char* name);
