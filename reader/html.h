// Texts of a file made fit for their place in a page. No text of a file ever becomes an address, a class or a style.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// One line in UTF-8: line breaks and tabs become blanks, other control characters "\x1B".
std::string PlainLine(std::string_view text);
// PlainLine for the content of an element and for an attribute's value in double quotes.
std::string HtmlText(std::string_view text);
// The same with line breaks and tabs in sight, too: "\r", "\x0A".
std::string HtmlExact(std::string_view text);
// For <pre>: lines stay lines, whichever way they end.
std::string HtmlLines(std::string_view text);

// A JSON document for a <script> element: nothing in it can end the element or begin a comment.
std::string ScriptData(std::string_view json);

// <name class="kind" dir="auto">text</name>, for a text of a file. No class when `kind` is empty.
std::string FileText(std::string_view name, std::string_view text, std::string_view kind = "");

// The whole page; `title` is a text, `body` is HTML.
std::string HtmlPage(std::string_view title, std::string_view body);

// One part of a bar, in percent of the bar's room. Kinds are those of the style: "used", "free", "low", "blank".
struct BarPart {
  std::string_view kind;
  double from = 0;
  double length = 0;
};

// A bar as a drawing of its own, `height` pixels high and as wide as there is room. `label` says what it shows; without
// one the drawing is left to the text beside it.
std::string HtmlBar(int height, std::string_view label, const std::vector<BarPart>& parts);

// The head of a table's column; the kind is one of the style's: "num", "short", "long".
struct ColumnHead {
  std::string name;
  std::string_view kind;
};

// <thead> with one row. `unseen` leaves it to those who hear the page.
std::string HeadsHtml(const std::vector<ColumnHead>& heads, bool unseen = false);
// A table named by the heading of that id, which scrolls where it is wider than the window; `content` is HTML. No class
// when `kind` is empty.
std::string ScrollTable(const std::string& id, const std::string& kind, const std::string& content);

// How much a thing matters, as a small picture: "serious", "notice" or "good".
std::string LevelPicture(std::string_view level);
