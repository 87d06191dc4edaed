// Collects the faults of a file and words them.
#include "reader/fault.h"

#include <utility>

void AddFault(Faults& faults, std::uint64_t offset, std::string words, std::string part) {
  if (faults.size() > kMaxFaults) return;
  if (faults.size() == kMaxFaults) words = "there are more faults from here on; they are not listed";
  faults.push_back({std::move(part), offset, std::move(words)});
}

std::string FaultText(const Fault& fault) {
  const std::string of = fault.part.empty() ? "" : " of " + fault.part;
  return "byte " + std::to_string(fault.offset) + of + ": " + fault.words;
}
