// Fields of a record by name, and how a page shows them: in one style, with the unit written out.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reader/record.h"

// One row with its table. Points into the document and its source.
struct RecordView {
  const RecordTable* table = nullptr;
  RecordRow row;
};

// The rows of the table of that name, which must be there; one for the shapes Mac and Object.
std::vector<RecordView> ViewsOf(std::string_view table, const RecordSource& source);

// What the field of that name holds; nothing, or the empty text, for null.
std::optional<std::int64_t> NumberOf(const RecordView& view, std::string_view field);
std::optional<bool> FlagOf(const RecordView& view, std::string_view field);
// Any type, as a page shows it: "1,333 MHz", "yes", "2026-11-21 16:22 UTC".
std::string ShownOf(const RecordView& view, std::string_view field);

// A value in the same style; empty for null.
std::string Shown(const RecordField& field, const FieldValue& value);
// "size_bytes" as the head of a column: "Size".
std::string FieldLabel(const RecordField& field);

// "1.74 GB": of disks, 1 GB being 10^9 bytes, and of memory, 1 GB being 2^30 bytes.
std::string DiskSize(std::int64_t bytes);
std::string MemorySize(std::int64_t bytes);
// "1 disk", "2,000 disks"
std::string Counted(std::uint64_t count, std::string_view one, std::string_view many);
// "1,234"
std::string Grouped(std::int64_t number);
// "2026-11-21 16:22 UTC", from seconds since 1970.
std::string ShownMoment(std::int64_t moment);
