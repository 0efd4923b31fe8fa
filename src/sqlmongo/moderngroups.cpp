#include <algorithm>

#include "sqlmongo/modernshell.h"
#include "sqlmongo/shelltext.h"
#include "sqlmongo/sqltexts.h"

namespace hollowmere {

namespace {

[[noreturn]] void refuse(std::size_t place, const std::string& reason) {
  throw TSqlFault(sqltexts::badColumn, place, reason);
}

bool isPlain(const TSqlColumn& column) { return column.function == TSqlFunction::None; }

std::string fieldPath(const std::string& field) { return quotedText("$" + field); }

struct TAccumulator {
  TSqlFunction function;
  std::string field;  ///< empty: of the whole document
  std::string name;
};

std::string argumentOf(const TSqlColumn& column) {
  if (column.distinctCall) refuse(column.place, "DISTINCT inside a function cannot be translated");
  if (!column.goodCall) refuse(column.place, "the argument of a function must be one column");
  // COUNT(1) counts rows as COUNT(*) does.
  const bool number = column.name.text.find_first_not_of("0123456789") == std::string::npos;
  if (column.all || (column.function == TSqlFunction::Count && number)) return {};
  return fieldName(column.name);
}

std::string accumulatorText(const TAccumulator& accumulator) {
  const std::string field = fieldPath(accumulator.field);
  switch (accumulator.function) {
    case TSqlFunction::Count:
      if (accumulator.field.empty()) return R"({"$sum":1})";
      return R"({"$sum":{"$cond":[{"$ne":[{"$ifNull":[)" + field + R"(,null]},null]},1,0]}})";
    case TSqlFunction::Sum: return R"({"$sum":)" + field + "}";
    case TSqlFunction::Avg: return R"({"$avg":)" + field + "}";
    case TSqlFunction::Min: return R"({"$min":)" + field + "}";
    default: return R"({"$max":)" + field + "}";
  }
}

std::string defaultName(TSqlFunction function, const std::string& field) {
  static constexpr const char* names[] = {"", "count", "sum", "avg", "min", "max"};
  std::string name = names[static_cast<int>(function)];
  if (!field.empty()) name += "_" + field;
  std::replace(name.begin(), name.end(), '.', '_');
  return name;
}

class TGroupPrinter {
 public:
  explicit TGroupPrinter(const TSqlStatement& statement) : statement_(statement) {
    collectKeys();
    for (const TSqlColumn& column : statement.columns) select(column);
  }

  std::string print() {
    // Asked first: they may need accumulators of their own.
    const std::string having = havingFilter();
    const TShellObject order = sortKeys();
    TPipeline pipeline;
    if (statement_.where) pipeline.add("$match", modernFilter(statement_.where, plainField));
    pipeline.add("$group", groupDocument());
    if (!having.empty()) pipeline.add("$match", having);
    pipeline.addOrder(order, statement_.limit);
    if (!projection_.has("_id")) projection_.add("_id", "0");
    pipeline.add("$project", projection_.text());
    return pipeline.text();
  }

 private:
  void collectKeys() {
    const bool distinct = statement_.columns.front().distinct;
    for (const TSqlName& name : statement_.groupBy) keys_.push_back(fieldName(name));
    if (!distinct) return;
    if (!keys_.empty())
      refuse(statement_.columns.front().place, "DISTINCT and GROUP BY cannot be translated together");
    for (const TSqlColumn& column : statement_.columns) {
      if (column.all || !isPlain(column)) refuse(column.place, "DISTINCT takes columns only");
      keys_.push_back(fieldName(column.name));
    }
  }

  /// Where a group's key is found behind $group.
  [[nodiscard]] std::string keyPath(std::size_t index) const {
    return keys_.size() == 1 ? "_id" : "_id." + keyName(index);
  }

  /// Names of the keys inside _id, which hold no dots.
  [[nodiscard]] std::string keyName(std::size_t index) const {
    const bool plain = std::all_of(keys_.begin(), keys_.end(), isIdentifier);
    return plain ? keys_[index] : "k" + std::to_string(index + 1);
  }

  [[nodiscard]] std::optional<std::string> keyOf(const std::string& field) const {
    const auto found = std::find(keys_.begin(), keys_.end(), field);
    if (found == keys_.end()) return std::nullopt;
    return keyPath(static_cast<std::size_t>(found - keys_.begin()));
  }

  void select(const TSqlColumn& column) {
    if (column.all && isPlain(column)) refuse(column.place, "* cannot be selected of groups");
    std::string name = column.alias.text;
    if (!name.empty() && (name.starts_with('$') || name.find('.') != std::string::npos))
      refuse(column.alias.place, "an alias may not begin with \"$\" or hold a dot");
    if (isPlain(column)) return selectKey(column, name.empty() ? fieldName(column.name) : name);
    const std::string field = argumentOf(column);
    if (name.empty()) name = defaultName(column.function, field);
    if (name == "_id") refuse(column.place, "an aggregate cannot be named _id");
    addOutput(name, "1", column);
    accumulators_.push_back({column.function, field, name});
  }

  void selectKey(const TSqlColumn& column, const std::string& name) {
    const auto key = keyOf(fieldName(column.name));
    if (!key) refuse(column.place, column.name.text + " is selected, but not grouped by");
    addOutput(name, fieldPath(*key), column);
    if (!column.alias.text.empty()) aliases_.emplace_back(name, *key);
  }

  void addOutput(const std::string& name, const std::string& value, const TSqlColumn& column) {
    if (projection_.has(name)) refuse(column.place, "two columns are named " + name + "; give one an alias");
    projection_.add(name, value);
  }

  /// The field of a group that HAVING or ORDER BY names.
  std::string groupField(const TSqlColumn& column) {
    if (!isPlain(column)) return accumulator(column);
    const std::string name = fieldName(column.name);
    for (const TAccumulator& one : accumulators_)
      if (one.name == name) return name;
    for (const auto& [alias, key] : aliases_)
      if (alias == name) return key;
    if (const auto key = keyOf(name)) return *key;
    refuse(column.name.place, name + " is neither grouped by nor the name of an aggregate");
  }

  std::string accumulator(const TSqlColumn& column) {
    const std::string field = argumentOf(column);
    for (const TAccumulator& one : accumulators_)
      if (one.function == column.function && one.field == field) return one.name;
    std::string name = defaultName(column.function, field);
    const auto taken = [&] {
      return std::any_of(accumulators_.begin(), accumulators_.end(),
                         [&](const auto& one) { return one.name == name; });
    };
    while (taken()) name += "_";
    accumulators_.push_back({column.function, field, name});
    return name;
  }

  std::string havingFilter() {
    if (statement_.havingFault) throw *statement_.havingFault;
    if (!statement_.having) return {};
    return modernFilter(statement_.having, [this](const TSqlColumn& column) { return groupField(column); });
  }

  TShellObject sortKeys() {
    TShellObject keys;
    for (const TSqlOrder& order : statement_.orderBy)
      keys.add(groupField(order.column), sortDirection(order), order.place);
    return keys;
  }

  /// A missing field groups with null; alone as the key it does so by itself.
  [[nodiscard]] std::string groupDocument() const {
    TShellObject group;
    if (keys_.size() < 2) {
      group.add("_id", keys_.empty() ? "null" : fieldPath(keys_.front()));
    } else {
      TShellObject id;
      for (std::size_t i = 0; i < keys_.size(); ++i)
        if (!id.has(keyName(i))) id.add(keyName(i), R"({"$ifNull":[)" + fieldPath(keys_[i]) + ",null]}");
      group.add("_id", id.text());
    }
    for (const TAccumulator& one : accumulators_) group.add(one.name, accumulatorText(one));
    return group.text();
  }

  const TSqlStatement& statement_;
  std::vector<std::string> keys_;
  std::vector<TAccumulator> accumulators_;
  std::vector<std::pair<std::string, std::string>> aliases_;
  TShellObject projection_;
};

}  // namespace

std::string groupPipeline(const TSqlStatement& statement) { return TGroupPrinter(statement).print(); }

}  // namespace hollowmere
