// Finds the index through the trailer, parses its records and checks where they say that the bodies lie.
#include "reader/inv_reader.h"

#include <algorithm>
#include <utility>

#include "reader/inflate.h"
#include "reader/text.h"

namespace {

constexpr char kIndexPart[] = "the index";

// One "key=value" line of the header (`record` is null) or of a record. False when it is not one that belongs there.
bool TakeLine(InvContainer& inv, InvRecord* record, std::string_view key, std::string_view value) {
  const std::pair<const char*, std::uint64_t*> numbers[] = {{"count", record ? nullptr : &inv.count},
                                                            {"snapshotcount", record ? nullptr : &inv.snapshotCount},
                                                            {"offset", record ? &record->offset : nullptr},
                                                            {"length", record ? &record->length : nullptr}};
  for (const auto& [name, target] : numbers) {
    if (key != name || !target) continue;
    const auto number = ParseNumber(value);
    if (number) *target = *number;
    return number.has_value();
  }
  if (!record) return false;
  if (key == "type") {
    for (const auto& [type, word] : kInvTypeWords)
      if (value == word) record->type = type;
    return record->type.has_value();
  }
  const std::pair<const char*, std::string*> texts[] = {
      {"timestamp", &record->timestamp}, {"snaptype", &record->snaptype}, {"ID", &record->id}};
  for (const auto& [name, target] : texts) {
    if (key != name) continue;
    *target = value;
    return true;
  }
  return false;
}

// What the index text would be if it said just what was understood.
std::string ExpectedIndex(const InvContainer& inv) {
  std::string text =
      "[H]\ncount=" + std::to_string(inv.count) + "\nsnapshotcount=" + std::to_string(inv.snapshotCount) + "\n";
  for (const InvRecord& record : inv.records) {
    text += "[" + std::to_string(record.number) + "]\noffset=" + std::to_string(record.offset) +
            "\nlength=" + std::to_string(record.length) + "\ntype=" + TypeName(record.type) + "\n";
    if (record.type == InvSectionType::Snapshot)
      text += "timestamp=" + record.timestamp + "\nsnaptype=" + record.snaptype + "\n";
    if (record.type == InvSectionType::RawData) text += "ID=" + record.id + "\n";
  }
  return text;
}

// Lines that are missing, doubled or out of order change what the records say, so comparing the two texts finds them
// all.
void CheckIndexText(InvContainer& inv) {
  const std::string expected = ExpectedIndex(inv);
  if (inv.indexText == expected) return;
  const std::size_t common = std::min(expected.size(), inv.indexText.size());
  const auto differ =
      std::mismatch(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(common), inv.indexText.begin());
  AddFault(inv.faults, static_cast<std::uint64_t>(differ.first - expected.begin()),
           "a line of the index is missing, doubled, unknown or out of its place", kIndexPart);
}

void ParseIndex(InvContainer& inv) {
  const std::string_view text = inv.indexText;
  bool header = false;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    const std::string_view line = text.substr(at, end - at);
    const std::size_t equals = line.find('=');
    if (line == "[H]" && at == 0) {
      header = true;
    } else if (line == "[" + std::to_string(inv.records.size()) + "]") {
      inv.records.emplace_back();
      inv.records.back().number = inv.records.size() - 1;
    } else if (equals == std::string_view::npos || !TakeLine(inv, inv.records.empty() ? nullptr : &inv.records.back(),
                                                             line.substr(0, equals), line.substr(equals + 1))) {
      AddFault(inv.faults, at, "this line of the index cannot be understood", kIndexPart);
    }
    at = end + 1;
  }
  if (!header) AddFault(inv.faults, 0, "the index does not begin with its header \"[H]\"", kIndexPart);
  if (inv.faults.empty()) CheckIndexText(inv);
  if (inv.count != inv.records.size())
    AddFault(inv.faults, 0,
             "the header counts " + std::to_string(inv.count) + " sections, but there are " +
                 std::to_string(inv.records.size()) + " records",
             kIndexPart);
}

// The container as it looks when the trailer's offset is `offset`.
InvContainer ReadIndex(std::string_view file, InvContainer inv, bool littleEndian, std::size_t limit) {
  const std::string_view trailer = file.substr(file.size() - kInvTrailerSize);
  inv.littleEndian = littleEndian;
  inv.indexOffset = GetNumber(trailer.substr(0, kInvOffsetSize), littleEndian);
  if (inv.indexOffset > file.size() - kInvTrailerSize) {
    AddFault(inv.faults, file.size() - kInvTrailerSize,
             "in neither byte order does the index offset lie inside the file");
    return inv;
  }
  const auto start = static_cast<std::size_t>(inv.indexOffset);
  const std::string_view index = file.substr(start, file.size() - kInvTrailerSize - start);
  limit = std::min(limit, kIndexLimit);
  if (inv.indexDeflated) {
    Inflate({index, start, limit, "index: "}, inv.indexText, inv.faults);
  } else if (index.size() > limit) {
    AddFault(inv.faults, start, "the index takes more than the " + Bytes(limit) + " allowed");
  } else {
    inv.indexText = index;
  }
  if (inv.faults.empty()) ParseIndex(inv);
  inv.whole = inv.faults.empty();
  return inv;
}

// Bodies stand back to back from the start of the file to the index.
void CheckBodies(InvContainer& inv) {
  std::uint64_t end = 0;
  for (InvRecord& record : inv.records) {
    const std::string name = "section " + std::to_string(record.number);
    if (record.offset > inv.indexOffset || record.length > inv.indexOffset - record.offset) {
      AddFault(inv.faults, record.offset,
               name + " should lie here with " + Bytes(record.length) +
                   ", which reaches beyond the bodies: the index begins at byte " + std::to_string(inv.indexOffset));
      continue;
    }
    if (record.offset < end) {
      AddFault(inv.faults, record.offset, name + " begins here, inside the section before it");
      continue;
    }
    if (record.offset > end)
      AddFault(inv.faults, end, "what stands before " + name + " belongs to no section: " + Bytes(record.offset - end));
    record.inside = true;
    end = record.offset + record.length;
  }
  if (end < inv.indexOffset)
    AddFault(inv.faults, end, "what stands before the index belongs to no section: " + Bytes(inv.indexOffset - end));
}

}  // namespace

InvContainer ParseInv(std::string_view file, std::size_t limit) {
  InvContainer inv;
  if (file.size() < kInvTrailerSize) {
    AddFault(inv.faults, 0, "the file has " + Bytes(file.size()) + ", fewer than a trailer takes");
    return inv;
  }
  const std::size_t trailerAt = file.size() - kInvTrailerSize;
  const std::string_view trailer = file.substr(trailerAt);
  if (trailer.substr(kInvMagicAt) != kInvMagic) {
    AddFault(inv.faults, trailerAt + kInvMagicAt,
             "the file does not end with \"INV!\": it is no INV file, or it was cut");
    return inv;
  }
  inv.version = static_cast<unsigned char>(trailer[kInvVersionAt]);
  inv.indexDeflated = trailer[kInvIndexFlagAt] != 0;
  InvContainer big = ReadIndex(file, inv, false, limit);
  InvContainer little = big.whole ? InvContainer() : ReadIndex(file, inv, true, limit);
  const bool takeLittle = little.whole || (!big.whole && little.indexOffset < big.indexOffset);
  inv = takeLittle ? std::move(little) : std::move(big);
  Faults indexFaults = inv.faults;
  CheckBodies(inv);
  if (!inv.whole)
    inv.faults = std::move(indexFaults);  // where bodies lie says nothing when half of the index is missing
  if (inv.version != kInvVersion)
    AddFault(inv.faults, trailerAt + kInvVersionAt,
             "the format version is " + std::to_string(inv.version) + " instead of " + std::to_string(kInvVersion));
  if (static_cast<unsigned char>(trailer[kInvIndexFlagAt]) > 1)
    AddFault(inv.faults, trailerAt + kInvIndexFlagAt, "the index-compression flag is neither 0 nor 1");
  return inv;
}

std::string_view BodyOf(std::string_view file, const InvRecord& record) {
  return file.substr(static_cast<std::size_t>(record.offset), static_cast<std::size_t>(record.length));
}

std::string TypeName(std::optional<InvSectionType> type) { return type ? InvTypeWord(*type) : "unknown"; }
