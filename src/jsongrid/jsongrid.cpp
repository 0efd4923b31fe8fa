#include "jsongrid/jsongrid.h"

#include <algorithm>

#include "connectors/textpiece.h"
#include "json/json.h"
#include "jsongrid/celltext.h"
#include "jsongrid/gridtexts.h"

namespace hollowmere {

void TJsonGrid::load(TList documents) {
  undo_.clear();
  columns_.clear();
  places_.clear();
  rows_ = std::move(documents);
  marks_.assign(rows_.size(), TRowMark::None);
  for (const TValue& document : rows_) takeColumns(document);
}

/// The column of that name, made when there is none.
std::size_t TJsonGrid::columnOf(std::string_view name) {
  const auto [at, isNew] = places_.try_emplace(std::string(name), columns_.size());
  if (isNew) columns_.push_back({at->first, TKind::Null});
  return at->second;
}

void TJsonGrid::takeColumns(const TValue& document) {
  const auto take = [this](std::size_t place, const TValue& value) {
    if (columns_[place].kind == TKind::Null) columns_[place].kind = value.kind();
  };
  if (!document.is(TKind::Object)) return take(columnOf(valueColumn), document);
  std::size_t likely = 0;
  for (const TMember& member : document.asObject()) {
    // Most documents have their members in the order of the columns.
    const bool found = likely < columns_.size() && columns_[likely].name == member.name;
    const std::size_t place = found ? likely : columnOf(member.name);
    take(place, member.value);
    likely = place + 1;
  }
}

const TValue* TJsonGrid::cell(std::size_t row, std::size_t column) const {
  const TValue& document = rows_[row];
  const std::string& name = columns_[column].name;
  if (!document.is(TKind::Object)) return name == valueColumn ? &document : nullptr;
  const TObject& object = document.asObject();
  if (column < object.size()) {
    // As above; an earlier member of the same name would be the one that counts.
    const auto likely = object.begin() + static_cast<std::ptrdiff_t>(column);
    if (likely->name == name && std::none_of(object.begin(), likely, [&](const TMember& member) {
          return member.name.size() == name.size() && member.name == name;
        }))
      return &likely->value;
  }
  return object.find(name);
}

TValue* TJsonGrid::find(TCellPlace place) { return const_cast<TValue*>(cell(place.row, place.column)); }

void TJsonGrid::appendRowJson(std::string& out, std::size_t row) const { appendJson(out, rows_[row]); }

/// Whether all that the grid knows are single values.
bool TJsonGrid::isScalarGrid() const {
  return columns_.size() == 1 && columns_[0].name == valueColumn && !rows_.empty() &&
         std::none_of(rows_.begin(), rows_.end(), [](const TValue& row) { return row.is(TKind::Object); });
}

/// Puts a member behind the nearest one whose column stands before its own.
void TJsonGrid::insertMember(TCellPlace place, TValue value) {
  TObject& object = rows_[place.row].asObject();
  object.add(columns_[place.column].name, std::move(value));
  auto to = object.begin();
  for (auto member = object.begin(); member != object.end() - 1; ++member)
    if (places_.at(member->name) < place.column) to = member + 1;
  std::rotate(to, object.end() - 1, object.end());
}

void TJsonGrid::putValue(TCellPlace place, TValue value) {
  TKind& kind = columns_[place.column].kind;
  if (kind == TKind::Null) kind = value.kind();
  if (TValue* there = find(place))
    *there = std::move(value);
  else
    insertMember(place, std::move(value));
}

void TJsonGrid::touch(std::size_t row) {
  if (marks_[row] == TRowMark::None) marks_[row] = TRowMark::Changed;
}

std::string TJsonGrid::setText(TCellPlace place, std::string_view text, const TDateTimeText& dates) {
  const TValue* before = cell(place.row, place.column);
  // An editor that was opened and closed changes nothing, also where a text could be read in another way.
  if (cellText(before) == text) return {};
  TCellEdit edit = editedCell(before, columnKind(place.column), text, dates);
  return edit.refusal.empty() ? setValue(place, std::move(edit.value)) : edit.refusal;
}

std::string TJsonGrid::setValue(TCellPlace place, TValue value) {
  TValue& document = rows_[place.row];
  if (!document.is(TKind::Object) && columns_[place.column].name != valueColumn) return gridtexts::scalarRow;
  const TValue* before = find(place);
  if (before && *before == value) return {};
  const TRowMark mark = marks_[place.row];
  const TKind kind = columns_[place.column].kind;
  undo_.push_back([this, place, mark, kind, had = before != nullptr, old = before ? *before : TValue()] {
    if (had)
      *find(place) = old;
    else
      rows_[place.row].asObject().remove(columns_[place.column].name);
    marks_[place.row] = mark;
    columns_[place.column].kind = kind;
  });
  putValue(place, std::move(value));
  touch(place.row);
  return {};
}

void TJsonGrid::replaceDocument(std::size_t row, TValue document) {
  if (rows_[row] == document) return;
  const std::size_t count = columns_.size();
  const TRowMark mark = marks_[row];
  TValue old = std::exchange(rows_[row], std::move(document));
  takeColumns(rows_[row]);
  touch(row);
  undo_.push_back([this, row, mark, count, old = std::move(old)] {
    rows_[row] = old;
    marks_[row] = mark;
    for (; columns_.size() > count; columns_.pop_back()) places_.erase(columns_.back().name);
  });
}

std::size_t TJsonGrid::addRow() {
  TValue row = isScalarGrid() ? TValue() : TValue(TObject());
  if (row.is(TKind::Object))
    for (const TColumn& column : columns_)
      if (column.kind == TKind::Boolean) row.asObject().add(column.name, false);
  rows_.push_back(std::move(row));
  marks_.push_back(TRowMark::Inserted);
  undo_.push_back([this] {
    rows_.pop_back();
    marks_.pop_back();
  });
  return rows_.size() - 1;
}

void TJsonGrid::deleteRows(const std::vector<std::size_t>& rows) {
  std::vector<std::size_t> removed, marked;
  for (const std::size_t row : rows)
    (deletion_ == TRowDeletion::Remove || marks_[row] == TRowMark::Inserted ? removed : marked)
        .push_back(row);
  if (!marked.empty()) markRows(marked);
  if (!removed.empty()) removeRows(removed);
  if (!marked.empty() && !removed.empty()) joinSteps();
}

/// The last two steps are one to the user.
void TJsonGrid::joinSteps() {
  TStep last = std::move(undo_.back());
  undo_.pop_back();
  TStep first = std::move(undo_.back());
  undo_.back() = [first = std::move(first), last = std::move(last)] {
    last();
    first();
  };
}

void TJsonGrid::removeRows(const std::vector<std::size_t>& rows) {
  TList gone, kept;
  std::vector<TRowMark> goneMarks, keptMarks;
  kept.reserve(rows_.size());
  auto next = rows.begin();
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    const bool goes = next != rows.end() && *next == row;
    if (goes) ++next;
    (goes ? gone : kept).push_back(std::move(rows_[row]));
    (goes ? goneMarks : keptMarks).push_back(marks_[row]);
  }
  rows_ = std::move(kept);
  marks_ = std::move(keptMarks);
  undo_.push_back([this, rows, gone = std::move(gone), goneMarks = std::move(goneMarks)]() mutable {
    TList all;
    std::vector<TRowMark> marks;
    all.reserve(rows_.size() + rows.size());
    std::size_t back = 0, left = 0;
    while (back < rows.size() || left < rows_.size()) {
      const bool returns = back < rows.size() && rows[back] == all.size();
      marks.push_back(returns ? goneMarks[back] : marks_[left]);
      all.push_back(std::move(returns ? gone[back++] : rows_[left++]));
    }
    rows_ = std::move(all);
    marks_ = std::move(marks);
  });
}

void TJsonGrid::markRows(const std::vector<std::size_t>& rows) {
  std::vector<TRowMark> before;
  for (const std::size_t row : rows) before.push_back(std::exchange(marks_[row], TRowMark::Deleted));
  undo_.push_back([this, rows, before = std::move(before)] {
    for (std::size_t i = 0; i < rows.size(); ++i) marks_[rows[i]] = before[i];
  });
}

void TJsonGrid::clearCells(const std::vector<TCellPlace>& cells) {
  struct TCleared {
    TCellPlace place;
    TRowMark mark;
    TValue value;
  };
  std::vector<TCleared> cleared;
  for (const TCellPlace& place : cells) {
    TValue* value = find(place);
    if (!value || value->isNull()) continue;
    cleared.push_back({place, marks_[place.row], std::exchange(*value, TValue())});
    touch(place.row);
  }
  if (cleared.empty()) return;
  undo_.push_back([this, cleared = std::move(cleared)]() mutable {
    for (auto at = cleared.rbegin(); at != cleared.rend(); ++at) {
      // The row may have been a single value: then the place of its cell is the row.
      TValue& row = rows_[at->place.row];
      (row.is(TKind::Object) ? *find(at->place) : row) = std::move(at->value);
      marks_[at->place.row] = at->mark;
    }
  });
}

std::string TJsonGrid::addAttribute(std::string_view name) {
  name = trimmed(name);
  if (name.empty()) return gridtexts::noAttributeName;
  if (places_.contains(std::string(name))) return gridtexts::attributeExists;
  columnOf(name);
  undo_.push_back([this] {
    places_.erase(columns_.back().name);
    columns_.pop_back();
  });
  return {};
}

void TJsonGrid::undo() {
  if (undo_.empty()) return;
  const TStep step = std::move(undo_.back());
  undo_.pop_back();
  step();
}

TList TJsonGrid::take() {
  TList documents;
  documents.reserve(rows_.size());
  for (std::size_t row = 0; row < rows_.size(); ++row)
    if (marks_[row] != TRowMark::Deleted) documents.push_back(std::move(rows_[row]));
  load({});
  return documents;
}

}  // namespace hollowmere
