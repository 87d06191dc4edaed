// Reads zXML text back into a tag tree.
//
// The text escapes nothing, so three things cannot be told from their text and are read as follows:
//   - a name ends at the first "=" of its line; a name that holds one loses the rest to the value;
//   - an attribute whose name begins with "+", "*" or "~" reads as the tag or the property that its line looks like;
//   - no value and an empty value look the same: a tag gets no value, an attribute the empty text.
// A line is a closing line only when it is just "-": an attribute may be called "-" or "-x", its line has a "=".
// The values' kinds are not written: every value comes back as a String.
#pragma once

#include <string>
#include <string_view>

#include "reader/fault.h"
#include "zxml/tag.h"

constexpr std::size_t kMaxDepth = 128;  // tags inside one another

// What the texts of one file may still ask for; reading takes from it.
struct TextBudget {
  std::size_t lines = 1000000;
  std::size_t pathBytes = std::size_t{64} << 20;  // all tags' paths from the root, written out
};

// The tree that `text` describes, as far as it could be read; its container holds no child when there was no root.
// `rootOpen`: the text lacks the line that closes the root, as a split body does. Faults name `part` as their place.
TagTree ParseZxml(std::string_view text, bool rootOpen, const std::string& part, TextBudget& budget, Faults& faults);
