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

// A place in the tree that a walker fills. Its tag is made, if need be, when the first value is entered at or below it,
// and is held on to from then on. Names that the walker knows to be new here need no search in a tag that it has made.
class EntryPoint {
 public:
  explicit EntryPoint(Tag& tag) : tag_(&tag) {}
  EntryPoint(EntryPoint& parent, std::string_view name, bool newName, std::size_t usualValues = 0)
      : parent_(&parent), name_(name), newName_(newName), usualValues_(usualValues) {}

  Tag& Resolve();
  void SetValue(std::string_view name, bool newName, Value value);

 private:
  EntryPoint* parent_ = nullptr;
  std::string_view name_;  // the caller's
  bool newName_ = false;
  std::size_t usualValues_ = 0;  // how many values to make room for in a tag of its own
  Tag* tag_ = nullptr;
  bool made_ = false;  // by this place, and so by its walker alone
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
