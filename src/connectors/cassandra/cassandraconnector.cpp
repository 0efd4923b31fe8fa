#include "connectors/cassandra/cassandraconnector.h"

#include <algorithm>

#include "connectors/cassandra/cassandrareader.h"
#include "connectors/cassandra/cassandrawriter.h"
#include "connectors/cassandra/cqltext.h"
#include "connectors/cassandranumber.h"

namespace hollowmere {

namespace {

constexpr char sourceText[] = "Unable to connect to source Cassandra.";
constexpr char targetText[] = "Unable to connect to target Cassandra.";

class TCassandraConnector : public TStoreConnector {
 public:
  [[nodiscard]] const std::string& dbType() const override { return dbType_; }
  [[nodiscard]] const TStoreTraits& traits() const override { return traits_; }

  std::unique_ptr<TSourceReader> connectSource(const TStoreOptions& options) const override {
    return std::make_unique<TCassandraReader>(options);
  }
  std::unique_ptr<TTargetWriter> connectTarget(const TStoreOptions& options) const override {
    return std::make_unique<TCassandraWriter>(options);
  }
  void checkSource(const TStoreOptions& options) const override { TCassandraClient(options, sourceText); }
  void checkTarget(const TStoreOptions& options) const override { TCassandraClient(options, targetText); }

  [[nodiscard]] std::vector<std::string> requiredFields(const TStoreOptions& options,
                                                        const TDataTarget& target) const override {
    return requiredColumns(options, target, targetText);
  }

  std::int64_t count(const TStoreOptions& options, const TDataSource& source) const override;

 private:
  std::string dbType_ = "Cassandra";
  TStoreTraits traits_;
};

/// A limit bounds the rows that are read; servers count beyond it.
std::int64_t limitOf(std::string_view cql, std::int64_t count) {
  const std::vector<TCqlToken> tokens = cqlTokens(cql);
  for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
    const bool limit = tokens[i].isWord("limit") && tokens[i + 1].kind == TCqlToken::TKind::Number;
    if (limit && tokens[i + 1].text.size() < 18 && (i == 0 || !tokens[i - 1].isWord("partition")))
      return std::min<std::int64_t>(count, std::stoll(std::string(tokens[i + 1].text)));
  }
  return count;
}

std::int64_t TCassandraConnector::count(const TStoreOptions& options, const TDataSource& source) const {
  const TCassSource query(source);
  TCassandraClient client(options, sourceText);
  try {
    client.setKeyspace(query.keyspace);
    const TCassResult result = client.execute(countCql(query.query), client.readLevel());
    const bool one = result.rows.size() == 1 && result.rows[0].size() == 1 && result.rows[0][0];
    if (!one || result.rows[0][0]->size() != 8)
      throw TStoreError(TStoreErrorKind::DataSource,
                        "The server does not count the rows of " + source.name + ".");
    return limitOf(query.query, bigEndian(*result.rows[0][0]));
  } catch (const TCassandraError& error) {
    throw TStoreError(TStoreErrorKind::DataSource, error.what());
  }
}

}  // namespace

std::unique_ptr<TStoreConnector> makeCassandraConnector() { return std::make_unique<TCassandraConnector>(); }

}  // namespace hollowmere
