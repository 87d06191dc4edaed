// Phase IV of a scan: the sections of the inventory.
#pragma once

#include "zxml/tag.h"

// Runs the fifteen section builders in their order; with `log` each step shows on standard output.
void PostProcess(TagTree& inventoryTree, const TagTree& rawTree, bool log);
