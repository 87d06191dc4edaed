// What differs between a Mac and any other machine: six questions. macos.cpp answers them with the system's frameworks;
// portable/ with a reader of its own and libplist, the C library's clock and a recorded Mac (or the machine it runs
// on).
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/property_list.h"

// The property list in `document` (XML or binary). Null when the document cannot be parsed or its root is not an array.
PropertyList ParsePropertyList(std::string_view document);

enum class DateForm { Full, Short };

// A moment (seconds since 2001-01-01 00:00 UTC) in local time: "yyyyMMddHHmmss.000000 +hhmm" in the full form,
// "yyyy-MM-dd" in the short one. Empty when the moment has no local time.
std::string FormatLocalTime(double seconds, DateForm form);

// Now, in seconds since 2001-01-01 00:00 UTC.
double CurrentTime();

// The computer's name in UTF-8; empty when it has none.
std::string ComputerName();

struct ProcessRecord {
  std::int32_t pid = 0;
  std::int32_t parentPid = 0;
  std::string name;  // the kernel's short command name
};

struct ProcessTable {
  std::vector<ProcessRecord> records;  // in the kernel's order
  bool grew = false;                   // the table outgrew this pass: ask again
};

// One pass over the kernel's process table; no value when the kernel does not answer.
std::optional<ProcessTable> ReadProcessTable();

struct Bundle {
  std::string fileName;      // the last component of its path
  std::string path;          // as on the Mac, without a trailing slash
  PropertyList information;  // its information dictionary; Null when it has none, an empty one, or one too large
};

// Hands over the bundles directly inside `folder`, one at a time, in the platform's order; none when the folder cannot
// be read. The dictionaries of one folder together hold at most kMaxInformationValues values; one that would exceed
// them is too large.
void ForEachBundle(const std::string& folder, const std::function<void(const Bundle&)>& take);
