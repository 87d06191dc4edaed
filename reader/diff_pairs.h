// Which tag of a scan is which tag of a later one. Numbers shift when something is taken out, so tags are told by what
// they are first.
#pragma once

#include <string>
#include <vector>

#include "zxml/tag.h"

template <typename Item>
struct Pair {
  const Item* before;  // null: it appeared
  const Item* after;   // null: it vanished
};

// The pairs in the order of `before`, then what only `after` has. Owned by the trees.
std::vector<Pair<Tag>> PairTags(const std::vector<const Tag*>& before, const std::vector<const Tag*>& after);
std::vector<Pair<Attribute>> PairAttributes(const std::vector<const Attribute*>& before,
                                            const std::vector<const Attribute*>& after);

// What a line about the whole tag says of it: its value or, without one, what tells it from its siblings.
std::string DescribeTag(const Tag& tag);
