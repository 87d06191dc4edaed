// UTF-8 is checked strictly: no overlong forms, no surrogates, nothing beyond U+10FFFF.
#include "reader/text.h"

#include <cstdio>

namespace {

// What may follow a lead byte: some have a narrower range for the next one, which would else be overlong, a surrogate
// or too large.
struct Lead {
  unsigned char first, last;
  unsigned char length;  // of the sequence
  unsigned char lowest, highest;
};

constexpr Lead kLeads[] = {{0x00, 0x7F, 1, 0, 0},       {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF},
                           {0xE1, 0xEC, 3, 0x80, 0xBF}, {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF},
                           {0xF0, 0xF0, 4, 0x90, 0xBF}, {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F}};

bool Continues(std::string_view text, const Lead& lead) {
  if (text.size() < lead.length) return false;
  for (std::size_t i = 1; i < lead.length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool second = i == 1;
    if (byte < (second ? lead.lowest : 0x80) || byte > (second ? lead.highest : 0xBF)) return false;
  }
  return true;
}

// Bytes of the valid sequence that `text` begins with, 0 when it begins with none.
std::size_t SequenceLength(std::string_view text) {
  const auto byte = static_cast<unsigned char>(text[0]);
  for (const Lead& lead : kLeads)
    if (byte >= lead.first && byte <= lead.last) return Continues(text, lead) ? lead.length : 0;
  return 0;
}

bool IsControl(std::string_view sequence) {
  const auto first = static_cast<unsigned char>(sequence[0]);
  if (sequence.size() == 1) return first < 0x20 || first == 0x7F;
  return first == 0xC2 && static_cast<unsigned char>(sequence[1]) < 0xA0;  // U+0080 to U+009F
}

void AppendEscape(std::string& result, std::string_view sequence) {
  if (sequence == "\r") {
    result += "\\r";
    return;
  }
  char escape[8];
  std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned>(static_cast<unsigned char>(sequence.back())));
  result += escape;
}

std::string Clean(std::string_view text, bool escapeControls) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = SequenceLength(text);
    const std::string_view sequence = text.substr(0, length == 0 ? 1 : length);
    if (length == 0 || sequence[0] == '\0') {
      result += kReplacement;
    } else if (escapeControls && IsControl(sequence)) {
      AppendEscape(result, sequence);
    } else {
      result += sequence;
    }
    text.remove_prefix(sequence.size());
  }
  return result;
}

}  // namespace

std::string CleanUtf8(std::string_view text) { return Clean(text, false); }

std::string Printable(std::string_view text) { return Clean(text, true); }

std::string Bytes(std::uint64_t count) { return std::to_string(count) + (count == 1 ? " byte" : " bytes"); }

std::size_t Width(std::string_view text) {
  std::size_t width = 0;
  for (const char c : text) width += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
  return width;
}

std::string PadRight(std::string text, std::size_t width) {
  const std::size_t have = Width(text);
  if (have < width) text.append(width - have, ' ');
  return text;
}

std::string PadLeft(const std::string& text, std::size_t width) {
  const std::size_t have = Width(text);
  return have < width ? std::string(width - have, ' ') + text : text;
}

std::optional<std::uint64_t> ParseNumber(std::string_view digits) {
  std::uint64_t number = 0;
  for (const char c : digits) {
    const auto digit = static_cast<std::uint64_t>(c - '0');
    if (c < '0' || c > '9' || number > (UINT64_MAX - digit) / 10) return std::nullopt;
    number = number * 10 + digit;
  }
  return digits.empty() ? std::nullopt : std::optional(number);
}
