// XML property lists as the profiler writes them, read without a tree in between.
#pragma once

#include <optional>
#include <string_view>

#include "platform/property_list.h"

// The property list in a plain document: well-formed, nothing but the elements of a property list with plain numbers
// and dates, no comments, no declarations of its own, no carriage return, no key twice. No value for every other
// document: that one is for libplist to judge. Null for a document that nests deeper than kMaxOpenContainers.
std::optional<PropertyList> ReadPlainXml(std::string_view document);
