// The least that a scan must do with its data, as a yardstick: floor DOCUMENT TEXT parses the profiler's document with
// expat, handlers that only count and no tree, and deflates the inventory's text at zlib's best level.
#include <expat.h>
#include <zlib.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct Counts {
  std::size_t elements = 0;
  std::size_t characters = 0;
};

void CountElement(void* counts, const XML_Char*, const XML_Char**) { ++static_cast<Counts*>(counts)->elements; }

void IgnoreEnd(void*, const XML_Char*) {}

void CountCharacters(void* counts, const XML_Char*, int length) {
  static_cast<Counts*>(counts)->characters += static_cast<std::size_t>(length);
}

std::string ReadFile(const char* path) {
  std::string text;
  std::FILE* file = std::fopen(path, "r");
  if (!file) {
    std::perror(path);
    std::exit(1);
  }
  char chunk[65536];
  for (std::size_t n = 1; (n = std::fread(chunk, 1, sizeof chunk, file)) > 0;) text.append(chunk, n);
  std::fclose(file);
  return text;
}

bool CountDocument(const std::string& document, Counts& counts) {
  XML_Parser parser = XML_ParserCreate(nullptr);
  XML_SetUserData(parser, &counts);
  XML_SetElementHandler(parser, CountElement, IgnoreEnd);
  XML_SetCharacterDataHandler(parser, CountCharacters);
  const bool good = XML_Parse(parser, document.data(), static_cast<int>(document.size()), 1) == XML_STATUS_OK;
  XML_ParserFree(parser);
  return good;
}

std::size_t DeflatedSize(const std::string& text) {
  uLongf size = compressBound(text.size());
  std::vector<Bytef> deflated(size);
  const auto* bytes = reinterpret_cast<const Bytef*>(text.data());
  return compress2(deflated.data(), &size, bytes, text.size(), Z_BEST_COMPRESSION) == Z_OK ? size : 0;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) {
    std::fputs("floor DOCUMENT TEXT\n", stderr);
    return 2;
  }
  Counts counts;
  if (!CountDocument(ReadFile(arguments[1]), counts)) {
    std::fprintf(stderr, "%s is not well-formed\n", arguments[1]);
    return 1;
  }
  const std::size_t deflated = DeflatedSize(ReadFile(arguments[2]));
  std::printf("%zu elements, %zu characters, %zu bytes deflated\n", counts.elements, counts.characters, deflated);
  return deflated ? 0 : 1;
}
