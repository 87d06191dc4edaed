// The EDID base block of a display, decoded: 128 bytes, laid out as VESA E-EDID 1.3 has them. Nothing is checked and
// nothing fails; extension blocks are not read.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

constexpr std::size_t kEdidBlockSize = 128;
using EdidBlock = std::array<std::uint8_t, kEdidBlockSize>;

struct VideoMode {
  std::string aspect;  // "16:10", "4:3", "5:4" or "16:9"
  std::uint32_t height = 0;
  std::uint32_t width = 0;
  std::uint32_t refresh = 0;  // Hz
};

struct EdidInfo {
  std::string manufacturer;  // three letters
  std::string productCode;   // by EdidProductCode
  std::string version;
  std::string vFreqRange;  // "50 - 76"; empty without range limits
  std::string hFreqRange;
  std::string maxResolution;  // "1920 x 1200"; empty when unknown
  std::string monitorName;    // up to its zero byte, line feed and padding included
  std::string serialText;     // likewise
  std::vector<VideoMode> modes;
  std::uint32_t serialNumber = 0;
  std::uint16_t week = 0;  // 0 when unknown
  std::uint16_t year = 0;
  std::uint16_t maxWidthCm = 0;  // 0 when unknown
  std::uint16_t maxHeightCm = 0;
  std::uint8_t videoInput = 0;
  std::uint8_t features = 0;
  std::uint8_t minVFreq = 0;  // Hz; all four 0 without range limits
  std::uint8_t maxVFreq = 0;
  std::uint8_t minHFreq = 0;  // kHz
  std::uint8_t maxHFreq = 0;
  double gamma = 0;
};

// The record of a block given as "0x" (not looked at) and hexadecimal digits. A byte that is missing, or whose two
// digits are not both hexadecimal, counts as 0.
EdidInfo DecodeEdid(std::string_view text);

// Three characters, five bits each; the highest bit does not count. 0x10AC gives "DEL".
std::string EdidManufacturerId(std::uint16_t id);

// Upper-case hexadecimal, padded to four characters with blanks.
std::string EdidProductCode(std::uint16_t code);

// The largest resolution by area among the established and the standard timings; empty when there is none.
std::string EdidMaxResolution(const EdidBlock& block);

// The standard timings in the order of the block, those in display descriptors after the eight fixed ones.
std::vector<VideoMode> EdidVideoModes(const EdidBlock& block);
