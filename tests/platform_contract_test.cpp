// What the agent relies on from the platform, said once for both sides: built with portable.cpp here, with macos.cpp on
// a Mac (QUILL_PLATFORM_MACOS says which). Where the two answer differently, kDifferences holds both answers.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>

#include "platform/platform.h"

namespace {

// Local time half an hour off, with summer time. A Mac keeps the first zone that a program asks it for.
struct PlatformContract : testing::Test {
  PlatformContract() { setenv("TZ", "America/St_Johns", 1), unsetenv("QUILL_RECORDING"), tzset(); }
  ~PlatformContract() override { unsetenv("TZ"), tzset(); }
};

std::string Join(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
  return text;
}

std::string Dump(const PropertyList& list) {
  std::vector<std::string> items;
  for (std::size_t i = 0; i < list.items.size(); ++i)
    items.push_back((i < list.keys.size() ? list.keys[i] + ": " : "") + Dump(list.items[i]));
  if (!list.keys.empty()) std::sort(items.begin(), items.end());  // the order of keys is the platform's own
  if (list.kind == PropertyListKind::Dictionary) return "{" + Join(items) + "}";
  if (list.kind == PropertyListKind::Array) return "[" + Join(items) + "]";
  if (list.kind == PropertyListKind::Text) return "'" + list.text + "'";
  if (list.kind == PropertyListKind::Date) return FormatLocalTime(list.real, DateForm::Full);
  if (list.kind == PropertyListKind::Boolean) return list.integer ? "true" : "false";
  if (list.kind == PropertyListKind::Data) return "data";
  if (list.kind == PropertyListKind::Null) return "null";
  if (list.numberType == NumberType::SInt32) return "SInt32 " + std::to_string(list.integer);
  if (list.numberType == NumberType::SInt64) return "SInt64 " + std::to_string(list.integer);
  return (list.numberType == NumberType::Float64 ? "Float64 " : "Float32 ") + std::to_string(list.real);
}

std::string Parse(const std::string& document) { return Dump(ParsePropertyList(document)); }
std::string ParseItems(const std::string& xml) { return Parse("<plist><array>" + xml + "</array></plist>\n"); }

// A folder of plug-ins of every kind, made below the working folder.
std::string MakePlugIns() {
  char name[] = "plug-ins-XXXXXX", place[4096];
  if (!mkdtemp(name) || !realpath(name, place)) return std::string();
  const std::string make = "cd " + std::string(name) + R"( && : > file
      mkdir -p a.plugin .hidden b.plugin/Contents broken.plugin/Contents empty.plugin/Contents
      echo '<plist><dict>' > broken.plugin/Contents/Info.plist
      echo '<plist><dict/></plist>' > empty.plugin/Contents/Info.plist
      echo '<plist><dict><key>CFBundleShortVersionString</key><string>2.1</string></dict></plist>' \
        > b.plugin/Contents/Info.plist)";
  return std::system(make.c_str()) == 0 ? place : std::string();
}

// The bundles with their versions, by name; "null" for one without information.
std::string BundlesOf(const std::string& folder) {
  std::vector<std::string> names;
  for (const Bundle& bundle : LoadBundles(folder)) {
    EXPECT_EQ(bundle.path, folder + "/" + bundle.fileName);
    const PropertyList* version = FindKey(&bundle.information, "CFBundleShortVersionString");
    names.push_back(bundle.fileName + " " + Dump(version ? *version : bundle.information));
  }
  std::sort(names.begin(), names.end());
  return Join(names);
}

TEST_F(PlatformContract, ReadsPropertyLists) {
  const char* kCases[][2] = {
      {"", "[]"},
      {"<integer>-2</integer><integer>-1</integer><integer>0</integer>", "[SInt64 -2, SInt32 -1, SInt32 0]"},
      {"<integer>12</integer><integer>13</integer><integer>0x1F</integer>", "[SInt32 12, SInt64 13, SInt64 31]"},
      {"<integer>9223372036854775807</integer>", "[SInt64 9223372036854775807]"},
      {"<integer>9223372036854775808</integer>", "[SInt64 -9223372036854775808]"},
      {"<integer>18446744073709551615</integer>", "[SInt64 -1]"},
      {"<real>1.5</real><true/><false/><data>AAEC</data>", "[Float64 1.500000, true, false, data]"},
      {"<date>2014-11-15T06:04:22Z</date>", "[20141115023422.000000 -0330]"},
      {"<string/><string> a\tb\n</string><string>&lt;&amp;&#233;</string>", "['', ' a\tb\n', '<&\xC3\xA9']"},
      {"<string>\xF0\x9F\x98\x80 \xE2\x80\x99<![CDATA[<b]]></string>", "['\xF0\x9F\x98\x80 \xE2\x80\x99<b']"},
      {"<dict><key>b</key><array/><key>a</key><true/><key>a</key><dict/></dict>", "[{a: {}, b: []}]"},
  };
  for (const auto& c : kCases) EXPECT_EQ(ParseItems(c[0]), c[1]) << c[0];
}

TEST_F(PlatformContract, FaultsAndOtherRootsAreNull) {
  for (const char* document : {"", " \n", "word", "bplist00", "<dict/>", "<string>x</string>", "<array><true/>",
                               "<array></dict>", "<array>text</array>", "<array><string>x</array>",
                               "<array><unknown/></array>", "<array><string>&unknown;</string></array>",
                               "<array><string>a & b</string></array>", "<array><dict><true/></dict></array>"})
    EXPECT_EQ(Parse(document), "null") << document;
}

TEST_F(PlatformContract, NestingEndsAt512OpenContainers) {
  for (const std::size_t depth : {512u, 513u, 100000u}) {
    std::string open, close;
    for (std::size_t i = 1; i < depth; ++i) open += "<array>", close += "</array>";
    EXPECT_EQ(ParseItems(open + close) == "null", depth > 512) << depth;
  }
}

TEST_F(PlatformContract, FormatsLocalTime) {
  const std::pair<double, const char*> kCases[] = {
      {437724262, "20141115023422.000000 -0330, 2014-11-15"},
      {457401600, "20150630213000.000000 -0230, 2015-06-30"},
      {1230694200, "20400101000000.000000 -0330, 2040-01-01"},
      {-0.5, "20001231202959.000000 -0330, 2000-12-31"},
  };
  for (const auto& [seconds, expected] : kCases)
    EXPECT_EQ(Join({FormatLocalTime(seconds, DateForm::Full), FormatLocalTime(seconds, DateForm::Short)}), expected);
  EXPECT_EQ(FormatLocalTime(std::nan(""), DateForm::Full), "");
  EXPECT_NEAR(CurrentTime(), static_cast<double>(std::time(nullptr)) - 978307200.0, 2.0);
}

TEST_F(PlatformContract, TheProcessTableHoldsThisProcess) {
  std::optional<ProcessTable> table = ReadProcessTable();
  while (table && table->grew) table = ReadProcessTable();
  ASSERT_TRUE(table);
  const auto isThis = [](const ProcessRecord& record) {
    return record.pid == getpid() && record.parentPid == getppid() && !record.name.empty();
  };
  EXPECT_EQ(std::count_if(table->records.begin(), table->records.end(), isThis), 1);
}

TEST_F(PlatformContract, NoFolderHasNoBundles) { EXPECT_EQ(BundlesOf("/no/such/folder"), ""); }

// Mostly what libplist forgives and CoreFoundation does not.
TEST_F(PlatformContract, KnownDifferences) {
  const std::string folder = MakePlugIns();
  const std::string bundles = "a.plugin null, b.plugin '2.1', broken.plugin null, empty.plugin null";
  const struct {
    std::string answer, portable, mac;
  } kDifferences[] = {
      // in binary: 13, a 32-bit 1.5 and a text in UTF-16
      {Parse(std::string("bplist00\xA3\1\2\3\x10\x0D\x22\x3F\xC0\0\0\x61\0\xE9\x08\x0C\x0E\x13\0\0\0\0\0\0\1\1"
                         "\0\0\0\0\0\0\0\4\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x16",
                         58)),
       "[SInt64 13, Float64 1.500000, '\xC3\xA9']", "[SInt64 13, Float32 1.500000, '\xC3\xA9']"},
      // a key with a zero character, in binary
      {Parse(std::string("bplist00\xA1\1\xD1\2\3\x62\0\xE9\0\0\x51x\x08\x0A\x0D\x12\0\0\0\0\0\0\1\1"
                         "\0\0\0\0\0\0\0\4\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x14",
                         56)),
       "null", std::string("[{\xC3\xA9\0: 'x'}]", 11)},
      {ParseItems("<dict>&#10;</dict>"), "null", "[{}]"},
      {Parse("( a, b )"), "null", "['a', 'b']"},
      {Parse("<array/>x"), "null", "[]"},
      {Parse("<array/><array><true/></array>"), "[[true]]", "[]"},
      {ParseItems("<integer>x</integer><integer>12x</integer><integer/>"), "[SInt32 0, SInt32 12, SInt32 0]", "null"},
      {ParseItems("<real>x</real><data/>"), "[Float64 0.000000, data]", "null"},
      {ParseItems("<date>2014-11-15</date>"), "[19691231203000.000000 -0330]", "null"},
      {ParseItems("<string>\xFF</string>"), "['\xFF']", "null"},
      {ParseItems("<dict><key>a</key></dict>"), "[{}]", "null"},
      {ParseItems("<dict><key/><true/></dict>"), "null", "[{: true}]"},
      {ParseItems("<dict><key>CF$UID</key><integer>20</integer></dict>"), "[{CF$UID: SInt64 20}]", "[null]"},
      {BundlesOf(folder), bundles, ".hidden null, " + bundles},
  };
  for (const auto& c : kDifferences) EXPECT_EQ(c.answer, QUILL_PLATFORM_MACOS ? c.mac : c.portable);
  EXPECT_EQ(std::system(("rm -r " + folder.substr(folder.rfind('/') + 1)).c_str()), 0);
}

}  // namespace
