// Texts of the profiler turned into numbers of a fixed unit, and the small text operations that the readers share. Free
// functions without state; letter case is that of ASCII alone.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

constexpr double kBytesPerGB = 1073741824.0;  // binary gigabytes: 2^30

// The number in a size text such as "4,5 GB" (a decimal comma counts as a point), in the unit of the function's name. 0
// for an unknown unit, an unreadable number, or a text of fewer than three characters.
double ParseSizeKB(std::string_view text);
double ParseSizeGB(std::string_view text);           // binary gigabytes; "TB" counts 1000 of them
double ParseSizeMB(std::string_view text);           // ParseSizeGB times 1024
std::int64_t ParseSizeBytes(std::string_view text);  // ParseSizeGB times 2^30, truncated

// Decimal gigabytes (10^9 bytes) of a size text; with `roundUp` a whole number, by RoundAboveFourTenths.
double SizeToDecimalGB(std::string_view text, bool roundUp);

// The whole part of a number, one more when its fraction is greater than 0.4.
double RoundAboveFourTenths(double number);

// Diagonal in whole inches of an area given in centimetres, by RoundAboveFourTenths.
std::int64_t DiagonalInches(double widthCm, double heightCm);

// Truncated toward zero; a number outside the result's range becomes the nearest limit, NaN 0.
std::int64_t TruncateToInt64(double number);
std::uint32_t TruncateToUint32(double number);

// As atof on the text: the number at its start, 0 when there is none.
double NumberAtStart(std::string_view text);

// Negative, zero or positive like a byte-wise comparison of the two texts in lower case.
int CompareNoCase(std::string_view a, std::string_view b);

std::string LowerCase(std::string_view text);
std::string UpperCase(std::string_view text);

// A hardware address with ":" turned into "-" and letters into capitals.
std::string DashedHardwareAddress(std::string_view text);

enum TrimSides : unsigned { kTrimStart = 1, kTrimEnd = 2, kTrimBoth = 3 };

// Removes the characters of a set from the chosen ends, the end first.
void Trim(std::string& text, std::string_view characters, unsigned sides);
std::string Trimmed(std::string_view text, std::string_view characters);

// What stands before the first blank, trimmed of blanks and line breaks.
std::string FirstWord(std::string_view text);
