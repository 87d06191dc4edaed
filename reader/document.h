// One INV file, read as far as it can be: what every command of quillinv works on.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "reader/body.h"
#include "reader/fault.h"
#include "reader/inflate.h"
#include "reader/inv_reader.h"
#include "zxml/tag.h"

struct Section {
  InvRecord record;
  bool isRead = false;  // it is one of the parts that were asked for; otherwise only its record is there
  InvBody body;
  TagTree tree;  // its container has no child for raw data and for a text without a root
};

struct Document {
  std::string path;  // as the caller named it
  std::uint64_t size = 0;
  InvContainer container;
  std::vector<Section> sections;  // one for each record, in their order
  Faults faults;                  // the container's, then the sections'
};

// What of a file is read beside its index: the AssetInfo tree alone, all trees, or raw data as well.
enum class Parts { Asset, Trees, All };

// `bytes` taken apart; its bodies together may inflate to `limit` bytes.
Document ReadDocument(std::string path, std::string_view bytes, std::size_t limit = kDefaultLimit,
                      Parts parts = Parts::All);

// The section's root tag, null when it has none. Owned by the section.
const Tag* RootTag(const Section& section);
// The first root of that name in any section, null when there is none. Owned by the document.
const Tag* FindRoot(const Document& document, std::string_view name);
// True for a raw-data section.
bool IsRaw(const Section& section);
