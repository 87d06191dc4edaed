// The report's drawings: what is in the Mac, from the records, each a card of its own with the same in words.
#pragma once

#include <string>

#include "reader/record.h"

// Disks and their volumes as bars in proportion.
std::string StorageHtml(const RecordSource& source);
// Monitors to scale, side by side.
std::string MonitorsHtml(const RecordSource& source);
// Memory slots as slots.
std::string SlotsHtml(const RecordSource& source);
// USB devices and disks by maker, with the power that each draws.
std::string UsbHtml(const RecordSource& source);
// Network adapters with their addresses.
std::string AdaptersHtml(const RecordSource& source);

// A card with a heading; `extra` is HTML beside the heading. Nothing for an empty body.
std::string CardHtml(const std::string& id, const std::string& title, const std::string& extra, const std::string& body,
                     bool wide = false);
// The parts that are not empty, with " · " between them.
std::string Joined(const std::vector<std::string>& parts);
