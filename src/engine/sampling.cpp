#include "engine/sampling.h"

#include <algorithm>

#include "engine/assembly.h"
#include "engine/ldtexts.h"

namespace hollowmere {

namespace {

constexpr std::size_t sampledRows = 20;
constexpr int deepestPath = 6;

using TFields = std::map<std::vector<std::size_t>, std::vector<TSampledField>>;

/// Decimals stay texts: a number might not hold their digits.
TTargetType keepingType(TKind kind) {
  switch (kind) {
    case TKind::Boolean: return TTargetType::Boolean;
    case TKind::Int:
    case TKind::Double: return TTargetType::Number;
    case TKind::DateTime: return TTargetType::DateTime;
    case TKind::Binary: return TTargetType::Binary;
    case TKind::List: return TTargetType::JsonList;
    case TKind::Object: return TTargetType::JsonObject;
    default: return TTargetType::String;
  }
}

/// Fields with the kind that was seen of each, Null as long as there was none.
class TFieldList {
 public:
  void add(const TObject& row, const std::string& prefix = {}, int depth = 0) {
    for (const TMember& member : row) {
      const std::string name = prefix + member.name;
      const auto [place, isNew] = places_.try_emplace(name, seen_.size());
      if (isNew) seen_.push_back({name, TKind::Null});
      TKind& kind = seen_[place->second].second;
      if (kind == TKind::Null) kind = member.value.kind();
      if (member.value.is(TKind::Object) && depth < deepestPath)
        add(member.value.asObject(), name + ".", depth + 1);
    }
  }

  [[nodiscard]] std::vector<TSampledField> fields() const {
    std::vector<TSampledField> fields;
    for (const auto& [name, kind] : seen_) fields.push_back({name, keepingType(kind)});
    return fields;
  }

 private:
  std::vector<std::pair<std::string, TKind>> seen_;
  std::map<std::string, std::size_t> places_;
};

class TSampler {
 public:
  TSampler(TSourceReader& reader, const std::vector<TDataSource>& sources)
      : reader_(reader), sources_(sources) {}

  void sample(const TNodePlan& node, const std::string& source, const std::vector<TObject>& rows,
              const std::vector<std::size_t>& path) {
    fields[path] = sampledFields(rows);
    for (std::size_t i = 0; i < node.children.size(); ++i) {
      const TNodePlan& child = node.children[i];
      if (child.dataSources.empty()) continue;
      std::vector<std::size_t> below = path;
      below.push_back(i);
      const std::string& name = child.dataSources.front();
      sample(child, name, name == source ? rows : nestedRows(name, rows), below);
    }
  }

  TFields fields;

 private:
  std::vector<TObject> nestedRows(const std::string& name, const std::vector<TObject>& parents) {
    std::vector<TObject> rows;
    const auto source = std::find_if(sources_.begin(), sources_.end(),
                                     [&](const TDataSource& one) { return one.name == name; });
    if (source == sources_.end()) return rows;
    for (const TObject& parent : parents) {
      try {
        reader_.nested(*source, parent, [&](TObject&& row) {
          rows.push_back(std::move(row));
          return rows.size() < sampledRows;
        });
      } catch (const TStoreError&) {
        return rows;  // the preview tells the fault; there is just nothing to offer
      }
      if (rows.size() >= sampledRows) break;
    }
    return rows;
  }

  TSourceReader& reader_;
  const std::vector<TDataSource>& sources_;
};

}  // namespace

std::vector<TSampledField> sampledFields(const std::vector<TObject>& rows) {
  TFieldList list;
  for (const TObject& row : rows) list.add(row);
  return list.fields();
}

std::map<std::vector<std::size_t>, std::vector<TSampledField>> sampleFields(
    TSourceReader& reader, const std::vector<TDataSource>& sources, const TMapNode& mapping) {
  const auto root = std::find_if(sources.begin(), sources.end(),
                                 [&](const TDataSource& one) { return one.name == mapping.source; });
  if (root == sources.end())
    throw TStoreError(TStoreErrorKind::DataSource, ldtexts::noRootSource + mapping.source);
  std::vector<TObject> rows;
  reader.openRoot(*root, {});
  for (std::size_t tries = 0; tries < 2 * sampledRows && rows.size() < sampledRows; ++tries) {
    try {
      auto row = reader.next();
      if (!row) break;
      rows.push_back(std::move(*row));
    } catch (const TStoreError& error) {
      if (error.kind() != TStoreErrorKind::Read) throw;
    }
  }
  TSampler sampler(reader, sources);
  sampler.sample(makePlan(mapping), mapping.source, rows, {});
  return std::move(sampler.fields);
}

}  // namespace hollowmere
