// The tag tree: the one data structure that a scan passes on. The raw tree, the inventory tree and the AssetInfo tree
// are all made of it, and zXML is its text form. Lists keep the order of insertion and are scanned in that order; names
// compare byte for byte. Nothing is ever removed from a tree, so a pointer into one stays valid as long as the tree.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class ValueKind : std::uint8_t { None = 0, Bool = 1, Int = 2, Double = 3, String = 4 };

struct Value {
  ValueKind kind = ValueKind::None;
  union {
    std::int64_t integer = 0;
    double real;
    bool boolean;
  };
  std::string text;  // String only; holds no zero byte
};

struct Property {
  std::string name;
  std::string text;
};

struct Attribute {
  std::string name;
  Value value;
  std::vector<Property> properties;
};

// A tag turns from Leaf to Parent with its first child and never back.
enum class TagKind : std::uint8_t { Container = 0, Leaf = 1, Parent = 2 };

struct Tag {
  TagKind kind = TagKind::Leaf;
  std::string name;
  std::optional<Value> value;
  std::vector<Property> properties;
  std::vector<std::unique_ptr<Attribute>> attributes;
  std::vector<std::unique_ptr<Tag>> children;  // changed only by AppendChild and SwapChildren
  std::vector<std::uint16_t> childMarks;       // one for each child, from its name: see FindChild
};

// One piece of a tree saved in split form: where it lies, how long it is, whose it is.
struct SaveIndexEntry {
  std::size_t offset = 0;
  std::size_t length = 0;
  std::string name;
  std::string buffer;
};

struct TagTree {
  bool saveFlag = false;  // byte order of the length in split form: false big-endian, true little-endian
  std::vector<SaveIndexEntry> saveIndex;  // filled only while the tree is saved in split form
  Tag container;                          // nameless; its first child is the root
};

// A String value that fits one line: cut at its first zero byte and after the CR of its first CR LF, every LF a CR,
// blanks trimmed at both ends. A null pointer gives the empty text.
Value MakeTextValue(const char* text);
Value MakeTextValue(std::string text);
Value MakeIntValue(std::int64_t number);
Value MakeDoubleValue(double number);
Value MakeBoolValue(bool flag);
Value CopyValue(const Value& value);
void ClearValue(Value& value);

// The value's text; empty when there is no value or it is of another kind.
const std::string& TextOf(const Value* value);
const std::string& TextOf(const Attribute* attribute);
const std::string& TextOf(const Tag* tag);

// First child or attribute of that exact name, null when there is none. Owned by `tag`.
Tag* FindChild(const Tag& tag, std::string_view name);
const Attribute* FindAttribute(const Tag& tag, std::string_view name);
Attribute* FindAttribute(Tag& tag, std::string_view name);
// The element at a 0-based index, null when the index is not below the count.
Tag* ChildAt(const Tag& tag, std::size_t index);
const Attribute* AttributeAt(const Tag& tag, std::size_t index);

// Appends `child`, whatever its name; the tag becomes a parent. The new child, owned by `tag`.
Tag* AppendChild(Tag& tag, std::unique_ptr<Tag> child);
// The same with a new tag of that name.
Tag* AppendChild(Tag& tag, std::string_view name);
// Exchanges the children at two valid indexes.
void SwapChildren(Tag& tag, std::size_t first, std::size_t second);
// FindChild, or a new last child without a value.
Tag* GetOrAddChild(Tag& tag, std::string_view name);
// GetOrAddChild and SetTagValue.
Tag* SetChildValue(Tag& tag, std::string_view name, Value value);
void SetTagValue(Tag& tag, Value value);

// Replaces the value of an existing attribute (None leaves it as it is) and then ignores the property; otherwise
// appends an attribute with, when `propName` is not null, that one property. The attribute, owned by `tag`.
Attribute* SetAttribute(Tag& tag, std::string_view name, Value value, const char* propName = nullptr,
                        const char* propText = nullptr);

// Appends a property; names may repeat.
void AddTagProperty(Tag& tag, std::string name, std::string text);
void AddAttributeProperty(Attribute& attribute, std::string name, std::string text);
// First property of that name, null when there is none. Owned by `list`.
const Property* FindProperty(const std::vector<Property>& list, std::string_view name);

// The smallest n from 1 for which `tag` has no child named `base` followed by n.
int NextFreeNumber(const Tag& tag, std::string_view base);

// Makes `target` a deep copy of `source`.
void CopyTag(Tag& target, const Tag& source);

// A tree whose container holds one root tag of that name.
TagTree CreateTree(bool saveFlag, std::string_view rootName);
// Destroys everything in the tree and leaves it empty.
void DestroyTree(TagTree& tree);
// The tree's root; the tree must have been made by CreateTree.
Tag& RootOf(TagTree& tree);
const Tag& RootOf(const TagTree& tree);

// Walks `path` from the container and sets an attribute on the tag that it leads to. A leading "/" means the root, each
// further "/" ends the name of a child (the first of that name, else a new one; the empty name is a name), the rest
// names the attribute. An existing attribute gets the value and, when both are given, the property; a new one gets the
// property when `propName` is not null.
Attribute* SetAttributeByPath(TagTree& tree, std::string_view path, Value value, const char* propName = nullptr,
                              const char* propText = nullptr);
