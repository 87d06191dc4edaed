// Recognises the saved form of a body by its last bytes and joins its pieces into one text.
#include "reader/body.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "reader/inv_reader.h"
#include "reader/text.h"

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kHeader = "\xEF\xBB\xBF?zxml\n"sv;
constexpr std::string_view kDeflatedEnd = "\0\1ZXML"sv;  // split flag, compression flag, mark
constexpr std::size_t kPlainPadding = 102;               // zero bytes behind a plain text
constexpr std::size_t kSplitEnd = 4 + 1 + 1;             // length of all pieces, split flag, compression flag

struct Piece {
  std::size_t offset = 0;
  std::size_t length = 0;
};

BodyForm FormOf(std::string_view body, std::optional<InvSectionType> type) {
  const auto endsWith = [body](std::string_view end) {
    return body.size() >= end.size() && body.substr(body.size() - end.size()) == end;
  };
  if (type == InvSectionType::RawData) return BodyForm::Raw;
  if (endsWith(kDeflatedEnd)) return BodyForm::Deflated;
  if (body.size() >= kSplitEnd && endsWith("\1\1"sv)) return BodyForm::SplitDeflated;
  if (body.size() >= kSplitEnd && endsWith("\1\0"sv)) return BodyForm::SplitPlain;
  return body.substr(0, kHeader.size()) == kHeader ? BodyForm::Plain : BodyForm::Unknown;
}

std::uint64_t GetLength(std::string_view bytes, bool littleEndian) {
  std::uint64_t length = 0;
  for (std::size_t i = 0; i < 4; ++i)
    length = (length << 8) | static_cast<unsigned char>(bytes[littleEndian ? 3 - i : i]);
  return length;
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
std::vector<Piece> ReadPieces(std::string_view body, bool littleEndian, bool deflated, std::size_t limit) {
  const std::uint64_t total = GetLength(body.substr(body.size() - kSplitEnd), littleEndian);
  if (total > body.size() - kSplitEnd) return {};
  const std::string_view index = body.substr(static_cast<std::size_t>(total), body.size() - kSplitEnd - total);
  if (!deflated) return ParseSplitIndex(index.size() <= limit ? index : std::string_view(), total);
  const Inflated inflated = Inflate(index, limit);
  return inflated.trouble.empty() ? ParseSplitIndex(inflated.text, total) : std::vector<Piece>();
}

void UnpackSplit(InvBody& result, std::string_view body, std::uint64_t start, std::size_t limit, Faults& faults) {
  const bool deflated = result.form == BodyForm::SplitDeflated;
  result.rootOpen = true;
  std::vector<Piece> pieces;
  for (const bool littleEndian : {false, true}) {
    pieces = ReadPieces(body, littleEndian, deflated, std::min(limit, kIndexLimit));
    result.littleEndian = littleEndian;
    if (!pieces.empty()) break;
  }
  if (pieces.empty()) {
    AddFault(faults, start + body.size() - kSplitEnd,
             "in neither byte order does the length here lead to an index of the split body's pieces");
    return;
  }
  for (const Piece& piece : pieces) {
    const std::string_view bytes = body.substr(piece.offset, piece.length);
    const std::size_t room = limit - result.text.size();
    Inflated text = deflated ? Inflate(bytes, room) : Inflated{std::string(bytes.substr(0, room)), bytes.size(), ""};
    if (!deflated && bytes.size() > room) text.trouble = "the text takes more than the " + Bytes(limit) + " allowed";
    result.text += text.text;
    if (text.trouble.empty()) continue;
    AddFault(faults, start + piece.offset + text.used, text.trouble);
    return;
  }
  result.whole = true;
}

void UnpackPlain(InvBody& result, std::string_view body, std::uint64_t start, std::size_t limit, Faults& faults) {
  const std::size_t size = body.find_last_not_of('\0') + 1;
  result.whole = size <= limit;
  result.text = body.substr(0, std::min(size, limit));
  if (!result.whole) AddFault(faults, start + limit, "the text takes more than the " + Bytes(limit) + " allowed");
  if (body.size() - size != kPlainPadding)
    AddFault(
        faults, start + size,
        std::to_string(body.size() - size) + " zero bytes follow the text instead of " + std::to_string(kPlainPadding));
}

}  // namespace

InvBody UnpackBody(std::string_view body, std::optional<InvSectionType> type, std::uint64_t start, std::size_t limit,
                   Faults& faults) {
  InvBody result;
  result.form = FormOf(body, type);
  switch (result.form) {
    case BodyForm::Unknown:
      AddFault(faults, start, "the body has none of the saved forms of a tree");
      return result;
    case BodyForm::Plain:
      UnpackPlain(result, body, start, limit, faults);
      return result;
    case BodyForm::SplitPlain:
    case BodyForm::SplitDeflated:
      UnpackSplit(result, body, start, limit, faults);
      return result;
    case BodyForm::Deflated:
      body.remove_suffix(kDeflatedEnd.size());
      break;
    case BodyForm::Raw:
      result.whole = body.empty();  // a scan that got no raw data at all
      if (result.whole) return result;
      break;
  }
  Inflated inflated = Inflate(body, limit);
  result.text = std::move(inflated.text);
  result.whole = inflated.trouble.empty();
  if (!result.whole) AddFault(faults, start + inflated.used, inflated.trouble);
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
