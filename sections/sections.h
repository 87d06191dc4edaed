// The section builders. Each reads the raw tree, or gathers its own data, and adds its section below the root of the
// inventory tree; what its source lacks is left out, and nothing is reported.
#pragma once

#include "zxml/tag.h"

void BuildSystemSection(TagTree& inventoryTree, const TagTree& rawTree);  // model, chassis, memory slots, power
void BuildProcessorsSection(TagTree& inventoryTree, const TagTree& rawTree);
void BuildMemorySection(TagTree& inventoryTree, const TagTree& rawTree);
void BuildVideoSection(TagTree& inventoryTree, const TagTree& rawTree);          // monitors and adapters
void BuildPhysicalDisksSection(TagTree& inventoryTree, const TagTree& rawTree);  // with their logical disks
void BuildNetworkSection(TagTree& inventoryTree, const TagTree& rawTree);
void BuildPrintersSection(TagTree& inventoryTree, const TagTree& rawTree);  // and scanners
void BuildUsbSection(TagTree& inventoryTree, const TagTree& rawTree);       // peripherals and removable disks
void BuildOsSection(TagTree& inventoryTree, const TagTree& rawTree);
void BuildUserAccountsSection(TagTree& inventoryTree);
void BuildSoftwareSection(TagTree& inventoryTree, const TagTree& rawTree);
void BuildLibrariesSection(TagTree& inventoryTree);  // Internet plug-ins
void BuildProcessesSection(TagTree& inventoryTree, const TagTree& rawTree);
void BuildEnvironmentSection(TagTree& inventoryTree);
void BuildFirewallSection(TagTree& inventoryTree, const TagTree& rawTree);
