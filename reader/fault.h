// What a reader found wrong with a file, in plain words and with its place. The readers go on after a fault as far as
// the file can still be told apart; nothing is thrown.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct Fault {
  std::string part;          // "" for the file itself, otherwise the inflated text that `offset` counts in: "the index"
  std::uint64_t offset = 0;  // from the first byte of that part
  std::string words;         // one line without control characters; holds no text of the file
};

using Faults = std::vector<Fault>;

// Faults of one part that are kept: a hostile text is not allowed to fill the memory with complaints.
constexpr std::size_t kMaxFaults = 100;

// Appends a fault; after kMaxFaults of them only a last one that says so, and then nothing.
void AddFault(Faults& faults, std::uint64_t offset, std::string words, std::string part = "");

// "byte 17: words" or "byte 17 of the index: words".
std::string FaultText(const Fault& fault);
