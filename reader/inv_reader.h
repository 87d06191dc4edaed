// Reads the INV container: trailer, index, and where the bodies lie. No length, offset or count of the file is used
// before it was checked against the file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reader/fault.h"
#include "reader/inflate.h"
#include "zxml/inv_format.h"

// An index may inflate to this many bytes: some 100,000 sections.
constexpr std::size_t kIndexLimit = std::size_t{8} << 20;

// One "[n]" record of the index.
struct InvRecord {
  std::size_t number = 0;
  std::optional<InvSectionType> type;  // none for a type that is not known
  std::uint64_t offset = 0;            // of the body, from the start of the file
  std::uint64_t length = 0;            // of the body, in bytes
  std::string timestamp;               // snapshots only
  std::string snaptype;                // snapshots only
  std::string id;                      // raw data only
  bool inside = false;  // the body lies inside the file and overlaps no earlier one: BodyOf may be called
};

struct InvContainer {
  bool whole = false;  // trailer and index could be read; otherwise the rest is what was understood before the fault
  bool littleEndian = false;  // byte order of the trailer's offset, found by trying both
  unsigned version = 0;
  bool indexDeflated = false;
  std::uint64_t indexOffset = 0;
  std::string indexText;
  std::uint64_t count = 0;
  std::uint64_t snapshotCount = 0;
  std::vector<InvRecord> records;
  Faults faults;
};

// Reads trailer and index of a whole file. Of the two readings of the trailer's offset the one that leads to a readable
// index is taken, big-endian first.
InvContainer ParseInv(std::string_view file, std::size_t limit = kDefaultLimit);

// The body of a record that lies inside; a view into `file`.
std::string_view BodyOf(std::string_view file, const InvRecord& record);

// "snapshot", "assetinfo", "customdata", or "unknown".
std::string TypeName(std::optional<InvSectionType> type);
