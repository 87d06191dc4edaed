// Property-list documents as plain values: plain XML is read directly, everything else parsed by libplist, whose word
// counts in every doubtful case.
#include "platform/plist_document.h"

#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "platform/plist_limits.h"
#include "platform/plist_xml.h"

namespace {

struct FreeNode {
  void operator()(void* node) const { plist_free(node); }
};
struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};
using OwnedNode = std::unique_ptr<void, FreeNode>;

PropertyList Convert(plist_t node);

PropertyList ConvertDictionary(plist_t node) {
  PropertyList dictionary;
  dictionary.kind = PropertyListKind::Dictionary;
  const std::uint32_t size = plist_dict_get_size(node);
  dictionary.keys.reserve(size);
  dictionary.items.reserve(size);
  plist_dict_iter rawIterator = nullptr;
  plist_dict_new_iter(node, &rawIterator);
  const std::unique_ptr<void, FreeMemory> iterator(rawIterator);
  for (std::uint32_t i = 0; i < size; ++i) {
    char* rawKey = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(node, iterator.get(), &rawKey, &value);
    const std::unique_ptr<char, FreeMemory> key(rawKey);
    if (!value) break;
    dictionary.keys.emplace_back(key ? key.get() : "");
    dictionary.items.push_back(Convert(value));
  }
  return dictionary;
}

PropertyList ConvertArray(plist_t node) {
  PropertyList array;
  array.kind = PropertyListKind::Array;
  const std::uint32_t size = plist_array_get_size(node);
  array.items.reserve(size);
  plist_array_iter rawIterator = nullptr;
  plist_array_new_iter(node, &rawIterator);
  const std::unique_ptr<void, FreeMemory> iterator(rawIterator);
  for (std::uint32_t i = 0; i < size; ++i) {
    plist_t value = nullptr;
    plist_array_next_item(node, iterator.get(), &value);
    if (!value) break;
    array.items.push_back(Convert(value));
  }
  return array;
}

// One scalar as libplist writes it in binary: the kind at 8, the value from 9 on. Two things can be read only here: a
// number of 2^63 or more, and a date that does not fit 32 bits of seconds. Empty when there is no such form.
std::string BinaryForm(plist_t node) {
  char* rawBytes = nullptr;
  std::uint32_t size = 0;
  plist_to_bin(node, &rawBytes, &size);
  const std::unique_ptr<char, FreeMemory> bytes(rawBytes);
  return bytes ? std::string(bytes.get(), size) : std::string();
}

// 2^64-1 has the bits of -1, but takes sixteen bytes in binary.
bool IsLargest(plist_t node, std::uint64_t bits) {
  constexpr char kSixteenBytes = 0x14;
  if (bits != UINT64_MAX) return false;
  const std::string form = BinaryForm(node);
  return form.size() > 8 && form[8] == kSixteenBytes;
}

PropertyList ConvertInteger(plist_t node) {
  PropertyList number;
  number.kind = PropertyListKind::Number;
  std::uint64_t bits = 0;
  plist_get_uint_val(node, &bits);
  number.integer = static_cast<std::int64_t>(bits);
  const bool kept = KeptWholeNumber(number.integer) && !IsLargest(node, bits);
  number.numberType = kept ? NumberType::SInt32 : NumberType::SInt64;
  return number;
}

PropertyList ConvertReal(plist_t node) {
  PropertyList number;
  number.kind = PropertyListKind::Number;
  number.numberType = NumberType::Float64;
  number.real = 0.0;
  plist_get_real_val(node, &number.real);
  return number;
}

PropertyList ConvertText(plist_t node) {
  PropertyList text;
  text.kind = PropertyListKind::Text;
  std::uint64_t size = 0;
  if (const char* bytes = plist_get_string_ptr(node, &size)) text.text.assign(bytes, size);
  return text;
}

double SecondsInBinary(plist_t node) {
  constexpr char kDate = 0x33;
  const std::string form = BinaryForm(node);
  if (form.size() < 17 || form[8] != kDate) return 0.0;
  std::uint64_t bits = 0;
  for (std::size_t i = 9; i < 17; ++i) bits = bits << 8 | static_cast<unsigned char>(form[i]);
  double seconds = 0.0;
  std::memcpy(&seconds, &bits, sizeof seconds);
  return seconds;
}

PropertyList ConvertDate(plist_t node) {
  PropertyList date;
  date.kind = PropertyListKind::Date;
  std::int32_t seconds = 0, microseconds = 0;
  plist_get_date_val(node, &seconds, &microseconds);
  const bool fits = seconds != INT32_MIN && seconds != INT32_MAX;
  date.real = fits ? seconds : SecondsInBinary(node);
  return date;
}

PropertyList ConvertBoolean(plist_t node) {
  PropertyList boolean;
  boolean.kind = PropertyListKind::Boolean;
  std::uint8_t flag = 0;
  plist_get_bool_val(node, &flag);
  boolean.integer = flag ? 1 : 0;
  return boolean;
}

PropertyList Convert(plist_t node) {
  switch (plist_get_node_type(node)) {
    case PLIST_DICT:
      return ConvertDictionary(node);
    case PLIST_ARRAY:
      return ConvertArray(node);
    case PLIST_STRING:
      return ConvertText(node);
    case PLIST_UINT:
      return ConvertInteger(node);
    case PLIST_REAL:
      return ConvertReal(node);
    case PLIST_DATE:
      return ConvertDate(node);
    case PLIST_BOOLEAN:
      return ConvertBoolean(node);
    case PLIST_DATA: {
      PropertyList data;
      data.kind = PropertyListKind::Data;
      return data;
    }
    default:
      return PropertyList();
  }
}

PropertyList ParseByLibplist(const std::string& document, bool binary) {
  if (!(binary ? BinaryNestingIsSafe(document) : XmlNestingIsSafe(document))) return PropertyList();
  plist_t root = nullptr;
  const auto size = static_cast<std::uint32_t>(document.size());
  if (binary)
    plist_from_bin(document.data(), size, &root);
  else
    plist_from_xml(document.data(), size, &root);
  const OwnedNode owner(root);
  return root ? Convert(root) : PropertyList();
}

}  // namespace

PropertyList ParseDocument(const std::string& document) {
  if (document.empty() || document.size() > UINT32_MAX) return PropertyList();
  const bool binary = IsBinaryPropertyList(document);
  if (!binary)
    if (std::optional<PropertyList> list = ReadPlainXml(document)) return std::move(*list);
  return ParseByLibplist(document, binary);
}
