// The report's last part: the file itself, with nothing of it left out.
#pragma once

#include <string>

#include "reader/document.h"

// Every section's tree as a foldable tree, or its raw text; then the container's records and all faults.
std::string FileHtml(const Document& document);
