// What an administrator wants to be told of a Mac without asking.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "reader/record.h"

struct Alarm {
  bool serious = false;
  const char* kind = "";  // "Free space"
  std::string text;       // one sentence; holds texts of the file
};

// The serious ones first. `now` is in seconds since 1970.
std::vector<Alarm> AlarmsOf(const RecordSource& source, std::int64_t now);

// "Serious" or "Notice".
const char* LevelName(const Alarm& alarm);
