// Writes a JSON document piece by piece into one text. A fleet's trees have millions of small objects, so none of them
// is ever built in memory.
#pragma once

#include <string>
#include <string_view>

struct JsonWriter {
  bool oneLine = true;  // otherwise indented by two blanks
  std::string text;     // what was written
  int depth = 0;
  bool first = true;   // nothing stands yet in the innermost object or array
  bool keyed = false;  // a key waits for its value
};

// '{' or '['; each must be closed with its counterpart, '}' or ']'.
void JsonOpen(JsonWriter& json, char bracket);
void JsonClose(JsonWriter& json, char bracket);
// The name of the next value; plain ASCII without quotes.
void JsonKey(JsonWriter& json, std::string_view name);

// A value. Of a text, bytes that are not UTF-8 and zero bytes become U+FFFD.
void JsonText(JsonWriter& json, std::string_view text);
void JsonWord(JsonWriter& json, std::string_view word);  // a number, true, false, null

// A key and its text.
void JsonField(JsonWriter& json, std::string_view name, std::string_view text);
