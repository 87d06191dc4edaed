// What a display says about itself, on its monitor tag.
#pragma once

#include "zxml/tag.h"

// Decodes the EDID text (empty when it is not text) and sets the monitor's name and attributes from it.
void WriteMonitorEdid(Tag& monitorTag, const Attribute& edidAttribute);
