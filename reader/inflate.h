// Takes zlib streams apart without trusting them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "reader/fault.h"

// What the bodies of one file may inflate to together, in bytes, unless the caller says otherwise.
constexpr std::size_t kDefaultLimit = std::size_t{256} << 20;

// One zlib stream that should take all of `bytes`.
struct DeflatedPart {
  std::string_view bytes;
  std::uint64_t start = 0;  // of the bytes in the file, for the places of faults
  std::size_t limit = 0;    // bytes that it may inflate to
  const char* what = "";    // what a fault's words begin with, such as "index: "
};

// Appends what the stream inflates to, up to the fault or the limit, to `text`. False, and one fault, unless the stream
// is whole and ends with its bytes.
bool Inflate(const DeflatedPart& part, std::string& text, Faults& faults);
