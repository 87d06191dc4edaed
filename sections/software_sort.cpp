// A quicksort that leaves ranges of one or two children as they are.
#include "sections/software_sort.h"

#include <cstddef>
#include <string>
#include <vector>

#include "zxml/value_text.h"

namespace {

struct Range {
  std::ptrdiff_t low;
  std::ptrdiff_t high;  // both inclusive
};

const std::string& KeyAt(const Tag& tag, std::ptrdiff_t index) {
  return TextOf(tag.children[static_cast<std::size_t>(index)].get());
}

// Splits a range around its middle child and adds what is left to sort to `ranges`.
void Partition(Tag& tag, Range range, std::vector<Range>& ranges) {
  const std::string& pivot = KeyAt(tag, range.low + (range.high - range.low) / 2);
  std::ptrdiff_t i = range.low;
  std::ptrdiff_t j = range.high;
  do {
    while (i < range.high && CompareNoCase(KeyAt(tag, i), pivot) < 0) ++i;
    while (j >= 1 && CompareNoCase(KeyAt(tag, j), pivot) > 0) --j;
    if (i <= j) SwapChildren(tag, static_cast<std::size_t>(i++), static_cast<std::size_t>(j--));
  } while (i <= j);
  if (j > range.low) ranges.push_back({range.low, j});
  if (i < range.high) ranges.push_back({i, range.high});
}

}  // namespace

void SortSoftware(TagTree& inventoryTree, const char* section) {
  Tag* tag = FindChild(RootOf(inventoryTree), section);
  if (!tag || tag->children.size() < 3) return;
  std::vector<Range> ranges = {{0, static_cast<std::ptrdiff_t>(tag->children.size()) - 1}};
  while (!ranges.empty()) {
    const Range range = ranges.back();
    ranges.pop_back();
    // deliberate: a range of two is never compared
    if (range.high - range.low >= 2) Partition(*tag, range, ranges);
  }
}
