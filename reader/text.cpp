// UTF-8 is checked strictly: no overlong forms, no surrogates, nothing beyond U+10FFFF.
#include "reader/text.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <numeric>
#include <utility>

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

// The character of a valid sequence.
std::uint32_t CodePoint(std::string_view sequence) {
  constexpr unsigned kBits[] = {0x7F, 0x7F, 0x1F, 0x0F, 0x07};  // of the lead that belong to the character, by length
  std::uint32_t point = static_cast<unsigned char>(sequence[0]) & kBits[sequence.size()];
  for (std::size_t i = 1; i < sequence.size(); ++i)
    point = point << 6 | (static_cast<unsigned char>(sequence[i]) & 0x3F);
  return point;
}

// Controls, and the embeddings, overrides and isolates of the bidirectional algorithm.
bool SteersTerminal(std::uint32_t point) {
  constexpr std::pair<std::uint32_t, std::uint32_t> kRanges[] = {
      {0x00, 0x1F}, {0x7F, 0x9F}, {0x202A, 0x202E}, {0x2066, 0x2069}};
  return std::any_of(std::begin(kRanges), std::end(kRanges),
                     [point](const auto& range) { return point >= range.first && point <= range.second; });
}

std::string Escape(std::uint32_t point) {
  if (point == '\r') return "\\r";
  char escape[16];
  std::snprintf(escape, sizeof escape, point < 0x20 ? "\\x%02X" : "\\u%04X", static_cast<unsigned>(point));
  return escape;
}

enum class Controls { Stay, Escaped, EscapedInLines };

bool IsEscaped(std::string_view rest, std::size_t length, Controls controls) {
  if (controls == Controls::Stay || !SteersTerminal(CodePoint(rest.substr(0, length)))) return false;
  const bool lineEnd = rest[0] == '\n' || rest[0] == '\t' || rest.substr(0, 2) == "\r\n";
  return controls == Controls::Escaped || !lineEnd;
}

std::string Clean(std::string_view text, Controls controls) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = SequenceLength(text);
    const std::string_view sequence = text.substr(0, length == 0 ? 1 : length);
    if (length == 0 || sequence[0] == '\0')
      result += kReplacement;
    else if (IsEscaped(text, length, controls))
      result += Escape(CodePoint(sequence));
    else
      result += sequence;
    text.remove_prefix(sequence.size());
  }
  return result;
}

std::size_t EditDistance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);  // from the part of `from` so far to each beginning of `to`
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t replaced = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[to.size()];
}

}  // namespace

std::string CleanUtf8(std::string_view text) { return Clean(text, Controls::Stay); }

std::string Printable(std::string_view text) { return Clean(text, Controls::Escaped); }

std::string PrintableLines(std::string_view text) { return Clean(text, Controls::EscapedInLines); }

std::string Nearest(std::string_view name, const std::vector<std::string>& names) {
  std::string nearest;
  std::size_t least = name.size() / 3 + 2;
  for (const std::string& candidate : names) {
    const std::size_t distance = EditDistance(name, candidate);
    if (distance >= least) continue;
    least = distance;
    nearest = candidate;
  }
  return nearest;
}

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
