// Writing inventory tags. A builder finds or adds the place of a tag, sets its attributes one by one (Set...) and
// copies into it what an item has under its keys (Copy...); a function that does all of that for one tag is called
// Write...
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "zxml/tag.h"

// The tag at root / `section` / `name`, made when it is missing.
Tag* GetOrAddInSection(TagTree& inventoryTree, const char* section, const char* name);
// The child of that name, made when it is missing, with a copy of the item's "_name" as its value. An item without a
// name leaves the value as it is.
Tag* SetNamedChild(Tag& parent, std::string_view childName, const Tag& item);
// Announces a child with details: the attribute `name` of `tag`, empty, with the property "complex", then the child of
// that name, made when it is missing.
Tag* AddComplexChild(Tag& tag, const std::string& name);
// The same, the child marked as one that holds the attribute's parts.
Tag* AddParts(Tag& tag, const std::string& name);
// A text up to its first zero byte, where a value would end as well.
std::string_view UpToZero(std::string_view text);
// A name built from outside text: it ends at its first zero byte, and every line feed is turned into CR.
std::string SafeTagName(std::string_view name);

void SetText(Tag& tag, const char* name, const std::string& text);
void SetNumber(Tag& tag, const char* name, std::int64_t number);
// "1" or "0", as text.
void SetFlag(Tag& tag, const char* name, bool flag);

struct KeyCopy {
  const char* key;
  const char* attribute;
};

// Sets the attribute to a copy of the value under the key; nothing when the key is missing.
void CopyKey(const Tag& item, Tag& target, const KeyCopy& copy);

// How a key says yes: with exactly one word, or with anything but one word. What is not text is the empty word.
struct Yes {
  const char* word;
  bool isYes;  // the word itself says yes, else everything but the word does
};
constexpr Yes OnlyBy(const char* word) { return {word, true}; }
constexpr Yes Unless(const char* word) { return {word, false}; }

bool SaysYes(const Tag& item, const char* key, const Yes& yes);
// Sets the attribute to what the key says, as a flag; nothing when the key is missing.
void CopyFlag(const Tag& item, Tag& target, const KeyCopy& copy, const Yes& yes);

template <std::size_t N>
void CopyKeys(const Tag& item, Tag& target, const KeyCopy (&copies)[N]) {
  for (const KeyCopy& copy : copies) CopyKey(item, target, copy);
}

template <std::size_t N>
void CopyFlags(const Tag& item, Tag& target, const KeyCopy (&copies)[N], const Yes& yes) {
  for (const KeyCopy& copy : copies) CopyFlag(item, target, copy, yes);
}
