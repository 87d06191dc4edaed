// Recognises the saved form of a body by its last bytes and joins its pieces into one text.
#include "reader/body.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "reader/inflate.h"
#include "reader/inv_reader.h"
#include "reader/text.h"

namespace {

struct Piece {
  std::size_t offset = 0;
  std::size_t length = 0;
};

// What is being unpacked, and into what.
struct Unpacking {
  const SavedBody& saved;
  InvBody& result;
  Faults& faults;
};

std::string BeyondLimit(std::size_t limit) { return "the text takes more than the " + Bytes(limit) + " allowed"; }

BodyForm FormOf(std::string_view body, std::optional<InvSectionType> type) {
  const auto endsWith = [body](std::string_view end, std::size_t least) {
    return body.size() >= least && body.substr(body.size() - end.size()) == end;
  };
  if (type == InvSectionType::RawData) return BodyForm::Raw;
  if (endsWith(kDeflatedEnd, kDeflatedEnd.size())) return BodyForm::Deflated;
  if (endsWith(kSplitDeflatedEnd, kSplitEndSize)) return BodyForm::SplitDeflated;
  if (endsWith(kSplitPlainEnd, kSplitEndSize)) return BodyForm::SplitPlain;
  return body.substr(0, kZxmlHeader.size()) == kZxmlHeader ? BodyForm::Plain : BodyForm::Unknown;
}

// The line of `text` at `at` without `start` at its front, as a number; moves `at` to the next line.
std::optional<std::size_t> TakeNumberLine(std::string_view text, std::size_t& at, std::string_view start) {
  const std::size_t end = text.find('\n', at);
  if (end == std::string_view::npos || text.substr(at, start.size()) != start) return std::nullopt;
  if (end < at + start.size()) return std::nullopt;
  const std::optional<std::uint64_t> number = ParseNumber(text.substr(at + start.size(), end - at - start.size()));
  if (!number || *number > text.max_size()) return std::nullopt;
  at = end + 1;
  return static_cast<std::size_t>(*number);
}

// The pieces that a split index names: "[name]", "offset=n", "length=n" for each, back to back and `total` bytes in
// all. No pieces when the text says anything else.
std::vector<Piece> ParseSplitIndex(std::string_view text, std::uint64_t total) {
  std::vector<Piece> pieces;
  std::uint64_t end = 0;
  for (std::size_t at = 0; at < text.size();) {
    // A name may hold anything but a line feed, brackets too.
    const std::size_t nameEnd = text.find("]\n", at);
    if (text[at] != '[' || nameEnd == std::string_view::npos || nameEnd > text.find('\n', at)) return {};
    if (pieces.empty() && text.substr(at, nameEnd - at) != "[Root") return {};
    at = nameEnd + 2;
    const auto offset = TakeNumberLine(text, at, "offset=");
    const auto length = offset ? TakeNumberLine(text, at, "length=") : std::nullopt;
    if (!length || *offset != end || *length > total - end) return {};
    pieces.push_back({*offset, *length});
    end += *length;
  }
  return end == total ? pieces : std::vector<Piece>();
}

// The pieces when the 32-bit length is read in that byte order; none when that leads nowhere.
std::vector<Piece> ReadPieces(const SavedBody& saved, bool littleEndian, bool deflated) {
  const std::string_view body = saved.bytes.substr(0, saved.bytes.size() - kSplitEndSize);
  const std::uint64_t total = GetNumber(saved.bytes.substr(body.size(), kSplitLengthSize), littleEndian);
  if (total > body.size()) return {};
  const std::string_view index = body.substr(static_cast<std::size_t>(total));
  const std::size_t limit = std::min(saved.limit, kIndexLimit);
  if (!deflated) return ParseSplitIndex(index.size() <= limit ? index : std::string_view(), total);
  std::string text;
  Faults otherOrder;  // what is wrong in this byte order may be right in the other
  return Inflate({index, 0, limit}, text, otherOrder) ? ParseSplitIndex(text, total) : std::vector<Piece>();
}

// False, and a fault, when the piece cannot be had whole.
bool AppendPiece(const Unpacking& unpacking, const Piece& piece, bool deflated) {
  const SavedBody& saved = unpacking.saved;
  std::string& text = unpacking.result.text;
  const std::string_view bytes = saved.bytes.substr(piece.offset, piece.length);
  const std::size_t room = saved.limit - text.size();
  if (deflated) return Inflate({bytes, saved.start + piece.offset, room}, text, unpacking.faults);
  text += bytes.substr(0, room);
  if (bytes.size() <= room) return true;
  AddFault(unpacking.faults, saved.start + piece.offset + bytes.size(), BeyondLimit(saved.limit));
  return false;
}

void UnpackSplit(const Unpacking& unpacking) {
  InvBody& result = unpacking.result;
  const bool deflated = result.form == BodyForm::SplitDeflated;
  result.rootOpen = true;
  std::vector<Piece> pieces;
  for (const bool littleEndian : {false, true}) {
    if (!pieces.empty()) break;
    pieces = ReadPieces(unpacking.saved, littleEndian, deflated);
    result.littleEndian = littleEndian;
  }
  if (pieces.empty()) {
    AddFault(unpacking.faults, unpacking.saved.start + unpacking.saved.bytes.size() - kSplitEndSize,
             "in neither byte order does the length here lead to an index of the split body's pieces");
    return;
  }
  for (const Piece& piece : pieces)
    if (!AppendPiece(unpacking, piece, deflated)) return;
  result.whole = true;
}

void UnpackPlain(const Unpacking& unpacking) {
  const SavedBody& saved = unpacking.saved;
  InvBody& result = unpacking.result;
  const std::size_t size = saved.bytes.find_last_not_of('\0') + 1;
  const std::size_t padding = saved.bytes.size() - size;
  result.whole = size <= saved.limit;
  result.text = saved.bytes.substr(0, std::min(size, saved.limit));
  if (!result.whole) AddFault(unpacking.faults, saved.start + saved.limit, BeyondLimit(saved.limit));
  if (padding == kPlainPadding) return;
  AddFault(unpacking.faults, saved.start + size,
           std::to_string(padding) + " zero bytes follow the text instead of " + std::to_string(kPlainPadding));
}

// One stream, and behind it `end`, which was looked at already.
void UnpackDeflated(const Unpacking& unpacking, std::string_view end) {
  std::string_view stream = unpacking.saved.bytes;
  stream.remove_suffix(end.size());
  const DeflatedPart part = {stream, unpacking.saved.start, unpacking.saved.limit};
  unpacking.result.whole = Inflate(part, unpacking.result.text, unpacking.faults);
}

}  // namespace

InvBody UnpackBody(const SavedBody& saved, Faults& faults) {
  InvBody result;
  result.form = FormOf(saved.bytes, saved.type);
  const Unpacking unpacking = {saved, result, faults};
  switch (result.form) {
    case BodyForm::Unknown:
      AddFault(faults, saved.start, "the body has none of the saved forms of a tree");
      break;
    case BodyForm::Plain:
      UnpackPlain(unpacking);
      break;
    case BodyForm::SplitPlain:
    case BodyForm::SplitDeflated:
      UnpackSplit(unpacking);
      break;
    case BodyForm::Deflated:
      UnpackDeflated(unpacking, kDeflatedEnd);
      break;
    case BodyForm::Raw:
      result.whole = saved.bytes.empty();  // a scan that got no raw data at all
      if (!result.whole) UnpackDeflated(unpacking, "");
      break;
  }
  return result;
}

std::string FormName(BodyForm form) {
  constexpr std::pair<BodyForm, const char*> kNames[] = {
      {BodyForm::Plain, "zXML"},
      {BodyForm::Deflated, "deflated zXML"},
      {BodyForm::SplitPlain, "split zXML"},
      {BodyForm::SplitDeflated, "split deflated zXML"},
      {BodyForm::Raw, "deflated raw data"},
  };
  for (const auto& [known, name] : kNames)
    if (form == known) return name;
  return "unknown form";
}
