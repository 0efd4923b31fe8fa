#include "jsondoc/jsontree.h"

#include <algorithm>
#include <cassert>
#include <cctype>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "json/json.h"
#include "jsondoc/scalartext.h"
#include "jsondoc/treesearch.h"

namespace hollowmere {

namespace {

/// Adds members, of which the first of a name wins.
class TMemberAdder {
 public:
  explicit TMemberAdder(std::size_t count) : remember_(count > few) { object_.reserve(count); }

  [[nodiscard]] bool has(const std::string& name) const {
    return remember_ ? names_.contains(name) : object_.contains(name);
  }
  void add(const std::string& name, TValue value) {
    if (remember_) names_.insert(name);
    object_.add(name, std::move(value));
  }
  TObject take() { return std::move(object_); }

 private:
  static constexpr std::size_t few = 24;  ///< looked through as quickly as any table of names

  bool remember_;
  std::unordered_set<std::string> names_;
  TObject object_;
};

TValue plainValue(const TValue& value) {
  if (value.is(TKind::List)) {
    TList list;
    list.reserve(value.asList().size());
    for (const TValue& each : value.asList()) list.push_back(plainValue(each));
    return list;
  }
  if (!value.is(TKind::Object)) return value;
  TMemberAdder members(value.asObject().size());
  for (const TMember& member : value.asObject())
    if (!members.has(member.name)) members.add(member.name, plainValue(member.value));
  return members.take();
}

TValue branchValue(const TJsonBranch& branch);

TValue itemValue(const TJsonItem& item) {
  return item.branch ? branchValue(*item.branch) : plainValue(item.value);
}

TValue branchValue(const TJsonBranch& branch) {
  if (branch.kind() == TKind::List) {
    TList list;
    list.reserve(branch.size());
    for (const TJsonItem& item : branch.items) list.push_back(itemValue(item));
    return list;
  }
  TMemberAdder members(branch.size());
  for (const TJsonItem& item : branch.items)
    if (!members.has(item.name)) members.add(item.name, itemValue(item));
  return members.take();
}

std::vector<TJsonItem> itemsOf(TValue&& value) {
  std::vector<TJsonItem> items;
  if (value.is(TKind::List)) {
    items.reserve(value.asList().size());
    for (TValue& each : value.asList()) items.push_back({{}, std::move(each), nullptr});
  } else {
    items.reserve(value.asObject().size());
    for (TMember& member : value.asObject())
      items.push_back({std::move(member.name), std::move(member.value), nullptr});
  }
  return items;
}

std::unique_ptr<TJsonBranch> branchOf(TValue&& value, TJsonBranch* parent) {
  assert(value.isNested());
  auto branch = std::make_unique<TJsonBranch>(value.kind(), parent);
  branch->items = itemsOf(std::move(value));
  return branch;
}

void swapValues(TJsonItem& one, TJsonItem& other) {
  std::swap(one.value, other.value);
  std::swap(one.branch, other.branch);
}

TValue emptyContainer(TKind kind) { return kind == TKind::List ? TValue(TList()) : TValue(TObject()); }

bool isWord(std::string_view name) {
  const auto isLetter = [](unsigned char c) { return std::isalpha(c) || c == '_' || c == '$' || c >= 128; };
  return !name.empty() && isLetter(static_cast<unsigned char>(name.front())) &&
         std::all_of(name.begin(), name.end(),
                     [&](unsigned char c) { return isLetter(c) || std::isdigit(c); });
}

std::string freeName(const TJsonBranch& branch) {
  for (std::size_t number = branch.size() + 1;; ++number) {
    std::string name = "Attribute" + std::to_string(number);
    if (std::none_of(branch.items.begin(), branch.items.end(),
                     [&](const TJsonItem& item) { return item.name == name; }))
      return name;
  }
}

std::string listItemName(std::size_t row) { return "<List Item " + std::to_string(row + 1) + ">"; }

std::string_view markerOf(TKind kind) { return kind == TKind::List ? listMarker : objectMarker; }

}  // namespace

std::size_t TJsonBranch::row() const {
  assert(parent_);
  const auto& rows = parent_->items;
  if (rowSeen_ < rows.size() && rows[rowSeen_].branch.get() == this) return rowSeen_;
  const auto found = std::find_if(rows.begin(), rows.end(),
                                  [this](const TJsonItem& item) { return item.branch.get() == this; });
  assert(found != rows.end());
  return rowSeen_ = static_cast<std::size_t>(found - rows.begin());
}

/// One edit, ready to be made; making it leaves here what takes it back.
struct TJsonTree::TStep {
  enum class TAct { Insert, Remove, Move, Name, Value, Container, All };

  TAct act;
  TJsonPlace at;
  std::size_t to = 0;                   ///< Move
  TJsonItem item{};                     ///< Insert, Name, Value: what is to be there
  std::unique_ptr<TJsonBranch> root{};  ///< All
};

TJsonTree::TJsonTree(const TDateTimeText& dates)
    : dates_(dates), root_(std::make_unique<TJsonBranch>(TKind::Object, nullptr)) {}

TJsonTree::~TJsonTree() = default;

void TJsonTree::setDocument(TValue document) {
  const TJsonChange change{TJsonChange::TWhat::All};
  if (watcher_) watcher_->beforeChange(change);
  undo_.clear();
  redo_.clear();
  savedAt_ = 0;
  lostSaved_ = false;
  root_ = branchOf(std::move(document), nullptr);
  if (watcher_) watcher_->afterChange(change);
}

void TJsonTree::replaceDocument(TValue document) {
  doStep({TStep::TAct::All, {}, 0, {}, branchOf(std::move(document), nullptr)});
}

TValue TJsonTree::document() const { return branchValue(*root_); }

TValue TJsonTree::valueAt(TJsonPlace at) const { return itemValue(item(at)); }

TKind TJsonTree::kindAt(TJsonPlace at) {
  const TJsonItem& found = item(at);
  return found.branch ? found.branch->kind() : found.value.kind();
}

bool TJsonTree::isContainer(TJsonPlace at) { return item(at).branch || item(at).value.isNested(); }

std::size_t TJsonTree::childCount(TJsonPlace at) {
  const TJsonItem& found = item(at);
  if (found.branch) return found.branch->size();
  if (found.value.is(TKind::List)) return found.value.asList().size();
  return found.value.is(TKind::Object) ? found.value.asObject().size() : 0;
}

TJsonBranch* TJsonTree::open(TJsonPlace at) {
  TJsonItem& found = item(at);
  if (!found.branch && found.value.isNested()) {
    found.branch = branchOf(std::move(found.value), at.branch);
    found.branch->rowSeen_ = at.row;
    found.value = TValue();
  }
  return found.branch.get();
}

TJsonPlace TJsonTree::placeOf(const TJsonBranch& branch) {
  if (!branch.parent()) return {};
  return {branch.parent(), branch.row()};
}

std::string TJsonTree::nameAt(TJsonPlace at) {
  const TJsonItem& found = item(at);
  if (at.branch->kind() == TKind::List && found.name.empty()) return listItemName(at.row);
  return found.name;
}

std::string TJsonTree::valueTextAt(TJsonPlace at) {
  return isContainer(at) ? kindTextAt(at) : scalarText(item(at).value);
}

std::string TJsonTree::kindTextAt(TJsonPlace at) {
  return isContainer(at) ? std::string(markerOf(kindAt(at))) : std::string();
}

std::string TJsonTree::pathOf(TJsonPlace at) {
  std::string path;
  for (; at; at = placeOf(*at.branch)) {
    const std::string& name = item(at).name;
    if (at.branch->kind() == TKind::List)
      path.insert(0, "[" + std::to_string(at.row) + "]");
    else if (isWord(name))
      path.insert(0, "." + name);
    else
      path.insert(0, "[" + toJson(TValue(name)) + "]");
  }
  return "$" + path;
}

void TJsonTree::tell(const TJsonChange& change, const std::function<void()>& make) {
  if (watcher_) watcher_->beforeChange(change);
  make();
  if (watcher_) watcher_->afterChange(change);
}

/// A row whose own rows change is told of as one that goes and comes.
void TJsonTree::replaceRow(TJsonPlace at, const std::function<void(TJsonItem&)>& change) {
  auto& items = at.branch->items;
  const auto place = static_cast<std::ptrdiff_t>(at.row);
  TJsonItem row;
  tell({TJsonChange::TWhat::Remove, at.branch, at.row}, [&] {
    row = std::move(items[at.row]);
    items.erase(items.begin() + place);
  });
  change(row);
  tell({TJsonChange::TWhat::Insert, at.branch, at.row},
       [&] { items.insert(items.begin() + place, std::move(row)); });
}

/// An element that becomes a member takes the name it was shown with; it loses that again as an element.
void TJsonTree::switchKind(TJsonBranch& branch) {
  const bool toObject = branch.kind_ == TKind::List;
  for (std::size_t row = 0; row < branch.size(); ++row) {
    std::string& name = branch.items[row].name;
    if (toObject && name.empty()) name = listItemName(row);
    if (!toObject && name == listItemName(row)) name.clear();
  }
  branch.kind_ = toObject ? TKind::Object : TKind::List;
}

TJsonPlace TJsonTree::perform(TStep& step) {
  using TAct = TStep::TAct;
  const auto at = [&step] {
    return step.at.branch->items.begin() + static_cast<std::ptrdiff_t>(step.at.row);
  };
  const TJsonChange removal{TJsonChange::TWhat::Remove, step.at.branch, step.at.row};
  const TJsonChange insertion{TJsonChange::TWhat::Insert, step.at.branch, step.at.row};
  const TJsonPlace place = step.at;
  switch (step.act) {
    case TAct::Insert:
      tell(insertion, [&] { step.at.branch->items.insert(at(), std::move(step.item)); });
      step.act = TAct::Remove;
      return place;
    case TAct::Remove: {
      tell(removal, [&] {
        step.item = std::move(*at());
        step.at.branch->items.erase(at());
      });
      step.act = TAct::Insert;
      if (place.row < place.branch->size()) return place;
      return place.row > 0 ? TJsonPlace{place.branch, place.row - 1} : placeOf(*place.branch);
    }
    case TAct::Move: {
      tell({TJsonChange::TWhat::Move, place.branch, place.row, step.to}, [&] {
        auto& items = place.branch->items;
        TJsonItem moved = std::move(items[place.row]);
        items.erase(at());
        items.insert(items.begin() + static_cast<std::ptrdiff_t>(step.to), std::move(moved));
      });
      std::swap(step.at.row, step.to);
      return step.at;
    }
    case TAct::Name:
      tell({TJsonChange::TWhat::Item, place.branch, place.row},
           [&] { std::swap(at()->name, step.item.name); });
      return place;
    case TAct::Value:
      if (step.item.branch || step.item.value.isNested() || isContainer(place))
        replaceRow(place, [&](TJsonItem& row) { swapValues(row, step.item); });
      else
        tell({TJsonChange::TWhat::Item, place.branch, place.row}, [&] { swapValues(*at(), step.item); });
      return place;
    case TAct::Container:
      // The rows stay, but all of them get other names.
      replaceRow(place, [](TJsonItem& row) { switchKind(*row.branch); });
      return place;
    case TAct::All: tell({TJsonChange::TWhat::All}, [&] { std::swap(root_, step.root); }); return {};
  }
  return {};
}

TJsonPlace TJsonTree::doStep(TStep step) {
  const TJsonPlace place = perform(step);
  if (savedAt_ > undo_.size()) lostSaved_ = true;
  undo_.push_back(std::move(step));
  redo_.clear();
  return place;
}

TJsonPlace TJsonTree::undo() {
  if (undo_.empty()) return {};
  redo_.push_back(std::move(undo_.back()));
  undo_.pop_back();
  return perform(redo_.back());
}

TJsonPlace TJsonTree::redo() {
  if (redo_.empty()) return {};
  undo_.push_back(std::move(redo_.back()));
  redo_.pop_back();
  return perform(undo_.back());
}

bool TJsonTree::canUndo() const { return !undo_.empty(); }

bool TJsonTree::canRedo() const { return !redo_.empty(); }

bool TJsonTree::isChanged() const { return undo_.size() != savedAt_ || lostSaved_; }

void TJsonTree::setSaved() {
  savedAt_ = undo_.size();
  lostSaved_ = false;
}

TJsonPlace TJsonTree::insert(TJsonPlace at, TJsonItem item) {
  TJsonBranch* branch = at && isContainer(at) ? open(at) : at ? at.branch : root_.get();
  const auto taken = [&](const TJsonItem& each) { return each.name == item.name; };
  if (branch->kind() == TKind::List)
    item.name.clear();
  else if (item.name.empty() || std::any_of(branch->items.begin(), branch->items.end(), taken))
    item.name = freeName(*branch);
  return doStep({TStep::TAct::Insert, {branch, branch->size()}, 0, std::move(item)});
}

TJsonPlace TJsonTree::add(TJsonPlace at) { return insert(at, {}); }

TJsonPlace TJsonTree::addNested(TJsonPlace at, TKind kind) {
  return insert(at, {{}, emptyContainer(kind), nullptr});
}

TJsonPlace TJsonTree::addValue(TJsonPlace at, std::string name, TValue value) {
  return insert(at, {std::move(name), std::move(value), nullptr});
}

TJsonPlace TJsonTree::remove(TJsonPlace at) { return doStep({TStep::TAct::Remove, at}); }

void TJsonTree::clear() {
  doStep({TStep::TAct::All, {}, 0, {}, std::make_unique<TJsonBranch>(root_->kind(), nullptr)});
}

TJsonPlace TJsonTree::move(TJsonPlace at, std::size_t to) { return doStep({TStep::TAct::Move, at, to}); }

TJsonPlace TJsonTree::moveUp(TJsonPlace at) { return at.row == 0 ? at : move(at, at.row - 1); }

TJsonPlace TJsonTree::moveDown(TJsonPlace at) {
  return at.row + 1 == at.branch->size() ? at : move(at, at.row + 1);
}

void TJsonTree::rename(TJsonPlace at, std::string name) {
  if (name != nameAt(at)) doStep({TStep::TAct::Name, at, 0, {std::move(name), {}, nullptr}});
}

bool TJsonTree::setValueText(TJsonPlace at, std::string_view text) {
  if (text == valueTextAt(at)) return true;
  const bool object = text == objectMarker;
  if (object || text == listMarker) {
    if (open(at))
      doStep({TStep::TAct::Container, at});
    else
      setValue(at, emptyContainer(object ? TKind::Object : TKind::List));
    return true;
  }
  if (childCount(at) > 0) return false;
  setScalar(at, isContainer(at) ? typedScalar(text) : editedScalar(item(at).value, text, dates_));
  return true;
}

void TJsonTree::setValue(TJsonPlace at, TValue value) {
  doStep({TStep::TAct::Value, at, 0, {{}, std::move(value), nullptr}});
}

void TJsonTree::setScalar(TJsonPlace at, TValue value) {
  if (isContainer(at) || !(item(at).value == value)) setValue(at, std::move(value));
}

bool TJsonTree::convert(TJsonPlace at, TKind kind) {
  if (isContainer(at)) return false;
  TValue value = item(at).value;
  if (!convertScalar(value, kind, dates_)) return false;
  setScalar(at, std::move(value));
  return true;
}

TJsonPlace TJsonTree::find(TJsonPlace behind, bool forward, const TSuits& suits) {
  return findInTree(*root_, behind, forward, suits);
}

void TJsonTree::visit(const TSuits& more) const { visitRows(*root_, more); }

}  // namespace hollowmere
