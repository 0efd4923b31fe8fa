#include "jsongrid/gridtable.h"

#include "json/json.h"

namespace hollowmere {

void TGridTable::appendRowJson(std::string& out, std::size_t row) const {
  out += '{';
  const std::size_t start = out.size();
  for (std::size_t column = 0; column < columns(); ++column) {
    const TValue* value = cell(row, column);
    if (!value) continue;
    if (out.size() > start) out += ',';
    appendJson(out, TValue(columnName(column)));
    out += ':';
    appendJson(out, *value);
  }
  out += '}';
}

void TGridPart::appendRowJson(std::string& out, std::size_t row) const {
  // A whole row is the document itself, also where it is no object.
  if (columns_.size() == table_.columns()) return table_.appendRowJson(out, rows_[row]);
  TGridTable::appendRowJson(out, row);
}

}  // namespace hollowmere
