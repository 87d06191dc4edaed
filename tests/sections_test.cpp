#include "sections/sections.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fstream>

#include "sections/os.h"
#include "sections/software_sort.h"
#include "tests/support.h"
#include "zxml/value_text.h"

namespace {

std::string Group(const std::string& slots) { return "<dict><key>_items</key><array>" + slots + "</array></dict>"; }

const std::string kFullSlot = Dict({"dimm_status", "ok", "dimm_size", "8 GB"});
const std::string kEmptySlot = Dict({"dimm_status", "empty", "dimm_size", "1 GB"});

}  // namespace

TEST(System, SlotsOfEveryGroupShareTheirNumbers) {
  const std::string memory = DataType("SPMemoryDataType", Group(kFullSlot) + Group(kEmptySlot + kFullSlot));
  EXPECT_EQ(ShownSection(BuildSystemSection, memory, "System/Mem-slots"), R"(
+Mem-slots=; mem-slot:1= ~complex=; mem-slot:2= ~complex=
*mem-slot:1=; used=0; capacity=8192 ~base-value=8589934592
*mem-slot:2=; used=1; capacity=8192 ~base-value=8589934592
-
)");
}

TEST(System, SlotOutsideAGroupIsNumberedByItsPlace) {
  const std::string memory = DataType("SPMemoryDataType", Group(kFullSlot) + Dict({"dimm_status", "ok"}) + kEmptySlot);
  EXPECT_EQ(ShownSection(BuildSystemSection, memory, "System/Mem-slots"), R"(
+Mem-slots=; mem-slot:1= ~complex=; mem-slot:2= ~complex=; mem-slot:3= ~complex=
*mem-slot:1=; used=1; capacity=8192 ~base-value=8589934592
*mem-slot:2=; used=1; capacity=0 ~base-value=0
*mem-slot:3=; used=0
-
)");
}

TEST(Memory, SlotsAreCountedInGroupsAndOutside) {
  const std::string memory =
      DataType("SPMemoryDataType", Group(kFullSlot + kEmptySlot) + kFullSlot + Group(kEmptySlot));
  EXPECT_EQ(ShownSection(BuildMemorySection, memory, "Memory"), R"(
+Memory=
*Memory-slot:1=; used=1; capacity=8192
*Memory-slot:2=; used=0
*Memory-slot:3=; used=1; capacity=8192
*Memory-slot:4=; used=0
-
)");
}

TEST(Memory, TotalNeedsTheMemoryDataType) {
  const std::string hardware = DataType("SPHardwareDataType", Dict({"physical_memory", "16 GB"}));
  EXPECT_EQ(ShownSection(BuildMemorySection, hardware, "Memory"), "none");
  EXPECT_EQ(ShownSection(BuildMemorySection, hardware + Dict({"_dataType", "SPMemoryDataType", "x", ""}), "Memory"), R"(
+Memory=
*General-info=; physical-memory=16384
-
)");
}

TEST(System, HardwareWithoutItsKeys) {
  Tools tools;
  tools.Add("ioreg", "printf '\"IOPlatformUUID\" = \"U-1\"\\n'");
  const std::string hardware = DataType("SPHardwareDataType", Dict({"machine_name", "iMac"}));
  EXPECT_EQ(ShownSection(BuildSystemSection, hardware, "System"), R"(
+System=
*Computer-system=; model=; uuid=U-1
*Chassis=; manuf=Apple Inc.
-
)");
}

TEST(System, MainsPowerAlsoDescribesTheWhole) {
  const std::string battery = Dict({"Wake_On_LAN", "yes"});
  const std::string mains = Dict({"Disk Sleep Timer", "<integer>10</integer>", "Wake On LAN", "Yes"});
  const std::string power =
      Dict({"AC Power", mains.c_str(), "Battery Power", battery.c_str(), "_name", "sppower_information"});
  EXPECT_EQ(ShownSection(BuildSystemSection, DataType("SPPowerDataType", Dict({"_name", "x"}) + power + power),
                         "System/PowerManagement"),
            R"(
+PowerManagement=; disk-sleep-timer=10; wake-on-lan=1
*Profile:1=AC Power; disk-sleep-timer=10; wake-on-lan=1
*Profile:2=Battery_Power; wake-on-lan=0
-
)");
}

TEST(Processors, ShareTheirCachesAndCores) {
  const std::string hardware =
      Dict({"packages", "<integer>2</integer>", "number_processors", "<integer>8</integer>", "l2_cache_core", "256 KB",
            "l3_cache", "8 MB", "current_processor_speed", "2.3 GHz", "cpu_type", "X"});
  EXPECT_EQ(ShownSection(BuildProcessorsSection, DataType("SPHardwareDataType", hardware), "Processors/Processor:2"),
            R"(
*Processor:2=X; core-count=8; l2-cache-size=1024; l3-cache-size=4096; current-clock-speed=2300
)");
}

TEST(Processors, UnreadableNumbers) {
  const std::string hardware = Dict(
      {"number_cpus", "two", "l2_cache", "3 MB", "l2_cache_share", "1,5 KB", "current_processor_speed", "2,4 GHz"});
  EXPECT_EQ(ShownSection(BuildProcessorsSection, DataType("SPHardwareDataType", hardware), "Processors/Processor:1"),
            R"(
*Processor:1=CPU #1; core-count=0; l2-cache-size=1; current-clock-speed=2000
)");
  for (const char* packages : {"2", "<integer>0</integer>", "<integer>4097</integer>"})
    EXPECT_EQ(ShownSection(BuildProcessorsSection, DataType("SPHardwareDataType", Dict({"packages", packages})), ""),
              "\n*Snapshot=\n");
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

TEST(OperatingSystem, LionAndLaterAreWide) {
  const char* cases[][3] = {
      {"OS X 10.7 (11A511)", "no", "64-bit"},
      {"Mac OS X 10.6.8 (10K549)", "no", "32-bit"},
      {"Mac OS X 10.6.8 (10K549)", "yes", "64-bit"},
  };
  for (const auto& c : cases) {
    const std::string software = Dict({"os_version", c[0], "64bit_kernel_and_kexts", c[1]});
    const std::string text = ShownSection(BuildOsSection, DataType("SPSoftwareDataType", software), "OS/os:1");
    EXPECT_NE(text.find(std::string("; architecture=") + c[2]), std::string::npos) << c[0] << text;
  }
}

TEST(OperatingSystem, ItemWithoutKeys) {
  EXPECT_EQ(ShownSection(BuildOsSection, DataType("SPSoftwareDataType", Dict({"_name", "x"})), "OS/os:1"),
            R"(
*os:1=Mac OS X v10.0 (Cheetah) ~kind=mac; name=Mac OS X v10.0 (Cheetah); version=)"
            R"(; manuf=Apple Inc.; uptime=00000000000000.000000:000; architecture=32-bit
)");
  EXPECT_EQ(ShownSection(BuildOsSection, DataType("SPSoftwareDataType", ""), "OS"), "none");
}

TEST(Software, SameNameAndVersionShareATag) {
  const std::string mail = Dict({"_name", "Mail", "version", "9.1", "app_store", "no", "has64BitIntelCode", "no"}) +
                           Dict({"_name", "Mail", "version", "9.1", "app_store", "<true/>", "info", "i"});
  EXPECT_EQ(ShownSection(BuildSoftwareSection, DataType("SPApplicationsDataType", mail), "Software"), R"(
+Software=
*Soft:Mail 9.1=Mail; version=9.1; app-store=0; info=i; 64bit-app=1 ~type=unknown
-
)");
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
  const auto add = [&recording](const std::string& name, const std::string& information) {
    const std::string folder = recording.Folder() + "/Library/Internet Plug-Ins/" + name + "/Contents";
    const std::string file = "'" + folder + "/Info.plist'";
    const std::string command = "mkdir -p '" + folder + "' && printf %s '" + information + "' > " + file;
    EXPECT_EQ(std::system(command.c_str()), 0);
  };
  add("b.x.plugin", "<plist>" + Dict({"WebPluginDescription", "w"}) + "</plist>");
  add("a\nc.plugin",
      "<plist>" + Dict({"CFBundleShortVersionString", "1", "CFBundleGetInfoString", "i", "WebPluginDescription", "w"}) +
          "</plist>");
  add("c.plugin", "<plist><dict/></plist>");
  add("d.plugin", "");
  add(".e.plugin", "<plist>" + Dict({"a", "b"}) + "</plist>");
  TagTree tree = CreateTree(true, "Snapshot");
  BuildLibrariesSection(tree);
  unsetenv("QUILL_RECORDING");
  EXPECT_EQ(ShownTree(tree, "Libraries"), R"(
+Libraries=
*library:=; path=/Library/Internet Plug-Ins/.e.plugin; group=InternetPlug-Ins
*library:a\rc 1=a\rc; path=/Library/Internet Plug-Ins/a\rc.plugin; version=1; descr=i; group=InternetPlug-Ins
*library:b=b; path=/Library/Internet Plug-Ins/b.x.plugin; descr=w; group=InternetPlug-Ins
-
)");
}

TEST(Environment, EndsAtAnEmptyLine) {
  Tools tools;
  tools.Add("env", "printf 'A=b=c\\nno\\nPATH=/x:/y\\nA= 2 \\n\\nLATE=1\\n'");
  TagTree tree = CreateTree(true, "Snapshot");
  BuildEnvironmentSection(tree);
  EXPECT_EQ(ShownTree(tree, "Environment"), R"(
+Environment=; env-var:A= ~complex=; env-var:PATH= ~complex=
*env-var:A=A; value=2; system=1
*env-var:PATH=PATH; value=/x:/y ~split=:; system=1
-
)");
}

TEST(UserAccounts, FromRecordsOfEveryShape) {
  Tools tools;
  tools.Add("ls", "printf 'Shared\\nann\\nbob\\nend'");
  tools.Add("dscl",
            "case \"$3\" in */ann) printf 'x:\\nNFSHomeDirectory: /U\\nPrimaryGroupID: 20\\nRealName:\\n Ann Lee\\n"
            "RecordName: ann\\n alt\\nRecordType: r\\nUniqueID: 501\\nUserShell: /bin/sh' ;;\n"
            "*/bob) printf '\\nNFSHomeDirectory: /U\\nRecordName: b' ;; esac");
  TagTree tree = CreateTree(true, "Snapshot");
  BuildUserAccountsSection(tree);
  EXPECT_EQ(ShownTree(tree, "User-accounts"), R"(
+User-accounts=
*usr-acc:ann\r alt=ann\r alt; fullname=Ann Lee; group=20; id=501; shell=/bin/sh; hdir=/users/ann; is-system-user=0
*usr-acc:b=b; hdir=/users/bob; is-system-user=0
-
)");
}

TEST(UserAccounts, NameOfAFolderDoesNotRun) {
  Tools tools;
  const std::string ran = tools.Folder() + "/ran";
  tools.Add("dscl", "printf '%s' \"$3\" > " + tools.Folder() + "/asked");
  const std::string touch = "$(touch " + ran + ")`touch " + ran + "`\"";
  const std::string cases[][2] = {
      {touch + "\\\\", touch + "\\"},
      {"Zo\xC3\xAB", "Zo\xC3\xAB"},
      {"\x83`touch " + ran + "`", "nothing"},  // in Shift-JIS, 83 and a backslash are one character
      {"Ann\\0`touch " + ran + "`", "Ann"},
  };
  for (const auto& c : cases) {
    tools.Add("ls", "printf '" + c[0] + "\\n'");
    std::ofstream(tools.Folder() + "/asked") << "/users/nothing";
    TagTree tree = CreateTree(true, "Snapshot");
    BuildUserAccountsSection(tree);
    std::string asked;
    std::getline(std::ifstream(tools.Folder() + "/asked"), asked);
    EXPECT_EQ(asked, "/users/" + c[1]);
    EXPECT_FALSE(std::ifstream(ran).good());
  }
}

TEST(UserAccounts, NamesEndAtAZeroByte) {
  Tools tools;
  tools.Add("ls", "echo ann");
  tools.Add("dscl", "printf '\\nNFSHomeDirectory: /U\\nRecordName: a\\0b'");
  tools.Add("env", "printf 'A\\0b=c\\0d\\n'");
  TagTree tree = CreateTree(true, "Snapshot");
  BuildUserAccountsSection(tree);
  BuildEnvironmentSection(tree);
  EXPECT_EQ(ShownTree(tree, ""), R"(
+Snapshot=
+User-accounts=
*usr-acc:a=a; hdir=/users/ann; is-system-user=0
-
+Environment=; env-var:A= ~complex=
*env-var:A=A; value=c; system=1
-
-
)");
}

TEST(UserAccounts, AskingAgainAndAgainTakesItsTime) {
  Tools tools;
  const std::string runs = tools.Folder() + "/runs";
  tools.Add("ls", "echo >> " + runs + "; [ $(wc -l < " + runs + ") -lt 7 ] || echo ann");
  TagTree tree = CreateTree(true, "Snapshot");
  const std::time_t start = std::time(nullptr);
  BuildUserAccountsSection(tree);
  const bool onAMac = std::system("[ -d /Users ]") == 0;
  EXPECT_GE(std::time(nullptr) - start, onAMac ? 2 : 0);
  EXPECT_EQ(std::system(("[ $(wc -l < " + runs + ") -eq " + (onAMac ? "7" : "5") + " ]").c_str()), 0);
}
