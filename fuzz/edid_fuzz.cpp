// The EDID text of a display, decoded and written onto its monitor tag.
#include "fuzz/fuzz.h"
#include "sections/edid.h"
#include "sections/monitor.h"

void Check(const std::string& text) {
  const EdidInfo info = DecodeEdid(text);
  Require(info.manufacturer.size() == 3 && info.productCode.size() == 4 && info.modes.size() <= 8 + 4 * 6);
  Require(info.monitorName.size() < kEdidBlockSize && info.serialText.size() < kEdidBlockSize);
  Require(info.modes.empty() || !info.maxResolution.empty());

  TagTree tree = CreateTree(true, "Monitor");
  Attribute edid;
  edid.value = MakeTextValue(text);
  WriteMonitorEdid(RootOf(tree), edid);
  CheckText(TextOfTree(tree));
}
