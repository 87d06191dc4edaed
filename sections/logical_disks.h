// The space of a volume, on its partition tag.
#pragma once

#include <cstdint>
#include <optional>

#include "zxml/tag.h"

// Bytes; no value where the volume does not tell.
struct VolumeSpace {
  std::optional<std::int64_t> size;
  std::optional<std::int64_t> free;
};

// From the byte counts of the volume, or from its size texts (binary units).
VolumeSpace ReadVolumeSpace(const Tag& volumeItem);

// Sets "size", "free" and "used", each as far as it is known: megabytes below one binary gigabyte, else gigabytes.
void WriteSpaceQuantities(Tag& partitionTag, const VolumeSpace& space);

// Sets "free%" and "used%", which add up to 100; nothing when one of the two is unknown or the size is 0.
void WriteSpacePercentages(Tag& partitionTag, const VolumeSpace& space);

// Completes the partition tag of a volume: its file system, space and mount point.
void WriteLogicalDisk(Tag& partitionTag, const Tag& volumeItem);
