#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "connectors/datetimetext.h"
#include "json/value.h"

namespace hollowmere {

class TJsonBranch;

/// One row of a branch: a scalar, a container that nobody has opened yet, or an opened container.
struct TJsonItem {
  std::string name;  ///< of a member; of a list's element only when somebody has typed one
  TValue value;      ///< null when there is a branch
  std::unique_ptr<TJsonBranch> branch;
};

/// An opened container. Its address stays the same while its items move about.
class TJsonBranch {
 public:
  TJsonBranch(TKind kind, TJsonBranch* parent) : kind_(kind), parent_(parent) {}

  [[nodiscard]] TKind kind() const { return kind_; }  ///< Object or List
  [[nodiscard]] TJsonBranch* parent() const { return parent_; }
  [[nodiscard]] std::size_t size() const { return items.size(); }
  /// The row of this branch in its parent, which there must be.
  [[nodiscard]] std::size_t row() const;

  std::vector<TJsonItem> items;

 private:
  friend class TJsonTree;

  TKind kind_;
  TJsonBranch* parent_;
  mutable std::size_t rowSeen_ = 0;
};

/// A row of an opened branch; no branch: nowhere.
struct TJsonPlace {
  TJsonBranch* branch = nullptr;
  std::size_t row = 0;

  explicit operator bool() const { return branch != nullptr; }
  bool operator==(const TJsonPlace&) const = default;
};

/// What is about to change, or has changed.
struct TJsonChange {
  enum class TWhat { Insert, Remove, Move, Item, All };

  TWhat what;
  TJsonBranch* branch = nullptr;
  std::size_t row = 0;
  std::size_t to = 0;  ///< Move: where the row stands afterwards
};

/// Is told of each change of a tree, before and after it.
class TJsonTreeWatcher {
 public:
  virtual ~TJsonTreeWatcher() = default;
  virtual void beforeChange(const TJsonChange& change) = 0;
  virtual void afterChange(const TJsonChange& change) = 0;
};

/// A document as a tree of rows that people edit, with undo. The rows of a container are made when it is
/// opened, so that a large document costs little more than itself. One thread.
class TJsonTree {
 public:
  /// dates reads edited date-times.
  explicit TJsonTree(const TDateTimeText& dates);
  ~TJsonTree();

  void setWatcher(TJsonTreeWatcher* watcher) { watcher_ = watcher; }

  /// Shows another document, an object or a list; undo begins anew. Everything else is an assertion.
  void setDocument(TValue document);
  /// The same as one step that can be undone.
  void replaceDocument(TValue document);
  /// The document as it is now, by the rules of the tree: the first member of a name wins, names of list
  /// elements do not count.
  [[nodiscard]] TValue document() const;
  /// The value of one row by the same rules.
  [[nodiscard]] TValue valueAt(TJsonPlace at) const;

  [[nodiscard]] TJsonBranch& root() const { return *root_; }
  [[nodiscard]] static TJsonItem& item(TJsonPlace at) { return at.branch->items[at.row]; }
  [[nodiscard]] static TKind kindAt(TJsonPlace at);
  [[nodiscard]] static bool isContainer(TJsonPlace at);
  /// How many rows a container has, opened or not; 0 for a scalar.
  [[nodiscard]] static std::size_t childCount(TJsonPlace at);
  /// Makes the rows of a container; nullptr for a scalar. Changes nothing that can be seen.
  static TJsonBranch* open(TJsonPlace at);
  /// The row that holds a branch; nowhere for the root.
  [[nodiscard]] static TJsonPlace placeOf(const TJsonBranch& branch);

  /// The three columns. A list's element is "<List Item 1>" and so on unless it has a name typed.
  [[nodiscard]] static std::string nameAt(TJsonPlace at);
  [[nodiscard]] static std::string valueTextAt(TJsonPlace at);
  [[nodiscard]] static std::string kindTextAt(TJsonPlace at);
  /// "$.orders[0].city", with ["..."] around names that are no words.
  [[nodiscard]] static std::string pathOf(TJsonPlace at);

  // Edits. Each is one step of undo and gives the row to be selected then.

  /// Adds a null at the end of the container there, or behind the scalar there (nowhere: at the end of the
  /// document). Its name is new among its siblings.
  TJsonPlace add(TJsonPlace at);
  TJsonPlace addNested(TJsonPlace at, TKind kind);
  /// Adds a copy of a value, named so unless the name is taken or it becomes a list's element.
  TJsonPlace addValue(TJsonPlace at, std::string name, TValue value);
  /// Gives the row that came in its place, or the one above.
  TJsonPlace remove(TJsonPlace at);
  void clear();
  TJsonPlace moveUp(TJsonPlace at);
  TJsonPlace moveDown(TJsonPlace at);
  void rename(TJsonPlace at, std::string name);
  /// Takes a text as editedScalar() does; a marker makes a container, also of another kind with the same
  /// rows. False for a container with rows and a text that is no marker: nothing changes.
  bool setValueText(TJsonPlace at, std::string_view text);
  /// Puts a scalar in the place of what is there.
  void setScalar(TJsonPlace at, TValue value);
  bool convert(TJsonPlace at, TKind kind);

  [[nodiscard]] bool canUndo() const;
  [[nodiscard]] bool canRedo() const;
  /// Gives the row that was concerned.
  TJsonPlace undo();
  TJsonPlace redo();
  /// Whether the document differs from the one that was set, as far as undo knows.
  [[nodiscard]] bool isChanged() const;
  void setSaved();

  /// The next row in reading order behind a place whose name or short value suits; searches unopened
  /// containers, too, and opens those above what it found. Nowhere when there is none.
  using TSuits = std::function<bool(std::string_view name, const TValue& value)>;
  TJsonPlace find(TJsonPlace behind, bool forward, const TSuits& suits);
  /// Gives every row's name and value in turn until the taker gives false.
  void visit(const TSuits& more) const;

 private:
  struct TStep;

  TJsonPlace insert(TJsonPlace at, TJsonItem item);
  TJsonPlace move(TJsonPlace at, std::size_t to);
  void setValue(TJsonPlace at, TValue value);
  void tell(const TJsonChange& change, const std::function<void()>& make);
  void replaceRow(TJsonPlace at, const std::function<void(TJsonItem&)>& change);
  static void switchKind(TJsonBranch& branch);
  TJsonPlace perform(TStep& step);
  TJsonPlace doStep(TStep step);

  const TDateTimeText& dates_;
  TJsonTreeWatcher* watcher_ = nullptr;
  std::unique_ptr<TJsonBranch> root_;
  std::vector<TStep> undo_;
  std::vector<TStep> redo_;
  std::size_t savedAt_ = 0;
  bool lostSaved_ = false;
};

}  // namespace hollowmere
