// XML property lists outside macOS. This is no reader of XML at large: it takes and refuses what CoreFoundation takes
// and refuses.
#pragma once

#include <string_view>

#include "platform/property_list.h"

// The property list in `document`, whatever its root, with its dictionaries in the document's order; a key that is
// there twice keeps its first place and takes the last value. Null when there is anything wrong with the document up to
// the end of the list, or when more than kMaxOpenContainers dictionaries and arrays are open at once; what follows the
// list is not looked at.
PropertyList ReadXmlList(std::string_view document);
