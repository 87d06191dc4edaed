// Text of a file made fit for a terminal, a table or a document in UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What stands for a byte that cannot be shown: U+FFFD in UTF-8.
constexpr char kReplacement[] = "\xEF\xBF\xBD";

// `text` in UTF-8: each byte that belongs to no valid sequence, and each zero byte, becomes U+FFFD.
std::string CleanUtf8(std::string_view text);

// CleanUtf8, and control characters and those that change the direction of text written as "\r", "\x1B" or "\u202E",
// so that a file can neither steer a terminal nor show what it does not say.
std::string Printable(std::string_view text);
// The same for a text of several lines, whose line ends and tabs stay.
std::string PrintableLines(std::string_view text);

// The one of `names` that takes the fewest insertions, deletions and replacements of bytes to become `name`, one more
// than a third of its length at most; empty when there is none.
std::string Nearest(std::string_view name, const std::vector<std::string>& names);

// "1 byte", "2 bytes".
std::string Bytes(std::uint64_t count);

// Characters of a text in UTF-8.
std::size_t Width(std::string_view text);

// `text` and blanks up to `width` characters.
std::string PadRight(std::string text, std::size_t width);
// Blanks up to `width` characters and `text`.
std::string PadLeft(const std::string& text, std::size_t width);

// A whole number in decimal digits alone; no value for anything else and for one that 64 bits do not hold.
std::optional<std::uint64_t> ParseNumber(std::string_view digits);
