#include "connectors/mongodb/mongostats.h"

#include <span>

#include "connectors/nosqlcommon.h"

namespace hollowmere {

namespace {

struct TInfoField {
  const char* name;
  const char* label;
};

constexpr TInfoField databaseFields[] = {{"collections", "Collection Count"},
                                         {"objects", "Document Count"},
                                         {"avgObjSize", "Average Document Size"},
                                         {"dataSize", "Data Size in Bytes"},
                                         {"storageSize", "Storage Size in Bytes"},
                                         {"numExtents", "Extent Count"},
                                         {"indexes", "Index Count"},
                                         {"indexSize", "Indexes Size in Bytes"},
                                         {"fileSize", "File Size in Bytes"}};

constexpr TInfoField collectionFields[] = {{"count", "Document Count"},
                                           {"size", "Collection Size in Bytes"},
                                           {"avgObjSize", "Average Document Size"},
                                           {"numExtents", "Extent Count"},
                                           {"storageSize", "Storage Size in Bytes"},
                                           {"lastExtentSize", "Last Extent Size in Bytes"},
                                           {"userFlags", "User Flags"},
                                           {"capped", "Capped"},
                                           {"nindexes", "Index Count"}};

TInfoRows rowsOf(const TObject& stats, std::span<const TInfoField> fields) {
  TInfoRows rows;
  for (const TInfoField& field : fields)
    if (const TValue* value = stats.find(field.name)) rows.emplace_back(field.label, textForm(*value));
  return rows;
}

}  // namespace

TInfoRows databaseInfo(const TObject& stats) { return rowsOf(stats, databaseFields); }

TInfoRows collectionInfo(const TObject& stats) {
  TInfoRows rows = rowsOf(stats, collectionFields);
  const TValue* sizes = stats.find("indexSizes");
  if (!sizes || !sizes->is(TKind::Object)) return rows;
  double total = 0;
  for (const TMember& index : sizes->asObject())
    total += index.value.is(TKind::Int)      ? static_cast<double>(index.value.asInt())
             : index.value.is(TKind::Double) ? index.value.asDouble()
                                             : 0;
  rows.emplace_back("Total Size of Indexes in Bytes", textForm(TValue(static_cast<std::int64_t>(total))));
  for (const TMember& index : sizes->asObject())
    rows.emplace_back("Size of Index: " + index.name, textForm(index.value));
  return rows;
}

}  // namespace hollowmere
