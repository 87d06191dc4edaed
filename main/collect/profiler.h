// The profiler's data types as one property-list document.
#pragma once

#include <string>

enum class ProfilerPosition { Middle = 0, First = 1, Last = 2 };

// Appends one data type's document to `document`, cut so that it fits its place there: the first piece keeps its head,
// the last its tail. Appends nothing when the output is too short for that, or when five runs printed nothing.
void RunProfilerType(const char* dataType, ProfilerPosition position, std::string& document);

// The document of the 23 data types in their order. A silent scan shows its progress on standard output.
std::string CollectProfilerData(bool silent);

// The document of all data types that the profiler knows, from one run; empty when five runs printed nothing.
std::string RunWholeProfiler();
