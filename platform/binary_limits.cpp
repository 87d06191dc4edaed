// Follows the references of a binary property list to find out what it would unfold into, without parsing it.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "platform/plist_limits.h"

namespace {

constexpr std::size_t kTrailerSize = 32;

// The objects of a binary property list: markers, lengths and references, each read only where the document has bytes.
class BinaryObjects {
 public:
  BinaryObjects(std::string_view document, std::size_t mostValues) : document_(document), mostValues_(mostValues) {
    const std::size_t trailer = document.size() - kTrailerSize;
    offsetSize_ = Number(trailer + 6, 1);
    referenceSize_ = Number(trailer + 7, 1);
    count_ = std::min<std::uint64_t>(Number(trailer + 8, 8), document.size());
    root_ = Number(trailer + 16, 8);
    table_ = Number(trailer + 24, 8);
    totals_.resize(static_cast<std::size_t>(count_));
  }

  bool IsSafe() { return Measure(root_, 1) != 0; }

 private:
  struct Total {
    std::size_t values = 0;  // 0 while unknown
    std::size_t height = 0;  // of containers, itself included
    bool open = false;
    bool holdsZero = false;  // UTF-16 text with a zero character: as a key it makes libplist abort
  };
  enum Type : std::uint64_t { kData = 4, kAscii, kUtf16, kArray = 0xA, kSet = 0xC, kDictionary };

  std::uint64_t Number(std::uint64_t at, std::uint64_t size) const {
    std::uint64_t number = 0;
    if (size > 8 || at > document_.size() || size > document_.size() - at) return UINT64_MAX;
    for (const char byte : document_.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(size)))
      number = number << 8 | static_cast<unsigned char>(byte);
    return number;
  }

  std::uint64_t OffsetOf(std::uint64_t object) const {
    if (offsetSize_ > 8 || table_ > document_.size()) return UINT64_MAX;
    return Number(table_ + object * offsetSize_, offsetSize_);
  }

  // The marker of the object at `at`; `at` moves to its contents and `length` is how many of them there are. A length
  // that leads out of the document is 0.
  std::uint64_t ReadHead(std::uint64_t& at, std::uint64_t& length) const {
    const std::uint64_t marker = Number(at++, 1);
    length = marker & 0x0F;
    if (length == 0x0F) {
      const std::uint64_t size = std::uint64_t{1} << (Number(at++, 1) & 0x03);
      length = Number(at, size);
      at += size;
    }
    if (marker > 0xFF || length > document_.size()) length = 0;
    return marker >> 4;
  }

  // The references of a container, which are read where they lie.
  struct References {
    std::uint64_t at = 0, count = 0;
    bool ofContainer = false;
    bool ofDictionary = false;  // the first half are its keys
  };

  // Those of the object at `at`; none when it is no container.
  References ReferencesOf(std::uint64_t at) const {
    References references;
    std::uint64_t length = 0;
    const std::uint64_t type = ReadHead(at, length);
    if (type != kArray && type != kSet && type != kDictionary) return references;
    references.at = at;
    references.ofContainer = true;
    references.ofDictionary = type == kDictionary;
    references.count = references.ofDictionary ? length * 2 : length;
    return references;
  }

  // What the object at `at` counts for by itself, without what it refers to.
  Total MeasureItself(std::uint64_t at) const {
    Total total;
    std::uint64_t length = 0;
    const std::uint64_t type = ReadHead(at, length);
    total.values = 1;
    if (type != kData && type != kAscii && type != kUtf16) return total;
    total.values += static_cast<std::size_t>(length) / kBytesPerValue;
    for (std::uint64_t i = 0; type == kUtf16 && i < length && !total.holdsZero; ++i)
      total.holdsZero = Number(at + i * 2, 2) == 0;
    return total;
  }

  // Values below and including `object`, 0 when it is not safe. `depth` is 1 for the root.
  std::size_t Measure(std::uint64_t object, std::size_t depth) {
    if (object >= count_) return 1;
    Total& total = totals_[static_cast<std::size_t>(object)];
    if (total.open || depth - 1 + total.height > kMaxOpenContainers) return 0;
    if (total.values) return total.values;
    const std::uint64_t at = OffsetOf(object);
    total = MeasureItself(at);
    total.open = true;
    std::size_t values = total.values, height = 0;
    const References references = ReferencesOf(at);
    if (references.ofContainer && depth > kMaxOpenContainers) return 0;
    for (std::uint64_t i = 0; i < references.count; ++i) {
      const std::uint64_t reference = Number(references.at + i * referenceSize_, referenceSize_);
      const std::size_t below = Measure(reference, depth + 1);
      values += below;
      if (below == 0 || values > mostValues_) return 0;
      if (reference >= count_) continue;
      const Total& held = totals_[static_cast<std::size_t>(reference)];
      if (references.ofDictionary && i < references.count / 2 && held.holdsZero) return 0;
      height = std::max(height, held.height);
    }
    total.open = false;
    total.values = values;
    total.height = references.ofContainer ? height + 1 : 0;
    return values;
  }

  std::string_view document_;
  std::size_t mostValues_;
  std::uint64_t offsetSize_ = 0, referenceSize_ = 0, count_ = 0, root_ = 0, table_ = 0;
  std::vector<Total> totals_;
};

}  // namespace

bool BinaryNestingIsSafe(std::string_view document, std::size_t mostValues) {
  return document.size() < kTrailerSize || BinaryObjects(document, mostValues).IsSafe();
}
