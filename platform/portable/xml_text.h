// The smallest pieces of a property-list document in XML. Each function takes its piece off the front of `rest`; when
// it says that the piece is not there, the document counts for nothing and `rest` no longer matters.
#pragma once

#include <string>
#include <string_view>

void SkipBlanks(std::string_view& rest);

// Everything up to and including `end`, which is looked for from `from` on. False when it is missing.
bool SkipPast(std::string_view& rest, std::string_view end, std::size_t from);

// "</name>", with blanks behind the name or without.
bool TakeClosingTag(std::string_view& rest, std::string_view name);

// The text of an element up to its closing tag, into `text`: references resolved, CDATA unwrapped, line ends and
// control characters as they stand, without a U+FEFF at its start. False for a zero byte, for bytes that are no UTF-8,
// for an unknown reference, and for a comment.
bool TakeText(std::string_view& rest, std::string& text);
