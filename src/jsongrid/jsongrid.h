#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "connectors/datetimetext.h"
#include "jsongrid/gridtable.h"

namespace hollowmere {

/// The edit state of a row.
enum class TRowMark : std::uint8_t { None, Inserted, Changed, Deleted };

/// What deleting a row does: it goes, or it stays, marked, until the change is posted.
enum class TRowDeletion { Remove, Mark };

struct TCellPlace {
  std::size_t row;
  std::size_t column;
  bool operator==(const TCellPlace&) const = default;
};

/// A list of documents as rows and columns: a column for each attribute, in the order in which they first
/// appear; elements that are no objects stand in the column "value". The grid holds the documents themselves
/// and edits them in place: what was not touched stays as it was, member order and missing members included.
/// Edits answer with the message of their refusal, or empty. One thread, or any number that only read.
class TJsonGrid : public TGridTable {
 public:
  explicit TJsonGrid(TRowDeletion deletion = TRowDeletion::Remove) : deletion_(deletion) {}
  // The steps of undo know the grid.
  TJsonGrid(const TJsonGrid&) = delete;
  TJsonGrid& operator=(const TJsonGrid&) = delete;

  /// Other documents in the place of all; there is nothing to undo afterwards.
  void load(TList documents);

  [[nodiscard]] std::size_t columns() const override { return columns_.size(); }
  [[nodiscard]] const std::string& columnName(std::size_t column) const override {
    return columns_[column].name;
  }
  [[nodiscard]] std::size_t rows() const override { return rows_.size(); }
  [[nodiscard]] const TValue* cell(std::size_t row, std::size_t column) const override;
  void appendRowJson(std::string& out, std::size_t row) const override;

  /// Kind of the first value in a column that is not null; Null when there is none.
  [[nodiscard]] TKind columnKind(std::size_t column) const { return columns_[column].kind; }
  [[nodiscard]] const TValue& document(std::size_t row) const { return rows_[row]; }
  /// All rows, those that are marked as deleted included.
  [[nodiscard]] const TList& documents() const { return rows_; }
  [[nodiscard]] TRowMark mark(std::size_t row) const { return marks_[row]; }
  /// Whether anything differs from what was loaded, or was and was not taken back.
  [[nodiscard]] bool changed() const { return !undo_.empty(); }

  /// A cell's text was edited: see editedCell(). A missing member comes to stand as its column does.
  std::string setText(TCellPlace place, std::string_view text, const TDateTimeText& dates);
  std::string setValue(TCellPlace place, TValue value);
  /// Another document in the place of a row's; new attributes become columns.
  void replaceDocument(std::size_t row, TValue document);
  /// Appends an empty row; cells of boolean columns start as false. Its number.
  std::size_t addRow();
  /// Ascending, without repetition. Rows that were added here always go.
  void deleteRows(const std::vector<std::size_t>& rows);
  /// Values become null; what is missing stays missing.
  void clearCells(const std::vector<TCellPlace>& cells);
  /// Adds a column after the others.
  std::string addAttribute(std::string_view name);

  [[nodiscard]] bool canUndo() const { return !undo_.empty(); }
  /// Takes back the last edit.
  void undo();

  /// The documents as they are now, without rows marked as deleted. The grid is empty afterwards.
  TList take();

 private:
  struct TColumn {
    std::string name;
    TKind kind = TKind::Null;
  };
  using TStep = std::function<void()>;

  std::size_t columnOf(std::string_view name);
  void takeColumns(const TValue& document);
  TValue* find(TCellPlace place);
  void insertMember(TCellPlace place, TValue value);
  void putValue(TCellPlace place, TValue value);
  void touch(std::size_t row);
  [[nodiscard]] bool isScalarGrid() const;
  void removeRows(const std::vector<std::size_t>& rows);
  void joinSteps();
  void markRows(const std::vector<std::size_t>& rows);

  TRowDeletion deletion_;
  std::vector<TColumn> columns_;
  std::unordered_map<std::string, std::size_t> places_;  ///< of columns by name
  TList rows_;
  std::vector<TRowMark> marks_;
  std::vector<TStep> undo_;
};

}  // namespace hollowmere
