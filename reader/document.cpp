// Hands the parts of a file to the readers of container, body and text.
#include "reader/document.h"

#include <optional>
#include <utility>

#include "reader/zxml_reader.h"

namespace {

constexpr std::size_t kEnoughFaults = 1000;  // no section adds to a list of this length

bool IsWanted(std::optional<InvSectionType> type, Parts parts) {
  if (type == InvSectionType::RawData) return parts == Parts::All;
  return type == InvSectionType::AssetInfo || parts != Parts::Asset;
}

// What the sections of one file share.
struct Reading {
  std::string_view bytes;
  Parts parts = Parts::All;
  std::size_t limit = 0;  // what their texts may still take
  TextBudget budget = {};
};

Section ReadSection(const InvRecord& record, Reading& reading, Faults& faults) {
  Section section;
  section.record = record;
  section.isRead = IsWanted(record.type, reading.parts);
  if (!record.inside || !section.isRead) return section;
  section.body = UnpackBody({BodyOf(reading.bytes, record), record.offset, record.type, reading.limit}, faults);
  reading.limit -= section.body.text.size();
  if (section.body.form == BodyForm::Raw || section.body.form == BodyForm::Unknown) return section;
  Faults cut;  // of a text that is not whole: they follow from the fault of the body
  Faults& place = section.body.whole ? faults : cut;
  const bool rootOpen = section.body.rootOpen || !section.body.whole;
  const std::string part = "the text of section " + std::to_string(record.number);
  section.tree = ParseZxml(section.body.text, rootOpen, part, reading.budget, place);
  return section;
}

}  // namespace

Document ReadDocument(std::string path, std::string_view bytes, std::size_t limit, Parts parts) {
  Document document;
  document.path = std::move(path);
  document.size = bytes.size();
  document.container = ParseInv(bytes, limit);
  document.faults = document.container.faults;
  Reading reading = {bytes, parts, limit};
  for (const InvRecord& record : document.container.records) {
    Faults faults;  // each section may name its own kMaxFaults
    document.sections.push_back(ReadSection(record, reading, faults));
    if (document.faults.size() < kEnoughFaults)
      document.faults.insert(document.faults.end(), faults.begin(), faults.end());
  }
  return document;
}

const Tag* RootTag(const Section& section) { return ChildAt(section.tree.container, 0); }

const Tag* FindRoot(const Document& document, std::string_view name) {
  for (const Section& section : document.sections)
    if (const Tag* root = RootTag(section); root && root->name == name) return root;
  return nullptr;
}

bool IsRaw(const Section& section) { return section.record.type == InvSectionType::RawData; }
