// Which Mac a scan is of, and when it was made: what tells the scans of a fleet apart.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "reader/document.h"

struct MacKey {
  std::string text;       // empty when the scan tells none of the four
  const char* kind = "";  // which it is: serial_number, uuid, mac_address or hostname; empty without a text
};

// The first of serial number, UUID, MAC address and host name that the scan tells, as it stands in the AssetInfo tree
// but for blanks and line breaks at its end.
MacKey MacKeyOf(const Document& document);

// When the scan was made, in seconds since 1970-01-01 00:00 UTC: what the snapshot's record in the index says, else the
// AssetInfo tree. No value when neither holds a timestamp.
std::optional<std::int64_t> ScanMoment(const Document& document);

// True for a debug scan: it holds raw data, and no snapshot.
bool IsDebugScan(const Document& document);

// The moment of a timestamp such as "20260102030405.000000+60": local time and its distance from UTC in minutes. No
// value when the text is none, or names no moment from the year 1601 on.
std::optional<std::int64_t> ParseTimestamp(std::string_view text);

// "2026-01-02T02:04:05Z".
std::string IsoMoment(std::int64_t moment);

// Days of a month from 1 to 12 by the Gregorian calendar.
std::int64_t DaysOfMonth(std::int64_t year, std::int64_t month);
