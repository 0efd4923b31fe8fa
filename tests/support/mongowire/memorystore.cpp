#include "support/mongowire/memorystore.h"

#include <algorithm>

#include "support/mongowire/values.h"

namespace hollowmere::mongowire {

namespace {

bool findId(const bson_t* document, bson_iter_t& id) { return bson_iter_init_find(&id, document, "_id"); }

std::string idKey(const TBson& row) {
  const TBsonView view = row.view();
  bson_iter_t id;
  return findId(view.get(), id) ? valueKey(id) : std::string();
}

/// The document with this _id in front and its own left out.
TBson withId(const bson_iter_t* id, const bson_t* document) {
  TBsonBuilder made;
  bson_oid_t fresh;
  bson_oid_init(&fresh, nullptr);
  if (id)
    bson_append_iter(made.get(), "_id", 3, id);
  else
    BSON_APPEND_OID(made.get(), "_id", &fresh);
  bson_copy_to_excluding_noinit(document, made.get(), "_id", nullptr);
  return made.take();
}

TBson identified(std::string_view document) {
  const TBsonView view(document);
  bson_iter_t id;
  return findId(view.get(), id) ? TBson(document) : withId(nullptr, view.get());
}

TBson idOnly(const TBson& row) {
  const TBsonView view = row.view();
  bson_iter_t id;
  TBsonBuilder made;
  if (findId(view.get(), id)) bson_append_iter(made.get(), "_id", 3, &id);
  return made.take();
}

std::string duplicateText(const std::string& nameSpace, const TBson& row) {
  const TBsonView view = row.view();
  bson_iter_t id;
  findId(view.get(), id);
  return "E11000 duplicate key error collection: " + nameSpace +
         " index: _id_ dup key: { _id: " + shellText(id) + " }";
}

bool rowMatches(const TBson& row, const bson_t* filter) {
  const TBsonView view = row.view();
  return matches(view.get(), filter);
}

/// The document an upsert makes: the replacement, with the filter's _id when it has none of its own.
TBson upserted(const bson_t* filter, const bson_t* document) {
  bson_iter_t id;
  return findId(document, id) || findId(filter, id) ? withId(&id, document) : withId(nullptr, document);
}

}  // namespace

std::optional<std::string> TMemoryStore::insert(const std::string& nameSpace, std::string_view document) {
  TBson row = identified(document);
  const std::lock_guard lock(mutex_);
  TCollection& collection = collections_[nameSpace];
  if (!collection.ids.insert(idKey(row)).second) return duplicateText(nameSpace, row);
  collection.rows.push_back(std::move(row));
  return std::nullopt;
}

TMemoryStore::TReplaced TMemoryStore::replace(const std::string& nameSpace, const bson_t* filter,
                                              const bson_t* document, bool upsert) {
  const std::lock_guard lock(mutex_);
  TReplaced done;
  TCollection& collection = collections_[nameSpace];
  for (TBson& row : collection.rows) {
    if (!rowMatches(row, filter)) continue;
    const TBson id = idOnly(row);
    const TBsonView view = id.view();
    bson_iter_t at;
    findId(view.get(), at);
    row = withId(&at, document);
    done.matched = true;
    return done;
  }
  if (!upsert) return done;
  const TBson& row = collection.rows.emplace_back(upserted(filter, document));
  collection.ids.insert(idKey(row));
  done.upsertedId = idOnly(row);
  return done;
}

std::size_t TMemoryStore::remove(const std::string& nameSpace, const bson_t* filter, bool one) {
  const std::lock_guard lock(mutex_);
  TCollection& collection = collections_[nameSpace];
  TRows kept;
  std::size_t removed = 0;
  for (TBson& row : collection.rows) {
    const bool goes = (!one || removed == 0) && rowMatches(row, filter);
    if (goes) collection.ids.erase(idKey(row));
    if (goes)
      ++removed;
    else
      kept.push_back(std::move(row));
  }
  collection.rows = std::move(kept);
  return removed;
}

bool TMemoryStore::drop(const std::string& nameSpace) {
  const std::lock_guard lock(mutex_);
  return collections_.erase(nameSpace) > 0;
}

TMemoryStore::TRows TMemoryStore::rows(const std::string& nameSpace) const {
  const std::lock_guard lock(mutex_);
  const auto found = collections_.find(nameSpace);
  return found == collections_.end() ? TRows() : found->second.rows;
}

TMemoryStore::TRows TMemoryStore::find(const std::string& nameSpace, const bson_t* filter) const {
  TRows found;
  const std::lock_guard lock(mutex_);
  const auto collection = collections_.find(nameSpace);
  if (collection == collections_.end()) return found;
  for (const TBson& row : collection->second.rows)
    if (rowMatches(row, filter)) found.push_back(row);
  return found;
}

std::vector<std::string> TMemoryStore::nameSpaces() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> names;
  for (const auto& [name, collection] : collections_) names.push_back(name);
  return names;
}

void sortRows(TMemoryStore::TRows& rows, const char* field, bool descending) {
  const TBson null = TBson::fromJson("{\"v\":null}");
  const TBsonView nullView = null.view();
  const auto stand = [&](const TBsonView& row, bson_iter_t& at) {
    if (!bson_iter_init_find(&at, row.get(), field)) bson_iter_init_find(&at, nullView.get(), "v");
  };
  const auto below = [&](const TBson& left, const TBson& right) {
    const TBsonView leftView = left.view();
    const TBsonView rightView = right.view();
    bson_iter_t leftAt;
    bson_iter_t rightAt;
    stand(leftView, leftAt);
    stand(rightView, rightAt);
    const int compared = compareValues(leftAt, rightAt);
    return descending ? compared > 0 : compared < 0;
  };
  std::stable_sort(rows.begin(), rows.end(), below);
}

}  // namespace hollowmere::mongowire
