#include "engine/preview.h"

#include <algorithm>

#include "engine/ldtexts.h"
#include "engine/nullfilter.h"

namespace hollowmere {

namespace {

const TDataSource& findSource(const std::vector<TDataSource>& sources, const std::string& name,
                              TStoreErrorKind kind, const char* text) {
  const auto found = std::find_if(sources.begin(), sources.end(),
                                  [&](const TDataSource& source) { return source.name == name; });
  if (found == sources.end()) throw TStoreError(kind, text + name);
  return *found;
}

/// Fills the row; false at the end of the source.
bool readRow(TSourceReader& reader, TAssembler& assembler, const TNodePlan& plan, bool ignoreNulls,
             TPreviewRow& row) {
  bool assembling = false;
  try {
    std::optional<TObject> read = reader.next();
    if (!read) return false;
    assembling = true;
    assembler.process(plan, plan.source, *read);
    if (ignoreNulls) removeNulls(*read);
    row.document = std::move(*read);
  } catch (const TStoreError& error) {
    if (error.kind() != TStoreErrorKind::Read) throw;
    row.error = error.what();
  } catch (const std::exception& error) {
    row.error = error.what();
  }
  if (assembling && !row.error.empty()) row.errorPath = assembler.faultPath();
  row.rowText = reader.rowText();
  return true;
}

}  // namespace

void previewMapping(TSourceReader& reader, const std::vector<TDataSource>& sources, const TMapNode& mapping,
                    bool ignoreNulls, const TDateTimeText& dates, std::int64_t limit,
                    const std::function<bool(TPreviewRow&&)>& take) {
  const TDataSource& root =
      findSource(sources, mapping.source, TStoreErrorKind::DataSource, ldtexts::noRootSource);
  TAssembler assembler(
      ignoreNulls, dates, [&](const std::string& name, const TObject& parent, const TRowSink& row) {
        reader.nested(findSource(sources, name, TStoreErrorKind::Read, ldtexts::noSource), parent, row);
      });
  const TNodePlan plan = makePlan(mapping);
  reader.openRoot(root, {});
  for (std::int64_t number = 1; number <= limit; ++number) {
    TPreviewRow row;
    row.number = number;
    if (!readRow(reader, assembler, plan, ignoreNulls, row) || !take(std::move(row))) return;
  }
}

}  // namespace hollowmere
