#pragma once

#include <string>

#include "connectors/hbase/hbaseclient.h"
#include "json/value.h"

namespace hollowmere {

/// The member that holds the row key.
inline constexpr const char* rowKeyName = "rowkey";

/// A row as a document: "rowkey", then a member for each cell, named family:qualifier. Bytes that are no
/// text, or one that another store, or addDocument(), would change (isPlainText()), become a binary; such a
/// column's name "&base64;" + Base64.
TObject rowDocument(const THBaseRow& row);

/// Adds the row of a document to a batch: every member but "rowkey" is a column. In a cell stand of a text
/// its own bytes (a "&quot;" is a double quote, "&str;" goes, blanks stay), or those behind "&base64;"; of a
/// binary its bytes; of others their plain text. Throws std::runtime_error saying why the document is no row,
/// and adds nothing then.
void addDocument(const TObject& document, THBaseBatch& batch);

}  // namespace hollowmere
