// Reading raw items: the entries that the profiler lists for a data type, each a tag of the raw tree whose attributes
// are the entry's keys.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "zxml/tag.h"

// The tag whose children are the items of a data type; null when there is none or it has no item.
const Tag* FindItems(const TagTree& rawTree, const char* dataType);
// The first of those items; null when there is none.
const Tag* FirstItem(const TagTree& rawTree, const char* dataType);

bool HasKey(const Tag& item, std::string_view key);
// The text under `key`; empty when there is none or it is not text.
const std::string& TextOfKey(const Tag& item, std::string_view key);
// The number under `key`; 0 when there is none or it is not an integer.
std::int64_t IntegerOfKey(const Tag& item, std::string_view key);
// A copy of the value under `key`, of whatever kind; None when there is none.
Value CopyOfKey(const Tag& item, std::string_view key);
