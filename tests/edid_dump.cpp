// Prints the record of one EDID text, given as argument ("0x" and hexadecimal digits), one field a line. Bytes of a
// text that are not printable ASCII come out as \xNN.
#include <cstdio>

#include "sections/edid.h"

namespace {

void PrintText(const char* field, const std::string& text) {
  std::printf("%s=", field);
  for (const char c : text) {
    const bool plain = c >= ' ' && c <= '~' && c != '\\';
    std::printf(plain ? "%c" : "\\x%02x", static_cast<unsigned char>(c));
  }
  std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const EdidInfo info = DecodeEdid(argv[1]);
  PrintText("manufacturer", info.manufacturer);
  PrintText("productCode", info.productCode);
  PrintText("version", info.version);
  PrintText("monitorName", info.monitorName);
  PrintText("serialText", info.serialText);
  PrintText("vFreqRange", info.vFreqRange);
  PrintText("hFreqRange", info.hFreqRange);
  PrintText("maxResolution", info.maxResolution);
  std::printf("week=%d\nyear=%d\nimage=%d x %d\n", info.week, info.year, info.maxWidthCm, info.maxHeightCm);
  std::printf("gamma=%.2f\nmodes=%zu\n", info.gamma, info.modes.size());
}
