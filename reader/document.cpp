// Reads a file in one go and hands its parts to the readers of container, body and text.
#include "reader/document.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

#include "reader/zxml_reader.h"

namespace {

constexpr std::size_t kMaxFileSize = std::size_t{1} << 30;
constexpr std::size_t kEnoughFaults = 1000;  // no section adds to a list of this length
constexpr std::size_t kChunk = 65536;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

Section ReadSection(const InvRecord& record, std::string_view bytes, std::size_t limit, TextBudget& budget,
                    Faults& faults) {
  Section section;
  section.record = record;
  if (!record.inside) return section;
  section.body = UnpackBody({BodyOf(bytes, record), record.offset, record.type, limit}, faults);
  const bool tree = section.body.form != BodyForm::Raw && section.body.form != BodyForm::Unknown;
  const std::string part = "the text of section " + std::to_string(record.number);
  if (tree && section.body.whole) {
    section.tree = ParseZxml(section.body.text, section.body.rootOpen, part, budget, faults);
  } else if (tree) {
    Faults cut;  // follows from the fault of the body
    section.tree = ParseZxml(section.body.text, true, part, budget, cut);
  }
  return section;
}

}  // namespace

bool ReadFile(const std::string& path, std::string& bytes, std::string& trouble) {
  bytes.clear();
  trouble.clear();
  const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
  if (!file) {
    trouble = std::strerror(errno);
    return false;
  }
  std::size_t got = kChunk;
  while (got == kChunk) {
    const std::size_t size = bytes.size();
    if (size > kMaxFileSize) {
      trouble = "larger than 1 GiB, which no scan writes";
      return false;
    }
    bytes.resize(size + kChunk);
    errno = 0;
    got = std::fread(&bytes[size], 1, kChunk, file.get());
    bytes.resize(size + got);
  }
  if (std::ferror(file.get()) == 0) return true;
  trouble = std::strerror(errno != 0 ? errno : EIO);
  return false;
}

Document ReadDocument(std::string path, std::string_view bytes, std::size_t limit) {
  Document document;
  document.path = std::move(path);
  document.size = bytes.size();
  document.container = ParseInv(bytes, limit);
  document.faults = document.container.faults;
  TextBudget budget;
  for (const InvRecord& record : document.container.records) {
    Faults faults;  // each section may name its own kMaxFaults
    document.sections.push_back(ReadSection(record, bytes, limit, budget, faults));
    limit -= document.sections.back().body.text.size();
    if (document.faults.size() < kEnoughFaults)
      document.faults.insert(document.faults.end(), faults.begin(), faults.end());
  }
  return document;
}

const Tag* RootTag(const Section& section) { return ChildAt(section.tree.container, 0); }

const Tag* FindRoot(const Document& document, std::string_view name) {
  for (const Section& section : document.sections)
    if (const Tag* root = RootTag(section); root && root->name == name) return root;
  return nullptr;
}

bool IsRaw(const Section& section) { return section.record.type == InvSectionType::RawData; }
