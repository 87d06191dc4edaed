// Takes blanks, closing tags and texts off a document, by CoreFoundation's rules, which are not those of XML: any
// character may stand in a text or be referred to, and no line end is changed.
#include "platform/portable/xml_text.h"

#include "platform/plist_encoding.h"
#include "platform/portable/plist_scalars.h"

namespace {

constexpr std::string_view kCdata = "<![CDATA[", kCdataEnd = "]]>", kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kMostReferenceDigits = 8;

constexpr struct {
  std::string_view name;
  char character;
} kEntities[] = {{"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"apos", '\''}, {"quot", '"'}};

bool StartsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

// "#233" or "#xE9". deliberate: no digit at all is the character 0
bool AppendNumberedCharacter(std::string_view digits, std::string& text) {
  const bool hexadecimal = StartsWith(digits, "x");
  if (hexadecimal) digits.remove_prefix(1);
  if (digits.size() > kMostReferenceDigits) return false;
  const unsigned base = hexadecimal ? 16 : 10;
  char32_t character = 0;
  for (const char c : digits) {
    if (DigitValue(c) >= base) return false;
    character = character * base + DigitValue(c);
  }
  if (character > 0x10FFFF || (character >= 0xD800 && character < 0xE000)) return false;
  AppendUtf8(text, character);
  return true;
}

// What stands between "&" and ";".
bool AppendReference(std::string_view name, std::string& text) {
  if (StartsWith(name, "#")) return AppendNumberedCharacter(name.substr(1), text);
  for (const auto& entity : kEntities) {
    if (name != entity.name) continue;
    text += entity.character;
    return true;
  }
  return false;
}

bool AppendRaw(std::string_view raw, std::string& text) {
  text += raw;
  return raw.find('\0') == std::string_view::npos;
}

// Text without markup but with references.
bool AppendCharacters(std::string_view raw, std::string& text) {
  for (std::size_t at = raw.find('&'); at != std::string_view::npos; at = raw.find('&')) {
    const std::size_t end = raw.find(';', at);
    if (end == std::string_view::npos || !AppendRaw(raw.substr(0, at), text)) return false;
    if (!AppendReference(raw.substr(at + 1, end - at - 1), text)) return false;
    raw.remove_prefix(end + 1);
  }
  return AppendRaw(raw, text);
}

}  // namespace

void SkipBlanks(std::string_view& rest) {
  std::size_t at = 0;
  while (at < rest.size() && (rest[at] == ' ' || rest[at] == '\t' || rest[at] == '\n' || rest[at] == '\r')) ++at;
  rest.remove_prefix(at);
}

bool SkipPast(std::string_view& rest, std::string_view end, std::size_t from) {
  const std::size_t found = rest.find(end, from);
  if (found == std::string_view::npos) return false;
  rest.remove_prefix(found + end.size());
  return true;
}

bool TakeClosingTag(std::string_view& rest, std::string_view name) {
  if (!StartsWith(rest, "</")) return false;
  rest.remove_prefix(2);
  if (!StartsWith(rest, name)) return false;
  rest.remove_prefix(name.size());
  SkipBlanks(rest);
  if (!StartsWith(rest, ">")) return false;
  rest.remove_prefix(1);
  return true;
}

bool TakeText(std::string_view& rest, std::string& text) {
  text.clear();
  for (bool more = true; more;) {
    const std::size_t end = rest.find('<');
    if (end == std::string_view::npos || !AppendCharacters(rest.substr(0, end), text)) return false;
    rest.remove_prefix(end);
    more = StartsWith(rest, "<!");
    if (!more) break;
    const std::size_t close = rest.find(kCdataEnd, kCdata.size());
    if (!StartsWith(rest, kCdata) || close == std::string_view::npos) return false;
    if (!AppendRaw(rest.substr(kCdata.size(), close - kCdata.size()), text)) return false;
    rest.remove_prefix(close + kCdataEnd.size());
  }
  if (StartsWith(text, kByteOrderMark)) text.erase(0, kByteOrderMark.size());
  return IsUtf8(text);
}
