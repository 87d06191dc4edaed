// The commands of quillinv, and what those that work on whole files give for one file that was read. show, csv and diff
// have headers of their own.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "reader/command.h"
#include "reader/document.h"

// Each is defined in the file of its name.
extern const Command kListCommand;
extern const Command kShowCommand;
extern const Command kJsonCommand;
extern const Command kRecordsCommand;
extern const Command kTableCommand;
extern const Command kSchemaCommand;
extern const Command kCsvCommand;
extern const Command kFindCommand;
extern const Command kDiffCommand;
extern const Command kExtractCommand;
extern const Command kCheckCommand;
extern const Command kReportCommand;
extern const Command kFleetCommand;
extern const Command kCompletionCommand;

// list: the index as a table, below a row that names its columns.
std::string ListText(const Document& document, bool header = true);

// json: one document, on one line or indented; ends with a line feed. docs/json.md describes its shape, which stays as
// it is. Bytes that are not UTF-8 become U+FFFD.
std::string DocumentJson(const Document& document, bool oneLine);

// extract: the section that is taken when none is asked for, the raw data if there is some, otherwise the first.
std::size_t DefaultSection(const Document& document);
// The text of a section, owned by the document. False, and plain words in `trouble`, when there is no such section or
// it is not whole.
bool ExtractText(const Document& document, std::size_t section, std::string_view& text, std::string& trouble);
// Writes `text` into the file at `path`, "" or "-" for standard output. False, and plain words in `trouble`, when that
// fails; an INV file is never written over.
bool WriteExtract(std::string_view text, const std::string& path, std::string& trouble);

// check: the faults that reading found, and what container and trees say against each other. Empty for a sound file.
Faults CheckDocument(const Document& document);
