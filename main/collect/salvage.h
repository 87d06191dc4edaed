// What a tool printed, made readable where it is a property list in bad company.
#pragma once

#include <string>
#include <string_view>

// The document inside `output`: without what stands before its first "<?xml" (else its first "<plist") and behind its
// last "</plist>", and with U+FFFD for each byte that belongs to no UTF-8 sequence. A mark that is missing leaves its
// end as it is.
std::string SalvagedDocument(std::string_view output);
