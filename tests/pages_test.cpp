// What the pages are made of: texts in their places, numbers for people, and what is called an alarm.
#include <gtest/gtest.h>

#include "reader/alarm.h"
#include "reader/html.h"
#include "reader/page.h"
#include "reader/record_view.h"
#include "reader/zxml_reader.h"

namespace {

constexpr std::int64_t kScanned = 1767319445;  // 2026-01-02 02:04:05 UTC
constexpr std::int64_t kDay = 86400;

struct Place {
  const char* name;
  std::string (*escape)(std::string_view);
  const char* text;
  const char* expected;
};

TEST(Pages, ATextIsEscapedForItsPlace) {
  const Place places[] = {
      {"element", HtmlText, "</script><b a='1'>&amp;\"", "&lt;/script&gt;&lt;b a=&#39;1&#39;&gt;&amp;amp;&quot;"},
      {"one line", HtmlText, "a\r\nb\tc\x1B\r", "a  b c\\x1B"},
      {"not UTF-8", HtmlText, "\xC3\xFF<", "\xEF\xBF\xBD\xEF\xBF\xBD&lt;"},
      {"exact", HtmlExact, "a\rb\r", "a\\rb\\r"},
      {"lines", HtmlLines, "<a>\r\nb\rc\n\nd", "&lt;a&gt;\nb\nc\n\nd\n"},
      {"script data", ScriptData, R"(["</script><!--&"])", R"(["\u003C/script\u003E\u003C!--\u0026"])"},
  };
  for (const Place& place : places) EXPECT_EQ(place.escape(place.text), place.expected) << place.name;
}

TEST(Pages, ThePolicyAllowsOneStyleAndOneScript) {
  const std::string page = HtmlPage("<t>", "<p></p>");
  EXPECT_NE(page.find("<title>&lt;t&gt;</title>"), page.npos);
  EXPECT_NE(page.find("default-src 'none'; script-src 'sha256-"), page.npos);
  EXPECT_EQ(page.find('@' + std::string("SCRIPT")), page.npos);
  EXPECT_EQ(page.find("unsafe"), page.npos);
}

TEST(Pages, NumbersHaveThreeDigitsAndAUnit) {
  const std::pair<std::string, const char*> rows[] = {
      {DiskSize(0), "0 bytes"},
      {DiskSize(999), "999 bytes"},
      {DiskSize(999999), "1 MB"},
      {DiskSize(117756723), "118 MB"},
      {DiskSize(9995000000), "10 GB"},
      {DiskSize(1740000000), "1.74 GB"},
      {DiskSize(INT64_MAX), "9.22 EB"},
      {DiskSize(-1500), "-1.5 KB"},
      {MemorySize(std::int64_t{6} << 30), "6 GB"},
      {MemorySize(1536 << 20), "1.5 GB"},
      {Grouped(-1234567), "-1,234,567"},
      {Grouped(999), "999"},
      {Counted(1, "disk", "disks"), "1 disk"},
      {ShownMoment(kScanned), "2026-01-02 02:04 UTC"},
  };
  for (const auto& [shown, expected] : rows) EXPECT_EQ(shown, expected);
}

// A document whose inventory holds those lines of zXML.
Document DocumentOf(const std::string& lines) {
  Document document;
  TextBudget budget;
  Section section;
  section.record.type = InvSectionType::Snapshot;
  section.record.timestamp = "20260102030405.000000+60";
  section.record.inside = section.isRead = section.body.whole = true;
  section.tree = ParseZxml("\xEF\xBB\xBF?zxml\n+Snapshot=\n" + lines + "-\n", false, "t", budget, document.faults);
  document.container.records = {section.record};
  document.sections.push_back(std::move(section));
  return document;
}

std::string AlarmLines(const Document& document, std::int64_t now = kScanned) {
  std::string lines;
  for (const Alarm& alarm : AlarmsOf(SourceOf(document), now))
    lines += std::string(LevelName(alarm)) + ": " + alarm.text + "\n";
  return lines;
}

std::string Volume(const char* free) {
  return std::string("+Storage=\n+Logical-disks=\n*partition:1=V\nsize=100.00\n~base-value=100000000000\n") +
         (*free ? std::string("free=1\n~base-value=") + free + "\n" : "") + "-\n-\n";
}

std::string Slots(const char* first, const char* second, const char* total) {
  return std::string("+Memory=\n*Memory-slot:1=\n") + first + "*Memory-slot:2=\n" + second +
         "*General-info=\nphysical-memory=" + total + "\n-\n";
}

TEST(Pages, WhatNeedsAttention) {
  const struct {
    const char* name;
    std::string lines;
    const char* expected;
  } rows[] = {
      {"sound", Volume("10000000000") + Slots("used=1\ncapacity=2048\n", "used=1\ncapacity=2048\n", "4096"), ""},
      {"a tenth is enough, a byte less is not", Volume("9999999999"), "Serious: V has 10 GB of 100 GB free.\n"},
      {"not mounted", Volume(""), ""},
      {"small volume", "+Storage=\n+Logical-disks=\n*partition:1=V\nsize=5\nfree=4\n-\n-\n",
       "Notice: V has 4.29 GB of 5.37 GB free.\n"},
      {"firewall off", "+Security=\n*Firewall=\nstatus=0\n-\n",
       "Serious: The firewall is off: it lets everything in.\n"},
      {"firewall on", "+Security=\n*Firewall=\nstatus=1\n-\n", ""},
      {"empty slot", Slots("used=1\ncapacity=2048\n", "used=0\n", "2048"), "Notice: 1 memory slot of 2 is empty.\n"},
      {"odd modules", Slots("used=1\ncapacity=2048\n", "used=1\ncapacity=4096\n", "8192"),
       "Notice: The memory modules differ: 2 GB and 4 GB.\nNotice: The memory modules hold 6 GB, the system has 8 "
       "GB.\n"},
      {"no size", Slots("used=1\n", "used=1\ncapacity=99999999999999999999\n", "1"),
       "Notice: A memory slot holds a module of unknown size.\nNotice: A memory slot holds a module of unknown "
       "size.\n"},
      {"empty disk", "+Storage=\n+Physical-disks=\n*HDD:1=\nmodel=D\npartitions=0\n*CD:1=\nmodel=C\n-\n-\n",
       "Notice: D has no volume.\n"},
  };
  for (const auto& row : rows) EXPECT_EQ(AlarmLines(DocumentOf(row.lines)), row.expected) << row.name;

  Document document = DocumentOf("");
  EXPECT_EQ(AlarmLines(document, kScanned + 30 * kDay), "");
  EXPECT_EQ(AlarmLines(document, kScanned + 31 * kDay), "Notice: The scan is 31 days old.\n");
  document.sections[0].record.inside = false;
  EXPECT_EQ(AlarmLines(document), "Serious: Section 0 (snapshot) of the file is missing: nothing of it can be read.\n");
}

}  // namespace
