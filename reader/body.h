// Takes the body of a section apart: the four saved forms of a tree, and raw data.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "reader/fault.h"
#include "zxml/inv_format.h"

enum class BodyForm { Unknown, Plain, Deflated, SplitPlain, SplitDeflated, Raw };

struct InvBody {
  BodyForm form = BodyForm::Unknown;
  bool littleEndian = false;  // split forms: byte order of the 32-bit length, found by trying both
  std::string text;           // the zXML text, or the raw data; as far as it could be had
  bool rootOpen = false;      // split forms: the text does not hold the line that closes the root
  bool whole = false;         // nothing of the text is missing
};

// A body as it lies in the file.
struct SavedBody {
  std::string_view bytes;
  std::uint64_t start = 0;  // in the file, for the places of faults
  std::optional<InvSectionType> type;
  std::size_t limit = 0;  // bytes that its text may take
};

// The text of the body.
InvBody UnpackBody(const SavedBody& saved, Faults& faults);

// "zXML", "deflated zXML", "split zXML", ...
std::string FormName(BodyForm form);
