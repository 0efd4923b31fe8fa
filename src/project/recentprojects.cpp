#include "project/recentprojects.h"

#include <QString>
#include <algorithm>
#include <sstream>

namespace hollowmere {

namespace {

constexpr std::uint64_t listLimit = 16U * 1024 * 1024;

bool sameFile(const std::string& a, const std::string& b) {
  return QString::fromStdString(a).compare(QString::fromStdString(b), Qt::CaseInsensitive) == 0;
}

}  // namespace

std::vector<std::string> TRecentProjects::existing() const {
  std::vector<std::string> names;
  if (!fileExists(path_)) return names;
  std::istringstream lines(readWholeFile(path_, listLimit));
  for (std::string line; std::getline(lines, line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (fileExists(line)) names.push_back(line);
  }
  return names;
}

void TRecentProjects::add(const std::string& projectFile) const {
  // A name with a line break would come back as two other names.
  if (projectFile.find('\n') != std::string::npos) return;
  std::vector<std::string> names = existing();
  std::erase_if(names, [&](const std::string& name) { return sameFile(name, projectFile); });
  names.insert(names.begin(), projectFile);
  std::string text;
  for (const std::string& name : names) text += name + "\n";
  writeWholeFile(files_, path_, text);
}

std::vector<std::string> TRecentProjects::menu() const {
  std::vector<std::string> names = existing();
  names.resize(std::min(names.size(), menuEntries));
  return names;
}

}  // namespace hollowmere
