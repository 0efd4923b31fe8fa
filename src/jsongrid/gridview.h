#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "jsongrid/jsongrid.h"

namespace hollowmere {

/// How a grid is looked at: the order of its rows, in pages. Changes nothing in the grid, which outlives it.
/// Places in the view count from 0 over all pages.
class TGridView {
 public:
  /// pageSize below 1 counts as 1.
  TGridView(const TJsonGrid& grid, std::size_t pageSize);

  /// To be called when rows or cells of the grid have changed: orders anew, stays on a page that is there.
  void refresh();
  /// Nothing: the grid's own order.
  void sortBy(std::optional<std::size_t> column, bool descending = false);

  [[nodiscard]] std::size_t pageSize() const { return pageSize_; }
  [[nodiscard]] std::size_t page() const { return page_; }
  /// At least 1.
  [[nodiscard]] std::size_t pages() const;
  [[nodiscard]] bool isFirst() const { return page_ == 0; }
  [[nodiscard]] bool isLast() const { return page_ + 1 == pages(); }
  /// Pages that are not there: the nearest one.
  void showPage(std::size_t page);
  void first() { showPage(0); }
  void previous() { showPage(page_ == 0 ? 0 : page_ - 1); }
  void next() { showPage(page_ + 1); }
  void last() { showPage(pages() - 1); }

  /// Place of the page's first row, and its rows.
  [[nodiscard]] std::size_t pageStart() const { return page_ * pageSize_; }
  [[nodiscard]] std::size_t pageRows() const;
  /// The grid's row at a place of the view, and back.
  [[nodiscard]] std::size_t rowAt(std::size_t place) const { return order_.empty() ? place : order_[place]; }
  [[nodiscard]] std::size_t placeOf(std::size_t row) const;

  /// The first cell that holds a text (ASCII letter case ignored) behind that one, row by row, and on from
  /// the other end; backwards before it. The row counts in places of the view. Looks at no cell twice.
  [[nodiscard]] std::optional<TCellPlace> find(std::string_view text, TCellPlace from, bool backwards) const;

 private:
  const TJsonGrid& grid_;
  std::size_t pageSize_;
  std::size_t page_ = 0;
  std::optional<std::size_t> sortColumn_;
  bool descending_ = false;
  std::vector<std::size_t> order_;  ///< empty: the grid's own
};

}  // namespace hollowmere
