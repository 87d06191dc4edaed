// "User-accounts": the folders below /Users that the directory service knows as users.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "main/collect/command_runner.h"
#include "sections/inventory_tags.h"
#include "sections/sections.h"
#include "zxml/value_text.h"

namespace {

constexpr std::size_t kChunk = 100;  // bytes read at a time
constexpr char kListCommand[] = "ls -1 /Users/";
constexpr int kQuickRuns = 5;   // of a listing that stays empty
constexpr unsigned kPause = 1;  // seconds between further runs

bool HasUsersFolder() {
  struct stat status;
  return stat("/Users", &status) == 0 && S_ISDIR(status.st_mode);
}

// Asks until there is an answer: where there is a /Users, without limit, elsewhere (no Mac) a few times.
std::string ListUsers() {
  const bool persistent = HasUsersFolder();
  for (int run = 1;; ++run) {
    std::string listing = RunCommand(kListCommand, kChunk);
    if (!listing.empty()) return listing;
    if (run < kQuickRuns) continue;
    if (!persistent) return listing;
    sleep(kPause);
  }
}

// A folder may be called anything; between double quotes the shell would act on these characters.
bool IsActive(char c) { return c == '\\' || c == '"' || c == '$' || c == '`'; }

bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

// In some multibyte locales a byte behind another of 128 or more belongs to one character with it, so that a backslash
// there escapes nothing.
bool CanBeEscaped(std::string_view name) {
  return std::all_of(name.begin(), name.end(), IsAscii) || std::none_of(name.begin(), name.end(), IsActive);
}

std::string EscapeForDoubleQuotes(std::string_view name) {
  std::string escaped;
  for (const char c : name) {
    if (IsActive(c)) escaped += '\\';
    escaped += c;
  }
  return escaped;
}

// Empty for a name that cannot be handed to a shell.
std::string ReadRecord(std::string_view name) {
  if (!CanBeEscaped(name)) return std::string();
  return RunCommand("dscl . -read \"/users/" + EscapeForDoubleQuotes(name) + "\"", kChunk);
}

// Sets `value` to what stands between `key` and the next `end`, trimmed; false when the key is missing. An end that is
// missing or lies before the start counts as the record's end.
bool FieldOf(std::string_view record, std::string_view key, std::string_view end, std::string& value) {
  const std::size_t found = record.find(key);
  if (found == std::string_view::npos) return false;
  const std::size_t start = found + key.size();
  std::size_t stop = end == "\n" ? record.find(end, start) : record.find(end);
  if (stop == std::string_view::npos || stop < start) stop = record.size();
  value = Trimmed(record.substr(start, stop - start), "\n\t ");
  return true;
}

struct RecordField {
  const char* key;
  const char* end;
  const char* attribute;
};

constexpr RecordField kFields[] = {
    {"RealName:", "RecordName:", "fullname"},
    {"PrimaryGroupID:", "\n", "group"},
    {"UniqueID:", "\n", "id"},
    {"UserShell:", "\n", "shell"},
};

void WriteAccount(Tag& accounts, std::string_view record, std::string_view folder) {
  std::string value;
  if (!FieldOf(record, "RecordName:", "RecordType:", value)) return;
  Tag* account = SetChildValue(accounts, SafeTagName("usr-acc:" + value), MakeTextValue(value));
  for (const RecordField& field : kFields)
    if (FieldOf(record, field.key, field.end, value)) SetText(*account, field.attribute, value);
  SetText(*account, "hdir", "/users/" + std::string(folder));
  SetFlag(*account, "is-system-user", false);
}

void WriteFolder(TagTree& inventoryTree, std::string_view folder) {
  const std::string output = ReadRecord(folder);
  Tag* accounts = GetOrAddChild(RootOf(inventoryTree), "User-accounts");
  // A record without a home folder is no user's; the fields are looked for behind that line.
  const std::size_t home = output.find("\nNFSHomeDirectory:");
  if (home != std::string::npos) WriteAccount(*accounts, std::string_view(output).substr(home), folder);
}

}  // namespace

void BuildUserAccountsSection(TagTree& inventoryTree) {
  const std::string listing = ListUsers();
  std::size_t start = 0;
  for (std::size_t end = listing.find('\n'); end != std::string::npos; end = listing.find('\n', start)) {
    WriteFolder(inventoryTree, UpToZero(std::string_view(listing).substr(start, end - start)));
    start = end + 1;
  }
}
