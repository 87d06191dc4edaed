// The steps of AddOlderKeys, one for each data type that newer systems describe in other forms, and what they share. A
// result is the dictionary of one data type in the profiler's list; what is not of the kind that it should be is passed
// over.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/property_list.h"

void AddSoftwareKeys(PropertyList& result);
void AddHardwareKeys(PropertyList& result);
void AddMemoryKeys(PropertyList& result);
void AddApplicationKeys(PropertyList& result);
void AddPrinterKeys(PropertyList& result);
void AddDisplayKeys(PropertyList& result);
void AddNvmeKeys(PropertyList& result);
void AddUsbKeys(PropertyList& result);
// Behind the steps for disks: which volumes stand in a disk's list is read in the whole list.
void AddStorageKeys(PropertyList& list);
void AddNetworkKeys(PropertyList& list);

PropertyList MakeInteger(std::int64_t number);

// The value under `key` when it is of `kind`, else null. Owned by `node`.
PropertyList* FindKeyToChange(PropertyList& node, std::string_view key, PropertyListKind kind);

// The elements of the array under `key`; none when there is no array. Owned by it, and valid until it grows.
std::vector<PropertyList*> ElementsUnder(PropertyList& node, std::string_view key);
inline std::vector<PropertyList*> ItemsOf(PropertyList& node) { return ElementsUnder(node, "_items"); }
// The results of that data type.
std::vector<PropertyList*> ResultsOf(PropertyList& list, std::string_view dataType);

// Adds a key to a dictionary that has none of that name.
void AddMissing(PropertyList& dictionary, const char* key, PropertyList value);
// The same with a copy of the first of `sources` that is there, of whatever kind.
void CopyMissing(PropertyList& dictionary, const char* key, const PropertyList& item,
                 std::initializer_list<const char*> sources);
void AddToSummary(PropertyList& result, const char* key, std::string text);

// The text under `key`; empty when there is none.
const std::string& TextUnderKey(const PropertyList& node, std::string_view key);
// The number that the whole of `digits` is, in base 10 or 16; no value for anything else, or for one above `limit`.
std::optional<std::int64_t> ReadNumber(std::string_view digits, int base, std::int64_t limit);
