// Cuts a document out of a tool's output and puts U+FFFD in the place of every byte that is not UTF-8.
#include "main/collect/salvage.h"

#include <cstddef>

#include "platform/plist_encoding.h"

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

}  // namespace

std::string SalvagedDocument(std::string_view output) {
  output = WithoutSurroundings(output);
  std::string document;
  document.reserve(output.size());
  while (!output.empty()) {
    const std::size_t size = Utf8SequenceSize(output);
    document += size > 0 ? output.substr(0, size) : std::string_view(kReplacement);
    output.remove_prefix(size > 0 ? size : 1);
  }
  return document;
}
