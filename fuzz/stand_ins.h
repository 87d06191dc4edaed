// The platform and the tools of scan_fuzz: they answer out of one text.
#pragma once

#include <string_view>

// Sets what the tools print and the platform says until the next call: eight parts, each ended by the byte 0x1E: what
// ioreg, ls, dscl, env, ps and diskutil print, a bundle's information dictionary, the computer's name. The text must
// outlive the scan.
void SetAnswers(std::string_view parts);
