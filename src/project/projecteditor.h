#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "connectors/storeregistry.h"
#include "engine/sampling.h"
#include "project/maptree.h"
#include "project/projectmodel.h"

namespace hollowmere {

enum class TSide { Source, Target };

/// Edits a project by the rules that keep it whole. Every change gives the message of its refusal, empty
/// when it was made; a refused change changes nothing. Changes of sides, lists and tree can be undone. One
/// thread.
class TProjectEditor {
 public:
  explicit TProjectEditor(TProject project) : project_(std::move(project)) {}

  [[nodiscard]] const TProject& project() const { return project_; }
  /// The project was written to that file, as it is now.
  void markSaved(const std::string& fileName);

  // General settings. A value is a text; booleans are "True" and "False".
  std::string setField(const TProjectField& field, const std::string& text);
  /// Why the connection of a side cannot be configured now.
  [[nodiscard]] std::string connectionRefusal(TSide side) const;
  /// What to ask before the type or the connection of a side changes; empty: nothing.
  [[nodiscard]] std::string resetQuestion(TSide side) const;
  /// Changes a side. reset empties the lists that belong to it, and the mappings.
  void setSide(TSide side, TProjectSide value, bool reset);

  // Data sources.
  std::string addDataSource();
  std::string renameDataSource(std::size_t row, const std::string& name);
  void setDefinition(std::size_t row, TValue definition);
  void deleteDataSource(std::size_t row);
  [[nodiscard]] bool asksToClearDataSources() const;
  void clearDataSources();

  // Data targets.
  std::string addDataTarget();
  std::string renameDataTarget(std::size_t row, const std::string& name);
  std::string setTargetObject(std::size_t row, const std::string& object);
  void setSaslPwd(std::size_t row, const std::string& password);
  void deleteDataTarget(std::size_t row);
  void clearDataTargets();

  // Mapping tree. The node that was made or moved stands at current().
  std::string addRoot();
  /// Behind the node's last child.
  std::string addAttribute(const TNodePath& parent);
  /// One child for each field that no child has as its source yet.
  std::string addFields(const TNodePath& parent, const std::vector<TSampledField>& fields);
  std::string deleteNode(const TNodePath& path);
  void clearMapping();
  void moveUp(const TNodePath& path);
  void moveDown(const TNodePath& path);
  /// Puts a node and all below it in front of that place. Roots stay roots, attributes attributes.
  std::string moveNode(const TNodePath& from, const TNodePath& to);
  std::string setTarget(const TNodePath& path, const std::string& target);
  std::string setSource(const TNodePath& path, const std::string& source);
  std::string setType(const TNodePath& path, const std::string& type);
  [[nodiscard]] const TNodePath& current() const { return current_; }
  /// Whether the target or the source of a node is the row key of HBase, which people know as "Row Key".
  [[nodiscard]] bool isRowKey(const TNodePath& path, TSide side) const;

  [[nodiscard]] bool canUndo() const { return !undo_.empty(); }
  [[nodiscard]] bool canRedo() const { return !redo_.empty(); }
  void undo();
  void redo();

 private:
  /// What undo brings back.
  struct TState {
    TProjectSide source;
    TProjectSide target;
    std::vector<TDataSource> dataSources;
    std::vector<TDataTarget> dataTargets;
    std::vector<TMapNode> mapping;
  };

  [[nodiscard]] TState state() const {
    return {project_.source, project_.target, project_.dataSources, project_.dataTargets, project_.mapping};
  }
  void restore(TState state);
  void beginChange();
  [[nodiscard]] bool carriesKey(const TNodePath& path) const;
  void shift(const TNodePath& path, std::ptrdiff_t by);

  TProject project_;
  TNodePath current_;
  std::vector<TState> undo_;
  std::vector<TState> redo_;
};

}  // namespace hollowmere
