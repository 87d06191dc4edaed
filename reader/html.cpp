// Escapes texts for a page and writes its small recurring pieces.
#include "reader/html.h"

#include <algorithm>
#include <cstdio>

#include "reader/page.h"
#include "reader/text.h"

namespace {

struct Escape {
  char character;
  const char* text;
};

constexpr Escape kHtmlEscapes[] = {
    {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"},
};

constexpr Escape kScriptEscapes[] = {
    {'<', "\\u003C"}, {'>', "\\u003E"}, {'&', "\\u0026"},  // inside of JSON these stand in texts alone
};

template <std::size_t count>
std::string Escaped(std::string_view text, const Escape (&escapes)[count]) {
  std::string result;
  result.reserve(text.size() + text.size() / 8);
  for (const char c : text) {
    const auto* const found = std::find_if(std::begin(escapes), std::end(escapes),
                                           [c](const Escape& escape) { return escape.character == c; });
    if (found == std::end(escapes)) {
      result += c;
    } else {
      result += found->text;
    }
  }
  return result;
}

struct Picture {
  std::string_view level;
  const char* shape;
};

constexpr Picture kPictures[] = {
    {"serious", R"(<path d="M10 2.5 18.5 17.5H1.5ZM10 8v4M10 14.8v.1"/>)"},
    {"notice", R"(<circle cx="10" cy="10" r="8"/><path d="M10 9.2v4.6M10 6.2v.1"/>)"},
    {"good", R"(<circle cx="10" cy="10" r="8"/><path d="m6.5 10.2 2.5 2.5 4.5-5"/>)"},
};

}  // namespace

std::string HtmlExact(std::string_view text) { return Escaped(Printable(text), kHtmlEscapes); }

std::string PlainLine(std::string_view text) {
  std::string line(text);
  const auto breaks = [](char c) { return c == '\r' || c == '\n' || c == '\t'; };
  while (!line.empty() && breaks(line.back())) line.pop_back();
  std::replace_if(line.begin(), line.end(), breaks, ' ');
  return Printable(line);
}

std::string HtmlText(std::string_view text) { return Escaped(PlainLine(text), kHtmlEscapes); }

std::string HtmlLines(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    result += HtmlExact(text.substr(0, end)) + '\n';
    const std::size_t breakLength = text.substr(end, 2) == "\r\n" ? 2 : 1;
    text.remove_prefix(std::min(end + breakLength, text.size()));
  }
  return result;
}

std::string ScriptData(std::string_view json) { return Escaped(json, kScriptEscapes); }

std::string FileText(std::string_view name, std::string_view text, std::string_view kind) {
  std::string element = "<";
  element += name;
  if (!kind.empty()) element.append(" class=\"").append(kind).append("\"");
  return element.append(" dir=\"auto\">").append(HtmlText(text)).append("</").append(name).append(">");
}

std::string HtmlPage(std::string_view title, std::string_view body) {
  std::string page;
  page.reserve(kPageHead.size() + kPageMiddle.size() + kPageFoot.size() + title.size() + body.size());
  return page.append(kPageHead).append(HtmlText(title)).append(kPageMiddle).append(body).append(kPageFoot);
}

std::string HtmlBar(int height, std::string_view label, const std::vector<BarPart>& parts) {
  std::string bar = "<svg class=\"bar\" height=\"" + std::to_string(height) + "\" ";
  bar += label.empty() ? "aria-hidden=\"true\">" : "role=\"img\" aria-label=\"" + HtmlText(label) + "\">";
  for (const BarPart& part : parts) {
    char place[96];
    std::snprintf(place, sizeof place, "\" x=\"%.2f%%\" width=\"%.2f%%\" height=\"%d\"/>", part.from, part.length,
                  height);
    bar.append("<rect class=\"").append(part.kind).append(place);
  }
  return bar + "</svg>";
}

std::string HeadsHtml(const std::vector<ColumnHead>& heads, bool unseen) {
  std::string html = unseen ? "<thead class=\"unseen\"><tr>" : "<thead><tr>";
  for (const ColumnHead& head : heads)
    html.append("<th scope=\"col\" class=\"").append(head.kind).append("\">").append(head.name).append("</th>");
  return html + "</tr></thead>";
}

std::string ScrollTable(const std::string& id, const std::string& kind, const std::string& content) {
  const std::string label = " aria-labelledby=\"" + id + "\">";
  return "<div class=\"scroll\" tabindex=\"0\" role=\"group\"" + label + "<table" +
         (kind.empty() ? "" : " class=\"" + kind + "\"") + label + content + "</table></div>";
}

std::string LevelPicture(std::string_view level) {
  for (const Picture& picture : kPictures) {
    if (picture.level == level)
      return std::string(R"(<svg class="level" viewBox="0 0 20 20" aria-hidden="true">)") + picture.shape + "</svg>";
  }
  return "";
}
