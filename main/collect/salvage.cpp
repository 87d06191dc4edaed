// Cuts a document out of a tool's output and puts U+FFFD in the place of every byte that is not UTF-8.
#include "main/collect/salvage.h"

#include <cstddef>

namespace {

constexpr char kReplacement[] = "\uFFFD";

std::string_view WithoutSurroundings(std::string_view text) {
  std::size_t start = text.find("<?xml");
  if (start == std::string_view::npos) start = text.find("<plist");
  if (start != std::string_view::npos) text.remove_prefix(start);
  constexpr std::string_view kEnd = "</plist>";
  const std::size_t end = text.rfind(kEnd);
  return end == std::string_view::npos ? text : text.substr(0, end + kEnd.size());
}

// Which sequences there are, by their first byte and the range of their second; every further byte is 80 to BF.
struct SequenceForm {
  unsigned char firstLeast, firstMost;
  std::size_t size;
  unsigned char secondLeast, secondMost;
};

constexpr SequenceForm kSequenceForms[] = {
    {0x00, 0x7F, 1, 0, 0},       {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF}, {0xED, 0xED, 3, 0x80, 0x9F},  // without the surrogates
    {0xEE, 0xEF, 3, 0x80, 0xBF}, {0xF0, 0xF0, 4, 0x90, 0xBF}, {0xF1, 0xF3, 4, 0x80, 0xBF},
    {0xF4, 0xF4, 4, 0x80, 0x8F},  // up to U+10FFFF
};

bool IsBetween(char c, unsigned char least, unsigned char most) {
  const auto byte = static_cast<unsigned char>(c);
  return least <= byte && byte <= most;
}

// Bytes of the UTF-8 sequence at the start of `text`, which is not empty; 0 when there is none.
std::size_t SequenceSize(std::string_view text) {
  for (const SequenceForm& form : kSequenceForms) {
    if (!IsBetween(text[0], form.firstLeast, form.firstMost)) continue;
    if (text.size() < form.size) return 0;
    if (form.size > 1 && !IsBetween(text[1], form.secondLeast, form.secondMost)) return 0;
    for (std::size_t i = 2; i < form.size; ++i)
      if (!IsBetween(text[i], 0x80, 0xBF)) return 0;
    return form.size;
  }
  return 0;
}

}  // namespace

std::string SalvagedDocument(std::string_view output) {
  output = WithoutSurroundings(output);
  std::string document;
  document.reserve(output.size());
  while (!output.empty()) {
    const std::size_t size = SequenceSize(output);
    document += size > 0 ? output.substr(0, size) : std::string_view(kReplacement);
    output.remove_prefix(size > 0 ? size : 1);
  }
  return document;
}
