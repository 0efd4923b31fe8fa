#include "project/runcheck.h"

#include <algorithm>

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

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

bool writeSameAttribute(const TNodePlan& a, const TNodePlan& b) {
  // However it is written, the identifier becomes "_id".
  return a.target == b.target || (a.isId && b.isId);
}

/// Two children of one node that write the same attribute: one of them would be lost.
std::string checkTargetsApart(const TNodePlan& node) {
  for (auto second = node.children.begin(); second != node.children.end(); ++second) {
    const auto first = std::find_if(node.children.begin(), second, [&](const TNodePlan& other) {
      return writeSameAttribute(other, *second);
    });
    if (first != second)
      return "The source attributes " + quoted(first->source) + " and " + quoted(second->source) + " of " +
             quoted(node.source) + " are both mapped to the target attribute " + quoted(second->target) + ".";
  }
  return {};
}

std::string checkNode(const TProject& project, const TNodePlan& node) {
  if (std::string fault = checkTargetsApart(node); !fault.empty()) return fault;
  for (const TNodePlan& child : node.children) {
    if (child.target.empty())
      return "The source attribute " + quoted(child.source) + " of " + quoted(node.source) +
             " is mapped to no target attribute.";
    for (const std::string& name : child.dataSources)
      if (!sourceExists(project, name))
        return "Data source " + quoted(name) + " is not found or not defined.";
    if (std::string fault = checkNode(project, child); !fault.empty()) return fault;
  }
  return {};
}

bool maps(const TNodePlan& node, const std::string& field) {
  return std::any_of(node.children.begin(), node.children.end(),
                     [&](const TNodePlan& child) { return equalIgnoringCase(child.target, field); });
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
  try {
    background([&] {
      TStoreOptions options = sourceOptions(project, bufferBytes);
      options.stop = stop;
      source->checkSource(options);
      side = runtexts::connectTarget;
      options.connection = project.target.connection;
      target->checkTarget(options);
    });
  } catch (const TStoreError& error) {
    return side + storeMessage(error);
  }
  if (project.dataSources.empty()) return runtexts::noSources;
  if (project.dataTargets.empty()) return runtexts::noTargets;
  if (project.mapping.empty()) return runtexts::noMapping;
  return checkMapping(project, *source, *target);
}

std::string checkMapping(const TProject& project, const TStoreConnector& source,
                         const TStoreConnector& target) {
  for (const TMapNode& root : project.mapping) {
    if (!targetExists(project, root.target)) return runtexts::noTarget + root.target;
    TNodePlan plan;
    try {
      plan = makePlan(root);
    } catch (const TStoreError& error) {
      return error.what();
    }
    if (const auto& required = target.traits().requiredField; required && !maps(plan, required->name))
      return required->message + root.target;
    if (!sourceExists(project, root.source))
      return "Data source " + quoted(root.source) + " is not found or not defined.";
    if (std::string fault = checkNode(project, plan); !fault.empty()) return fault;
  }
  for (const TDataSource& data : project.dataSources) {
    const bool isRoot = std::any_of(project.mapping.begin(), project.mapping.end(),
                                    [&](const TMapNode& root) { return root.source == data.name; });
    if (!isRoot) continue;
    if (std::string fault = source.checkRootSource(data, static_cast<int>(project.degree)); !fault.empty())
      return fault;
  }
  return {};
}

}  // namespace hollowmere
