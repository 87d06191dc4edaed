// What the agent relies on from the platform, said once for both sides: built with platform/portable here, with
// macos.cpp on a Mac (QUILL_PLATFORM_MACOS says which). Where the two answer differently, kDifferences holds both
// answers. The time zone, half an hour off and with summer time, comes from outside: a Mac reads it when the program
// starts.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>

#include "platform/platform.h"

namespace {

std::string Join(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
  return text;
}

std::string Dump(const PropertyList& list) {
  std::vector<std::string> items;
  for (std::size_t i = 0; i < list.items.size(); ++i)
    items.push_back((i < list.keys.size() ? list.keys[i] + ": " : "") + Dump(list.items[i]));
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

// A folder of plug-ins of every kind, made below the working folder. "tall" is a list 100,000 deep; "wide" and the
// three "many" have more values than the folder may have, alone and together.
std::string MakePlugIns() {
  char name[] = "plug-ins-XXXXXX", place[4096];
  if (!mkdtemp(name) || !realpath(name, place)) return std::string();
  const std::string make = "cd " + std::string(name) + R"( && : > file && ln -s nowhere dangling
      Information() { echo "<plist><dict><key>CFBundleShortVersionString</key><string>$1</string></dict></plist>"; }
      Repeat() { yes "$2" | head -n "$1" | tr -d '\n'; }
      mkdir -p a.plugin .hidden/Contents b.plugin/Contents broken.plugin/Contents empty.plugin/Contents fifo.plugin
      mkdir -p resources/Resources support/'Support Files' flat beside/Resources tall wide many1 many2 many3
      ln -s b.plugin link.plugin
      mkfifo fifo.plugin/Info.plist
      echo '<plist><dict>' > broken.plugin/Contents/Info.plist
      echo '<plist><dict/></plist>' > empty.plugin/Contents/Info.plist
      Information 1 > .hidden/Contents/Info.plist
      Information 2.1 > b.plugin/Contents/Info.plist
      Information 3 > resources/Resources/Info.plist
      Information 4 > support/'Support Files'/Info.plist
      Information 5 > flat/Info.plist
      Information 6 > beside/Info.plist
      { echo '<plist>'; Repeat 100000 '<array>'; Repeat 100000 '</array>'; echo '</plist>'; } > tall/Info.plist
      Repeat 100001 '<true/>' > t
      { printf '<plist><dict><key>z</key><array>'; cat t; printf '</array></dict></plist>'; } > wide/Info.plist
      Repeat 45000 '<true/>' > t
      for n in 1 2 3; do { printf '<dict><key>z</key><array>'; cat t; echo '</array></dict>'; } > many$n/Info.plist; done
      rm t)";
  return std::system(make.c_str()) == 0 ? place : std::string();
}

// The bundles by name, each with its version, "null" without information, "-" with information but no version.
std::string BundlesOf(const std::string& folder) {
  std::vector<std::string> names;
  ForEachBundle(folder, [&](const Bundle& bundle) {
    EXPECT_EQ(bundle.path, folder + "/" + bundle.fileName);
    const std::string* version = FindText(&bundle.information, "CFBundleShortVersionString");
    const bool isNull = bundle.information.kind == PropertyListKind::Null;
    names.push_back(bundle.fileName + " " + (version ? *version : isNull ? "null" : "-"));
  });
  std::sort(names.begin(), names.end());
  return Join(names);
}

TEST(PlatformContract, ReadsScalars) {
  const char* kCases[][2] = {
      {"", "[]"},
      {"<integer>-2</integer><integer>-1</integer><integer>0</integer>", "[SInt64 -2, SInt32 -1, SInt32 0]"},
      {"<integer>12</integer><integer>13</integer><integer>0x1F</integer>", "[SInt32 12, SInt64 13, SInt64 31]"},
      {"<integer>-0X1f</integer><integer>+5</integer><integer>0010</integer>", "[SInt64 -31, SInt32 5, SInt32 10]"},
      {"<integer>9223372036854775807</integer>", "[SInt64 9223372036854775807]"},
      {"<integer>9223372036854775808</integer>", "[SInt64 -9223372036854775808]"},
      {"<integer>-9223372036854775808</integer>", "[SInt64 -9223372036854775808]"},
      {"<integer>18446744073709551615</integer>", "[SInt64 -1]"},
      {"<real>1.5</real><true/><false></false><data>AAEC</data>", "[Float64 1.500000, true, false, data]"},
      {"<real>-1e3</real><real>nan</real><real>-Infinity</real>", "[Float64 -1000.000000, Float64 nan, Float64 -inf]"},
      {"<real>1e400</real><real>inf</real>", "[Float64 inf, Float64 inf]"},
      {"<date>2014-11-15T06:04:22Z</date>", "[20141115023422.000000 -0330]"},
      {"<date>2014-13-15T25:04:22Z</date>", "[20150115213422.000000 -0330]"},
      {"<date>10000-01-01T12:00:00Z</date>", "[100000101083000.000000 -0330]"},
      {"<string/><string> a\tb\r\n</string><string>&lt;&amp;&#233;&quot;&apos;&gt;</string>",
       "['', ' a\tb\r\n', '<&\xC3\xA9\"'>']"},
      {"<string>\xF0\x9F\x98\x80 \xE2\x80\x99<![CDATA[<b&]]>c</string>", "['\xF0\x9F\x98\x80 \xE2\x80\x99<b&c']"},
      {"<string>&#x1F600;&#x10FFFF;&#1;\2</string>", "['\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF\1\2']"},
      {"<string>\xEF\xBB\xBFx</string>", "['x']"},
      {"<dict><key>b</key><array/><key>c</key><true/><key>b</key><dict/></dict>", "[{b: {}, c: true}]"},
      {"<dict><key/><true/><key>CF$UID</key><integer>20</integer></dict>", "[{: true, CF$UID: SInt64 20}]"},
      {"<dict><key>CF$UID</key><integer>20</integer></dict>", "[null]"},
      {"<array >\n<?x y?><!-- <array> --><!---><true a=\"b\" /></array\t>", "[[true]]"},
  };
  for (const auto& c : kCases) EXPECT_EQ(ParseItems(c[0]), c[1]) << c[0];
  EXPECT_EQ(ParseItems("<string>a&#0;b</string>"), std::string("['a\0b']", 7));
}

TEST(PlatformContract, ReadsDocumentsOfEveryFrame) {
  using namespace std::string_literals;
  const std::string utf16 = "\xFF\xFE<\0a\0r\0r\0a\0y\0>\0<\0t\0r\0u\0e\0/\0>\0<\0/\0a\0r\0r\0a\0y\0>\0"s;
  const std::string latin = "<array><string>\xE9</string></array>";
  const std::pair<std::string, const char*> kCases[] = {
      {"<array/>x", "[]"},
      {"<array/><array><true/></array>", "[]"},
      {"<plist><array/></plist>\n<plist><array><true/></array></plist>"s + "\0"s, "[]"},
      {"\n\r\t <plist version=\"1.0\"><array/></plist>", "[]"},
      {"\xEF\xBB\xBF<array/>", "[]"},
      {"<!-- before --><?xml version=\"1.0\"?><!DOCTYPE plist SYSTEM \"x\"><plist><array/><!-- x --></plist>", "[]"},
      {utf16, "[true]"},
      {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + latin, "['\xC3\xA9']"},
      {"<?xml version=\"1.0\" encoding='utf-8'?><array/>", "[]"},
  };
  for (const auto& [document, answer] : kCases) EXPECT_EQ(Parse(document), answer) << document;
}

TEST(PlatformContract, OneFaultOrAnotherRootIsNull) {
  using namespace std::string_literals;
  for (const std::string& document : {""s,
                                      " \n"s,
                                      "word"s,
                                      "x<array/>"s,
                                      "\0<array/>"s,
                                      "bplist00"s,
                                      "<dict/>"s,
                                      "<string>x</string>"s,
                                      "<plist/>"s,
                                      "<plist></plist>"s,
                                      "<plist><array/><array/></plist>"s,
                                      "<plist><array/>x</plist>"s,
                                      "<Array></Array>"s,
                                      "<array><true/>"s,
                                      "<array></dict>"s,
                                      "<array/ >"s,
                                      "<!DOCTYPE plist [ ]><array/>"s,
                                      "<?xml version=\"1.0\" encoding=\"x\"?><array/>"s,
                                      "<array><!-- </array>"s,
                                      "<array><?x </array>"s})
    EXPECT_EQ(Parse(document), "null") << document;
  for (const std::string& items : {"text"s,
                                   "<string>x"s,
                                   "<unknown/>"s,
                                   "<STRING>x</STRING>"s,
                                   "<string>&unknown;</string>"s,
                                   "<string>a & b</string>"s,
                                   "<string>a<!-- x --></string>"s,
                                   "<string>\xFF</string>"s,
                                   "<string>\xC3</string>"s,
                                   "<string>\xC0\x80</string>"s,
                                   "<string>\xED\xA0\x80</string>"s,
                                   "<string>a\0b</string>"s,
                                   "<string>&#xD83D;</string>"s,
                                   "<string>&#x110000;</string>"s,
                                   "<string>&#12x;</string>"s,
                                   "<dict><true/></dict>"s,
                                   "<dict><key>a</key></dict>"s,
                                   "<dict><key>a</key><key>b</key><true/></dict>"s,
                                   "<dict><key>a<!-- --></key><true/></dict>"s,
                                   "<dict>&#10;</dict>"s,
                                   "<integer/>"s,
                                   "<integer> 5</integer>"s,
                                   "<integer>5x</integer>"s,
                                   "<integer>-</integer>"s,
                                   "<integer>0x</integer>"s,
                                   "<integer>1.5</integer>"s,
                                   "<integer>1<!-- --></integer>"s,
                                   "<integer>&#49;</integer>"s,
                                   "<integer>-9223372036854775809</integer>"s,
                                   "<integer>18446744073709551616</integer>"s,
                                   "<real/>"s,
                                   "<real>1,5</real>"s,
                                   "<real> 1.5</real>"s,
                                   "<real>0x10</real>"s,
                                   "<real>abc</real>"s,
                                   "<date/>"s,
                                   "<date>2014-11-15</date>"s,
                                   "<date>2014-11-15T06:04:22</date>"s,
                                   "<date>2014-11-15T06:04:22+0100</date>"s,
                                   "<date>2014-11-15T06:04:22.5Z</date>"s,
                                   "<data/>"s,
                                   "<data></data>"s,
                                   "<true>x</true>"s})
    EXPECT_EQ(ParseItems(items), "null") << items;
}

TEST(PlatformContract, EveryCutIsNull) {
  const std::string document =
      "<?xml "
      "version=\"1.0\"?>\n<plist><array><dict><key>a</key><string>b&amp;<![CDATA[c]]></string></dict></array></plist>";
  for (std::size_t size = 0; size < document.size(); ++size) EXPECT_EQ(Parse(document.substr(0, size)), "null") << size;
}

TEST(PlatformContract, NestingEndsAt512OpenContainers) {
  for (const std::size_t depth : {512u, 513u, 100000u}) {
    std::string open, close;
    for (std::size_t i = 0; i < depth; ++i) {
      open += "<array>";
      close += "</array>";
    }
    EXPECT_EQ(Parse(open + close) == "null", depth > 512) << depth;
    EXPECT_EQ(Parse("<plist>" + open + close + "</plist>") == "null", depth > 512) << depth;
  }
}

TEST(PlatformContract, FormatsLocalTime) {
  const std::pair<double, const char*> kCases[] = {
      {437724262, "20141115023422.000000 -0330, 2014-11-15"},
      {457401600, "20150630213000.000000 -0230, 2015-06-30"},
      {1230694200, "20400101000000.000000 -0330, 2040-01-01"},
      {-0.5, "20001231202959.000000 -0330, 2000-12-31"},
      {252455616000, "100001231203000.000000 -0330, 10000-12-31"},
  };
  for (const auto& [seconds, expected] : kCases)
    EXPECT_EQ(Join({FormatLocalTime(seconds, DateForm::Full), FormatLocalTime(seconds, DateForm::Short)}), expected);
  EXPECT_EQ(FormatLocalTime(std::nan(""), DateForm::Full), "");
  EXPECT_NEAR(CurrentTime(), static_cast<double>(std::time(nullptr)) - 978307200.0, 2.0);
}

TEST(PlatformContract, TheProcessTableHoldsThisProcess) {
  std::optional<ProcessTable> table = ReadProcessTable();
  while (table && table->grew) table = ReadProcessTable();
  ASSERT_TRUE(table);
  const auto isThis = [](const ProcessRecord& record) {
    return record.pid == getpid() && record.parentPid == getppid() && !record.name.empty();
  };
  EXPECT_EQ(std::count_if(table->records.begin(), table->records.end(), isThis), 1);
}

TEST(PlatformContract, TakesEveryFolderForABundleAndNoneForGranted) {
  EXPECT_EQ(BundlesOf("/no/such/folder"), "");
  const std::string folder = MakePlugIns();
  EXPECT_EQ(
      BundlesOf(folder),
      ".hidden 1, a.plugin null, b.plugin 2.1, beside null, broken.plugin null, empty.plugin null, "
      "fifo.plugin null, flat 5, link.plugin 2.1, many1 -, many2 -, many3 null, resources 3, support 4, tall null, "
      "wide null");
  EXPECT_EQ(std::system(("rm -r " + folder.substr(folder.rfind('/') + 1)).c_str()), 0);
}

TEST(PlatformContract, KnownDifferences) {
  const struct {
    std::string answer, portable, mac;
  } kDifferences[] = {
      // in binary: 13, a 32-bit 1.5 and a text in UTF-16
      {Parse(std::string("bplist00\xA3\1\2\3\x10\x0D\x22\x3F\xC0\0\0\x61\0\xE9\x08\x0C\x0E\x13\0\0\0\0\0\0\1\1"
                         "\0\0\0\0\0\0\0\4\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x16",
                         58)),
       "[SInt64 13, Float64 1.500000, '\xC3\xA9']", "[SInt64 13, Float32 1.500000, '\xC3\xA9']"},
      {Parse("( a, b )"), "null", "['a', 'b']"},  // the older text form
  };
  for (const auto& c : kDifferences) EXPECT_EQ(c.answer, QUILL_PLATFORM_MACOS ? c.mac : c.portable);
  // A key with a zero character, in binary.
  EXPECT_EQ(Parse(std::string("bplist00\xA1\1\xD1\2\3\x62\0\xE9\0\0\x51x\x08\x0A\x0D\x12\0\0\0\0\0\0\1\1"
                              "\0\0\0\0\0\0\0\4\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x14",
                              56)),
            "null");
}

}  // namespace
