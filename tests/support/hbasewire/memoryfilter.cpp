#include "support/hbasewire/memoryfilter.h"

#include <regex>
#include <stdexcept>

#include "connectors/hbase/hbasefiltertext.h"

namespace hollowmere::hbasewire {

namespace {

struct TRow {
  const std::string& key;
  std::map<Text, TCell>& columns;
  std::int64_t passed;
};

bool compares(int order, const std::string& sign) {
  if (sign == "=") return order == 0;
  if (sign == "!=") return order != 0;
  if (sign == "<") return order < 0;
  if (sign == "<=") return order <= 0;
  return sign == ">" ? order > 0 : order >= 0;
}

bool matches(const std::string& value, const std::string& sign, const std::string& comparator) {
  const std::size_t colon = comparator.find(':');
  const std::string type = comparator.substr(0, colon), wanted = comparator.substr(colon + 1);
  if (type == "binary") return compares(value.compare(wanted), sign);
  if (type == "binaryprefix") return compares(value.compare(0, wanted.size(), wanted), sign);
  if (type == "substring") return (value.find(wanted) != std::string::npos) == (sign == "=");
  return std::regex_search(value, std::regex(wanted)) == (sign == "=");
}

bool keep(const THBaseFilter& filter, const TRow& row);

bool keepSimple(const THBaseFilter& filter, const TRow& row) {
  const auto argument = [&](std::size_t at) -> const std::string& {
    if (at >= filter.arguments.size()) throw std::invalid_argument("too few arguments");
    return filter.arguments[at].text;
  };
  if (filter.name == "PrefixFilter") return row.key.starts_with(argument(0));
  if (filter.name == "RowFilter") return matches(row.key, argument(0), argument(1));
  if (filter.name == "PageFilter") return row.passed < std::stoll(argument(0));
  if (filter.name == "FirstKeyOnlyFilter") {
    while (row.columns.size() > 1) row.columns.erase(std::prev(row.columns.end()));
    return true;
  }
  if (filter.name == "KeyOnlyFilter") {
    for (auto& [column, cell] : row.columns) cell.value.clear();
    return true;
  }
  if (filter.name == "ValueFilter") {
    std::erase_if(row.columns,
                  [&](const auto& one) { return !matches(one.second.value, argument(0), argument(1)); });
    return !row.columns.empty();
  }
  if (filter.name == "SingleColumnValueFilter") {
    const auto found = row.columns.find(argument(0) + ":" + argument(1));
    return found == row.columns.end() || matches(found->second.value, argument(2), argument(3));
  }
  throw std::invalid_argument("no such filter");
}

bool keep(const THBaseFilter& filter, const TRow& row) {
  if (filter.kind == TFilterKind::Simple) return keepSimple(filter, row);
  if (filter.kind != TFilterKind::And && filter.kind != TFilterKind::Or)
    throw std::invalid_argument("no such operator");
  const bool all = filter.kind == TFilterKind::And;
  for (const THBaseFilter& part : filter.parts)
    if (keep(part, row) != all) return !all;
  return all;
}

}  // namespace

bool filterRow(const std::string& filter, const std::string& key, std::map<Text, TCell>& columns,
               std::int64_t passed) {
  try {
    return keep(parseHBaseFilter(filter), {key, columns, passed});
  } catch (const THBaseFilterError& error) {
    throw std::invalid_argument(error.what());
  }
}

}  // namespace hollowmere::hbasewire
