#include "connectors/hbase/hbasemarks.h"

#include <algorithm>

namespace hollowmere {

void THBaseMarks::keep(const std::string& name, std::int64_t count, std::vector<std::string> keys) {
  const std::lock_guard lock(mutex_);
  const auto now = TClock::now();
  std::erase_if(entries_, [now](const auto& entry) { return now - entry.second.at > age; });
  if (entries_.size() < mostSources || entries_.contains(name))
    entries_[name] = {count, now, std::move(keys)};
}

std::optional<THBaseMarks::TMark> THBaseMarks::before(const std::string& name, std::int64_t count,
                                                      std::int64_t row) const {
  const std::lock_guard lock(mutex_);
  const auto found = entries_.find(name);
  if (found == entries_.end() || found->second.count != count || TClock::now() - found->second.at > age)
    return std::nullopt;
  const auto& keys = found->second.keys;
  if (keys.empty()) return std::nullopt;
  const auto at = std::min(static_cast<std::size_t>(row / stride), keys.size() - 1);
  return TMark{static_cast<std::int64_t>(at) * stride, keys[at]};
}

}  // namespace hollowmere
