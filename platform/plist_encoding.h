// The characters of an XML property list as UTF-8, whichever of the known encodings the document is in.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// `document` in UTF-8 without its byte-order mark: itself where it is in UTF-8 (which is not looked into), otherwise
// its text put into `room`. UTF-16 needs a mark; US-ASCII and ISO-8859-1 are taken when the XML declaration names them.
// A document in UTF-16 ends at its first unpaired surrogate. No value for every other encoding.
std::optional<std::string_view> InUtf8(std::string_view document, std::string& room);

// Appends the UTF-8 form of a code point up to 0x10FFFF.
void AppendUtf8(std::string& text, char32_t character);

// How many bytes the UTF-8 sequence at the start of `text` has, which is not empty; 0 when there is none.
std::size_t Utf8SequenceSize(std::string_view text);

// Whether every byte belongs to a sequence for a code point: none cut, none longer than need be, no surrogate.
bool IsUtf8(std::string_view text);
