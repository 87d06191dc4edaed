// The INV file: the bodies of its sections back to back, a deflated text index and a trailer of fourteen bytes.
// docs/inv-format.md describes it for whoever has to read it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zxml/inv_format.h"
#include "zxml/tag.h"

struct InvSection {
  InvSectionType type = InvSectionType::AssetInfo;
  bool external = false;  // the body was handed in as raw data, not produced from a tree
  std::string buffer;     // the body
  bool compress = false;
  bool split = false;
  TagTree tree;              // what the body was made from; empty for a body that was handed in
  std::uint32_t offset = 0;  // from the start of the file; set by IndexSize and WriteIndex
  std::uint32_t length = 0;
};

// Owns its sections, and through them the trees that were added.
struct InvFile {
  std::vector<InvSection> sections;  // in the order of their bodies and index records
  bool littleEndian = false;         // byte order of the trailer's offset
  bool hasRawData = false;           // a raw-data section was added
};

InvFile InitInvFile(bool littleEndian);

// Adds a section made from `tree`, which now belongs to it; the body is SaveTree's.
void AddTreeSection(InvFile& inv, TagTree tree, InvSectionType type, bool split, bool compress);
// Adds a body that is already deflated as the raw-data section.
void AddRawSection(InvFile& inv, std::string buffer);
// Adds a body that SaveTree made; the flags are read from its last two bytes.
void AddSavedSection(InvFile& inv, std::string buffer, InvSectionType type);

// Bytes of the index text before it is deflated; also sets each section's offset.
std::size_t IndexSize(InvFile& inv);
// The index text, deflated on request; also sets each section's offset.
std::string WriteIndex(InvFile& inv, bool compressIndex);
// The whole file: bodies, index, trailer.
std::string BuildInvBuffer(InvFile& inv, bool compressIndex);
// Writes the file in one go. True only when all of it reached the file; otherwise no partial regular file is left
// behind.
bool WriteInvFile(InvFile& inv, const std::string& path, bool compressIndex);

// Deflated for the container's own parts.
std::string InvCompress(std::string_view input);

// Destroys all sections with their trees and bodies.
void DestroyInvFile(InvFile& inv);
