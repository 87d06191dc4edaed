// The profiler's data types as one property-list document, and what can be read of it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/platform.h"

enum class ProfilerPosition { Middle = 0, First = 1, Last = 2 };

// Where one data type's output went: `head`, which was cut off, `size` bytes of the joined document from `start` on,
// and `tail`, which was cut off too. An output that was dropped is all head.
struct ProfilerPiece {
  std::string head, tail;
  std::size_t start = 0, size = 0;
};

struct ProfilerData {
  std::string document;
  std::vector<ProfilerPiece> pieces;  // of the 23 data types in their order
};

// Appends one data type's document to `document`, cut so that it fits its place there: the first piece keeps its head,
// the last its tail. Appends nothing when the output is too short for that, or when five runs printed nothing.
ProfilerPiece RunProfilerType(const char* dataType, ProfilerPosition position, std::string& document);

// The document of the 23 data types in their order. A silent scan shows its progress on standard output.
ProfilerData CollectProfilerData(bool silent);

// The document of all data types that the profiler knows, from one run; empty when five runs printed nothing.
std::string RunWholeProfiler();

// The property list of the joined document. When that has none, or one that an output ends before the others, what can
// be read of each output by itself, in their order: one that spoils the whole costs its own data type alone.
PropertyList ParseProfilerData(const ProfilerData& data);

// The property list of one output as the tool printed it, else of the document that SalvagedDocument finds in it; Null
// when that has none either.
PropertyList ParseProfilerOutput(const std::string& output);
