// What the fuzz targets share: a claim that must hold, and the text of a tree with everything that must hold for it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "reader/zxml_reader.h"
#include "zxml/tag.h"
#include "zxml/zXML.h"

// What each target is: it ends with a finding or returns.
void Check(const std::string& input);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Check(std::string(data, data + size));
  return 0;
}

// Ends the run as a finding when the claim does not hold.
inline void Require(bool claim) {
  if (!claim) __builtin_trap();
}

inline std::string TextOfTree(const TagTree& tree) {
  std::string text(TextSize(tree.container, false), '\0');
  Require(WriteText(tree.container, text.data(), 0, false, false) == text.size());
  return text;
}

// The tree of a text that the reader has nothing to say against, which comes out of it unchanged; else no value.
inline std::optional<TagTree> CheckText(const std::string& text) {
  TextBudget budget;
  Faults faults;
  TagTree tree = ParseZxml(text, false, "the text", budget, faults);
  if (!faults.empty()) return std::nullopt;
  Require(TextOfTree(tree) == text);
  return tree;
}
