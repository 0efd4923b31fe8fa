#include "project/projecteditor.h"

#include <algorithm>

#include "engine/targettype.h"
#include "project/edittexts.h"
#include "project/projectoverride.h"
#include "settings/connectionrecord.h"

namespace hollowmere {

namespace {

/// How many changes can be taken back.
constexpr std::size_t undoDepth = 200;

std::string trimmed(const std::string& text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  return first == std::string::npos ? std::string()
                                    : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

template <typename List>
bool nameIsTaken(const List& list, const std::string& name, std::size_t exceptRow) {
  for (std::size_t row = 0; row < list.size(); ++row)
    if (row != exceptRow && equalIgnoringCase(list[row].name, name)) return true;
  return false;
}

constexpr std::size_t noRow = static_cast<std::size_t>(-1);

/// "Data Source 3", or the first free number behind it.
template <typename List>
std::string freeName(const List& list, const std::string& prefix) {
  std::size_t number = list.size() + 1;
  while (nameIsTaken(list, prefix + std::to_string(number), noRow)) ++number;
  return prefix + std::to_string(number);
}

/// Stores whose rows have columns only.
bool isFlat(const std::string& dbType) {
  return dbType == dbtype::oracle || dbType == dbtype::cassandra || dbType == dbtype::hbase;
}

bool isNestedType(TTargetType type) {
  switch (type) {
    case TTargetType::DataSourceObject:
    case TTargetType::DataSourceList:
    case TTargetType::JsonObject:
    case TTargetType::JsonList:
    case TTargetType::JsonFromXml: return true;
    default: return false;
  }
}

}  // namespace

void TProjectEditor::markSaved(const std::string& fileName) {
  project_.fileName = fileName;
  project_.changed = false;
}

void TProjectEditor::beginChange() {
  undo_.push_back(state());
  if (undo_.size() > undoDepth) undo_.erase(undo_.begin());
  redo_.clear();
  project_.changed = true;
}

void TProjectEditor::restore(TState state) {
  project_.source = std::move(state.source);
  project_.target = std::move(state.target);
  project_.dataSources = std::move(state.dataSources);
  project_.dataTargets = std::move(state.dataTargets);
  project_.mapping = std::move(state.mapping);
  project_.changed = true;
  if (!nodeAt(project_.mapping, current_)) current_.clear();
}

void TProjectEditor::undo() {
  if (undo_.empty()) return;
  redo_.push_back(state());
  restore(std::move(undo_.back()));
  undo_.pop_back();
}

void TProjectEditor::redo() {
  if (redo_.empty()) return;
  undo_.push_back(state());
  restore(std::move(redo_.back()));
  redo_.pop_back();
}

std::string TProjectEditor::setField(const TProjectField& field, const std::string& text) {
  if (field.key == "vgGeneralProjectName" && trimmed(text).empty()) return edittexts::noProjectName;
  TProject changed = project_;
  try {
    overrideSetting(changed, std::string(field.key) + "=" + text);
  } catch (const TProjectError& error) {
    return error.what();
  }
  if (changed == project_) return {};
  project_ = std::move(changed);
  project_.changed = true;
  return {};
}

std::string TProjectEditor::connectionRefusal(TSide side) const {
  if (side == TSide::Source) return project_.source.dbType.empty() ? edittexts::noSourceType : "";
  return project_.target.dbType.empty() ? edittexts::noTargetType : "";
}

std::string TProjectEditor::resetQuestion(TSide side) const {
  const bool mapped = !project_.mapping.empty();
  if (side == TSide::Source) return mapped || !project_.dataSources.empty() ? edittexts::resetSources : "";
  return mapped || !project_.dataTargets.empty() ? edittexts::resetTargets : "";
}

void TProjectEditor::setSide(TSide side, TProjectSide value, bool reset) {
  beginChange();
  const bool isSource = side == TSide::Source;
  (isSource ? project_.source : project_.target) = std::move(value);
  if (reset) {
    project_.mapping.clear();
    current_.clear();
    if (isSource)
      project_.dataSources.clear();
    else
      project_.dataTargets.clear();
  }
  // A file is one source, and it is there from the start.
  if (isSource && project_.source.dbType == dbtype::jsonFile && project_.dataSources.empty() &&
      isConfigured(project_.source.connection))
    project_.dataSources.push_back({std::string(dbtype::jsonFile), project_.source.connection, 0});
}

std::string TProjectEditor::addDataSource() {
  if (project_.source.dbType.empty() || !isConfigured(project_.source.connection))
    return edittexts::sourceNotConfigured;
  if (project_.source.dbType == dbtype::jsonFile) return {};
  beginChange();
  project_.dataSources.push_back({freeName(project_.dataSources, "Data Source "), TObject(), 0});
  return {};
}

std::string TProjectEditor::renameDataSource(std::size_t row, const std::string& name) {
  const std::string given = trimmed(name);
  if (given.empty()) return edittexts::noSourceName;
  if (equalIgnoringCase(given, "parent")) return edittexts::reservedSourceName;
  if (nameIsTaken(project_.dataSources, given, row)) return edittexts::sourceNameExists;
  beginChange();
  project_.dataSources[row].name = given;
  return {};
}

void TProjectEditor::setDefinition(std::size_t row, TValue definition) {
  beginChange();
  project_.dataSources[row].definition = std::move(definition);
}

void TProjectEditor::deleteDataSource(std::size_t row) {
  if (row >= project_.dataSources.size()) return;
  beginChange();
  project_.dataSources.erase(project_.dataSources.begin() + static_cast<std::ptrdiff_t>(row));
}

bool TProjectEditor::asksToClearDataSources() const {
  return project_.source.dbType != dbtype::jsonFile && !project_.dataSources.empty();
}

void TProjectEditor::clearDataSources() {
  if (!asksToClearDataSources()) return;
  beginChange();
  project_.dataSources.clear();
}

std::string TProjectEditor::addDataTarget() {
  if (project_.target.dbType.empty() || !isConfigured(project_.target.connection))
    return edittexts::targetNotConfigured;
  beginChange();
  project_.dataTargets.push_back({freeName(project_.dataTargets, "Data Target "), "TargetObject", ""});
  return {};
}

std::string TProjectEditor::renameDataTarget(std::size_t row, const std::string& name) {
  const std::string given = trimmed(name);
  if (given.empty()) return edittexts::noTargetName;
  if (nameIsTaken(project_.dataTargets, given, row)) return edittexts::targetNameExists;
  beginChange();
  project_.dataTargets[row].name = given;
  return {};
}

std::string TProjectEditor::setTargetObject(std::size_t row, const std::string& object) {
  if (trimmed(object).empty()) return edittexts::noTargetObject;
  beginChange();
  project_.dataTargets[row].target = trimmed(object);
  return {};
}

void TProjectEditor::setSaslPwd(std::size_t row, const std::string& password) {
  beginChange();
  project_.dataTargets[row].saslPwd = password;
}

void TProjectEditor::deleteDataTarget(std::size_t row) {
  if (row >= project_.dataTargets.size()) return;
  beginChange();
  project_.dataTargets.erase(project_.dataTargets.begin() + static_cast<std::ptrdiff_t>(row));
}

void TProjectEditor::clearDataTargets() {
  if (project_.dataTargets.empty()) return;
  beginChange();
  project_.dataTargets.clear();
}

std::string TProjectEditor::addRoot() {
  if (project_.dataSources.empty()) return edittexts::noSources;
  if (project_.target.dbType == dbtype::jsonFile && !project_.mapping.empty())
    return edittexts::oneTargetFile;
  beginChange();
  TMapNode root;
  root.source = project_.dataSources.front().name;
  if (!project_.dataTargets.empty()) root.target = project_.dataTargets.front().name;
  root.targetType = targetTypeText(TTargetType::DataSourceList);
  project_.mapping.push_back(std::move(root));
  current_ = {project_.mapping.size() - 1};
  return {};
}

std::string TProjectEditor::addAttribute(const TNodePath& parent) {
  if (!nodeAt(project_.mapping, parent)) return edittexts::noNode;
  beginChange();
  std::vector<TMapNode>& children = nodeAt(project_.mapping, parent)->children;
  TMapNode attribute;
  attribute.target = "Attribute" + std::to_string(children.size() + 1);
  children.push_back(std::move(attribute));
  current_ = parent;
  current_.push_back(children.size() - 1);
  return {};
}

std::string TProjectEditor::addFields(const TNodePath& parent, const std::vector<TSampledField>& fields) {
  const TMapNode* node = nodeAt(std::as_const(project_.mapping), parent);
  if (!node) return edittexts::noNode;
  std::vector<TMapNode> added;
  for (const auto& [name, sampledType] : fields) {
    const bool there = std::any_of(node->children.begin(), node->children.end(),
                                   [&](const TMapNode& child) { return child.source == name; });
    // A database without nested values takes them as texts.
    const bool asText = isFlat(project_.target.dbType) && isNestedType(sampledType);
    const TTargetType type = asText ? TTargetType::String : sampledType;
    if (!there) added.push_back({name, name, std::string(targetTypeText(type)), {}});
  }
  if (added.empty()) return {};
  beginChange();
  std::vector<TMapNode>& children = nodeAt(project_.mapping, parent)->children;
  children.insert(children.end(), added.begin(), added.end());
  current_ = parent;
  current_.push_back(children.size() - 1);
  return {};
}

/// The attribute that a store needs for the key of its documents.
bool TProjectEditor::carriesKey(const TNodePath& path) const {
  const TMapNode* node = nodeAt(project_.mapping, path);
  if (!node || path.size() != 2) return false;
  if (project_.target.dbType == dbtype::hbase) return equalIgnoringCase(node->target, "rowkey");
  return project_.target.dbType == dbtype::couchbase && equalIgnoringCase(node->target, "id");
}

bool TProjectEditor::isRowKey(const TNodePath& path, TSide side) const {
  if (side == TSide::Target) return project_.target.dbType == dbtype::hbase && carriesKey(path);
  const TMapNode* node = nodeAt(project_.mapping, path);
  return node && path.size() > 1 && project_.source.dbType == dbtype::hbase &&
         equalIgnoringCase(node->source, "rowkey");
}

std::string TProjectEditor::deleteNode(const TNodePath& path) {
  if (!nodeAt(project_.mapping, path)) return edittexts::noNode;
  if (carriesKey(path)) return edittexts::keyField + nodeAt(project_.mapping, path)->target;
  beginChange();
  std::vector<TMapNode>& siblings = *siblingsAt(project_.mapping, path);
  siblings.erase(siblings.begin() + static_cast<std::ptrdiff_t>(path.back()));
  current_ = path;
  if (siblings.empty())
    current_.pop_back();
  else
    current_.back() = std::min(path.back(), siblings.size() - 1);
  return {};
}

void TProjectEditor::clearMapping() {
  if (project_.mapping.empty()) return;
  beginChange();
  project_.mapping.clear();
  current_.clear();
}

void TProjectEditor::shift(const TNodePath& path, std::ptrdiff_t by) {
  const std::vector<TMapNode>* siblings = siblingsAt(project_.mapping, path);
  if (!siblings || path.back() >= siblings->size()) return;
  const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(path.back()) + by;
  if (place < 0 || place >= static_cast<std::ptrdiff_t>(siblings->size())) return;
  beginChange();
  std::vector<TMapNode>& nodes = *siblingsAt(project_.mapping, path);
  std::swap(nodes[path.back()], nodes[static_cast<std::size_t>(place)]);
  current_ = path;
  current_.back() = static_cast<std::size_t>(place);
}

void TProjectEditor::moveUp(const TNodePath& path) { shift(path, -1); }

void TProjectEditor::moveDown(const TNodePath& path) { shift(path, 1); }

std::string TProjectEditor::moveNode(const TNodePath& from, const TNodePath& to) {
  const TMapNode* node = nodeAt(std::as_const(project_.mapping), from);
  const std::vector<TMapNode>* target = siblingsAt(project_.mapping, to);
  if (!node || !target || to.back() > target->size()) return edittexts::noNode;
  if (isAbove(from, to) && from.size() < to.size()) return "A node cannot be moved into itself.";
  if ((from.size() == 1) != (to.size() == 1))
    return "A target cannot become an attribute, nor an attribute a target.";
  beginChange();
  TMapNode moved = *node;
  // Put in first: taking out would change the paths.
  std::vector<TMapNode>& list = *siblingsAt(project_.mapping, to);
  list.insert(list.begin() + static_cast<std::ptrdiff_t>(to.back()), std::move(moved));
  TNodePath old = from;
  const std::size_t level = to.size() - 1;
  if (old.size() > level && std::equal(to.begin(), to.end() - 1, old.begin()) && old[level] >= to[level])
    ++old[level];
  std::vector<TMapNode>& source = *siblingsAt(project_.mapping, old);
  source.erase(source.begin() + static_cast<std::ptrdiff_t>(old.back()));
  current_ = to;
  const std::size_t oldLevel = old.size() - 1;
  if (current_.size() > oldLevel && std::equal(old.begin(), old.end() - 1, current_.begin()) &&
      current_[oldLevel] > old[oldLevel])
    --current_[oldLevel];
  return {};
}

std::string TProjectEditor::setTarget(const TNodePath& path, const std::string& target) {
  const TMapNode* node = nodeAt(std::as_const(project_.mapping), path);
  if (!node) return edittexts::noNode;
  const std::string given = trimmed(target);
  if (node->target == given) return {};
  const bool fromTable =
      project_.target.dbType == dbtype::oracle || project_.target.dbType == dbtype::cassandra;
  if (fromTable && path.size() > 1 && !node->target.empty()) return edittexts::columnName;
  beginChange();
  nodeAt(project_.mapping, path)->target = given;
  current_ = path;
  return {};
}

std::string TProjectEditor::setSource(const TNodePath& path, const std::string& source) {
  const TMapNode* node = nodeAt(std::as_const(project_.mapping), path);
  if (!node) return edittexts::noNode;
  const std::string given = trimmed(source);
  if (node->source == given) return {};
  if (path.size() == 1 && given.empty()) return edittexts::noRootSource;
  if (path.size() == 1 && given.find(',') != std::string::npos) return edittexts::oneRootSource;
  beginChange();
  nodeAt(project_.mapping, path)->source = given;
  current_ = path;
  return {};
}

std::string TProjectEditor::setType(const TNodePath& path, const std::string& type) {
  const TMapNode* node = nodeAt(std::as_const(project_.mapping), path);
  if (!node) return edittexts::noNode;
  if (node->targetType == type) return {};
  if (path.size() == 1) return edittexts::rootType;
  const auto kind = targetTypeFromText(type);
  if (!kind) return "Unknown target type: " + type;
  if (isFlat(project_.target.dbType) && isNestedType(*kind)) return edittexts::noNested + type;
  beginChange();
  nodeAt(project_.mapping, path)->targetType = type;
  current_ = path;
  return {};
}

}  // namespace hollowmere
