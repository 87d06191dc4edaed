// Values of a record as JSON.
#pragma once

#include "reader/json_writer.h"
#include "reader/record.h"

// A Decimal always has a point or an exponent. Bytes of a text that are not UTF-8 become U+FFFD.
void JsonValue(JsonWriter& json, FieldType type, const FieldValue& value);
