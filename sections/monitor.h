// What a display says about itself, on its monitor tag.
#pragma once

#include "zxml/tag.h"

// Decodes the EDID text (empty when it is not text) and sets the monitor's name and attributes from it.
void WriteMonitorEdid(Tag& monitorTag, const Attribute& edidAttribute);

// The same from what is known of a display without EDID; nothing else is written. `known` holds the parts that
// main/collect/modern_keys.h names.
void WriteMonitorKeys(Tag& monitorTag, const Tag& known);
