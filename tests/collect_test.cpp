#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>

#include "main/collect/asset_summary.h"
#include "main/collect/command_runner.h"
#include "main/collect/host_identity.h"
#include "main/collect/process_list.h"
#include "main/collect/profiler.h"
#include "main/collect/salvage.h"
#include "main/console/console_log.h"
#include "main/console/panic_log.h"
#include "main/result_file.h"
#include "platform/platform.h"
#include "tests/support.h"

TEST(Commands, OutputOfEveryLengthIsReadWhole) {
  for (const int size : {0, 1, 99, 100, 101, 200, 150000}) {
    const std::string output = RunCommand("head -c " + std::to_string(size) + " /dev/zero", 100);
    EXPECT_EQ(output, std::string(static_cast<std::size_t>(size), '\0'));
  }
  EXPECT_EQ(RunCommand("exit 3", 40), "");
  EXPECT_EQ(RunCommand("no-such-tool-at-all 2>/dev/null", 40), "");
  EXPECT_EQ(RunCommand("head -c 268435457 /dev/zero", 65536), "") << "more than 256 MiB count as nothing";
}

TEST(Commands, WholeFileEndsAtItsFirstZeroByte) {
  Tools folder;
  const std::string path = folder.Folder() + "/file";
  std::ofstream(path, std::ios::binary) << std::string("ab\0c", 4);
  std::size_t length = 0;
  EXPECT_EQ(ReadWholeFile(path, length), "ab");
  EXPECT_EQ(length, 4u);
  EXPECT_EQ(ReadWholeFile(folder.Folder() + "/none", length), "");
  EXPECT_EQ(length, 0u);
  EXPECT_EQ(ReadWholeFile("/proc/self/status", length).size(), length);
  EXPECT_GT(length, 0u);
}

TEST(Console, FormatsOfEveryLength) {
  std::string text = "old";
  FormatToString(text, "%s", "");
  EXPECT_EQ(text, "");
  FormatToString(text, "a%cb", 0);
  EXPECT_EQ(text, "a");
  FormatToString(text, "%5000d", 7);
  EXPECT_EQ(text.size(), 5000u);
  EXPECT_EQ(MeasureFormat("%d-%s", 12, "abc"), 6);
}

TEST(Console, PanicRecordsAddUp) {
  Tools folder;
  char before[4096];
  ASSERT_NE(getcwd(before, sizeof before), nullptr);
  ASSERT_EQ(chdir(folder.Folder().c_str()), 0);
  testing::internal::CaptureStderr();
  WritePanic("a.cpp", 7, -1, ENOENT, "lost");
  WritePanic("b.cpp", 8, 2, 0, nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error at Line: 7;\nErrnum: 2;\nFile name: a.cpp;\nMessage: lost;\n Code: -1;\n"
            "Error at Line: 8;\nErrnum: 0;\nFile name: b.cpp;\nMessage: ;\n Code: 2;\n");
  EXPECT_EQ(
      RunCommand("sed 's/Time: [1-9][0-9]*,/Time,/; s/(.*)/()/' panic.log", 100),
      "PANIC EXIT. Application: quillagent, Time, File: a.cpp, Line: 7, Code: #-1, Error: #2 (), Message: \"lost\"\n"
      "PANIC EXIT. Application: quillagent, Time, File: b.cpp, Line: 8, Code: #2, Error: #0 (), Message: \"\"\n");
  ASSERT_EQ(std::rename("panic.log", "real"), 0);
  for (const char* plant : {"ln -s real panic.log", "ln -s none panic.log", "ln real panic.log", "mkfifo panic.log"}) {
    RunCommand(plant, 100);
    const std::string log = RunCommand("cat real", 100);
    testing::internal::CaptureStderr();
    WritePanic("c.cpp", 9, 2, 0, "elsewhere");
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(RunCommand("cat real; ls none 2>&1 >/dev/null | wc -l; rm panic.log", 100), log + "1\n") << plant;
  }
  EXPECT_EQ(chdir(before), 0);
}

// A profiler that prints a document of `size` bytes, with a mark for each cut.
TEST(Profiler, PiecesAtTheLimitsOfTheFrame) {
  const struct {
    int size;
    std::size_t first, middle, last;
  } cases[] = {{17, 0, 0, 0},    {18, 0, 0, 0},     {19, 1, 0, 0},     {171, 153, 0, 0}, {172, 154, 0, 0},
               {173, 155, 0, 1}, {189, 171, 0, 17}, {190, 172, 0, 18}, {191, 173, 1, 19}};
  Tools tools;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.size);
    tools.Add("system_profiler",
              "[ \"$*\" = '-detailLevel full -xml T' ] && head -c " + std::to_string(c.size) + " /dev/zero");
    std::string document = "x";
    const auto sizeOfPiece = [&](ProfilerPosition position) {
      const ProfilerPiece piece = RunProfilerType("T", position, document);
      EXPECT_EQ(piece.start + piece.size, document.size());
      EXPECT_EQ(piece.head.size() + piece.size + piece.tail.size(), static_cast<std::size_t>(c.size));
      return piece.size;
    };
    EXPECT_EQ(sizeOfPiece(ProfilerPosition::First), c.first);
    EXPECT_EQ(sizeOfPiece(ProfilerPosition::Middle), c.middle);
    EXPECT_EQ(sizeOfPiece(ProfilerPosition::Last), c.last);
    EXPECT_EQ(document.size(), 1 + c.first + c.middle + c.last);
  }
}

TEST(Profiler, EmptyOutputIsAskedForFiveTimesAndLeavesAFrame) {
  Tools tools;
  tools.Add("system_profiler", "echo \"$4\" >> " + tools.Folder() + "/runs");
  EXPECT_EQ(ParsePropertyList(CollectProfilerData(false).document).kind, PropertyListKind::Array);
  EXPECT_EQ(RunCommand(
                "sort " + tools.Folder() + "/runs | uniq -c | awk '$1 != 5'; wc -l < " + tools.Folder() + "/runs", 100),
            "115\n");
}

TEST(Profiler, OneSpoiledOutputCostsOneDataType) {
  const struct {
    const char* spoil;  // what one output goes through
    bool lost;
  } cases[] = {
      {"head -c 100", true},
      {"head -c 250", true},
      {"tr '<' 'x'", true},
      {"(head -c 164; echo '<array/>'; echo '</plist>')", true},
      {"(echo 'caf\351 & <dict>'; cat)", false},
      {"(cat; echo done)", false},
      {"(cat; echo 'a line that is longer than the tail')", false},
      {"(d=$(cat); echo \"$d\"; echo \"$d\")", false},
      {"(cat; echo '<plist/> and more of another program')", false},
      {"tr q '\351'", false},
      {"sed 1d", false},
  };
  Tools tools;
  const std::string print =
      "print() { printf '%s\\n' '<?xml version=\"1.0\" encoding=\"UTF-8\"?>' '<!DOCTYPE plist PUBLIC \"-//Apple//DTD "
      "PLIST "
      "1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">' '<plist version=\"1.0\">' '<array>' "
      "\"<dict><key>_dataType</key><string>$4</string><key>q</key><string>q</string></dict>\" '</array>' '</plist>'; "
      "}\n";
  for (const char* type : {"SPHardwareDataType", "SPMemoryDataType", "SPPowerDataType"})
    for (const auto& c : cases) {
      SCOPED_TRACE(std::string(type) + " through " + c.spoil);
      tools.Add("system_profiler", print + "[ $4 = " + type + " ] && print $* | " + c.spoil + " || print $*");
      const PropertyList list = ParseProfilerData(CollectProfilerData(false));
      EXPECT_EQ(list.items.size(), c.lost ? 22u : 23u);
      EXPECT_EQ(*FindText(FindDataType(list, type), "_dataType") == type, !c.lost);
    }
}

TEST(Salvage, FindsTheDocumentAndReplacesWhatIsNotUtf8) {
  const char* cases[][2] = {
      {"", ""},
      {"no marks", "no marks"},
      {"a <plist><?xml ?><plist>b</plist>c</plist>d", "<?xml ?><plist>b</plist>c</plist>"},
      {"a<plist>b<plist>c", "<plist>b<plist>c"},
      {"a</plist>b", "a</plist>"},
      {"\xE9t\xC3\xA9\xC3", "\uFFFDt\u00E9\uFFFD"},
      {"\xC1\xBF\xE0\x9F\xBF\xED\xA0\x80\xF4\x90\x80\x80",
       "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF",
       "\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF"},
  };
  for (const auto& c : cases) EXPECT_EQ(SalvagedDocument(c[0]), c[1]);
}

namespace {

std::string Service(const char* interface, const char* address, const char* mac, const char* method) {
  return Dict({"interface", interface, "ip_address", ("<array>" + std::string(address) + "</array>").c_str(),
               "Ethernet", Dict({"MAC Address", mac}).c_str(), "IPv4", Dict({"ConfigMethod", method}).c_str()});
}

std::string Location(const char* active, const char* mac, const char* smb) {
  return Dict({"spnetworklocation_isActive", active, "spnetworklocation_services",
               ("<array>" + Dict({"hardware_address", mac, "SMB", smb}) + "</array>").c_str()});
}

}  // namespace

TEST(Identity, OfTheServiceThatDecides) {
  const std::string smb = Dict({"Workgroup", "Büro-a", "NetBIOSName", "office-Mac"});
  const std::string services =
      DataType("SPNetworkDataType", Service("fw0", "<string>1.1.1.1</string>", "00:aa", "DHCP") +
                                        Service("en0", "<integer>7</integer>", "00:bb", "DHCP") +
                                        Service("en1", "<string>2.2.2.2</string>", "00:cc", "Manual") +
                                        Service("en2", "<string>3.3.3.3</string>", "", "DHCP"));
  const auto locations = [&smb](const char* first, const char* second) {
    return DataType("SPNetworkLocationDataType",
                    Location(first, "00:cc", smb.c_str()) + Location(second, "00:aa", "<dict/>"));
  };
  const struct {
    std::string list;
    const char *given, *ip, *mac, *workgroup, *netBios;
    bool manual;
  } cases[] = {
      {services + locations("yes", "no"), "", "2.2.2.2", "00-CC", "BüRO-A", "office-Mac", true},
      {services + locations("no", "no"), "", "2.2.2.2", "", "", "", true},
      {services + locations("no", "no"), "1.1.1.1", "1.1.1.1", "00-AA", "", "", false},
      {services + locations("yes", "no"), "3.3.3.3", "3.3.3.3", "", "", "", false},
      {services + locations("yes", "no"), "9.9.9.9", "9.9.9.9", "", "", "", false},
      {services, "", "2.2.2.2", "", "", "", true},
      {"", "", "", "", "", "", false},
      {"<string>x</string>", "", "", "", "", "", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.given);
    AssetIdentity identity;
    identity.currentIp = c.given;
    LookupNetworkIdentity(ListOf(c.list), identity);
    EXPECT_EQ(identity.currentIp, c.ip);
    EXPECT_EQ(identity.macAddress, c.mac);
    EXPECT_EQ(identity.workgroup, c.workgroup);
    EXPECT_EQ(identity.netBiosName, c.netBios);
    EXPECT_EQ(identity.manual, c.manual);
  }
}

TEST(ResultName, IsInCapitalsAndFitForAFile) {
  const std::string cases[][4] = {
      {"office-Mac", "Büro", "00-1E-C2-AA-BB-CC", "OFFICE-MAC_001EC2AABBCC.inv"},
      {"", "Anna's i/Mac é", "", "ANNA'S I_MAC é_.inv"},
      {"", "", "", "_.inv"},
      {"a\n\x7F\u009F\u00A1b", "", "1\t/-2", "A___\u00A1B_1__2.inv"},
      // with room for "(12345678)", 236 bytes are left, which would cut the last character in two
      {std::string(235, 'l') + "é and more", "", "00-11", std::string(235, 'L') + "_0011.inv"},
      {"x", "", std::string(300, '0'), "_" + std::string(240, '0') + ".inv"},
  };
  for (const auto& c : cases) {
    AssetIdentity identity;
    identity.netBiosName = c[0];
    identity.computerName = c[1];
    identity.macAddress = c[2];
    EXPECT_EQ(FileName(ChooseResultPath(identity)), c[3]);
  }
}

TEST(Identity, MissingDataTypeFallsBackToTheLastElement) {
  const std::string hardware = DataType("SPHardwareDataType", Dict({"serial_number", "S1"}));
  const std::string other = DataType("SPPowerDataType", Dict({"serial_number", "S2"}));
  EXPECT_EQ(ReadSerialNumber(ListOf(hardware + other)), "S1");
  EXPECT_EQ(ReadSerialNumber(ListOf(other)), "S2");
  EXPECT_EQ(ReadSerialNumber(ListOf(other + "<string/>")), "");
  EXPECT_EQ(ReadSerialNumber(PropertyList()), "");
}

TEST(Summary, SystemVersionOfEveryLength) {
  const char* names[][4] = {
      {"", "", "", ""},
      {"Mac OS X", "Mac OS X", "", ""},
      {"Mac OS X ", "Mac OS X ", "", ""},
      {"Mac OS X 10.6", "Mac OS X v10.6 (Snow Leopard)", "", "10.6"},
      {"Mac OS X 10.8.", "Mac OS X 10.8.", "Update ", "10.8."},
      {"Mac OS X 10.6.8 (10K549)", "Mac OS X v10.6 (Snow Leopard)", "Update 8", "10.6.8 (10K549)"},
      {"OS X 10.11.6 (15G31)", "OS X 10.11.6 (15G31)", "Update 15G31)", "1.6 (15G31)"},
  };
  for (const auto& c : names) {
    AssetSummary summary;
    CollectAssetSummary(ListOf(DataType("SPSoftwareDataType", Dict({"os_version", c[0]}))), summary);
    EXPECT_EQ(summary.osName, c[1]);
    EXPECT_EQ(summary.osUpdate, c[2]) << c[0];
    EXPECT_EQ(summary.osVersion, c[3]) << c[0];
  }
}

TEST(Summary, NumbersAndFallbacks) {
  const std::string volumes =
      "<array>" + Dict({"size", "10 GB", "free_space", "2,5 GB"}) + Dict({"size", "1 MB"}) + "</array>";
  const std::string disks = Dict({"_items", ("<array>" + Dict({"size", "1,9 GB", "volumes", volumes.c_str()}) +
                                             Dict({"size", "1,9 GB"}) + Dict({"_name", "optical"}) + "</array>")
                                                .c_str()});
  const std::string displays =
      "<array>" + Dict({"_name", "a", "_spdisplays_edid", "0x00", "spdisplays_resolution", "r1"}) +
      Dict({"spdisplays_main", "spdisplays_yes", "spdisplays_resolution", "r2", "_spdisplays_edid",
            ("0x" + std::string(42, '0') + "341D" + std::string(9, 'z')).c_str()}) +
      "</array>";
  AssetSummary summary;
  Tools tools;
  tools.Add("ioreg", "exit 1");
  CollectAssetSummary(
      ListOf(DataType("SPHardwareDataType",
                      Dict({"packages", "<integer>2</integer>", "number_processors", "<integer>8</integer>", "cpu_type",
                            "Intel Xeon", "current_processor_speed", "2.66 GHz", "physical_memory", "1,5 GB",
                            "platform_UUID", "U", "machine_model", "iMac9,1"})) +
             DataType("SPSoftwareDataType", Dict({"user_name", "Ann (Lee) (x)"})) +
             DataType("SPDisplaysDataType", Dict({"spdisplays_vram", "256 MB", "spdisplays_ndrvs", displays.c_str()})) +
             DataType("SPSerialATADataType", disks)),
      summary);
  const std::string* const fields[] = {&summary.packages,        &summary.logicalProcessors, &summary.processorSpeed,
                                       &summary.processorMaker,  &summary.physicalMemory,    &summary.platformUuid,
                                       &summary.userName,        &summary.videoMemory,       &summary.displayResolution,
                                       &summary.displayDiagonal, &summary.diskCapacity,      &summary.volumeCapacity,
                                       &summary.volumeFree};
  const char* expected[] = {"2",  "16", "2000", "GenuineIntel", "1536", "U", "Lee", "256",
                            "r2", "24", "4",    "10.0",         "2.5"};
  for (std::size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(*fields[i], expected[i]) << i;

  AssetSummary unmarked;
  CollectAssetSummary(ListOf(DataType("SPDisplaysDataType",
                                      Dict({"spdisplays_ndrvs", ("<array>" + Dict({"spdisplays_resolution", "r1"}) +
                                                                 Dict({"spdisplays_resolution", "r2"}) + "</array>")
                                                                    .c_str()}))),
                      unmarked);
  EXPECT_EQ(unmarked.displayResolution, "r1");

  AssetSummary empty;
  CollectAssetSummary(PropertyList(), empty);
  EXPECT_EQ(empty.packages + empty.displayDiagonal + empty.systemMaker, "");
  EXPECT_EQ(empty.diskCapacity + empty.volumeCapacity + empty.volumeFree, "00.00.0");
}

TEST(Summary, MachineModelTellsAVirtualMachine) {
  const char* cases[][2] = {{"VMware7,1", "nvtVMware"},
                            {"x VirtualBox", "nvtVirtualBox"},
                            {"Parallels16,1", "nvtParallels"},
                            {"iMac9,1", "nvtPhysical"}};
  for (const auto& c : cases) {
    AssetSummary summary;
    summary.machineModel = c[0];
    const TagTree tree = BuildAssetInfo(true, CreateTree(true, "Snapshot"), "", summary, AssetIdentity());
    EXPECT_EQ(TextOf(FindAttribute(RootOf(tree), "virtual-type")), c[1]);
  }
}

TEST(Processes, SkipTheKernelAndWhoeverIsGone) {
  if (QUILL_PLATFORM_MACOS) GTEST_SKIP() << "the table is the kernel's";
  Tools recording;
  setenv("QUILL_RECORDING", recording.Folder().c_str(), 1);
  std::ofstream(recording.Folder() + "/processes.txt")
      << "9 1 Google Chrome He\n0 0 kernel_task\n\n8 1 gone\n7 1 wordless\n5 -1 \tled\n";
  recording.Add("ps",
                "case \"$*\" in '-p9 -o user= -o command=') echo 'ann   /App s/x -y ' ;; -p7*) echo x ;; -p5*) echo ' "
                "b' ;; esac");
  TagTree tree = CreateTree(true, "Macintosh");
  CollectProcesses(tree);
  unsetenv("QUILL_RECORDING");
  EXPECT_EQ(TextOfTree(tree),
            "+Macintosh=\n+Processes=\n*process:1=Google Chrome He\npid=9\nppid=1\nuser=ann\ncmd-line=/App s/x -y\n"
            "*process:5=\tled\npid=5\nppid=-1\nuser=\ncmd-line=b\n-\n-\n");
}
