// The property list entered into the raw tree. A dictionary or array that holds any value becomes a tag;
// every scalar becomes an attribute of the tag of its container. The elements of an array are called item0, item1, ...
#pragma once

#include <string>
#include <string_view>

#include "platform/platform.h"
#include "zxml/tag.h"

// Enters every data type of the profiler's list, a child of the root for each, except logs and fonts and whatever has a
// name of more than 512 segments. A null list enters nothing.
void EnterProfilerData(const PropertyList& list, TagTree& rawTree);

// Enter the elements of a dictionary or an array as what `tag` holds.
void EnterDictionary(const PropertyList& dictionary, Tag& tag);
void EnterArray(const PropertyList& array, Tag& tag);
// The firewall's form: entry k, when its value is text, becomes the tag item<k> with "_name" (its key) and "value".
void EnterNamedList(const PropertyList& dictionary, Tag& tag);

// A key as a name: apostrophe, blank, slash, comma and the quotation marks U+2018, U+2019 and U+201B become "_".
std::string SanitizeKey(std::string_view key);

// A moment (seconds since 2001-01-01 00:00 UTC) in local time: "yyyyMMddHHmmss.000000" with the sign and the UTC offset
// in minutes, or "yyyy-MM-dd".
std::string FormatDate(double seconds, DateForm form);

// "&", "'", "<" and ">" as entities; a text in which only the last character is special comes back unchanged.
std::string EscapeXmlText(std::string text);
