// An INV file for the reader and everything that it says about one; the same bytes as zXML text, through each of the
// four saved forms and back.
#include "fuzz/fuzz.h"
#include "reader/commands.h"
#include "reader/csv.h"
#include "reader/diff.h"
#include "reader/fleet.h"
#include "reader/record.h"
#include "reader/report.h"
#include "reader/show.h"
#include "zxml/INVfile.h"

namespace {

constexpr std::size_t kLimit = 1 << 20;

void CheckFile(std::string_view bytes) {
  const Document document = ReadDocument("file", bytes, kLimit);
  for (const Section& section : document.sections) Require(section.body.text.size() <= kLimit);
  std::string_view text;
  std::string trouble;
  ExtractText(document, DefaultSection(document), text, trouble);
  CheckDocument(document);
  CsvRow(document, DefaultColumns());
  ShowText(document, {});
  Require(!ListText(document).empty() && !DocumentJson(document, bytes.size() % 2 == 0).empty());
  Require(RecordJson(document, {{"modes", "processes", "software_info", "environment"}}).back() == '\n');
  Require(FindDifferences(document, document, true).empty());
  Fleet fleet;
  AddToFleet(document, 0, fleet);
  Require(!ReportPage(document, 0).empty() && !FleetPage(fleet, 0).empty());
}

void CheckForms(const std::string& text) {
  const std::optional<TagTree> tree = CheckText(text);
  if (!tree) return;
  InvFile inv = InitInvFile(text.size() % 2 == 0);
  for (const unsigned form : {0u, 1u, 2u, 3u}) {
    TagTree copy = CreateTree(inv.littleEndian, "");
    CopyTag(copy.container, tree->container);
    AddTreeSection(inv, std::move(copy), InvSectionType::AssetInfo, form & 1u, form & 2u);
  }
  const Document document = ReadDocument("file", BuildInvBuffer(inv, true));
  Require(document.container.whole && document.sections.size() == 4);
  for (const Section& section : document.sections) Require(TextOfTree(section.tree) == text);
}

}  // namespace

void Check(const std::string& bytes) {
  CheckFile(bytes);
  CheckForms(bytes);
}
