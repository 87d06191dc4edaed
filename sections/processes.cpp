// "Processes": the process list of the raw tree, copied whole.
#include <memory>
#include <utility>

#include "sections/sections.h"

void BuildProcessesSection(TagTree& inventoryTree, const TagTree& rawTree) {
  const Tag* processes = FindChild(RootOf(rawTree), "Processes");
  if (!processes) return;
  auto copy = std::make_unique<Tag>();
  CopyTag(*copy, *processes);
  AppendChild(RootOf(inventoryTree), std::move(copy));
}
