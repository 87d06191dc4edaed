// Finds out how a document is encoded, from its first bytes and its XML declaration as CoreFoundation does, and turns
// what is not UTF-8 into it.
#include "platform/plist_encoding.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF", kBigEndianMark = "\xFE\xFF", kLittleEndianMark = "\xFF\xFE";
constexpr std::string_view kUtf32Mark("\xFF\xFE\0\0", 4);  // the other one begins with a zero byte

bool StartsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

constexpr bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

std::string Utf16AsUtf8(std::string_view bytes, bool littleEndian) {
  const auto unitAt = [bytes, littleEndian](std::size_t at) -> char32_t {
    const auto first = static_cast<unsigned char>(bytes[at]), second = static_cast<unsigned char>(bytes[at + 1]);
    return littleEndian ? second * 256u + first : first * 256u + second;
  };
  std::string text;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    char32_t character = unitAt(at);
    if (IsHighSurrogate(character) && at + 3 < bytes.size() && IsLowSurrogate(unitAt(at + 2))) {
      character = 0x10000 + ((character - 0xD800) << 10) + (unitAt(at + 2) - 0xDC00);
      at += 2;
    } else if (IsHighSurrogate(character) || IsLowSurrogate(character)) {
      break;
    }
    AppendUtf8(text, character);
  }
  return text;
}

std::string Latin1AsUtf8(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) AppendUtf8(text, static_cast<unsigned char>(c));
  return text;
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// The encoding that the XML declaration names, in lower case; "utf-8" where it names none.
std::string DeclaredEncoding(std::string_view document) {
  constexpr std::string_view kStart = "<?xml", kName = "encoding=";
  const std::string_view declaration = document.substr(0, document.find_first_of("?>", kStart.size()));
  const std::size_t name = StartsWith(document, kStart) ? declaration.find(kName) : std::string_view::npos;
  const std::size_t start = name + kName.size();
  if (name == std::string_view::npos || start >= declaration.size()) return "utf-8";
  const char quote = declaration[start];
  const std::size_t end = declaration.find(quote, start + 1);
  if ((quote != '"' && quote != '\'') || end == std::string_view::npos) return "utf-8";
  std::string encoding(declaration.substr(start + 1, end - start - 1));
  for (char& c : encoding)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return encoding;
}

}  // namespace

std::optional<std::string_view> InUtf8(std::string_view document, std::string& room) {
  if (StartsWith(document, kUtf8Mark)) return document.substr(kUtf8Mark.size());
  const bool littleEndian = StartsWith(document, kLittleEndianMark);
  if (littleEndian || StartsWith(document, kBigEndianMark)) {
    if (StartsWith(document, kUtf32Mark)) return std::nullopt;
    return room = Utf16AsUtf8(document.substr(kBigEndianMark.size()), littleEndian);
  }
  if (document.substr(0, 2).find('\0') != std::string_view::npos) return std::nullopt;  // UTF-16 without a mark
  const std::string encoding = DeclaredEncoding(document);
  if (encoding == "utf-8") return document;
  if (encoding == "iso-8859-1") return room = Latin1AsUtf8(document);
  if (encoding == "us-ascii" && IsAscii(document)) return document;
  return std::nullopt;
}

void AppendUtf8(std::string& text, char32_t character) {
  const auto append = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (character < 0x80) return append(character);
  if (character >= 0x10000) {
    append(0xF0 | character >> 18);
    append(0x80 | (character >> 12 & 0x3F));
  } else if (character >= 0x800) {
    append(0xE0 | character >> 12);
  }
  append(character < 0x800 ? 0xC0 | character >> 6 : 0x80 | (character >> 6 & 0x3F));
  append(0x80 | (character & 0x3F));
}

std::size_t Utf8SequenceSize(std::string_view text) {
  struct Form {
    unsigned char mask, lead;
    char32_t least;  // the first code point that needs this many bytes
  };
  constexpr Form kForms[] = {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}};
  const auto lead = static_cast<unsigned char>(text[0]);
  for (std::size_t more = 0; more < 4; ++more) {
    const Form& form = kForms[more];
    if ((lead & form.mask) != form.lead) continue;
    if (more >= text.size()) return 0;
    char32_t character = lead & static_cast<unsigned char>(~form.mask);
    for (std::size_t i = 1; i <= more; ++i) {
      if ((text[i] & 0xC0) != 0x80) return 0;
      character = character << 6 | (text[i] & 0x3F);
    }
    const bool isCodePoint = character <= 0x10FFFF && !IsHighSurrogate(character) && !IsLowSurrogate(character);
    return isCodePoint && character >= form.least ? more + 1 : 0;
  }
  return 0;
}

bool IsUtf8(std::string_view text) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  while (!text.empty()) {
    std::uint64_t some = 0;
    const std::size_t size = std::min(text.size(), sizeof some);
    std::memcpy(&some, text.data(), size);
    const std::size_t length = some & kHighBits ? Utf8SequenceSize(text) : size;
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}
