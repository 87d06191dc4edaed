// Where the bundles of a folder and their information files lie, looked up without asking any framework.
#pragma once

#include <optional>
#include <string>
#include <vector>

// The folders directly inside `folder`, by name and in the system's order: hidden ones and links to folders too.
std::vector<std::string> FoldersIn(const std::string& folder);

// Where the information of a bundle is looked for, as far as there is such a file, the first being the one that
// CoreFoundation reads: in Contents, Resources, Support Files, and in the bundle itself unless it has a folder Contents
// or Resources.
std::vector<std::string> InformationFiles(const std::string& bundle, const std::string& name = "Info.plist");

// The bytes of a regular file. No value when it cannot be read, or has more than kMaxInformationSize.
std::optional<std::string> ReadInformation(const std::string& path);
constexpr std::size_t kMaxInformationSize = 8u << 20;  // a real one has a few thousand bytes
