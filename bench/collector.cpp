// The collector of the running processes by itself.
#include <cstdio>

#include "main/collect/process_list.h"

int main() {
  TagTree rawTree = CreateTree(false, "Macintosh");
  CollectProcesses(rawTree);
  const Tag* processes = FindChild(RootOf(rawTree), "Processes");
  std::printf("%zu processes\n", processes ? processes->children.size() : 0);
  return processes ? 0 : 1;
}
