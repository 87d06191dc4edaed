#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>

#include "main/collect/plist_reader.h"
#include "tests/support.h"

TEST(RawTree, TakesEveryKindOfValueByItsLevel) {
  const TagTree tree = RawTree(
      "<string>stray</string><dict><key>_dataType</key><string>SPFontsDataType</string><key>a</key><string>b</string></"
      "dict>"
      "<dict><key>a</key><string>no type</string></dict>"
      "<dict><key>Anna's, \u2018Mail\u2019/x\u201C</key><string> a\nb </string><key>_dataType</key><string>T/U</string>"
      "<key>_detailLevel</key><integer>1</integer><key>_properties</key><dict><key>a</key><string>b</string></dict>"
      "<key>big</key><integer>13</integer><key>d</key><dict><key>big</key><integer>-13</integer><key>data</key>"
      "<data>AA==</data><key>empty</key><array/><key>late</key><date>4001-02-03T04:05:06Z</date><key>list</key>"
      "<array><string>x</string><true/><array><integer>2</integer></array></array>"
      "<key>old</key><date>1901-01-01T00:00:00Z</date><key>real</key><real>2.5</real>"
      "<key>top</key><integer>18446744073709551615</integer></dict><key>flag</key><true/>"
      "<key>small</key><integer>-1</integer></dict>");
  EXPECT_EQ(ShownTree(tree, "T/U"), R"(
+U=; Anna_s___Mail__x“=a\rb; big=13; small=4294967295
+d=; big=-13; late=40010203040506.000000+0; old=19010101000000.000000+0; real=2.50; top=-1
+list=; item0=x
*item2=; item0=2
-
-
-
)");
  EXPECT_EQ(FindAttribute(*RootOf(tree).children[0]->children[0], "big")->value.kind, ValueKind::String);
}

TEST(RawTree, DataTypeNamesOfMoreThan512SegmentsAreUnreadable) {
  for (const std::size_t slashes : {511u, 512u, 1000000u}) {
    SCOPED_TRACE(slashes);
    const TagTree tree = RawTree("<dict><key>_dataType</key><string>" + std::string(slashes, '/') +
                                 "</string><key>a</key><string>b</string></dict>");
    EXPECT_EQ(RootOf(tree).children.size(), slashes < 512 ? 1u : 0u);
  }
}

TEST(RawTree, NamedListsCountWhatTheySkip) {
  const std::string list =
      "<dict><key>A/b</key><string>v</string><key>b</key><integer>20</integer><key>c</key><string/></dict>";
  const TagTree tree = RawTree(
      "<dict><key>_dataType</key><string>T</string><key>i</key><dict><key>spfirewall_services"
      "</key>" +
      list + "</dict><key>spfirewall_services</key>" + list + "</dict>");
  EXPECT_EQ(ShownTree(tree, "T"), R"(
+T=
+i=
+spfirewall_services=
*item0=; _name=A/b; value=v
*item2=; _name=c; value=
-
-
*spfirewall_services=; A_b=v; b=20; c=
-
)");
}

TEST(RawTree, NumbersOfEveryStorageType) {
  const struct {
    NumberType type;
    std::int64_t number;
    const char* text;
  } cases[] = {
      {NumberType::SInt8, -1, "255"},
      {NumberType::SInt16, -1, "65535"},
      {NumberType::SInt32, -1, "4294967295"},
      {NumberType::SInt32, 5, "5"},
      {NumberType::SInt64, -1, "-1"},
      {NumberType::LongLong, -1, "-1"},
      {NumberType::Char, -1, "-1"},
      {NumberType::Short, -2, "-2"},
      {NumberType::Int, -3, "-3"},
      {NumberType::Long, INT64_MIN, "-9223372036854775808"},
      {NumberType::CFIndex, 4, "4"},
      {NumberType::NSInteger, -1, "-1"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.type));
    PropertyList number, list;
    number.kind = PropertyListKind::Number;
    number.numberType = c.type;
    number.integer = c.number;
    list.items = {number};
    TagTree tree = CreateTree(true, "R");
    EnterArray(list, RootOf(tree));
    EXPECT_EQ(TextOfTree(tree), std::string("*R=\nitem0=") + c.text + "\n");
  }
}

TEST(Dates, InLocalTimeWithMinutesOfOffset) {
  if (QUILL_PLATFORM_MACOS) GTEST_SKIP() << "the zone is the machine's";
  const struct {
    const char* zone;
    double seconds;
    const char* full;
    const char* shortForm;
  } cases[] = {
      {"UTC", 0, "20010101000000.000000+0", "2001-01-01"},
      {"MSK-3", 437713462.9, "20141115060422.000000+180", "2014-11-15"},
      {"EST5", 437713462, "20141114220422.000000-300", "2014-11-14"},
      {"NPT-5:45", -1, "20010101054459.000000+345", "2001-01-01"},
      {"XXX0:20", 0, "20001231234000.000000-20", "2000-12-31"},
  };
  for (const auto& c : cases) {
    setenv("TZ", c.zone, 1);
    tzset();
    EXPECT_EQ(FormatDate(c.seconds, DateForm::Full), c.full) << c.zone;
    EXPECT_EQ(FormatDate(c.seconds, DateForm::Short), c.shortForm) << c.zone;
  }
  unsetenv("TZ");
  tzset();
  EXPECT_EQ(FormatDate(1e300, DateForm::Full), "");
}

TEST(Escaping, LeavesALoneSpecialCharacterAtTheEnd) {
  const char* cases[][2] = {{"", ""},          {"&", "&"},           {"ab>", "ab>"},
                            {"a<b", "a&lt;b"}, {"<b>", "&lt;b&gt;"}, {"a'&'", "a&apos;&amp;&apos;"},
                            {"plain", "plain"}};
  for (const auto& c : cases) EXPECT_EQ(EscapeXmlText(c[0]), c[1]);
}
