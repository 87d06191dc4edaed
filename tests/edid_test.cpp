#include "sections/edid.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

// The text of a block of zeros with hexadecimal digits from some offsets on.
std::string Block(const std::vector<std::pair<std::size_t, std::string>>& bytes) {
  std::string text = "0x" + std::string(2 * kEdidBlockSize, '0');
  for (const auto& [at, digits] : bytes) text.replace(2 + 2 * at, digits.size(), digits);
  return text;
}

std::string Identity(const EdidInfo& info) {
  return info.manufacturer + "," + info.productCode + "," + std::to_string(info.serialNumber) + "," + info.monitorName;
}

std::string Modes(const EdidInfo& info) {
  std::string text;
  for (const VideoMode& mode : info.modes)
    text += std::to_string(mode.width) + "x" + std::to_string(mode.height) + " " + mode.aspect + " " +
            std::to_string(mode.refresh) + ";";
  return text;
}

}  // namespace

TEST(Edid, EveryFieldFromItsBytes) {
  const EdidInfo info = DecodeEdid(Block({{8, "10Ac23010102030405150103803420"}, {23, "78eE"}, {75, "fd00324c1e53"}}));
  EXPECT_EQ(Identity(info), "DEL, 123,16909060,");  // deliberate: a blank in the product code, a big-endian number
  EXPECT_EQ(info.version + "," + info.vFreqRange + "," + info.hFreqRange, "1.3,50 - 76,30 - 83");
  EXPECT_EQ(info.week * 10000 + info.year, 52011);
  EXPECT_EQ(info.maxWidthCm * 1000 + info.maxHeightCm, 52032);
  EXPECT_EQ(info.videoInput * 1000 + info.features, 128238);
  EXPECT_EQ(info.minVFreq * 1000000 + info.minHFreq * 1000 + info.maxVFreq + info.maxHFreq, 50030159);
  EXPECT_DOUBLE_EQ(info.gamma, 2.2);
  EXPECT_EQ(EdidManufacturerId(0x8000) + EdidManufacturerId(1 << 10 | 31), "@@@A@_");
}

TEST(Edid, UnreadableBytesAreZeroBytes) {
  const std::string text = Block({{8, "10ac7ca001020304"}, {111, "fc004142434445464748494a4b4c4d4e4f"}});
  std::string damaged = text;
  damaged.replace(21, 2, "g/");
  damaged[28] = ' ';
  const struct {
    std::string text;
    const char* identity;
  } cases[] = {{"", "@@@,   0,0,"},
               {"0x", "@@@,   0,0,"},
               {Block({}), "@@@,   0,0,"},
               {text, "DEL,A07C,16909060,ABCDEFGHIJKLMNO"},
               {"??" + text.substr(2) + "ffff", "DEL,A07C,16909060,ABCDEFGHIJKLMNO"},
               {text.substr(0, 257), "DEL,A07C,16909060,ABCDEFGHIJKLMN"},
               {damaged, "D@@,A000,16777988,ABCDEFGHIJKLMNO"}};
  EXPECT_EQ(Identity(DecodeEdid(std::string_view(text).substr(0, 25))), "DEL,  7C,0,");
  for (const auto& c : cases) {
    const EdidInfo info = DecodeEdid(c.text);
    EXPECT_EQ(Identity(info), c.identity);
    EXPECT_EQ(info.year, 1990);
    EXPECT_EQ(info.gamma, 1.0);
    EXPECT_EQ(info.maxResolution + Modes(info), "");
  }
}

TEST(Edid, Descriptors) {
  const EdidInfo info = DecodeEdid(Block({{54, "000100fd0732323232"},
                                          {72, "000000fc0041"},
                                          {90, "000000fc0041424344454647484950515253"},
                                          {108, "010000ff0041"}}));
  EXPECT_EQ(info.monitorName, "ABCDEFGHIPQRS\x01");  // deliberate: reads on, and the last one counts
  EXPECT_EQ(info.serialText + info.vFreqRange + std::to_string(info.maxVFreq), "0");
}

// deliberate: bit 0 of the third byte, not of the second, stands for 1280 x 1024; of two equal areas the later wins
TEST(Edid, MaxResolution) {
  const struct {
    const char *digits, *resolution;  // from byte 35 on
  } cases[] = {{"000000", ""},
               {"400000", "720 x 400"},
               {"c40000", "640 x 480"},
               {"fd0000", "800 x 600"},
               {"208000", "800 x 600"},
               {"032000", "832 x 624"},
               {"210800", "1024 x 768"},
               {"001e80", "1152 x 870"},
               {"000100", ""},
               {"00017f", "1280 x 1024"},
               {"8000002c80", "600 x 480"},
               {"0000005a004f40", "880 x 660"},
               {"0000004f405a00", "968 x 600"},
               {"00000181c0", "1280 x 1024"},
               {"000000ff0101c00000", ""},
               {"000000ff40ffc0", "2288 x 1716"}};
  for (const auto& c : cases) EXPECT_EQ(DecodeEdid(Block({{35, c.digits}})).maxResolution, c.resolution);
  EXPECT_EQ(DecodeEdid(Block({{38, "4f40"}, {57, "fa005a00"}})).maxResolution, "968 x 600");
}

TEST(Edid, VideoModes) {
  const struct {
    std::string block;
    const char* modes;
  } cases[] = {
      {Block({{38, "d1c081806140810f"}}), "1920x1080 16:9 60;1280x1024 5:4 60;1024x768 4:3 60;1280x800 16:10 75;"},
      {Block({{38, "0140400101010000"}}), ""},  // deliberate: one 01 is enough
      {Block({{38, "00404000"}}), "248x186 4:3 60;760x470 16:10 60;"},
      {Block({{52, "8180010000fa008180"}}), "1280x1024 5:4 60;"},
      {Block({{93, "fa0061400101010101010101317f8180"}, {52, "8180"}}),
       "1280x1024 5:4 60;1024x768 4:3 60;640x480 4:3 123;"}};
  for (const auto& c : cases) EXPECT_EQ(Modes(DecodeEdid(c.block)), c.modes);
}
