// Binary property lists as plain values, by way of libplist.
#include "platform/portable/plist_binary.h"

#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "platform/plist_limits.h"
#include "platform/portable/plist_scalars.h"

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
  PropertyList dictionary = MakeNode(PropertyListKind::Dictionary);
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
  PropertyList array = MakeNode(PropertyListKind::Array);
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
  std::uint64_t bits = 0;
  plist_get_uint_val(node, &bits);
  return IsLargest(node, bits) ? MakeLargeNumber(bits) : MakeWholeNumber(static_cast<std::int64_t>(bits));
}

PropertyList ConvertReal(plist_t node) {
  double number = 0.0;
  plist_get_real_val(node, &number);
  return MakeReal(number);
}

PropertyList ConvertText(plist_t node) {
  std::uint64_t size = 0;
  const char* bytes = plist_get_string_ptr(node, &size);
  return MakeText(bytes ? std::string(bytes, size) : std::string());
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
  std::int32_t seconds = 0, microseconds = 0;
  plist_get_date_val(node, &seconds, &microseconds);
  const bool fits = seconds != INT32_MIN && seconds != INT32_MAX;
  return MakeDate(fits ? seconds : SecondsInBinary(node));
}

PropertyList ConvertBoolean(plist_t node) {
  std::uint8_t flag = 0;
  plist_get_bool_val(node, &flag);
  return MakeBoolean(flag != 0);
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
    case PLIST_DATA:
      return MakeData();
    default:
      return PropertyList();
  }
}

}  // namespace

PropertyList ReadBinaryList(std::string_view document, std::size_t mostValues) {
  if (document.size() > UINT32_MAX || !BinaryNestingIsSafe(document, mostValues)) return PropertyList();
  plist_t root = nullptr;
  plist_from_bin(document.data(), static_cast<std::uint32_t>(document.size()), &root);
  const OwnedNode owner(root);
  return root ? Convert(root) : PropertyList();
}
