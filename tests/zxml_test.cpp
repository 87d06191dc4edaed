#include "zxml/zXML.h"

#include <gtest/gtest.h>
#include <unistd.h>
#include <zlib.h>

#include <cfloat>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "tests/support.h"
#include "zxml/INVfile.h"

namespace {

std::string Inflate(const std::string& data) {
  std::string text(1 << 20, '\0');
  uLongf size = text.size();
  const int answer = uncompress(reinterpret_cast<Bytef*>(text.data()), &size,
                                reinterpret_cast<const Bytef*>(data.data()), data.size());
  EXPECT_EQ(answer, Z_OK);
  text.resize(answer == Z_OK ? size : 0);
  return text;
}

TagTree SampleTree(bool saveFlag) {
  TagTree tree = CreateTree(saveFlag, "Snapshot");
  SetAttributeByPath(tree, "/timestamp", MakeTextValue("20260102030405.000000+60"), "p", "q");
  SetAttributeByPath(tree, "/A/x", MakeIntValue(1));
  SetAttributeByPath(tree, "/B/C/y", MakeDoubleValue(3));
  return tree;
}

constexpr char kSampleRoot[] = "\xEF\xBB\xBF?zxml\n+Snapshot=\ntimestamp=20260102030405.000000+60\n~p=q\n";
constexpr char kSampleA[] = "*A=\nx=1\n";
constexpr char kSampleB[] = "+B=\n*C=\ny=3.00\n-\n";

std::string ReadFile(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

}  // namespace

TEST(Text, SizeIsWhatIsWritten) {
  TagTree tree = SampleTree(true);
  AddTagProperty(*FindChild(RootOf(tree), "A"), "kind", "leaf");
  AddTagProperty(*FindChild(RootOf(tree), "B"), "kind", "parent");
  for (const Value& value : {MakeIntValue(INT64_MIN), MakeDoubleValue(-DBL_MAX), MakeBoolValue(true), Value()})
    SetAttributeByPath(tree, "/values/v" + std::to_string(static_cast<int>(value.kind)), value);
  const std::size_t size = TextSize(tree.container, false);
  std::string text(size + 16, '#');
  testing::internal::CaptureStderr();
  EXPECT_EQ(WriteText(tree.container, text.data(), 8, false, false), size);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "tag >>B<< :\n");
  EXPECT_EQ(text.substr(0, 8) + text.substr(size + 8), std::string(16, '#'));
}

TEST(Text, HeaderOnlyDisagreesOnThePropertiesOfTheRoot) {
  TagTree tree = SampleTree(true);
  AddTagProperty(RootOf(tree), "n", "t");
  char buffer[256];
  EXPECT_EQ(WriteText(RootOf(tree), buffer, 0, false, true), TextSize(RootOf(tree), true) + sizeof "~n=t");
}

TEST(Saving, OnePiece) {
  TagTree tree = SampleTree(true);
  const std::string text = std::string(kSampleRoot) + kSampleA + kSampleB + "-\n";
  EXPECT_EQ(SaveTree(tree, false, false), text + std::string(102, '\0'));
  const std::string packed = SaveTree(tree, false, true);
  EXPECT_EQ(packed.substr(packed.size() - 6), std::string("\0\1ZXML", 6));
  EXPECT_EQ(Inflate(packed.substr(0, packed.size() - 6)), text);
}

TEST(Saving, Split) {
  for (const bool littleEndian : {false, true}) {
    TagTree tree = SampleTree(littleEndian);
    const std::string text = std::string(kSampleRoot) + kSampleA + kSampleB;
    const std::string index = "[Root]\noffset=0\nlength=60\n[A]\noffset=60\nlength=8\n[B]\noffset=68\nlength=17\n";
    const std::string size(littleEndian ? "\x55\0\0\0" : "\0\0\0\x55", 4);
    EXPECT_EQ(SaveTree(tree, true, false), text + index + size + std::string("\1\0", 2));

    const std::string packed = SaveTree(tree, true, true);
    const std::size_t root = CompressBuffer(kSampleRoot)->size(), a = CompressBuffer(kSampleA)->size();
    const std::size_t pieces = root + a + CompressBuffer(kSampleB)->size();
    EXPECT_EQ(packed.substr(packed.size() - 2), "\1\1");
    EXPECT_EQ(static_cast<std::size_t>(static_cast<unsigned char>(packed[packed.size() - (littleEndian ? 6 : 3)])),
              pieces);
    EXPECT_EQ(Inflate(packed.substr(root, a)), kSampleA);
    EXPECT_EQ(Inflate(packed.substr(pieces, packed.size() - 6 - pieces)).substr(0, 15), "[Root]\noffset=0");
    EXPECT_TRUE(tree.saveIndex.empty());
  }
}

TEST(Saving, LeafRootAndContainerWithSeveralChildren) {
  TagTree tree = CreateTree(true, "Root");
  EXPECT_EQ(SaveTree(tree, false, false), "\xEF\xBB\xBF?zxml\n*Root=\n" + std::string(102, '\0'));
  SetAttributeByPath(tree, "second/" + std::string(300, 'n'), MakeTextValue("v"));
  EXPECT_EQ(SaveTree(tree, false, false).substr(9, 15), "*Root=\n*second=");
}

TEST(Compression, OfSlicesAroundTheirBoundariesAndOfNothing) {
  unsigned seed = 1;
  std::string input;
  for (const std::size_t size : {0, 1, 16383, 16384, 16385, 32768, 100000}) {
    while (input.size() < size) input += static_cast<char>((seed = seed * 1103515245u + 12345u) >> 24);
    const std::optional<std::string> packed = CompressBuffer(input);
    ASSERT_TRUE(packed);
    EXPECT_EQ(Inflate(*packed), input);
  }
}

TEST(Container, HoldsBodiesIndexAndTrailer) {
  for (const bool littleEndian : {false, true}) {
    InvFile inv = InitInvFile(littleEndian);
    AddTreeSection(inv, SampleTree(littleEndian), InvSectionType::Snapshot, false, true);
    AddTreeSection(inv, CreateTree(littleEndian, "AssetInfo"), InvSectionType::AssetInfo, false, true);
    AddTreeSection(inv, CreateTree(littleEndian, "Other"), InvSectionType::Snapshot, true, false);
    AddRawSection(inv, InvCompress("raw"));
    std::size_t lengths[4], bodies = 0;
    for (std::size_t i = 0; i < 4; ++i) bodies += lengths[i] = inv.sections[i].buffer.size();
    char index[512];
    std::snprintf(index, sizeof index,
                  "[H]\ncount=4\nsnapshotcount=1\n"
                  "[0]\noffset=0\nlength=%zu\ntype=snapshot\ntimestamp=20260102030405.000000+60\nsnaptype=mac:1\n"
                  "[1]\noffset=%zu\nlength=%zu\ntype=assetinfo\n"
                  "[2]\noffset=%zu\nlength=%zu\ntype=snapshot\ntimestamp=\nsnaptype=mac:1\n"
                  "[3]\noffset=%zu\nlength=%zu\ntype=customdata\nID=rawdata\n",
                  lengths[0], lengths[0], lengths[1], lengths[0] + lengths[1], lengths[2], bodies - lengths[3],
                  lengths[3]);
    EXPECT_EQ(IndexSize(inv), std::string(index).size());
    const std::string file = BuildInvBuffer(inv, true), plain = BuildInvBuffer(inv, false);
    EXPECT_EQ(Inflate(file.substr(bodies, file.size() - bodies - 14)), index);
    EXPECT_EQ(plain.substr(bodies, plain.size() - bodies - 14), index);
    std::string offset(8, '\0');
    for (std::size_t i = 0; i < 8; ++i) offset[littleEndian ? i : 7 - i] = static_cast<char>(bodies >> (8 * i));
    EXPECT_EQ(file.substr(file.size() - 14), offset + "\3\1INV!");
    EXPECT_EQ(plain.substr(plain.size() - 6), std::string("\3\0INV!", 6));
  }
}

TEST(Container, WithoutSections) {
  InvFile inv = InitInvFile(true);
  const std::string file = BuildInvBuffer(inv, true);
  EXPECT_EQ(Inflate(file.substr(0, file.size() - 14)), "[H]\ncount=0\nsnapshotcount=0\n");
  EXPECT_EQ(file.substr(file.size() - 14), std::string("\0\0\0\0\0\0\0\0\3\1INV!", 14));
}

TEST(Container, ReadsTheFlagsOfASavedBody) {
  InvFile inv = InitInvFile(true);
  for (const int form : {0, 1, 2, 3}) {
    TagTree tree = SampleTree(true);
    AddSavedSection(inv, SaveTree(tree, form & 2, form & 1), InvSectionType::Snapshot);
  }
  AddSavedSection(inv, "", InvSectionType::AssetInfo);
  const bool splits[] = {false, true, true, true, false}, compressed[] = {false, true, false, true, false};
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(inv.sections[i].split, splits[i]) << i;
    EXPECT_EQ(inv.sections[i].compress, compressed[i]) << i;
  }
}

TEST(Files, AreWrittenWholeOrNotAtAll) {
  char folder[] = "/tmp/quill-files-XXXXXX";
  ASSERT_NE(mkdtemp(folder), nullptr);
  const std::string path = std::string(folder) + "/x";
  InvFile inv = InitInvFile(true);
  EXPECT_TRUE(WriteInvFile(inv, path, true));
  EXPECT_EQ(ReadFile(path), BuildInvBuffer(inv, true));
  EXPECT_FALSE(WriteInvFile(inv, std::string(folder) + "/none/x", true));
  EXPECT_FALSE(WriteInvFile(inv, "/dev/full", true));
  EXPECT_EQ(access("/dev/full", F_OK), 0);
  TagTree tree = SampleTree(true);
  SaveTreeToFile(tree, path, true, true);
  SaveTreeToFile(tree, std::string(folder) + "/none/x", true, true);
  EXPECT_EQ(ReadFile(path), SaveTree(tree, true, true));
  std::remove(path.c_str());
  rmdir(folder);
}
