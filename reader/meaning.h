// What a bare number in the inventory stands for: its unit, and the words of its codes.
#pragma once

#include <string_view>

// A tag's name without the number or the text behind its first colon: "HDD" for "HDD:1".
std::string_view BaseName(std::string_view tagName);

// The unit of an attribute that a tag of that name always has in the same one, such as "MHz"; empty for any other.
std::string_view UsualUnit(std::string_view tagName, std::string_view attribute);

// What a code or a flag says, such as "yes"; empty when it is none that is known.
std::string_view CodeWord(std::string_view tagName, std::string_view attribute, std::string_view value);
