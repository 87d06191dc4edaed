// What the section builders share: finding the items of a data type and copying their keys.
#pragma once

#include <string>
#include <string_view>

#include "zxml/tag.h"

// The child "_items" of `tag`; null when `tag` is null or has none, or when that holds no item.
const Tag* FindItems(const Tag* tag);
// The same for a data type of the raw tree.
const Tag* FindItems(const TagTree& rawTree, const char* dataType);

// The text under `key`; empty when there is none or it is not text.
const std::string& TextOfKey(const Tag& item, std::string_view key);
// The number under `key`; 0 when there is none or it is not an integer.
std::int64_t IntegerOfKey(const Tag& item, std::string_view key);
bool HasKey(const Tag& item, std::string_view key);
// A copy of the value under `key`, of whatever kind; None when there is none.
Value CopyOfKey(const Tag& item, std::string_view key);

struct KeyCopy {
  const char* key;
  const char* attribute;
};

// Sets the attribute to a copy of the value under the key; nothing when the key is missing.
void CopyKey(const Tag& item, Tag& target, const KeyCopy& copy);

template <std::size_t N>
void CopyKeys(const Tag& item, Tag& target, const KeyCopy (&copies)[N]) {
  for (const KeyCopy& copy : copies) CopyKey(item, target, copy);
}

// SetChildValue with a copy of the item's "_name"; a missing name leaves the child without a value.
Tag* SetNamedChild(Tag& parent, const std::string& childName, const Tag& item);

// The tag at root / `section` / `name`, made when it is missing.
Tag* GetOrAddInSection(TagTree& inventoryTree, const char* section, const char* name);

// Announces a child with details: the attribute `name` of `tag`, empty, with the property "complex", then the child of
// that name.
Tag* AddComplexChild(Tag& tag, const std::string& name);

// A name built from outside text, with every line feed turned into CR.
std::string SafeTagName(std::string name);

// "1" or "0" as text.
Value FlagValue(bool flag);
