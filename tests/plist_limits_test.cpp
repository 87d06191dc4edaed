#include "platform/plist_limits.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

std::string Times(std::size_t count, const std::string& text) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

std::string Utf16(const std::string& text) {
  std::string units = "\xFE\xFF";
  for (const char c : text) (units += '\0') += c;
  return units;
}

std::string TwoBytes(std::size_t number) {
  return {static_cast<char>(number >> 8 & 0xFF), static_cast<char>(number & 0xFF)};
}

// A binary property list of those objects, the first being the root. References take two bytes.
std::string Binary(const std::vector<std::string>& objects) {
  std::string document = "bplist00", table;
  for (const std::string& object : objects) {
    table += TwoBytes(document.size());
    document += object;
  }
  const std::size_t tableAt = document.size();
  const auto eightBytes = [](std::size_t number) { return std::string(6, '\0') + TwoBytes(number); };
  return document + table + std::string(6, '\0') + "\2\2" + eightBytes(objects.size()) + eightBytes(0) +
         eightBytes(tableAt);
}

std::string ArrayOf(const std::vector<std::size_t>& references) {
  std::string array = "\xAF\x11" + TwoBytes(references.size());
  for (const std::size_t reference : references) array += TwoBytes(reference);
  return array;
}

}  // namespace

TEST(XmlDepth, CountsWhatAParserFindsOpen) {
  constexpr std::size_t kUnclear = SIZE_MAX;
  const std::string levels = Times(600, "<array>");
  const struct {
    std::string document;
    std::size_t depth;
  } cases[] = {
      {"", 0},
      {"<plist><array><dict/></array><array></array ></plist>", 2},
      {"<array x='y'><dictionary><dict\n></dict></array>", 2},
      {"</dict></array><array>", 1},
      {"<!-- <array><array> --><array><![CDATA[<array></array>]]><dict/>", 2},
      {"<array><?x ></array>?><array>", 2},
      {"<array><?x > <!-- ?><array> --></array><array>", 2},
      {"<!-- x ---><array>", 1},
      {"<!DOCTYPE plist SYSTEM \"x\"><array>", 1},
      {"\xEF\xBB\xBF<array>", 1},
      {levels, 600},
      {Times(600, "<plist>"), 600},
      {Utf16(levels), 600},
      {"\n" + Times(600, "("), 600},
      {"<dict a=\"></dict>\">", kUnclear},
      {"<!--->" + levels + "-->", kUnclear},
      {"<!-->" + levels + "-->", kUnclear},
      {"<?>" + levels + "?>", kUnclear},
      {"<!DOCTYPE plist [ <!ENTITY a '<array>'> ]>", kUnclear},
      {"<?xml version='1.0' encoding='utf-7'?>", kUnclear},
      {std::string("<\0a\0", 4), kUnclear},
  };
  for (const auto& c : cases) EXPECT_EQ(XmlDepth(c.document), c.depth) << c.document.substr(0, 80);
}

TEST(BinaryLimits, FollowEveryReference) {
  const auto chain = [](std::size_t depth) {
    std::vector<std::string> objects;
    for (std::size_t i = 1; i < depth; ++i) objects.push_back(ArrayOf({i}));
    objects.push_back("\xA0");
    return Binary(objects);
  };
  const std::string text = "\x5F\x10\x40" + std::string(64, 'x');
  const struct {
    const char* name;
    std::string document;
    std::size_t mostValues;
    bool safe;
  } cases[] = {
      {"512 deep", chain(512), kMaxBinaryValues, true},
      {"513 deep", chain(513), kMaxBinaryValues, false},
      {"holds itself", Binary({ArrayOf({0})}), kMaxBinaryValues, false},
      {"holds itself by way of another", Binary({ArrayOf({1}), ArrayOf({0})}), kMaxBinaryValues, false},
      {"as many values as may be", Binary({ArrayOf({1, 1, 1}), "\x09"}), 4, true},
      {"one more", Binary({ArrayOf({1, 1, 1}), "\x09"}), 3, false},
      {"64 bytes of text", Binary({ArrayOf({1, 1}), text}), 5, true},
      {"count as one more", Binary({ArrayOf({1, 1}), text}), 4, false},
      {"a million by sharing",
       Binary({ArrayOf(std::vector<std::size_t>(1000, 1)), ArrayOf(std::vector<std::size_t>(1000, 2)), "\x09"}),
       kMaxBinaryValues, false},
      {"a length beyond the document", Binary({std::string("\xAF\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 10)}), 9, true},
      {"a reference to nothing", Binary({ArrayOf({9})}), kMaxBinaryValues, true},
      {"a zero character in a text", Binary({ArrayOf({1}), std::string("\x61\0\0", 3)}), kMaxBinaryValues, true},
      {"in a key", Binary({std::string("\xD1\0\1\0\2", 5), std::string("\x61\0\0", 3), "\x09"}), kMaxBinaryValues,
       false},
  };
  for (const auto& c : cases) EXPECT_EQ(BinaryNestingIsSafe(c.document, c.mostValues), c.safe) << c.name;
}
