// The scalars of a property list outside macOS, judged and typed as CoreFoundation does.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/property_list.h"

PropertyList MakeReal(double number);
PropertyList MakeDate(double seconds);
PropertyList MakeBoolean(bool flag);
PropertyList MakeData();
// -1 and 0 to 12 are numbers that CoreFoundation keeps ready as SInt32; every other whole number is an SInt64.
PropertyList MakeWholeNumber(std::int64_t number);
// A number from 2^63 on: an SInt64 of the same bits, whichever they are.
PropertyList MakeLargeNumber(std::uint64_t number);

// The value of a hexadecimal digit; 16 for every other character.
unsigned DigitValue(char c);

// Whole numbers from -2^63 to 2^64-1, decimal or hexadecimal behind "0x", with a sign or without. No value for any
// other text.
std::optional<PropertyList> ReadInteger(std::string_view text);

// A decimal number with fraction and exponent, "nan", "inf" or "infinity" in any letter case. No value for any other
// text.
std::optional<PropertyList> ReadReal(const std::string& text);

// "2015-01-02T03:04:05Z"; months, days and hours beyond their range roll over, the year may have more digits and a
// sign. No value for any other text.
std::optional<PropertyList> ReadDate(std::string_view text);
