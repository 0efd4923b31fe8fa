#pragma once

#include <string>
#include <string_view>

#include "connectors/hbase/hbaseclient.h"
#include "json/value.h"

namespace hollowmere {

/// A query object of HBase: members table and query, the query a filter text or empty.
struct THBaseQuery {
  /// Throws TStoreError of that kind when no table is named.
  explicit THBaseQuery(const TDataSource& source, TStoreErrorKind kind = TStoreErrorKind::DataSource);

  std::string table;
  std::string filter;  ///< trimmed and normalised
};

/// A filter text with its parameters replaced by the parent row's fields (the first of the name, letter case
/// ignored), each value made so that nothing in it can end the text it stands in.
///
/// Where a parameter may stand:
/// - :name in the place of a text: PrefixFilter(:ID), RowFilter(=, :ID), the latter as 'binary:...'; in the
///   place of a number or of true and false as it is: PageFilter(:N);
/// - :name as a text as a whole, or all that follows its comparator: ':ID', 'binary::ID';
/// - :"name" anywhere in a text: 'customer-:"ID"'.
/// A name holds letters, digits and _ $ # . : (the columns of HBase have a colon); in double quotes,
/// anything. A null is the empty text. Where that would let everything pass, as the whole of a beginning, a
/// part or a regular expression, that filter lets nothing pass instead.
/// Throws TStoreError (Read), naming the parameter, when there is no such field or it is nested.
std::string bindHBaseFilter(std::string_view filter, const TObject& parent);

/// Checks a filter, and makes the range of it. Throws TStoreError of that kind: "Invalid filter expression."
/// and what is wrong with it.
THBaseRange hbaseRange(const std::string& table, const std::string& filter, TStoreErrorKind kind);

/// What is wrong with the filter text of a query object that may hold parameters, and where; else empty.
std::string hbaseFilterFault(const TValue& definition);

/// The text that tells of a filter that the server has refused, for which it gives no reason.
std::string refusedFilterText(const std::string& filter);

}  // namespace hollowmere
