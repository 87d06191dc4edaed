// Small readers and writers over raw items and inventory tags.
#include "sections/items.h"

#include <algorithm>

const Tag* FindItems(const Tag* tag) {
  const Tag* items = tag ? FindChild(*tag, "_items") : nullptr;
  return items && !items->children.empty() ? items : nullptr;
}

const Tag* FindItems(const TagTree& rawTree, const char* dataType) {
  return FindItems(FindChild(RootOf(rawTree), dataType));
}

const std::string& TextOfKey(const Tag& item, std::string_view key) { return TextOf(FindAttribute(item, key)); }

std::int64_t IntegerOfKey(const Tag& item, std::string_view key) {
  const Attribute* attribute = FindAttribute(item, key);
  return attribute && attribute->value.kind == ValueKind::Int ? attribute->value.integer : 0;
}

bool HasKey(const Tag& item, std::string_view key) { return FindAttribute(item, key) != nullptr; }

Value CopyOfKey(const Tag& item, std::string_view key) {
  const Attribute* attribute = FindAttribute(item, key);
  return attribute ? CopyValue(attribute->value) : Value();
}

void CopyKey(const Tag& item, Tag& target, const KeyCopy& copy) {
  if (const Attribute* source = FindAttribute(item, copy.key))
    SetAttribute(target, copy.attribute, CopyValue(source->value));
}

Tag* SetNamedChild(Tag& parent, const std::string& childName, const Tag& item) {
  Tag* child = GetOrAddChild(parent, childName);
  if (const Attribute* name = FindAttribute(item, "_name")) SetTagValue(*child, CopyValue(name->value));
  return child;
}

Tag* GetOrAddInSection(TagTree& inventoryTree, const char* section, const char* name) {
  return GetOrAddChild(*GetOrAddChild(RootOf(inventoryTree), section), name);
}

Tag* AddComplexChild(Tag& tag, const std::string& name) {
  SetAttribute(tag, name, MakeTextValue(""), "complex", "");
  return GetOrAddChild(tag, name);
}

std::string SafeTagName(std::string name) {
  std::replace(name.begin(), name.end(), '\n', '\r');
  return name;
}

Value FlagValue(bool flag) { return MakeTextValue(flag ? "1" : "0"); }
