// Whether a property-list document is safe to hand to a parser that recurses: found out before any parser sees it.
#pragma once

#include <cstddef>
#include <string_view>

constexpr std::size_t kMaxOpenContainers = 512;
constexpr std::size_t kMaxBinaryValues = 1000000;

bool IsBinaryPropertyList(std::string_view document);

// True when no more than kMaxOpenContainers dictionaries and arrays are ever open at once in an XML document. Comments,
// CDATA and declarations do not count; the document need not be well-formed.
bool XmlNestingIsSafe(std::string_view document);

// True when a binary document's values, every reference followed, are at most kMaxBinaryValues (each 64 bytes of text
// or data one more), nest no deeper than kMaxOpenContainers, never hold themselves, and no key in UTF-16 has a zero
// character. References that lead nowhere are left to the parser.
bool BinaryNestingIsSafe(std::string_view document);
