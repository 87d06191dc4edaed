// Looks up items of the raw tree and the values under their keys.
#include "sections/raw_items.h"

const Tag* FindItems(const TagTree& rawTree, const char* dataType) {
  const Tag* tag = FindChild(RootOf(rawTree), dataType);
  const Tag* items = tag ? FindChild(*tag, "_items") : nullptr;
  return items && !items->children.empty() ? items : nullptr;
}

const Tag* FirstItem(const TagTree& rawTree, const char* dataType) {
  const Tag* items = FindItems(rawTree, dataType);
  return items ? items->children.front().get() : nullptr;
}

bool HasKey(const Tag& item, std::string_view key) { return FindAttribute(item, key) != nullptr; }

const std::string& TextOfKey(const Tag& item, std::string_view key) { return TextOf(FindAttribute(item, key)); }

std::int64_t IntegerOfKey(const Tag& item, std::string_view key) {
  const Attribute* attribute = FindAttribute(item, key);
  return attribute && attribute->value.kind == ValueKind::Int ? attribute->value.integer : 0;
}

Value CopyOfKey(const Tag& item, std::string_view key) {
  const Attribute* attribute = FindAttribute(item, key);
  return attribute ? CopyValue(attribute->value) : Value();
}
