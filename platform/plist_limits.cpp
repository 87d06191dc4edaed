// Counts what is open in an XML property list, and what a binary one would unfold into, without parsing either.
#include "platform/plist_limits.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

// Moves past `end` when the text at `at` begins with `begin`; the rest of the document when `end` is missing.
bool SkipPast(std::string_view document, std::size_t& at, std::string_view begin, std::string_view end) {
  if (document.substr(at, begin.size()) != begin) return false;
  const std::size_t found = document.find(end, at + begin.size());
  at = found == std::string_view::npos ? document.size() : found + end.size();
  return true;
}

bool NamesContainer(std::string_view tag) {
  const std::string_view name = tag.substr(0, tag.find_first_of(" \t\r\n/"));
  return name == "dict" || name == "array";
}

constexpr std::size_t kTrailerSize = 32;
constexpr std::size_t kBytesPerValue = 64;  // text and data count as further values: a text can be held many times

// The objects of a binary property list: markers, lengths and references, each read only where the document has bytes.
class BinaryObjects {
 public:
  explicit BinaryObjects(std::string_view document) : document_(document) {
    const std::size_t trailer = document.size() - kTrailerSize;
    offsetSize_ = Number(trailer + 6, 1);
    referenceSize_ = Number(trailer + 7, 1);
    count_ = std::min<std::uint64_t>(Number(trailer + 8, 8), document.size());
    root_ = Number(trailer + 16, 8);
    table_ = Number(trailer + 24, 8);
    totals_.resize(count_);
  }

  bool IsSafe() { return Measure(root_, 1) != 0; }

 private:
  struct Total {
    std::size_t values = 0;  // 0 while unknown
    std::size_t height = 0;
    bool open = false;
    bool dictionary = false;
    bool holdsZero = false;  // UTF-16 text with a zero character: as a key it makes libplist abort
  };
  enum Type : std::uint64_t { kData = 4, kAscii, kUtf16, kArray = 0xA, kSet = 0xC, kDictionary };

  std::uint64_t Number(std::uint64_t at, std::uint64_t size) const {
    std::uint64_t number = 0;
    if (size > 8 || at > document_.size() || size > document_.size() - at) return UINT64_MAX;
    for (std::uint64_t i = 0; i < size; ++i) number = number << 8 | static_cast<unsigned char>(document_[at + i]);
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

  // The references of the container at `at`; none when it is no container.
  std::vector<std::uint64_t> References(std::uint64_t at) const {
    std::uint64_t length = 0;
    const std::uint64_t type = ReadHead(at, length);
    if (type != kArray && type != kSet && type != kDictionary) return {};
    if (type == kDictionary) length *= 2;  // keys, then values
    std::vector<std::uint64_t> references;
    for (std::uint64_t i = 0; i < length; ++i) references.push_back(Number(at + i * referenceSize_, referenceSize_));
    return references;
  }

  // What the object at `at` counts for by itself, without what it refers to.
  Total MeasureItself(std::uint64_t at) const {
    Total total;
    std::uint64_t length = 0;
    const std::uint64_t type = ReadHead(at, length);
    total.dictionary = type == kDictionary;
    total.values = 1;
    if (type != kData && type != kAscii && type != kUtf16) return total;
    total.values += length / kBytesPerValue;
    for (std::uint64_t i = 0; type == kUtf16 && i < length && !total.holdsZero; ++i)
      total.holdsZero = Number(at + i * 2, 2) == 0;
    return total;
  }

  // Values below and including `object`, 0 when it is not safe.
  std::size_t Measure(std::uint64_t object, std::size_t depth) {
    if (object >= count_) return 1;
    Total& total = totals_[object];
    if (total.open || depth + total.height > kMaxOpenContainers + 1) return 0;
    if (total.values) return total.values;
    const std::uint64_t at = OffsetOf(object);
    total = MeasureItself(at);
    total.open = true;
    std::size_t values = total.values, height = 0;
    const std::vector<std::uint64_t> references = References(at);
    for (std::size_t i = 0; i < references.size(); ++i) {
      const std::size_t below = Measure(references[i], depth + 1);
      if (!below || (values += below) > kMaxBinaryValues) return 0;
      if (references[i] >= count_) continue;
      const Total& held = totals_[references[i]];
      if (total.dictionary && i < references.size() / 2 && held.holdsZero) return 0;
      height = std::max(height, held.height + 1);
    }
    total.open = false;
    total.values = values;
    total.height = height;
    return values;
  }

  std::string_view document_;
  std::uint64_t offsetSize_ = 0, referenceSize_ = 0, count_ = 0, root_ = 0, table_ = 0;
  std::vector<Total> totals_;
};

}  // namespace

bool IsBinaryPropertyList(std::string_view document) { return document.substr(0, 6) == "bplist"; }

bool XmlNestingIsSafe(std::string_view document) {
  std::size_t open = 0;
  for (std::size_t at = document.find('<'); at != std::string_view::npos; at = document.find('<', at)) {
    if (SkipPast(document, at, "<!--", "-->") || SkipPast(document, at, "<![CDATA[", "]]>")) continue;
    const std::size_t end = std::min(document.find('>', at), document.size());
    const std::string_view tag = document.substr(at + 1, end - at - 1);
    const bool closes = !tag.empty() && tag.front() == '/';
    const bool empty = !tag.empty() && tag.back() == '/';
    if (closes && open > 0 && NamesContainer(tag.substr(1))) --open;
    if (!closes && !empty && NamesContainer(tag) && ++open > kMaxOpenContainers) return false;
    at = end;
  }
  return true;
}

bool BinaryNestingIsSafe(std::string_view document) {
  return document.size() < kTrailerSize || BinaryObjects(document).IsSafe();
}
