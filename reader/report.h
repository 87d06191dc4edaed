// quillinv report: one Mac as a page of HTML that stands alone in one file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "reader/alarm.h"
#include "reader/document.h"

// What a page says of its units at its end.
constexpr char kSizesNote[] =
    "1 GB of disks and volumes is 1,000,000,000 bytes, 1 GB of memory 1,073,741,824 bytes. Moments are in UTC.";

// The page; `now` is in seconds since 1970. What cannot be read is named among what needs attention.
std::string ReportPage(const Document& document, std::int64_t now);

// The alarms as a list, or a line that says that there are none.
std::string AlarmsHtml(const std::vector<Alarm>& alarms);
// "OS X 10.11.6": what the system is called in a list, from name and version; empty when the file tells neither.
std::string SystemName(const RecordSource& source);
// The name that people know the Mac by: its own, else its host name, else the file's.
std::string MacName(const RecordSource& source);
