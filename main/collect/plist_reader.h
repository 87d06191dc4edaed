// The property list entered into the raw tree. A dictionary or array becomes a tag, made with the first value below it;
// every scalar becomes an attribute of the tag of its container. The elements of an array are called item0, item1, ...
#pragma once

#include <string>
#include <string_view>

#include "platform/platform.h"
#include "zxml/tag.h"

// Enters every data type of the profiler's list, a child of the root for each, except logs and fonts. A null list
// enters nothing.
void EnterProfilerData(const PropertyList& list, TagTree& rawTree);

// A place in the tree whose tag is made, if need be, when the first value is entered at or below it.
class EntryPoint {
 public:
  explicit EntryPoint(Tag& tag) : tag_(&tag) {}
  EntryPoint(EntryPoint& parent, std::string name) : parent_(&parent), name_(std::move(name)) {}
  Tag& Resolve() { return tag_ ? *tag_ : *(tag_ = GetOrAddChild(parent_->Resolve(), name_)); }

 private:
  EntryPoint* parent_ = nullptr;
  std::string name_;
  Tag* tag_ = nullptr;
};

void EnterDictionary(const PropertyList& dictionary, EntryPoint& place);
void EnterArray(const PropertyList& array, EntryPoint& place);
// The firewall's form: entry k, when its value is text, becomes the tag item<k> with "_name" (its key) and "value".
void EnterNamedList(const PropertyList& dictionary, EntryPoint& place);

// A key as a name: apostrophe, blank, slash, comma and the quotation marks U+2018, U+2019 and U+201B become "_".
std::string SanitizeKey(std::string_view key);

// A moment (seconds since 2001-01-01 00:00 UTC) in local time: "yyyyMMddHHmmss.000000" with the sign and the UTC offset
// in minutes, or "yyyy-MM-dd".
std::string FormatDate(double seconds, DateForm form);

// "&", "'", "<" and ">" as entities; a text in which only the last character is special comes back unchanged.
std::string EscapeXmlText(std::string text);
