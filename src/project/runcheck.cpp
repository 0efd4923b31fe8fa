#include "project/runcheck.h"

#include <algorithm>
#include <optional>
#include <unordered_map>

#include "engine/assembly.h"
#include "engine/targettype.h"
#include "project/runtexts.h"
#include "settings/connectionrecord.h"

namespace hollowmere {

namespace {

bool sourceExists(const TProject& project, const std::string& name) {
  return std::any_of(project.dataSources.begin(), project.dataSources.end(),
                     [&](const TDataSource& source) { return source.name == name; });
}

bool targetExists(const TProject& project, const std::string& name) {
  return std::any_of(project.dataTargets.begin(), project.dataTargets.end(),
                     [&](const TDataTarget& target) { return target.name == name; });
}

/// Whether a child of the root mapping writes the field.
bool isMapped(const TMapNode& root, const std::string& field) {
  return std::any_of(root.children.begin(), root.children.end(), [&](const TMapNode& child) {
    return equalIgnoringCase(makeNodePlan({child.target, child.source, {}, {}}).target, field);
  });
}

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

/// Walks the tree and gathers what is wrong, in the order in which a start looks.
class TFaultFinder {
 public:
  TFaultFinder(const TProject& project, const TStoreConnector* target) : project_(project), target_(target) {}

  std::vector<TMappingFault> faults;

  void checkRoot(std::size_t place) {
    const TMapNode& root = project_.mapping[place];
    const TNodePath path{place};
    if (!targetExists(project_, root.target)) add(path, runtexts::noTarget + root.target);
    checkType(root, path);
    if (target_) checkRequired(root, path);
    if (!sourceExists(project_, root.source)) add(path, missingSource(root.source));
    checkChildren(root, path);
  }

 private:
  static std::string missingSource(const std::string& name) {
    return "Data source " + quoted(name) + " is not found or not defined.";
  }

  void add(const TNodePath& path, std::string message) { faults.push_back({path, std::move(message)}); }

  void checkRequired(const TMapNode& root, const TNodePath& path) {
    const auto& required = target_->traits().requiredField;
    if (required && !isMapped(root, required->name)) add(path, required->message + root.target);
  }

  /// The plan of a node, or nothing when its type is not known.
  std::optional<TNodePlan> checkType(const TMapNode& node, const TNodePath& path) {
    try {
      return makeNodePlan(node);
    } catch (const TStoreError& error) {
      add(path, error.what());
      return std::nullopt;
    }
  }

  /// Two children of one node that write the same attribute: one of them would be lost.
  void checkChildren(const TMapNode& node, const TNodePath& path) {
    std::unordered_map<std::string, std::string> sourceOf;
    std::vector<std::optional<TNodePlan>> plans(node.children.size());
    const std::string source = quoted(node.source);
    TNodePath at = path;
    at.push_back(0);
    for (; at.back() < node.children.size(); ++at.back()) {
      const auto& plan = plans[at.back()] = checkType(node.children[at.back()], at);
      if (!plan) continue;
      // However it is written, the identifier becomes "_id".
      const auto [first, isNew] = sourceOf.emplace(plan->isId ? "_id" : plan->target, plan->source);
      if (!isNew)
        add(at, "The source attributes " + quoted(first->second) + " and " + quoted(plan->source) + " of " +
                    source + " are both mapped to the target attribute " + quoted(plan->target) + ".");
    }
    for (at.back() = 0; at.back() < node.children.size(); ++at.back())
      if (plans[at.back()]) checkChild(node.children[at.back()], *plans[at.back()], source, at);
  }

  void checkChild(const TMapNode& child, const TNodePlan& plan, const std::string& source,
                  const TNodePath& path) {
    if (plan.target.empty())
      add(path, "The source attribute " + quoted(plan.source) + " of " + source +
                    " is mapped to no target attribute.");
    for (const std::string& name : plan.dataSources)
      if (!sourceExists(project_, name)) add(path, missingSource(name));
    if (!child.children.empty()) checkChildren(child, path);
  }

  const TProject& project_;
  const TStoreConnector* target_;
};

/// What the source asks of the data sources of root mappings, once each.
void checkRootSources(const TProject& project, const TStoreConnector& source,
                      std::vector<TMappingFault>& faults) {
  for (const TDataSource& data : project.dataSources) {
    const auto root = std::find_if(project.mapping.begin(), project.mapping.end(),
                                   [&](const TMapNode& node) { return node.source == data.name; });
    if (root == project.mapping.end()) continue;
    if (std::string fault = source.checkRootSource(data, static_cast<int>(project.degree)); !fault.empty())
      faults.push_back({{static_cast<std::size_t>(root - project.mapping.begin())}, std::move(fault)});
  }
}

std::string checkTypes(const TProject& project, const TStoreConnector* source,
                       const TStoreConnector* target) {
  if (project.source.dbType.empty()) return runtexts::noSourceType;
  if (project.target.dbType.empty()) return runtexts::noTargetType;
  const bool sourceIsFile = source && source->traits().connectionIsText;
  const bool targetIsFile = target && target->traits().connectionIsText;
  if (sourceIsFile && targetIsFile) return runtexts::bothFiles + project.source.dbType + "\".";
  if (project.degree > 1) {
    if (source && !source->traits().parallel) return runtexts::noParallel + project.source.dbType + "\".";
    if (target && !target->traits().parallel) return runtexts::noParallel + project.target.dbType + "\".";
  }
  if (!source) return runtexts::sourceUnsupported;
  if (!target) return runtexts::targetUnsupported;
  if (!isConfigured(project.source.connection)) return runtexts::noSourceConnection;
  if (!isConfigured(project.target.connection)) return runtexts::noTargetConnection;
  return {};
}

/// What the schema of a target demands and no child of its mapping writes. Rows of a mapping without children
/// go as they are.
std::string checkRequiredFields(const TProject& project, const TStoreConnector& store,
                                const TStoreOptions& options) {
  for (const TMapNode& root : project.mapping) {
    const auto target = std::find_if(project.dataTargets.begin(), project.dataTargets.end(),
                                     [&](const TDataTarget& each) { return each.name == root.target; });
    if (root.children.empty() || target == project.dataTargets.end()) continue;
    for (const std::string& field : store.requiredFields(options, *target))
      if (!isMapped(root, field)) return runtexts::notMapped + field;
  }
  return {};
}

/// The store's own words: our fixed text about it stands before them already.
std::string storeMessage(const TStoreError& error) {
  return error.detail().empty() || error.text().ends_with(':') ? error.what() : error.detail();
}

}  // namespace

TStoreOptions sourceOptions(const TProject& project, std::size_t bufferBytes) {
  TStoreOptions options;
  options.connection = project.source.connection;
  options.fetchLimit = project.fetchLimit;
  options.bulkSize = project.bulkInsert;
  options.bufferBytes = bufferBytes;
  options.ignoreNulls = project.ignoreNulls;
  return options;
}

TStoreOptions targetOptions(const TProject& project, std::size_t bufferBytes) {
  TStoreOptions options = sourceOptions(project, bufferBytes);
  options.connection = project.target.connection;
  return options;
}

std::string checkProject(const TProject& project, const TStoreRegistry& stores, std::size_t bufferBytes,
                         const TStopFlag* stop,
                         const std::function<void(const std::function<void()>&)>& background) {
  const TStoreConnector* source = stores.find(project.source.dbType);
  const TStoreConnector* target = stores.find(project.target.dbType);
  if (std::string fault = checkTypes(project, source, target); !fault.empty()) return fault;
  const char* side = runtexts::connectSource;
  TStoreOptions options = sourceOptions(project, bufferBytes);
  options.stop = stop;
  std::string unmapped;
  try {
    background([&] {
      source->checkSource(options);
      side = runtexts::connectTarget;
      options.connection = project.target.connection;
      target->checkTarget(options);
      unmapped = checkRequiredFields(project, *target, options);
    });
  } catch (const TStoreError& error) {
    return side + storeMessage(error);
  }
  if (project.dataSources.empty()) return runtexts::noSources;
  if (project.dataTargets.empty()) return runtexts::noTargets;
  if (project.mapping.empty()) return runtexts::noMapping;
  const std::string fault = checkMapping(project, *source, *target);
  return fault.empty() ? unmapped : fault;
}

std::vector<TMappingFault> mappingFaults(const TProject& project, const TStoreConnector* source,
                                         const TStoreConnector* target) {
  TFaultFinder finder(project, target);
  for (std::size_t place = 0; place < project.mapping.size(); ++place) finder.checkRoot(place);
  if (source) checkRootSources(project, *source, finder.faults);
  return std::move(finder.faults);
}

std::string checkMapping(const TProject& project, const TStoreConnector& source,
                         const TStoreConnector& target) {
  const auto faults = mappingFaults(project, &source, &target);
  return faults.empty() ? std::string() : faults.front().message;
}

}  // namespace hollowmere
