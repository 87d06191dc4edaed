// Packs saved trees and raw data into one INV file: bodies, index, trailer.
#include "zxml/INVfile.h"

#include <sys/stat.h>

#include <cstdio>

#include "zxml/zXML.h"

namespace {

void AddSection(InvFile& inv, InvSection section) {
  section.length = static_cast<std::uint32_t>(section.buffer.size());
  inv.sections.push_back(std::move(section));
}

const Tag* RootTag(const InvSection& section) { return ChildAt(section.tree.container, 0); }

std::string IndexHeader(const InvFile& inv) {
  int snapshots = 0;
  for (const InvSection& section : inv.sections) {
    const Tag* root = RootTag(section);
    if (root && root->name == "Snapshot") ++snapshots;
  }
  return "[H]\ncount=" + std::to_string(inv.sections.size()) + "\nsnapshotcount=" + std::to_string(snapshots) + "\n";
}

std::string IndexRecord(const InvSection& section, std::size_t number) {
  std::string record = "[" + std::to_string(number) + "]\noffset=" + std::to_string(section.offset) +
                       "\nlength=" + std::to_string(section.length) + "\ntype=" + InvTypeWord(section.type) + "\n";
  switch (section.type) {
    case InvSectionType::AssetInfo:
      return record;
    case InvSectionType::Snapshot: {
      const Tag* root = RootTag(section);
      const Attribute* timestamp = root ? FindAttribute(*root, "timestamp") : nullptr;
      return record + "timestamp=" + TextOf(timestamp) + "\nsnaptype=mac:1\n";
    }
    case InvSectionType::RawData:
      break;
  }
  return record + "ID=rawdata\n";
}

// The text of the index, every section's offset set on the way.
std::string IndexText(InvFile& inv) {
  std::string text = IndexHeader(inv);
  std::uint32_t offset = 0;
  for (std::size_t i = 0; i < inv.sections.size(); ++i) {
    inv.sections[i].offset = offset;
    offset += inv.sections[i].length;
    text += IndexRecord(inv.sections[i], i);
  }
  return text;
}

// Removes a file that could not be written whole; leaves devices and pipes alone.
void RemovePartialFile(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) std::remove(path.c_str());
}

}  // namespace

InvFile InitInvFile(bool littleEndian) {
  InvFile inv;
  inv.littleEndian = littleEndian;
  return inv;
}

void AddTreeSection(InvFile& inv, TagTree tree, InvSectionType type, bool split, bool compress) {
  InvSection section;
  section.type = type;
  section.split = split;
  section.compress = compress;
  section.buffer = SaveTree(tree, split, compress);
  section.tree = std::move(tree);
  AddSection(inv, std::move(section));
}

void AddRawSection(InvFile& inv, std::string buffer) {
  InvSection section;
  section.type = InvSectionType::RawData;
  section.external = true;
  section.split = true;
  section.compress = true;
  section.buffer = std::move(buffer);
  AddSection(inv, std::move(section));
}

void AddSavedSection(InvFile& inv, std::string buffer, InvSectionType type) {
  InvSection section;
  section.type = type;
  const std::size_t size = buffer.size();
  // deliberate: the form in one piece and compressed ends with "ZXML", which reads as both flags set
  section.split = size >= 2 && buffer[size - 2] != 0;
  section.compress = size >= 1 && buffer[size - 1] != 0;
  section.buffer = std::move(buffer);
  AddSection(inv, std::move(section));
}

std::size_t IndexSize(InvFile& inv) { return IndexText(inv).size(); }

std::string WriteIndex(InvFile& inv, bool compressIndex) {
  std::string text = IndexText(inv);
  return compressIndex ? InvCompress(text) : text;
}

std::string BuildInvBuffer(InvFile& inv, bool compressIndex) {
  const std::string index = WriteIndex(inv, compressIndex);
  std::size_t bodies = 0;
  for (const InvSection& section : inv.sections) bodies += section.buffer.size();

  std::string buffer;
  buffer.reserve(bodies + index.size() + kInvTrailerSize);
  for (const InvSection& section : inv.sections) buffer += section.buffer;
  buffer += index;
  PutNumber(buffer, bodies, kInvOffsetSize, inv.littleEndian);
  buffer.push_back(kInvVersion);
  buffer.push_back(compressIndex ? 1 : 0);
  buffer += kInvMagic;
  return buffer;
}

bool WriteInvFile(InvFile& inv, const std::string& path, bool compressIndex) {
  std::FILE* file = std::fopen(path.c_str(), "w");
  if (!file) return false;
  const std::string buffer = BuildInvBuffer(inv, compressIndex);
  bool whole = std::fwrite(buffer.data(), 1, buffer.size(), file) == buffer.size();
  whole = std::fflush(file) == 0 && whole;
  whole = std::fclose(file) == 0 && whole;
  if (!whole) RemovePartialFile(path);
  return whole;
}

std::string InvCompress(std::string_view input) { return Deflated(input, "zxml/INVfile"); }

void DestroyInvFile(InvFile& inv) { inv = InvFile(); }
