// The page around title and body: the document's head with style and policy, and its foot with the script. Made from
// the files in reader/page by the build.
#pragma once

#include <string_view>

extern const std::string_view kPageHead;    // up to the title
extern const std::string_view kPageMiddle;  // from the title to the body
extern const std::string_view kPageFoot;    // from the body to the end
