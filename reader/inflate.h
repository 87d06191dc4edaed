// Takes zlib streams apart without trusting them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// What the bodies of one file may inflate to together, in bytes, unless the caller says otherwise.
constexpr std::size_t kDefaultLimit = std::size_t{256} << 20;

struct Inflated {
  std::string text;      // what came out, up to the fault or the limit
  std::size_t used = 0;  // bytes of the input that the stream takes
  std::string trouble;   // plain words; empty when the stream is whole and ends with the input
};

// Inflates one zlib stream that should take all of `input`; `text` never grows beyond `limit` bytes.
Inflated Inflate(std::string_view input, std::size_t limit);
