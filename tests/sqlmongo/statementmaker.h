#pragma once

#include <random>
#include <string>
#include <vector>

#include "json/value.h"

namespace hollowmere {

/// A row of the table t (id, a, b, c, d), once as SQL's values and once as a document; a null is a null
/// member or a missing one.
struct TSampleRow {
  std::string sqlValues;
  TObject document;
};

const std::vector<TSampleRow>& sampleRows();
const std::vector<std::string>& allColumns();

struct TMadeStatement {
  std::string sql;         ///< for the translator
  std::string sqliteText;  ///< the same where SQLite says it otherwise
  std::vector<std::string> columns;
  bool ordered = false;
  bool writes = false;
};

TMadeStatement wholeTable();

/// Makes statements by chance, the same ones for the same seed.
class TStatementMaker {
 public:
  explicit TStatementMaker(unsigned seed) : random_(seed) {}

  TMadeStatement make();

 private:
  std::size_t below(std::size_t limit) { return random_() % limit; }
  bool chance(std::size_t percent) { return below(100) < percent; }
  template <typename T>
  const T& any(const std::vector<T>& list) {
    return list[below(list.size())];
  }

  std::string number();
  std::string text();
  std::string comparison(const std::string& column, bool isText);
  std::string condition(int depth);
  std::string where(std::size_t percent);
  std::string direction();
  std::string limit(TMadeStatement& made);
  std::vector<std::string> someColumns();
  TMadeStatement plain();
  TMadeStatement distinct();
  TMadeStatement grouped();
  TMadeStatement writing();

  std::mt19937 random_;
};

}  // namespace hollowmere
