// The texts of the operating system section, apart from the trees.
#pragma once

#include <string>

struct OsRelease {
  int minor = 0;        // the minor version number; 0 when there is none
  std::string name;     // the release name; the whole text for a number without one
  std::string version;  // the version with its build
  std::string update;   // empty when there is none
};

// What a system version such as "OS X 10.9.5 (13F34)" says, by fixed distances from "OS X".
OsRelease ReadOsRelease(const std::string& text);

// "up d:h:m:s" as days, hours, minutes and seconds in fixed width, "00000001020304.000000:000".
std::string FormatUptime(const std::string& text);
