// Decodes the bytes of an EDID block, one function for each group of them. Offsets are those of E-EDID 1.3.
#include "sections/edid.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t kPrefixLength = 2;
constexpr std::size_t kStandardTimings = 38;
constexpr std::size_t kStandardTimingCount = 8;
constexpr std::size_t kDescriptors[] = {54, 72, 90, 108};
constexpr std::size_t kDescriptorData = 5;
constexpr std::size_t kDescriptorTimingCount = 6;

enum DescriptorTag : std::uint8_t { kMoreTimings = 0xFA, kMonitorName = 0xFC, kRangeLimits = 0xFD, kSerialText = 0xFF };

struct EstablishedTiming {
  std::size_t offset;
  std::uint8_t bits;
  std::uint32_t width;
  std::uint32_t height;
};

// By area, so that the last one that a display supports is its largest.
constexpr EstablishedTiming kEstablishedTimings[] =
    {
        {35, 0xC0, 720, 400},  {35, 0x3C, 640, 480},   {35, 0x03, 800, 600},
        {36, 0xC0, 800, 600},  {36, 0x20, 832, 624},   {36, 0x1E, 1024, 768},
        {37, 0x80, 1152, 870}, {37, 0x01, 1280, 1024},  // deliberate: bit 0 of byte 37, not of byte 36
};

struct Aspect {
  const char* name;
  std::uint32_t across;
  std::uint32_t down;
};

// By the two highest bits of a standard timing's second byte.
constexpr Aspect kAspects[] = {{"16:10", 16, 10}, {"4:3", 4, 3}, {"5:4", 5, 4}, {"16:9", 16, 9}};

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

EdidBlock ReadBlock(std::string_view text) {
  EdidBlock block{};
  for (std::size_t k = 0; k < kEdidBlockSize; ++k) {
    const std::size_t at = kPrefixLength + 2 * k;
    if (at + 1 >= text.size()) break;
    const int high = HexDigit(text[at]);
    const int low = HexDigit(text[at + 1]);
    if (high >= 0 && low >= 0) block[k] = static_cast<std::uint8_t>(high * 16 + low);
  }
  return block;
}

std::uint16_t BigEndian16(std::uint8_t high, std::uint8_t low) { return static_cast<std::uint16_t>(high << 8 | low); }

std::uint32_t BigEndian32(const EdidBlock& block, std::size_t at) {
  const std::uint32_t high = BigEndian16(block[at], block[at + 1]);
  return high << 16 | BigEndian16(block[at + 2], block[at + 3]);
}

void ReadIdentification(const EdidBlock& block, EdidInfo& info) {
  info.manufacturer = EdidManufacturerId(BigEndian16(block[8], block[9]));
  info.productCode = EdidProductCode(BigEndian16(block[11], block[10]));
  info.serialNumber = BigEndian32(block, 12);  // deliberate: big-endian, although the standard stores it the other way
  info.week = block[16];
  info.year = static_cast<std::uint16_t>(block[17] + 1990);
  info.version = std::to_string(block[18]) + "." + std::to_string(block[19]);
}

void ReadBasicFeatures(const EdidBlock& block, EdidInfo& info) {
  info.videoInput = block[20];
  info.maxWidthCm = block[21];
  info.maxHeightCm = block[22];
  info.gamma = (block[23] + 100) / 100.0;
  info.features = block[24];
}

bool IsDisplayDescriptor(const EdidBlock& block, std::size_t at) { return block[at] == 0 && block[at + 1] == 0; }

// deliberate: the text may run past its descriptor, up to a zero byte or the end of the block
std::string TextFrom(const EdidBlock& block, std::size_t at) {
  const auto begin = block.begin() + static_cast<std::ptrdiff_t>(at);
  return std::string(begin, std::find(begin, block.end(), 0));
}

std::string RangeText(std::uint8_t lowest, std::uint8_t highest) {
  return std::to_string(lowest) + " - " + std::to_string(highest);
}

void ReadRangeLimits(const EdidBlock& block, std::size_t data, EdidInfo& info) {
  info.minVFreq = block[data];
  info.maxVFreq = block[data + 1];
  info.minHFreq = block[data + 2];
  info.maxHFreq = block[data + 3];
  info.vFreqRange = RangeText(info.minVFreq, info.maxVFreq);
  info.hFreqRange = RangeText(info.minHFreq, info.maxHFreq);
}

// Of several descriptors with one tag the last counts.
void ReadDescriptors(const EdidBlock& block, EdidInfo& info) {
  for (const std::size_t at : kDescriptors) {
    if (!IsDisplayDescriptor(block, at)) continue;
    const std::size_t data = at + kDescriptorData;
    const std::uint8_t tag = block[at + 3];
    if (tag == kMonitorName) info.monitorName = TextFrom(block, data);
    if (tag == kSerialText) info.serialText = TextFrom(block, data);
    if (tag == kRangeLimits) ReadRangeLimits(block, data, info);
  }
}

// deliberate: one byte 01 is enough for an unused entry
bool IsUnused(std::uint8_t first, std::uint8_t second) {
  return first == 0x01 || second == 0x01 || (first == 0 && second == 0);
}

void AppendModes(const EdidBlock& block, std::size_t at, std::size_t count, std::vector<VideoMode>& modes) {
  for (const std::size_t end = at + 2 * count; at < end; at += 2) {
    const std::uint8_t first = block[at];
    const std::uint8_t second = block[at + 1];
    if (IsUnused(first, second)) continue;
    const Aspect& aspect = kAspects[second >> 6];
    const std::uint32_t width = first * 8u + 248u;
    modes.push_back({aspect.name, width / aspect.across * aspect.down, width, (second & 0x3Fu) + 60u});
  }
}

}  // namespace

EdidInfo DecodeEdid(std::string_view text) {
  const EdidBlock block = ReadBlock(text);
  EdidInfo info;
  ReadIdentification(block, info);
  ReadBasicFeatures(block, info);
  ReadDescriptors(block, info);
  info.maxResolution = EdidMaxResolution(block);
  info.modes = EdidVideoModes(block);
  return info;
}

std::string EdidManufacturerId(std::uint16_t id) {
  std::string letters;
  for (const int shift : {10, 5, 0}) letters += static_cast<char>(0x40 | (id >> shift & 0x1F));
  return letters;
}

std::string EdidProductCode(std::uint16_t code) {
  char text[8];
  std::snprintf(text, sizeof text, "%4X", unsigned{code});
  return text;
}

std::string EdidMaxResolution(const EdidBlock& block) {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  for (const EstablishedTiming& timing : kEstablishedTimings) {
    if (!(block[timing.offset] & timing.bits)) continue;
    width = timing.width;
    height = timing.height;
  }
  for (const VideoMode& mode : EdidVideoModes(block)) {
    if (mode.width * mode.height < width * height) continue;
    width = mode.width;
    height = mode.height;
  }
  return width * height == 0 ? std::string() : std::to_string(width) + " x " + std::to_string(height);
}

std::vector<VideoMode> EdidVideoModes(const EdidBlock& block) {
  std::vector<VideoMode> modes;
  AppendModes(block, kStandardTimings, kStandardTimingCount, modes);
  for (const std::size_t at : kDescriptors)
    if (IsDisplayDescriptor(block, at) && block[at + 3] == kMoreTimings)
      AppendModes(block, at + kDescriptorData, kDescriptorTimingCount, modes);
  return modes;
}
