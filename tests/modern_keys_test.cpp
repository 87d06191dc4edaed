#include "main/collect/modern_keys.h"

#include <gtest/gtest.h>

#include "main/collect/asset_summary.h"
#include "main/collect/host_identity.h"
#include "main/collect/plist_reader.h"
#include "sections/sections.h"
#include "tests/support.h"

namespace {

PropertyList ModernList(const std::string& dataTypes) {
  PropertyList list = ListOf(dataTypes);
  AddOlderKeys(list);
  return list;
}

TagTree ModernTree(const std::string& dataTypes) {
  TagTree tree = CreateTree(true, "Macintosh");
  EnterProfilerData(ModernList(dataTypes), tree);
  return tree;
}

std::string Software(const char* version) { return DataType("SPSoftwareDataType", Dict({"os_version", version})); }

AssetSummary SummaryOf(const std::string& dataTypes) {
  AssetSummary summary;
  CollectAssetSummary(ModernList(dataTypes), summary);
  return summary;
}

// A document with every newer form.
const std::string kEveryForm =
    DataType("SPHardwareDataType", Item("chip_type=Apple M1;number_processors=proc 8:4:4")) +
    DataType("SPMemoryDataType", Item("SPMemoryDataType=8 GB")) +
    DataType("SPApplicationsDataType", Item("arch_kind=arch_arm;obtained_from=apple")) +
    DataType("SPPrintersDataType", Item("default=no;Fax Support=no")) +
    DataType("SPDisplaysDataType", Item("_spdisplays_vram=1 GB", List("spdisplays_ndrvs", Item("_name=LCD")))) +
    DataType("SPNVMeDataType", Item("", Items(Item("size_in_bytes=#5000000000")))) +
    DataType("SPUSBDataType", Item("", List("Media", Item("bsd_name=disk4")))) +
    DataType("SPStorageDataType", Item("_name=HD;mount_point=/")) +
    DataType("SPNetworkDataType", Item("", Below("IPv4", Item("", List("SubnetMasks", "<string>m</string>"))) +
                                               Below("Ethernet", Item("MAC Address=00:aa"))));

}  // namespace

TEST(ModernKeys, OlderSystemsStayAsTheyAre) {
  for (const char* version : {"Mac OS X 10.5.8 (9L31a)", "OS X 10.11.6 (15G31)"})
    EXPECT_EQ(TextOfTree(ModernTree(Software(version) + kEveryForm)),
              TextOfTree(RawTree(Software(version) + kEveryForm)));
  EXPECT_NE(TextOfTree(ModernTree(kEveryForm)), TextOfTree(RawTree(kEveryForm)));
}

TEST(ModernKeys, NothingIsWrittenOverWhatTheUsualKeysSay) {
  const std::string mask = "<string>255.0.0.0</string>";
  const std::string newer = Below("IPv4", Item("", List("SubnetMasks", "<string>m</string>")));
  const std::string given =
      DataType("SPHardwareDataType", Item("chip_type=Apple M1;cpu_type=Intel;number_processors=#2;packages=#2")) +
      DataType("SPMemoryDataType", Item("SPMemoryDataType=8 GB;dimm_size=4 GB;dimm_status=empty")) +
      DataType("SPApplicationsDataType", Item("arch_kind=arch_arm;obtained_from=apple;app_store=yes;"
                                              "runtime_environment=x;has64BitIntelCode=no")) +
      DataType("SPPrintersDataType", Item("fax=yes;Fax Support=no")) +
      DataType("SPDisplaysDataType",
               Item("spdisplays_vram=2 GB;_spdisplays_vram=1 GB",
                    List("spdisplays_ndrvs", Item("_name=LCD;_spdisplays_edid=0x;spdisplays_resolution=r;"
                                                  "_spdisplays_resolution=s")))) +
      DataType("SPSerialATADataType",
               Item("", Items(Item("smart_status=Verified",
                                   List("volumes", Item("_name=HD;bsd_name=d1;size=1 GB;free_space=1 GB;mount_point=/x;"
                                                        "file_system=HFS+")))))) +
      DataType("SPUSBDataType", Item("removable_media=yes;bsd_name=disk2", List("Media", Item("bsd_name=disk3")))) +
      DataType("SPStorageDataType", Item("_name=N;bsd_name=d1;size_in_bytes=#1;free_space_in_bytes=#1;mount_point=/") +
                                        Item("_name=System;mount_point=/System/Volumes/Data") +
                                        Item("_name=Unmounted") +
                                        Item("mount_point=/c", Below("com.apple.corestorage.pv", Item("_name=HD")))) +
      DataType("SPNetworkDataType", Item("interface=en0", newer + List("SubnetMasks", mask) +
                                                              Below("Ethernet", Item("MAC Address=00:aa")))) +
      DataType("SPNetworkLocationDataType",
               Item("", List("spnetworklocation_services", Item("hardware_address=00:aa"))));
  EXPECT_EQ(TextOfTree(ModernTree(given)), TextOfTree(RawTree(given)));
}

TEST(ModernKeys, SystemVersionsOfEveryShape) {
  const struct {
    const char *version, *shown;
  } cases[] = {
      {"macOS 10.12.6 (16G29)", "macOS 10.12 (Sierra); version=10.12.6 (16G29); update=Update 6"},
      {"macOS 10.13 (17A365)", "macOS 10.13 (High Sierra); version=10.13 (17A365)"},
      {"macOS 11.4 (20F71)", "macOS 11 (Big Sur); version=11.4 (20F71); update=Update 4"},
      {"macOS 12.0.1 (21A559)", "macOS 12 (Monterey); version=12.0.1 (21A559)"},
      {"macOS 15.5 (24F74)", "macOS 15 (Sequoia); version=15.5 (24F74); update=Update 5"},
      {"macOS 27.1.2", "macOS 27; version=27.1.2; update=Update 1"},
      {"macOS 10", "macOS 10; version=10"},
      {"macOS 11..", "macOS 11 (Big Sur); version=11.."},
      {"macOS 99999.1", "macOS 99999.1; version=S 99999.1; update=Update 99.1"},
      {"macOS x", "Mac OS X v10.0 (Cheetah); version=S x"},
  };
  for (const auto& c : cases) {
    const std::string text = ShownSection(BuildOsSection, ModernTree(Software(c.version)), "OS/os:1");
    EXPECT_NE(text.find(std::string("name=") + c.shown + "; manuf"), std::string::npos) << c.shown << text;
  }
}

TEST(ModernKeys, ProcessorsSayWhatIsKnownOfThem) {
  const char* cases[][2] = {{"number_processors=proc 8:4:4", "; core-count=8"},
                            {"number_processors=proc 16:12:4:0", "; core-count=16"},
                            {"number_processors=#4", "; core-count=4"},
                            {"number_processors=proc 8:4", "; core-count=8"},
                            {"number_processors=proc :::", ""},
                            {"number_processors=proc 99999999999999999999:1", ""},
                            {"number_processors=proc 0:0:0", ""},
                            {"number_processors=8", ""},
                            {"current_processor_speed=3.2 GHz", "; current-clock-speed=3200"}};
  for (const auto& c : cases) {
    const std::string hardware = DataType("SPHardwareDataType", Item(std::string("chip_type=Apple M1;") + c[0]));
    EXPECT_EQ(ShownSection(BuildProcessorsSection, ModernTree(hardware), "Processors/Processor:1"),
              std::string("\n*Processor:1=Apple M1") + c[1] + "\n");
    EXPECT_EQ(SummaryOf(hardware).processorMaker, "Apple");
  }
  EXPECT_EQ(SummaryOf(DataType("SPHardwareDataType", Item("chip_type=Virtual"))).processorMaker, "");
}

TEST(ModernKeys, MonitorsWithoutAnEdid) {
  const std::string prefix = "_spdisplays_display-";
  const struct {
    std::string fields;
    const char* shown;
  } cases[] = {
      {"_name=BenQ;" + prefix + "vendor-id=9d1;" + prefix + "product-id=30;" + prefix + "serial-number=0;" + prefix +
           "serial-number2=1545;_spdisplays_pixels=3840 x 2160",
       "*Monitor:1=?BNQ  30|BenQ; manuf=?BNQ; id=BNQ  30; name=?BNQ  30|BenQ; model=BenQ; max-resolution=3840 x 2160; "
       "serial-digital=1159004160"},
      {"_name=LCD", "*Monitor:1=?|LCD; name=?|LCD; model=LCD"},
      {prefix + "vendor-id=610", "*Monitor:1=?APP|; manuf=?APP; id=APP; name=?APP|"},
      {prefix + "vendor-id=10610;" + prefix + "week=54;" + prefix + "year=0;_spdisplays_pixels=4K", "*Monitor:1="},
      {prefix + "vendor-id=x y;" + prefix + "product-id=#5;" + prefix + "serial-number=123456789", "*Monitor:1="},
      {prefix + "week=14", R"(+Monitor:1=; manufacture-date= ~complex=
*manufacture-date= ~field-source=; manufacture-quarter=2; manufacture-week=14
-)"},
  };
  for (const auto& c : cases) {
    const std::string adapter = Item("", List("spdisplays_ndrvs", Item(c.fields)));
    EXPECT_EQ(ShownSection(BuildVideoSection, ModernTree(DataType("SPDisplaysDataType", adapter)),
                           "Video/Monitors/Monitor:1"),
              std::string("\n") + c.shown + "\n");
  }
}

TEST(ModernKeys, MainDisplayOfTheSecondAdapter) {
  const std::string main = Item("spdisplays_main=spdisplays_yes;_spdisplays_resolution=1440 x 900 @ 60.00Hz");
  const std::string second = List("spdisplays_ndrvs", Item("_spdisplays_resolution=other") + main);
  const std::string first = Item("_spdisplays_vram=1536 MB");
  const auto summary = [&](const std::string& fields) {
    return SummaryOf(DataType("SPDisplaysDataType", first + Item(fields, second)));
  };
  EXPECT_EQ(summary("spdisplays_vram=4 GB").displayResolution, "1440 x 900 @ 60.00Hz");
  EXPECT_EQ(summary("spdisplays_vram=4 GB").videoMemory, "4096");
  EXPECT_EQ(summary("").videoMemory, "");
  EXPECT_EQ(SummaryOf(DataType("SPDisplaysDataType", first)).videoMemory, "1536");
}

TEST(ModernKeys, CapacityOfDisksThatStayInTheMac) {
  const std::string disks = Item("", Items(Item("size_in_bytes=#1999999999") + Item("size_in_bytes=#5000000000") +
                                           Item("size_in_bytes=#7000000000;removable_media=yes") +
                                           Item("size_in_bytes=#-9000000000") + Item("size_in_bytes=big")));
  const std::string serial = DataType("SPSerialATADataType", Item("", Items(Item("size=100 GB"))));
  EXPECT_EQ(SummaryOf(DataType("SPNVMeDataType", disks)).diskCapacity, "6");
  EXPECT_EQ(SummaryOf(DataType("SPNVMeDataType", disks) + serial).diskCapacity, "107");
}

TEST(ModernKeys, MountedVolumesThatNoDiskLists) {
  const std::string listed = Item("", Items(Item("", List("volumes", Item("_name=A;bsd_name=d1")))));
  const std::string volumes = Item("_name=A;bsd_name=d1;mount_point=/a;free_space_in_bytes=#1024;file_system=HFS+") +
                              Item("_name=HD;bsd_name=d2;mount_point=/;file_system=APFS") +
                              Item("_name=B;mount_point=/System/VolumesB;size_in_bytes=text");
  const std::string raw = DataType("SPNVMeDataType", listed) + DataType("SPStorageDataType", volumes + "<string/>");
  EXPECT_EQ(ShownSection(BuildPhysicalDisksSection, ModernTree(raw), "Storage/Logical-disks"), R"(
+Logical-disks=
*partition:1=A ~file-sys=HFS+; free=0.0 ~base-value=1024 ~units=MB; mount-point=/a
*partition:2=HD ~file-sys=APFS; mount-point=/
*partition:3=B ~file-sys=; size=0.0 ~base-value=0 ~units=MB; mount-point=/System/VolumesB
-
)");
}

TEST(ModernKeys, UsbDisksUnderMedia) {
  const std::string reader =
      List("Media", Item("bsd_name=disk4;size=1 TB", List("volumes", Item("_name=V;free_space=1 KB"))) +
                        Item("size_in_bytes=#1") + Item("Logical Unit=#2") + "<string>x</string>");
  const std::string usb = Item("_name=Reader;serial_num=1;removable_media=no", reader + Items(Item("_name=Below"))) +
                          Item("_name=Odd", List("Media", "<string>disk5</string>"));
  const TagTree tree = ModernTree(DataType("SPUSBDataType", usb));
  EXPECT_EQ(ShownSection(BuildUsbSection, tree, "Storage/Physical-disks"), R"(
+Physical-disks=
*Removable:1=Reader; media-type=2; serial=1; size=1000; interface=USB; partitions=1
*Removable:2=Reader; media-type=2; serial=1; interface=USB; partitions=0
-
)");
  EXPECT_EQ(ShownSection(BuildUsbSection, tree, "Peripherals/USB"), R"(
+USB=
*Device:1=Below
*Device:2=Odd
-
)");
}

TEST(ModernKeys, HardwareAddressOfTheServiceItself) {
  const std::string service = Item(
      "interface=en0", List("ip_address", "<string>10.0.0.2</string>") + Below("Ethernet", Item("MAC Address=00:aa")));
  const std::string named = Item("bsd_device_name=en0", Below("SMB", Item("Workgroup=w")));
  const auto location = [](const std::string& items) { return DataType("SPNetworkLocationDataType", items); };
  const struct {
    std::string locations;
    const char* found;
  } cases[] = {
      {"", "00-AA "},
      {location(""), "00-AA "},
      {location(Item("")), "00-AA "},
      {location(Item("", List("spnetworklocation_services", Item("bsd_device_name=en1") + named))), "00-AA W"},
      {location(Item("spnetworklocation_services=text") + "<string/>"), " "},
      {"<dict><key>_dataType</key><string>SPNetworkLocationDataType</string><key>_items</key><true/></dict>", " "},
  };
  for (const auto& c : cases) {
    AssetIdentity identity;
    LookupNetworkIdentity(ModernList(DataType("SPNetworkDataType", service) + c.locations), identity);
    EXPECT_EQ(identity.macAddress + " " + identity.workgroup, c.found) << c.locations;
  }
}
