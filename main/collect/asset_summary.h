// The asset summary, read from the profiler's property list.
#pragma once

#include "platform/property_list.h"
#include "zxml/asset_info.h"

// Fills the summary; runs the platform UUID command.
void CollectAssetSummary(const PropertyList& list, AssetSummary& summary);
