// The operations of the tag tree. Every look-up is a scan in the order of insertion; long lists of children are scanned
// over the packed marks of their names, which say at once which children cannot be meant. A map from names would have
// to be kept in step with names that repeat and with children that change places, for the sake of a few long lists.
#include "zxml/tag.h"

#include <algorithm>
#include <utility>

namespace {

// The length and the last sixteen bytes of a name, folded into two bytes: equal names have equal marks.
std::uint16_t NameMark(std::string_view name) {
  auto mark = static_cast<std::uint32_t>(name.size());
  const std::size_t tail = std::min<std::size_t>(name.size(), 16);
  for (std::size_t i = name.size() - tail; i < name.size(); ++i)
    mark = ((mark << 5) | (mark >> 27)) ^ static_cast<unsigned char>(name[i]);
  return static_cast<std::uint16_t>(mark ^ (mark >> 16));
}

constexpr std::size_t kUsualAttributes = 8;
constexpr std::size_t kMarkBlock = 64;
constexpr std::uint16_t kHit = 0xFFFF, kMiss = 0;

// The first index from `from` on whose mark is `mark`, or the count. A block at a time, so that the compiler can
// compare several marks with one instruction.
std::size_t NextMark(const std::vector<std::uint16_t>& marks, std::size_t from, std::uint16_t mark) {
  const std::uint16_t* data = marks.data();
  std::size_t i = from;
  for (; i + kMarkBlock <= marks.size(); i += kMarkBlock) {
    std::uint16_t hits = 0;
    for (std::size_t k = 0; k < kMarkBlock; ++k) hits |= data[i + k] == mark ? kHit : kMiss;
    if (hits) break;
  }
  while (i < marks.size() && data[i] != mark) ++i;
  return i;
}

void AssignValue(Value& target, Value source) {
  if (source.kind != ValueKind::None) target = std::move(source);
}

const Value* ValueOf(const Tag* tag) { return tag && tag->value ? &*tag->value : nullptr; }

bool BreaksLine(char c) { return static_cast<unsigned char>(c) <= '\r' && (c == '\n' || c == '\r' || c == '\0'); }

// The text ends at its first zero byte and after the CR of its first CR LF; every other line break becomes CR.
void NormaliseLineBreaks(std::string& text) {
  for (auto at = std::find_if(text.begin(), text.end(), BreaksLine); at != text.end();
       at = std::find_if(at + 1, text.end(), BreaksLine)) {
    const bool pair = *at == '\r' && at + 1 != text.end() && at[1] == '\n';
    if (*at == '\0' || pair) {
      text.erase(pair ? at + 1 : at, text.end());  // deliberate: all that follows the first CR LF is dropped
      return;
    }
    *at = '\r';
  }
}

void TrimBlanks(std::string& text) {
  if (!text.empty() && text.front() == ' ') text.erase(0, text.find_first_not_of(' '));
  while (text.size() >= 2 && text.back() == ' ') text.pop_back();
}

// The number that `name` has behind `base`, written as "%d" writes it; 0 when it has none or one of over nine digits.
std::size_t NumberBehind(std::string_view name, std::string_view base) {
  if (name.substr(0, base.size()) != base) return 0;
  const std::string_view digits = name.substr(base.size());
  if (digits.empty() || digits.size() > 9 || digits[0] == '0') return 0;
  std::size_t number = 0;
  for (const char c : digits) {
    if (c < '0' || c > '9') return 0;
    number = number * 10 + static_cast<std::size_t>(c - '0');
  }
  return number;
}

void OverwriteProperty(std::vector<Property>& list, const char* name, const char* text) {
  for (Property& property : list) {
    if (property.name != name) continue;
    property.text = text;
    return;
  }
  list.push_back({name, text});
}

Attribute* AppendAttribute(Tag& tag, std::string_view name, Value value, const char* propName, const char* propText) {
  if (tag.attributes.capacity() == 0) tag.attributes.reserve(kUsualAttributes);
  Attribute* attribute = tag.attributes.emplace_back(std::make_unique<Attribute>()).get();
  attribute->name = name;
  attribute->value = std::move(value);
  if (propName) attribute->properties.push_back({propName, propText ? propText : ""});
  return attribute;
}

}  // namespace

Value MakeTextValue(const char* text) { return MakeTextValue(std::string(text ? text : "")); }

Value MakeTextValue(std::string text) {
  NormaliseLineBreaks(text);
  TrimBlanks(text);
  Value value;
  value.kind = ValueKind::String;
  value.text = std::move(text);
  return value;
}

Value MakeIntValue(std::int64_t number) {
  Value value;
  value.kind = ValueKind::Int;
  value.integer = number;
  return value;
}

Value MakeDoubleValue(double number) {
  Value value;
  value.kind = ValueKind::Double;
  value.real = number;
  return value;
}

Value MakeBoolValue(bool flag) {
  Value value;
  value.kind = ValueKind::Bool;
  value.boolean = flag;
  return value;
}

Value CopyValue(const Value& value) { return value; }

void ClearValue(Value& value) { value = Value(); }

const std::string& TextOf(const Value* value) {
  static const std::string empty;
  return value && value->kind == ValueKind::String ? value->text : empty;
}

const std::string& TextOf(const Attribute* attribute) { return TextOf(attribute ? &attribute->value : nullptr); }

const std::string& TextOf(const Tag* tag) { return TextOf(ValueOf(tag)); }

Tag* FindChild(const Tag& tag, std::string_view name) {
  if (tag.children.empty()) return nullptr;
  const std::uint16_t mark = NameMark(name);
  for (std::size_t i = NextMark(tag.childMarks, 0, mark); i < tag.children.size();
       i = NextMark(tag.childMarks, i + 1, mark))
    if (tag.children[i]->name == name) return tag.children[i].get();
  return nullptr;
}

const Attribute* FindAttribute(const Tag& tag, std::string_view name) {
  for (const auto& attribute : tag.attributes)
    if (attribute->name == name) return attribute.get();
  return nullptr;
}

Attribute* FindAttribute(Tag& tag, std::string_view name) {
  return const_cast<Attribute*>(FindAttribute(std::as_const(tag), name));
}

Tag* ChildAt(const Tag& tag, std::size_t index) {
  return index < tag.children.size() ? tag.children[index].get() : nullptr;
}

const Attribute* AttributeAt(const Tag& tag, std::size_t index) {
  return index < tag.attributes.size() ? tag.attributes[index].get() : nullptr;
}

Tag* AppendChild(Tag& tag, std::unique_ptr<Tag> child) {
  if (tag.kind == TagKind::Leaf) tag.kind = TagKind::Parent;
  tag.childMarks.push_back(NameMark(child->name));
  tag.children.push_back(std::move(child));
  return tag.children.back().get();
}

Tag* AppendChild(Tag& tag, std::string_view name) {
  auto child = std::make_unique<Tag>();
  child->name = name;
  return AppendChild(tag, std::move(child));
}

void SwapChildren(Tag& tag, std::size_t first, std::size_t second) {
  std::swap(tag.children[first], tag.children[second]);
  std::swap(tag.childMarks[first], tag.childMarks[second]);
}

Tag* GetOrAddChild(Tag& tag, std::string_view name) {
  Tag* child = FindChild(tag, name);
  return child ? child : AppendChild(tag, name);
}

Tag* SetChildValue(Tag& tag, std::string_view name, Value value) {
  Tag* child = GetOrAddChild(tag, name);
  SetTagValue(*child, std::move(value));
  return child;
}

void SetTagValue(Tag& tag, Value value) { tag.value = std::move(value); }

Attribute* SetAttribute(Tag& tag, std::string_view name, Value value, const char* propName, const char* propText) {
  Attribute* attribute = FindAttribute(tag, name);
  if (!attribute) return AppendAttribute(tag, name, std::move(value), propName, propText);
  AssignValue(attribute->value, std::move(value));
  return attribute;
}

void AddTagProperty(Tag& tag, std::string name, std::string text) {
  tag.properties.push_back({std::move(name), std::move(text)});
}

void AddAttributeProperty(Attribute& attribute, std::string name, std::string text) {
  attribute.properties.push_back({std::move(name), std::move(text)});
}

const Property* FindProperty(const std::vector<Property>& list, std::string_view name) {
  for (const Property& property : list)
    if (property.name == name) return &property;
  return nullptr;
}

int NextFreeNumber(const Tag& tag, std::string_view base) {
  std::vector<bool> taken(tag.children.size() + 2);  // one of the numbers up to the count plus 1 is free
  for (const auto& child : tag.children) {
    const std::size_t number = NumberBehind(child->name, base);
    if (number < taken.size()) taken[number] = true;
  }
  taken[0] = true;
  return static_cast<int>(std::find(taken.begin(), taken.end(), false) - taken.begin());
}

void CopyTag(Tag& target, const Tag& source) {
  Tag copy;
  copy.kind = source.kind;
  copy.name = source.name;
  copy.value = source.value;
  copy.properties = source.properties;
  copy.childMarks = source.childMarks;
  for (const auto& attribute : source.attributes) copy.attributes.push_back(std::make_unique<Attribute>(*attribute));
  for (const auto& child : source.children) {
    copy.children.push_back(std::make_unique<Tag>());
    CopyTag(*copy.children.back(), *child);
  }
  target = std::move(copy);
}

TagTree CreateTree(bool saveFlag, std::string_view rootName) {
  TagTree tree;
  tree.saveFlag = saveFlag;
  tree.container.kind = TagKind::Container;
  GetOrAddChild(tree.container, rootName);
  return tree;
}

void DestroyTree(TagTree& tree) { tree = TagTree(); }

Tag& RootOf(TagTree& tree) { return *tree.container.children.front(); }

const Tag& RootOf(const TagTree& tree) { return *tree.container.children.front(); }

Attribute* SetAttributeByPath(TagTree& tree, std::string_view path, Value value, const char* propName,
                              const char* propText) {
  Tag* tag = &tree.container;
  if (!path.empty() && path.front() == '/') {
    tag = &RootOf(tree);
    path.remove_prefix(1);
  }
  for (std::size_t slash = path.find('/'); slash != std::string_view::npos; slash = path.find('/')) {
    tag = GetOrAddChild(*tag, path.substr(0, slash));
    path.remove_prefix(slash + 1);
  }
  Attribute* attribute = SetAttribute(*tag, path, std::move(value), propName, propText);
  if (propName && propText) OverwriteProperty(attribute->properties, propName, propText);
  return attribute;
}
