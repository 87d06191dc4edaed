// Binary property lists outside macOS.
#pragma once

#include <cstddef>
#include <string_view>

#include "platform/property_list.h"

// The property list in `document`, whatever its root, with its dictionaries in the document's order. Null when libplist
// refuses it or BinaryNestingIsSafe does.
PropertyList ReadBinaryList(std::string_view document, std::size_t mostValues);
