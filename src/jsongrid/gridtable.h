#pragma once

#include <cstddef>
#include <string>

#include "json/value.h"

namespace hollowmere {

/// The column of rows that are single values and no documents.
inline constexpr char valueColumn[] = "value";

/// Rows and columns as exports and copies see them. Cells are looked at where they are, never copied. An
/// export may read from a thread of its own while nobody changes the table.
class TGridTable {
 public:
  virtual ~TGridTable() = default;

  [[nodiscard]] virtual std::size_t columns() const = 0;
  [[nodiscard]] virtual const std::string& columnName(std::size_t column) const = 0;
  [[nodiscard]] virtual std::size_t rows() const = 0;
  /// nullptr: the row has no such attribute. Valid until the table changes.
  [[nodiscard]] virtual const TValue* cell(std::size_t row, std::size_t column) const = 0;
  /// Appends the row as one compact JSON text: an object of the cells that are there.
  virtual void appendRowJson(std::string& out, std::size_t row) const;
};

/// Some rows and columns of a table, in the order given, e.g. those that are selected. The table outlives it.
class TGridPart : public TGridTable {
 public:
  TGridPart(const TGridTable& table, std::vector<std::size_t> rows, std::vector<std::size_t> columns)
      : table_(table), rows_(std::move(rows)), columns_(std::move(columns)) {}

  [[nodiscard]] std::size_t columns() const override { return columns_.size(); }
  [[nodiscard]] const std::string& columnName(std::size_t column) const override {
    return table_.columnName(columns_[column]);
  }
  [[nodiscard]] std::size_t rows() const override { return rows_.size(); }
  [[nodiscard]] const TValue* cell(std::size_t row, std::size_t column) const override {
    return table_.cell(rows_[row], columns_[column]);
  }
  void appendRowJson(std::string& out, std::size_t row) const override;

 private:
  const TGridTable& table_;
  std::vector<std::size_t> rows_;
  std::vector<std::size_t> columns_;
};

}  // namespace hollowmere
