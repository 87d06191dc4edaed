// The fields of users, software, libraries, power profiles, processes and environment variables.
#include "reader/record_fields.h"

namespace {

constexpr char kNotSaid[] = "the Mac did not say";
constexpr FieldType kText = FieldType::Text, kInteger = FieldType::Integer, kFlag = FieldType::Flag;

// The attribute stands there for a 64-bit application, and for one of which nothing is known, marked so.
void ReadIs64Bit(const RecordField& field, const RecordRow& row, FieldValue& value) {
  FieldSource type = field.source;
  type.property = "type";
  if (SourceText(type, row) == "unknown") return;
  value.known = true;
  value.flag = SourceText(field, row) == "1";
}

void ReadArch(const RecordField& field, const RecordRow& row, FieldValue& value) {
  constexpr std::string_view kPrefix = "arch_";
  std::string_view text = SourceText(field, row);
  if (text.substr(0, kPrefix.size()) == kPrefix) text.remove_prefix(kPrefix.size());
  SetText(value, text);
}

constexpr RecordField kUserFields[] = {
    Field(kText, "name", "=", "The short name; several, separated by blanks, where the directory has several",
          kNotSaid),
    Field(kText, "full_name", "fullname", "The full name", kNotSaid),
    Field(kInteger, "user_id", "id", "The user's number", kNotSaid),
    Field(kInteger, "group_id", "group", "The primary group's number; may be negative", kNotSaid),
    Field(kText, "shell", "shell", "The shell", kNotSaid),
    Field(kText, "home", "hdir", "The home folder; always below `/users` in small letters", kNotSaid),
};

constexpr RecordField kSoftwareFields[] = {
    Field(kText, "name", "=", "The application's name", "it has none"),
    Field(kText, "version", "version", "Its version", "it has none"),
    Field(kText, "path", "location", "Where it is", kNotSaid),
    Field(FieldType::Day, "modified", "inst-date",
          "The day on which it was last changed, as a rule that of its "
          "installation or update",
          kNotSaid),
    Field(kFlag, "app_store", "app-store", "Whether it is from the App Store", kNotSaid),
    By(Field(kText, "arch", "runtime-environment",
             "What it is built for, without the `arch_` in front: `x86`, `ppc`, `universal`, ...", kNotSaid),
       ReadArch),
    By(Field(kFlag, "is_64bit", "64bit-app", "Whether it has 64-bit code; false where the attribute is missing",
             "not known: the property `type` says `unknown`"),
       ReadIs64Bit),
};

constexpr RecordField kInfoFields[] = {
    By(Field(kInteger, "software", "", "The application's place in `software`, from 0", nullptr), ReadHolder),
    Field(kText, "info", "info", "What the application says of itself", nullptr),
};

// The applications that say something.
void InfoRows(const RecordSource& source, std::vector<RecordRow>& rows) {
  for (RecordRow& application : RowsOf(*FindRecordTable("software"), source)) {
    application.holder = application.place;
    if (SourceText(kInfoFields[1], application).empty()) continue;
    application.place = static_cast<std::int64_t>(rows.size());
    rows.push_back(application);
  }
}

constexpr RecordField kLibraryFields[] = {
    Field(kText, "name", "=", "The plug-in's name", kNotSaid),
    Field(kText, "version", "version", "Its version", "it has none"),
    Field(kText, "path", "path", "Where it is", kNotSaid),
    Field(kText, "kind", "group", "What kind it is: `InternetPlug-Ins`", kNotSaid),
    Field(kText, "description", "descr", "What it says of itself", "it says nothing"),
};

constexpr char kNoSetting[] = "this Mac has no such setting";

constexpr RecordField kPowerFields[] = {
    Field(kText, "name", "=", "`AC Power`, `Battery_Power`, `UPS_Power`", kNotSaid),
    Field(kInteger, "system_sleep_minutes", "system-sleep-timer", "When the system goes to sleep; 0 for never",
          kNoSetting),
    Field(kInteger, "disk_sleep_minutes", "disk-sleep-timer", "When disks go to sleep; 0 for never", kNoSetting),
    Field(kInteger, "display_sleep_minutes", "display-sleep-timer", "When displays go to sleep; 0 for never",
          kNoSetting),
    Field(kFlag, "sleep_on_power_button", "sleep-on-power-button", "Whether the power button sends it to sleep",
          kNoSetting),
    Field(kFlag, "restart_on_power_loss", "auto-restart-on-power-loss", "Whether it starts again after a power cut",
          kNoSetting),
    Field(kFlag, "wake_on_lan", "wake-on-lan", "Whether the network wakes it", kNoSetting),
    Field(kFlag, "wake_on_ac_change", "wake-on-ac-change", "Whether plugging in wakes it", kNoSetting),
    Field(kFlag, "wake_on_clamshell_open", "wake-on-clamshell-open", "Whether opening the lid wakes it", kNoSetting),
    Field(kFlag, "reduce_brightness", "reduce-brightness", "Whether the display is dimmed in this profile", kNoSetting),
    Field(kFlag, "display_sleep_uses_dim", "display-sleep-uses-dim", "Whether the display is dimmed before it sleeps",
          kNoSetting),
};

constexpr RecordField kProcessFields[] = {
    Field(kInteger, "pid", "pid", "The process's number", kNotSaid),
    Field(kInteger, "parent_pid", "ppid", "Its parent's number", kNotSaid),
    Field(kText, "name", "=", "Its name, 16 characters at most", kNotSaid),
    Field(kText, "user_name", "user", "Whose it is", kNotSaid),
    Field(kText, "command", "cmd-line", "Its command line", kNotSaid),
};

constexpr RecordField kEnvironmentFields[] = {
    Field(kText, "name", "=", "The variable's name", kNotSaid),
    Field(kText, "value", "value", "Its value in the environment of the scan", "it is empty"),
};

template <std::size_t N>
RecordTable ExtraTable(std::string_view name, std::string_view path, std::string_view base, const char* meaning,
                       const RecordField (&fields)[N]) {
  RecordTable table = ListTable(name, path, base, meaning, fields);
  table.extra = true;
  return table;
}

}  // namespace

void AddSoftwareTables(std::vector<RecordTable>& tables) {
  tables.push_back(ListTable("users", "Snapshot/User-accounts", "usr-acc:", "User accounts", kUserFields));
  tables.push_back(ListTable("software", "Snapshot/Software", "Soft:", "Applications", kSoftwareFields));
  tables.push_back(ListTable("libraries", "Snapshot/Libraries", "library:", "Internet plug-ins", kLibraryFields));
  tables.push_back(ListTable("power_profiles", "Snapshot/System/PowerManagement",
                             "Profile:", "Settings for saving energy, one row for each kind of supply", kPowerFields));
  tables.push_back(ExtraTable("processes", "Snapshot/Processes", "process:", "Running processes", kProcessFields));
  tables.push_back(ExtraTable("software_info", "Snapshot/Software",
                              "Soft:", "What applications say of themselves; one row for each that says something",
                              kInfoFields));
  tables.back().rows = InfoRows;
  tables.push_back(ExtraTable("environment", "Snapshot/Environment",
                              "env-var:", "Variables of the environment of the scan", kEnvironmentFields));
}
