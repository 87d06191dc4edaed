// One parsed property list as a plain value: what the platform hands over and everything else reads. It knows nothing
// of CoreFoundation or of any parser; both sides of the platform fill it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

enum class PropertyListKind : std::uint8_t { Null, Dictionary, Array, Text, Number, Date, Boolean, Data };

// The storage type of a number, with the values of CFNumberType.
enum class NumberType : std::uint8_t {
  SInt8 = 1,
  SInt16,
  SInt32,
  SInt64,
  Float32,
  Float64,
  Char,
  Short,
  Int,
  Long,
  LongLong,
  Float,
  Double,
  CFIndex,
  NSInteger,
  CGFloat,
};

// Null stands for "no property list", and for anything of a foreign kind inside one.
struct PropertyList {
  PropertyListKind kind = PropertyListKind::Null;
  NumberType numberType = NumberType::SInt32;  // Number only
  union {
    std::int64_t integer = 0;  // Number of an integer type, sign-extended; Boolean: 0 or 1
    double real;               // Number of a floating type; Date: seconds since 2001-01-01 00:00 UTC
  };
  std::string text;                 // Text: UTF-8, or the source's bytes where they are not UTF-8
  std::vector<std::string> keys;    // Dictionary: in the source's order, one for each element of items
  std::vector<PropertyList> items;  // Dictionary and Array
};

inline PropertyList MakeNode(PropertyListKind kind) {
  PropertyList node;
  node.kind = kind;
  return node;
}

inline PropertyList MakeText(std::string text) {
  PropertyList node = MakeNode(PropertyListKind::Text);
  node.text = std::move(text);
  return node;
}

inline bool IsFloating(NumberType type) {
  return type == NumberType::Float32 || type == NumberType::Float64 || type == NumberType::Float ||
         type == NumberType::Double || type == NumberType::CGFloat;
}

// The first value under `key`; null when `node` is null, no dictionary, or has no such key. Owned by `node`.
inline const PropertyList* FindKey(const PropertyList* node, std::string_view key) {
  if (!node || node->kind != PropertyListKind::Dictionary) return nullptr;
  for (std::size_t i = 0; i < node->keys.size(); ++i)
    if (node->keys[i] == key) return &node->items[i];
  return nullptr;
}

// The value under `key` when it is of `kind`, else null.
inline const PropertyList* FindKey(const PropertyList* node, std::string_view key, PropertyListKind kind) {
  const PropertyList* value = FindKey(node, key);
  return value && value->kind == kind ? value : nullptr;
}

// The first element of an array; null when `node` is null, no array, or empty.
inline const PropertyList* FirstElement(const PropertyList* node) {
  return node && node->kind == PropertyListKind::Array && !node->items.empty() ? &node->items.front() : nullptr;
}

// The text under `key`; null when `node` is null, no dictionary, or has no text there. Owned by `node`.
inline const std::string* FindText(const PropertyList* node, std::string_view key) {
  const PropertyList* value = FindKey(node, key, PropertyListKind::Text);
  return value ? &value->text : nullptr;
}
