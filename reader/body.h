// Takes the body of a section apart: the four saved forms of a tree, and raw data.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "reader/fault.h"
#include "reader/inflate.h"
#include "zxml/INVfile.h"

enum class BodyForm { Unknown, Plain, Deflated, SplitPlain, SplitDeflated, Raw };

struct InvBody {
  BodyForm form = BodyForm::Unknown;
  bool littleEndian = false;  // split forms: byte order of the 32-bit length, found by trying both
  std::string text;           // the zXML text, or the raw data; as far as it could be had
  bool rootOpen = false;      // split forms: the text does not hold the line that closes the root
  bool whole = false;         // nothing of the text is missing
};

// The text of `body`. `start` is where the body lies in the file, for the offsets of the faults.
InvBody UnpackBody(std::string_view body, std::optional<InvSectionType> type, std::uint64_t start, std::size_t limit,
                   Faults& faults);

// "zXML", "deflated zXML", "split zXML", ...
std::string FormName(BodyForm form);
