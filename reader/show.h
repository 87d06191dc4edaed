// quillinv show: trees for people.
#pragma once

#include <string>
#include <string_view>

#include "reader/document.h"
#include "zxml/tag.h"

struct ShowOptions {
  bool raw = false;       // the text unchanged
  bool colour = false;    // with escape sequences of a terminal
  std::string path;       // what to show; empty for everything
  bool terminal = false;  // raw texts are made printable, too
};

// All sections, or what the path names. Empty when the path names nothing.
std::string ShowText(const Document& document, const ShowOptions& options);

// The value of an attribute of a tag of that name, with its unit or the word of its code and what its other properties
// say: "232.57 GB", "1 (yes)".
std::string ResolvedValue(const Attribute& attribute, std::string_view tagName = "");
// The tag's value with what its properties say.
std::string TagValue(const Tag& tag);
