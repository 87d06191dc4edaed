// The reader against the writer, and against files that no writer makes.
#include <gtest/gtest.h>

#include "reader/commands.h"
#include "reader/diff.h"
#include "reader/identity.h"
#include "reader/show.h"
#include "reader/text.h"
#include "reader/zxml_reader.h"
#include "zxml/INVfile.h"
#include "zxml/zXML.h"

namespace {

struct Saved {
  bool split, compress, littleEndian, compressIndex;
};

constexpr char kTimestamp[] = "20260102030405.000000+60";

TagTree SampleTree(bool littleEndian) {
  TagTree tree = CreateTree(littleEndian, "Snapshot");
  SetAttributeByPath(tree, "/timestamp", MakeTextValue(kTimestamp));
  SetAttributeByPath(tree, "/A/x", MakeDoubleValue(3), "units", "MB");
  SetAttributeByPath(tree, "/A/-", MakeTextValue("a=b\rc \xFF"));
  SetAttributeByPath(tree, "/A/-x", Value());
  SetAttributeByPath(tree, "/B]/C/D/y", MakeBoolValue(true));
  SetTagValue(*FindChild(RootOf(tree), "A"), MakeIntValue(-7));
  AddTagProperty(*FindChild(RootOf(tree), "A"), "kind", "");
  return tree;
}

std::string TextOfContainer(const Tag& container) {
  std::string text(TextSize(container, false), '\0');
  WriteText(container, text.data(), 0, false, false);
  return text;
}

std::string SampleFile(const Saved& saved) {
  InvFile inv = InitInvFile(saved.littleEndian);
  AddTreeSection(inv, SampleTree(saved.littleEndian), InvSectionType::Snapshot, saved.split, saved.compress);
  AddTreeSection(inv, CreateTree(saved.littleEndian, "AssetInfo"), InvSectionType::AssetInfo, saved.split,
                 saved.compress);
  AddRawSection(inv, InvCompress("<plist/>\n"));
  return BuildInvBuffer(inv, saved.compressIndex);
}

std::string FaultLines(const Faults& faults) {
  std::string lines;
  for (const Fault& fault : faults) lines += FaultText(fault) + "\n";
  return lines;
}

std::string CheckFile(const std::string& bytes, std::size_t limit = kDefaultLimit) {
  return FaultLines(CheckDocument(ReadDocument("f", bytes, limit)));
}

std::string TextsOf(const Document& document) {
  std::string texts = document.container.indexText;
  for (const Section& section : document.sections) texts += section.body.text;
  return texts;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

// Those lines as the body of a section.
std::string SavedText(const std::string& lines) { return "\xEF\xBB\xBF?zxml\n" + lines + std::string(102, '\0'); }

// A document that holds that text as its snapshot.
Document DocumentOf(const std::string& lines) {
  InvFile inv = InitInvFile(false);
  AddSavedSection(inv, SavedText(lines), InvSectionType::Snapshot);
  return ReadDocument("f", BuildInvBuffer(inv, true));
}

}  // namespace

TEST(Reader, ReadsEverySavedFormBack) {
  const TagTree tree = SampleTree(false);
  const std::string text = TextOfContainer(tree.container);
  for (int bits = 0; bits < 16; ++bits) {
    SCOPED_TRACE(bits);
    const Saved saved{(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0, (bits & 8) != 0};
    const Document document = ReadDocument("f", SampleFile(saved));
    EXPECT_EQ(FaultLines(CheckDocument(document)), "");
    ASSERT_EQ(document.sections.size(), 3u);
    EXPECT_EQ(document.container.littleEndian, saved.littleEndian);
    EXPECT_EQ(document.sections[0].body.littleEndian, saved.split && saved.littleEndian);
    EXPECT_EQ(document.sections[0].record.timestamp, kTimestamp);
    EXPECT_EQ(document.sections[0].body.text, text.substr(0, text.size() - (saved.split ? 2 : 0)));
    EXPECT_EQ(TextOfContainer(document.sections[0].tree.container), text);
    EXPECT_EQ(document.sections[2].body.text, "<plist/>\n");
    EXPECT_EQ(DefaultSection(document), 2u);
  }
  for (const bool compressIndex : {false, true}) {
    InvFile empty = InitInvFile(true);
    EXPECT_EQ(CheckFile(BuildInvBuffer(empty, compressIndex)), "");
  }
}

// Bytes of plain texts may change into other sound ones; the checksums of a deflated file let no change of its texts
// pass.
TEST(Reader, ReportsOrAcceptsEveryDamage) {
  for (const Saved& saved : {Saved{false, true, false, true}, Saved{true, true, true, true},
                             Saved{false, false, true, false}, Saved{true, false, false, false}}) {
    const std::string file = SampleFile(saved);
    const std::string texts = TextsOf(ReadDocument("f", file));
    for (std::size_t i = 0; i < file.size(); ++i) {
      EXPECT_NE(CheckFile(file.substr(0, i)), "") << "cut at " << i;
      for (int change = 0; change < 10; ++change) {
        std::string damaged = file;
        damaged[i] = change == 8 ? '\0' : change == 9 ? '\xFF' : static_cast<char>(file[i] ^ (1 << change));
        const Document document = ReadDocument("f", damaged);
        if (CheckDocument(document).empty() && saved.compress) {
          EXPECT_EQ(TextsOf(document), texts) << "byte " << i << ", change " << change;
        }
      }
    }
  }
}

TEST(Reader, NamesTheFaultsOfAContainer) {
  const std::string plain = SampleFile({false, false, false, false});
  const std::size_t trailer = plain.size() - 14;
  const auto with = [&plain](std::size_t at, char byte) { return std::string(plain).replace(at, 1, 1, byte); };
  const std::string split = SampleFile({true, false, false, false});
  InvFile empty = InitInvFile(false);
  const std::string gap = "x" + BuildInvBuffer(empty, false).replace(35, 1, "\1");  // the trailer's offset says 1
  AddRawSection(empty, InvCompress("x") + "y");
  const std::pair<std::string, const char*> cases[] = {
      {"", "byte 0: the file has 0 bytes, fewer than a trailer takes"},
      {gap, "byte 0: what stands before the index belongs to no section: 1 byte"},
      {BuildInvBuffer(empty, true), "byte 9: the deflated data ends here, but there is more: 1 byte\n"},
      {Replaced(split, "offset=0\n", "offset=1\n"), "in neither byte order does the length here lead to an index"},
      {plain + "\n", "it is no INV file, or it was cut"},
      {with(trailer, '\1'), ": in neither byte order"},
      {with(trailer + 8, '\4'), "the format version is 4 instead of 3"},
      {with(trailer + 9, '\1'), ": index: the deflated data is damaged"},
      {Replaced(plain, "[H]\n", "[h]\n"), "byte 0 of the index: this line of the index cannot be understood"},
      {Replaced(plain, "count=3", "count=4"), "counts 4 sections, but there are 3 records"},
      {Replaced(plain, "snapshotcount=1", "snapshotcount=2"), "the header counts more snapshots than there are"},
      {Replaced(plain, "offset=0\n", "offset=9\n"),
       "byte 0: what stands before section 0 belongs to no section: 9 bytes"},
      {Replaced(plain, "offset=0\n", "offset=9\n"), "section 1 begins here, inside the section before it"},
      {Replaced(plain, "length=", "length=9"), "which reaches beyond the bodies"},
      {Replaced(plain, "type=snapshot", "type=assetinfo"), "of the index: a line of the index is missing, doubled"},
      {Replaced(plain, "type=assetinfo", "type=assetinf0"), "this line of the index cannot be understood"},
      {Replaced(plain, "+Snapshot", "+Snapshop"), "is of type snapshot, but its root has another name"},
      {Replaced(plain, "timestamp=2026", "timestamp=2025"), "another timestamp than its record"},
      {Replaced(plain, std::string(102, '\0'), std::string(101, '\0') + "\1"),
       ": 0 zero bytes follow the text instead of 102"},
  };
  for (const auto& [file, words] : cases)
    EXPECT_NE(CheckFile(file).find(words), std::string::npos) << words << "\n" << CheckFile(file);
}

TEST(Reader, StopsADeflateBombAtTheLimit) {
  InvFile inv = InitInvFile(false);
  AddRawSection(inv, InvCompress(std::string(5000000, 'x')));
  for (const std::size_t limit : {4999999u, 5000000u}) {
    const Document document = ReadDocument("f", BuildInvBuffer(inv, true), limit);
    EXPECT_EQ(document.sections[0].body.text.size(), limit);
    EXPECT_EQ(document.faults.empty(), limit == 5000000);
  }
}

TEST(Reader, SharesItsLimitsAmongTheSections) {
  constexpr std::size_t kLines = 1000000;
  constexpr std::size_t kPaths = std::size_t{64} << 20;
  const auto properties = [](std::size_t count) {
    std::string lines = "*A=\n";
    while (--count > 0) lines += "~=\n";
    return lines;
  };
  const std::string name(1 << 20, 'n');
  const auto paths = [&name](std::size_t children) {
    std::string lines = "+" + name + "=\n";
    while (children-- > 0) lines += "*b=\n";
    return lines + "-\n";
  };
  const std::size_t children = kPaths / (name.size() + 2) - 1;
  const struct {
    std::vector<std::string> trees;
    std::vector<std::string> raw;
    const char* fault;
    std::size_t limit = kDefaultLimit;
  } cases[] = {{{}, {std::string(3000, 'x'), std::string(2000, 'y')}, "", 5000},
               {{}, {std::string(3000, 'x'), std::string(2000, 'y')}, "more than the 1999 bytes allowed", 4999},
               {{properties(kLines - 10), properties(10)}, {}, ""},
               {{properties(kLines - 10), properties(11)}, {}, "section 1: the file has too many lines"},
               {{paths(10), paths(children - 11)}, {}, ""},
               {{paths(10), paths(children - 10)}, {}, "section 1: the names of the tags are too long"}};
  for (const auto& [trees, raw, words, limit] : cases) {
    InvFile inv = InitInvFile(true);
    for (const std::string& lines : trees) AddSavedSection(inv, SavedText(lines), InvSectionType::AssetInfo);
    for (const std::string& text : raw) AddRawSection(inv, InvCompress(text));
    const std::string faults = FaultLines(ReadDocument("f", BuildInvBuffer(inv, true), limit).faults);
    EXPECT_EQ(faults.empty(), *words == '\0') << faults;
    EXPECT_NE(faults.find(words), std::string::npos) << faults;
  }
}

TEST(Reader, LimitsTheIndex) {
  InvFile empty = InitInvFile(true);
  const std::string index = WriteIndex(empty, false) + std::string(8 << 20, '\n');
  for (const bool deflated : {false, true}) {
    const std::string text = deflated ? InvCompress(index) : index;
    std::string file = text + BuildInvBuffer(empty, deflated);
    file.erase(text.size(),
               file.size() - text.size() - 14);  // the index of the empty file; what remains is its trailer
    const char* words = deflated ? "index: the deflated data gives more than the 8388608 bytes allowed"
                                 : "the index takes more than the 8388608 bytes allowed";
    EXPECT_NE(CheckFile(file).find(words), std::string::npos) << CheckFile(file);
  }
}

// What stands behind "byte " is compared as far as it is given; no words: the text is sound.
TEST(Reader, NamesTheFaultsOfAText) {
  std::string nested;
  for (int i = 0; i < 600; ++i) nested += "+a=\n";
  const struct {
    std::string lines, fault;
    bool rootOpen = false;
  } cases[] = {{"*A=\n", ""},
               {"*A=\n", "", true},
               {"+A=\n", "", true},
               {"+A=\n-\n", "15 of t: the root is closed, although this body's form leaves it open\n", true},
               {"+A=\n+B=\nx=1\n-\n", "9 of t: the tag that begins here is not closed\n"},
               {"", "9 of t: the text holds no tag\n"},
               {"*A=\n-\n", "13 of t: this line closes a tag, but none is open\n"},
               {"*A=\n*B=\n", "13 of t: a second root begins here\n"},
               {"+A=\n*B=\n-\nx=1\n", "19 of t: this line stands neither behind its tag nor does it begin or close"},
               {"~p=q\n*A=\n", "9 of t: this property belongs to no tag and no attribute\n"},
               {"*A=\nx\n", "13 of t: this line has no \"=\"\n"},
               {"*A=\nx=1", "16 of t: the text ends inside a line\n"},
               {std::string("*A=\0\n", 5), "9 of t: this line holds a zero byte\n"},
               {nested, "521 of t: more than 128 tags inside one another; reading ends here\n"}};
  for (const auto& [lines, fault, rootOpen] : cases) {
    Faults faults;
    TextBudget budget;
    ParseZxml("\xEF\xBB\xBF?zxml\n" + lines, rootOpen, "t", budget, faults);
    const std::string expected = fault.empty() ? "" : "byte " + fault;
    EXPECT_EQ(FaultLines(faults).substr(0, fault.empty() ? std::string::npos : expected.size()), expected) << lines;
  }
}

TEST(Show, FindsWhatAPathNames) {
  const Document document = DocumentOf("+Snapshot=\na=1\n+b/c=\nm=\n~complex=\n*m=M\nx=2\n-\n*b=B\nc=3\n-\n");
  for (const auto& [path, shown] :
       std::vector<std::pair<const char*, const char*>>{{"/Snapshot/a/", "1\n"},
                                                        {"Snapshot/b/c/m", "m  M\n  x  2\n"},
                                                        {"Snapshot/b/c", "b/c\n  m  M\n    x  2\n3\n"},
                                                        {"snapshot/a", ""},
                                                        {"Snapshot//a", ""}})
    EXPECT_EQ(ShowText(document, {false, false, path}), shown) << path;
}

TEST(Show, ResolvesUnits) {
  const std::pair<Attribute, const char*> cases[] = {
      {{"size", MakeTextValue("465.63"), {{"base-value", "499963170816"}}}, "465.63 GB"},
      {{"size", MakeTextValue("500.0"), {{"base-value", "524288000"}, {"units", "MB"}}}, "500.0 MB"},
      {{"capacity", MakeTextValue("8192"), {{"base-value", "8589934592"}}}, "8192 MB"},
      {{"size", MakeTextValue("17"), {{"base-value", "99"}}}, "17  (base-value 99)"},
      {{"free%", MakeTextValue("40"), {}}, "40 %"},
      {{"used%", MakeTextValue("6"), {{"pos", "1.50"}, {"max", "25.00"}, {"val-units", "GB"}}},
       "6 % (1.50 of 25.00 GB)"},
      {{"disk:1", MakeTextValue("465.63"), {{"free", "7"}, {"sys", "1"}}}, "465.63  (free 7, sys 1)"},
      {{"x", MakeTextValue("\x1B[2J\r\x7F\xC2\x9B\xE2\x80\xAE"), {}}, "\\x1B[2J\\r\\u007F\\u009B\\u202E"}};
  for (const auto& [attribute, shown] : cases) EXPECT_EQ(ResolvedValue(attribute), shown);
  const std::pair<std::pair<const char*, Attribute>, const char*> inTags[] = {
      {{"HDD:1", {"size", MakeTextValue("250"), {{"base-value", "250063733391"}}}}, "250 GB (decimal)"},
      {{"Memory-slot:2", {"capacity", MakeTextValue("2048"), {}}}, "2048 MB"},
      {{"Processor:1", {"l2-cache-size", MakeTextValue("1024"), {}}}, "1024 KB"},
      {{"Device:9", {"device-speed", MakeTextValue("5"), {{"units", "Gbit-s"}}}}, "5 Gbit-s"},
      {{"Profile:1", {"disk-sleep-timer", MakeTextValue("0"), {}}}, "0 (never)"},
      {{"Firewall", {"status", MakeTextValue("2"), {}}}, "2 (lets nothing in)"},
      {{"Soft:x", {"64bit-app", MakeTextValue("1"), {{"type", "unknown"}}}}, "1  (type unknown)"},
      {{"Soft:x", {"app-store", MakeTextValue("0"), {}}}, "0 (no)"},
      {{"Monitor:1", {"aspect-ratio", MakeTextValue(""), {{":other", ""}}}}, "  (:other)"}};
  for (const auto& [place, shown] : inTags) EXPECT_EQ(ResolvedValue(place.second, place.first), shown);
}

TEST(Text, ReplacesWhatIsNoUtf8) {
  const std::string sound = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", none = "\xEF\xBF\xBD";
  EXPECT_EQ(CleanUtf8(sound), sound);
  for (const std::string bad : {"\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82", "\xE0\x9F\x80", "\xFF"}) {
    std::string expected;
    for (std::size_t i = 0; i < bad.size(); ++i) expected += none;
    EXPECT_EQ(CleanUtf8(bad + "("), expected + "(");
  }
}

TEST(Diff, PairsTagsByWhatTheyAre) {
  const std::string numbered = "+Snapshot=\nuptime=1\n*P=\n*D:1=A\nsize=1\n*D:2=B\nsize=2\nfree=5\n*Processes=\n-\n";
  const std::string disks =
      "+S=\n*HDD:1=\nmodel=M\nserial=A\n*HDD:2=\nmodel=M\nserial=B\n*HDD:3=\nmodel=M\nserial=C\n"
      "*partition:1=V\nmount-point=/\n*partition:2=W\nmount-point=\n*control=\ndisk:1=1\n~mount-point=/\ndisk:2=2\n"
      "~mount-point=/w\n-\n";
  const std::string software =
      "+S=\n*Soft:Mail 4=Mail\nversion=4\ninst-date=1\ninfo=i\nlocation=/A\n*Soft:Mail 3=Mail\nversion=3\n"
      "location=/B\n*app:1=a\nstatus=1\n*app:2=b\nstatus=1\n-\n";
  const struct {
    const std::string& before;
    const char *from, *to, *lines;
    bool all = false;
  } cases[] = {
      {numbered, "free=5\n", "free=6\n~units=MB\n", ""},
      {numbered, "uptime=1", "uptime=2", ""},
      {numbered, "*Processes=\n", "", ""},
      {numbered, "*Processes=\n", "", "- Snapshot/Processes\n", true},
      {numbered, "uptime=1", "uptime=2", "! Snapshot/uptime: 1 -> 2\n", true},
      {numbered, "*D:1=A\nsize=1\n*D:2", "*D:1", "- Snapshot/D:1: A\n"},
      {numbered, "*D:1=A\nsize=1\n*D:2=B", "*D:1=B", "- Snapshot/D:1: A\n"},
      {numbered, "=A\nsize=1", "=C\nsize=3", "! Snapshot/D:1: A -> C\n! Snapshot/D:1/size: 1 -> 3\n"},
      {numbered, "e=2", "e=2\n~u=\nnew=n", "! Snapshot/D:2/size: 2 -> 2  (u)\n+ Snapshot/D:2/new: n\n"},
      {disks, "*HDD:1=\nmodel=M\nserial=A\n*HDD:2=\nmodel=M\nserial=B\n*HDD:3", "*HDD:1=\nmodel=M\nserial=B\n*HDD:2",
       "- S/HDD:1: M, A\n"},
      {disks, "serial=A", "serial=D", "- S/HDD:1: M, A\n+ S/HDD:1: M, D\n"},
      {disks, "serial=A\n", "", "- S/HDD:1/serial: A\n"},
      {disks, "1=V\nmount-point=/\n*partition:2=W\nmount-point=\n",
       "1=W\nmount-point=\n*partition:2=V\nmount-point=/\n", ""},
      {disks, "=V\n", "=X\n", "! S/partition:1: V -> X\n"},
      {disks, "*partition:1=V\nmount-point=/\n", "", "- S/partition:1: V\n"},
      {disks, "disk:1=1\n~mount-point=/\ndisk:2", "disk:1", "- S/control/disk:1: 1  (mount-point /)\n"},
      {software, "Mail 4=Mail\nversion=4\ninst-date=1\ninfo=i", "Mail 5=Mail\nversion=5\ninst-date=2\ninfo=j",
       "! S/Soft:Mail 4/version: 4 -> 5\n"},
      {software, "/A", "/C", "- S/Soft:Mail 4: Mail\n+ S/Soft:Mail 4: Mail\n"},
      {software, "app:1=a\nstatus=1\n*app:2", "app:1", "- S/app:1: a\n"},
      {software, "app:1=a", "app:1=c", "- S/app:1: a\n+ S/app:1: c\n"},
  };
  for (const auto& [before, from, to, lines, all] : cases) {
    const Document later = DocumentOf(Replaced(before, from, to));
    EXPECT_EQ(DiffText(FindDifferences(DocumentOf(before), later, all)), lines) << from;
  }
}

TEST(Identity, ReadsTimestampsOfEveryZone) {
  const std::pair<const char*, const char*> cases[] = {{"20260102030405.000000+60", "2026-01-02T02:04:05Z"},
                                                       {"20240229233000.000000-300", "2024-03-01T04:30:00Z"},
                                                       {"20001231235959.000000+0", "2000-12-31T23:59:59Z"},
                                                       {"19691231000000.000000-0", "1969-12-31T00:00:00Z"},
                                                       {"16010101000000.000000+720", "1600-12-31T12:00:00Z"},
                                                       {"20260229000000.000000+0", ""},
                                                       {"20261301000000.000000+0", ""},
                                                       {"20260102030405", ""},
                                                       {"20260102030405.000000+60x", ""},
                                                       {"2026010203040", ""}};
  for (const auto& [timestamp, iso] : cases) {
    const auto moment = ParseTimestamp(timestamp);
    EXPECT_EQ(moment ? IsoMoment(*moment) : "", iso) << timestamp;
  }
}
