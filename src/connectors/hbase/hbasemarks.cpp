#include "connectors/hbase/hbasemarks.h"

#include <algorithm>
#include <iterator>

namespace hollowmere {

void THBaseMarks::keep(std::vector<std::string> keys) {
  const std::lock_guard lock(mutex_);
  keys_ = std::move(keys);
}

std::optional<THBaseMarks::TMark> THBaseMarks::before(std::int64_t row) const {
  const std::lock_guard lock(mutex_);
  if (keys_.empty()) return std::nullopt;
  const auto at = std::min(static_cast<std::size_t>(row / stride), keys_.size() - 1);
  return TMark{static_cast<std::int64_t>(at) * stride, keys_[at]};
}

std::optional<std::string> THBaseMarks::border(std::int64_t row) const {
  const std::lock_guard lock(mutex_);
  const auto found = borders_.find(row);
  return found == borders_.end() ? std::nullopt : std::optional(found->second);
}

std::string THBaseMarks::settle(std::int64_t row, std::string key) {
  const std::lock_guard lock(mutex_);
  // An empty key would stand for the table's end. No row has it, so the next one is as good.
  if (key.empty()) key.assign(1, '\0');
  const auto next = borders_.lower_bound(row);
  if (next != borders_.end() && next->first == row) return next->second;
  if (next != borders_.end()) key = std::min(key, next->second);
  if (next != borders_.begin()) key = std::max(key, std::prev(next)->second);
  return borders_.emplace_hint(next, row, std::move(key))->second;
}

}  // namespace hollowmere
