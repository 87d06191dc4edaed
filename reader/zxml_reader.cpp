// Goes through the text line by line with a stack of the tags that are open, and hangs each line where it belongs.
#include "reader/zxml_reader.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "reader/text.h"
#include "zxml/inv_format.h"

namespace {

struct OpenTag {
  Tag* tag;
  std::size_t offset;     // of its line
  std::size_t pathBytes;  // of its path from the root
};

struct Reading {
  TagTree tree;
  std::vector<OpenTag> open;
  Tag* current = nullptr;          // the tag whose attributes may follow; null behind a closing line
  Attribute* attribute = nullptr;  // the attribute whose properties may follow
  std::size_t at = 0;              // of the present line
  const std::string& part;
  TextBudget& budget;
  Faults& faults;
};

void Complain(Reading& reading, std::string words) {
  AddFault(reading.faults, reading.at, std::move(words), reading.part);
}

std::string WithoutZeroBytes(Reading& reading, std::string_view text) {
  std::string result;
  if (text.find('\0') != std::string_view::npos) Complain(reading, "this line holds a zero byte");
  for (const char c : text) {
    if (c == '\0')
      result += kReplacement;
    else
      result += c;
  }
  return result;
}

// Name and value of a line; the name is the whole line when there is no "=".
std::pair<std::string, std::string> SplitLine(Reading& reading, std::string_view line) {
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) Complain(reading, "this line has no \"=\"");
  const std::string_view value = equals == std::string_view::npos ? "" : line.substr(equals + 1);
  return {WithoutZeroBytes(reading, line.substr(0, equals)), WithoutZeroBytes(reading, value)};
}

// False when the text has to be given up.
bool TakeTag(Reading& reading, TagKind kind, std::string_view line) {
  if (reading.open.size() >= kMaxDepth) {
    Complain(reading, "more than " + std::to_string(kMaxDepth) + " tags inside one another; reading ends here");
    return false;
  }
  Tag& parent = reading.open.empty() ? reading.tree.container : *reading.open.back().tag;
  if (reading.open.empty() && !parent.children.empty()) Complain(reading, "a second root begins here");
  auto [name, value] = SplitLine(reading, line);
  auto tag = std::make_unique<Tag>();
  tag->kind = kind;
  tag->name = std::move(name);
  if (!value.empty()) {
    tag->value.emplace();
    tag->value->kind = ValueKind::String;
    tag->value->text = std::move(value);
  }
  const std::size_t pathBytes = (reading.open.empty() ? 0 : reading.open.back().pathBytes + 1) + tag->name.size();
  if (pathBytes > reading.budget.pathBytes) {
    Complain(reading, "the names of the tags are too long; reading ends here");
    return false;
  }
  reading.budget.pathBytes -= pathBytes;
  reading.current = AppendChild(parent, std::move(tag));
  reading.attribute = nullptr;
  if (kind == TagKind::Parent) reading.open.push_back({reading.current, reading.at, pathBytes});
  return true;
}

void TakeClose(Reading& reading) {
  if (reading.open.empty()) {
    Complain(reading, "this line closes a tag, but none is open");
    return;
  }
  reading.open.pop_back();
  reading.current = nullptr;
  reading.attribute = nullptr;
}

void TakeProperty(Reading& reading, std::string_view line) {
  auto [name, text] = SplitLine(reading, line);
  if (reading.attribute) {
    AddAttributeProperty(*reading.attribute, std::move(name), std::move(text));
  } else if (reading.current) {
    AddTagProperty(*reading.current, std::move(name), std::move(text));
  } else {
    Complain(reading, "this property belongs to no tag and no attribute");
  }
}

void TakeAttribute(Reading& reading, std::string_view line) {
  Tag* tag = reading.current;
  if (!tag) {
    Complain(reading, "this line stands neither behind its tag nor does it begin or close one");
    if (reading.open.empty()) return;
    tag = reading.open.back().tag;
  }
  auto [name, value] = SplitLine(reading, line);
  Attribute& attribute = *tag->attributes.emplace_back(std::make_unique<Attribute>());
  attribute.name = std::move(name);
  attribute.value.kind = ValueKind::String;
  attribute.value.text = std::move(value);
  reading.attribute = &attribute;
}

// False when the text has to be given up.
bool TakeLine(Reading& reading, std::string_view line) {
  if (line == "-") {
    TakeClose(reading);
    return true;
  }
  if (reading.budget.lines == 0) {
    Complain(reading, "the file has too many lines; reading ends here");
    return false;
  }
  --reading.budget.lines;
  const char first = line.empty() ? '\0' : line.front();
  if (first == '+') return TakeTag(reading, TagKind::Parent, line.substr(1));
  if (first == '*') return TakeTag(reading, TagKind::Leaf, line.substr(1));
  if (first == '~')
    TakeProperty(reading, line.substr(1));
  else
    TakeAttribute(reading, line);
  return true;
}

void CheckEnd(Reading& reading, bool rootOpen) {
  const auto& roots = reading.tree.container.children;
  if (roots.empty()) Complain(reading, "the text holds no tag");
  const bool rootClosed = !roots.empty() && roots.front()->kind == TagKind::Parent && reading.open.empty();
  if (rootOpen && rootClosed) Complain(reading, "the root is closed, although this body's form leaves it open");
  for (std::size_t i = rootOpen ? 1 : 0; i < reading.open.size(); ++i) {
    reading.at = reading.open[i].offset;
    Complain(reading, "the tag that begins here is not closed");
  }
}

}  // namespace

TagTree ParseZxml(std::string_view text, bool rootOpen, const std::string& part, TextBudget& budget, Faults& faults) {
  Reading reading{{}, {}, nullptr, nullptr, 0, part, budget, faults};
  reading.tree.container.kind = TagKind::Container;
  bool going = true;
  while (going && reading.at < text.size()) {
    const std::size_t end = std::min(text.find('\n', reading.at), text.size());
    const std::string_view line = text.substr(reading.at, end - reading.at);
    if (reading.at != 0 || line != kZxmlHeaderLine) {
      if (reading.at == 0) Complain(reading, "the text does not begin with the byte-order mark and \"?zxml\"");
      going = TakeLine(reading, line);
    }
    if (going) reading.at = end + 1;
  }
  if (!going) return std::move(reading.tree);
  reading.at = text.size();
  if (text.empty() || text.back() != '\n') Complain(reading, "the text ends inside a line");
  CheckEnd(reading, rootOpen);
  return std::move(reading.tree);
}
