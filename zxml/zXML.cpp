// Writes tag trees as zXML text and packs that text into a saved form: plain or deflated, in one piece or split into
// the root's own lines and one piece for each child of the root.
#include "zxml/zXML.h"

#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "zxml/inv_format.h"

namespace {

constexpr std::size_t kSlice = 16384;

// Text of an Int or Double; "%.2lf" of the largest double takes 313 bytes.
struct NumberText {
  char bytes[352];
  std::size_t size;
};

NumberText FormatNumber(const Value& value) {
  NumberText text;
  const int n = value.kind == ValueKind::Int
                    ? std::snprintf(text.bytes, sizeof text.bytes, "%lld", static_cast<long long>(value.integer))
                    : std::snprintf(text.bytes, sizeof text.bytes, "%.2lf", value.real);
  text.size = n > 0 ? static_cast<std::size_t>(n) : 0;
  return text;
}

std::size_t ValueSize(const Value& value) {
  switch (value.kind) {
    case ValueKind::None:
      return 0;
    case ValueKind::Bool:
      return value.boolean ? 4 : 5;
    case ValueKind::String:
      return value.text.size();
    case ValueKind::Int:
    case ValueKind::Double:
      break;
  }
  return FormatNumber(value).size;
}

std::size_t PropertiesSize(const std::vector<Property>& properties) {
  std::size_t size = 0;
  for (const Property& property : properties) size += property.name.size() + property.text.size() + 3;
  return size;
}

char* Put(char* at, std::string_view bytes) {
  if (!bytes.empty()) std::memcpy(at, bytes.data(), bytes.size());
  return at + bytes.size();
}

char* PutValue(char* at, const Value& value) {
  switch (value.kind) {
    case ValueKind::None:
      return at;
    case ValueKind::Bool:
      return Put(at, value.boolean ? "true" : "false");
    case ValueKind::String:
      return Put(at, value.text);
    case ValueKind::Int:
    case ValueKind::Double:
      break;
  }
  const NumberText text = FormatNumber(value);
  return Put(at, {text.bytes, text.size});
}

char* PutProperties(char* at, const std::vector<Property>& properties) {
  for (const Property& property : properties) {
    at = Put(at, "~");
    at = Put(at, property.name);
    at = Put(at, "=");
    at = Put(at, property.text);
    at = Put(at, "\n");
  }
  return at;
}

// The tag's own line, its properties and its attributes.
char* PutTagHead(char* at, const Tag& tag) {
  at = Put(at, tag.kind == TagKind::Parent ? "+" : "*");
  at = Put(at, tag.name);
  at = Put(at, "=");
  if (tag.value) at = PutValue(at, *tag.value);
  at = Put(at, "\n");
  if (tag.kind == TagKind::Parent && !tag.properties.empty())
    std::fprintf(stderr, "tag >>%s<< :\n", tag.name.c_str());  // deliberate: a diagnostic, not part of the text
  at = PutProperties(at, tag.properties);
  for (const auto& attribute : tag.attributes) {
    at = Put(at, attribute->name);
    at = Put(at, "=");
    at = PutValue(at, attribute->value);
    at = Put(at, "\n");
    at = PutProperties(at, attribute->properties);
  }
  return at;
}

// TextSize counts only the first child of a container; this is what WriteText needs at most.
std::size_t RoomFor(const Tag& tag) {
  if (tag.kind != TagKind::Container) return TextSize(tag, false);
  std::size_t size = kZxmlHeader.size();
  for (const auto& child : tag.children) size += TextSize(*child, false);
  return size;
}

std::string TextOfTag(const Tag& tag, bool noClose, bool headerOnly) {
  std::string text(RoomFor(tag), '\0');
  text.resize(WriteText(tag, text.data(), 0, noClose, headerOnly));
  return text;
}

[[noreturn]] void FailAssertion(const char* module, unsigned line, const char* expression) {
  std::fprintf(stderr, "%s:%u: failed assertion `%s'\n", module, line, expression);
  std::fflush(stderr);
  std::abort();
}

// Feeds one slice to the deflater and appends what comes out; zlib's last answer.
int DeflateSlice(z_stream& stream, std::string_view slice, int flush, std::string& output, const char* module) {
  char area[kSlice];
  int answer = Z_OK;
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(slice.data()));
  stream.avail_in = static_cast<uInt>(slice.size());
  std::size_t produced = kSlice;
  while (produced == kSlice) {
    stream.next_out = reinterpret_cast<Bytef*>(area);
    stream.avail_out = kSlice;
    answer = deflate(&stream, flush);
    if (answer == Z_STREAM_ERROR) FailAssertion(module, __LINE__, "ret != Z_STREAM_ERROR");
    produced = kSlice - stream.avail_out;
    output.append(area, produced);
  }
  if (stream.avail_in != 0) FailAssertion(module, __LINE__, "strm.avail_in == 0");
  return answer;
}

void AddPiece(TagTree& tree, const std::string& name, std::string piece) {
  SaveIndexEntry entry;
  if (!tree.saveIndex.empty()) entry.offset = tree.saveIndex.back().offset + tree.saveIndex.back().length;
  entry.length = piece.size();
  entry.name = name;
  entry.buffer = std::move(piece);
  tree.saveIndex.push_back(std::move(entry));
}

std::string SaveSplit(TagTree& tree, bool compress) {
  const auto pack = [compress](std::string text) { return compress ? Deflated(text) : std::move(text); };
  tree.saveIndex.clear();
  AddPiece(tree, "Root", pack(TextOfTag(tree.container, true, true)));
  if (!tree.container.children.empty())
    for (const auto& child : RootOf(tree).children) AddPiece(tree, child->name, pack(TextOfTag(*child, false, false)));

  std::string result, index;
  for (const SaveIndexEntry& entry : tree.saveIndex) {
    result += entry.buffer;
    index += "[" + entry.name + "]\noffset=" + std::to_string(entry.offset) +
             "\nlength=" + std::to_string(entry.length) + "\n";
  }
  const std::size_t pieces = result.size();
  result += pack(std::move(index));
  PutNumber(result, pieces, kSplitLengthSize, tree.saveFlag);
  result += compress ? kSplitDeflatedEnd : kSplitPlainEnd;
  tree.saveIndex.clear();
  return result;
}

}  // namespace

std::size_t TextSize(const Tag& tag, bool headerOnly) {
  if (tag.kind == TagKind::Container)
    return kZxmlHeader.size() + (tag.children.empty() ? 0 : TextSize(*tag.children.front(), headerOnly));
  std::size_t size = tag.name.size() + 3 + (tag.value ? ValueSize(*tag.value) : 0);
  for (const auto& attribute : tag.attributes)
    size += attribute->name.size() + ValueSize(attribute->value) + 2 + PropertiesSize(attribute->properties);
  if (headerOnly) return size;
  size += PropertiesSize(tag.properties);
  for (const auto& child : tag.children) size += TextSize(*child, false);
  return size + (tag.kind == TagKind::Parent ? 2 : 0);
}

std::size_t WriteText(const Tag& tag, char* buffer, std::size_t offset, bool noClose, bool headerOnly) {
  char* const start = buffer + offset;
  char* at = start;
  const bool container = tag.kind == TagKind::Container;
  at = container ? Put(at, kZxmlHeader) : PutTagHead(at, tag);
  if (!container && headerOnly) return static_cast<std::size_t>(at - start);
  for (const auto& child : tag.children) at += WriteText(*child, at, 0, container && noClose, container && headerOnly);
  if (tag.kind == TagKind::Parent && !noClose) at = Put(at, "-\n");
  return static_cast<std::size_t>(at - start);
}

std::optional<std::string> CompressBuffer(std::string_view input, const char* module) {
  z_stream stream = {};
  if (deflateInit_(&stream, 9, "1.2.5", static_cast<int>(sizeof stream)) != Z_OK) return std::nullopt;
  std::string output;
  output.reserve(input.size());
  for (; input.size() > kSlice; input.remove_prefix(kSlice))
    DeflateSlice(stream, input.substr(0, kSlice), Z_NO_FLUSH, output, module);
  const int answer = DeflateSlice(stream, input, Z_FINISH, output, module);
  if (answer != Z_STREAM_END) FailAssertion(module, __LINE__, "ret == Z_STREAM_END");
  deflateEnd(&stream);
  return output;
}

std::string Deflated(std::string_view input, const char* module) {
  std::optional<std::string> output = CompressBuffer(input, module);
  if (!output) throw std::bad_alloc();
  return std::move(*output);
}

std::string SaveTree(TagTree& tree, bool split, bool compress) {
  if (split) return SaveSplit(tree, compress);
  std::string text = TextOfTag(tree.container, false, false);
  if (!compress) {
    const std::size_t size = TextSize(tree.container, false) + kPlainPadding;
    if (text.size() < size) text.resize(size, '\0');
    return text;
  }
  std::string result = Deflated(text);
  result += kDeflatedEnd;
  return result;
}

void SaveTreeToFile(TagTree& tree, const std::string& path, bool split, bool compress) {
  std::FILE* file = std::fopen(path.c_str(), "w");
  if (!file) return;
  const std::string buffer = SaveTree(tree, split, compress);
  std::fwrite(buffer.data(), 1, buffer.size(), file);
  std::fflush(file);
  std::fclose(file);
}
