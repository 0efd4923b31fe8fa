#include "jsongrid/gridview.h"

#include <algorithm>
#include <numeric>
#include <string>

#include "jsongrid/celltext.h"

namespace hollowmere {

TGridView::TGridView(const TJsonGrid& grid, std::size_t pageSize)
    : grid_(grid), pageSize_(std::max<std::size_t>(pageSize, 1)) {}

void TGridView::refresh() { sortBy(sortColumn_, descending_); }

void TGridView::sortBy(std::optional<std::size_t> column, bool descending) {
  // A column can go when its making is taken back.
  if (column && *column >= grid_.columns()) column.reset();
  sortColumn_ = column;
  descending_ = descending;
  order_.clear();
  if (column) {
    order_.resize(grid_.rows());
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    std::stable_sort(order_.begin(), order_.end(), [&](std::size_t a, std::size_t b) {
      const int order = compareCells(grid_.cell(a, *column), grid_.cell(b, *column));
      return descending ? order > 0 : order < 0;
    });
  }
  showPage(page_);
}

std::size_t TGridView::pages() const {
  return std::max<std::size_t>(1, (grid_.rows() + pageSize_ - 1) / pageSize_);
}

void TGridView::showPage(std::size_t page) { page_ = std::min(page, pages() - 1); }

std::size_t TGridView::pageRows() const { return std::min(pageSize_, grid_.rows() - pageStart()); }

std::size_t TGridView::placeOf(std::size_t row) const {
  if (order_.empty()) return row;
  return static_cast<std::size_t>(std::find(order_.begin(), order_.end(), row) - order_.begin());
}

std::optional<TCellPlace> TGridView::find(std::string_view text, TCellPlace from, bool backwards) const {
  std::string sought(text);
  for (char& c : sought)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  const std::size_t columns = grid_.columns(), cells = grid_.rows() * columns;
  if (cells == 0 || sought.empty()) return std::nullopt;
  const std::size_t start = from.row * columns + from.column;
  for (std::size_t step = 1; step <= cells; ++step) {
    const std::size_t at = (start + (backwards ? cells - step : step)) % cells;
    const TCellPlace place{at / columns, at % columns};
    if (cellContains(grid_.cell(rowAt(place.row), place.column), sought)) return place;
  }
  return std::nullopt;
}

}  // namespace hollowmere
