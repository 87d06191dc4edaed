// What several unit tests need: trees from a few lines of property list, trees as text, tools made of shell lines.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/property_list.h"
#include "zxml/tag.h"

// The property list of an array that holds `elements`, XML without any frame.
PropertyList ListOf(const std::string& elements);

// <dict> of one data type whose "_items" hold `items`.
std::string DataType(const std::string& name, const std::string& items);

// "key", "text" and so on as a <dict> of texts; a text that begins with "<" is taken as XML.
std::string Dict(std::initializer_list<const char*> keysAndTexts);

// A <dict> from "key=text;key=#integer", with further XML inside.
std::string Item(const std::string& fields, const std::string& xml = "");
// What may stand inside: a key with anything, with an array, with the array of items.
std::string Below(const std::string& key, const std::string& xml);
std::string List(const std::string& key, const std::string& xml);
std::string Items(const std::string& xml);

// The raw tree of those data types.
TagTree RawTree(const std::string& dataTypes);

// zXML text without its first line.
std::string TextOfTree(const TagTree& tree);
// The tag at `path` below the root as a raw string literal shows it: behind a line feed each tag on a line of its own
// with its attributes, "name=value; attribute=value ~property=text", and each CR as \r. "none" when there is no such
// tag.
std::string ShownTree(const TagTree& tree, std::string_view path);
// Of what a builder adds to an empty inventory.
std::string ShownSection(void (*build)(TagTree&, const TagTree&), const std::string& dataTypes, std::string_view path);
std::string ShownSection(void (*build)(TagTree&, const TagTree&), const TagTree& rawTree, std::string_view path);

// A folder at the front of PATH while it lives, with tools made of shell lines.
class Tools {
 public:
  Tools();
  ~Tools();
  void Add(const std::string& name, const std::string& script);
  const std::string& Folder() const { return folder_; }

 private:
  std::string folder_, path_;
};
