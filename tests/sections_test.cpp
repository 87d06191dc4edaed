#include "sections/sections.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "sections/os.h"
#include "sections/software_sort.h"
#include "tests/support.h"
#include "zxml/value_text.h"

TEST(System, SlotsOfEveryGroupShareTheirNumbers) {
  const std::string first =
      "<array>" + Dict({"dimm_status", "ok", "dimm_size", "8 GB"}) + Dict({"dimm_size", "1 GB"}) + "</array>";
  const std::string second = "<array>" + Dict({"dimm_status", "empty"}) + Dict({"dimm_status", "ok"}) + "</array>";
  const std::string memory =
      DataType("SPMemoryDataType", Dict({"_items", first.c_str()}) + Dict({"_items", second.c_str()}));
  EXPECT_EQ(
      SectionText(BuildSystemSection, memory),
      "+Snapshot=\n+System=\n+Mem-slots=\nmem-slot:1=\n~complex=\nmem-slot:2=\n~complex=\n"
      "*mem-slot:1=\nused=0\ncapacity=8192\n~base-value=8589934592\n*mem-slot:2=\nused=1\ncapacity=0\n~base-value=0\n"
      "-\n-\n-\n");
  EXPECT_EQ(
      SectionText(BuildMemorySection, memory),
      "+Snapshot=\n+Memory=\n*Memory-slot:1=\nused=1\ncapacity=8192\n*Memory-slot:2=\nused=0\n*Memory-slot:3=\nused=0\n"
      "*Memory-slot:4=\nused=1\n-\n-\n");
}

TEST(System, HardwareWithoutItsKeys) {
  Tools tools;
  tools.Add("ioreg", "printf '\"IOPlatformUUID\" = \"U-1\"\\n'");
  EXPECT_EQ(SectionText(BuildSystemSection, DataType("SPHardwareDataType", Dict({"machine_name", "iMac"}))),
            "+Snapshot=\n+System=\n*Computer-system=\nmodel=\nuuid=U-1\n*Chassis=\nmanuf=Apple Inc.\n-\n-\n");
}

TEST(System, MainsPowerAlsoDescribesTheWhole) {
  const std::string item =
      Dict({"_name", "sppower_information", "Battery Power", Dict({"Wake_On_LAN", "yes"}).c_str(), "AC Power",
            Dict({"Disk Sleep Timer", "<integer>10</integer>", "Wake On LAN", "Yes", "ReduceBrightness",
                  "<integer>1</integer>"})
                .c_str()});
  EXPECT_EQ(SectionText(BuildSystemSection, DataType("SPPowerDataType", Dict({"_name", "x"}) + item + item)),
            "+Snapshot=\n+System=\n+PowerManagement=\ndisk-sleep-timer=10\nwake-on-lan=1\nreduce-brightness=0\n"
            "*Profile:1=Battery_Power\nwake-on-lan=0\n*Profile:2=AC Power\ndisk-sleep-timer=10\nwake-on-lan=1\n"
            "reduce-brightness=0\n-\n-\n-\n");
}

TEST(Processors, CachesAndSpeeds) {
  const struct {
    std::string hardware;
    const char* text;
  } cases[] = {
      {Dict({"packages", "<integer>2</integer>", "number_processors", "<integer>8</integer>", "l2_cache_core", "256 KB",
             "l3_cache", "8 MB", "current_processor_speed", "2.3 GHz", "cpu_type", "X"}),
       "+Snapshot=\n+Processors=\n*Processor:1=X\ncore-count=8\nl2-cache-size=1024\nl3-cache-size=4096\n"
       "current-clock-speed=2300\n*Processor:2=X\ncore-count=8\nl2-cache-size=1024\nl3-cache-size=4096\n"
       "current-clock-speed=2300\n-\n-\n"},
      {Dict({"number_cpus", "two", "l2_cache", "3 MB", "l2_cache_share", "1,5 KB", "current_processor_speed",
             "2,4 GHz"}),
       "+Snapshot=\n+Processors=\n*Processor:1=CPU "
       "#1\ncore-count=0\nl2-cache-size=1\ncurrent-clock-speed=2000\n-\n-\n"},
      {Dict({"packages", "2"}), "*Snapshot=\n"},
      {Dict({"packages", "<integer>0</integer>"}), "*Snapshot=\n"},
      {Dict({"packages", "<integer>4097</integer>"}), "*Snapshot=\n"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(SectionText(BuildProcessorsSection, DataType("SPHardwareDataType", c.hardware)), c.text);
}

TEST(Memory, TotalNeedsTheMemoryDataType) {
  const std::string hardware = DataType("SPHardwareDataType", Dict({"physical_memory", "16 GB"}));
  EXPECT_EQ(SectionText(BuildMemorySection, hardware), "*Snapshot=\n");
  EXPECT_EQ(SectionText(BuildMemorySection, hardware + "<dict><key>_dataType</key><string>SPMemoryDataType</string>"
                                                       "<key>x</key><string/></dict>"),
            "+Snapshot=\n+Memory=\n*General-info=\nphysical-memory=16384\n-\n-\n");
}

TEST(OperatingSystem, VersionsOfEveryShape) {
  const struct {
    const char* text;
    int minor;
    const char *name, *version, *update;
  } cases[] = {
      {"Mac OS X 10.6.8 (10K549)", 6, "Mac OS X v10.6 (Snow Leopard)", "10.6.8 (10K549)", "Update 8"},
      {"OS X 10.9.5 (13F34)", 9, "OS X v10.9 (Mavericks)", "10.9.5 (13F34)", "Update 5"},
      {"OS X 10.9 (13A603)", 9, "OS X v10.9 (Mavericks)", "10.9 (13A603)", "Update (13A603)"},
      {"OS X 10.11.6 (15G31)", 11, "OS X v10.11 (El Capitan)", "10.11.6 (15G31)", "Update .6"},
      {"OS X 10.12", 12, "OS X 10.12", "10.12", ""},
      {"macOS 10.12.6 (16G29)", 0, "Mac OS X v10.0 (Cheetah)", "S 10.12.6 (16G29)", "Update 12.6"},
      {"OS X 10.7", 7, "Mac OS X v10.7 (Lion)", "10.7", ""},
      {"OS X 10. x y", 0, "Mac OS X v10.0 (Cheetah)", "10. x y", "Version(build)  y"},
      {"OS X", 0, "Mac OS X v10.0 (Cheetah)", "", ""},
      {"", 0, "Mac OS X v10.0 (Cheetah)", "", ""},
      {"OS X 10.99999999999 x", INT32_MAX, "OS X 10.99999999999 x", "10.99999999999 x", "Update 999999999"},
      {"OS X 10.-4", -4, "OS X 10.-4", "10.-4", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const OsRelease release = ReadOsRelease(c.text);
    EXPECT_EQ(release.minor, c.minor);
    EXPECT_EQ(release.name, c.name);
    EXPECT_EQ(release.version, c.version);
    EXPECT_EQ(release.update, c.update);
  }
}

TEST(OperatingSystem, Uptimes) {
  const char* cases[][2] = {
      {"up 1:02:03:04", "00000001020304.000000:000"},
      {"up 0:00:05:00", "00000000000500.000000:000"},
      {"", "00000000000000.000000:000"},
      {"1:02:03:04", "00000000020304.000000:000"},
      {"up 400:00:00:00", "00000400000000.000000:000"},
      {"up 1:1:0:0:0", "00000002000000.000000:000"},
      {"x 1x2", "00000000000142.000000:000"},
      {"up 12", "00000000000012.000000:000"},
      {"up 99999999999999999999", "106751991167300153007.000000:000"},
  };
  for (const auto& c : cases) EXPECT_EQ(FormatUptime(c[0]), c[1]) << c[0];
}

TEST(OperatingSystem, ItemWithoutKeysAndBranchWithoutItem) {
  EXPECT_EQ(SectionText(BuildOsSection, DataType("SPSoftwareDataType", Dict({"_name", "x"}))),
            "+Snapshot=\n+OS=\n*os:1=Mac OS X v10.0 (Cheetah)\n~kind=mac\nname=Mac OS X v10.0 (Cheetah)\nversion=\n"
            "manuf=Apple Inc.\nuptime=00000000000000.000000:000\narchitecture=32-bit\n-\n-\n");
  EXPECT_EQ(SectionText(BuildOsSection, DataType("SPSoftwareDataType", "")), "*Snapshot=\n");
}

TEST(Software, ApplicationsOfEveryKind) {
  EXPECT_EQ(
      SectionText(
          BuildSoftwareSection,
          DataType(
              "SPApplicationsDataType",
              Dict({"_name", "Mail", "version", "9.1", "app_store", "no", "has64BitIntelCode", "no", "info", "i"}) +
                  Dict({"_name", "Mail", "version", "9.1", "app_store", "<true/>", "path", "/M.app"}) +
                  Dict({"_name", "Chess", "lastModified", "<date>2015-01-02T03:04:05Z</date>", "has64BitIntelCode",
                        "yes", "app_store", "<integer>3</integer>", "runtime_environment", "arch_x86"}))),
      "+Snapshot=\n+Software=\n*Soft:Mail 9.1=Mail\nversion=9.1\napp-store=0\ninfo=i\n64bit-app=1\n~type=unknown\n"
      "location=/"
      "M.app\n*Soft:Chess=Chess\napp-store=1\ninst-date=20150102\nruntime-environment=arch_x86\n64bit-app=1\n-\n-\n");
}

namespace {

// The same order by other means: recursive, over texts.
void SortTexts(std::vector<std::string>& texts, int low, int high) {
  if (high - low < 2) return;
  const std::string pivot = LowerCase(texts[static_cast<std::size_t>((low + high) / 2)]);
  const auto key = [&texts](int k) { return LowerCase(texts[static_cast<std::size_t>(k)]); };
  int i = low, j = high;
  while (i <= j) {
    while (i < high && key(i) < pivot) i++;
    while (j > 0 && pivot < key(j)) j--;
    if (i > j) break;
    std::iter_swap(texts.begin() + i++, texts.begin() + j--);
  }
  if (low < j) SortTexts(texts, low, j);
  if (i < high) SortTexts(texts, i, high);
}

}  // namespace

TEST(Software, SortsLikeItsSecondForm) {
  unsigned seed = 7;
  for (int round = 0; round < 2000; ++round) {
    std::vector<std::string> texts;
    const unsigned size = round % 12;
    TagTree tree = CreateTree(true, "Snapshot");
    Tag* software = GetOrAddChild(RootOf(tree), "Software");
    for (unsigned k = 0; k < size; ++k) {
      seed = seed * 1103515245u + 12345u;
      texts.emplace_back(1, "aAbBcC\xC3"[(seed >> 16) % 7]);
      SetChildValue(*software, std::to_string(k), MakeTextValue(texts.back()));
    }
    if (size >= 3) SortTexts(texts, 0, static_cast<int>(size) - 1);
    SortSoftware(tree, "Software");
    for (unsigned k = 0; k < size; ++k) ASSERT_EQ(TextOf(ChildAt(*software, k)), texts[k]) << round;
    for (unsigned k = 0; k < size; ++k) ASSERT_NE(FindChild(*software, std::to_string(k)), nullptr);
  }
}

TEST(Libraries, NeedAnInformationDictionary) {
  if (QUILL_PLATFORM_MACOS) GTEST_SKIP() << "the plug-ins are the machine's";
  Tools recording;
  setenv("QUILL_RECORDING", recording.Folder().c_str(), 1);
  const std::string plugIns = recording.Folder() + "/Library/Internet Plug-Ins";
  const auto add = [&plugIns](const std::string& name, const std::string& information) {
    const std::string folder = plugIns + "/" + name + "/Contents";
    EXPECT_EQ(
        std::system(
            ("mkdir -p '" + folder + "' && printf %s '" + information + "' > '" + folder + "/Info.plist'").c_str()),
        0);
  };
  add("b.x.plugin", "<plist><dict><key>WebPluginDescription</key><string>w</string></dict></plist>");
  add("a\nc.plugin",
      "<plist><dict><key>CFBundleShortVersionString</key><string>1</string><key>CFBundleGetInfoString</key>"
      "<string>i</string><key>WebPluginDescription</key><string>w</string></dict></plist>");
  add("c.plugin", "<plist><dict/></plist>");
  add("d.plugin", "");
  add(".e.plugin", "<plist><dict><key>a</key><string>b</string></dict></plist>");
  TagTree tree = CreateTree(true, "Snapshot");
  BuildLibrariesSection(tree);
  unsetenv("QUILL_RECORDING");
  EXPECT_EQ(
      TextOfTree(tree),
      "+Snapshot=\n+Libraries=\n*library:a\rc 1=a\rc\npath=/Library/Internet Plug-Ins/a\rc.plugin\nversion=1\ndescr=i\n"
      "group=InternetPlug-Ins\n*library:b=b\npath=/Library/Internet "
      "Plug-Ins/b.x.plugin\ndescr=w\ngroup=InternetPlug-Ins\n"
      "-\n-\n");
}

TEST(Environment, EndsAtAnEmptyLine) {
  Tools tools;
  tools.Add("env", "printf 'A=b=c\\nno\\nPATH=/x:/y\\n=e\\nA= 2 \\n\\nLATE=1\\n'");
  TagTree tree = CreateTree(true, "Snapshot");
  BuildEnvironmentSection(tree);
  EXPECT_EQ(
      TextOfTree(tree),
      "+Snapshot=\n+Environment=\nenv-var:A=\n~complex=\nenv-var:PATH=\n~complex=\nenv-var:=\n~complex=\n"
      "*env-var:A=A\nvalue=2\nsystem=1\n*env-var:PATH=PATH\nvalue=/x:/y\n~split=:\nsystem=1\n*env-var:=\nvalue=e\n"
      "system=1\n-\n-\n");
}

TEST(UserAccounts, FromRecordsOfEveryShape) {
  Tools tools;
  tools.Add("ls", "printf 'Shared\\n$(touch %s/ran)`x`\"\\\\\\nann\\nbob\\nend' " + tools.Folder());
  tools.Add("dscl",
            "case \"$3\" in */ann) printf 'x:\\nNFSHomeDirectory: /U\\nPrimaryGroupID: 20\\nRealName:\\n Ann "
            "Lee\\nRecordName: ann\\n alt\\n"
            "RecordType: r\\nUniqueID: 501\\nUserShell: /bin/sh' ;;\n"
            "*/bob) printf '\\nNFSHomeDirectory: /U\\nRecordName: b' ;;\n"
            "*) printf '%s' \"$3\" > " +
                tools.Folder() + "/asked ;; esac");
  TagTree tree = CreateTree(true, "Snapshot");
  BuildUserAccountsSection(tree);
  EXPECT_EQ(
      TextOfTree(tree),
      "+Snapshot=\n+User-accounts=\n*usr-acc:ann\r alt=ann\r alt\nfullname=Ann Lee\ngroup=20\nid=501\nshell=/bin/sh\n"
      "hdir=/users/ann\nis-system-user=0\n*usr-acc:b=b\nhdir=/users/bob\nis-system-user=0\n-\n-\n");
  const std::string asked =
      "test ! -e " + tools.Folder() + "/ran && grep -q 'users/$(touch' " + tools.Folder() + "/asked";
  EXPECT_EQ(std::system(asked.c_str()), 0) << "a folder's name must not run";
}
