#include "project/maptree.h"

#include <algorithm>
#include <cctype>

namespace hollowmere {

namespace {

bool containsIgnoringCase(std::string_view text, std::string_view part) {
  const auto same = [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
  };
  return std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end();
}

}  // namespace

const TMapNode* nodeAt(const std::vector<TMapNode>& forest, const TNodePath& path) {
  const std::vector<TMapNode>* level = &forest;
  const TMapNode* node = nullptr;
  for (const std::size_t place : path) {
    if (place >= level->size()) return nullptr;
    node = &(*level)[place];
    level = &node->children;
  }
  return node;
}

TMapNode* nodeAt(std::vector<TMapNode>& forest, const TNodePath& path) {
  return const_cast<TMapNode*>(nodeAt(std::as_const(forest), path));
}

std::vector<TMapNode>* siblingsAt(std::vector<TMapNode>& forest, const TNodePath& path) {
  if (path.empty()) return nullptr;
  if (path.size() == 1) return &forest;
  TMapNode* parent = nodeAt(forest, TNodePath(path.begin(), path.end() - 1));
  return parent ? &parent->children : nullptr;
}

bool isAbove(const TNodePath& upper, const TNodePath& lower) {
  return upper.size() <= lower.size() && std::equal(upper.begin(), upper.end(), lower.begin());
}

TNodePath nextPath(const std::vector<TMapNode>& forest, const TNodePath& path) {
  TNodePath next = path;
  next.push_back(0);
  if (nodeAt(forest, next)) return next;
  next.pop_back();
  while (!next.empty()) {
    ++next.back();
    if (nodeAt(forest, next)) return next;
    next.pop_back();
  }
  return {};
}

TNodePath findNode(const std::vector<TMapNode>& forest, std::string_view text, const TNodePath& behind) {
  if (text.empty() || forest.empty()) return {};
  TNodePath at = behind;
  do {
    at = nextPath(forest, at);
    const TMapNode* node = nodeAt(forest, at);
    if (node && (containsIgnoringCase(node->source, text) || containsIgnoringCase(node->target, text)))
      return at;
  } while (at != behind);
  return {};
}

}  // namespace hollowmere
