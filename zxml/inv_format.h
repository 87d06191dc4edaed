// The bytes of an INV file that are the same in each: what the writer puts and the reader looks for. docs/inv-format.md
// tells how they stand together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

enum class InvSectionType : std::uint32_t { AssetInfo = 0, Snapshot = 1, RawData = 2 };

// Words of the types in the index.
constexpr std::pair<InvSectionType, const char*> kInvTypeWords[] = {{InvSectionType::AssetInfo, "assetinfo"},
                                                                    {InvSectionType::Snapshot, "snapshot"},
                                                                    {InvSectionType::RawData, "customdata"}};

// The type's word; empty for a number that is no type.
constexpr const char* InvTypeWord(InvSectionType type) {
  for (const auto& [known, word] : kInvTypeWords)
    if (known == type) return word;
  return "";
}

// The trailer: offset of the index in either byte order, format version, index compression, magic.
constexpr std::string_view kInvMagic = "INV!";
constexpr char kInvVersion = 3;
constexpr std::size_t kInvOffsetSize = 8;
constexpr std::size_t kInvVersionAt = kInvOffsetSize;
constexpr std::size_t kInvIndexFlagAt = kInvVersionAt + 1;
constexpr std::size_t kInvMagicAt = kInvIndexFlagAt + 1;
constexpr std::size_t kInvTrailerSize = kInvMagicAt + kInvMagic.size();

// The first line of zXML text, with and without its line feed.
constexpr std::string_view kZxmlHeader = "\xEF\xBB\xBF?zxml\n";
constexpr std::string_view kZxmlHeaderLine = kZxmlHeader.substr(0, kZxmlHeader.size() - 1);

// How the saved forms end: split flag and compression flag, and then for one of them a mark.
constexpr std::string_view kDeflatedEnd("\0\1ZXML", 6);
constexpr std::string_view kSplitPlainEnd("\1\0", 2);
constexpr std::string_view kSplitDeflatedEnd("\1\1", 2);
constexpr std::size_t kPlainPadding = 102;  // deliberate: zero bytes behind the plain form in one piece
// The split forms have the length of all pieces in front of the flags, in either byte order.
constexpr std::size_t kSplitLengthSize = 4;
constexpr std::size_t kSplitEndSize = kSplitLengthSize + kSplitPlainEnd.size();

// Appends the lowest `size` bytes of `number`.
inline void PutNumber(std::string& buffer, std::uint64_t number, std::size_t size, bool littleEndian) {
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t shift = 8 * (littleEndian ? i : size - 1 - i);
    buffer.push_back(static_cast<char>((number >> shift) & 0xFF));
  }
}

// The number that all of `bytes` are, eight at most.
inline std::uint64_t GetNumber(std::string_view bytes, bool littleEndian) {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i)
    number = (number << 8) | static_cast<unsigned char>(bytes[littleEndian ? bytes.size() - 1 - i : i]);
  return number;
}
