// The running processes.
#pragma once

#include "zxml/tag.h"

// Adds "Processes" to the raw tree: one child for each process that `ps` still knows, numbered by its place in the
// kernel's table. Adds nothing when the platform has no table.
void CollectProcesses(TagTree& rawTree);
