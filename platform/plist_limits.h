// Whether a property-list document is safe to hand to a parser that recurses and that follows every reference: found
// out before any parser sees it.
#pragma once

#include <cstddef>
#include <string_view>

#include "platform/property_list.h"

constexpr std::size_t kMaxOpenContainers = 512;        // dictionaries and arrays open at once
constexpr std::size_t kMaxBinaryValues = 1000000;      // in one binary document, every reference followed
constexpr std::size_t kMaxInformationValues = 100000;  // in the information of all bundles of one folder
constexpr std::size_t kBytesPerValue = 64;  // of text and data, which count as further values: a text can be held often

bool IsBinaryPropertyList(std::string_view document);

// The most dictionaries and arrays that a parser can find open at once in an XML document, well-formed or not, or in
// one in the older text form, where each bracket counts. SIZE_MAX where parsers differ about what a construct hides: a
// quoted ">", an internal subset, "<!-->" and the like, an unknown encoding.
std::size_t XmlDepth(std::string_view document);

// XmlDepth is at most kMaxOpenContainers.
bool XmlNestingIsSafe(std::string_view document);

// True when a binary document's values, every reference followed, are at most `mostValues` (each kBytesPerValue of text
// or data one more), nest no deeper than kMaxOpenContainers, never hold themselves, and no key in UTF-16 has a zero
// character. References that lead nowhere are left to the parser.
bool BinaryNestingIsSafe(std::string_view document, std::size_t mostValues = kMaxBinaryValues);

// How many values a property list is, itself included, by the same count.
std::size_t CountValues(const PropertyList& list);
