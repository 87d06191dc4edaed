// The order of the sections that list software.
#pragma once

#include "zxml/tag.h"

// Puts the children of the root's child `section` in the order of their values, without regard to letter case. Nearly:
// two neighbours can stay out of order, and fewer than three children stay as they are.
void SortSoftware(TagTree& inventoryTree, const char* section);
