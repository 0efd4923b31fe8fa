#include "connectors/cassandra/cassandraconnector.h"

#include "connectors/cassandra/cassandrareader.h"
#include "connectors/cassandra/cassandrawriter.h"
#include "connectors/cassandra/casscount.h"

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

  [[nodiscard]] std::string checkQuery(const TValue& definition) const override {
    if (trimmedMember(definition, "keyspace").empty() || trimmedMember(definition, "query").empty())
      return "The data source names no Cassandra keyspace and query.";
    return selectFault(trimmedMember(definition, "query"));
  }

 private:
  std::string dbType_ = "Cassandra";
  TStoreTraits traits_;
};

std::int64_t TCassandraConnector::count(const TStoreOptions& options, const TDataSource& source) const {
  TCassSource query(source);
  TCassandraClient client(options, sourceText);
  return countRows(client, std::move(query), options.stop);
}

}  // namespace

std::unique_ptr<TStoreConnector> makeCassandraConnector() { return std::make_unique<TCassandraConnector>(); }

}  // namespace hollowmere
