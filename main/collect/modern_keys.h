// What macOS 10.12 and later say in forms of their own, said once more in the keys that everything else reads. A key is
// added only where its item has none, and only from what is there to be read: nothing is guessed.
#pragma once

#include "platform/property_list.h"

// Adds the older keys to the profiler's list. The list of an "OS X", which has said all in them, stays as it is.
void AddOlderKeys(PropertyList& list);

// What no older key can say stands under keys that no profiler writes.

// In the software item: a dictionary with the texts "name", "version" and, where there is one, "update".
constexpr char kSystemKey[] = "quillagent_system";
// In the hardware item, when a chip is all that is said of the processor: its cores and its speed are then not known
// unless they are said.
constexpr char kChipKey[] = "quillagent_chip";
// In a display without EDID: a dictionary with those of the numbers "vendor", "product", "serial", "week" and "year"
// and of the texts "model" and "resolution" that are known. The numbers are the EDID's, as the inventory has them.
constexpr char kMonitorKey[] = "quillagent_monitor";
// In the item of a mounted volume that stands in no disk's list of volumes.
constexpr char kVolumeKey[] = "quillagent_volume";
// In the result of a data type: a dictionary with texts for the asset summary. "processor-maker"; "video-memory" (a
// size, empty when it is not known) and "resolution" of the main display; "disk-capacity" (decimal GB, each disk
// rounded down).
constexpr char kSummaryKey[] = "quillagent_summary";
