// The volume behind a CoreStorage partition.
#pragma once

#include "zxml/tag.h"

// Looks up the volume that lies on the partition named by the tag's value (its BSD name) and writes it on that tag, the
// volume's name instead of the partition's. False, with the tag untouched, when no volume lies on it.
bool WriteCoreStorageVolume(const TagTree& rawTree, Tag& partitionTag);
