// zXML: the text form of a tag tree, one line an item, and the four forms in which a tree is saved. docs/inv-format.md
// describes both for whoever has to read them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "zxml/tag.h"

// Bytes that the text of `tag` takes. For the container: its first child and the header line, whatever else it holds.
// With `headerOnly`, without the children, the closing line and, unlike WriteText, the tag's own properties.
std::size_t TextSize(const Tag& tag, bool headerOnly);

// Writes the text of `tag` to buffer + offset, which must have room for it, and returns the bytes written; no zero byte
// follows. For a parent, `headerOnly` leaves out the children and the closing line, `noClose` the closing line; the
// container hands both on to its children. Names each parent with properties on standard error.
std::size_t WriteText(const Tag& tag, char* buffer, std::size_t offset, bool noClose, bool headerOnly);

// `input` deflated by zlib at level 9; no value when zlib cannot start. A fault inside zlib ends the program with a
// line on standard error that names `module`.
std::optional<std::string> CompressBuffer(std::string_view input, const char* module = "zxml/zXML");
// The same; zlib that cannot start is out of memory, std::bad_alloc.
std::string Deflated(std::string_view input, const char* module = "zxml/zXML");

// The tree in one of its four saved forms, by the two flags; its last two bytes, or those before a closing "ZXML", are
// the flags. While it works it fills tree.saveIndex, in the split forms only.
std::string SaveTree(TagTree& tree, bool split, bool compress);

// SaveTree into the file at `path`; nothing happens when the file cannot be opened.
void SaveTreeToFile(TagTree& tree, const std::string& path, bool split, bool compress);
