// The small texts that numbers are read from, sizes, versions, uptimes and dates, and what trims and compares them.
#include <cmath>
#include <cstring>

#include "fuzz/fuzz.h"
#include "main/collect/plist_reader.h"
#include "sections/os.h"
#include "zxml/value_text.h"

void Check(const std::string& text) {
  Require(!std::isnan(ParseSizeKB(text) + ParseSizeMB(text) + SizeToDecimalGB(text, true)));
  Require(ParseSizeBytes(text) == 0 || ParseSizeGB(text) != 0.0);
  Require(DiagonalInches(ParseSizeGB(text), NumberAtStart(text)) >= 0);
  Require(FormatUptime(text).size() >= 25 && FormatUptime(text).find('-') == std::string::npos);
  Require(ReadOsRelease(text).version.size() <= text.size());
  double seconds = 0;
  std::memcpy(&seconds, text.data(), std::min(text.size(), sizeof seconds));
  Require(FormatDate(seconds, DateForm::Full).find(' ') == std::string::npos);

  const std::string first = text.substr(0, text.size() / 2), second = text.substr(text.size() / 2);
  Require(CompareNoCase(first, UpperCase(first)) == 0 && CompareNoCase(LowerCase(first), first) == 0);
  Require(CompareNoCase(first, second) == -CompareNoCase(second, first));
  Require(SanitizeKey(SanitizeKey(text)) == SanitizeKey(text) && EscapeXmlText(text).size() >= text.size());
  const std::string value = MakeTextValue(text).text;
  Require(value.find('\n') == std::string::npos && MakeTextValue(value).text == value);
}
