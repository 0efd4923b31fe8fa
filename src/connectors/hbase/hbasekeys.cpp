#include "connectors/hbase/hbasekeys.h"

namespace hollowmere {

namespace {

/// Servers refuse longer ones, also as the bounds of a scan.
constexpr std::size_t longest = 32767;

}  // namespace

std::string keyBehind(const std::string& key) {
  return key.size() < longest ? key + '\0' : keyBehindPrefix(key);
}

std::string keyBehindPrefix(std::string prefix) {
  while (!prefix.empty() && prefix.back() == '\xFF') prefix.pop_back();
  if (!prefix.empty()) prefix.back() = static_cast<char>(prefix.back() + 1);
  return prefix;
}

}  // namespace hollowmere
