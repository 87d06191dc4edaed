// What differs between two scans, for people and for programs.
#pragma once

#include <string>
#include <vector>

#include "reader/document.h"

struct Difference {
  enum class Kind { Appeared, Vanished, Changed };
  Kind kind;
  std::string path;    // of a tag or an attribute; where it changed, its path in the older scan
  std::string before;  // as quillinv show writes it; empty for what appeared
  std::string after;   // the same; empty for what vanished
};

// The differences in the order of the older scan. A tag that appeared or vanished is one, whatever is in it. What
// changes from scan to scan by itself (times, processes, uptime, free space) is left out unless `all`.
std::vector<Difference> FindDifferences(const Document& before, const Document& after, bool all);

// One line for each: "+ path: value" appeared, "- path: value" vanished, "! path: old -> new" changed.
std::string DiffText(const std::vector<Difference>& differences);

// One line of JSON for each: mac_key, change, path, before, after, file_before, file_after; null where there is none.
struct DiffFiles {
  std::string mac;
  std::string before;
  std::string after;
};
std::string DiffJson(const std::vector<Difference>& differences, const DiffFiles& files);
