// Walks down every child whose name the rest of the path begins with: no tag is visited twice.
#include "reader/tree_path.h"

namespace {

void Collect(const Tag& tag, std::string_view path, std::vector<PathMatch>& matches) {
  bool isChild = false;
  for (const auto& child : tag.children) {
    const std::string_view name = child->name;
    if (path == name) {
      matches.push_back({child.get(), nullptr});
      isChild = true;
    } else if (path.size() > name.size() && path[name.size()] == '/' && path.substr(0, name.size()) == name) {
      Collect(*child, path.substr(name.size() + 1), matches);
    }
  }
  // What a complex attribute announces is the child of its name.
  for (const auto& attribute : tag.attributes)
    if (path == attribute->name && !(isChild && FindProperty(attribute->properties, "complex")))
      matches.push_back({&tag, attribute.get()});
}

}  // namespace

std::vector<PathMatch> FindByPath(const Tag& container, std::string_view path) {
  if (!path.empty() && path.front() == '/') path.remove_prefix(1);
  if (!path.empty() && path.back() == '/') path.remove_suffix(1);
  std::vector<PathMatch> matches;
  Collect(container, path, matches);
  return matches;
}
