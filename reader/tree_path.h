// Finds tags and attributes by a path such as "Snapshot/OS/os:1/version". Names compare exactly and may hold "/"
// themselves.
#pragma once

#include <string_view>
#include <vector>

#include "zxml/tag.h"

struct PathMatch {
  const Tag* tag = nullptr;
  const Attribute* attribute = nullptr;  // null when the path names the tag itself
};

// Everything below `container` that `path` names, in the tree's order; a "/" at either end of it counts for nothing.
// Owned by the tree.
std::vector<PathMatch> FindByPath(const Tag& container, std::string_view path);
