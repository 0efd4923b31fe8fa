#include "engine/sampling.h"

#include <algorithm>

#include "engine/assembly.h"
#include "engine/ldtexts.h"

namespace hollowmere {

namespace {

constexpr std::size_t sampledRows = 20;
constexpr int deepestPath = 6;

using TFields = std::map<std::vector<std::size_t>, std::vector<std::string>>;

void addNames(std::vector<std::string>& names, const TObject& row, const std::string& prefix, int depth) {
  for (const TMember& member : row) {
    const std::string name = prefix + member.name;
    if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    if (member.value.is(TKind::Object) && depth < deepestPath)
      addNames(names, member.value.asObject(), name + ".", depth + 1);
  }
}

class TSampler {
 public:
  TSampler(TSourceReader& reader, const std::vector<TDataSource>& sources)
      : reader_(reader), sources_(sources) {}

  void sample(const TNodePlan& node, const std::string& source, const std::vector<TObject>& rows,
              const std::vector<std::size_t>& path) {
    fields[path] = fieldNames(rows);
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

std::vector<std::string> fieldNames(const std::vector<TObject>& rows) {
  std::vector<std::string> names;
  for (const TObject& row : rows) addNames(names, row, "", 0);
  return names;
}

std::map<std::vector<std::size_t>, std::vector<std::string>> sampleFields(
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
