// The fields of graphics adapters, monitors and their video modes.
#include "reader/record_fields.h"

namespace {

constexpr char kNoEdid[] = "the monitor did not say";
constexpr FieldType kText = FieldType::Text, kInteger = FieldType::Integer, kFlag = FieldType::Flag;
constexpr std::int64_t kKilohertz = 1000;

// The inventory marks a maker's three letters with a question mark.
void ReadMaker(const RecordField& field, const RecordRow& row, FieldValue& value) {
  std::string_view text = SourceText(field, row);
  if (!text.empty() && text[0] == '?') text.remove_prefix(1);
  SetText(value, text);
}

void ReadDigital(const RecordField& field, const RecordRow& row, FieldValue& value) {
  const auto input = WholeNumber(SourceText(field, row));
  value.known = input.has_value();
  value.flag = value.known && (*input & 0x80) != 0;
}

// "1920 x 1200 (16:10)": the number in front of, or behind, the "x".
std::optional<std::int64_t> Width(std::string_view text) { return WholeNumber(text.substr(0, text.find(" x "))); }

std::optional<std::int64_t> Height(std::string_view text) {
  const std::size_t cross = text.find(" x ");
  if (cross == text.npos) return std::nullopt;
  text.remove_prefix(cross + 3);
  return WholeNumber(text.substr(0, text.find(' ')));
}

void ReadWidth(const RecordField& field, const RecordRow& row, FieldValue& value) {
  SetInteger(value, Width(SourceText(field, row)));
}

void ReadHeight(const RecordField& field, const RecordRow& row, FieldValue& value) {
  SetInteger(value, Height(SourceText(field, row)));
}

void ReadAspect(const RecordField& field, const RecordRow& row, FieldValue& value) {
  const std::string_view text = SourceText(field, row);
  const std::size_t open = text.rfind('('), close = text.rfind(')');
  if (open != text.npos && close != text.npos && open < close) SetText(value, text.substr(open + 1, close - open - 1));
}

constexpr RecordField kGpuFields[] = {
    Field(kText, "name", "=", "The adapter's model", "the Mac did not say"),
    By(Field(kInteger, "memory_bytes", "ram", "Its memory; whole megabytes (2^20) in the inventory",
             "the Mac did not say"),
       ReadBytes),
};

constexpr RecordField kMonitorFields[] = {
    By(Field(kInteger, "monitor", "", "The monitor's place in this list, from 0", nullptr), ReadPlace),
    Field(kFlag, "main", "main-monitor", "Whether it is the main one", "not said of this one: as a rule another is"),
    By(Field(kText, "maker", "manuf", "The maker's three letters, such as `DEL`", kNoEdid), ReadMaker),
    Field(kText, "product", "id", "Maker and product code, such as `DELD067`", kNoEdid),
    Field(kText, "model", "model", "The model's name", kNoEdid),
    Field(kText, "serial_number", "serial", "The serial number as a text", kNoEdid),
    By(Field(kInteger, "serial_digital", "serial-digital",
             "The serial number as a number, its bytes in the order in which "
             "they stand",
             "the monitor did not say (0 in the inventory)"),
       ReadNonZero),
    By(Field(kInteger, "made_year", "manufacture-date/manufacture-year", "The year in which it was made", kNoEdid),
       ReadNonZero),
    By(Field(kInteger, "made_quarter", "manufacture-date/manufacture-quarter", "The quarter of that year",
             "the monitor did not say (0 in the inventory)"),
       ReadNonZero),
    By(Field(kInteger, "made_week", "manufacture-date/manufacture-week", "The week of that year", kNoEdid),
       ReadNonZero),
    By(Field(kInteger, "width_cm", "max-visible-image-size/width", "Width of the image",
             "the monitor did not say (0 in the inventory)"),
       ReadNonZero),
    By(Field(kInteger, "height_cm", "max-visible-image-size/height", "Height of the image",
             "the monitor did not say (0 in the inventory)"),
       ReadNonZero),
    By(Field(kInteger, "diagonal_in", "max-visible-image-size/diagonal", "Diagonal of the image",
             "the monitor did not say (0 in the inventory)"),
       ReadNonZero),
    Field(kText, "aspect_ratio", "aspect-ratio", "`4:3`, `5:4`, `16:9` or `16:10`", "another ratio, or not known"),
    By(Field(kInteger, "max_width_pixels", "max-resolution", "Width of the largest standard mode", kNoEdid), ReadWidth),
    By(Field(kInteger, "max_height_pixels", "max-resolution", "Height of the largest standard mode", kNoEdid),
       ReadHeight),
    By(Field(kFlag, "digital", "video-input", "Whether its input is digital: bit 7 of the byte", kNoEdid), ReadDigital),
    Field(FieldType::Decimal, "gamma", "gamma", "Its gamma, such as `2.2`", kNoEdid),
    Times(Field(kInteger, "h_min_hz", "h-freq/min", "Lowest horizontal frequency; kilohertz in the inventory", kNoEdid),
          kKilohertz),
    Times(
        Field(kInteger, "h_max_hz", "h-freq/max", "Highest horizontal frequency; kilohertz in the inventory", kNoEdid),
        kKilohertz),
    Field(kInteger, "v_min_hz", "v-freq/min", "Lowest vertical frequency", kNoEdid),
    Field(kInteger, "v_max_hz", "v-freq/max", "Highest vertical frequency", kNoEdid),
};

constexpr RecordField kModeFields[] = {
    By(Field(kInteger, "monitor", "", "The monitor's place in `monitors`", nullptr), ReadHolder),
    By(Field(kInteger, "width_pixels", "res", "Width of the image", kNoEdid), ReadWidth),
    By(Field(kInteger, "height_pixels", "res", "Height of the image", kNoEdid), ReadHeight),
    By(Field(kText, "aspect_ratio", "res", "The ratio that stands there in brackets, such as `16:10`", kNoEdid),
       ReadAspect),
    Field(kInteger, "refresh_hz", "freq", "How often the image is drawn", kNoEdid),
};

void ModeRows(const RecordSource& source, std::vector<RecordRow>& rows) {
  const Tag* monitors = FindTag(source.snapshot, "Video/Monitors");
  if (!monitors) return;
  for (std::size_t monitor = 0; monitor < monitors->children.size(); ++monitor) {
    const Tag* modes = FindTag(monitors->children[monitor].get(), "Video-Modes");
    if (!modes) continue;
    for (const auto& mode : modes->children)
      rows.push_back({&source, mode.get(), static_cast<std::int64_t>(rows.size()), static_cast<std::int64_t>(monitor)});
  }
}

}  // namespace

void AddMonitorTables(std::vector<RecordTable>& tables) {
  tables.push_back(
      ListTable("gpus", "Snapshot/Video/Video-devices", "Video-adapter:", "Graphics adapters", kGpuFields));
  tables.push_back(ListTable("monitors", "Snapshot/Video/Monitors", "Monitor:", "Monitors", kMonitorFields));
  tables.push_back(ListTable("modes", "Snapshot/Video/Monitors/Monitor:N/Video-Modes",
                             "v-mode:", "The monitors' standard video modes", kModeFields));
  tables.back().extra = true;
  tables.back().rows = ModeRows;
}
