#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "json/value.h"

namespace hollowmere {

/// A query that is a JSON object and may hold parameters: ":name", bare or as the whole of a quoted text,
/// where a value stands. Binding puts the parent row's value in as a value of its kind, so that nothing in
/// it can change the query. Read once, bound for every parent row.
class TJsonQuery {
 public:
  /// An empty text is the empty query. Throws TJsonError when the text is no JSON object.
  explicit TJsonQuery(std::string_view text);

  /// Each text of the query that is no parameter becomes what convert gives for it (told whether it stands in
  /// a list). Values bound later are not touched.
  void convertTexts(const std::function<TValue(const std::string& text, bool inList)>& convert);

  /// Each parameter takes the value of the parent's first field of its name, letter case ignored; a name
  /// with dots that is no field is a path into nested objects. Throws TStoreError (Read) naming a
  /// parameter that has no field, or whose value holds a name that begins with "$": it would be an operator.
  [[nodiscard]] TObject bind(const TObject& parent) const;

 private:
  TObject query_;
};

}  // namespace hollowmere
