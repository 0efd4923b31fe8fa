#include "engine/assembly.h"

#include <charconv>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "connectors/nosqlcommon.h"
#include "engine/xmltojson.h"

namespace hollowmere {

namespace {

constexpr std::string_view dataObjectField = "$dataObjectField$";
constexpr std::string_view linkedDataSuffix = "$LinkedData$";
/// Integers up to here are exact as doubles.
constexpr std::int64_t exactDouble = std::int64_t{1} << 53;

std::string trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(blanks) - first + 1));
}

std::vector<std::string> splitNames(std::string_view text) {
  std::vector<std::string> names;
  while (!text.empty()) {
    const std::size_t comma = std::min(text.find(','), text.size());
    if (std::string name = trimmed(text.substr(0, comma)); !name.empty()) names.push_back(std::move(name));
    text.remove_prefix(std::min(comma + 1, text.size()));
  }
  return names;
}

std::string lowered(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  return text;
}

[[noreturn]] void refuse(const TNodePlan& child, const char* wanted, std::string_view text) {
  std::string shown(text.substr(0, 60));
  throw std::runtime_error("Unable to convert the value of \"" + child.source + "\" to " + wanted + ": \"" +
                           shown + (text.size() > 60 ? "...\"" : "\""));
}

bool parseDouble(std::string_view text, double& number) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
  return fault == std::errc() && end == text.data() + text.size() && std::isfinite(number);
}

/// Whether a text is digits with perhaps a sign.
bool isInteger(std::string_view text) {
  if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

bool isExactDouble(std::int64_t integer) { return integer >= -exactDouble && integer <= exactDouble; }

/// An integer with all its digits.
TValue wholeInteger(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  std::int64_t integer = 0;
  const auto fault = std::from_chars(text.data(), text.data() + text.size(), integer).ec;
  if (fault != std::errc()) return TValue::decimal(std::string(text));
  return isExactDouble(integer) ? TValue(static_cast<double>(integer)) : TValue(integer);
}

/// A double, except for an integer that a double cannot hold: that keeps all its digits.
TValue toNumber(const TNodePlan& child, const TValue& value) {
  if (value.is(TKind::Double)) return value;
  if (value.is(TKind::Int))
    return isExactDouble(value.asInt()) ? TValue(static_cast<double>(value.asInt())) : value;
  const std::string text = trimmed(textForm(value));
  double number = 0;
  if (!parseDouble(text, number)) refuse(child, "a number", text);
  return isInteger(text) && std::abs(number) >= static_cast<double>(exactDouble) ? wholeInteger(text)
                                                                                 : TValue(number);
}

TValue toBoolean(const TNodePlan& child, const TValue& value) {
  if (value.is(TKind::Boolean)) return value;
  // Its text would lose what is very small.
  if (value.is(TKind::Double)) return value.asDouble() != 0;
  const std::string text = lowered(trimmed(textForm(value)));
  if (text == "true") return true;
  if (text == "false") return false;
  double number = 0;
  if (!parseDouble(text, number)) refuse(child, "a boolean", text);
  return number != 0;
}

/// A field by its name, or by a path of names joined by dots into nested objects. place is where it stood
/// in the row before: rows of one source look alike.
TValue* findField(TObject& row, std::string_view name, std::size_t* place = nullptr) {
  if (place && *place < row.size() && (row.begin() + static_cast<std::ptrdiff_t>(*place))->name == name)
    return &(row.begin() + static_cast<std::ptrdiff_t>(*place))->value;
  for (auto at = row.begin(); at != row.end(); ++at) {
    if (at->name != name) continue;
    if (place) *place = static_cast<std::size_t>(at - row.begin());
    return &at->value;
  }
  const std::size_t dot = name.find('.');
  if (dot == std::string_view::npos) return nullptr;
  TValue* outer = row.find(name.substr(0, dot));
  if (!outer || !outer->is(TKind::Object)) return nullptr;
  return findField(outer->asObject(), name.substr(dot + 1));
}

/// Whether two sources name the same field, or one a part of the other's.
bool readsSameField(std::string_view a, std::string_view b) {
  if (a.empty() || b.empty()) return false;
  return a.starts_with(b) || b.starts_with(a);
}

}  // namespace

TNodePlan makeNodePlan(const TMapNode& node) {
  TNodePlan plan;
  plan.source = trimmed(node.source);
  plan.target = trimmed(node.target);
  const auto type = targetTypeFromText(node.targetType);
  if (!type && !node.targetType.empty())
    throw TStoreError(TStoreErrorKind::DataSource,
                      "Unknown target type \"" + node.targetType + "\" of " + node.target);
  plan.type = type.value_or(TTargetType::String);
  plan.isId = equalIgnoringCase(plan.target, "_id");
  plan.isParentReference = lowered(plan.source).find("parent.") != std::string::npos;
  if (isDataSource(plan.type)) plan.dataSources = splitNames(node.source);
  return plan;
}

TNodePlan makePlan(const TMapNode& node) {
  TNodePlan plan = makeNodePlan(node);
  for (const TMapNode& child : node.children) plan.children.push_back(makePlan(child));
  for (std::size_t i = 0; i < plan.children.size(); ++i) {
    TNodePlan& child = plan.children[i];
    plan.queriesBelow = plan.queriesBelow || isDataSource(child.type);
    child.takesLast = true;
    for (std::size_t later = i + 1; later < plan.children.size(); ++later)
      if (readsSameField(child.source, plan.children[later].source)) child.takesLast = false;
  }
  return plan;
}

TAssembler::TAssembler(bool ignoreNulls, const TDateTimeText& dates, TNestedQuery nested)
    : ignoreNulls_(ignoreNulls), dates_(dates), nested_(std::move(nested)) {}

void TAssembler::process(const TNodePlan& node, const std::string& dataSource, TObject& row) {
  faultPath_.clear();
  assemble(node, dataSource, row);
}

void TAssembler::assemble(const TNodePlan& node, const std::string& dataSource, TObject& row) {
  if (node.children.empty()) return;
  std::size_t at = 0;
  try {
    TObject document = makeDocument(node, dataSource, row, at);
    if (TValue* kept = row.find(dataObjectField))
      document.add(std::string(dataObjectField), std::move(*kept));
    row = std::move(document);
  } catch (...) {
    faultPath_.insert(faultPath_.begin(), at);
    throw;
  }
}

/// at is the place of the child in work.
TObject TAssembler::makeDocument(const TNodePlan& node, const std::string& dataSource, TObject& row,
                                 std::size_t& at) {
  // Nested queries and groups see the row as it was read, so they come before any field is moved.
  TNestedValues nested;
  if (node.queriesBelow) nested = queryChildren(node, dataSource, row, at);
  TObject document;
  document.reserve(node.children.size() + 1);
  for (at = 0; at < node.children.size(); ++at) {
    const TNodePlan& child = node.children[at];
    if (!isDataSource(child.type))
      addField(document, child, row);
    else if (nested[at].first)
      document.add(
          child.type == TTargetType::LinkedData ? child.target + std::string(linkedDataSuffix) : child.target,
          std::move(nested[at].second));
    else
      addNull(document, child.target);
  }
  return document;
}

/// For each child that is a data source its rows, and whether there is a value at all.
TAssembler::TNestedValues TAssembler::queryChildren(const TNodePlan& node, const std::string& dataSource,
                                                    const TObject& row, std::size_t& at) {
  TNestedValues values(node.children.size());
  for (at = 0; at < node.children.size(); ++at) {
    const TNodePlan& child = node.children[at];
    if (!isDataSource(child.type)) continue;
    TList rows = rowsOf(child, dataSource, row);
    if (child.type != TTargetType::DataSourceObject)
      values[at] = {true, TValue(std::move(rows))};
    else if (!rows.empty())
      values[at] = {true, std::move(rows.front())};
  }
  return values;
}

TList TAssembler::rowsOf(const TNodePlan& child, const std::string& dataSource, const TObject& row) {
  const bool onlyFirst = child.type == TTargetType::DataSourceObject;
  TList rows;
  for (const std::string& name : child.dataSources) {
    const TRowSink take = [&](TObject&& nestedRow) {
      assemble(child, name, nestedRow);
      rows.emplace_back(std::move(nestedRow));
      return !onlyFirst;
    };
    if (name == dataSource)
      take(TObject(row));
    else
      nested_(name, row, take);
    if (onlyFirst && !rows.empty()) break;
  }
  return rows;
}

void TAssembler::addField(TObject& document, const TNodePlan& child, TObject& row) {
  // Resolved by the writer, when it has the parent.
  if (child.isParentReference) {
    document.add(child.target, child.source);
    return;
  }
  TValue* field = child.source.empty() ? nullptr : findField(row, child.source, &child.place);
  if (!field)
    addConverted(document, child, TValue());
  else if (child.takesLast)
    addConverted(document, child, std::move(*field));
  else
    addConverted(document, child, TValue(*field));
}

void TAssembler::addConverted(TObject& document, const TNodePlan& child, TValue&& value) {
  // A document without a value for its identifier gets one from its store; null would be a value.
  if (value.isNull() && child.isId) return;
  if (value.isNull()) return addNull(document, child.target);
  switch (child.type) {
    case TTargetType::JsonObject:
    case TTargetType::JsonList:
    case TTargetType::JsonFromXml:
      if (child.isId) break;
      return addParsed(document, child, std::move(value));
    default: break;
  }
  document.add(child.isId ? std::string_view("_id") : child.target, scalar(child, std::move(value)));
}

void TAssembler::addParsed(TObject& document, const TNodePlan& child, TValue&& value) {
  const TKind wanted = child.type == TTargetType::JsonList ? TKind::List : TKind::Object;
  if (child.type == TTargetType::JsonFromXml) {
    TValue converted = value.is(TKind::Text) ? xmlToJson(value.asText()) : TValue();
    document.add(child.target, converted.isNull() ? std::move(value) : std::move(converted));
    return;
  }
  if (!value.isNested()) {
    try {
      value = json_.read(textForm(value));
    } catch (const TJsonError&) {
      return;  // text that is no JSON leaves the field out
    }
  }
  if (!value.is(wanted))
    throw std::runtime_error("The value of \"" + child.source + "\" is " +
                             std::string(kindName(value.kind())) + ", not " +
                             (wanted == TKind::List ? "a JSON list" : "a JSON object"));
  document.add(child.target, std::move(value));
}

void TAssembler::addNull(TObject& document, const std::string& name) const {
  if (!ignoreNulls_) document.add(name, TValue());
}

TValue TAssembler::scalar(const TNodePlan& child, TValue&& value) const {
  if (value.isNested() && !child.isId) return value;
  switch (child.type) {
    case TTargetType::Number: return toNumber(child, value);
    case TTargetType::Boolean:
      if (!child.isId) return toBoolean(child, value);
      break;
    case TTargetType::DateTime:
      if (child.isId) break;
      if (value.is(TKind::DateTime)) return value;
      if (const auto moment =
              value.is(TKind::Text) ? dates_.parse(value.asText()) : dates_.parse(textForm(value)))
        return TValue::dateTime(*moment);
      refuse(child, "a date-time", textForm(value));
    case TTargetType::Binary:
      // Bytes stay bytes: their marked text is made only where a value becomes JSON text.
      if (value.is(TKind::Binary) && !child.isId) return value;
      break;
    default: break;
  }
  if (value.is(TKind::Text)) return value;
  return textForm(value);
}

}  // namespace hollowmere
