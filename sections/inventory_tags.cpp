// The small steps in which every section is written.
#include "sections/inventory_tags.h"

#include <algorithm>

#include "sections/raw_items.h"

Tag* GetOrAddInSection(TagTree& inventoryTree, const char* section, const char* name) {
  return GetOrAddChild(*GetOrAddChild(RootOf(inventoryTree), section), name);
}

Tag* SetNamedChild(Tag& parent, std::string_view childName, const Tag& item) {
  Tag* child = GetOrAddChild(parent, childName);
  if (HasKey(item, "_name")) SetTagValue(*child, CopyOfKey(item, "_name"));
  return child;
}

Tag* AddComplexChild(Tag& tag, const std::string& name) {
  SetAttribute(tag, name, MakeTextValue(""), "complex", "");
  return GetOrAddChild(tag, name);
}

Tag* AddParts(Tag& tag, const std::string& name) {
  Tag* parts = AddComplexChild(tag, name);
  AddTagProperty(*parts, "field-source", "");
  return parts;
}

std::string_view UpToZero(std::string_view text) { return text.substr(0, text.find('\0')); }

std::string SafeTagName(std::string_view name) {
  std::string safe(UpToZero(name));
  std::replace(safe.begin(), safe.end(), '\n', '\r');
  return safe;
}

void SetText(Tag& tag, const char* name, const std::string& text) { SetAttribute(tag, name, MakeTextValue(text)); }

void SetNumber(Tag& tag, const char* name, std::int64_t number) { SetAttribute(tag, name, MakeIntValue(number)); }

void SetFlag(Tag& tag, const char* name, bool flag) { SetAttribute(tag, name, MakeTextValue(flag ? "1" : "0")); }

void CopyKey(const Tag& item, Tag& target, const KeyCopy& copy) {
  if (HasKey(item, copy.key)) SetAttribute(target, copy.attribute, CopyOfKey(item, copy.key));
}

bool SaysYes(const Tag& item, const char* key, const Yes& yes) {
  return (TextOfKey(item, key) == yes.word) == yes.isYes;
}

void CopyFlag(const Tag& item, Tag& target, const KeyCopy& copy, const Yes& yes) {
  if (HasKey(item, copy.key)) SetFlag(target, copy.attribute, SaysYes(item, copy.key, yes));
}
