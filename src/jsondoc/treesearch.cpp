#include "jsondoc/treesearch.h"

#include <optional>

namespace hollowmere {

namespace {

using TSuits = TJsonTree::TSuits;

/// The rows below some row, from the inside out: so that a step in front of them is cheap.
using TTrail = std::vector<std::size_t>;

const TValue& shallowValue(const TJsonItem& item) {
  static const TValue object{TObject()}, list{TList()};
  if (!item.branch) return item.value;
  return item.branch->kind() == TKind::List ? list : object;
}

/// Looks through rows of any form in one direction. A row stands before what is below it.
class TFinder {
 public:
  TFinder(bool forward, const TSuits& suits) : forward_(forward), suits_(suits) {}

  /// From that row on, in the direction.
  bool inRows(const TJsonBranch& branch, std::size_t from, std::size_t end, TTrail& trail) const {
    return each(from, end, trail, [&](std::size_t i) { return inItem(branch.items[i], trail); });
  }

 private:
  template <typename Look>
  bool each(std::size_t from, std::size_t end, TTrail& trail, const Look& look) const {
    for (std::size_t n = 0; n < end - from; ++n) {
      const std::size_t i = forward_ ? from + n : end - 1 - n;
      if (!look(i)) continue;
      trail.push_back(i);
      return true;
    }
    return false;
  }

  bool inItem(const TJsonItem& item, TTrail& trail) const {
    const auto below = [&] {
      return item.branch ? inRows(*item.branch, 0, item.branch->size(), trail) : inValue(item.value, trail);
    };
    if (!forward_ && below()) return true;
    if (suits_(item.name, shallowValue(item))) return true;
    return forward_ && below();
  }

  bool inPart(std::string_view name, const TValue& value, TTrail& trail) const {
    if (!forward_ && inValue(value, trail)) return true;
    if (suits_(name, value)) return true;
    return forward_ && inValue(value, trail);
  }

  bool inValue(const TValue& value, TTrail& trail) const {
    if (value.is(TKind::List)) {
      const TList& list = value.asList();
      return each(0, list.size(), trail, [&](std::size_t i) { return inPart({}, list[i], trail); });
    }
    if (!value.is(TKind::Object)) return false;
    const auto members = value.asObject().begin();
    return each(0, value.asObject().size(), trail, [&](std::size_t i) {
      const TMember& member = members[static_cast<std::ptrdiff_t>(i)];
      return inPart(member.name, member.value, trail);
    });
  }

  bool forward_;
  const TSuits& suits_;
};

TJsonPlace openAlong(TJsonBranch& branch, const TTrail& trail) {
  TJsonPlace at{&branch, trail.back()};
  for (auto row = trail.rbegin() + 1; row != trail.rend(); ++row) at = {TJsonTree::open(at), *row};
  return at;
}

bool visitValue(const TValue& value, const TSuits& more) {
  if (value.is(TKind::List)) {
    for (const TValue& each : value.asList())
      if (!more({}, each) || !visitValue(each, more)) return false;
  } else if (value.is(TKind::Object)) {
    for (const TMember& member : value.asObject())
      if (!more(member.name, member.value) || !visitValue(member.value, more)) return false;
  }
  return true;
}

}  // namespace

TJsonPlace findInTree(TJsonBranch& root, TJsonPlace behind, bool forward, const TSuits& suits) {
  const TFinder finder(forward, suits);
  const auto look = [&](TJsonBranch& branch, std::size_t from, std::size_t end) -> TJsonPlace {
    TTrail trail;
    return finder.inRows(branch, from, end, trail) ? openAlong(branch, trail) : TJsonPlace();
  };
  if (!behind) return look(root, 0, root.size());
  if (forward)
    if (TJsonBranch* below = TJsonTree::open(behind))
      if (const TJsonPlace found = look(*below, 0, below->size())) return found;
  for (TJsonPlace at = behind; at; at = TJsonTree::placeOf(*at.branch)) {
    TJsonBranch& branch = *at.branch;
    const TJsonPlace found = forward ? look(branch, at.row + 1, branch.size()) : look(branch, 0, at.row);
    if (found) return found;
    // Backwards a row stands before what is below it.
    const TJsonPlace parent = TJsonTree::placeOf(branch);
    if (!forward && parent && suits(TJsonTree::item(parent).name, shallowValue(TJsonTree::item(parent))))
      return parent;
  }
  return {};
}

bool visitRows(const TJsonBranch& branch, const TSuits& more) {
  for (const TJsonItem& item : branch.items) {
    if (!more(item.name, shallowValue(item))) return false;
    if (item.branch ? !visitRows(*item.branch, more) : !visitValue(item.value, more)) return false;
  }
  return true;
}

}  // namespace hollowmere
