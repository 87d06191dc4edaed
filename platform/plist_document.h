// Property-list documents outside macOS.
#pragma once

#include <string>

#include "platform/property_list.h"

// The property list in `document` (XML or binary), whatever its root, with its dictionaries in the document's order;
// the document is released as soon as it is parsed. Null when libplist refuses it, when it nests deeper than 512
// containers, or when a binary one would unfold into more than a million values.
PropertyList ParseDocument(const std::string& document);
