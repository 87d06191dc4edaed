// The section builders as one table.
#include "main/post_process.h"

#include "main/console/console_log.h"
#include "sections/sections.h"

namespace {

using Builder = void (*)(TagTree& inventoryTree, const TagTree& rawTree);

// A builder that gathers its own data takes its place in the table by way of this.
template <void (*build)(TagTree&)>
void WithoutRawTree(TagTree& inventoryTree, const TagTree&) {
  build(inventoryTree);
}

constexpr Builder kBuilders[] = {
    BuildSystemSection,
    BuildProcessorsSection,
    BuildMemorySection,
    BuildVideoSection,
    BuildPhysicalDisksSection,
    BuildNetworkSection,
    BuildPrintersSection,
    BuildUsbSection,
    BuildOsSection,
    WithoutRawTree<BuildUserAccountsSection>,
    BuildSoftwareSection,
    WithoutRawTree<BuildLibrariesSection>,
    BuildProcessesSection,
    WithoutRawTree<BuildEnvironmentSection>,
    BuildFirewallSection,
};
static_assert(sizeof kBuilders / sizeof kBuilders[0] == 15);

}  // namespace

void PostProcess(TagTree& inventoryTree, const TagTree& rawTree, bool log) {
  if (log) LogLine("IV. PostProcess>>>\n");
  int step = 1;
  for (const Builder build : kBuilders) {
    if (log) LogLine("%d...", step);
    build(inventoryTree, rawTree);
    if (log) LogLine("done\n");
    ++step;
  }
  if (log) LogLine("IV. PostProcess End.\n");
}
