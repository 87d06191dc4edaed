// Puts commas and line breaks where JSON wants them; what has to be escaped goes through nlohmann-json.
#include "reader/json_writer.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "reader/text.h"

namespace {

void BreakLine(JsonWriter& json) {
  if (json.oneLine) return;
  json.text += '\n';
  json.text.append(static_cast<std::size_t>(json.depth) * 2, ' ');
}

// Separates what comes from what stands there.
void BeginItem(JsonWriter& json) {
  if (!json.keyed && json.depth > 0) {
    if (!json.first) json.text += ',';
    BreakLine(json);
  }
  json.keyed = false;
  json.first = false;
}

// Most texts need no escape, and asking the library for each of them would cost more than all the rest.
bool IsPlain(char c) { return static_cast<signed char>(c) >= 0x20 && c != '"' && c != '\\'; }

}  // namespace

void JsonOpen(JsonWriter& json, char bracket) {
  BeginItem(json);
  json.text += bracket;
  ++json.depth;
  json.first = true;
}

void JsonClose(JsonWriter& json, char bracket) {
  --json.depth;
  if (!json.first) BreakLine(json);
  json.text += bracket;
  json.first = false;
}

void JsonKey(JsonWriter& json, std::string_view name) {
  BeginItem(json);
  json.text += '"';
  json.text += name;
  json.text += json.oneLine ? "\":" : "\": ";
  json.keyed = true;
}

void JsonText(JsonWriter& json, std::string_view text) {
  BeginItem(json);
  if (!std::all_of(text.begin(), text.end(), IsPlain)) {
    json.text += nlohmann::json(CleanUtf8(text)).dump();
    return;
  }
  json.text += '"';
  json.text += text;
  json.text += '"';
}

void JsonWord(JsonWriter& json, std::string_view word) {
  BeginItem(json);
  json.text += word;
}

void JsonField(JsonWriter& json, std::string_view name, std::string_view text) {
  JsonKey(json, name);
  JsonText(json, text);
}
