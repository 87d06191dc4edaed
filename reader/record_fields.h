// How the fields of a record are declared, and the ways of reading that several of them share.
#pragma once

#include <optional>

#include "reader/record.h"

// "Snapshot/OS/os:1/name", "size~base-value", "=", "~kind"
constexpr FieldSource MakeFieldSource(std::string_view text) {
  constexpr std::string_view kNone;
  FieldSource source;
  const std::size_t tilde = text.find('~');
  if (tilde != kNone.npos) source.property = text.substr(tilde + 1);
  text = text.substr(0, tilde);
  const std::size_t slash = text.rfind('/');
  source.path = slash == kNone.npos ? kNone : text.substr(0, slash);
  source.attribute = slash == kNone.npos ? text : text.substr(slash + 1);
  source.absolute = text.substr(0, 9) == "Snapshot/" || text.substr(0, 10) == "AssetInfo/";
  return source;
}

constexpr RecordField Field(FieldType type, std::string_view name, std::string_view source, const char* meaning,
                            const char* missing) {
  return {name, type, MakeFieldSource(source), {}, meaning, missing};
}

constexpr RecordField Or(RecordField field, std::string_view otherwise) {
  field.otherwise = MakeFieldSource(otherwise);
  return field;
}

constexpr RecordField Times(RecordField field, std::int64_t times) {
  field.times = times;
  return field;
}

constexpr RecordField By(RecordField field, RecordField::Read read) {
  field.read = read;
  return field;
}

template <std::size_t N>
constexpr RecordField Coded(RecordField field, const FieldCode (&codes)[N]) {
  field.codes = codes;
  field.codeCount = N;
  return field;
}

constexpr std::int64_t kKibibyte = 1024, kMebibyte = kKibibyte * kKibibyte;

// The tables of a subject, in the order of the record.
void AddMacTables(std::vector<RecordTable>& tables);
void AddDeviceTables(std::vector<RecordTable>& tables);
void AddStorageTables(std::vector<RecordTable>& tables);
void AddMonitorTables(std::vector<RecordTable>& tables);
void AddSoftwareTables(std::vector<RecordTable>& tables);

template <std::size_t N>
RecordTable ListTable(std::string_view name, std::string_view path, std::string_view base, const char* meaning,
                      const RecordField (&fields)[N]) {
  return {name, "", name, TableShape::List, false, path, base, meaning, fields, N};
}

// The tag at a path below `tag`, null when there is none or `tag` is null.
const Tag* FindTag(const Tag* tag, std::string_view path);
// The text at the field's source, or at its other one; without line breaks at its end, empty when there is none.
std::string_view SourceText(const RecordField& field, const RecordRow& row);
std::string_view SourceText(const FieldSource& source, const RecordRow& row);
// A whole number, perhaps with a sign; none for anything else and for one that 64 bits do not hold.
std::optional<std::int64_t> WholeNumber(std::string_view text);
// A finite number that is the whole text.
std::optional<double> RealNumber(std::string_view text);

void SetText(FieldValue& value, std::string_view text);
void SetInteger(FieldValue& value, std::optional<std::int64_t> number);

// Ways to read.
void ReadPlace(const RecordField& field, const RecordRow& row, FieldValue& value);   // the row's place
void ReadHolder(const RecordField& field, const RecordRow& row, FieldValue& value);  // the place of its holder
void ReadBytes(const RecordField& field, const RecordRow& row, FieldValue& value);   // a quantity of storage
void ReadPresent(const RecordField& field, const RecordRow& row,
                 FieldValue& value);  // true where there is a text, else false
void ReadTrueOrNull(const RecordField& field, const RecordRow& row, FieldValue& value);  // true where there is a text
void ReadNonZero(const RecordField& field, const RecordRow& row, FieldValue& value);     // 0 says that it is not known
