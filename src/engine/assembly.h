#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "connectors/datetimetext.h"
#include "connectors/loadtypes.h"
#include "connectors/storeapi.h"
#include "engine/targettype.h"
#include "json/json.h"
#include "json/value.h"

namespace hollowmere {

/// A mapping node made ready for many rows: its types read, its uses of each field counted.
struct TNodePlan {
  std::string source;
  std::string target;
  TTargetType type = TTargetType::String;
  bool isId = false;                     ///< the target is "_id"
  bool isParentReference = false;        ///< the source names a field of the parent document
  bool takesLast = false;                ///< no later sibling reads this field: it may be moved
  std::vector<std::string> dataSources;  ///< names in the source of a data source node
  std::vector<TNodePlan> children;
  bool queriesBelow = false;      ///< some child is a data source node
  mutable std::size_t place = 0;  ///< where the field stood in the last row; a plan belongs to one thread
};

/// Throws TStoreError (DataSource) for a target type that is not known.
TNodePlan makePlan(const TMapNode& node);
/// The same for the node alone, without its children.
TNodePlan makeNodePlan(const TMapNode& node);

/// Runs a nested query for the assembler: data source name, parent row, row taker. Throws TStoreError.
using TNestedQuery = std::function<void(const std::string& name, const TObject& parent, const TRowSink& row)>;

/// Turns rows into target documents by a mapping tree. Keeps a JSON reader: one assembler a thread.
class TAssembler {
 public:
  /// dates outlives the assembler.
  TAssembler(bool ignoreNulls, const TDateTimeText& dates, TNestedQuery nested);

  /// The row of a data source becomes the document of the node. The members of the document stand in the
  /// order of the node's children. Throws std::runtime_error when the row cannot be assembled.
  void process(const TNodePlan& node, const std::string& dataSource, TObject& row);
  /// The node at which the last process() failed, as places from the node that it was given downwards;
  /// empty: the node itself, or nothing failed.
  [[nodiscard]] const std::vector<std::size_t>& faultPath() const { return faultPath_; }

 private:
  using TNestedValues = std::vector<std::pair<bool, TValue>>;

  void assemble(const TNodePlan& node, const std::string& dataSource, TObject& row);
  TObject makeDocument(const TNodePlan& node, const std::string& dataSource, TObject& row, std::size_t& at);
  TNestedValues queryChildren(const TNodePlan& node, const std::string& dataSource, const TObject& row,
                              std::size_t& at);
  TList rowsOf(const TNodePlan& child, const std::string& dataSource, const TObject& row);
  void addField(TObject& document, const TNodePlan& child, TObject& row);
  void addConverted(TObject& document, const TNodePlan& child, TValue&& value);
  void addParsed(TObject& document, const TNodePlan& child, TValue&& value);
  void addNull(TObject& document, const std::string& name) const;
  TValue scalar(const TNodePlan& child, TValue&& value) const;

  bool ignoreNulls_;
  const TDateTimeText& dates_;
  TNestedQuery nested_;
  TJsonReader json_;
  std::vector<std::size_t> faultPath_;
};

}  // namespace hollowmere
